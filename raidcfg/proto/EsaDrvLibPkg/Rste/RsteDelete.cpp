// Deleting volumes by name ("/D:<name>"): one volume, or each volume of an
// array in order, stopping at the first failure.
//
// A name read back from the tool can hold what the operator could never
// type. The tool takes the word after "/D:" up to the next blank or switch,
// so a name that is no one word for it (RSTE_TOOL_WORDS), or one whose line
// does not fit, would name another volume or none: such a delete is
// refused and nothing runs.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"

namespace rste {

namespace {

typedef CHAR16 DELETE_LINE[RSTE_SHORT_COMMAND_CHARS];

// Formats the deletion of Volume; FALSE (traced, the delete error code set)
// when its name cannot reach the tool whole.
[[nodiscard]] bool FormatDelete(const CHAR8 *Caller, const RAID_VOLUME *Volume,
                                DELETE_LINE Line, UINT32 *ErrorCode) {
  if (EFI_ERROR(RaidLibFormatCommand(Caller, Line, RSTE_SHORT_COMMAND_CHARS,
                                     RSTE_TOOL_WORDS, ErrorCode,
                                     u"%S /Y /D:%W", gRsteTool,
                                     Volume->Name))) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                      "[%a]Volume %d: its name cannot be passed to the tool "
                      "as one word, not deleted\n",
                      Volume->Id);
    *ErrorCode = RSTE_ERROR_DELETE;
    return false;
  }
  return true;
}

// Runs one formatted deletion and judges it.
[[nodiscard]] EFI_STATUS DeleteOne(const CHAR8 *Caller, const DELETE_LINE Line,
                                   UINT32 Kind, UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(RaidLibSharedRun(Caller), ErrorCode, u"%s", Line));
  return ParseError(gRaidToolOutput, Kind, ErrorCode);
}

[[nodiscard]] RAID_CONTROLLER *ControllerOf(const RAID_ARRAY *Array) {
  if (Array == nullptr || Array->Controller == nullptr ||
      Array->Controller->Private == nullptr) {
    return nullptr;
  }
  return Array->Controller;
}

}  // namespace

EFI_STATUS RsteDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller = ControllerOf(Array);
  if (Controller == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RsteReady(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  bool Ran = false;
  DELETE_LINE Line;
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume != 1) {
      continue;
    }
    if (!FormatDelete(__func__, Volume, Line, ErrorCode)) {
      break;
    }
    Ran = true;
    Status = DeleteOne(__func__, Line, RSTE_KIND_DELETE_ARRAY, ErrorCode);
    if (EFI_ERROR(Status) || *ErrorCode != 0) {
      RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Failed to execute command\n");
      break;
    }
  }
  if (!Ran && *ErrorCode != 0) {
    return EFI_ABORTED;  // refused before anything ran: the model is current
  }
  // The re-read frees Array: it is not touched after this point.
  return RsteRefresh(__func__, Controller, ErrorCode);
}

EFI_STATUS RsteDeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Volume != nullptr ? ControllerOf(Volume->Array) : nullptr;
  if (Controller == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RsteReady(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  DELETE_LINE Line;
  if (!FormatDelete(__func__, Volume, Line, ErrorCode)) {
    return EFI_ABORTED;
  }
  Status = DeleteOne(__func__, Line, RSTE_KIND_DELETE_VOLUME, ErrorCode);
  if (EFI_ERROR(Status) || *ErrorCode != 0) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Failed to execute the command\n");
  }
  return RsteRefresh(__func__, Controller, ErrorCode);
}

}  // namespace rste
