// The virtual Intel RAID engines behind the SATA RAID configuration tool:
// RSTe SATA, VROC SATA and VROC sSATA engines with their disks, arrays and
// volumes. The tool has no controller switch, so one tool run sees every
// engine of the server; disks and arrays are numbered across them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/common/PciIdentity.h"

namespace sim::intel {

enum class Variant { RsteSata, VrocSata, VrocSsata };

enum class DiskState { NonRaid, Member, Spare, Offline, Incompatible, Missing };

// The number the tool prints for a disk it no longer sees.
inline constexpr uint32_t kMissingNumber = 0xFFFFFFFFu;
// Bytes per block of every disk the engines know.
inline constexpr uint64_t kBlockBytes = 512;
// An array holds at most this many volumes.
inline constexpr size_t kMostVolumesPerArray = 2;

struct Disk {
  uint32_t Number = 0;  // the scenario's identity; printed as kMissingNumber when missing
  std::string Model;
  std::string Serial;
  uint64_t Blocks = 0;
  DiskState State = DiskState::NonRaid;
};

struct Volume {
  std::string Name;
  uint32_t Level = 0;      // 0, 1, 5, 10
  uint32_t StripeKb = 0;   // 0 for RAID 1, printed "N/A"
  uint64_t Blocks = 0;     // usable blocks
  std::string Status = "Normal";
};

struct Array {
  std::vector<uint32_t> Disks;  // member disk numbers
  std::vector<Volume> Volumes;
};

struct Engine {
  common::PciIdentity Pci;
  Variant Kind = Variant::RsteSata;
  std::string Tool = "RCfgSata.efi";
  std::string DriverVersion;
  std::vector<Disk> Disks;
  std::vector<Array> Arrays;
};

// Blocks of each member disk a volume of Level over Members disks uses for
// UsableBlocks, and the other way round.
uint64_t DataDisks(uint32_t Level, size_t Members);

// A create request as the tool's command line gives it.
struct CreateRequest {
  std::string Name;
  uint32_t Level = 0;
  std::optional<uint32_t> StripeKb;
  std::optional<uint64_t> SizeGb;  // none or "100%": the whole free space
  bool WholeSpace = false;
  std::vector<uint32_t> Disks;
};

// Every engine of the server in scenario order, and the changes the tool
// makes. Each change returns "" or the reason the real tool gives.
class Engines {
 public:
  void Add(Engine NewEngine) { Engines_.push_back(std::move(NewEngine)); }
  const std::vector<Engine> &All() const { return Engines_; }
  bool Empty() const { return Engines_.empty(); }

  std::string Create(const CreateRequest &Request);
  std::string Delete(const std::string &Name);
  std::string MakeNonRaid(uint32_t Number);
  std::string MakeSpare(uint32_t Number);

  // Free blocks on each member of an array.
  static uint64_t FreePerDisk(const Engine &Owner, const Array &Group);
  static const Disk *FindDisk(const Engine &Owner, uint32_t Number);

 private:
  Disk *FindDisk(uint32_t Number, Engine **Owner);
  std::string CreateInArray(Engine &Owner, Array &Group,
                            const CreateRequest &Request);
  bool NameInUse(const std::string &Name) const;

  std::vector<Engine> Engines_;
};

}  // namespace sim::intel
