// The wizard's start: the host's module words, and the first page's
// construction, which runs the adapter discovery behind a progress box.
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/PageFramework.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidConfigWizard.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

// Progress of the loading box at each stage of the discovery.
constexpr UINT8 kProgressDiscovering = 10;
constexpr UINT8 kProgressReadingList = 30;
constexpr UINT8 kProgressDone = 100;

// Hands the host the three module words it fills.
VOID FetchModuleWords() {
  if (TarnSetupProtocol == nullptr) {
    return;
  }
  TarnSetupProtocol->GetModuleRoot(&gRaidModuleRoot);
  TarnSetupProtocol->GetModuleIdentity(&gRaidModuleIdentity);
  TarnSetupProtocol->GetFirstPageId(&gRaidFirstPageId);
}

// After a failed discovery: the error box, the host's own callbacks in
// place of the wizard's, and page 0 registered so that entering it runs the
// discovery again; the page says that no adapter is there.
VOID ArmDiscoveryRetry(UINT32 ErrorCode) {
  gRaidLoadingProgressOpen = FALSE;
  RaidSetProgress(kProgressDone);
  RaidRedrawScreen();
  ShowRaidErrorBox(ErrorCode);
  if (TarnSetupProtocol != nullptr) {
    if (TarnSetupProtocol->RegisterDefaultCallbacks != nullptr) {
      TarnSetupProtocol->RegisterDefaultCallbacks();
    }
    TarnSetupProtocol->RegisterPage(gImageHandle, gHiiHandle, RAID_PAGE_RETRY,
                                    Init_Raid, nullptr, RaidSetupLangCallBack);
  }
  gRaidControllerCount = 0;
  ShowNoAdapterFoundMsg();
}

// Page 1 on the screen before the discovery starts, with the module's
// return, help and language callbacks.
VOID ShowEmptyAdapterPage() {
  if (TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->RegisterModuleCallbacks != nullptr) {
    TarnSetupProtocol->RegisterModuleCallbacks(SwitchBackToRaidSetupModule,
                                               RaidSetupHelpCallBack,
                                               RaidSetupLangCallBack);
  }
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, 0);
}

// The state every fresh adapter page starts from.
VOID ResetWizardSelections() {
  gRaidConfigType = 0;
  gRaidAdvancedMode = 0;
  gRaidSelectedArrayId = RAID_NO_SELECTION;
  gRaidSelectedSegmentId = RAID_NO_SELECTION;
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  RaidSetAllReInitFlags();
  RaidFreeVolumeParameterQueue();
}

}  // namespace

VOID InitializeRaidSetupWizards() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Start \n");
  FetchModuleWords();
  InitRaidControllerSelectionPage();
}

VOID InitRaidControllerSelectionPage() {
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  if (gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION] != nullptr) {
    return;
  }
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Construct the RAID controller select page\n");
  // The host finds the module's data source and strings by the page.
  if (TarnSetupProtocol != nullptr) {
    TarnSetupProtocol->RegisterPage(gImageHandle, gHiiHandle,
                                    RAID_PAGE_CONTROLLER_SELECTION, nullptr,
                                    nullptr, RaidSetupLangCallBack);
  }
  if (RaidInstantiatePage(__func__, RAID_PAGE_CONTROLLER_SELECTION) ==
      nullptr) {
    return;
  }
  ShowEmptyAdapterPage();

  // A progress box has no answer to read.
  (VOID) RaidMessageBox(HOST_MSGBOX_PROGRESS, STR_BLANK, STR_LOADING_RAID_DATA,
                        nullptr);
  gRaidLoadingProgressOpen = TRUE;
  RaidSetProgress(kProgressDiscovering);
  RaidRedrawScreen();

  UINT32 ErrorCode = 0;
  EFI_STATUS Status = InitializeRaidService(&ErrorCode);
  gRaidInitializeStatus = Status;
  gRaidInitializeErrorCode = ErrorCode;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Return status of Initialize Raid = %r\n", Status);
  // An error status with error code 0 counts as success, deliberately: such
  // a discovery found nothing wrong worth a box, and start-up goes on.
  if (EFI_ERROR(Status) && ErrorCode != 0) {
    RAID_TRACE(TARN_DEBUG_ERROR,
               "[%a]<err> Failed to initialize RAID info, Status %r, "
               "Errorcode %x\n",
               Status, ErrorCode);
    ArmDiscoveryRetry(ErrorCode);
    return;
  }

  ResetWizardSelections();
  RaidSetProgress(kProgressReadingList);
  RaidRedrawScreen();

  LIST_ENTRY *Controllers = nullptr;
  gRaidControllerCount = GetRaidControllerList(&Controllers);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Controller Count = %x\n",
             gRaidControllerCount);
  if (gRaidControllerCount == 0) {
    gRaidLoadingProgressOpen = FALSE;
    RaidSetProgress(kProgressDone);
    RaidRedrawScreen();
    ShowNoAdapterFoundMsg();
    return;
  }
  UpdateControllerNamesInRadioControl();
  UpdateCurrentRaidControllerConfig();
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, RAID_NODE_ADAPTER_RADIO);
}
