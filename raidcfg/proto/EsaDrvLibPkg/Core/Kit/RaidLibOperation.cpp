// A backend's operations: the start of its binding, the readiness before it
// runs its tool, and the re-read after a change.
#include "RaidLibOperation.h"

#include <Protocol/Host/TarnSetup.h>

#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

VOID RaidLibStartOperations(RAID_OPERATIONS *Operations,
                            const CHAR8 *Signature) {
  *Operations = RAID_OPERATIONS{};
  for (UINTN Index = 0;
       Index < RAID_SIGNATURE_SIZE && Signature[Index] != '\0'; Index++) {
    Operations->Signature[Index] = Signature[Index];
  }
}

BOOLEAN RaidLibControllerCanRunTool(const RAID_CONTROLLER *Controller) {
  return (Controller != nullptr && Controller->Private != nullptr &&
          Controller->Capability != nullptr &&
          Controller->Capability->ToolName != nullptr)
             ? TRUE
             : FALSE;
}

EFI_STATUS RaidLibToolAvailable(const CHAR8 *Caller,
                                const RAID_CONTROLLER *Controller,
                                UINT32 *ErrorCode) {
  if (!RaidLibControllerCanRunTool(Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  return RaidLibLocateShellCommand(Caller, ErrorCode);
}

BOOLEAN RaidLibReadIsDue(const CHAR8 *Caller,
                         const RAID_CONTROLLER *Controller, UINT32 *ErrorCode,
                         EFI_STATUS *Status) {
  *ErrorCode = 0;
  if (!RaidLibControllerCanRunTool(Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    *Status = EFI_ABORTED;
    return FALSE;
  }
  if ((Controller->Private->Flags & RAID_FLAG_OUTPUT_VALID) != 0) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a] Info is up to date.\n");
    *Status = EFI_SUCCESS;
    return FALSE;
  }
  return TRUE;
}

EFI_STATUS RaidLibReadyToRunTool(const CHAR8 *Caller,
                                 const RAID_CONTROLLER *Controller,
                                 UINT32 *ErrorCode) {
  EFI_STATUS Status = RaidLibLocateShellCommand(Caller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Controller->Private->CardId == RAID_CARD_ID_UNSET) {
    *ErrorCode = RAID_ERROR_INVALID_CARD_ID;
    return EFI_ABORTED;
  }
  return EFI_SUCCESS;
}

RAID_REFRESH RaidLibRefreshAfterChange(RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode) {
  RAID_REFRESH Refresh = {EFI_ABORTED, RAID_ERROR_MISSING};
  RAID_GET_CONTROLLER_INFO Read =
      Controller->Private->Operations.GetControllerInfo;
  if (Read != nullptr) {
    Refresh.ErrorCode = 0;
    Refresh.Status = Read(Controller, nullptr, &Refresh.ErrorCode);
  }
  if (*ErrorCode == 0) {
    *ErrorCode = Refresh.ErrorCode;
  }
  return Refresh;
}

VOID RaidLibRefreshAfterDelete(const CHAR8 *Caller,
                               RAID_CONTROLLER *Controller, UINT32 *ErrorCode) {
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  if (RaidLibRefreshFailed(Refresh)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                      "[%a] Failed to refresh controller information, Status: "
                      "%r, Error code: 0x%x\n",
                      Refresh.Status, Refresh.ErrorCode);
  }
}
