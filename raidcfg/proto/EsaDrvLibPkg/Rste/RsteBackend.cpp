// The Intel backend's binding, its module-wide state and the steps every
// operation shares: the tool search, readiness, the verdict codes and the
// re-read after a change.
#include "RsteBackend.h"

#include <Protocol/Host/TarnSetup.h>

#include "RaidBackends.h"
#include "RaidLibOperation.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace rste {

constinit const CHAR16 *const gRsteToolCandidates[] = {
    u"RCfgSata.efi",     u"RCfgSata_V55.efi", u"RCfgSata_V53.efi",
    u"RCfgSata_V52.efi", u"RCfgSata_V50.efi", nullptr};
constinit const CHAR16 *gRsteTool = u"RCfgSata.efi";
constinit UINT8 gRsteToolSelected = 0;
constinit UINT8 gRsteVrocLayout = 1;

VOID RsteResetState() {
  gRsteTool = gRsteToolCandidates[0];
  gRsteToolSelected = 0;
  gRsteVrocLayout = 1;
}

VOID RsteBindBackend(RAID_OPERATIONS *Operations) {
  RaidLibStartOperations(Operations, RAID_SIGNATURE_RSTE);
  Operations->GetCardId = RsteGetCardId;
  Operations->GetControllerInfo = RsteGetControllerInfo;
  Operations->DeleteArray = RsteDeleteArray;
  Operations->DeleteVolume = RsteDeleteVolume;
  Operations->CreateVolume = RsteCreateVolume;
  Operations->SetPhysicalDriveState = RsteSetPhysicalDriveState;
  Operations->SetAllPhysicalDriveState = RsteSetAllPhysicalDriveState;
}

// Each build of the tool answers "/V" only beside the driver it was made
// for; the first that introduces itself as Intel's is kept for the
// module's life. With none answering, the first name stays.
VOID RsteToolInit() {
  gRsteTool = gRsteToolCandidates[0];
  for (UINTN Index = 0; gRsteToolCandidates[Index] != nullptr; Index++) {
    UINT32 RunCode = 0;
    RaidLibOutputJudgedByCaller(
        RaidLibRunTool(RaidLibSharedRun(__func__), &RunCode, u"%S /V",
                       gRsteToolCandidates[Index]));
    if (RaidLibStartsWith(gRaidToolOutput, u"Intel(R)")) {
      gRsteTool = gRsteToolCandidates[Index];
      RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Setup the tool to %S\n", gRsteTool);
      break;
    }
  }
  gRaidToolOutput[0] = 0;
  gRsteToolSelected = 1;
}

EFI_STATUS RsteReady(const CHAR8 *Caller, UINT32 *ErrorCode) {
  EFI_STATUS Status = RaidLibLocateShellCommand(Caller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (gRsteToolSelected == 0) {
    RsteToolInit();
  }
  return EFI_SUCCESS;
}

// The engine is the only one its tool sees: it is always card 0.
EFI_STATUS RsteGetCardId(RAID_CONTROLLER *Controller, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (Controller == nullptr || Controller->Private == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  Controller->Private->CardId = 0;
  return EFI_SUCCESS;
}

EFI_STATUS RsteSetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                        UINT32 State, UINT32 *ErrorCode) {
  (VOID)Controller;
  (VOID)State;
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO,
                 "[%a]RSTe card does not support this functionality.\n");
  return EFI_SUCCESS;
}

UINT32 RsteErrorCodeOfKind(UINT32 Kind) {
  switch (Kind) {
    case RSTE_KIND_DRIVE_STATE:
      return RSTE_ERROR_DRIVE_STATE;
    case RSTE_KIND_DELETE_ARRAY:
    case RSTE_KIND_DELETE_VOLUME:
      return RSTE_ERROR_DELETE;
    case RSTE_KIND_CREATE_NEW:
    case RSTE_KIND_CREATE_EXISTING:
      return RSTE_ERROR_CREATE;
    default:
      return RSTE_ERROR_OTHER;
  }
}

EFI_STATUS RsteRefresh(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
                       UINT32 *ErrorCode) {
  RaidLibMarkOutputStale(Controller);
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Error code 0x%x, status = %r.\n",
                    *ErrorCode, Refresh.Status);
  return Refresh.Status;
}

}  // namespace rste
