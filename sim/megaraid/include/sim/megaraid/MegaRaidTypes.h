// The records of a virtual MegaRAID adapter: its identity, physical drives,
// drive groups with their virtual drives, and the outcome of a change.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/common/PciIdentity.h"

namespace sim::megaraid {

// Physical drive states as the adapter reports them.
enum class DriveState { UGood, UBad, Onln, Offln, Rbld, GHS, DHS, JBOD, Msng };

enum class DriveInterface { SATA, SAS, NVMe };
enum class DriveMedium { HDD, SSD };

enum class ReadPolicy { ReadAhead, NoReadAhead };
enum class WritePolicy { WriteThrough, WriteBack, AlwaysWriteBack };
enum class IoPolicy { Cached, Direct };
enum class DiskCachePolicy { Off, On, Default };

// Volume (and drive group) states.
enum class VolumeState { Optl, Dgrd, Pdgd, OfLn };

// The volume policies' words, as "add vd" takes them and scenarios write
// them ("ra", "wt", "cached", "pdcache=off").
inline constexpr std::pair<ReadPolicy, const char *> kReadPolicyWords[] = {
    {ReadPolicy::ReadAhead, "ra"}, {ReadPolicy::NoReadAhead, "nora"}};
inline constexpr std::pair<WritePolicy, const char *> kWritePolicyWords[] = {
    {WritePolicy::WriteThrough, "wt"},
    {WritePolicy::WriteBack, "wb"},
    {WritePolicy::AlwaysWriteBack, "awb"}};
inline constexpr std::pair<IoPolicy, const char *> kIoPolicyWords[] = {
    {IoPolicy::Cached, "cached"}, {IoPolicy::Direct, "direct"}};
inline constexpr std::pair<DiskCachePolicy, const char *> kDiskCacheWords[] = {
    {DiskCachePolicy::Off, "off"},
    {DiskCachePolicy::On, "on"},
    {DiskCachePolicy::Default, "default"}};

// The tool's words for the codes above ("Onln", "SAS", "RWBD" parts...).
const char *DriveStateWord(DriveState State);
std::optional<DriveState> DriveStateFromWord(const std::string &Word);
const char *InterfaceWord(DriveInterface Interface);
std::optional<DriveInterface> InterfaceFromWord(const std::string &Word);
const char *MediumWord(DriveMedium Medium);
std::optional<DriveMedium> MediumFromWord(const std::string &Word);
const char *VolumeStateWord(VolumeState State);

// Enclosure and slot: the tool's "e:s" address of a drive.
struct DriveAddress {
  uint32_t Enclosure = 0;
  uint32_t Slot = 0;
  bool operator==(const DriveAddress &) const = default;
  auto operator<=>(const DriveAddress &) const = default;
  std::string Text() const;
};

struct PhysicalDrive {
  DriveAddress Address;
  uint32_t DeviceId = 0;  // the DID column
  std::string Model;
  DriveInterface Interface = DriveInterface::SAS;
  DriveMedium Medium = DriveMedium::HDD;
  uint64_t SizeMb = 0;  // coerced size as the adapter reports it
  DriveState State = DriveState::UGood;
  bool Foreign = false;  // carries a foreign configuration
};

struct VirtualDrive {
  uint32_t Number = 0;  // target id, unique on the adapter
  std::string Name;
  uint64_t OffsetMb = 0;  // where it starts inside its drive group
  uint64_t SizeMb = 0;
  uint32_t StripKb = 256;
  ReadPolicy Read = ReadPolicy::ReadAhead;
  WritePolicy Write = WritePolicy::WriteBack;
  IoPolicy Io = IoPolicy::Direct;
  DiskCachePolicy DiskCache = DiskCachePolicy::Default;
};

// A drive group. Its number is its position in the adapter's list: the
// firmware renumbers groups when one goes away.
struct DriveGroup {
  uint32_t RaidLevel = 0;        // 0, 1, 5, 6, 10, 50, 60
  uint32_t DrivesPerSpan = 0;    // member count for unspanned levels
  std::vector<uint32_t> Members;          // device ids, row order
  std::vector<uint32_t> DedicatedSpares;  // device ids
  std::vector<VirtualDrive> Volumes;      // ordered by offset
  uint32_t SpanCount() const;
};

// A free extent of a drive group, between or after its volumes.
struct FreeSegment {
  uint32_t DriveGroup = 0;
  std::optional<uint32_t> AfterVd;  // none: before every volume
  uint64_t OffsetMb = 0;
  uint64_t SizeMb = 0;
};

// The PCI identity and the texts "/cN show" prints about the adapter.
struct ControllerIdentity : common::PciIdentity {
  ControllerIdentity()
      : common::PciIdentity{.VendorId = 0x1000,
                            .DeviceId = 0x005D,
                            .SubVendorId = 0x1000,
                            .SubDeviceId = 0x9361} {}

  std::string ProductName = "AVAGO MegaRAID SAS 9361-8i";
  std::string SerialNumber = "SK00000000";
  std::string FwPackageBuild = "24.21.0-0148";
  std::string FwVersion = "4.680.00-8527";
  std::string BiosVersion = "6.36.00.3_4.19.08.00_0x06180203";
  std::string SasAddress = "500605b000000000";
};

struct AdapterLimits {
  uint32_t MaxVolumes = 64;
  uint32_t MaxVolumesPerGroup = 16;
  uint32_t MaxDrivesPerSpan = 32;
  uint32_t MaxSpans = 8;
  bool JbodEnabled = true;
  std::vector<uint32_t> StripSizesKb = {8, 16, 32, 64, 128, 256, 512, 1024};
  uint32_t DefaultStripKb = 256;
};

// Outcome of a change. A refusal carries the tool's description and, when
// the firmware itself rejected the request, the firmware status number.
struct Result {
  bool Ok = true;
  std::string Message;
  uint32_t FirmwareStatus = 0;

  static Result Success() { return {}; }
  static Result Refused(std::string Message, uint32_t FirmwareStatus = 0) {
    return {false, std::move(Message), FirmwareStatus};
  }
};

// Firmware status numbers the adapter answers with.
namespace fw {
inline constexpr uint32_t kConfigResourceConflict = 11;
inline constexpr uint32_t kDeviceNotFound = 12;
inline constexpr uint32_t kDriveTooSmall = 13;
inline constexpr uint32_t kMaxVolumesConfigured = 26;
inline constexpr uint32_t kWrongRaidLevel = 30;
inline constexpr uint32_t kMixedInterfaces = 38;
// The firmware's text for one of the numbers above.
const char *StatusText(uint32_t Status);
}  // namespace fw

}  // namespace sim::megaraid
