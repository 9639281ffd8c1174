// The pages' entries and control callbacks, one group per page file, and
// the control table each page registers with the host.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

// A page's control table: its common controls (Next, Back) and its own.
typedef struct {
  const HOST_CONTROL_DESCRIPTOR *Common;
  UINTN CommonCount;
  const HOST_CONTROL_DESCRIPTOR *Own;
  UINTN OwnCount;
} RAID_PAGE_CONTROLS;

// The control table of Page (12 gives page 1's); NULL for an unknown page.
[[nodiscard]] const RAID_PAGE_CONTROLS *RaidPageControls(UINT32 Page);

// A control callback. Every one answers EFI_SUCCESS, so a callback that
// runs another for its effect on the page has no status to look at.
#define RAID_CONTROL_CALLBACK(Name) \
  EFI_STATUS EFIAPI Name(HOST_PAGE_NODE *Node, const HOST_CONTROL_EVENT *Event)

// ---- Page 1: adapter selection (RaidAdapterSelectionPage.cpp) ------------------
extern const RAID_PAGE_CONTROLS gRaidAdapterSelectionControls;
// Rebuilds every adapter's label (re-reading each controller) and the radio
// group.
VOID UpdateControllerNamesInRadioControl();
// Shows the current controller's status, kind, table and buttons.
VOID UpdateCurrentRaidControllerConfig();
// Enables or grays Next and shows or hides Start.
VOID UpdateNextButtonState();
// Fills the configuration table of the current controller.
VOID UpdateRaidConfigTable();
RAID_CONTROL_CALLBACK(RaidCntrllerSelRadioGrCallback);
RAID_CONTROL_CALLBACK(RaidCntrllerSelDelCallback);
RAID_CONTROL_CALLBACK(RaidControllerRefreshButtonCallback);
RAID_CONTROL_CALLBACK(RaidManageDiskDrivesButtonCallback);

// ---- Pages 2 and 3 (RaidConfigTypePage.cpp) -------------------------------------
extern const RAID_PAGE_CONTROLS gRaidConfigTypeControls;
extern const RAID_PAGE_CONTROLS gRaidSimpleLevelControls;
// Enters page 2 (from page 1's Next, page 7's Back).
VOID InitRaidConfigTypeSelPage();
// Enters page 3.
VOID InitRaidSimpleLevelPage();
// Rebuilds page 3's RAID-level radio group (language change, fresh entry).
VOID UpdateRaidLevelDynamicallyInSimpleConfig();
RAID_CONTROL_CALLBACK(_RaidConfigNextButtonCallback);
RAID_CONTROL_CALLBACK(_RaidConfigBackButtonCallback);

// ---- Pages 4 and 9 (RaidVerifyPages.cpp) ------------------------------------------
extern const RAID_PAGE_CONTROLS gRaidSimpleVerifyControls;
extern const RAID_PAGE_CONTROLS gRaidAdvancedVerifyControls;
VOID InitRaidVerifySummaryPage();
VOID InitRaidAdvSummaryPage();

// ---- Pages 5 and 10 (RaidCreateProcessPage.cpp) -------------------------------------
extern const RAID_PAGE_CONTROLS gRaidCreationRunningControls;
extern const RAID_PAGE_CONTROLS gRaidCreateVolumesControls;
VOID InitRaidCreateVolProcessPage();
// Frees page 10's result rows and its nodes (leaving the page, returning to
// the module).
VOID RaidFreeCreateVolProcessPage();

// ---- Pages 6 and 7 (RaidArraySelectionPages.cpp) -------------------------------------
extern const RAID_PAGE_CONTROLS gRaidSelectArrayControls;
extern const RAID_PAGE_CONTROLS gRaidNewArrayControls;
VOID InitRaidAdvArraySelectionPage();
VOID InitRaidAdvCreateArraySelectionPage();
// Redraws page 6's free-segment table.
VOID ShowTable2();
// Language change on page 7: the RAID level chosen again.
VOID RaidNewArrayLanguageChanged();

// ---- Page 8 and its pop-up (RaidCreateVolumePage.cpp) -----------------------------------
extern const RAID_PAGE_CONTROLS gRaidEditVolumesControls;
extern const RAID_PAGE_CONTROLS gRaidVolumePopupControls;
VOID InitRaidAdvCreateEditVolPage();
// Redraws page 8's planned virtual disk table.
VOID ShowTable4();

// ---- Page 11: manage disk drives (RaidManageDrivesPage.cpp) ------------------------------
extern const RAID_PAGE_CONTROLS gRaidManageDrivesControls;
VOID InitRaidManagePhyDrvPage();
// Fills the drive table of page 11.
VOID ShowTable6();
RAID_CONTROL_CALLBACK(RaidManagePhyDrvComboCallback);
RAID_CONTROL_CALLBACK(TableCallback6);
RAID_CONTROL_CALLBACK(RaidManagePhyDrvNextCallback);
RAID_CONTROL_CALLBACK(RaidManagePhyDrvBackCallback);
