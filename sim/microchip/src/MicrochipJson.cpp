// Loading and dumping a virtual Microchip adapter's state as JSON.
#include "sim/microchip/MicrochipJson.h"

#include "sim/common/CommandWords.h"
#include "sim/common/JsonFields.h"

namespace sim::microchip {
namespace {

using common::ArrayOr;
using common::FieldOr;
using common::IndexPlace;
using common::KeyPlace;
using common::Refuse;
using nlohmann::json;

constexpr std::pair<DeviceState, const char *> kStateWords[] = {
    {DeviceState::Ready, "Ready"},
    {DeviceState::Online, "Online"},
    {DeviceState::DedicatedSpare, "DedicatedSpare"},
    {DeviceState::AutoReplaceSpare, "AutoReplaceSpare"},
    {DeviceState::Raw, "Raw"},
};

// "channel:device", e.g. "0:4".
DeviceAddress AddressOf(const json &Text, const std::string &Where) {
  const auto Parts =
      Text.is_string() ? common::Split(Text.get<std::string>(), ':')
                       : std::vector<std::string>{};
  const auto Channel =
      Parts.size() == 2 ? common::Decimal(Parts[0], 255) : std::nullopt;
  const auto Device =
      Parts.size() == 2 ? common::Decimal(Parts[1], 65535) : std::nullopt;
  if (!Channel || !Device) {
    Refuse(Where, Text.dump() + " is not a channel:device address");
  }
  return {*Channel, *Device};
}

Device DeviceFromJson(const json &Object, size_t Position) {
  const std::string Where = IndexPlace("devices", Position);
  common::CheckKeys(Object, Where,
                    {"address", "enclosure", "slot", "model", "serial",
                     "sizeMb", "interface", "medium", "state"});
  Device Drive;
  Drive.Address = AddressOf(common::Required(Object, "address", Where),
                            KeyPlace(Where, "address"));
  Drive.Enclosure = FieldOr<uint32_t>(Object, "enclosure", Where, 0);
  Drive.Slot = FieldOr<uint32_t>(Object, "slot", Where, Drive.Address.Device);
  Drive.Model = FieldOr<std::string>(Object, "model", Where, Drive.Model);
  Drive.Serial = FieldOr<std::string>(
      Object, "serial", Where, "SN" + std::to_string(Drive.Address.Channel) +
                                   std::to_string(Drive.Address.Device));
  Drive.SizeMb = common::RequiredField<uint64_t>(Object, "sizeMb", Where);
  Drive.Interface =
      FieldOr<std::string>(Object, "interface", Where, Drive.Interface);
  Drive.Medium = FieldOr<std::string>(Object, "medium", Where, Drive.Medium);
  if ((Drive.Interface != "SAS" && Drive.Interface != "SATA") ||
      (Drive.Medium != "HDD" && Drive.Medium != "SSD")) {
    Refuse(Where, "unknown interface or medium");
  }
  Drive.State =
      common::WordFieldOr(Object, "state", Where, DeviceState::Ready, kStateWords);
  return Drive;
}

LogicalDrive LogicalDriveFromJson(const json &Object, const std::string &Where,
                                  uint32_t DefaultNumber, uint64_t FreeMb) {
  common::CheckKeys(Object, Where, {"number", "name", "sizeMb", "status"});
  LogicalDrive Drive;
  Drive.Number = FieldOr<uint32_t>(Object, "number", Where, DefaultNumber);
  Drive.Name = FieldOr<std::string>(Object, "name", Where,
                                    "LogicalDrv " + std::to_string(Drive.Number));
  Drive.SizeMb = FieldOr<uint64_t>(Object, "sizeMb", Where, FreeMb);
  Drive.Status = FieldOr<std::string>(Object, "status", Where, Drive.Status);
  return Drive;
}

void ArrayFromJson(const json &Object, size_t Position, Adapter &State,
                   uint32_t &NextNumber) {
  const std::string Where = IndexPlace("arrays", Position);
  common::CheckKeys(Object, Where,
                    {"raidLevel", "triple", "members", "spares",
                     "logicalDrives"});
  Array Target;
  Target.RaidLevel = FieldOr<uint32_t>(Object, "raidLevel", Where, 0);
  Target.Triple = FieldOr<bool>(Object, "triple", Where, false);
  const json &Members = ArrayOr(Object, "members", Where);
  for (size_t Index = 0; Index < Members.size(); Index++) {
    const std::string Place = IndexPlace(KeyPlace(Where, "members"), Index);
    const DeviceAddress Address = AddressOf(Members[Index], Place);
    Device *Drive = State.FindDevice(Address);
    if (Drive == nullptr) {
      Refuse(Place, "no device " + Address.Text());
    }
    if (Drive->State == DeviceState::Ready) {
      Drive->State = DeviceState::Online;
    }
    Target.Members.push_back(Address);
  }
  const json &Spares = ArrayOr(Object, "spares", Where);
  for (size_t Index = 0; Index < Spares.size(); Index++) {
    const std::string Place = IndexPlace(KeyPlace(Where, "spares"), Index);
    Device *Drive = State.FindDevice(AddressOf(Spares[Index], Place));
    if (Drive == nullptr || (Drive->State != DeviceState::Ready &&
                             Drive->State != DeviceState::DedicatedSpare)) {
      Refuse(Place, "not a ready device");
    }
    Drive->State = DeviceState::DedicatedSpare;
    Drive->SpareOf.push_back(static_cast<uint32_t>(Position));
  }
  State.Arrays.push_back(Target);
  Array &Placed = State.Arrays.back();
  const json &Drives = ArrayOr(Object, "logicalDrives", Where);
  for (size_t Index = 0; Index < Drives.size(); Index++) {
    Placed.LogicalDrives.push_back(LogicalDriveFromJson(
        Drives[Index], IndexPlace(KeyPlace(Where, "logicalDrives"), Index),
        NextNumber, State.FreeUsableMb(Placed)));
    NextNumber = std::max(NextNumber, Placed.LogicalDrives.back().Number + 1);
  }
}

}  // namespace

Adapter AdapterFromJson(const json &Object) {
  common::CheckKeys(Object, "",
                    {common::kPciKey, "model", "serialNumber", "firmware",
                     "slot", "number", "numberAfterReconnect", "devices",
                     "arrays"});
  Adapter State;
  State.Pci = common::PciField(Object, "",
                               {0, 0, 0, 0x9005, 0x028F, 0x9005, 0x0800});
  State.Model = FieldOr<std::string>(Object, "model", "", State.Model);
  State.Serial = FieldOr<std::string>(Object, "serialNumber", "", State.Serial);
  State.Firmware = FieldOr<std::string>(Object, "firmware", "", State.Firmware);
  State.Slot = FieldOr<uint32_t>(Object, "slot", "", State.Slot);
  if (Object.contains("number")) {
    State.Number = FieldOr<uint32_t>(Object, "number", "", 1);
  }
  if (Object.contains("numberAfterReconnect")) {
    State.NumberAfterReconnect =
        FieldOr<uint32_t>(Object, "numberAfterReconnect", "", 1);
  }
  const json &Devices = ArrayOr(Object, "devices", "");
  for (size_t Index = 0; Index < Devices.size(); Index++) {
    State.Devices.push_back(DeviceFromJson(Devices[Index], Index));
  }
  // Spares are listed again with their arrays; the arrays rebuild them.
  for (Device &Drive : State.Devices) {
    if (Drive.State == DeviceState::DedicatedSpare) {
      Drive.State = DeviceState::Ready;
    }
  }
  const json &Arrays = ArrayOr(Object, "arrays", "");
  uint32_t NextNumber = 0;
  for (size_t Index = 0; Index < Arrays.size(); Index++) {
    ArrayFromJson(Arrays[Index], Index, State, NextNumber);
  }
  if (const auto Problem = State.Check()) {
    Refuse("", *Problem);
  }
  return State;
}

json AdapterToJson(const Adapter &State) {
  json Object = {{common::kPciKey, common::PciToJson(State.Pci)},
                 {"model", State.Model},
                 {"serialNumber", State.Serial},
                 {"firmware", State.Firmware},
                 {"slot", State.Slot}};
  if (State.Number) {
    Object["number"] = *State.Number;
  }
  if (State.NumberAfterReconnect) {
    Object["numberAfterReconnect"] = *State.NumberAfterReconnect;
  }
  json Devices = json::array();
  for (const Device &Drive : State.Devices) {
    Devices.push_back(
        {{"address", Drive.Address.Text()},
         {"enclosure", Drive.Enclosure},
         {"slot", Drive.Slot},
         {"model", Drive.Model},
         {"serial", Drive.Serial},
         {"sizeMb", Drive.SizeMb},
         {"interface", Drive.Interface},
         {"medium", Drive.Medium},
         {"state", common::WordOfCode(kStateWords, Drive.State, "Ready")}});
  }
  Object["devices"] = Devices;
  json Arrays = json::array();
  for (size_t Index = 0; Index < State.Arrays.size(); Index++) {
    const Array &Target = State.Arrays[Index];
    json Members = json::array();
    for (const DeviceAddress &Member : Target.Members) {
      Members.push_back(Member.Text());
    }
    json Spares = json::array();
    for (const Device &Drive : State.Devices) {
      for (uint32_t Of : Drive.SpareOf) {
        if (Of == Index) {
          Spares.push_back(Drive.Address.Text());
        }
      }
    }
    json Drives = json::array();
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      Drives.push_back({{"number", Drive.Number},
                        {"name", Drive.Name},
                        {"sizeMb", Drive.SizeMb},
                        {"status", Drive.Status}});
    }
    Arrays.push_back({{"raidLevel", Target.RaidLevel},
                      {"triple", Target.Triple},
                      {"members", Members},
                      {"spares", Spares},
                      {"logicalDrives", Drives}});
  }
  Object["arrays"] = Arrays;
  return Object;
}

std::string CanonicalState(const Adapter &State) {
  return AdapterToJson(State).dump(2);
}

}  // namespace sim::microchip
