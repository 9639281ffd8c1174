// Reading and writing an engine's scenario JSON.
#include "sim/intel/IntelJson.h"

#include <algorithm>
#include <set>

#include "sim/common/JsonFields.h"
#include "sim/common/WordTable.h"

namespace sim::intel {
namespace {

using common::ArrayOr;
using common::FieldOr;
using common::IndexPlace;
using common::KeyPlace;
using common::Refuse;

constexpr std::pair<Variant, const char *> kVariants[] = {
    {Variant::RsteSata, "rste-sata"},
    {Variant::VrocSata, "vroc-sata"},
    {Variant::VrocSsata, "vroc-ssata"},
};

constexpr std::pair<DiskState, const char *> kDiskStates[] = {
    {DiskState::NonRaid, "non-raid"},   {DiskState::Member, "member"},
    {DiskState::Spare, "spare"},        {DiskState::Offline, "offline"},
    {DiskState::Incompatible, "incompatible"}, {DiskState::Missing, "missing"},
};

constexpr uint32_t kStripes[] = {4, 8, 16, 32, 64, 128, 256, 512, 1024};

const char *DefaultDriverVersion(Variant Kind) {
  return Kind == Variant::RsteSata ? "5.5.0.1028" : "6.3.0.1005";
}

Disk DiskFromJson(const nlohmann::json &Object, const std::string &Where) {
  common::CheckKeys(Object, Where,
                    {"number", "model", "serial", "blocks", "state"});
  Disk Out;
  Out.Number = common::RequiredField<uint32_t>(Object, "number", Where);
  if (Out.Number == kMissingNumber) {
    Refuse(KeyPlace(Where, "number"), "is the tool's mark of a missing disk");
  }
  Out.Model = FieldOr<std::string>(Object, "model", Where, "INTEL SSDSC2KB480G8");
  Out.Serial = FieldOr<std::string>(Object, "serial",
                                    Where, "PHYF0000" + std::to_string(Out.Number));
  Out.Blocks = FieldOr<uint64_t>(Object, "blocks", Where, 937703088);
  Out.State = common::WordFieldOr(Object, "state", Where, DiskState::NonRaid,
                                  kDiskStates);
  return Out;
}

Volume VolumeFromJson(const nlohmann::json &Object, const std::string &Where,
                      uint64_t WholeBlocks, size_t Members) {
  common::CheckKeys(Object, Where,
                    {"name", "level", "stripeKb", "blocks", "status"});
  Volume Out;
  Out.Name = common::RequiredField<std::string>(Object, "name", Where);
  Out.Level = FieldOr<uint32_t>(Object, "level", Where, 1);
  if (Out.Level != 0 && Out.Level != 1 && Out.Level != 5 && Out.Level != 10) {
    Refuse(KeyPlace(Where, "level"), "is not RAID 0, 1, 5 or 10");
  }
  Out.StripeKb = FieldOr<uint32_t>(Object, "stripeKb", Where,
                                   Out.Level == 1 ? 0 : 64);
  if (Out.Level == 1 ? Out.StripeKb != 0
                     : std::find(std::begin(kStripes), std::end(kStripes),
                                 Out.StripeKb) == std::end(kStripes)) {
    Refuse(KeyPlace(Where, "stripeKb"), "is not a stripe size of the level");
  }
  Out.Blocks = FieldOr<uint64_t>(Object, "blocks", Where,
                                 WholeBlocks * DataDisks(Out.Level, Members));
  Out.Status = FieldOr<std::string>(Object, "status", Where, "Normal");
  return Out;
}

Array ArrayFromJson(const nlohmann::json &Object, const std::string &Where,
                    const Engine &Owner) {
  common::CheckKeys(Object, Where, {"disks", "volumes"});
  Array Out;
  Out.Disks = FieldOr<std::vector<uint32_t>>(Object, "disks", Where, {});
  uint64_t Smallest = UINT64_MAX;
  for (uint32_t Number : Out.Disks) {
    const Disk *Member = Engines::FindDisk(Owner, Number);
    if (Member == nullptr || Member->State == DiskState::NonRaid ||
        Member->State == DiskState::Spare ||
        Member->State == DiskState::Incompatible) {
      Refuse(KeyPlace(Where, "disks"),
             "disk " + std::to_string(Number) + " is no member disk of the engine");
    }
    Smallest = std::min(Smallest, Member->Blocks);
  }
  if (Out.Disks.empty()) {
    Refuse(KeyPlace(Where, "disks"), "an array needs disks");
  }
  const nlohmann::json &Volumes = ArrayOr(Object, "volumes", Where);
  if (Volumes.empty() || Volumes.size() > kMostVolumesPerArray) {
    Refuse(KeyPlace(Where, "volumes"), "an array holds one or two volumes");
  }
  uint64_t Left = Smallest;
  for (size_t I = 0; I < Volumes.size(); I++) {
    std::string Place = IndexPlace(KeyPlace(Where, "volumes"), I);
    Out.Volumes.push_back(VolumeFromJson(Volumes[I], Place, Left, Out.Disks.size()));
    uint64_t Data = DataDisks(Out.Volumes.back().Level, Out.Disks.size());
    uint64_t Used = Data == 0 ? 0 : Out.Volumes.back().Blocks / Data;
    if (Used > Left) {
      Refuse(Place, "is larger than the free space of its disks");
    }
    Left -= Used;
  }
  return Out;
}

}  // namespace

Engine EngineFromJson(const nlohmann::json &Description) {
  const std::string Where;
  common::CheckKeys(Description, Where,
                    {common::kPciKey, "variant", "tool", "driverVersion",
                     "disks", "arrays"});
  Engine Out;
  Out.Pci = common::PciField(Description, Where,
                             {.VendorId = 0x8086, .DeviceId = 0x2826,
                              .SubVendorId = 0x8086, .SubDeviceId = 0x2826});
  Out.Kind = common::WordFieldOr(Description, "variant", Where,
                                 Variant::RsteSata, kVariants);
  Out.Tool = FieldOr<std::string>(Description, "tool", Where, "RCfgSata.efi");
  Out.DriverVersion = FieldOr<std::string>(Description, "driverVersion", Where,
                                           DefaultDriverVersion(Out.Kind));
  const nlohmann::json &Disks = ArrayOr(Description, "disks", Where);
  std::set<uint32_t> Numbers;
  for (size_t I = 0; I < Disks.size(); I++) {
    std::string Place = IndexPlace("disks", I);
    Out.Disks.push_back(DiskFromJson(Disks[I], Place));
    if (!Numbers.insert(Out.Disks.back().Number).second) {
      Refuse(Place, "disk number used twice");
    }
  }
  const nlohmann::json &Arrays = ArrayOr(Description, "arrays", Where);
  std::set<uint32_t> Members;
  std::set<std::string> Names;
  for (size_t I = 0; I < Arrays.size(); I++) {
    std::string Place = IndexPlace("arrays", I);
    Out.Arrays.push_back(ArrayFromJson(Arrays[I], Place, Out));
    for (uint32_t Number : Out.Arrays.back().Disks) {
      if (!Members.insert(Number).second) {
        Refuse(Place, "disk " + std::to_string(Number) + " is in two arrays");
      }
    }
    for (const Volume &Each : Out.Arrays.back().Volumes) {
      if (!Names.insert(Each.Name).second) {
        Refuse(Place, "volume name \"" + Each.Name + "\" used twice");
      }
    }
  }
  for (const Disk &Each : Out.Disks) {
    bool Member = Members.count(Each.Number) != 0;
    // An incompatible disk carries another system's metadata: it stands in
    // no array of this engine.
    bool Free = Each.State == DiskState::NonRaid || Each.State == DiskState::Spare ||
                Each.State == DiskState::Incompatible;
    if (Member == Free) {
      Refuse(IndexPlace("disks", static_cast<size_t>(&Each - Out.Disks.data())),
             Member ? "a free disk stands in an array"
                    : "a member disk stands in no array");
    }
  }
  return Out;
}

nlohmann::json EngineToJson(const Engine &State) {
  nlohmann::json Disks = nlohmann::json::array();
  for (const Disk &Each : State.Disks) {
    Disks.push_back({{"number", Each.Number},
                     {"model", Each.Model},
                     {"serial", Each.Serial},
                     {"blocks", Each.Blocks},
                     {"state", common::WordOfCode(kDiskStates, Each.State, "?")}});
  }
  nlohmann::json Arrays = nlohmann::json::array();
  for (const Array &Group : State.Arrays) {
    nlohmann::json Volumes = nlohmann::json::array();
    for (const Volume &Each : Group.Volumes) {
      Volumes.push_back({{"name", Each.Name},
                         {"level", Each.Level},
                         {"stripeKb", Each.StripeKb},
                         {"blocks", Each.Blocks},
                         {"status", Each.Status}});
    }
    Arrays.push_back({{"disks", Group.Disks}, {"volumes", Volumes}});
  }
  return {{common::kPciKey, common::PciToJson(State.Pci)},
          {"variant", common::WordOfCode(kVariants, State.Kind, "?")},
          {"tool", State.Tool},
          {"driverVersion", State.DriverVersion},
          {"disks", Disks},
          {"arrays", Arrays}};
}

}  // namespace sim::intel
