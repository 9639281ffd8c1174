// Page 11, manage disk drives: every drive of the selected adapter with its
// state, size and model, an "Actions on All Disk Drives" combo box for all
// drives at once, and per row the one state change the drive's state
// allows. Changes are applied on Next after a confirmation; Back drops them.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <strings/RaidcfgStrings.h>

#include "setup/RaidEventCode.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidHostUi.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"
#include "wizard/RaidWizardPages.h"

namespace {

constexpr UINT32 kPage = RAID_PAGE_MANAGE_DRIVES;

// The all-drives actions.
constexpr UINT8 kActionNone = 1;
constexpr UINT8 kActionUGoodToJbod = 2;
constexpr UINT8 kActionJbodToUGood = 3;

// Drive table: drive, state, size, model and the row's action.
constexpr UINT32 kDriveColumns = 5;
constexpr UINT32 kStateColumn = 1;
constexpr UINT32 kActionColumn = 4;
// The row action "Select": no change.
constexpr UINT32 kSelectOption = 0;
// Visible rows of the table: all drives and the heading, up to the page.
constexpr UINT16 kMaxTableHeight = 14;
// Drive counts from which the table takes its whole height.
constexpr UINT32 kManyDrives = 9;

// The fixed words of the row actions.
constexpr CHAR16 kWordJbod[] = u"JBOD";
constexpr CHAR16 kWordUGood[] = u"UGood";
constexpr CHAR16 kWordNonRaid[] = u"Non-RAID";
constexpr CHAR16 kWordGhs[] = u"GHS";
constexpr CHAR16 kWordDedicated[] = u"Dedicated";

constinit UINT8 gLastAllDrivesAction = kActionNone;

[[nodiscard]] HOST_PAGE_NODE *DriveTableNode() {
  return RaidFindNode(kPage, RAID_NODE_DRIVE_TABLE);
}

[[nodiscard]] HOST_PAGE_NODE *AllDrivesCombo() {
  return RaidFindNode(kPage, RAID_NODE_ALL_DRIVES_COMBO);
}

[[nodiscard]] UINT32 DriveCount() {
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  if (Controller == nullptr || Controller->DriveTable == nullptr) {
    return 0;
  }
  return Controller->DiskDriveCount;
}

[[nodiscard]] RAID_PHYSICAL_DRIVE *DriveAt(UINT32 Index) {
  return RaidDriveAtIndex(gCurrentRaidController, Index);
}

[[nodiscard]] BOOLEAN ControllerHasArray() {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  return gCurrentRaidController != nullptr &&
         RaidCollectArrays(gCurrentRaidController, Arrays,
                           RAID_SERVICE_MAX_ARRAYS) != 0;
}

// The one target a drive in State may be given from its row, as the word
// shown; NULL when the row offers none.
[[nodiscard]] const CHAR16 *RowTargetWord(UINT32 State, BOOLEAN HasArray) {
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP) {
    return nullptr;
  }
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF && HasArray) {
    switch (State) {
      case RAID_STATE2_UGOOD:
        return kWordGhs;
      case RAID_STATE2_DEDICATED:
        return kWordUGood;
      default:
        return nullptr;
    }
  }
  switch (State) {
    case RAID_STATE_UGOOD:
      return kWordJbod;
    case RAID_STATE_JBOD:
      return kWordUGood;
    case RAID_STATE3_READY:
    case RAID_STATE4_NON_RAID:
      return kWordGhs;
    case RAID_STATE4_GHS:
      return kWordNonRaid;
    default:
      return nullptr;
  }
}

// The row's action cell: "Select" and, when the state allows one, the
// target; grayed when there is none.
[[nodiscard]] BOOLEAN FillActionCell(HOST_TABLE_CELL *Cell,
                                     const CHAR16 *Target) {
  const UINT16 Count = Target != nullptr ? 2 : 1;
  Cell->Kind = HOST_CELL_COMBO_BOX;
  Cell->Value = kSelectOption;
  Cell->DisplayState =
      Target != nullptr ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
  Cell->Options.Options =
      static_cast<HOST_OPTION *>(AllocateZeroPool(sizeof(HOST_OPTION) * Count));
  if (Cell->Options.Options == nullptr) {
    return FALSE;
  }
  Cell->Options.Count = Count;
  Cell->Options.Options[0].TextId = STR_SELECT_OPTION;
  if (Target != nullptr) {
    Cell->Options.Options[1].Value = 1;
    Cell->Options.Options[1].Text = AllocString(Target);
    return Cell->Options.Options[1].Text != nullptr;
  }
  return TRUE;
}

// One drive's row.
[[nodiscard]] BOOLEAN WriteRaidManagePhyDrvData(
    RAID_TABLE_DATA *Table, UINT32 Row, const RAID_PHYSICAL_DRIVE *Drive,
    BOOLEAN HasArray) {
  return RaidSetCellText(Table, Row, 0, AllocString(Drive->Location)) &&
         RaidSetCellText(Table, Row, 1,
                         AllocString(GetStateText(Drive->State))) &&
         RaidSetCellText(Table, Row, 2,
                         RaidSizeText(Drive->SizeFigure, Drive->SizeUnit)) &&
         RaidSetCellText(Table, Row, 3, AllocString(Drive->Model)) &&
         FillActionCell(RaidTableCell(Table, Row, kActionColumn),
                        RowTargetWord(Drive->State, HasArray));
}

// The whole drive table of the current controller.
[[nodiscard]] BOOLEAN GetRaidManagePhyDrvTableData(RAID_TABLE_DATA *Table) {
  const UINT32 Drives = DriveCount();
  if (!RaidAllocTable(Table, Drives + 1, kDriveColumns,
                      HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE)) {
    return FALSE;
  }
  const BOOLEAN FullAdapter = gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
                              gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF;
  if (FullAdapter) {
    if (!RaidSetCellText(Table, 0, 0, AllocString(u"EID:Slot"))) {
      return FALSE;
    }
  } else {
    RaidTableCell(Table, 0, 0)->TextId = STR_COLUMN_DRIVE;
  }
  RaidTableCell(Table, 0, 1)->TextId = STR_COLUMN_STATE;
  RaidTableCell(Table, 0, 2)->TextId = STR_COLUMN_SIZE;
  RaidTableCell(Table, 0, 3)->TextId = STR_COLUMN_MODEL;
  RaidTableCell(Table, 0, 4)->TextId = STR_COLUMN_ACTIONS;
  const BOOLEAN HasArray = ControllerHasArray();
  for (UINT32 Index = 0; Index < Drives; Index++) {
    RAID_PHYSICAL_DRIVE *Drive = DriveAt(Index);
    if (Drive == nullptr ||
        !WriteRaidManagePhyDrvData(Table, Index + 1, Drive, HasArray)) {
      return FALSE;
    }
  }
  return TRUE;
}

// The table's height: every drive row and the heading, within the page.
VOID SetTableSize() {
  HOST_PAGE_NODE *Node = DriveTableNode();
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL) {
    return;
  }
  const UINT32 Drives = DriveCount();
  Node->Control->Layout.Height =
      Drives == 0 || Drives >= kManyDrives
          ? kMaxTableHeight
          : static_cast<UINT16>(Drives + 3);
  Node->RefreshMark |= HOST_REFRESH_STATE;
}

// The text id of the all-drives combo box's chosen option.
[[nodiscard]] EFI_STRING_ID AllDrivesChoice() {
  HOST_PAGE_NODE *Combo = AllDrivesCombo();
  HOST_OPTION_LIST *Options = RaidControlOptions(Combo);
  if (Combo == nullptr || Combo->Control == nullptr ||
      Combo->Control == HOST_NODE_NO_CONTROL || Options == nullptr) {
    return STR_ACTIONS_ON_ALL_DRIVES;
  }
  const UINT64 Index = Combo->Control->Value;
  return Index < Options->Count ? Options->Options[Index].TextId
                                : STR_ACTIONS_ON_ALL_DRIVES;
}

// TRUE when a row or the all-drives combo box asks for a change.
[[nodiscard]] BOOLEAN HasPendingChange() {
  if (AllDrivesChoice() != STR_ACTIONS_ON_ALL_DRIVES) {
    return TRUE;
  }
  RAID_TABLE_DATA *Table = RaidControlTable(DriveTableNode());
  for (UINT32 Row = 1; Table != nullptr && Row < Table->RowCount; Row++) {
    HOST_TABLE_CELL *Cell = RaidTableCell(Table, Row, kActionColumn);
    if (Cell != nullptr && Cell->Value != kSelectOption) {
      return TRUE;
    }
  }
  return FALSE;
}

// Every row's action back on "Select" and grayed, or (Enable) the rows of
// drives in states 6, 11, 45 and 46 selectable again.
VOID SetRowActions(BOOLEAN Enable) {
  RAID_TABLE_DATA *Table = RaidControlTable(DriveTableNode());
  for (UINT32 Row = 1; Table != nullptr && Row < Table->RowCount; Row++) {
    HOST_TABLE_CELL *Cell = RaidTableCell(Table, Row, kActionColumn);
    if (Cell == nullptr) {
      continue;
    }
    if (!Enable) {
      Cell->Value = kSelectOption;
      Cell->DisplayState = HOST_DISPLAY_GRAYED;
      continue;
    }
    RAID_PHYSICAL_DRIVE *Drive = DriveAt(Row - 1);
    if (Drive != nullptr &&
        (Drive->State == RAID_STATE_UGOOD || Drive->State == RAID_STATE_JBOD ||
         Drive->State == RAID_STATE4_NON_RAID ||
         Drive->State == RAID_STATE4_GHS)) {
      Cell->DisplayState = HOST_DISPLAY_SHOWN;
    }
  }
  RaidMarkForReRead(DriveTableNode());
}

// The Next button's helpers below trace under Caller's name, the button's.

// The state a row's state text asks for; FALSE when the text asks for none.
[[nodiscard]] BOOLEAN RowTargetState(const CHAR8 *Caller,
                                     const CHAR16 *StateText, UINT32 *Target) {
  if (StateText == nullptr) {
    return FALSE;
  }
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF) {
    if (StrCmp(StateText, kWordUGood) == 0) {
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "RAID: [%a] Change UGOOD to  GHS\n");
      *Target = RAID_STATE2_DEDICATED;
      return TRUE;
    }
    if (StrCmp(StateText, kWordDedicated) == 0) {
      RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "RAID: [%a] Change GHS to  UGOOD\n");
      *Target = RAID_STATE2_UGOOD;
      return TRUE;
    }
    return FALSE;
  }
  if (StrCmp(StateText, kWordJbod) == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Change JBOD to UGOOD\n");
    *Target = RAID_STATE_UGOOD;
  } else if (StrCmp(StateText, kWordUGood) == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Change UGOOD to  JBOD\n");
    *Target = RAID_STATE_JBOD;
  } else if (StrCmp(StateText, kWordNonRaid) == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Change Non-RAID to GHS\n");
    *Target = RAID_STATE4_GHS;
  } else if (StrCmp(StateText, kWordGhs) == 0) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Change GHS to Non-RAID\n");
    *Target = RAID_STATE4_NON_RAID;
  } else {
    return FALSE;
  }
  return TRUE;
}

VOID ReportStateChangeFailure(const CHAR8 *Caller, EFI_STATUS Status,
                              UINT32 ErrorCode) {
  RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                "RAID: [%a] Status = %r, ErrorCode = %x", Status, ErrorCode);
  SendEventCode(RAID_EVENT_DRIVE_STATE_FAILED);
  ShowRaidErrorBox(ErrorCode);
}

// The all-drives action on every eligible drive at once.
VOID ApplyAllDrivesAction(const CHAR8 *Caller) {
  UINT32 State = RAID_STATE_JBOD;
  if (gLastAllDrivesAction == kActionJbodToUGood) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Change all JBOD to UGOOD\n");
    State = RAID_STATE_UGOOD;
  } else {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                  "RAID: [%a] Change all UGOOD to JBOD\n");
  }
  LIST_ENTRY *Head = nullptr;
  GetRaidControllerList(&Head);
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = SetAllRaidPhysicalDriveState(
      Head, gCurrentRaidController->Id, State, &ErrorCode);
  if (EFI_ERROR(Status) || ErrorCode != 0) {
    ReportStateChangeFailure(Caller, Status, ErrorCode);
  } else {
    SendEventCode(RAID_EVENT_DRIVE_STATE_DONE);
  }
}

// The rows' own choices, in row order, until one fails.
VOID ApplyRowActions(const CHAR8 *Caller, RAID_TABLE_DATA *Table) {
  for (UINT32 Row = 1; Row < Table->RowCount; Row++) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] RowIndex = %x\n", Row);
    HOST_TABLE_CELL *Action = RaidTableCell(Table, Row, kActionColumn);
    if (Action == nullptr || Action->Value == kSelectOption) {
      continue;
    }
    UINT32 Target = 0;
    EFI_STATUS Status = EFI_SUCCESS;
    UINT32 ErrorCode = 0;
    if (RowTargetState(Caller, RaidTableCell(Table, Row, kStateColumn)->Text,
                       &Target)) {
      Status = SetRaidPhysicalDriveState(Row - 1, gRaidSelectedControllerIndex,
                                         Target, &ErrorCode);
    }
    if (EFI_ERROR(Status) || ErrorCode != 0) {
      ReportStateChangeFailure(Caller, Status, ErrorCode);
      return;
    }
    // Also for a chosen row whose state text allowed no change, deliberately.
    SendEventCode(RAID_EVENT_DRIVE_STATE_DONE);
  }
}

VOID ReturnToAdapterPage() {
  gRaidCurrentPage = RAID_PAGE_CONTROLLER_SELECTION;
  RaidShowPage(RAID_PAGE_CONTROLLER_SELECTION, RAID_NODE_MANAGE_DRIVES);
}

// The all-drives options the drives' states allow: to JBOD when a drive is
// unconfigured good, to unconfigured good when one is JBOD.
VOID ShowActionOnAllDrivesComboBox() {
  BOOLEAN AnyJbod = FALSE;
  BOOLEAN AnyUGood = FALSE;
  for (UINT32 Index = 0; Index < DriveCount(); Index++) {
    RAID_PHYSICAL_DRIVE *Drive = DriveAt(Index);
    if (Drive == nullptr) {
      continue;
    }
    if (Drive->State == RAID_STATE_JBOD) {
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Drive %d in JBOD state\n", Index);
      AnyJbod = TRUE;
    } else if (Drive->State == RAID_STATE_UGOOD) {
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Drive %d in UGOOD state\n",
                 Index);
      AnyUGood = TRUE;
    }
  }
  EFI_STRING_ID Ids[3] = {STR_ACTIONS_ON_ALL_DRIVES, 0, 0};
  UINT16 Count = 1;
  if (AnyJbod) {
    Ids[Count++] = STR_ALL_JBOD_TO_UGOOD;
  }
  if (AnyUGood) {
    Ids[Count++] = STR_ALL_UGOOD_TO_JBOD;
  }
  HOST_OPTION_LIST List = {};
  List.Options =
      static_cast<HOST_OPTION *>(AllocateZeroPool(sizeof(HOST_OPTION) * Count));
  if (List.Options == nullptr) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  List.Count = Count;
  for (UINT16 Index = 0; Index < Count; Index++) {
    List.Options[Index].Value = Index;
    List.Options[Index].TextId = Ids[Index];
  }
  RaidSetControlOptions(AllDrivesCombo(), &List);
  if (Count == 1) {
    RaidGrayControl(kPage, RAID_NODE_ALL_DRIVES_COMBO);
  }
}

// A fresh entry: every choice dropped and the table read anew.
VOID ResetManageDrivesPage() {
  gRaidReInitFlags[RAID_REINIT_FLAG(kPage)] = 0;
  gLastAllDrivesAction = kActionNone;
  RaidSetControlText(RaidFindNode(kPage, RAID_NODE_DRIVES_ATTACHED),
                     RaidFormatNumberText(STR_DRIVES_ATTACHED, DriveCount()));
  if (DriveCount() == 0) {
    RaidHideControl(kPage, RAID_NODE_ALL_DRIVES_COMBO);
    RaidClearControlTable(DriveTableNode());
    return;
  }
  RaidSetControlTextId(kPage, RAID_NODE_ALL_DRIVES_COMBO,
                       STR_ACTIONS_ON_ALL_DRIVES);
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE ||
      gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP) {
    RaidGrayControl(kPage, RAID_NODE_ALL_DRIVES_COMBO);
  } else if (gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
             gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF) {
    RaidShowControl(kPage, RAID_NODE_ALL_DRIVES_COMBO);
    ShowActionOnAllDrivesComboBox();
  }
  ShowTable6();
}

}  // namespace

VOID ShowTable6() {
  RAID_TABLE_DATA Table = {};
  if (!GetRaidManagePhyDrvTableData(&Table)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    RaidFreeTable(&Table);
    return;
  }
  HOST_PAGE_NODE *Node = DriveTableNode();
  RaidSetControlTable(Node, &Table);
  RaidSetControlValue(Node, 1);
}

VOID InitRaidManagePhyDrvPage() {
  gRaidCurrentPage = kPage;
  RaidInstantiateOrRefreshPage(__func__, kPage);
  SetTableSize();
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kPage)] != 0) {
    ResetManageDrivesPage();
  }
  RaidShowPage(kPage, 0);
}

RAID_CONTROL_CALLBACK(RaidManagePhyDrvComboCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  UINT8 Action = kActionNone;
  switch (AllDrivesChoice()) {
    case STR_ALL_JBOD_TO_UGOOD:
      Action = kActionJbodToUGood;
      break;
    case STR_ALL_UGOOD_TO_JBOD:
      Action = kActionUGoodToJbod;
      break;
    default:
      break;
  }
  if (Action != gLastAllDrivesAction) {
    if (Action == kActionNone) {
      SetRowActions(TRUE);
      gLastAllDrivesAction = kActionNone;
    } else if (RaidMessageBox(HOST_MSGBOX_YES_NO, STR_WARNING_TITLE,
                              STR_CONFIRM_CHANGE_ALL_STATES, nullptr)) {
      SetRowActions(FALSE);
      gLastAllDrivesAction = Action;
    } else {
      RaidSetControlTextId(kPage, RAID_NODE_ALL_DRIVES_COMBO,
                           STR_ACTIONS_ON_ALL_DRIVES);
    }
  }
  RaidShowPage(kPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(TableCallback6) {
  (void)Node;
  (void)Event;
  RaidShowPage(kPage, 0);
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidManagePhyDrvNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TABLE_DATA *Table = RaidControlTable(DriveTableNode());
  if (DriveCount() == 0 || Table == nullptr || !HasPendingChange()) {
    ReturnToAdapterPage();
    return EFI_SUCCESS;
  }
  if (!RaidMessageBox(HOST_MSGBOX_YES_NO, STR_WARNING_TITLE,
                      STR_CONFIRM_CHANGE_STATES, nullptr)) {
    RaidShowPage(kPage, 0);
    return EFI_SUCCESS;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RowCount = %x\n", Table->RowCount);
  if (gLastAllDrivesAction != kActionNone) {
    ApplyAllDrivesAction(__func__);
  } else {
    ApplyRowActions(__func__, Table);
  }
  gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_CONFIG_TYPE)] = 1;
  gRaidReInitFlags[RAID_REINIT_FLAG(kPage)] = 1;
  UpdateNextButtonState();
  ReturnToAdapterPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidManagePhyDrvBackCallback) {
  (void)Node;
  (void)Event;
  if (DriveCount() != 0 && HasPendingChange()) {
    if (!RaidMessageBox(HOST_MSGBOX_YES_NO, STR_WARNING_TITLE,
                        STR_CONFIRM_DISCARD_CHANGES, nullptr)) {
      RaidShowPage(kPage, 0);
      return EFI_SUCCESS;
    }
    gRaidReInitFlags[RAID_REINIT_FLAG(kPage)] = 1;
  }
  ReturnToAdapterPage();
  return EFI_SUCCESS;
}

namespace {

constexpr HOST_CONTROL_DESCRIPTOR kCommonControls[] = {
    {RAID_NODE_NEXT, RaidManagePhyDrvNextCallback},
    {RAID_NODE_BACK, RaidManagePhyDrvBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kOwnControls[] = {
    {RAID_NODE_ALL_DRIVES_COMBO, RaidManagePhyDrvComboCallback},
    {RAID_NODE_DRIVE_TABLE, TableCallback6},
};

}  // namespace

constinit const RAID_PAGE_CONTROLS gRaidManageDrivesControls = {
    kCommonControls, 2, kOwnControls, 2};
