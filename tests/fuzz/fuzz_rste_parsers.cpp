// Feeds arbitrary bytes, one byte per character as RCfgSata.efi prints
// them, through the Intel backend's report parsers and its verdict parser
// in the shared output buffer. The first byte chooses the parser (and the
// report layout or operation kind); "/ST" also runs on the model the same
// bytes built as an "/I" report. Every record built is released again and
// the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "RaidLibModelBuild.h"
#include "RsteBackend.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"

using namespace rste;

namespace {

emu::Firmware &World() {
  static std::unique_ptr<emu::Firmware> Firmware = [] {
    auto Made = std::make_unique<emu::Firmware>();
    gST = Made->SystemTable();
    gBS = gST->BootServices;
    return Made;
  }();
  return *Firmware;
}

// Counts that must hold whatever the report said: every table entry within
// the count is a drive, and each list holds what its count says at most.
void CheckModel(RAID_CONTROLLER *Controller) {
  for (UINT32 I = 0; Controller->DriveTable != nullptr &&
                     I < Controller->DiskDriveCount;
       I++) {
    if (Controller->DriveTable[I] == nullptr) {
      std::abort();
    }
  }
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    UINT32 Free = 0;
    for (RAID_VOLUME *Segment :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      Free += Segment->IsVolume == 0 ? 1 : 0;
    }
    if (Free != Array->FreeSegmentCount || Free > 1) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  emu::Firmware &Firmware = World();
  std::size_t Before = Firmware.Memory().OutstandingCount();
  const std::uint8_t Choice = Data[0];
  Data++;
  Size--;
  gRsteVrocLayout = (Choice & 0x10) != 0 ? 1 : 0;
  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(u"RCfgSata.efi", u"Intel", nullptr);
  UINT32 ErrorCode = 0;
  switch (Choice % 4) {
    case 0:
      (void)ParseControllerInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 1:
      (void)ParseControllerInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      (void)ParseSataInfo(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
    case 2:
      (void)ParseError(backend_test::LoadToolBytes(Data, Size), (Choice >> 2) % 9, &ErrorCode);
      break;
    default:
      (void)ParseControllerVersion(backend_test::LoadToolBytes(Data, Size), Controller, &ErrorCode);
      break;
  }
  CheckModel(Controller);
  RaidLibFreeController(Controller);
  RsteResetState();
  if (Firmware.Memory().OutstandingCount() != Before) {
    std::abort();
  }
  return 0;
}
