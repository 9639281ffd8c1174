// Deleting volumes with storcli ("/cN/vM del force"): one volume, or every
// volume of an array, which removes the array with its last volume. A
// deletion whose command line does not fit is refused before anything runs
// (RAID_ERROR_BUFFER_TOO_SMALL), without a re-read: nothing changed.
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

// The controller behind an array, complete enough to build commands.
[[nodiscard]] RAID_CONTROLLER *UsableController(RAID_ARRAY *Array) {
  if (Array == nullptr || !RaidLibControllerCanRunTool(Array->Controller)) {
    return nullptr;
  }
  return Array->Controller;
}

// The deletion command's buffer: the runner's short command line.
constexpr UINTN kDeleteChars = RAID_TOOL_COMMAND_SIZE / sizeof(CHAR16);
typedef CHAR16 DELETE_LINE[kDeleteChars];

// Formats the deletion of one volume; refused (traced, error code set) when
// the line does not fit, since a cut "/v12" would name volume 1.
[[nodiscard]] EFI_STATUS FormatDelete(const CHAR8 *Caller,
                                      RAID_CONTROLLER *Controller,
                                      UINT32 VolumeId, DELETE_LINE Line,
                                      UINT32 *ErrorCode) {
  return RaidLibFormatCommand(Caller, Line, kDeleteChars, LSI_TOOL_WORDS,
                              ErrorCode,
                              u"%S /c%u/v%u del force mronly nolog",
                              Controller->Capability->ToolName,
                              Controller->Private->CardId, VolumeId);
}

// Runs one formatted deletion; the verdict lands in *ErrorCode.
[[nodiscard]] EFI_STATUS DeleteOne(const CHAR8 *Caller,
                                   RAID_CONTROLLER *Controller,
                                   const DELETE_LINE Line, UINT32 *ErrorCode) {
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(RaidLibSharedRun(Caller), ErrorCode, u"%s", Line));
  EFI_STATUS Status = ParseErrCd(gRaidToolOutput, ErrorCode);
  RaidLibMarkOutputStale(Controller);
  return Status;
}

}  // namespace

// Deletes every volume of the array, in list order, even after a failure;
// the error code holds the last verdict.
EFI_STATUS LsiDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller = UsableController(Array);
  if (Controller == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RaidLibReadyToRunTool(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  // Every deletion is formatted whole before the first one runs, so a
  // refused line never leaves the array half deleted.
  DELETE_LINE Line;
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume == 1) {
      Status = FormatDelete(__func__, Controller, Volume->Id, Line, ErrorCode);
      if (EFI_ERROR(Status)) {
        return Status;
      }
    }
  }
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume == 1) {
      Status = FormatDelete(__func__, Controller, Volume->Id, Line, ErrorCode);
      if (!EFI_ERROR(Status)) {
        Status = DeleteOne(__func__, Controller, Line, ErrorCode);
      }
    }
  }
  // The refresh frees Array: it is not touched after this point.
  RaidLibRefreshAfterDelete(__func__, Controller, ErrorCode);
  return Status;
}

// Deletes one volume.
EFI_STATUS LsiDeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Volume != nullptr ? UsableController(Volume->Array) : nullptr;
  if (Controller == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Controller id: %d, Array id: %d\n",
                 Controller->Id, Volume->Array->Id);
  EFI_STATUS Status = RaidLibReadyToRunTool(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  DELETE_LINE Line;
  Status = FormatDelete(__func__, Controller, Volume->Id, Line, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Status = DeleteOne(__func__, Controller, Line, ErrorCode);
  RaidLibRefreshAfterDelete(__func__, Controller, ErrorCode);
  return Status;
}

}  // namespace lsi
