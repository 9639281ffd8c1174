// How much the Microchip read costs over merely reading its bytes: a
// getconfig report of 404800 bytes (all that the reader copies) from the
// virtual SmartRAID, read with MchpGetControllerInfo through the emulated
// shell-command service, against a plain scan of the same characters.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>

#include <string>

#include "MchpBackend.h"
#include "RaidLibToolRunner.h"
#include "emu/Emulator.h"
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

RAID_CONTROLLER *NewController() {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller->Capability->ToolName = static_cast<CHAR16 *>(
      AllocateCopyPool(sizeof(u"arcconf.efi"), u"arcconf.efi"));
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
  Controller->Private->CardId = 1;
  return Controller;
}

void ReadGetconfig(benchmark::State &State) {
  emu::Firmware Firmware;
  gST = Firmware.SystemTable();
  gBS = gST->BootServices;
  const std::string Text = FullReport();
  emu::ShellCommand Shell(Firmware);
  Shell.SetHandler([&Text](const std::string &) { return Text; });
  RAID_CONTROLLER *Controller = NewController();
  for (auto _ : State) {
    Controller->Private->Flags = 0;
    UINT32 ErrorCode = 0;
    if (EFI_ERROR(MchpGetControllerInfo(Controller, nullptr, &ErrorCode)) ||
        Controller->DiskDriveCount != kDevices) {
      State.SkipWithError("the report did not read");
      break;
    }
  }
  State.SetBytesProcessed(State.iterations() * MCHP_GETCONFIG_COPY_BYTES);
  RaidLibFreeController(Controller);
  RaidLibResetToolRunner();
  gBS = nullptr;
  gST = nullptr;
}
BENCHMARK(ReadGetconfig);

// The floor: the same characters into the buffer and one pass counting
// lines.
void ScanGetconfig(benchmark::State &State) {
  const std::string Text = FullReport();
  for (auto _ : State) {
    for (size_t I = 0; I < Text.size(); I++) {
      gMchpGetconfigOutput[I] = static_cast<unsigned char>(Text[I]);
    }
    gMchpGetconfigOutput[Text.size()] = 0;
    UINTN Lines = 0;
    for (const CHAR16 *Cursor = gMchpGetconfigOutput; *Cursor != 0; Cursor++) {
      Lines += *Cursor == u'\n';
    }
    benchmark::DoNotOptimize(Lines);
  }
  State.SetBytesProcessed(State.iterations() * MCHP_GETCONFIG_COPY_BYTES);
}
BENCHMARK(ScanGetconfig);

}  // namespace
