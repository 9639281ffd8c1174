// Making a disk non-RAID ("/X", its metadata cleared) or a spare ("/SP").
// The model is changed in place; the cached configuration stays valid.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"

namespace rste {

namespace {

VOID CountDown(UINT32 *Count) {
  if (*Count > 0) {
    (*Count)--;
  }
}

// Moves the disk to the list of its new state. The counts move by the same
// amounts whatever the disk was before: deliberately simple, since every
// create and delete rebuilds the model from the tool anyway. A count never
// goes below 0.
VOID MoveDisk(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
              UINT32 State) {
  RemoveEntryList(&Drive->Link);
  Drive->State = State;
  Drive->Owner = Controller;
  if (State == RAID_STATE4_NON_RAID) {
    Drive->Role = RAID_ROLE_UNCONFIGURED;
    InsertTailList(&Controller->PhysicalDriveList, &Drive->Link);
    Controller->UnconfiguredDriveCount++;
    CountDown(&Controller->GlobalSpareCount);
  } else {
    Drive->Role = RAID_ROLE_HOT_SPARE;
    InsertTailList(&Controller->SpareDriveList, &Drive->Link);
    CountDown(&Controller->UnconfiguredDriveCount);
    Controller->GlobalSpareCount++;
  }
}

}  // namespace

EFI_STATUS RsteSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                     RAID_PHYSICAL_DRIVE *Drive, UINT32 State,
                                     UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (Controller == nullptr || Controller->Private == nullptr ||
      Drive == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RsteReady(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR16 *Format = nullptr;
  if (State == RAID_STATE4_NON_RAID) {
    Format = u"%S /Y /X /DS:%d";
  } else if (State == RAID_STATE4_GHS) {
    Format = u"%S /Y /SP /DS:%d";
  } else {
    return EFI_SUCCESS;  // the tool knows no other state
  }
  Status = RaidLibRunTool(RaidLibSharedRun(__func__), ErrorCode, Format,
                          gRsteTool, Drive->Id);
  if (!EFI_ERROR(Status)) {
    Status = ParseError(gRaidToolOutput, RSTE_KIND_DRIVE_STATE, ErrorCode);
  }
  if (EFI_ERROR(Status) || *ErrorCode != 0) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Failed to change disk state\n");
    return Status;
  }
  MoveDisk(Controller, Drive, State);
  return Status;
}

}  // namespace rste
