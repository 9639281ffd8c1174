// The RAID setup wizard's shared state and the operations every page uses:
// page numbers, the current page, the re-initialise flags, the controller
// count, the first page's construction with the adapter discovery, and the
// error box.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

// ---- Page numbers -------------------------------------------------------------

#define RAID_PAGE_RETRY 0  // registered after a failed discovery
#define RAID_PAGE_CONTROLLER_SELECTION 1
#define RAID_PAGE_CONFIG_TYPE 2
#define RAID_PAGE_SIMPLE_LEVEL 3
#define RAID_PAGE_SIMPLE_VERIFY 4
#define RAID_PAGE_CREATION_RUNNING 5
#define RAID_PAGE_ADV_SELECT_ARRAY 6
#define RAID_PAGE_ADV_NEW_ARRAY 7
#define RAID_PAGE_ADV_EDIT_VOLUME 8
#define RAID_PAGE_ADV_VERIFY 9
#define RAID_PAGE_CREATE_VOLUMES 10
#define RAID_PAGE_MANAGE_DRIVES 11
#define RAID_PAGE_NO_ADAPTER 12
#define RAID_PAGE_COUNT 12

// ---- Wizard state (module globals) -----------------------------------------------

// The page shown now; every page initialiser sets it first.
extern UINT32 gRaidCurrentPage;

// One flag per page (or page-local selection) that must be reset on its
// next entry. The second also marks virtual disks created since the last
// return to the module.
#define RAID_REINIT_FLAG_COUNT 13
extern UINT8 gRaidReInitFlags[RAID_REINIT_FLAG_COUNT];

// Configuration type: 0 simple, 1 advanced. Advanced mode: 0 new array,
// 1 free capacity of an existing array.
extern UINT32 gRaidConfigType;
extern UINT32 gRaidAdvancedMode;

// Number of adapters found by the last discovery the first page ran.
extern UINT32 gRaidControllerCount;

// The status and error code of the discovery the first page ran; hosts
// that report the model read them.
extern EFI_STATUS gRaidInitializeStatus;
extern UINT32 gRaidInitializeErrorCode;

// Page roots by page number; NULL until the page is first built. Page 12
// shares page 1's tree.
extern HOST_PAGE_NODE *gRaidPageRoots[RAID_PAGE_COUNT + 1];

// What the host handed over at the wizard's start: the module's root node,
// its identity GUID and the id of its first page.
extern HOST_PAGE_NODE *gRaidModuleRoot;
extern EFI_GUID *gRaidModuleIdentity;
extern UINT32 gRaidFirstPageId;

// Sets every re-initialise flag.
VOID RaidSetAllReInitFlags();
// Puts the wizard state back to what a freshly loaded image holds.
VOID RaidWizardResetGlobals();

// ---- Start ---------------------------------------------------------------------

// Called once by the module start-up: fetches the host's module words and
// builds the first page.
VOID InitializeRaidSetupWizards();
// Builds page 1 and runs the adapter discovery, once per module life.
VOID InitRaidControllerSelectionPage();
// Language-change callback the host calls after the operator changed it.
VOID EFIAPI RaidSetupLangCallBack();

// ---- Pages ---------------------------------------------------------------------

// Makes the root of Page; NULL when out of memory.
HOST_PAGE_NODE *RaidCreatePageRoot(UINT32 Page);
// Frees the page trees the wizard built.
VOID RaidFreeWizardPages();

// ---- Error box -------------------------------------------------------------------

// Shows "The operation failed!" with the error code and its message.
VOID ShowRaidErrorBox(UINT32 ErrorCode);
