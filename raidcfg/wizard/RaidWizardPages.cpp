// Page trees of the wizard. A page's root is made the first time the page
// is entered and kept for the module's life; the unload frees them all.
#include <Library/MemoryAllocationLib.h>

#include "wizard/RaidWizard.h"

HOST_PAGE_NODE *RaidCreatePageRoot(UINT32 Page) {
  HOST_PAGE_NODE *Root = uefi::AllocateRecord<HOST_PAGE_NODE>();
  if (Root == nullptr) {
    return nullptr;
  }
  Root->Control = HOST_NODE_NO_CONTROL;
  Root->NodeId = Page;
  Root->Parent = gRaidModuleRoot;
  return Root;
}

// Frees every page root; page 12 shares page 1's tree and is never freed on
// its own.
VOID RaidFreeWizardPages() {
  for (UINT32 Page = RAID_PAGE_CONTROLLER_SELECTION; Page <= RAID_PAGE_COUNT;
       Page++) {
    if (Page != RAID_PAGE_NO_ADAPTER) {
      FreePool(gRaidPageRoots[Page]);
    }
    gRaidPageRoots[Page] = nullptr;
  }
}
