// Loading and dumping a virtual MegaRAID adapter's state as JSON.
#include "sim/megaraid/MegaRaidJson.h"

#include <set>
#include <stdexcept>

#include "sim/megaraid/Capacity.h"
#include "sim/megaraid/StorcliCommand.h"

namespace sim::megaraid {
namespace {

using nlohmann::json;

[[noreturn]] void Fail(const std::string &What) {
  throw std::runtime_error("MegaRAID adapter: " + What);
}

template <typename T>
T Field(const json &Object, const char *Key, T Default) {
  if (!Object.contains(Key)) {
    return Default;
  }
  try {
    return Object.at(Key).get<T>();
  } catch (const json::exception &) {
    Fail(std::string("field \"") + Key + "\" has the wrong type");
  }
}

// "sizeMb": number, or "size": text as the tool prints it ("558.406 GB").
uint64_t SizeField(const json &Object, const std::string &Where) {
  if (Object.contains("sizeMb")) {
    return Field<uint64_t>(Object, "sizeMb", 0);
  }
  if (Object.contains("size")) {
    if (auto Size = ParseSize(Field<std::string>(Object, "size", ""))) {
      return *Size;
    }
    Fail(Where + ": unreadable \"size\"");
  }
  Fail(Where + ": \"sizeMb\" or \"size\" is required");
}

DriveAddress AddressField(const std::string &Text, const std::string &Where) {
  const auto Drives = ParseDriveList(Text);
  if (!Drives || Drives->size() != 1) {
    Fail(Where + ": \"" + Text + "\" is not an enclosure:slot address");
  }
  return Drives->front();
}

template <typename Enum, size_t N>
Enum WordField(const json &Object, const char *Key, Enum Default,
               const std::pair<Enum, const char *> (&Words)[N]) {
  if (!Object.contains(Key)) {
    return Default;
  }
  const auto Word = Field<std::string>(Object, Key, "");
  for (const auto &[Code, Text] : Words) {
    if (Word == Text) {
      return Code;
    }
  }
  Fail(std::string("unknown ") + Key + " \"" + Word + "\"");
}

constexpr std::pair<ReadPolicy, const char *> kReadWords[] = {
    {ReadPolicy::ReadAhead, "ra"}, {ReadPolicy::NoReadAhead, "nora"}};
constexpr std::pair<WritePolicy, const char *> kWriteWords[] = {
    {WritePolicy::WriteThrough, "wt"},
    {WritePolicy::WriteBack, "wb"},
    {WritePolicy::AlwaysWriteBack, "awb"}};
constexpr std::pair<IoPolicy, const char *> kIoWords[] = {
    {IoPolicy::Cached, "cached"}, {IoPolicy::Direct, "direct"}};
constexpr std::pair<DiskCachePolicy, const char *> kDiskCacheWords[] = {
    {DiskCachePolicy::Off, "off"},
    {DiskCachePolicy::On, "on"},
    {DiskCachePolicy::Default, "default"}};

template <typename Enum, size_t N>
const char *WordOf(Enum Code, const std::pair<Enum, const char *> (&Words)[N]) {
  for (const auto &[Value, Text] : Words) {
    if (Value == Code) {
      return Text;
    }
  }
  return "";
}

ControllerIdentity IdentityFromJson(const json &Object) {
  ControllerIdentity Id;
  Id.ProductName = Field(Object, "productName", Id.ProductName);
  Id.SerialNumber = Field(Object, "serialNumber", Id.SerialNumber);
  Id.FwPackageBuild = Field(Object, "fwPackageBuild", Id.FwPackageBuild);
  Id.FwVersion = Field(Object, "fwVersion", Id.FwVersion);
  Id.BiosVersion = Field(Object, "biosVersion", Id.BiosVersion);
  Id.SasAddress = Field(Object, "sasAddress", Id.SasAddress);
  const json Pci = Field(Object, "pci", json::object());
  Id.Bus = Field<uint8_t>(Pci, "bus", Id.Bus);
  Id.Device = Field<uint8_t>(Pci, "device", Id.Device);
  Id.Function = Field<uint8_t>(Pci, "function", Id.Function);
  Id.VendorId = Field<uint16_t>(Pci, "vendorId", Id.VendorId);
  Id.DeviceId = Field<uint16_t>(Pci, "deviceId", Id.DeviceId);
  Id.SubVendorId = Field<uint16_t>(Pci, "subVendorId", Id.SubVendorId);
  Id.SubDeviceId = Field<uint16_t>(Pci, "subDeviceId", Id.SubDeviceId);
  return Id;
}

AdapterLimits LimitsFromJson(const json &Object) {
  AdapterLimits Limits;
  Limits.MaxVolumes = Field(Object, "maxVolumes", Limits.MaxVolumes);
  Limits.MaxVolumesPerGroup =
      Field(Object, "maxVolumesPerGroup", Limits.MaxVolumesPerGroup);
  Limits.MaxDrivesPerSpan = Field(Object, "maxDrivesPerSpan", Limits.MaxDrivesPerSpan);
  Limits.MaxSpans = Field(Object, "maxSpans", Limits.MaxSpans);
  Limits.JbodEnabled = Field(Object, "jbodEnabled", Limits.JbodEnabled);
  Limits.StripSizesKb = Field(Object, "stripSizesKb", Limits.StripSizesKb);
  Limits.DefaultStripKb = Field(Object, "defaultStripKb", Limits.DefaultStripKb);
  return Limits;
}

PhysicalDrive DriveFromJson(const json &Object, uint32_t Position) {
  PhysicalDrive Drive;
  const std::string Where = "drive " + std::to_string(Position);
  Drive.Address = AddressField(Field<std::string>(Object, "address", ""), Where);
  Drive.DeviceId = Field<uint32_t>(Object, "did", Position);
  Drive.Model = Field<std::string>(Object, "model", "ST1000NM0023");
  if (Drive.Model.empty()) {
    Fail(Where + ": empty model");
  }
  const auto Interface = InterfaceFromWord(Field<std::string>(Object, "interface", "SAS"));
  const auto Medium = MediumFromWord(Field<std::string>(Object, "medium", "HDD"));
  const auto State = DriveStateFromWord(Field<std::string>(Object, "state", "UGood"));
  if (!Interface || !Medium || !State) {
    Fail(Where + ": unknown interface, medium or state");
  }
  Drive.Interface = *Interface;
  Drive.Medium = *Medium;
  Drive.State = *State;
  Drive.SizeMb = SizeField(Object, Where);
  Drive.Foreign = Field(Object, "foreign", false);
  return Drive;
}

VirtualDrive VolumeFromJson(const json &Object, uint64_t DefaultOffset,
                            const AdapterLimits &Limits, const std::string &Where) {
  VirtualDrive Volume;
  Volume.Name = Field<std::string>(Object, "name", "");
  Volume.SizeMb = SizeField(Object, Where);
  Volume.OffsetMb = Field<uint64_t>(Object, "offsetMb", DefaultOffset);
  Volume.StripKb = Field<uint32_t>(Object, "stripKb", Limits.DefaultStripKb);
  Volume.Read = WordField(Object, "readPolicy", Volume.Read, kReadWords);
  Volume.Write = WordField(Object, "writePolicy", Volume.Write, kWriteWords);
  Volume.Io = WordField(Object, "ioPolicy", Volume.Io, kIoWords);
  Volume.DiskCache = WordField(Object, "diskCache", Volume.DiskCache, kDiskCacheWords);
  return Volume;
}

uint32_t DefaultDrivesPerSpan(uint32_t Level, size_t Members) {
  if (Level == 10) return 2;
  if (Level == 50 || Level == 60) return static_cast<uint32_t>(Members / 2);
  return static_cast<uint32_t>(Members);
}

}  // namespace

Adapter AdapterFromJson(const json &Object) {
  if (!Object.is_object()) {
    Fail("an adapter must be a JSON object");
  }
  const ControllerIdentity Identity = IdentityFromJson(Object);
  const AdapterLimits Limits = LimitsFromJson(Field(Object, "limits", json::object()));
  std::vector<PhysicalDrive> Drives;
  for (const auto &Item : Field(Object, "drives", json::array())) {
    Drives.push_back(DriveFromJson(Item, static_cast<uint32_t>(Drives.size())));
  }
  auto IdOf = [&](const json &Text, const std::string &Where) -> PhysicalDrive & {
    if (!Text.is_string()) Fail(Where + ": drive addresses are strings");
    const DriveAddress Address = AddressField(Text.get<std::string>(), Where);
    for (auto &Drive : Drives) {
      if (Drive.Address == Address) return Drive;
    }
    Fail(Where + ": no drive " + Address.Text());
  };
  std::vector<DriveGroup> Groups;
  std::set<uint32_t> Numbers;
  std::vector<std::pair<VirtualDrive *, const json *>> Unnumbered;
  const json GroupArray = Field(Object, "driveGroups", json::array());
  Groups.reserve(GroupArray.size());
  for (const auto &Item : GroupArray) {
    const std::string Where = "drive group " + std::to_string(Groups.size());
    DriveGroup Group;
    Group.RaidLevel = Field<uint32_t>(Item, "raidLevel", 0);
    for (const auto &Member : Field(Item, "members", json::array())) {
      auto &Drive = IdOf(Member, Where);
      if (Drive.State == DriveState::UGood) Drive.State = DriveState::Onln;
      Group.Members.push_back(Drive.DeviceId);
    }
    for (const auto &Spare : Field(Item, "dedicatedSpares", json::array())) {
      auto &Drive = IdOf(Spare, Where);
      if (Drive.State == DriveState::UGood) Drive.State = DriveState::DHS;
      Group.DedicatedSpares.push_back(Drive.DeviceId);
    }
    Group.DrivesPerSpan = Field<uint32_t>(
        Item, "drivesPerSpan", DefaultDrivesPerSpan(Group.RaidLevel, Group.Members.size()));
    uint64_t Offset = 0;
    const json Volumes = Field(Item, "virtualDrives", json::array());
    Group.Volumes.reserve(Volumes.size());
    for (const auto &VolumeItem : Volumes) {
      Group.Volumes.push_back(VolumeFromJson(VolumeItem, Offset, Limits, Where));
      Offset = Group.Volumes.back().OffsetMb + Group.Volumes.back().SizeMb;
      if (VolumeItem.contains("number")) {
        Group.Volumes.back().Number = Field<uint32_t>(VolumeItem, "number", 0);
        if (!Numbers.insert(Group.Volumes.back().Number).second) {
          Fail(Where + ": virtual drive number used twice");
        }
      }
    }
    Groups.push_back(std::move(Group));
  }
  // Volumes without a number take the lowest ones left, in file order.
  uint32_t Next = 0;
  for (size_t G = 0; G < GroupArray.size(); ++G) {
    const json Volumes = Field(GroupArray[G], "virtualDrives", json::array());
    for (size_t V = 0; V < Volumes.size(); ++V) {
      if (Volumes[V].contains("number")) continue;
      while (Numbers.count(Next)) ++Next;
      Groups[G].Volumes[V].Number = Next;
      Numbers.insert(Next);
    }
  }
  Adapter State(Identity, Limits, std::move(Drives), std::move(Groups));
  if (const std::string Problem = State.Validate(); !Problem.empty()) {
    Fail(Problem);
  }
  return State;
}

std::vector<Adapter> AdaptersFromJson(const json &Array) {
  if (!Array.is_array()) {
    Fail("the adapter list must be a JSON array");
  }
  std::vector<Adapter> Adapters;
  for (const auto &Item : Array) {
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
      {"pci",
       {{"bus", Id.Bus}, {"device", Id.Device}, {"function", Id.Function},
        {"vendorId", Id.VendorId}, {"deviceId", Id.DeviceId},
        {"subVendorId", Id.SubVendorId}, {"subDeviceId", Id.SubDeviceId}}},
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
                         {"readPolicy", WordOf(Volume.Read, kReadWords)},
                         {"writePolicy", WordOf(Volume.Write, kWriteWords)},
                         {"ioPolicy", WordOf(Volume.Io, kIoWords)},
                         {"diskCache", WordOf(Volume.DiskCache, kDiskCacheWords)}});
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
