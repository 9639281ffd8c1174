// Pages 4 and 9: the settings to be created, verified before the creation
// page starts (page 4 after simple configuration, page 9 after advanced).
//
// The entries, the confirmation and the page flow are here; the labels and
// the verify table are filled with the configuration pages.
#include <strings/RaidcfgStrings.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

// Asks whether to create the planned virtual disks.
BOOLEAN ConfirmCreation() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  return RaidMessageBox(HOST_MSGBOX_YES_NO, STR_CONFIRMATION_TITLE,
                        STR_CONFIRM_CREATE, nullptr);
}

RAID_CONTROL_CALLBACK(_RaidVerifySummaryNextButtonCallback) {
  (void)Node;
  (void)Event;
  if (!ConfirmCreation()) {
    RaidShowPage(RAID_PAGE_SIMPLE_VERIFY, 0);
    return EFI_SUCCESS;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Set the volume capacity to 0\n");
  // Size 0 asks the adapter for all of the free capacity.
  RAID_VOLUME_PARAMETER *Planned = RaidVolumeParameterQueue();
  if (Planned != nullptr) {
    Planned->Size = 0;
  }
  InitRaidCreateVolProcessPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSummaryNextCallback) {
  (void)Node;
  (void)Event;
  if (!ConfirmCreation()) {
    RaidShowPage(RAID_PAGE_ADV_VERIFY, 0);
    return EFI_SUCCESS;
  }
  InitRaidCreateVolProcessPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidVerifySummaryBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidSimpleLevelPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSummaryBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kSimpleCommon[] = {
    {RAID_NODE_NEXT, _RaidVerifySummaryNextButtonCallback},
    {RAID_NODE_BACK, RaidVerifySummaryBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kAdvancedCommon[] = {
    {RAID_NODE_NEXT, RaidAdvSummaryNextCallback},
    {RAID_NODE_BACK, RaidAdvSummaryBackCallback},
};

}  // namespace

VOID InitRaidVerifySummaryPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_SIMPLE_VERIFY;
  if (RaidPageRoot(RAID_PAGE_SIMPLE_VERIFY) == nullptr) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] verify page will be created\n");
    RaidInstantiatePage(RAID_PAGE_SIMPLE_VERIFY);
  }
  RaidShowPage(RAID_PAGE_SIMPLE_VERIFY, RAID_NODE_NEXT);
}

VOID InitRaidAdvSummaryPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_ADV_VERIFY;
  RaidInstantiatePage(RAID_PAGE_ADV_VERIFY);
  RaidShowPage(RAID_PAGE_ADV_VERIFY, RAID_NODE_NEXT);
}

constinit const RAID_PAGE_CONTROLS gRaidSimpleVerifyControls = {
    kSimpleCommon, 2, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidAdvancedVerifyControls = {
    kAdvancedCommon, 2, nullptr, 0};
