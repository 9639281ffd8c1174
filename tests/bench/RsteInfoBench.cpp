// How much the Intel "/I" parse costs over merely reading its bytes: the
// virtual engines' report of 200 disks in 50 four-disk RAID 5 arrays of two
// volumes each, as large as the shared output buffer allows.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <string>

#include "RaidLibModelBuild.h"
#include "RaidLibToolRunner.h"
#include "RsteBackend.h"
#include "ScanFloor.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"
#include "sim/intel/IntelJson.h"
#include "sim/intel/Rcfg.h"

namespace {

constexpr int kArrays = 50;
constexpr int kDisksPerArray = 4;

std::string LargeReport() {
  nlohmann::json Disks = nlohmann::json::array();
  nlohmann::json Arrays = nlohmann::json::array();
  for (int Array = 0; Array < kArrays; Array++) {
    nlohmann::json Members = nlohmann::json::array();
    for (int Disk = 0; Disk < kDisksPerArray; Disk++) {
      const int Number = Array * kDisksPerArray + Disk;
      Disks.push_back({{"number", Number}, {"state", "member"}});
      Members.push_back(Number);
    }
    Arrays.push_back({{"disks", Members},
                      {"volumes", {{{"name", "A" + std::to_string(Array)},
                                    {"level", 5}, {"blocks", 1000000}},
                                   {{"name", "B" + std::to_string(Array)},
                                    {"level", 5}, {"blocks", 1000000}}}}});
  }
  sim::intel::Engines Server;
  Server.Add(sim::intel::EngineFromJson({{"disks", Disks}, {"arrays", Arrays}}));
  std::string Text = sim::intel::InfoReport(Server);
  Text.resize(std::min(Text.size(), RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1));
  return Text;
}

void ParseInfo(benchmark::State &State) {
  emu::Firmware Firmware;
  gST = Firmware.SystemTable();
  gBS = gST->BootServices;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"RCfgSata.efi", u"Intel", nullptr);
  const std::string Text = LargeReport();
  for (auto _ : State) {
    backend_test::LoadToolText(Text);
    UINT32 ErrorCode = 0;
    if (EFI_ERROR(RaidLibResetControllerModel(Controller)) ||
        EFI_ERROR(rste::ParseControllerInfo(gRaidToolOutput, Controller,
                                            &ErrorCode)) ||
        Controller->DiskDriveCount == 0) {
      State.SkipWithError("the report did not parse");
      break;
    }
  }
  State.SetBytesProcessed(State.iterations() * Text.size() * sizeof(CHAR16));
  RaidLibFreeController(Controller);
  gBS = nullptr;
  gST = nullptr;
}
BENCHMARK(ParseInfo);

// The floor: the same copy into the buffer and one pass counting lines.
void ScanInfo(benchmark::State &State) { ScanToolText(State, LargeReport()); }
BENCHMARK(ScanInfo);

}  // namespace
