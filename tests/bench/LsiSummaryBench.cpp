// How much the MegaRAID reads cost over merely reading their bytes: a full
// 80960-byte "/c0 show" output with 240 drives in 24 arrays, and the whole
// read of a configured adapter of 208 drives.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>
#include "LsiBackend.h"
#include "RaidLibToolRunner.h"
#include "ScriptedTool.h"

#include <memory>
#include <string>

#include "BenchHost.h"
#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/Storcli.h"

using namespace lsi;

namespace {

constexpr int kArrays = 24;
constexpr int kDrivesPerArray = 10;

// A summary in storcli's layout with CR LF line ends, padded with legend
// lines to fill the output buffer.
std::string FullSummary() {
  std::string Text =
      "Controller = 0\r\nStatus = Success\r\nDescription = None\r\n\r\n"
      "Product Name = MegaRAID 9560-16i\r\nSerial Number = SK00000001\r\n"
      "FW Package Build = 52.20.0-4341\r\nDrive Groups = 24\r\n\r\n"
      "TOPOLOGY :\r\n========\r\n\r\n-----\r\nDG Arr Row EID:Slot DID Type "
      "State BT Size PDC PI SED DS3 FSpace TR\r\n-----\r\n";
  for (int Array = 0; Array < kArrays; Array++) {
    Text += " " + std::to_string(Array) +
            " -   -   -        -   RAID5 Optl  N    8.000 TB dflt N  N   dflt "
            "N      N\r\n";
  }
  Text += "-----\r\n\r\nVirtual Drives = 24\r\n\r\nVD LIST :\r\n=======\r\n"
          "\r\n-----\r\nDG/VD TYPE State Access Consist Cache Cac sCC Size "
          "Name\r\n-----\r\n";
  for (int Array = 0; Array < kArrays; Array++) {
    Text += std::to_string(Array) + "/" + std::to_string(Array) +
            "   RAID5 Optl  RW     Yes     RWBD  -   OFF 8.000 TB vd" +
            std::to_string(Array) + "\r\n";
  }
  Text += "-----\r\n\r\nPhysical Drives = 240\r\n\r\nPD LIST :\r\n=======\r\n"
          "\r\n-----\r\nEID:Slt DID State DG Size Intf Med SED PI SeSz Model "
          "Sp\r\n-----\r\n";
  for (int Drive = 0; Drive < kArrays * kDrivesPerArray; Drive++) {
    Text += std::to_string(250 + Drive / 40) + ":" +
            std::to_string(Drive % 40) + " " + std::to_string(Drive) +
            " Onln " + std::to_string(Drive / kDrivesPerArray) +
            " 893.750 GB SAS  SSD N   N  512B MZILT960HBHQ0D3  U\r\n";
  }
  Text += "-----\r\n\r\n";
  const std::string Legend =
      "EID-Enclosure Device ID|Slt-Slot No.|DID-Device ID|DG-DriveGroup\r\n";
  const size_t Capacity = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  while (Text.size() + Legend.size() <= Capacity) {
    Text += Legend;
  }
  return Text;
}

void ParseSummary(benchmark::State &State) {
  bench::LeanHost Host;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"storcli.efi", u"MegaRAID 9560-16i", nullptr);
  const std::u16string Text = bench::Widen(FullSummary());
  for (auto _ : State) {
    bench::LoadShared(Text);
    UINT32 ErrorCode = 0;
    if (EFI_ERROR(
            ParseControllerShow(gRaidToolOutput, Controller, &ErrorCode)) ||
        Controller->DiskDriveCount != kArrays * kDrivesPerArray) {
      State.SkipWithError("the summary did not parse");
      break;
    }
  }
  State.counters["bytes"] = static_cast<double>(Text.size() * sizeof(CHAR16));
  RaidLibFreeController(Controller);
}
BENCHMARK(ParseSummary)->Name("lsi_summary");

void ScanSummary(benchmark::State &State) {
  bench::ScanText(State, FullSummary());
}
BENCHMARK(ScanSummary)->Name("lsi_summary_scan");

// A configured adapter of 208 drives: 8 RAID 5 groups of 26 drives with
// two virtual drives each, read as the wizard reads it: the summary, the
// free space and "show all" of each of the 16 virtual drives.
constexpr int kGroups = 8;
constexpr int kGroupDrives = 26;

bench::ReadCase ConfiguredAdapter() {
  nlohmann::json Drives = nlohmann::json::array();
  nlohmann::json Groups = nlohmann::json::array();
  for (int Group = 0; Group < kGroups; Group++) {
    nlohmann::json Members = nlohmann::json::array();
    for (int Member = 0; Member < kGroupDrives; Member++) {
      const int Drive = Group * kGroupDrives + Member;
      const std::string Address =
          std::to_string(250 + Drive / 32) + ":" + std::to_string(Drive % 32);
      Drives.push_back({{"address", Address}, {"model", "MZILT960HBHQ0D3"},
                        {"interface", "SAS"}, {"medium", "SSD"},
                        {"sizeMb", 915200}, {"state", "Onln"}});
      Members.push_back(Address);
    }
    Groups.push_back(
        {{"raidLevel", 5}, {"members", Members},
         {"virtualDrives",
          {{{"name", "a" + std::to_string(Group)}, {"sizeMb", 102400}},
           {{"name", "b" + std::to_string(Group)}, {"sizeMb", 204800}}}}});
  }
  auto Tool = std::make_shared<sim::megaraid::Storcli>();
  Tool->AddAdapter(sim::megaraid::AdapterFromJson(
      {{"productName", "MegaRAID 9560-16i"}, {"drives", Drives},
       {"driveGroups", Groups}}));
  bench::ReadCase Case;
  Case.Tool = [Tool](const std::string &Line) { return Tool->Run(Line); };
  Case.ToolName = u"storcli.efi";
  Case.Read = LsiGetControllerInfo;
  Case.Drives = kGroups * kGroupDrives;
  return Case;
}

const bool kRegistered =
    (bench::RegisterRead("lsi_read_208", ConfiguredAdapter), true);

}  // namespace
