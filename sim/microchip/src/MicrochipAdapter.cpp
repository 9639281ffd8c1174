// The virtual Microchip adapter's state and the changes arcconf makes.
#include "sim/microchip/MicrochipAdapter.h"

#include <algorithm>
#include <set>

namespace sim::microchip {

std::string DeviceAddress::Text() const {
  return std::to_string(Channel) + ":" + std::to_string(Device);
}

bool LevelAllows(uint32_t Level, bool Triple, size_t Count) {
  switch (Level) {
    case 0: return Count >= 1;
    case 1: return Triple ? Count == 3 : Count == 2;
    case 5: return Count >= 3;
    case 6: return Count >= 4;
    case 10: return Count >= 4 && Count % 2 == 0;
    case 50: return Count >= 6 && Count % 2 == 0;
    case 60: return Count >= 8 && Count % 2 == 0;
    default: return false;
  }
}

uint64_t DataMembers(uint32_t Level, bool Triple, size_t Count) {
  (void)Triple;
  switch (Level) {
    case 1: return 1;
    case 5: return Count - 1;
    case 6: return Count - 2;
    case 10: return Count / 2;
    case 50: return Count - 2;  // two parity groups
    case 60: return Count - 4;
    default: return Count;
  }
}

Device *Adapter::FindDevice(const DeviceAddress &Address) {
  for (Device &Entry : Devices) {
    if (Entry.Address == Address) {
      return &Entry;
    }
  }
  return nullptr;
}

const Device *Adapter::FindDevice(const DeviceAddress &Address) const {
  return const_cast<Adapter *>(this)->FindDevice(Address);
}

uint64_t Adapter::MemberSizeMb(const Array &Target) const {
  uint64_t Smallest = 0;
  for (const DeviceAddress &Member : Target.Members) {
    const Device *Drive = FindDevice(Member);
    const uint64_t Size = Drive != nullptr ? Drive->SizeMb : 0;
    Smallest = (Smallest == 0 || Size < Smallest) ? Size : Smallest;
  }
  return Smallest;
}

uint64_t Adapter::TotalMb(const Array &Target) const {
  return MemberSizeMb(Target) * Target.Members.size();
}

uint64_t Adapter::FreeUsableMb(const Array &Target) const {
  const uint64_t Usable =
      MemberSizeMb(Target) *
      DataMembers(Target.RaidLevel, Target.Triple, Target.Members.size());
  uint64_t Used = 0;
  for (const LogicalDrive &Drive : Target.LogicalDrives) {
    Used += Drive.SizeMb;
  }
  return Used >= Usable ? 0 : Usable - Used;
}

uint64_t Adapter::UnusedMb(const Array &Target) const {
  return FreeUsableMb(Target);
}

std::optional<std::string> Adapter::Check() const {
  std::set<std::pair<uint32_t, uint32_t>> Addresses;
  for (const Device &Drive : Devices) {
    if (!Addresses.insert({Drive.Address.Channel, Drive.Address.Device})
             .second) {
      return "two devices at " + Drive.Address.Text();
    }
    for (uint32_t Number : Drive.SpareOf) {
      if (Number >= Arrays.size()) {
        return "device " + Drive.Address.Text() + " is a spare of no array " +
               std::to_string(Number);
      }
    }
  }
  std::set<std::pair<uint32_t, uint32_t>> Used;
  std::set<uint32_t> Numbers;
  for (size_t Index = 0; Index < Arrays.size(); Index++) {
    const Array &Target = Arrays[Index];
    const std::string Place = "array " + std::to_string(Index);
    for (const DeviceAddress &Member : Target.Members) {
      const Device *Drive = FindDevice(Member);
      if (Drive == nullptr) {
        return Place + ": no device " + Member.Text();
      }
      if (!Used.insert({Member.Channel, Member.Device}).second ||
          Drive->State != DeviceState::Online) {
        return Place + ": device " + Member.Text() + " is not free to join";
      }
    }
    if (!LevelAllows(Target.RaidLevel, Target.Triple, Target.Members.size())) {
      return Place + ": RAID " + std::to_string(Target.RaidLevel) +
             " does not allow " + std::to_string(Target.Members.size()) +
             " drives";
    }
    if (Target.LogicalDrives.empty()) {
      return Place + ": an array holds at least one logical drive";
    }
    uint64_t Sum = 0;
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      if (!Numbers.insert(Drive.Number).second) {
        return Place + ": logical drive " + std::to_string(Drive.Number) +
               " twice";
      }
      Sum += Drive.SizeMb;
    }
    if (Sum > MemberSizeMb(Target) * DataMembers(Target.RaidLevel, Target.Triple,
                                                 Target.Members.size())) {
      return Place + ": logical drives exceed the array's capacity";
    }
  }
  for (const Device &Drive : Devices) {
    if (Drive.State == DeviceState::Online &&
        !Used.count({Drive.Address.Channel, Drive.Address.Device})) {
      return "device " + Drive.Address.Text() + " is online in no array";
    }
  }
  return std::nullopt;
}

uint32_t Adapter::NextLogicalDriveNumber() const {
  std::set<uint32_t> Taken;
  for (const Array &Target : Arrays) {
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      Taken.insert(Drive.Number);
    }
  }
  uint32_t Number = 0;
  while (Taken.count(Number) != 0) {
    Number++;
  }
  return Number;
}

Outcome Adapter::Create(const CreateRequest &Request) {
  LogicalDrive Made;
  Made.Number = NextLogicalDriveNumber();
  Made.Name = Request.Name.value_or("LogicalDrv " + std::to_string(Made.Number));
  if (Request.ArrayNumber) {
    if (*Request.ArrayNumber >= Arrays.size()) {
      return Outcome::Refused("Invalid array number " +
                              std::to_string(*Request.ArrayNumber) + ".");
    }
    Array &Target = Arrays[*Request.ArrayNumber];
    if (Target.RaidLevel != Request.RaidLevel ||
        Target.Triple != Request.Triple) {
      return Outcome::Refused("The RAID level does not match the array.");
    }
    const uint64_t Free = FreeUsableMb(Target);
    Made.SizeMb = Request.SizeMb.value_or(Free);
    if (Free == 0 || Made.SizeMb == 0 || Made.SizeMb > Free) {
      return Outcome::Refused("Not enough free space in the array.");
    }
    Target.LogicalDrives.push_back(Made);
    return {};
  }
  std::set<std::pair<uint32_t, uint32_t>> Named;
  for (const DeviceAddress &Address : Request.Drives) {
    const Device *Drive = FindDevice(Address);
    if (Drive == nullptr) {
      return Outcome::Refused("Invalid device " + Address.Text() + ".");
    }
    if (Drive->State != DeviceState::Ready ||
        !Named.insert({Address.Channel, Address.Device}).second) {
      return Outcome::Refused("Device " + Address.Text() + " is not ready.");
    }
  }
  if (!LevelAllows(Request.RaidLevel, Request.Triple, Request.Drives.size())) {
    return Outcome::Refused("Invalid number of devices for RAID " +
                            std::to_string(Request.RaidLevel) + ".");
  }
  Array Made_;
  Made_.RaidLevel = Request.RaidLevel;
  Made_.Triple = Request.Triple;
  Made_.Members = Request.Drives;
  const uint64_t Free = MemberSizeMb(Made_) *
                        DataMembers(Made_.RaidLevel, Made_.Triple,
                                    Made_.Members.size());
  Made.SizeMb = Request.SizeMb.value_or(Free);
  if (Made.SizeMb == 0 || Made.SizeMb > Free) {
    return Outcome::Refused("Not enough free space on the devices.");
  }
  for (const DeviceAddress &Address : Request.Drives) {
    FindDevice(Address)->State = DeviceState::Online;
  }
  Made_.LogicalDrives.push_back(Made);
  Arrays.push_back(std::move(Made_));
  return {};
}

void Adapter::ReleaseArray(uint32_t Number) {
  for (const DeviceAddress &Member : Arrays[Number].Members) {
    if (Device *Drive = FindDevice(Member)) {
      Drive->State = DeviceState::Ready;
    }
  }
  Arrays.erase(Arrays.begin() + Number);
  // The arrays behind it move down one number; spares follow them.
  for (Device &Drive : Devices) {
    std::vector<uint32_t> Kept;
    for (uint32_t Of : Drive.SpareOf) {
      if (Of != Number) {
        Kept.push_back(Of > Number ? Of - 1 : Of);
      }
    }
    if (Drive.State == DeviceState::DedicatedSpare && Kept.empty()) {
      Drive.State = DeviceState::Ready;
    }
    Drive.SpareOf = Kept;
  }
}

Outcome Adapter::DeleteArray(uint32_t Number) {
  if (Number >= Arrays.size()) {
    return Outcome::Refused("Invalid array number " + std::to_string(Number) +
                            ".");
  }
  ReleaseArray(Number);
  return {};
}

Outcome Adapter::DeleteLogicalDrive(uint32_t Number) {
  for (size_t Index = 0; Index < Arrays.size(); Index++) {
    auto &Drives = Arrays[Index].LogicalDrives;
    const auto Found =
        std::find_if(Drives.begin(), Drives.end(),
                     [&](const LogicalDrive &D) { return D.Number == Number; });
    if (Found == Drives.end()) {
      continue;
    }
    Drives.erase(Found);
    // An array lives only as long as one of its logical drives.
    if (Drives.empty()) {
      ReleaseArray(static_cast<uint32_t>(Index));
    }
    return {};
  }
  return Outcome::Refused("Invalid logical device number " +
                          std::to_string(Number) + ".");
}

Outcome Adapter::SetReady(const DeviceAddress &Address) {
  Device *Drive = FindDevice(Address);
  if (Drive == nullptr) {
    return Outcome::Refused("Invalid device " + Address.Text() + ".");
  }
  if (Drive->State == DeviceState::Online) {
    return Outcome::Refused("Device " + Address.Text() +
                            " is part of an array.");
  }
  Drive->State = DeviceState::Ready;
  Drive->SpareOf.clear();
  return {};
}

Outcome Adapter::SetDedicatedSpare(const DeviceAddress &Address,
                                   uint32_t ArrayNumber) {
  Device *Drive = FindDevice(Address);
  if (Drive == nullptr) {
    return Outcome::Refused("Invalid device " + Address.Text() + ".");
  }
  if (ArrayNumber >= Arrays.size()) {
    return Outcome::Refused("Invalid array number " +
                            std::to_string(ArrayNumber) + ".");
  }
  if (Drive->State != DeviceState::Ready &&
      Drive->State != DeviceState::DedicatedSpare) {
    return Outcome::Refused("Device " + Address.Text() + " is not ready.");
  }
  if (std::count(Drive->SpareOf.begin(), Drive->SpareOf.end(), ArrayNumber)) {
    return Outcome::Refused("Device " + Address.Text() +
                            " is already a spare of the array.");
  }
  if (Drive->SizeMb < MemberSizeMb(Arrays[ArrayNumber])) {
    return Outcome::Refused("Device " + Address.Text() +
                            " is too small to be a spare of the array.");
  }
  Drive->State = DeviceState::DedicatedSpare;
  Drive->SpareOf.push_back(ArrayNumber);
  return {};
}

}  // namespace sim::microchip
