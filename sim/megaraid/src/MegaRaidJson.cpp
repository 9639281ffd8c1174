// Loading and dumping a virtual MegaRAID adapter's state as JSON.
#include "sim/megaraid/MegaRaidJson.h"

#include <set>

#include "sim/common/JsonFields.h"
#include "sim/megaraid/Capacity.h"
#include "sim/megaraid/StorcliCommand.h"

namespace sim::megaraid {
namespace {

using common::ArrayOr;
using common::FieldOr;
using common::IndexPlace;
using common::KeyPlace;
using common::Refuse;
using nlohmann::json;

// "sizeMb": number, or "size": text as the tool prints it ("558.406 GB").
uint64_t SizeField(const json &Object, const std::string &Where) {
  if (Object.contains("sizeMb")) {
    return FieldOr<uint64_t>(Object, "sizeMb", Where, 0);
  }
  if (Object.contains("size")) {
    if (auto Size = ParseSize(FieldOr<std::string>(Object, "size", Where, ""))) {
      return *Size;
    }
    Refuse(Where, "unreadable \"size\"");
  }
  Refuse(Where, "\"sizeMb\" or \"size\" is required");
}

DriveAddress AddressOf(const json &Text, const std::string &Where) {
  if (!Text.is_string()) {
    Refuse(Where, "drive addresses are strings");
  }
  const auto Drives = ParseDriveList(Text.get<std::string>());
  if (!Drives || Drives->size() != 1) {
    Refuse(Where, Text.dump() + " is not an enclosure:slot address");
  }
  return Drives->front();
}

ControllerIdentity IdentityFromJson(const json &Object) {
  ControllerIdentity Id;
  static_cast<common::PciIdentity &>(Id) = common::PciField(Object, "", Id);
  Id.ProductName = FieldOr(Object, "productName", "", Id.ProductName);
  Id.SerialNumber = FieldOr(Object, "serialNumber", "", Id.SerialNumber);
  Id.FwPackageBuild = FieldOr(Object, "fwPackageBuild", "", Id.FwPackageBuild);
  Id.FwVersion = FieldOr(Object, "fwVersion", "", Id.FwVersion);
  Id.BiosVersion = FieldOr(Object, "biosVersion", "", Id.BiosVersion);
  Id.SasAddress = FieldOr(Object, "sasAddress", "", Id.SasAddress);
  return Id;
}

AdapterLimits LimitsFromJson(const json &Adapter) {
  const json &Object = common::ObjectOr(Adapter, "limits", "");
  const std::string Where = "limits";
  AdapterLimits Limits;
  Limits.MaxVolumes = FieldOr(Object, "maxVolumes", Where, Limits.MaxVolumes);
  Limits.MaxVolumesPerGroup =
      FieldOr(Object, "maxVolumesPerGroup", Where, Limits.MaxVolumesPerGroup);
  Limits.MaxDrivesPerSpan =
      FieldOr(Object, "maxDrivesPerSpan", Where, Limits.MaxDrivesPerSpan);
  Limits.MaxSpans = FieldOr(Object, "maxSpans", Where, Limits.MaxSpans);
  Limits.JbodEnabled = FieldOr(Object, "jbodEnabled", Where, Limits.JbodEnabled);
  Limits.StripSizesKb = FieldOr(Object, "stripSizesKb", Where, Limits.StripSizesKb);
  Limits.DefaultStripKb =
      FieldOr(Object, "defaultStripKb", Where, Limits.DefaultStripKb);
  return Limits;
}

PhysicalDrive DriveFromJson(const json &Object, uint32_t Position) {
  PhysicalDrive Drive;
  const std::string Where = IndexPlace("drives", Position);
  Drive.Address = AddressOf(common::Required(Object, "address", Where),
                            KeyPlace(Where, "address"));
  Drive.DeviceId = FieldOr<uint32_t>(Object, "did", Where, Position);
  Drive.Model = FieldOr<std::string>(Object, "model", Where, "ST1000NM0023");
  if (Drive.Model.empty()) {
    Refuse(Where, "empty model");
  }
  const auto Interface =
      InterfaceFromWord(FieldOr<std::string>(Object, "interface", Where, "SAS"));
  const auto Medium = MediumFromWord(FieldOr<std::string>(Object, "medium", Where, "HDD"));
  const auto State =
      DriveStateFromWord(FieldOr<std::string>(Object, "state", Where, "UGood"));
  if (!Interface || !Medium || !State) {
    Refuse(Where, "unknown interface, medium or state");
  }
  Drive.Interface = *Interface;
  Drive.Medium = *Medium;
  Drive.State = *State;
  Drive.SizeMb = SizeField(Object, Where);
  Drive.Foreign = FieldOr(Object, "foreign", Where, false);
  return Drive;
}

VirtualDrive VolumeFromJson(const json &Object, uint64_t DefaultOffset,
                            const AdapterLimits &Limits, const std::string &Where) {
  using common::WordFieldOr;
  VirtualDrive Volume;
  Volume.Name = FieldOr<std::string>(Object, "name", Where, "");
  Volume.SizeMb = SizeField(Object, Where);
  Volume.OffsetMb = FieldOr<uint64_t>(Object, "offsetMb", Where, DefaultOffset);
  Volume.StripKb = FieldOr<uint32_t>(Object, "stripKb", Where, Limits.DefaultStripKb);
  Volume.Read = WordFieldOr(Object, "readPolicy", Where, Volume.Read, kReadPolicyWords);
  Volume.Write =
      WordFieldOr(Object, "writePolicy", Where, Volume.Write, kWritePolicyWords);
  Volume.Io = WordFieldOr(Object, "ioPolicy", Where, Volume.Io, kIoPolicyWords);
  Volume.DiskCache =
      WordFieldOr(Object, "diskCache", Where, Volume.DiskCache, kDiskCacheWords);
  return Volume;
}

uint32_t DefaultDrivesPerSpan(uint32_t Level, size_t Members) {
  if (Level == 10) return 2;
  if (Level == 50 || Level == 60) return static_cast<uint32_t>(Members / 2);
  return static_cast<uint32_t>(Members);
}

// The drive a group names by address; a member or dedicated spare that is
// unconfigured good takes the state its role gives it.
PhysicalDrive &GroupDrive(std::vector<PhysicalDrive> &Drives, const json &Text,
                          const std::string &Where, DriveState Role) {
  const DriveAddress Address = AddressOf(Text, Where);
  for (auto &Drive : Drives) {
    if (Drive.Address == Address) {
      if (Drive.State == DriveState::UGood) Drive.State = Role;
      return Drive;
    }
  }
  Refuse(Where, "no drive " + Address.Text());
}

}  // namespace

Adapter AdapterFromJson(const json &Object) {
  if (!Object.is_object()) {
    Refuse("", "an adapter must be a JSON object");
  }
  const ControllerIdentity Identity = IdentityFromJson(Object);
  const AdapterLimits Limits = LimitsFromJson(Object);
  std::vector<PhysicalDrive> Drives;
  for (const auto &Item : ArrayOr(Object, "drives", "")) {
    Drives.push_back(DriveFromJson(Item, static_cast<uint32_t>(Drives.size())));
  }
  std::vector<DriveGroup> Groups;
  std::set<uint32_t> Numbers;
  const json &GroupArray = ArrayOr(Object, "driveGroups", "");
  Groups.reserve(GroupArray.size());
  for (const auto &Item : GroupArray) {
    const std::string Where = IndexPlace("driveGroups", Groups.size());
    DriveGroup Group;
    Group.RaidLevel = FieldOr<uint32_t>(Item, "raidLevel", Where, 0);
    const json &Members = ArrayOr(Item, "members", Where);
    for (size_t M = 0; M < Members.size(); ++M) {
      const std::string Place = IndexPlace(KeyPlace(Where, "members"), M);
      Group.Members.push_back(
          GroupDrive(Drives, Members[M], Place, DriveState::Onln).DeviceId);
    }
    const json &Spares = ArrayOr(Item, "dedicatedSpares", Where);
    for (size_t S = 0; S < Spares.size(); ++S) {
      const std::string Place = IndexPlace(KeyPlace(Where, "dedicatedSpares"), S);
      Group.DedicatedSpares.push_back(
          GroupDrive(Drives, Spares[S], Place, DriveState::DHS).DeviceId);
    }
    Group.DrivesPerSpan = FieldOr<uint32_t>(
        Item, "drivesPerSpan", Where,
        DefaultDrivesPerSpan(Group.RaidLevel, Group.Members.size()));
    uint64_t Offset = 0;
    const json &Volumes = ArrayOr(Item, "virtualDrives", Where);
    Group.Volumes.reserve(Volumes.size());
    for (size_t V = 0; V < Volumes.size(); ++V) {
      const std::string Place = IndexPlace(KeyPlace(Where, "virtualDrives"), V);
      Group.Volumes.push_back(VolumeFromJson(Volumes[V], Offset, Limits, Place));
      Offset = Group.Volumes.back().OffsetMb + Group.Volumes.back().SizeMb;
      if (Volumes[V].contains("number")) {
        Group.Volumes.back().Number = FieldOr<uint32_t>(Volumes[V], "number", Place, 0);
        if (!Numbers.insert(Group.Volumes.back().Number).second) {
          Refuse(Place, "virtual drive number used twice");
        }
      }
    }
    Groups.push_back(std::move(Group));
  }
  // Volumes without a number take the lowest ones left, in file order.
  uint32_t Next = 0;
  for (size_t G = 0; G < GroupArray.size(); ++G) {
    const json &Volumes = ArrayOr(GroupArray[G], "virtualDrives", "");
    for (size_t V = 0; V < Groups[G].Volumes.size(); ++V) {
      if (Volumes[V].contains("number")) continue;
      while (Numbers.count(Next)) ++Next;
      Groups[G].Volumes[V].Number = Next;
      Numbers.insert(Next);
    }
  }
  Adapter State(Identity, Limits, std::move(Drives), std::move(Groups));
  if (const std::string Problem = State.Validate(); !Problem.empty()) {
    Refuse("", Problem);
  }
  return State;
}

std::vector<Adapter> AdaptersFromJson(const json &Array) {
  std::vector<Adapter> Adapters;
  for (const auto &Item : common::RequireArray(Array, "adapters")) {
    Adapters.push_back(AdapterFromJson(Item));
  }
  return Adapters;
}

json AdapterToJson(const Adapter &State) {
  const auto &Id = State.Identity();
  const auto &Limits = State.Limits();
  json Object = {
      {"productName", Id.ProductName},
      {"serialNumber", Id.SerialNumber},
      {"fwPackageBuild", Id.FwPackageBuild},
      {"fwVersion", Id.FwVersion},
      {"biosVersion", Id.BiosVersion},
      {"sasAddress", Id.SasAddress},
      {common::kPciKey, common::PciToJson(Id)},
      {"limits",
       {{"maxVolumes", Limits.MaxVolumes},
        {"maxVolumesPerGroup", Limits.MaxVolumesPerGroup},
        {"maxDrivesPerSpan", Limits.MaxDrivesPerSpan},
        {"maxSpans", Limits.MaxSpans},
        {"jbodEnabled", Limits.JbodEnabled},
        {"stripSizesKb", Limits.StripSizesKb},
        {"defaultStripKb", Limits.DefaultStripKb}}},
  };
  json Drives = json::array();
  for (const auto &Drive : State.Drives()) {
    Drives.push_back({{"address", Drive.Address.Text()},
                      {"did", Drive.DeviceId},
                      {"model", Drive.Model},
                      {"interface", InterfaceWord(Drive.Interface)},
                      {"medium", MediumWord(Drive.Medium)},
                      {"sizeMb", Drive.SizeMb},
                      {"state", DriveStateWord(Drive.State)},
                      {"foreign", Drive.Foreign}});
  }
  Object["drives"] = Drives;
  auto Addresses = [&](const std::vector<uint32_t> &Ids) {
    json List = json::array();
    for (uint32_t Id : Ids) {
      List.push_back(State.FindDriveById(Id)->Address.Text());
    }
    return List;
  };
  json Groups = json::array();
  for (const auto &Group : State.Groups()) {
    json Volumes = json::array();
    for (const auto &Volume : Group.Volumes) {
      Volumes.push_back({{"number", Volume.Number},
                         {"name", Volume.Name},
                         {"offsetMb", Volume.OffsetMb},
                         {"sizeMb", Volume.SizeMb},
                         {"stripKb", Volume.StripKb},
                         {"readPolicy", common::WordOfCode(kReadPolicyWords, Volume.Read, "")},
                         {"writePolicy", common::WordOfCode(kWritePolicyWords, Volume.Write, "")},
                         {"ioPolicy", common::WordOfCode(kIoPolicyWords, Volume.Io, "")},
                         {"diskCache", common::WordOfCode(kDiskCacheWords, Volume.DiskCache, "")}});
    }
    Groups.push_back({{"raidLevel", Group.RaidLevel},
                      {"drivesPerSpan", Group.DrivesPerSpan},
                      {"members", Addresses(Group.Members)},
                      {"dedicatedSpares", Addresses(Group.DedicatedSpares)},
                      {"virtualDrives", Volumes}});
  }
  Object["driveGroups"] = Groups;
  return Object;
}

std::string CanonicalState(const Adapter &State) {
  return AdapterToJson(State).dump(2);
}

}  // namespace sim::megaraid
