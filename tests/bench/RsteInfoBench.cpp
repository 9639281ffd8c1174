// How much the Intel reads cost over merely reading their bytes: the
// virtual engines' "/I" report of 200 disks in 50 four-disk RAID 5 arrays
// of two volumes each, as large as the shared output buffer allows, alone
// and in the whole read with "/V" and "/ST".
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "RaidLibModelBuild.h"
#include "RaidLibToolRunner.h"
#include "RsteBackend.h"
#include "ScriptedTool.h"
#include "BenchHost.h"
#include "sim/intel/IntelJson.h"
#include "sim/intel/Rcfg.h"

namespace {

constexpr int kArrays = 50;
constexpr int kDisksPerArray = 4;

sim::intel::Engines LargeServer() {
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
  return Server;
}

std::string LargeReport() {
  std::string Text = sim::intel::InfoReport(LargeServer());
  Text.resize(std::min(Text.size(), RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1));
  return Text;
}

void ParseInfo(benchmark::State &State) {
  bench::LeanHost Host;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"RCfgSata.efi", u"Intel", nullptr);
  const std::u16string Text = bench::Widen(LargeReport());
  for (auto _ : State) {
    bench::LoadShared(Text);
    UINT32 ErrorCode = 0;
    if (EFI_ERROR(RaidLibResetControllerModel(Controller)) ||
        EFI_ERROR(rste::ParseControllerInfo(gRaidToolOutput, Controller,
                                            &ErrorCode)) ||
        Controller->DiskDriveCount == 0) {
      State.SkipWithError("the report did not parse");
      break;
    }
  }
  State.counters["bytes"] = static_cast<double>(Text.size() * sizeof(CHAR16));
  RaidLibFreeController(Controller);
}
BENCHMARK(ParseInfo)->Name("rste_info");

void ScanInfo(benchmark::State &State) {
  bench::ScanText(State, LargeReport());
}
BENCHMARK(ScanInfo)->Name("rste_info_scan");

// The whole read of the same engine: "/V", "/I" (cut to the buffer) and
// "/ST".
bench::ReadCase LargeEngine() {
  auto Server = std::make_shared<sim::intel::Engines>(LargeServer());
  bench::ReadCase Case;
  Case.Tool = [Server](const std::string &Line) {
    return sim::intel::RunRcfg(*Server, Line);
  };
  Case.ToolName = u"RCfgSata.efi";
  Case.Read = rste::RsteGetControllerInfo;
  return Case;
}

const bool kRegistered = (bench::RegisterRead("rste_read", LargeEngine), true);

}  // namespace
