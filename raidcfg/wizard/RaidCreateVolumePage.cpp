// Page 8 and its pop-up: the virtual disks planned on the chosen disk
// array, created, edited and removed before they are verified.
//
// The entry and the page flow are here; the planned table, the buttons and
// the pop-up's fields are filled in with the virtual disk editor.
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

RAID_CONTROL_CALLBACK(RaidAdvCreateEditVolNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Show table 5\n");
  InitRaidAdvSummaryPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvCreateEditVolBackCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (gRaidAdvancedMode == 1) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Back into RAID array select page\n");
    gRaidCurrentPage = RAID_PAGE_ADV_SELECT_ARRAY;
    RaidShowPage(RAID_PAGE_ADV_SELECT_ARRAY, RAID_NODE_FREE_SEGMENT_TABLE);
  } else {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Back into RAID level and disk drive select page\n");
    gRaidCurrentPage = RAID_PAGE_ADV_NEW_ARRAY;
    RaidShowPage(RAID_PAGE_ADV_NEW_ARRAY, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
  }
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kEditCommon[] = {
    {RAID_NODE_NEXT, RaidAdvCreateEditVolNextCallback},
    {RAID_NODE_BACK, RaidAdvCreateEditVolBackCallback},
};

}  // namespace

VOID InitRaidAdvCreateEditVolPage() {
  gRaidCurrentPage = RAID_PAGE_ADV_EDIT_VOLUME;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  RaidInstantiatePage(RAID_PAGE_ADV_EDIT_VOLUME);
  RaidShowPage(RAID_PAGE_ADV_EDIT_VOLUME, 0);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n\n");
}

// The planned virtual disk table of page 8, filled in with the page.
VOID ShowTable4() {}

constinit const RAID_PAGE_CONTROLS gRaidEditVolumesControls = {
    kEditCommon, 2, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidVolumePopupControls = {
    nullptr, 0, nullptr, 0};
