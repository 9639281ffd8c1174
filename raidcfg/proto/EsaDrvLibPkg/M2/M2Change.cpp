// Changing an M.2 adapter: creating a volume over the chosen drives and
// deleting volumes. The tool's output of a change is not judged: a change
// the adapter refused shows as an unchanged model after the re-read.
#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "M2Backend.h"
#include "RaidLibController.h"
#include "RaidLibOperation.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace m2 {

namespace {

// The member drives' ids joined by "," ("0,1"). A list that does not fit
// is never cut, since a cut id names another drive: the create is refused.
[[nodiscard]] EFI_STATUS JoinDriveIds(const CHAR8 *Caller,
                                      const RAID_VOLUME_PARAMETER *Parameter,
                                      CHAR16 *List, UINT32 *ErrorCode) {
  List[0] = 0;
  UINTN Length = 0;
  for (UINT32 Index = 0; Index < Parameter->DriveCount &&
                         Parameter->DriveList[Index] != RAID_DRIVE_LIST_END;
       Index++) {
    if (!RaidLibFormat(List + Length, M2_DRIVE_LIST_CHARS - Length,
                       Index == 0 ? u"%u" : u",%u",
                       Parameter->DriveList[Index])) {
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                        "[%a]Drive list does not fit in %u characters, not "
                        "run\n",
                        static_cast<UINT32>(M2_DRIVE_LIST_CHARS));
      List[0] = 0;
      *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
      return EFI_BUFFER_TOO_SMALL;
    }
    Length += StrLen(List + Length);
  }
  return EFI_SUCCESS;
}

[[nodiscard]] bool HasMembers(const RAID_VOLUME_PARAMETER *Parameter) {
  return Parameter->DriveList != nullptr && Parameter->DriveCount != 0 &&
         Parameter->DriveList[0] != RAID_DRIVE_LIST_END;
}

// Runs the create command for the parameter's drives.
VOID RunCreate(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
               const RAID_VOLUME_PARAMETER *Parameter, UINT32 *ErrorCode) {
  CHAR16 Drives[M2_DRIVE_LIST_CHARS];
  if (EFI_ERROR(JoinDriveIds(Caller, Parameter, Drives, ErrorCode))) {
    return;
  }
  // A name that is no one word would shift "-b" into the name, or end the
  // options early: the create is refused.
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, M2_CREATE_COMMAND_CHARS, M2_TOOL_WORDS),
      ErrorCode,
      u"%S %d create -o vd -r%d -d %S -n %W -b %d --waiveconfirmation",
      Controller->Capability->ToolName, Controller->Private->CardId,
      static_cast<UINT32>(Parameter->RaidLevel), Drives, Parameter->Name,
      Parameter->StripeSize));
}

// Deletes one volume by its Id and re-reads the adapter; the re-read's
// status is returned and its error code taken when the own one is 0.
[[nodiscard]] EFI_STATUS DeleteById(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    UINT32 VolumeId, UINT32 *ErrorCode) {
  EFI_STATUS Status = RaidLibToolAvailable(Caller, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, M2_COMMAND_CHARS), ErrorCode,
      u"%S %d delete -o vd -i %d -f --waiveconfirmation",
      Controller->Capability->ToolName, Controller->Private->CardId,
      VolumeId));
  RaidLibMarkOutputStale(Controller);
  return RaidLibRefreshAfterChange(Controller, ErrorCode).Status;
}

// The controller behind an array, or NULL.
[[nodiscard]] RAID_CONTROLLER *ControllerOf(const RAID_ARRAY *Array) {
  return Array != nullptr ? Array->Controller : nullptr;
}

}  // namespace

EFI_STATUS M2CreateVolume(RAID_VOLUME_PARAMETER *Parameter, UINTN Reserved,
                          UINT32 *ErrorCode) {
  (VOID)Reserved;
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Parameter != nullptr ? RaidLibGetController(Parameter->ControllerId)
                           : nullptr;
  if (!RaidLibControllerCanRunTool(Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Not find controller.\n");
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RaidLibToolAvailable(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (HasMembers(Parameter)) {
    RunCreate(__func__, Controller, Parameter, ErrorCode);
  } else {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]No Free Physical Drives!\n");
    *ErrorCode = M2_ERROR_NO_FREE_DRIVES;
  }
  RaidLibMarkOutputStale(Controller);
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Error code: 0x%x, status = %r\n",
                 *ErrorCode, Refresh.Status);
  return Refresh.Status;
}

// Deletes the array's first volume only: an M.2 adapter holds one volume,
// and this is kept deliberately even when the report lists more.
EFI_STATUS M2DeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller = ControllerOf(Array);
  UINT32 VolumeId = 0;
  if (Array != nullptr) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume == 1) {
        VolumeId = Volume->Id;
        break;
      }
    }
  }
  // The re-read frees Array: it is not touched after this point.
  EFI_STATUS Status = DeleteById(__func__, Controller, VolumeId, ErrorCode);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Error code 0x%x, status = %r.\n",
                 *ErrorCode, Status);
  return Status;
}

EFI_STATUS M2DeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Volume != nullptr ? ControllerOf(Volume->Array) : nullptr;
  UINT32 VolumeId = Volume != nullptr ? Volume->Id : 0;
  EFI_STATUS Status = DeleteById(__func__, Controller, VolumeId, ErrorCode);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Error code: 0x%x, status = %r\n",
                 *ErrorCode, Status);
  return Status;
}

EFI_STATUS M2SetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                   RAID_PHYSICAL_DRIVE *Drive, UINT32 State,
                                   UINT32 *ErrorCode) {
  (VOID)Controller;
  (VOID)Drive;
  (VOID)State;
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO,
                 "[%a]M.2 card does not support this functionality.\n");
  return EFI_SUCCESS;
}

EFI_STATUS M2SetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                      UINT32 State, UINT32 *ErrorCode) {
  (VOID)Controller;
  (VOID)State;
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO,
                 "[%a]M.2 card does not support this functionality.\n");
  return EFI_SUCCESS;
}

}  // namespace m2
