// The retry of a failed adapter discovery, armed as page 0's page-enter
// callback by the first page.
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

// Runs the discovery again ("B" and "A" time stamps around it). On a
// failure with a non-zero error code the error box is shown once more; else
// the wizard is built again, its first page reading the adapters anew.
UINTN EFIAPI Init_Raid() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] B TimeStamp: %016llx\n",
             RaidReadTimeStamp());
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = InitializeRaidService(&ErrorCode);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] A TimeStamp: %016lx\n",
             RaidReadTimeStamp());
  gRaidInitializeStatus = Status;
  gRaidInitializeErrorCode = ErrorCode;
  if (EFI_ERROR(Status) && ErrorCode != 0) {
    ShowRaidErrorBox(ErrorCode);
    return 0;
  }
  // The failed start left page 1 in its no-adapter form, and the page is
  // built only when it does not exist: it goes, so that the wizard is built
  // afresh and lists the adapters just found.
  if (gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION] != nullptr) {
    FreeRaidStaticPageNodes(&gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION],
                            RaidPageTemplate(RAID_PAGE_CONTROLLER_SELECTION));
  }
  InitializeRaidSetupWizards();
  return 0;
}
