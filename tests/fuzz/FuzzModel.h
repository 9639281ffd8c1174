// What the backends' fuzz targets share: the emulated firmware whose pool
// they allocate from, a bare controller record to parse into, and the check
// after each input that the model held together and nothing leaked.
#pragma once

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "RaidLib.h"
#include "emu/Emulator.h"

namespace fuzz_model {

inline emu::Firmware &World() {
  static std::unique_ptr<emu::Firmware> Firmware = [] {
    auto Made = std::make_unique<emu::Firmware>();
    gST = Made->SystemTable();
    gBS = gST->BootServices;
    return Made;
  }();
  return *Firmware;
}

// A controller with its private record and empty lists, from the pool.
inline RAID_CONTROLLER *NewController() {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
  return Controller;
}

// Aborts when a drive-table entry within the count is no drive; releases
// the controller and aborts when the pool does not hold what it held
// (Before outstanding blocks) before the input.
inline void ReleaseAndCheck(RAID_CONTROLLER *Controller, std::size_t Before) {
  for (UINT32 I = 0; Controller->DriveTable != nullptr &&
                     I < Controller->DiskDriveCount;
       I++) {
    if (Controller->DriveTable[I] == nullptr) {
      std::abort();  // a table entry within the count is always a drive
    }
  }
  RaidLibFreeController(Controller);
  if (World().Memory().OutstandingCount() != Before) {
    std::abort();
  }
}

}  // namespace fuzz_model
