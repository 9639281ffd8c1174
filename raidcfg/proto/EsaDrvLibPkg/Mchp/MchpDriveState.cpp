// Changing one drive's state with arcconf: ready (RDY) or dedicated hot
// spare (HSP). The model is edited in place, without a re-read.
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibModelBuild.h"
#include "RaidLibOperation.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp {

namespace {

// Runs one drive command; TRUE when its output does not say "failed".
[[nodiscard]] bool RunDriveCommand(const CHAR8 *Caller,
                                   RAID_CONTROLLER *Controller,
                                   RAID_PHYSICAL_DRIVE *Drive,
                                   const CHAR16 *Format, UINT32 Array,
                                   UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, MCHP_DRIVE_COMMAND_CHARS), ErrorCode, Format,
      Controller->Capability->ToolName, Controller->Private->CardId,
      Drive->Position->Values[MCHP_POSITION_CHANNEL],
      Drive->Position->Values[MCHP_POSITION_DEVICE], Array));
  return !RaidLibContains(gRaidToolOutput, u"failed");
}

// The drive is offered as a dedicated spare to every array, each named by
// its position in ArrayList rather than its number (deliberately kept).
// Done when any one command was.
[[nodiscard]] bool MakeSpare(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
                             RAID_PHYSICAL_DRIVE *Drive, UINT32 *ErrorCode) {
  UINT32 Arrays = 0;
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    (VOID)Array;
    if (Arrays < MCHP_MAX_SPARE_ARRAYS) {
      Arrays++;
    }
  }
  bool Done = false;
  for (UINT32 Index = 0; Index < Arrays; Index++) {
    if (RunDriveCommand(Caller, Controller, Drive,
                        u"%S SETSTATE %d DEVICE %d %d HSP ARRAY %d noprompt",
                        Index, ErrorCode)) {
      Done = true;
    }
  }
  return Done;
}

}  // namespace

// Always success with error code 0, also after a failure (deliberately):
// the caller sees the outcome in the drive's record only.
EFI_STATUS MchpSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                     RAID_PHYSICAL_DRIVE *Drive, UINT32 State,
                                     UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (!RaidLibControllerCanRunTool(Controller) || Drive == nullptr ||
      Drive->Position == nullptr ||
      (State != RAID_STATE2_UGOOD && State != RAID_STATE2_DEDICATED)) {
    return EFI_SUCCESS;
  }
  UINT32 RunError = 0;
  if (State == RAID_STATE2_UGOOD) {
    if (RunDriveCommand(__func__, Controller, Drive,
                        u"%S SETSTATE %d DEVICE %d %d RDY", 0, &RunError)) {
      RaidLibMoveDrive(Controller, Drive, nullptr, RAID_STATE2_UGOOD,
                       RAID_ROLE_UNCONFIGURED);
      return EFI_SUCCESS;
    }
  } else if (MakeSpare(__func__, Controller, Drive, &RunError)) {
    RaidLibMoveDrive(Controller, Drive, nullptr, RAID_STATE2_DEDICATED,
                     RAID_ROLE_HOT_SPARE);
    return EFI_SUCCESS;
  }
  RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Failed to change disk state\n");
  return EFI_SUCCESS;
}

// A deliberate no-op for this family: arcconf changes drives one by one.
EFI_STATUS MchpSetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                        UINT32 State, UINT32 *ErrorCode) {
  (VOID)Controller;
  (VOID)State;
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  return EFI_SUCCESS;
}

}  // namespace mchp
