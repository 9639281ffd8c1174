// The wizard's module-wide state.
#include "wizard/RaidWizard.h"

constinit UINT32 gRaidCurrentPage = 0;
constinit UINT8 gRaidReInitFlags[RAID_REINIT_FLAG_COUNT] = {};
constinit UINT32 gRaidConfigType = 0;
constinit UINT32 gRaidAdvancedMode = 0;
constinit UINT32 gRaidControllerCount = 0;
constinit EFI_STATUS gRaidInitializeStatus = EFI_NOT_STARTED;
constinit UINT32 gRaidInitializeErrorCode = 0;
constinit HOST_PAGE_NODE *gRaidPageRoots[RAID_PAGE_COUNT + 1] = {};
constinit HOST_PAGE_NODE *gRaidModuleRoot = nullptr;
constinit EFI_GUID *gRaidModuleIdentity = nullptr;
constinit UINT32 gRaidFirstPageId = 0;
constinit UINT32 gRaidAdapterKind = RAID_ADAPTER_KIND_STORCLI;
constinit UINT32 gRaidSelectedControllerIndex = 0;
constinit BOOLEAN gRaidLoadingProgressOpen = FALSE;

VOID RaidSetAllReInitFlags() {
  for (UINT8 &Flag : gRaidReInitFlags) {
    Flag = 1;
  }
}

VOID RaidWizardResetGlobals() {
  gRaidCurrentPage = 0;
  for (UINT8 &Flag : gRaidReInitFlags) {
    Flag = 0;
  }
  gRaidConfigType = 0;
  gRaidAdvancedMode = 0;
  gRaidControllerCount = 0;
  gRaidInitializeStatus = EFI_NOT_STARTED;
  gRaidInitializeErrorCode = 0;
  gRaidModuleRoot = nullptr;
  gRaidModuleIdentity = nullptr;
  gRaidFirstPageId = 0;
  gRaidAdapterKind = RAID_ADAPTER_KIND_STORCLI;
  gRaidSelectedControllerIndex = 0;
  gRaidLoadingProgressOpen = FALSE;
  for (HOST_PAGE_NODE *&Root : gRaidPageRoots) {
    Root = nullptr;
  }
}
