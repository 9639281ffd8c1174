// Deleting an array or one logical drive with arcconf. The tool's answer is
// not read: the re-read afterwards shows whether the adapter did it.
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp {

namespace {

// Runs one deletion of Object (an array or a logical drive number) and
// re-reads the adapter. A refresh that fails is traced; its error code is
// passed on only when the deletion left none. Always success once run.
[[nodiscard]] EFI_STATUS DeleteAndRefresh(const CHAR8 *Caller,
                                          RAID_CONTROLLER *Controller,
                                          const CHAR16 *Format, UINT32 Object,
                                          UINT32 *ErrorCode) {
  EFI_STATUS Status = RaidLibReadyToRunTool(Caller, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      RaidLibSharedRun(Caller, MCHP_DELETE_COMMAND_CHARS), ErrorCode, Format,
      Controller->Capability->ToolName, Controller->Private->CardId, Object));
  RaidLibMarkOutputStale(Controller);
  RaidLibRefreshAfterDelete(Caller, Controller, ErrorCode);
  return EFI_SUCCESS;
}

}  // namespace

EFI_STATUS MchpDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (Array == nullptr || !RaidLibControllerCanRunTool(Array->Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  // The refresh frees Array: its number is taken before.
  return DeleteAndRefresh(__func__, Array->Controller,
                          u"%S DELETE %d ARRAY %d noprompt", Array->Id,
                          ErrorCode);
}

EFI_STATUS MchpDeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (Volume == nullptr || Volume->Array == nullptr ||
      !RaidLibControllerCanRunTool(Volume->Array->Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  RAID_CONTROLLER *Controller = Volume->Array->Controller;
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Controller id: %d, Array id: %d\n",
                 Controller->Id, Volume->Array->Id);
  return DeleteAndRefresh(__func__, Controller,
                          u"%S DELETE %d LOGICALDRIVE %d noprompt", Volume->Id,
                          ErrorCode);
}

}  // namespace mchp
