// How much the M.2 drive report costs over merely reading its bytes: a full
// 80960-byte "info -o pd" output of drive blocks, read in the report's two
// passes into a drive table made for all of them.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <string>

#include "M2Backend.h"
#include "RaidLibModelBuild.h"
#include "RaidLibToolRunner.h"
#include "ScanFloor.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"

using namespace m2;

namespace {

std::string Key(const std::string &Name, const std::string &Value) {
  std::string Line = Name + ":";
  Line.append(21 - Line.size(), ' ');
  return Line + Value + "\r\n";
}

// Drive blocks in the tool's layout until the buffer is full; their count
// in *Drives.
std::string FullDriveReport(UINT32 *Drives) {
  const size_t Capacity = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  const std::string Total = Key("Total # of PD", "99999");
  std::string Text;
  *Drives = 0;
  for (;;) {
    std::string Block = Key("Adapter", "0") +
                        Key("PD ID", std::to_string(*Drives)) +
                        Key("Type", "SATA PD") + Key("Size", "234431064 K") +
                        Key("model", "MTFDDAV240TDU") +
                        Key("PD status", *Drives % 2 == 0 ? "ready" : "online") +
                        "\r\n";
    if (Text.size() + Block.size() + Total.size() > Capacity) {
      break;
    }
    Text += Block;
    (*Drives)++;
  }
  return Text + Total;
}

void ParseDriveReport(benchmark::State &State) {
  emu::Firmware Firmware;
  gST = Firmware.SystemTable();
  gBS = gST->BootServices;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"mvsetup.efi", u"M.2 adapter", nullptr);
  UINT32 Drives = 0;
  const std::string Text = FullDriveReport(&Drives);
  for (auto _ : State) {
    backend_test::LoadToolText(Text);
    (VOID)RaidLibResetControllerModel(Controller);
    RAID_ARRAY *Array = RaidLibAddNamedArray(Controller, M2_ARRAY_ID,
                                             M2_ARRAY_NAME, M2_ARRAY_EXTRA_SIZE);
    Controller->DiskDriveCount = Drives;
    UINT32 ErrorCode = 0;
    if (Array == nullptr ||
        EFI_ERROR(ParsePhysicalDriveInfo(gRaidToolOutput, Controller, Array,
                                         &ErrorCode)) ||
        Controller->DiskDriveCount != Drives) {
      State.SkipWithError("the drive report did not parse");
      break;
    }
  }
  State.SetBytesProcessed(State.iterations() * Text.size() * sizeof(CHAR16));
  State.counters["drives"] = Drives;
  RaidLibFreeController(Controller);
  gBS = nullptr;
  gST = nullptr;
}
BENCHMARK(ParseDriveReport);

// The floor: the same copy into the buffer and one pass counting lines.
void ScanDriveReport(benchmark::State &State) {
  UINT32 Drives = 0;
  ScanToolText(State, FullDriveReport(&Drives));
}
BENCHMARK(ScanDriveReport);

}  // namespace
