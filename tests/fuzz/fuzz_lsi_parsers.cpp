// Feeds arbitrary bytes, one byte per character as storcli prints them,
// through the MegaRAID backend's parsers in the shared output buffer. The
// first byte chooses the parser; the free-space and volume parsers run on a
// model the same bytes built as a controller summary. Every record built is
// released again and the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include "LsiBackend.h"
#include "RaidLibToolRunner.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "emu/Emulator.h"

using namespace lsi;

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

CHAR16 *Load(const std::uint8_t *Data, std::size_t Size) {
  std::size_t Limit = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  std::size_t Length = Size < Limit ? Size : Limit;
  for (std::size_t I = 0; I < Length; I++) {
    gRaidToolOutput[I] = Data[I];
  }
  gRaidToolOutput[Length] = 0;
  return gRaidToolOutput;
}

RAID_CONTROLLER *NewController() {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
  Controller->Private->Bus = 3;
  return Controller;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  emu::Firmware &Firmware = World();
  std::size_t Before = Firmware.Memory().Outstanding().size();
  std::uint8_t Choice = Data[0] % 7;
  Data++;
  Size--;
  RAID_CONTROLLER *Controller = NewController();
  UINT32 ErrorCode = 0;
  UINT32 Result = 0;
  RAID_VOLUME Volume = {};
  switch (Choice) {
    case 0:
      (void)ParseControllerShow(Load(Data, Size), Controller, &ErrorCode);
      break;
    case 1:
      (void)ParseControllerShow(Load(Data, Size), Controller, &ErrorCode);
      (void)ParseControllerShowFS(Load(Data, Size), Controller, &ErrorCode);
      break;
    case 2:
      (void)ParseControllerShowVolume(Load(Data, Size), &Volume, &ErrorCode);
      break;
    case 3:
      (void)ParseErrCd(Load(Data, Size), &ErrorCode);
      break;
    case 4:
      (void)ParseActionStatus(Load(Data, Size), Controller, &Result);
      break;
    case 5:
      (void)ParseBDF(Load(Data, Size), Controller, 1, &ErrorCode);
      break;
    default:
      (void)LsiParseControllerShowCtrlCount(Load(Data, Size), &ErrorCode);
      break;
  }
  for (UINT32 I = 0; Controller->DriveTable != nullptr &&
                     I < Controller->DiskDriveCount;
       I++) {
    if (Controller->DriveTable[I] == nullptr) {
      std::abort();  // a table entry within the count is always a drive
    }
  }
  RaidLibFreeController(Controller);
  if (Firmware.Memory().Outstanding().size() != Before) {
    std::abort();
  }
  return 0;
}
