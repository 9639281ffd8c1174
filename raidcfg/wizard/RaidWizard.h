// The RAID setup wizard's shared state and the operations every page uses:
// page numbers, the current page, the re-initialise flags, the controller
// count, the first page's construction with the adapter discovery, and the
// error box.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#include "RaidLib.h"

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

// Re-initialise flag of each page: index page - 1 for pages 3 to 11, and
// index 0 for page 2 (page 1 has no reset of its own). The second flag marks
// virtual disks created since the last return to the module; it is cleared
// on that return and after the creation page, which must not cancel page
// 2's reset. The last two belong to page-local selections.
#define RAID_REINIT_FLAG(Page) \
  ((Page) == RAID_PAGE_CONFIG_TYPE ? 0 : (Page) - 1)
#define RAID_REINIT_FLAG_VOLUMES_CREATED 1
#define RAID_REINIT_FLAG_VOLUME_POPUP 11
#define RAID_REINIT_FLAG_ARRAY_SELECTION 12

// Adapter kind of the selected adapter, from its tool's file name.
#define RAID_ADAPTER_KIND_STORCLI 0
#define RAID_ADAPTER_KIND_RSTE 1
#define RAID_ADAPTER_KIND_MVSETUP 2
#define RAID_ADAPTER_KIND_MNV_CLI 3
#define RAID_ADAPTER_KIND_VROC 4
#define RAID_ADAPTER_KIND_ARCCONF 5
#define RAID_ADAPTER_KIND_UNSUPPORTED 15
extern UINT32 gRaidAdapterKind;

// The adapter chosen on page 1: its index in the controller list (the
// adapter radio group's value). Its record is the service layer's current
// controller, gCurrentRaidController.
extern UINT32 gRaidSelectedControllerIndex;
// The controller at Index of the controller list, or NULL.
[[nodiscard]] RAID_CONTROLLER *RaidControllerAt(UINT32 Index);

// TRUE while the loading box of the first page's construction is open.
extern BOOLEAN gRaidLoadingProgressOpen;

// Sets every re-initialise flag.
VOID RaidSetAllReInitFlags();
// Puts the wizard state back to what a freshly loaded image holds.
VOID RaidWizardResetGlobals();
// The configuration state every adapter change, refresh and finished
// creation starts from: simple configuration, new array, every page to be
// reset, no planned virtual disk.
VOID RaidResetConfigurationState();

// ---- Start ---------------------------------------------------------------------

// Called once by the module start-up: fetches the host's module words and
// builds the first page.
VOID InitializeRaidSetupWizards();
// Builds page 1 and runs the adapter discovery, once per module life.
VOID InitRaidControllerSelectionPage();
// Language-change callback the host calls after the operator changed it.
VOID EFIAPI RaidSetupLangCallBack();
// The host's return into the RAID Setup module.
VOID EFIAPI SwitchBackToRaidSetupModule();
// The help callback: the help entries of the current page.
VOID EFIAPI RaidSetupHelpCallBack();
// Next on page 1: into the configuration type page.
[[nodiscard]] EFI_STATUS EFIAPI
RaidWizardNextCallback(HOST_PAGE_NODE *Node, const HOST_CONTROL_EVENT *Event);
// Turns page 1 into page 12, which says that no supported adapter exists.
VOID ShowNoAdapterFoundMsg();

// ---- Pages ---------------------------------------------------------------------

// Instantiates Page from its template under the module root on first use
// and builds its control table; the page's root (NULL when it could not be
// built). Later calls only return it. A failure is traced under Caller's
// name, the page initialiser or callback that enters the page.
HOST_PAGE_NODE *RaidInstantiatePage(const CHAR8 *Caller, UINT32 Page);
// Builds Page's control table again (the page is re-entered).
VOID RaidRegisterPageControls(UINT32 Page);
// Entry into Page: instantiates it on first use; on a later entry builds
// its control table again and marks its tree to be read again. Caller as
// for RaidInstantiatePage.
VOID RaidInstantiateOrRefreshPage(const CHAR8 *Caller, UINT32 Page);
// Frees a page tree and clears *Root.
VOID FreeRaidStaticPageNodes(HOST_PAGE_NODE **Root,
                             const HOST_PAGE_TEMPLATE *Template);
// Frees the page trees the wizard built.
VOID RaidFreeWizardPages();
// Frees the values the wizard keeps for its controls (labels, option
// lists, tables).
VOID RaidFreeWizardDynamicNodes();
// Frees an option list's texts and array; an empty list is left alone.
VOID FreeComboOptions(HOST_OPTION_LIST *List);

// ---- Error box -------------------------------------------------------------------
// Shows "The operation failed!" with the error code and its message.
VOID ShowRaidErrorBox(UINT32 ErrorCode);
