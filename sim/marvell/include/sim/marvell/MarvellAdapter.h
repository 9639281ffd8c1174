// A virtual Marvell M.2 RAID adapter: two (at most four) M.2 drives and at
// most one array of RAID 0 or RAID 1 volumes over them, changed as the real
// adapter changes and refusing what it refuses.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/common/PciIdentity.h"

namespace sim::marvell {

// The drive states the adapter's tools print; a drive may carry any other
// word the scenario gives (a failed drive).
inline constexpr const char *kReady = "ready";
inline constexpr const char *kOnline = "online";
inline constexpr const char *kRebuild = "rebuild";

enum class DriveType { Sata, Nvme };

struct Drive {
  uint32_t Id = 0;
  DriveType Type = DriveType::Sata;
  std::string Size;  // figure and unit letter, as the tool prints it
  std::string Model = "MTFDDAV240TDU";
  std::string Status = kReady;
};

struct Volume {
  uint32_t Id = 0;
  std::string Name;
  uint32_t Level = 1;  // 0 or 1
  std::string Status = "optimal";
  uint32_t StripeKb = 64;
  std::string Size;  // figure and unit letter
  std::vector<uint32_t> Drives;
};

// What a change gives: success, or the tool's error text.
struct Change {
  std::optional<std::string> Error;
  static Change Done() { return {}; }
  static Change Refused(std::string Text) { return {std::move(Text)}; }
};

struct Adapter {
  common::PciIdentity Pci;
  std::string SerialNumber = "M2SN0000";
  std::string FirmwareVersion = "2.3.10.1088";
  uint32_t SlotNumber = 0;
  // "Maximum supported disk"; none prints the line without a value.
  std::optional<uint32_t> MaxDisks = 2;
  std::vector<Drive> Drives;
  std::vector<Volume> Volumes;

  const Drive *DriveWithId(uint32_t Id) const;
  Drive *DriveWithId(uint32_t Id);

  // "create -o vd": a volume of Level over DriveIds. Refuses a level other
  // than 0 or 1, an unknown drive or one already in use, a second array
  // and a stripe size the adapter does not offer.
  Change Create(uint32_t Level, const std::vector<uint32_t> &DriveIds,
                const std::string &Name, uint32_t StripeKb);
  // "delete -o vd": the volume with Id; its drives are ready again unless
  // another volume holds them.
  Change Delete(uint32_t Id);
};

// A size text ("234431064 K", "240 G", "1.5 T") in KB; none when it is not
// a figure with a unit letter K, M, G or T.
std::optional<uint64_t> SizeInKb(const std::string &Text);

}  // namespace sim::marvell
