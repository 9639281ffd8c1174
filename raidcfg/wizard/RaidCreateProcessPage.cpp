// Pages 5 and 10: the creation of the planned virtual disks, one result row
// per disk, and the return to the adapter page.
//
// The entry, the freeing of the page and its Next are here; the creation
// steps and the result rows are filled in with the creation page.
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

RAID_CONTROL_CALLBACK(_RaidCreateVolProcessNextButtonCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  RaidFreeCreateVolProcessPage();
  gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED] = 0;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Show controller selection page\n");
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, 0);
  return EFI_SUCCESS;
}

constexpr HOST_CONTROL_DESCRIPTOR kCreateCommon[] = {
    {RAID_NODE_NEXT, _RaidCreateVolProcessNextButtonCallback},
};

}  // namespace

VOID InitRaidCreateVolProcessPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = RAID_PAGE_CREATE_VOLUMES;
  RaidInstantiatePage(RAID_PAGE_CREATE_VOLUMES);
  RaidShowPage(RAID_PAGE_CREATE_VOLUMES, RAID_NODE_NEXT);
}

VOID RaidFreeCreateVolProcessPage() {
  FreeRaidStaticPageNodes(&gRaidPageRoots[RAID_PAGE_CREATE_VOLUMES],
                          RaidPageTemplate(RAID_PAGE_CREATE_VOLUMES));
}

constinit const RAID_PAGE_CONTROLS gRaidCreationRunningControls = {
    nullptr, 0, nullptr, 0};
constinit const RAID_PAGE_CONTROLS gRaidCreateVolumesControls = {
    kCreateCommon, 1, nullptr, 0};
