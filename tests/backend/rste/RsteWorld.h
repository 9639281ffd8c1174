// An Intel RSTe/VROC engine seen through a scripted RCfgSata.efi: the
// emulated firmware with its setup protocol (trace), shell-command service
// and SMBIOS table, one controller record in gControllerList, and canned
// outputs per command line. The report texts follow
// docs/intel-report-layout.md.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "RaidBackends.h"
#include "RaidLibModelBuild.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"
#include "ScriptedTool.h"
#include "ScriptedToolWorld.h"
#include "emu/Emulator.h"

namespace rste_test {

using namespace rste;

using backend_test::Crlf;
using backend_test::LoadToolOutput;
using backend_test::Narrow;
using backend_test::SegmentNames;
// Pieces of the "/I" report.
struct DiskText {
  std::string Number = "0";  // hexadecimal, as the tool prints it
  std::string Model = "ST1000NM0055-1V410C";
  std::string State = "(Non-RAID Disk)";
  std::string ArrayId = "FFFFFFFF";
  std::string BlocksLine;  // default: " TotalBlks:<Blocks> Port:0"
  std::string Blocks = "74706DB0";
  std::string CapacityLine = " Block Size: 512";
};
struct VolumeText {
  std::string Name = "Volume_1";
  unsigned Level = 1;
  std::string Stripe = "N/A";
  std::string Blocks = "37E436B0";
  unsigned ArrayId = 0;
};
struct InfoText {
  unsigned Disks = 0;
  unsigned Missing = 0;
  std::vector<std::string> ArraySizeLines;  // " Size: TotalMB: 953869 FreeMB:0"
  std::vector<VolumeText> Volumes;
  std::vector<DiskText> DiskBlocks;
};
std::string InfoReport(const InfoText &Info);
// "/V" of the RSTe SATA driver ("Intel RSTe SATA EFI Driver Version") or
// another driver line.
std::string VersionReport(const std::string &DriverLine);
// "/ST" with a volume's state Offset lines below its name.
std::string StatusReport(
    const std::vector<std::pair<std::string, std::string>> &NameAndState,
    unsigned Offset);

class RsteWorld : public backend_test::ScriptedToolWorld {
 public:
  RsteWorld();
  ~RsteWorld() override;

  // The command lines since the last MarkCommands.
  std::vector<std::string> NewCommands() const;
  VOID MarkCommands() { Baseline_ = Commands().size(); }

  // Answers "/V", "/I" and "/ST" of RCfgSata.efi.
  VOID AnswerReads(const std::string &Version, const std::string &Info,
                   const std::string &Status);
  // Reads the model from the canned outputs; the read must succeed.
  VOID ReadModel(UINT32 ExpectedErrorCode = 0);
  VOID InstallSmbios(const std::string &BiosVersion);

  RAID_ARRAY *Array(UINT32 Id) {
    return backend_test::ArrayWithId(Controller_, Id);
  }
  RAID_PHYSICAL_DRIVE *Disk(UINT32 Id);

  std::unique_ptr<emu::SmbiosTable> Smbios_;
  size_t Baseline_ = 0;
};

}  // namespace rste_test
