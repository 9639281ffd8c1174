// One virtual Microchip (SmartRAID) adapter: its devices on their channels,
// its arrays with their logical drives and spares, and the changes arcconf
// makes to them, refused where the firmware refuses.
//
// Sizes are whole MB. An array's total size is raw (over all its members);
// its unused size is what a new logical drive can still hold there, and a
// logical drive's size is what it holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/common/PciIdentity.h"

namespace sim::microchip {

// Where the tool addresses a device: "SETSTATE 1 DEVICE <channel> <device>".
struct DeviceAddress {
  uint32_t Channel = 0;
  uint32_t Device = 0;
  bool operator==(const DeviceAddress &) const = default;
  std::string Text() const;  // "0:4"
};

enum class DeviceState {
  Ready,
  Online,          // a member of an array
  DedicatedSpare,  // a spare of the arrays in Device::SpareOf
  AutoReplaceSpare,
  Raw,  // exposed to the OS (HBA mode)
};

struct Device {
  DeviceAddress Address;
  uint32_t Enclosure = 0;
  uint32_t Slot = 0;
  std::string Model = "ST1200MM0009";
  std::string Serial;
  uint64_t SizeMb = 0;
  std::string Interface = "SAS";  // "SAS" or "SATA"
  std::string Medium = "HDD";     // "HDD" or "SSD"
  DeviceState State = DeviceState::Ready;
  std::vector<uint32_t> SpareOf;  // array numbers, for spares
};

struct LogicalDrive {
  uint32_t Number = 0;
  std::string Name;
  uint64_t SizeMb = 0;
  std::string Status = "Optimal";
};

struct Array {
  uint32_t RaidLevel = 0;
  bool Triple = false;  // a RAID 1 over three drives
  std::vector<DeviceAddress> Members;
  std::vector<LogicalDrive> LogicalDrives;
};

// A change's outcome: refused ones carry the tool's message.
struct Outcome {
  bool Ok = true;
  std::string Message;
  static Outcome Refused(std::string Text) { return {false, std::move(Text)}; }
};

// What a create asks for.
struct CreateRequest {
  std::optional<std::string> Name;
  std::optional<uint64_t> SizeMb;  // none: "MAX"
  uint32_t RaidLevel = 0;
  bool Triple = false;
  std::vector<DeviceAddress> Drives;  // new drives, or
  std::optional<uint32_t> ArrayNumber;  // an existing array
};

class Adapter {
 public:
  // Identity and what "getconfig" prints of the controller.
  common::PciIdentity Pci;
  std::string Model = "Adaptec SmartRAID 3154-8i";
  std::string Serial = "7A4620EC0F2";
  std::string Firmware = "4.11[0]";
  uint32_t Slot = 0;                    // the PCI slot "list" prints
  std::optional<uint32_t> Number;       // the tool's number; none: by location
  std::optional<uint32_t> NumberAfterReconnect;

  std::vector<Device> Devices;
  // Numbered by position: array 0 is the first (the tool renumbers them
  // when one goes).
  std::vector<Array> Arrays;

  Device *FindDevice(const DeviceAddress &Address);
  const Device *FindDevice(const DeviceAddress &Address) const;
  // The smallest member's size, the raw total of an array, and the space
  // its logical drives leave (printed as its unused size).
  uint64_t MemberSizeMb(const Array &Target) const;
  uint64_t TotalMb(const Array &Target) const;
  uint64_t UnusedMb(const Array &Target) const;
  uint64_t FreeUsableMb(const Array &Target) const;

  // Refuses a state the firmware could not hold (unknown or doubly used
  // devices, a drive count the level does not allow, logical drives beyond
  // the array's capacity); the text names what is wrong.
  std::optional<std::string> Check() const;

  Outcome Create(const CreateRequest &Request);
  Outcome DeleteArray(uint32_t Number);
  Outcome DeleteLogicalDrive(uint32_t Number);
  Outcome SetReady(const DeviceAddress &Address);
  Outcome SetDedicatedSpare(const DeviceAddress &Address, uint32_t ArrayNumber);

 private:
  uint32_t NextLogicalDriveNumber() const;
  void ReleaseArray(uint32_t Number);
};

// Whether Count drives may form RAID Level (Triple: three-drive RAID 1).
bool LevelAllows(uint32_t Level, bool Triple, size_t Count);
// Members that hold data (the rest hold mirror copies or parity).
uint64_t DataMembers(uint32_t Level, bool Triple, size_t Count);

}  // namespace sim::microchip
