// How much the MegaRAID summary parse costs over merely reading its bytes:
// a full 80960-byte "/c0 show" output with 240 drives in 24 arrays.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <benchmark/benchmark.h>
#include "LsiBackend.h"
#include "RaidLibToolRunner.h"
#include "ScanFloor.h"
#include "ScriptedTool.h"

#include <string>

#include "emu/Emulator.h"

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
  emu::Firmware Firmware;
  gST = Firmware.SystemTable();
  gBS = gST->BootServices;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"storcli.efi", u"MegaRAID 9560-16i", nullptr);
  const std::string Text = FullSummary();
  for (auto _ : State) {
    backend_test::LoadToolText(Text);
    UINT32 ErrorCode = 0;
    if (EFI_ERROR(
            ParseControllerShow(gRaidToolOutput, Controller, &ErrorCode)) ||
        Controller->DiskDriveCount != kArrays * kDrivesPerArray) {
      State.SkipWithError("the summary did not parse");
      break;
    }
  }
  State.SetBytesProcessed(State.iterations() * Text.size() * sizeof(CHAR16));
  RaidLibFreeController(Controller);
  gBS = nullptr;
  gST = nullptr;
}
BENCHMARK(ParseSummary);

// The floor: the same copy into the buffer and one pass counting lines.
void ScanSummary(benchmark::State &State) { ScanToolText(State, FullSummary()); }
BENCHMARK(ScanSummary);

}  // namespace
