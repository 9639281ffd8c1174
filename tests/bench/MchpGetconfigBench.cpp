// How much the Microchip read costs over merely reading its bytes: a
// getconfig report of 404800 bytes (all that the reader copies) from the
// virtual SmartRAID, read with MchpGetControllerInfo through the emulated
// shell-command service, against a plain scan of the same characters.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "BenchHost.h"
#include "MchpBackend.h"
#include "RaidLibToolRunner.h"
#include "ScriptedTool.h"
#include "sim/microchip/Arcconf.h"
#include "sim/microchip/MicrochipJson.h"

using namespace mchp;

namespace {

constexpr size_t kReportChars = MCHP_GETCONFIG_COPY_BYTES / sizeof(CHAR16);
constexpr int kDevices = 60;

// A SmartRAID with kDevices drives in arrays of four, each with one logical
// drive, its report padded with blank lines to the copied size.
std::string FullReport() {
  nlohmann::json Adapter = {{"slot", 6}};
  nlohmann::json Devices = nlohmann::json::array();
  nlohmann::json Arrays = nlohmann::json::array();
  for (int Device = 0; Device < kDevices; Device++) {
    const std::string Address =
        std::to_string(Device / 16) + ":" + std::to_string(Device);
    Devices.push_back({{"address", Address}, {"sizeMb", 1143455}});
    if (Device % 4 == 3) {
      nlohmann::json Members = nlohmann::json::array();
      for (int Member = Device - 3; Member <= Device; Member++) {
        Members.push_back(std::to_string(Member / 16) + ":" +
                          std::to_string(Member));
      }
      Arrays.push_back({{"raidLevel", 5},
                        {"members", Members},
                        {"logicalDrives", {{{"sizeMb", 102400}}}}});
    }
  }
  Adapter["devices"] = Devices;
  Adapter["arrays"] = Arrays;
  sim::microchip::Arcconf Tool;
  Tool.AddAdapter(sim::microchip::AdapterFromJson(Adapter));
  std::string Text = Tool.Run("arcconf.efi getconfig 1");
  while (Text.size() + 2 <= kReportChars - 1) {
    Text += "\r\n";
  }
  return Text;
}

bench::ReadCase FullAdapter() {
  auto Text = std::make_shared<const std::string>(FullReport());
  bench::ReadCase Case;
  Case.Tool = [Text](const std::string &) { return *Text; };
  Case.ToolName = u"arcconf.efi";
  Case.CardId = 1;
  Case.Read = MchpGetControllerInfo;
  Case.Drives = kDevices;
  Case.BufferChars = MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16);
  return Case;
}

const bool kRegistered = (bench::RegisterRead("mchp_read", FullAdapter), true);

}  // namespace
