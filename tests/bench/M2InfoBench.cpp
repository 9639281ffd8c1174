// How much the M.2 reads cost over merely reading their bytes: a full
// 80960-byte "info -o pd" output of drive blocks, read in the report's two
// passes into a drive table made for all of them, and the whole read of a
// full adapter.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "M2Backend.h"
#include "RaidLibModelBuild.h"
#include "RaidLibToolRunner.h"
#include "BenchHost.h"
#include "ScriptedTool.h"
#include "sim/marvell/MarvellJson.h"
#include "sim/marvell/Mvcli.h"

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
  bench::LeanHost Host;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"mvsetup.efi", u"M.2 adapter", nullptr);
  UINT32 Drives = 0;
  const std::u16string Text = bench::Widen(FullDriveReport(&Drives));
  for (auto _ : State) {
    bench::LoadShared(Text);
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
  State.counters["bytes"] = static_cast<double>(Text.size() * sizeof(CHAR16));
  RaidLibFreeController(Controller);
}
BENCHMARK(ParseDriveReport)->Name("m2_pd");

void ScanDriveReport(benchmark::State &State) {
  UINT32 Drives = 0;
  bench::ScanText(State, FullDriveReport(&Drives));
}
BENCHMARK(ScanDriveReport)->Name("m2_pd_scan");

// The whole read of the fullest M.2 adapter the tool knows: four drives, two
// of them in a RAID 1 volume ("info -o hba", "-o vd", "-o pd").
bench::ReadCase FullAdapter() {
  nlohmann::json Drives = nlohmann::json::array();
  for (int Drive = 0; Drive < 4; Drive++) {
    Drives.push_back({{"id", Drive}, {"type", "SATA"}, {"size", "234431064 K"},
                      {"model", "MTFDDAV240TDU"}});
  }
  auto Tool = std::make_shared<sim::marvell::Mvcli>();
  Tool->AddAdapter(sim::marvell::AdapterFromJson(
      {{"maxDisks", 4}, {"drives", Drives},
       {"volumes", {{{"id", 0}, {"level", 1}, {"drives", {0, 1}}}}}}));
  bench::ReadCase Case;
  Case.Tool = [Tool](const std::string &Line) { return Tool->Run(Line); };
  Case.ToolName = u"mvsetup.efi";
  Case.Read = M2GetControllerInfo;
  Case.Drives = 4;
  return Case;
}

const bool kRegistered = (bench::RegisterRead("m2_read", FullAdapter), true);

}  // namespace
