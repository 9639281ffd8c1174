// What every page of the wizard shares: finding controls, the control
// operations (show, hide, gray, texts, refresh marks), building and showing
// pages, the help entries of each page, the language change, the return
// into the module, and the freeing of page trees and option lists.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>
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

// Deepest page tree the wizard walks.
constexpr UINTN kMaxTreeDepth = 16;
// Room a formatted number needs beyond its format's text.
constexpr UINTN kNumberTextExtra = 25;
// Room of a size text: "%ld GB" of a 64-bit figure is at most 23 characters.
constexpr UINTN kSizeTextLength = 32;

// Page roots the wizard made itself because no host could instantiate the
// template (no setup protocol): bare nodes that keep the build-once rule.
constinit BOOLEAN gBareRoot[RAID_PAGE_COUNT + 2] = {};

// Slot of Page in gRaidPageRoots: page 12 shares page 1's tree.
[[nodiscard]] UINT32 RootSlot(UINT32 Page) {
  return Page == RAID_PAGE_NO_ADAPTER ? RAID_PAGE_CONTROLLER_SELECTION : Page;
}

[[nodiscard]] HOST_PAGE_NODE *FindBelow(HOST_PAGE_NODE *Node, UINT32 NodeId,
                                        UINTN Depth) {
  if (Node == nullptr || Depth > kMaxTreeDepth) {
    return nullptr;
  }
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (Child->NodeId == NodeId) {
      return Child;
    }
    HOST_PAGE_NODE *Found = FindBelow(Child, NodeId, Depth + 1);
    if (Found != nullptr) {
      return Found;
    }
  }
  return nullptr;
}

// The control record of a node, or NULL for a node without one.
HOST_CONTROL *ControlOf(HOST_PAGE_NODE *Node) {
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL) {
    return nullptr;
  }
  return Node->Control;
}

VOID SetDisplay(UINT32 Page, UINT32 NodeId, UINT8 State, UINT8 Mark) {
  HOST_PAGE_NODE *Node = RaidFindNode(Page, NodeId);
  HOST_CONTROL *Control = ControlOf(Node);
  if (Control == nullptr) {
    return;
  }
  Control->DisplayState = State;
  Node->RefreshMark |= Mark;
}

VOID MarkTree(HOST_PAGE_NODE *Node, UINTN Depth) {
  if (Node == nullptr || Depth > kMaxTreeDepth) {
    return;
  }
  Node->RefreshMark |= HOST_REFRESH_TEXT;
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    MarkTree(Child, Depth + 1);
  }
}

// A bare root for a page no host could build.
[[nodiscard]] HOST_PAGE_NODE *MakeBareRoot(UINT32 Page) {
  HOST_PAGE_NODE *Root = uefi::AllocateRecord<HOST_PAGE_NODE>();
  if (Root == nullptr) {
    return nullptr;
  }
  Root->Control = HOST_NODE_NO_CONTROL;
  Root->NodeId = RAID_PAGE_NODE_ID(Page);
  Root->Parent = gRaidModuleRoot;
  return Root;
}

// Help entries of each page: the heading first, then the paragraphs.
constexpr HOST_HELP_ENTRY kAdapterHelp[] = {
    {STR_HELP_ADAPTER_SELECTION, HOST_HELP_HEADING},
    {STR_HELP_ADAPTER_SELECTION_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_4, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_5, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_6, HOST_HELP_PARAGRAPH},
    {STR_HELP_ADAPTER_SELECTION_7, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kConfigTypeHelp[] = {
    {STR_HELP_CONFIGURATION_MODE, HOST_HELP_HEADING},
    {STR_HELP_CONFIGURATION_MODE_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_CONFIGURATION_MODE_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_CONFIGURATION_MODE_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_CONFIGURATION_MODE_4, HOST_HELP_PARAGRAPH},
    {STR_HELP_CONFIGURATION_MODE_5, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kSimpleLevelHelp[] = {
    {STR_HELP_SIMPLE_RAID_LEVEL, HOST_HELP_HEADING},
    {STR_HELP_SIMPLE_RAID_LEVEL_1, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kVerifyHelp[] = {
    {STR_HELP_VERIFY_SETTINGS, HOST_HELP_HEADING},
    {STR_HELP_VERIFY_SETTINGS_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_VERIFY_SETTINGS_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_VERIFY_SETTINGS_3, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kResultHelp[] = {
    {STR_HELP_RESULT, HOST_HELP_HEADING},
    {STR_HELP_RESULT_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_RESULT_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_RESULT_3, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kUnusedSpaceHelp[] = {
    {STR_HELP_UNUSED_DISK_SPACE, HOST_HELP_HEADING},
    {STR_HELP_UNUSED_DISK_SPACE_1, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kCreateArrayHelp[] = {
    {STR_HELP_CREATE_DISK_ARRAY, HOST_HELP_HEADING},
    {STR_HELP_CREATE_DISK_ARRAY_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_DISK_ARRAY_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_DISK_ARRAY_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_DISK_ARRAY_4, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kCreateVolumeHelp[] = {
    {STR_HELP_CREATE_VIRTUAL_DISK, HOST_HELP_HEADING},
    {STR_HELP_CREATE_VIRTUAL_DISK_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_VIRTUAL_DISK_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_VIRTUAL_DISK_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_VIRTUAL_DISK_4, HOST_HELP_PARAGRAPH},
};
constexpr HOST_HELP_ENTRY kManageDrivesHelp[] = {
    {STR_MANAGE_DISK_DRIVES, HOST_HELP_HEADING},
    {STR_HELP_MANAGE_DISK_DRIVES_1, HOST_HELP_PARAGRAPH},
    {STR_HELP_MANAGE_DISK_DRIVES_2, HOST_HELP_PARAGRAPH},
    {STR_HELP_MANAGE_DISK_DRIVES_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_MANAGE_DISK_DRIVES_4, HOST_HELP_PARAGRAPH},
    {STR_HELP_MANAGE_DISK_DRIVES_5, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_DISK_ARRAY_3, HOST_HELP_PARAGRAPH},
    {STR_HELP_CREATE_DISK_ARRAY_4, HOST_HELP_PARAGRAPH},
};

template <UINTN N>
[[nodiscard]] constexpr UINTN Count(const HOST_HELP_ENTRY (&)[N]) {
  return N;
}

// The help entries of Page and their number.
[[nodiscard]] const HOST_HELP_ENTRY *HelpOf(UINT32 Page, UINTN *EntryCount) {
  switch (Page) {
    case RAID_PAGE_CONFIG_TYPE:
      *EntryCount = Count(kConfigTypeHelp);
      return kConfigTypeHelp;
    case RAID_PAGE_SIMPLE_LEVEL:
      *EntryCount = Count(kSimpleLevelHelp);
      return kSimpleLevelHelp;
    case RAID_PAGE_SIMPLE_VERIFY:
    case RAID_PAGE_ADV_VERIFY:
      *EntryCount = Count(kVerifyHelp);
      return kVerifyHelp;
    case RAID_PAGE_CREATION_RUNNING:
      *EntryCount = Count(kResultHelp);
      return kResultHelp;
    case RAID_PAGE_ADV_SELECT_ARRAY:
      *EntryCount = Count(kUnusedSpaceHelp);
      return kUnusedSpaceHelp;
    case RAID_PAGE_ADV_NEW_ARRAY:
      *EntryCount = Count(kCreateArrayHelp);
      return kCreateArrayHelp;
    case RAID_PAGE_ADV_EDIT_VOLUME:
      *EntryCount = Count(kCreateVolumeHelp);
      return kCreateVolumeHelp;
    case RAID_PAGE_MANAGE_DRIVES:
      *EntryCount = Count(kManageDrivesHelp);
      return kManageDrivesHelp;
    default:  // pages 1, 10 and 12
      *EntryCount = Count(kAdapterHelp);
      return kAdapterHelp;
  }
}

}  // namespace

// ---- Finding controls ---------------------------------------------------------

HOST_PAGE_NODE *RaidPageRoot(UINT32 Page) {
  UINT32 Slot = RootSlot(Page);
  return Slot <= RAID_PAGE_COUNT ? gRaidPageRoots[Slot] : nullptr;
}

HOST_PAGE_NODE *RaidFindNode(UINT32 Page, UINT32 NodeId) {
  HOST_PAGE_NODE *Root = RaidPageRoot(Page);
  if (Root == nullptr) {
    return nullptr;
  }
  return Root->NodeId == NodeId ? Root : FindBelow(Root, NodeId, 0);
}

UINT8 RaidDisplayState(UINT32 Page, UINT32 NodeId) {
  HOST_CONTROL *Control = ControlOf(RaidFindNode(Page, NodeId));
  return Control != nullptr ? Control->DisplayState : HOST_DISPLAY_HIDDEN;
}

// ---- Control operations ----------------------------------------------------------

VOID RaidShowControl(UINT32 Page, UINT32 NodeId) {
  SetDisplay(Page, NodeId, HOST_DISPLAY_SHOWN, HOST_REFRESH_STATE);
}

VOID RaidShowStatusControl(UINT32 Page, UINT32 NodeId) {
  SetDisplay(Page, NodeId, HOST_DISPLAY_SHOWN, HOST_REFRESH_STATUS);
}

VOID RaidHideControl(UINT32 Page, UINT32 NodeId) {
  SetDisplay(Page, NodeId, HOST_DISPLAY_HIDDEN, HOST_REFRESH_STATE);
}

VOID RaidGrayControl(UINT32 Page, UINT32 NodeId) {
  SetDisplay(Page, NodeId, HOST_DISPLAY_GRAYED, HOST_REFRESH_STATE);
}

VOID RaidSetControlTextId(UINT32 Page, UINT32 NodeId, EFI_STRING_ID TextId) {
  HOST_PAGE_NODE *Node = RaidFindNode(Page, NodeId);
  HOST_CONTROL *Control = ControlOf(Node);
  if (Control == nullptr) {
    return;
  }
  RaidSetControlText(Node, nullptr);
  Control->TextId = TextId;
  Control->DisplayState = HOST_DISPLAY_SHOWN;
  Node->RefreshMark |= HOST_REFRESH_TEXT;
  if (TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->RedrawControl != nullptr) {
    TarnSetupProtocol->RedrawControl(Node);
  }
}

VOID RaidMarkForReRead(HOST_PAGE_NODE *Node) { MarkTree(Node, 0); }

VOID RaidShowPage(UINT32 Page, UINT32 FocusNodeId) {
  HOST_PAGE_NODE *Root = RaidPageRoot(Page);
  if (Root == nullptr || TarnSetupProtocol == nullptr ||
      TarnSetupProtocol->ShowPage == nullptr) {
    return;
  }
  TarnSetupProtocol->ShowPage(Root, FocusNodeId);
}

// ---- Texts --------------------------------------------------------------------------

const CHAR16 *RaidString(EFI_STRING_ID Id) {
  const CHAR16 *Text = RaidGetString(gHiiHandle, Id);
  return Text != nullptr ? Text : u"";
}

CHAR16 *AllocString(const CHAR16 *Text) {
  if (Text == nullptr) {
    Text = u"";
  }
  const UINTN Size = (StrLen(Text) + 1) * sizeof(CHAR16);
  return static_cast<CHAR16 *>(AllocateCopyPool(Size, Text));
}

CHAR16 *EFIAPI RaidFormatText(UINTN Characters, const CHAR16 *Format, ...) {
  CHAR16 *Text =
      static_cast<CHAR16 *>(AllocateZeroPool((Characters + 1) * sizeof(CHAR16)));
  if (Text == nullptr) {
    return nullptr;
  }
  VA_LIST Marker;
  VA_START(Marker, Format);
  UnicodeVSPrint(Text, (Characters + 1) * sizeof(CHAR16), Format, Marker);
  VA_END(Marker);
  return Text;
}

CHAR16 *RaidFormatNumberText(EFI_STRING_ID Id, UINT32 Number) {
  const CHAR16 *Format = RaidString(Id);
  return RaidFormatText(StrLen(Format) + kNumberTextExtra, Format, Number);
}

CHAR16 *RaidSizeText(UINT64 Thousandths, UINT32 Unit) {
  CHAR16 Buffer[kSizeTextLength] = {};
  RaidFormatSizeText(Buffer, sizeof(Buffer), Thousandths / 1000,
                     Thousandths % 1000, Unit);
  return AllocString(Buffer);
}

CHAR16 *RaidAppendText(EFI_STRING_ID Id, const CHAR16 *Suffix) {
  const CHAR16 *Text = RaidString(Id);
  if (Suffix == nullptr) {
    return AllocString(Text);
  }
  return RaidFormatText(StrLen(Text) + StrLen(Suffix), u"%s%s", Text, Suffix);
}

// ---- Pages ----------------------------------------------------------------------------

const RAID_PAGE_CONTROLS *RaidPageControls(UINT32 Page) {
  switch (RootSlot(Page)) {
    case RAID_PAGE_CONTROLLER_SELECTION:
      return &gRaidAdapterSelectionControls;
    case RAID_PAGE_CONFIG_TYPE:
      return &gRaidConfigTypeControls;
    case RAID_PAGE_SIMPLE_LEVEL:
      return &gRaidSimpleLevelControls;
    case RAID_PAGE_SIMPLE_VERIFY:
      return &gRaidSimpleVerifyControls;
    case RAID_PAGE_CREATION_RUNNING:
      return &gRaidCreationRunningControls;
    case RAID_PAGE_ADV_SELECT_ARRAY:
      return &gRaidSelectArrayControls;
    case RAID_PAGE_ADV_NEW_ARRAY:
      return &gRaidNewArrayControls;
    case RAID_PAGE_ADV_EDIT_VOLUME:
      return &gRaidEditVolumesControls;
    case RAID_PAGE_ADV_VERIFY:
      return &gRaidAdvancedVerifyControls;
    case RAID_PAGE_CREATE_VOLUMES:
      return &gRaidCreateVolumesControls;
    case RAID_PAGE_MANAGE_DRIVES:
      return &gRaidManageDrivesControls;
    default:
      return nullptr;
  }
}

VOID RaidRegisterPageControls(UINT32 Page) {
  HOST_PAGE_NODE *Root = RaidPageRoot(Page);
  const RAID_PAGE_CONTROLS *Controls = RaidPageControls(Page);
  if (Root == nullptr || Controls == nullptr || TarnSetupProtocol == nullptr ||
      TarnSetupProtocol->BuildControlTable == nullptr) {
    return;
  }
  TarnSetupProtocol->BuildControlTable(Root, Controls->Common,
                                       Controls->CommonCount, Controls->Own,
                                       Controls->OwnCount);
}

HOST_PAGE_NODE *RaidInstantiatePage(const CHAR8 *Caller, UINT32 Page) {
  const UINT32 Slot = RootSlot(Page);
  if (Slot < RAID_PAGE_CONTROLLER_SELECTION || Slot > RAID_PAGE_MANAGE_DRIVES) {
    return nullptr;
  }
  if (gRaidPageRoots[Slot] != nullptr) {
    return gRaidPageRoots[Slot];
  }
  HOST_PAGE_NODE *Root = nullptr;
  if (TarnSetupProtocol != nullptr &&
      TarnSetupProtocol->InstantiatePage != nullptr) {
    EFI_STATUS Status = TarnSetupProtocol->InstantiatePage(
        RaidPageTemplate(Slot), gRaidModuleRoot, gRaidModuleIdentity, &Root);
    if (EFI_ERROR(Status)) {
      Root = nullptr;
    }
  } else {
    Root = MakeBareRoot(Slot);
    gBareRoot[Slot] = Root != nullptr;
  }
  if (Root == nullptr) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return nullptr;
  }
  gRaidPageRoots[Slot] = Root;
  RaidRegisterPageControls(Slot);
  return Root;
}

VOID RaidInstantiateOrRefreshPage(const CHAR8 *Caller, UINT32 Page) {
  if (RaidPageRoot(Page) == nullptr) {
    RaidInstantiatePage(Caller, Page);
  } else {
    RaidRegisterPageControls(Page);
    RaidMarkForReRead(RaidPageRoot(Page));
  }
}

// Frees a page tree: the host frees the nodes it made with their control
// records; the values the wizard kept for them go too.
VOID FreeRaidStaticPageNodes(HOST_PAGE_NODE **Root,
                             const HOST_PAGE_TEMPLATE *Template) {
  (void)Template;
  if (Root == nullptr || *Root == nullptr) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  RaidForgetControlData(*Root);
  BOOLEAN Bare = FALSE;
  for (UINT32 Slot = 0; Slot <= RAID_PAGE_COUNT; Slot++) {
    if (gRaidPageRoots[Slot] == *Root && gBareRoot[Slot]) {
      Bare = TRUE;
      gBareRoot[Slot] = FALSE;
    }
  }
  if (Bare) {
    FreePool(*Root);
  } else if (TarnSetupProtocol != nullptr &&
             TarnSetupProtocol->FreePageNode != nullptr) {
    TarnSetupProtocol->FreePageNode(*Root);
  }
  *Root = nullptr;
}

// Frees every page tree; page 12 shares page 1's and is never freed on its
// own.
VOID RaidFreeWizardPages() {
  RaidFreeConfigWizardState();
  for (UINT32 Page = RAID_PAGE_CONTROLLER_SELECTION; Page <= RAID_PAGE_COUNT;
       Page++) {
    if (Page != RAID_PAGE_NO_ADAPTER && gRaidPageRoots[Page] != nullptr) {
      FreeRaidStaticPageNodes(&gRaidPageRoots[Page], RaidPageTemplate(Page));
    }
    gRaidPageRoots[Page] = nullptr;
  }
}

VOID FreeComboOptions(HOST_OPTION_LIST *List) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start...\n");
  // A list of count 0 is left as it is, its array included, deliberately:
  // the count says what the list owns.
  if (List == nullptr || List->Count == 0) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
    return;
  }
  for (UINTN Index = 0; List->Options != nullptr && Index < List->Count;
       Index++) {
    FreePool(List->Options[Index].Text);
  }
  FreePool(List->Options);
  *List = {};
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
}

// ---- Module callbacks ------------------------------------------------------------------

VOID EFIAPI RaidSetupHelpCallBack() {
  if (TarnSetupProtocol == nullptr || TarnSetupProtocol->ShowHelp == nullptr) {
    return;
  }
  UINTN EntryCount = 0;
  const HOST_HELP_ENTRY *Entries = HelpOf(gRaidCurrentPage, &EntryCount);
  TarnSetupProtocol->ShowHelp(RaidPageRoot(gRaidCurrentPage), Entries,
                              EntryCount);
}

// Every page must be reset on its next entry and every formatted text is
// built again, since they were made in the old language.
VOID EFIAPI RaidSetupLangCallBack() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Current page %d\n",
             gRaidCurrentPage);
  RaidSetAllReInitFlags();
  if (gRaidCurrentPage != RAID_PAGE_NO_ADAPTER) {
    UpdateControllerNamesInRadioControl();
    UpdateCurrentRaidControllerConfig();
  }
  switch (gRaidCurrentPage) {
    case RAID_PAGE_SIMPLE_LEVEL:
      UpdateRaidLevelDynamicallyInSimpleConfig();
      break;
    case RAID_PAGE_ADV_NEW_ARRAY:
      RaidNewArrayLanguageChanged();
      break;
    case RAID_PAGE_ADV_SELECT_ARRAY:
      ShowTable2();
      break;
    case RAID_PAGE_ADV_EDIT_VOLUME:
      ShowTable4();
      break;
    case RAID_PAGE_MANAGE_DRIVES:
      if (gCurrentRaidController != nullptr &&
          gCurrentRaidController->DiskDriveCount != 0) {
        ShowTable6();
      }
      break;
    default:
      break;
  }
  for (UINT32 Page = RAID_PAGE_CONTROLLER_SELECTION;
       Page <= RAID_PAGE_MANAGE_DRIVES; Page++) {
    RaidMarkForReRead(gRaidPageRoots[Page]);
  }
}

// The operator comes back into the module: after a creation the result
// page goes and page 1 shows the new configuration; page 12 stays.
VOID EFIAPI SwitchBackToRaidSetupModule() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED] != 0 &&
      gRaidCurrentPage != RAID_PAGE_NO_ADAPTER) {
    RaidFreeVolumeParameterQueue();
    RaidFreeCreateVolProcessPage();
    UpdateControllerNamesInRadioControl();
    UpdateCurrentRaidControllerConfig();
    gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED] = 0;
  }
  if (gRaidCurrentPage != RAID_PAGE_NO_ADAPTER) {
    gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  }
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, 0);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n\n");
}

EFI_STATUS EFIAPI RaidWizardNextCallback(HOST_PAGE_NODE *Node,
                                         const HOST_CONTROL_EVENT *Event) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID : [%a]Go into the configuration type select page\n");
  InitRaidConfigTypeSelPage();
  return EFI_SUCCESS;
}

VOID RaidResetConfigurationState() {
  gRaidConfigType = 0;
  gRaidAdvancedMode = 0;
  RaidSetAllReInitFlags();
  RaidFreeVolumeParameterQueue();
}
