// Pages 6 and 7: the free capacity of an existing disk array, or the RAID
// level and drives of a new one, before the virtual disk editor.
//
// The entries and the page flow are here; the tables, the level choice and
// the drive checks are filled in with the advanced configuration pages.
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

RAID_CONTROL_CALLBACK(RaidAdvSelArrayNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSelArrayBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidConfigTypeSelPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvCreateArrayNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  InitRaidAdvCreateEditVolPage();
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvCreateArrayBackCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Back to config type selection page\n");
  InitRaidConfigTypeSelPage();
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kSelectArrayCommon[] = {
    {RAID_NODE_NEXT, RaidAdvSelArrayNextCallback},
    {RAID_NODE_BACK, RaidAdvSelArrayBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kNewArrayCommon[] = {
    {RAID_NODE_NEXT, RaidAdvCreateArrayNextCallback},
    {RAID_NODE_BACK, RaidAdvCreateArrayBackCallback},
};

}  // namespace

VOID InitRaidAdvArraySelectionPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_ADV_SELECT_ARRAY;
  RaidInstantiatePage(RAID_PAGE_ADV_SELECT_ARRAY);
  RaidShowPage(RAID_PAGE_ADV_SELECT_ARRAY, RAID_NODE_FREE_SEGMENT_TABLE);
}

VOID InitRaidAdvCreateArraySelectionPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_ADV_NEW_ARRAY;
  RaidInstantiatePage(RAID_PAGE_ADV_NEW_ARRAY);
  RaidShowPage(RAID_PAGE_ADV_NEW_ARRAY, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
}

// The free-segment table of page 6, filled in with the page.
VOID ShowTable2() {}

// The RAID level of page 7 chosen again after a language change, filled in
// with the page.
VOID RaidNewArrayLanguageChanged() {}

constinit const RAID_PAGE_CONTROLS gRaidSelectArrayControls = {
    kSelectArrayCommon, 2, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidNewArrayControls = {
    kNewArrayCommon, 2, nullptr, 0};
