// Loading and dumping a virtual M.2 adapter's state as JSON.
#include "sim/marvell/MarvellJson.h"

#include <algorithm>
#include <set>

#include "sim/common/JsonFields.h"

namespace sim::marvell {
namespace {

using common::FieldOr;
using common::IndexPlace;
using common::KeyPlace;
using common::Refuse;
using nlohmann::json;

// The adapter's M.2 slots: two, four on the larger boards.
constexpr size_t kMaxDrives = 4;

constexpr std::pair<DriveType, const char *> kDriveTypes[] = {
    {DriveType::Sata, "SATA"},
    {DriveType::Nvme, "NVMe"},
};

std::string SizeField(const json &Object, const std::string &Where,
                      const std::string &Default) {
  std::string Size = FieldOr<std::string>(Object, "size", Where, Default);
  if (!SizeInKb(Size)) {
    Refuse(KeyPlace(Where, "size"),
           "\"" + Size + "\" is not a figure with a unit letter K, M, G or T");
  }
  return Size;
}

Drive DriveFromJson(const json &Object, const std::string &Where) {
  common::CheckKeys(Object, Where, {"id", "type", "size", "model", "status"});
  Drive D;
  D.Id = common::RequiredField<uint32_t>(Object, "id", Where);
  D.Type = common::WordFieldOr(Object, "type", Where, D.Type, kDriveTypes);
  D.Size = SizeField(Object, Where, "234431064 K");
  D.Model = FieldOr(Object, "model", Where, D.Model);
  D.Status = FieldOr(Object, "status", Where, D.Status);
  return D;
}

Volume VolumeFromJson(const json &Object, const std::string &Where,
                      const Adapter &State) {
  common::CheckKeys(Object, Where, {"id", "name", "level", "status",
                                    "stripeSize", "size", "drives"});
  Volume V;
  V.Id = common::RequiredField<uint32_t>(Object, "id", Where);
  V.Name = FieldOr(Object, "name", Where, "VD_" + std::to_string(V.Id));
  V.Level = FieldOr(Object, "level", Where, V.Level);
  if (V.Level != 0 && V.Level != 1) {
    Refuse(KeyPlace(Where, "level"), "an M.2 adapter holds RAID 0 or RAID 1");
  }
  V.Status = FieldOr(Object, "status", Where, V.Status);
  V.StripeKb = FieldOr(Object, "stripeSize", Where, V.StripeKb);
  V.Drives = common::RequiredField<std::vector<uint32_t>>(Object, "drives",
                                                          Where);
  for (size_t I = 0; I < V.Drives.size(); I++) {
    if (State.DriveWithId(V.Drives[I]) == nullptr) {
      Refuse(IndexPlace(KeyPlace(Where, "drives"), I),
             "no drive " + std::to_string(V.Drives[I]));
    }
  }
  V.Size = SizeField(Object, Where, "0 M");
  return V;
}

}  // namespace

Adapter AdapterFromJson(const json &Object) {
  common::CheckKeys(Object, "",
                    {common::kPciKey, "serialNumber", "firmwareVersion",
                     "slotNumber", "maxDisks", "drives", "volumes"});
  Adapter State;
  common::PciIdentity Default;
  Default.VendorId = 0x1B4B;
  Default.DeviceId = 0x9230;
  Default.SubVendorId = 0x1B4B;
  Default.SubDeviceId = 0x9230;
  State.Pci = common::PciField(Object, "", Default);
  State.SerialNumber = FieldOr(Object, "serialNumber", "", State.SerialNumber);
  State.FirmwareVersion =
      FieldOr(Object, "firmwareVersion", "", State.FirmwareVersion);
  State.SlotNumber = FieldOr(Object, "slotNumber", "", State.SlotNumber);
  if (Object.contains("maxDisks") && Object.at("maxDisks").is_null()) {
    State.MaxDisks.reset();
  } else {
    State.MaxDisks = FieldOr(Object, "maxDisks", "", *State.MaxDisks);
  }

  const json &Drives = common::ArrayOr(Object, "drives", "");
  if (Drives.size() > kMaxDrives) {
    Refuse("drives", "an M.2 adapter has at most " +
                         std::to_string(kMaxDrives) + " drives");
  }
  std::set<uint32_t> Ids;
  for (size_t I = 0; I < Drives.size(); I++) {
    Drive D = DriveFromJson(Drives[I], IndexPlace("drives", I));
    if (!Ids.insert(D.Id).second) {
      Refuse(IndexPlace("drives", I),
             "drive id " + std::to_string(D.Id) + " is given twice");
    }
    State.Drives.push_back(std::move(D));
  }
  const json &Volumes = common::ArrayOr(Object, "volumes", "");
  std::set<uint32_t> VolumeIds;
  for (size_t I = 0; I < Volumes.size(); I++) {
    Volume V = VolumeFromJson(Volumes[I], IndexPlace("volumes", I), State);
    if (!VolumeIds.insert(V.Id).second) {
      Refuse(IndexPlace("volumes", I),
             "volume id " + std::to_string(V.Id) + " is given twice");
    }
    State.Volumes.push_back(std::move(V));
  }
  return State;
}

json AdapterToJson(const Adapter &State) {
  json Drives = json::array();
  for (const Drive &D : State.Drives) {
    Drives.push_back({{"id", D.Id},
                      {"type", common::WordOfCode(kDriveTypes, D.Type, "SATA")},
                      {"size", D.Size},
                      {"model", D.Model},
                      {"status", D.Status}});
  }
  json Volumes = json::array();
  for (const Volume &V : State.Volumes) {
    Volumes.push_back({{"id", V.Id},
                       {"name", V.Name},
                       {"level", V.Level},
                       {"status", V.Status},
                       {"stripeSize", V.StripeKb},
                       {"size", V.Size},
                       {"drives", V.Drives}});
  }
  return {{common::kPciKey, common::PciToJson(State.Pci)},
          {"serialNumber", State.SerialNumber},
          {"firmwareVersion", State.FirmwareVersion},
          {"slotNumber", State.SlotNumber},
          {"maxDisks", State.MaxDisks ? json(*State.MaxDisks) : json(nullptr)},
          {"drives", Drives},
          {"volumes", Volumes}};
}

}  // namespace sim::marvell
