// Changing drive states with storcli: one drive (the model is edited in
// place, without a re-read) or every drive at once (followed by a re-read).
// A drive is addressed by its enclosure and slot.
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibModelBuild.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

constexpr const CHAR16 *kDriveFormat = u"%S /c%u/e%u/s%u %s mronly nolog";
constexpr const CHAR16 *kForeignDeleteFormat =
    u"%S /c%u/fall delete mronly nolog";
// Every action a change of one drive's state may run.
constexpr const CHAR16 *kDriveActions[] = {
    u"delete hotsparedrive", u"del jbod force", u"set jbod",
    u"add hotsparedrive",    u"set missing",    u"set online",
    u"set offline"};

// TRUE when every command a change of this drive may run fits its buffer,
// so that a change of two commands never stops after the first; else the
// refusal is traced and in *ErrorCode.
[[nodiscard]] bool DriveCommandsFit(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    RAID_PHYSICAL_DRIVE *Drive,
                                    UINT32 *ErrorCode) {
  const CHAR16 *Tool = Controller->Capability->ToolName;
  UINT32 CardId = Controller->Private->CardId;
  CHAR16 Line[LSI_DRIVE_COMMAND_CHARS];
  for (const CHAR16 *Action : kDriveActions) {
    if (EFI_ERROR(RaidLibFormatCommand(Caller, Line, LSI_DRIVE_COMMAND_CHARS,
                                       LSI_TOOL_WORDS, ErrorCode, kDriveFormat,
                                       Tool, CardId,
                                       Drive->Position->Values[LSI_POSITION_ENCLOSURE],
                                       Drive->Position->Values[LSI_POSITION_SLOT], Action))) {
      return false;
    }
  }
  return !EFI_ERROR(RaidLibFormatCommand(Caller, Line, LSI_DRIVE_COMMAND_CHARS,
                                         LSI_TOOL_WORDS, ErrorCode,
                                         kForeignDeleteFormat, Tool, CardId));
}

// The verdict of the drive command just run. The shared output is never
// NULL, so the parse always leaves its verdict in Result.
[[nodiscard]] bool DriveCommandSucceeded(RAID_CONTROLLER *Controller) {
  UINT32 Result = LSI_ACTION_FAILED;
  (VOID) ParseActionStatus(gRaidToolOutput, Controller, &Result);
  return Result == LSI_ACTION_SUCCEEDED;
}

// Runs "<tool> /cN/eE/sS <Action> mronly nolog"; TRUE when the tool said
// success.
[[nodiscard]] bool RunOnDrive(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
                              RAID_PHYSICAL_DRIVE *Drive, const CHAR16 *Action,
                              UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, LSI_DRIVE_COMMAND_CHARS), ErrorCode,
      kDriveFormat, Controller->Capability->ToolName,
      Controller->Private->CardId,
      Drive->Position->Values[LSI_POSITION_ENCLOSURE],
      Drive->Position->Values[LSI_POSITION_SLOT], Action));
  return DriveCommandSucceeded(Controller);
}

// Clears the adapter's foreign configuration ("/fall delete").
[[nodiscard]] bool RunForeignDelete(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, LSI_DRIVE_COMMAND_CHARS), ErrorCode,
      kForeignDeleteFormat, Controller->Capability->ToolName,
      Controller->Private->CardId));
  return DriveCommandSucceeded(Controller);
}

// A global hot spare that is no longer one: back to the unconfigured list.
VOID MoveSpareToUnconfigured(RAID_CONTROLLER *Controller,
                             RAID_PHYSICAL_DRIVE *Drive) {
  RaidLibMoveDrive(Controller, Drive, nullptr, RAID_STATE_UGOOD,
                   RAID_ROLE_UNCONFIGURED);
}

// A drive that became a global hot spare.
VOID MoveToSpares(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive) {
  RaidLibMoveDrive(Controller, Drive, nullptr, RAID_STATE_GHS,
                   RAID_ROLE_HOT_SPARE);
}

// To unconfigured good, by the drive's current state.
VOID MakeUnconfiguredGood(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
                          RAID_PHYSICAL_DRIVE *Drive, UINT32 *ErrorCode) {
  switch (Drive->State) {
    case RAID_STATE_GHS:
      if (!RunOnDrive(Caller, Controller, Drive, u"delete hotsparedrive", ErrorCode)) {
        *ErrorCode = LSI_ERROR_DRIVE_COMMAND;
        return;
      }
      MoveSpareToUnconfigured(Controller, Drive);
      return;
    case RAID_STATE_UGOOD_FOREIGN:
      if (!RunForeignDelete(Caller, Controller, ErrorCode)) {
        *ErrorCode = LSI_ERROR_DRIVE_COMMAND;
        return;
      }
      break;
    case RAID_STATE_UBAD_FOREIGN:
      if (!RunOnDrive(Caller, Controller, Drive, u"del jbod force", ErrorCode) ||
          !RunForeignDelete(Caller, Controller, ErrorCode)) {
        *ErrorCode = LSI_ERROR_DRIVE_COMMAND;
        return;
      }
      break;
    default:
      if (!RunOnDrive(Caller, Controller, Drive, u"del jbod force", ErrorCode)) {
        *ErrorCode = LSI_ERROR_DRIVE_COMMAND;
        return;
      }
      break;
  }
  Drive->State = RAID_STATE_UGOOD;
}

// To JBOD; a global hot spare is released first. The model shows JBOD
// even when that release fails.
VOID MakeJbod(const CHAR8 *Caller, RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
              UINT32 *ErrorCode) {
  if (Drive->State == RAID_STATE_GHS) {
    if (!RunOnDrive(Caller, Controller, Drive, u"delete hotsparedrive", ErrorCode)) {
      Drive->Role = RAID_ROLE_UNCONFIGURED;
      Drive->State = RAID_STATE_JBOD;
      *ErrorCode = LSI_ERROR_DELETE_HOT_SPARE;
      return;
    }
    MoveSpareToUnconfigured(Controller, Drive);
  }
  // Deliberately not judged: the model shows JBOD whatever the tool said.
  (VOID) RunOnDrive(Caller, Controller, Drive, u"set jbod", ErrorCode);
  Drive->Role = RAID_ROLE_UNCONFIGURED;
  Drive->State = RAID_STATE_JBOD;
}

// To global hot spare; a JBOD drive becomes unconfigured good first.
VOID MakeGlobalSpare(const CHAR8 *Caller, RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                     UINT32 *ErrorCode) {
  if (Drive->State == RAID_STATE_JBOD) {
    if (!RunOnDrive(Caller, Controller, Drive, u"del jbod force", ErrorCode)) {
      *ErrorCode = LSI_ERROR_DRIVE_COMMAND;
      return;
    }
    Drive->State = RAID_STATE_UGOOD;
  }
  if (!RunOnDrive(Caller, Controller, Drive, u"add hotsparedrive", ErrorCode)) {
    *ErrorCode = LSI_ERROR_ADD_HOT_SPARE;
    return;
  }
  MoveToSpares(Controller, Drive);
}

// Missing, online, offline: the state changes only when the tool agrees,
// and a refusal is not reported.
VOID SetSimpleState(const CHAR8 *Caller, RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                    const CHAR16 *Action, UINT32 NewState) {
  UINT32 RunError = 0;
  if (RunOnDrive(Caller, Controller, Drive, Action, &RunError)) {
    Drive->State = NewState;
  }
}

// Runs the commands of one change by the target state.
VOID ChangeState(const CHAR8 *Caller, RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                 UINT32 State, UINT32 *ErrorCode) {
  switch (State) {
    case RAID_STATE_UGOOD:
      MakeUnconfiguredGood(Caller, Controller, Drive, ErrorCode);
      break;
    case RAID_STATE_MISSING:
      SetSimpleState(Caller, Controller, Drive, u"set missing", RAID_STATE_MISSING);
      break;
    case RAID_STATE_JBOD:
      MakeJbod(Caller, Controller, Drive, ErrorCode);
      break;
    case RAID_STATE_GHS:
      MakeGlobalSpare(Caller, Controller, Drive, ErrorCode);
      break;
    case RAID_STATE_ONLINE:
      SetSimpleState(Caller, Controller, Drive, u"set online", RAID_STATE_ONLINE);
      break;
    case RAID_STATE_OFFLINE:
      SetSimpleState(Caller, Controller, Drive, u"set offline", RAID_STATE_OFFLINE);
      break;
    default:
      *ErrorCode = LSI_ERROR_INVALID_STATE;
      break;
  }
}

}  // namespace

// Changes one drive's state and edits the model to match, deliberately
// without re-reading the adapter. On a failure the status is the error
// code's low byte, without the error bit, also deliberately: callers judge
// by the error code alone, so neither rule may be "corrected".
EFI_STATUS LsiSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                    RAID_PHYSICAL_DRIVE *Drive, UINT32 State,
                                    UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (!RaidLibControllerCanRunTool(Controller) || Drive == nullptr ||
      Drive->Position == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  // A refused command line leaves nothing run; the error code says why.
  if (DriveCommandsFit(__func__, Controller, Drive, ErrorCode)) {
    ChangeState(__func__, Controller, Drive, State, ErrorCode);
  }
  EFI_STATUS Status =
      *ErrorCode == 0 ? EFI_SUCCESS : static_cast<EFI_STATUS>(*ErrorCode & 0xFF);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] ErrorCode: 0x%x, Status = %r.\n",
                 *ErrorCode, Status);
  return Status;
}

// Changes every drive to unconfigured good or JBOD, then re-reads the
// controller; the tool's verdict is not judged.
EFI_STATUS LsiSetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                       UINT32 State, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  EFI_STATUS Status = RaidLibToolAvailable(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  UINT32 CardId = Controller->Private->CardId;
  RAID_TOOL_RUN Run = RaidLibSharedRun(__func__, LSI_DRIVE_COMMAND_CHARS);
  // The output of either command is deliberately not judged: the re-read
  // shows what the adapter made of it.
  if (State == RAID_STATE_UGOOD) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] execute the LSI_STATE_UGOOD \n");
    RaidLibOutputJudgedByCaller(RaidLibRunTool(
        Run, ErrorCode, u"%S /c%u/eall/sall del jbod force mronly nolog", Tool,
        CardId));
  } else if (State == RAID_STATE_JBOD) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] execute the LSI_STATE_JBOD \n");
    RaidLibOutputJudgedByCaller(RaidLibRunTool(
        Run, ErrorCode, u"%S /c%u/eall/sall set jbod mronly nolog", Tool,
        CardId));
  } else {
    *ErrorCode = LSI_ERROR_INVALID_STATE;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a] execute the default INVALID_RAID_STATE \n");
  }
  RaidLibMarkOutputStale(Controller);
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  if (RaidLibRefreshFailed(Refresh)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a] Failed to refresh controller information\n");
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Error code: 0x%x, status = %r.\n",
                 *ErrorCode, Refresh.Status);
  return Refresh.Status;
}

}  // namespace lsi
