// Pages 6 and 7: the free capacity of an existing disk array, or the RAID
// level and drives of a new one, before the virtual disk editor. Both fix
// the RAID level in force and the capacity page 8 may distribute.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
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

constexpr UINT32 kArrayPage = RAID_PAGE_ADV_SELECT_ARRAY;
constexpr UINT32 kNewArrayPage = RAID_PAGE_ADV_NEW_ARRAY;

constexpr UINTN kSizeTextLength = 40;
// Most free segments one array lists.
constexpr UINT32 kMaxSegments = 64;
// Level records the level choice examines.
constexpr UINT32 kMaxLevelLookup = 10;
// Media type codes counted for the level options (0 to 4).
constexpr UINT32 kMediaTypes = 5;
// Room of the hint beyond its format.
constexpr UINTN kHintExtra = 25;
// Text buffer of one level option ("RAID %s").
constexpr UINTN kLevelOptionCharacters = 10;

// Drive table columns.
constexpr UINT32 kDriveColumns = 6;
constexpr UINT32 kCheckColumn = 0;
constexpr UINT32 kTypeColumn = 2;
constexpr UINT32 kStateColumn = 3;
constexpr UINT32 kRoleColumn = 5;
constexpr UINT32 kRoleMember = 0;
constexpr UINT32 kRoleHotSpare = 1;
// Rows of the drive table's area (heading included) with many drives.
constexpr UINT16 kDriveTableRows = 12;

// The drive id of each drive-table row (row r is entry r - 1).
constinit UINT32 *gRowDriveIds = nullptr;
constinit UINT32 gRowCount = 0;
// Page 7's level options: index in force.
constinit UINT8 gNewArrayLevelIndex = 0;

[[nodiscard]] HOST_PAGE_NODE *SegmentTable() {
  return RaidFindNode(kArrayPage, RAID_NODE_FREE_SEGMENT_TABLE);
}
[[nodiscard]] HOST_PAGE_NODE *LevelCombo() {
  return RaidFindNode(kNewArrayPage, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
}
[[nodiscard]] HOST_PAGE_NODE *DriveTable() {
  return RaidFindNode(kNewArrayPage, RAID_NODE_NEW_ARRAY_DRIVE_TABLE);
}

// ---- Page 6 ------------------------------------------------------------------------

// Makes free segment Index (counted over all arrays) the chosen one, its
// array and the array's level the ones in force.
VOID GetSelectedArrayAndFreeCapacity(UINT32 Index) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Array count is %d\n", Count);
  UINT32 Running = 0;
  for (UINT32 ArrayIndex = 0; ArrayIndex < Count; ArrayIndex++) {
    RAID_VOLUME *Segments[kMaxSegments] = {};
    const UINT32 SegmentCount =
        RaidCollectFreeSegments(Arrays[ArrayIndex], Segments, kMaxSegments);
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] RAID array %d free capacity count is %d\n",
               Arrays[ArrayIndex]->Id, SegmentCount);
    for (UINT32 Segment = 0; Segment < SegmentCount; Segment++, Running++) {
      if (Running != Index) {
        continue;
      }
      gRaidSelectedArrayId = Arrays[ArrayIndex]->Id;
      gRaidSelectedSegmentId = Segments[Segment]->Id;
      gRaidSelectedLevelNumber = Arrays[ArrayIndex]->RaidLevel;
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Arrya id is %d\n",
                 gRaidSelectedArrayId);
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RAID level is %d\n",
                 gRaidSelectedLevelNumber);
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Free capacity id is %d\n",
                 gRaidSelectedSegmentId);
      return;
    }
  }
}

// One row per free segment of every array.
VOID GetRaidSelectArrayTableData(RAID_TABLE_DATA *Table) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS] = {};
  const UINT32 Count = RaidCollectArrays(gCurrentRaidController, Arrays,
                                         RAID_SERVICE_MAX_ARRAYS);
  UINT32 Rows = 1;
  for (UINT32 Index = 0; Index < Count; Index++) {
    Rows += Arrays[Index]->FreeSegmentCount;
  }
  if (!RaidAllocTable(Table, Rows, 4,
                      HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  RaidSetCellText(Table, 0, 1, AllocString(RaidString(STR_COLUMN_NAME)));
  RaidSetCellText(Table, 0, 2, AllocString(RaidString(STR_RAID_LEVEL_PREFIX)));
  RaidSetCellText(Table, 0, 3,
                  AllocString(RaidString(STR_COLUMN_FREE_CAPACITY)));
  UINT32 Row = 1;
  for (UINT32 Index = 0; Index < Count; Index++) {
    RAID_VOLUME *Segments[kMaxSegments] = {};
    const UINT32 SegmentCount =
        RaidCollectFreeSegments(Arrays[Index], Segments, kMaxSegments);
    for (UINT32 Segment = 0; Segment < SegmentCount && Row < Rows; Segment++) {
      RaidSetCellText(Table, Row, 1, AllocString(Arrays[Index]->Name));
      RaidSetCellText(Table, Row, 2,
                      RaidFormatText(kSizeTextLength, u"%s%d", u"RAID ",
                                     Arrays[Index]->RaidLevel));
      RaidSetCellText(Table, Row, 3,
                      RaidSizeText(Segments[Segment]->SizeFigure,
                                   Segments[Segment]->SizeUnit));
      Row++;
    }
  }
}

RAID_CONTROL_CALLBACK(RaidAdvSelArrayTableCallback) {
  (void)Node;
  (void)Event;
  gRaidSelectionChanged = 1;
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSelArrayNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (gRaidSelectionChanged != 0) {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Need to update the create and edit VD page\n");
    const UINT32 Row = static_cast<UINT32>(RaidControlValue(SegmentTable(), 1));
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Free raid index is %x\n", Row - 1);
    RaidFreeVolumeParameterQueue();
    GetSelectedArrayAndFreeCapacity(Row - 1);
    gRaidTotalCapacity = GetArrayMaxAvailableFreeCapacity();
  }
  InitRaidAdvCreateEditVolPage();
  return EFI_SUCCESS;
}

RAID_CONTROL_CALLBACK(RaidAdvSelArrayBackCallback) {
  (void)Node;
  (void)Event;
  InitRaidConfigTypeSelPage();
  return EFI_SUCCESS;
}

// ---- Page 7: drives ---------------------------------------------------------------------

[[nodiscard]] BOOLEAN IsUsableState(UINT32 State) {
  return State == RAID_STATE_UGOOD || State == RAID_STATE2_UGOOD ||
         State == RAID_STATE3_READY || State == RAID_STATE4_NON_RAID ||
         State == 54;
}

// The media type word of the drive table.
[[nodiscard]] const CHAR16 *MediaWord(UINT32 MediaType) {
  if (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE) {
    return u"-";
  }
  switch (MediaType) {
    case RAID_MEDIA_SATA_HDD:
      return u"SATA/HDD";
    case RAID_MEDIA_SATA_SSD:
      return u"SATA/SSD";
    case RAID_MEDIA_SAS_HDD:
      return u"SAS/HDD";
    case RAID_MEDIA_NVME_SSD:
      return u"NVMe/SSD";
    default:
      // Deliberately: SAS SSD and every other code read "SAS/SSD".
      return u"SAS/SSD";
  }
}

// The state word of a usable drive for the adapter kind; NULL: no rule.
[[nodiscard]] const CHAR16 *UsableWord() {
  switch (gRaidAdapterKind) {
    case RAID_ADAPTER_KIND_STORCLI:
    case RAID_ADAPTER_KIND_ARCCONF:
      return u"UGood";
    case RAID_ADAPTER_KIND_MVSETUP:
      return u"Ready";
    case RAID_ADAPTER_KIND_RSTE:
      return u"Non-RAID";
    default:
      return nullptr;
  }
}

// Whether the role cell offers the dedicated hot spare.
[[nodiscard]] BOOLEAN OffersHotSpareRole() {
  if (gRaidSelectedLevelNumber == 0) {
    return FALSE;
  }
  return gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
         gRaidAdapterKind == RAID_ADAPTER_KIND_MNV_CLI ||
         gRaidAdapterKind == RAID_ADAPTER_KIND_VROC ||
         gRaidAdapterKind == RAID_ADAPTER_KIND_UNSUPPORTED;
}

// The role combo box of a drive's row, grayed until the drive is ticked.
// Without memory for its options it stays an empty grayed box.
VOID FillRoleCell(HOST_TABLE_CELL *Cell) {
  static constexpr const CHAR16 *kRoles[] = {u"Member", u"DHS"};
  const UINT16 Count = OffersHotSpareRole() ? 2 : 1;
  Cell->Kind = HOST_CELL_COMBO_BOX;
  Cell->DisplayState = HOST_DISPLAY_GRAYED;
  Cell->Value = kRoleMember;
  Cell->Options.Options =
      static_cast<HOST_OPTION *>(AllocateZeroPool(sizeof(HOST_OPTION) * Count));
  if (Cell->Options.Options == nullptr) {
    return;
  }
  Cell->Options.Count = Count;
  for (UINT16 Index = 0; Index < Count; Index++) {
    Cell->Options.Options[Index].Value = Index;
    Cell->Options.Options[Index].Text = AllocString(kRoles[Index]);
  }
}

// One row of a drive.
VOID WriteRaidArrayData(RAID_TABLE_DATA *Table, UINT32 Row,
                        const RAID_PHYSICAL_DRIVE *Drive) {
  HOST_TABLE_CELL *Check = RaidTableCell(Table, Row, kCheckColumn);
  Check->Kind = HOST_CELL_CHECK_BOX;
  RaidSetCellText(
      Table, Row, 1,
      RaidFormatText(StrLen(Drive->Location), u"%s", Drive->Location));
  RaidSetCellText(Table, Row, kTypeColumn,
                  AllocString(MediaWord(Drive->MediaType)));
  RaidSetCellText(Table, Row, kStateColumn,
                  AllocString(GetStateText(Drive->State)));
  RaidSetCellText(Table, Row, 4,
                  RaidSizeText(Drive->SizeFigure, Drive->SizeUnit));
  FillRoleCell(RaidTableCell(Table, Row, kRoleColumn));
}

// Grays the check boxes of drives that cannot join (for the kinds with a
// usable state word), and the select-all box when any row is grayed or the
// types differ (for every kind: one array takes one type of drive).
VOID GrayUnusableRows(RAID_TABLE_DATA *Table) {
  const CHAR16 *Usable = UsableWord();
  BOOLEAN GrayAll = FALSE;
  for (UINT32 Row = 1; Row < Table->RowCount; Row++) {
    HOST_TABLE_CELL *State = RaidTableCell(Table, Row, kStateColumn);
    if (Usable != nullptr &&
        (State->Text == nullptr || StrCmp(State->Text, Usable) != 0)) {
      RaidTableCell(Table, Row, kCheckColumn)->DisplayState =
          HOST_DISPLAY_GRAYED;
      GrayAll = TRUE;
    }
    const CHAR16 *Type = RaidTableCell(Table, Row, kTypeColumn)->Text;
    const CHAR16 *First = RaidTableCell(Table, 1, kTypeColumn)->Text;
    if (Type != nullptr && First != nullptr && StrCmp(Type, First) != 0) {
      GrayAll = TRUE;
    }
  }
  if (GrayAll) {
    RaidTableCell(Table, 0, kCheckColumn)->DisplayState = HOST_DISPLAY_GRAYED;
  }
}

// The drive table of page 7: one row per unconfigured drive.
VOID GetCreateRaidTableData() {
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  FreePool(gRowDriveIds);
  gRowDriveIds = nullptr;
  gRowCount = 0;
  HOST_PAGE_NODE *Node = DriveTable();
  if (Controller == nullptr || Node == nullptr) {
    return;
  }
  const UINT32 Drives = Controller->UnconfiguredDriveCount;
  RAID_TABLE_DATA Table;
  gRowDriveIds = static_cast<UINT32 *>(
      AllocateZeroPool(sizeof(UINT32) * (static_cast<UINTN>(Drives) + 1)));
  if (gRowDriveIds == nullptr ||
      !RaidAllocTable(&Table, Drives + 1, kDriveColumns,
                      HOST_TABLE_HEADING | HOST_TABLE_SELECTABLE)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  RaidTableCell(&Table, 0, kCheckColumn)->Kind = HOST_CELL_CHECK_BOX;
  const BOOLEAN Enclosures = gRaidAdapterKind == RAID_ADAPTER_KIND_STORCLI ||
                             gRaidAdapterKind == RAID_ADAPTER_KIND_ARCCONF;
  RaidSetCellText(
      &Table, 0, 1,
      AllocString(Enclosures ? u"EID:Slot" : RaidString(STR_COLUMN_DRIVE)));
  RaidSetCellText(&Table, 0, kTypeColumn,
                  AllocString(RaidString(STR_COLUMN_TYPE)));
  RaidSetCellText(&Table, 0, kStateColumn,
                  AllocString(RaidString(STR_COLUMN_STATE)));
  RaidSetCellText(&Table, 0, 4, AllocString(RaidString(STR_COLUMN_CAPACITY)));
  RaidSetCellText(&Table, 0, kRoleColumn,
                  AllocString(RaidString(STR_COLUMN_ROLE)));
  UINT32 Row = 1;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller->PhysicalDriveList)) {
    if (Row > Drives) {
      break;
    }
    WriteRaidArrayData(&Table, Row, Drive);
    gRowDriveIds[Row - 1] = Drive->Id;
    Row++;
  }
  gRowCount = Row - 1;
  GrayUnusableRows(&Table);
  RaidSetControlTable(Node, &Table);
  RaidSetControlValue(Node, 1);
}

// The table's visible rows: all drives up to four, else the page's room.
VOID SetDriveTableSize() {
  HOST_PAGE_NODE *Node = DriveTable();
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL || gCurrentRaidController == nullptr) {
    return;
  }
  const UINT32 Drives = gCurrentRaidController->UnconfiguredDriveCount;
  Node->Control->Layout.Height =
      Drives >= 1 && Drives <= 4 ? static_cast<UINT16>(Drives + 2)
                                 : kDriveTableRows;
}

VOID ShowTable3() {
  RaidClearControlTable(DriveTable());
  GetCreateRaidTableData();
}

// The level's text as the combo box shows it ("RAID 5").
[[nodiscard]] const CHAR16 *LevelText() {
  const CHAR16 *Text = RaidChosenOptionText(LevelCombo());
  return Text != nullptr ? Text : u"";
}

// The drive warning label with a formatted message.
VOID ShowDriveWarning(CHAR16 *Text) {
  RaidSetLabel(kNewArrayPage, RAID_NODE_NEW_ARRAY_WARNING, Text);
  RaidShowStatusControl(kNewArrayPage, RAID_NODE_NEW_ARRAY_WARNING);
}

// The ticked rows that are members (not hot spares).
[[nodiscard]] UINT32 CountTickedMembers() {
  RAID_TABLE_DATA *Table = RaidControlTable(DriveTable());
  UINT32 Members = 0;
  for (UINT32 Row = 1; Table != nullptr && Row < Table->RowCount; Row++) {
    if (RaidTableCell(Table, Row, kCheckColumn)->Value != 0 &&
        RaidTableCell(Table, Row, kRoleColumn)->Value != kRoleHotSpare) {
      Members++;
    }
  }
  return Members;
}

// Checks the ticked drives against the level's limits; Next and the drive
// warning follow.
[[nodiscard]] BOOLEAN HardDriveSelValidation() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  CHAR8 Language[16] = {};
  if (TarnSetupProtocol != nullptr && TarnSetupProtocol->GetLanguage != nullptr) {
    EFI_STATUS Status =
        TarnSetupProtocol->GetLanguage(Language, sizeof(Language));
    if (EFI_ERROR(Status)) {
      RAID_TRACE(TARN_DEBUG_ERROR,
                 "RAID: [%a] Failed to get current language, %r", Status);
    }
  }
  const UINT32 Members = CountTickedMembers();
  RAID_LEVEL_CAP *Level = RaidSelectedLevel();
  if (Level == nullptr) {
    return gRaidDriveValid != 0;
  }
  const UINT32 Min = Level->MinPhysicalDrives;
  const UINT32 Max = Level->MaxPhysicalDrives;
  EFI_STRING_ID Message = 0;
  UINT32 Number = 0;
  switch (Level->Level) {
    case 0:
    case 1:
    case 5:
    case 6:
    case 10:
    case 50:
    case 60:
      break;
    default:
      return gRaidDriveValid != 0;
  }
  if (Members < Min) {
    Message = STR_WARN_MINIMUM_DRIVES;
    Number = Min;
  } else if (Members > Max) {
    Message = STR_WARN_MAXIMUM_DRIVES;
    Number = Max;
  } else if ((Members & 1) != 0 && Level->Level != 0 && Level->Level != 5 &&
             Level->Level != 6) {
    // The two even-count messages differ by level deliberately.
    Message = Level->Level == 10 ? STR_WARN_DRIVES_TIMES_OF_TWO
                                 : STR_WARN_EVEN_DRIVES;
  }
  if (Message == 0) {
    RaidHideControl(kNewArrayPage, RAID_NODE_NEW_ARRAY_WARNING);
    RaidShowControl(kNewArrayPage, RAID_NODE_NEXT);
    gRaidDriveValid = 1;
    RaidShowPage(kNewArrayPage, 0);
    return TRUE;
  }
  const CHAR16 *Format = RaidString(Message);
  ShowDriveWarning(RaidFormatText(StrLen(Format) + StrLen(LevelText()) + 5,
                                  Format, LevelText(), Number));
  RaidGrayControl(kNewArrayPage, RAID_NODE_NEXT);
  gRaidDriveValid = 0;
  RaidShowPage(kNewArrayPage, 0);
  return FALSE;
}

// Ticks or unticks every selectable row (the heading's check box).
VOID TickAllRows(RAID_TABLE_DATA *Table, UINT32 Value) {
  for (UINT32 Row = 1; Row < Table->RowCount; Row++) {
    HOST_TABLE_CELL *Check = RaidTableCell(Table, Row, kCheckColumn);
    if (Check->DisplayState == HOST_DISPLAY_SHOWN) {
      Check->Value = Value;
      RaidTableCell(Table, Row, kRoleColumn)->DisplayState =
          Value != 0 ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
    }
  }
}

// A ticked drive's role cell becomes usable; an unticked one's goes back
// to Member and is grayed. Every change runs the drive check again.
RAID_CONTROL_CALLBACK(TableCallback3) {
  if (Event == nullptr || Event->Event != HOST_EVENT_CELL_CHANGE) {
    return EFI_SUCCESS;
  }
  RAID_TABLE_DATA *Table = RaidControlTable(Node);
  if (Table == nullptr) {
    return EFI_SUCCESS;
  }
  gRaidSelectionChanged = 1;
  if (Event->Column == kCheckColumn) {
    if (Event->Row == 0) {
      TickAllRows(Table, static_cast<UINT32>(Event->Value));
    } else {
      HOST_TABLE_CELL *Role = RaidTableCell(Table, Event->Row, kRoleColumn);
      if (Role != nullptr) {
        Role->DisplayState =
            Event->Value != 0 ? HOST_DISPLAY_SHOWN : HOST_DISPLAY_GRAYED;
        if (Event->Value == 0) {
          Role->Value = kRoleMember;
        }
      }
    }
    Node->RefreshMark |= HOST_REFRESH_TEXT;
  }
  // Run for the hint and the check boxes it sets; Next is judged when the
  // operator presses it.
  (VOID) HardDriveSelValidation();
  return EFI_SUCCESS;
}

// ---- Page 7: levels -----------------------------------------------------------------------

// The hint of the level: the number arguments come first except in the
// languages whose translation names the level first.
VOID UpdateWarningComboMsg(EFI_STRING_ID TextId, UINT32 Min, UINT32 Max) {
  const CHAR16 *Format = RaidString(TextId);
  const UINTN Characters = StrLen(Format) + kHintExtra;
  CHAR16 *Text = nullptr;
  if (Min == 0 && Max == 0) {
    Text = RaidFormatText(Characters, Format, LevelText());
  } else {
    CHAR8 Language[16] = {};
    EFI_STATUS Status = EFI_UNSUPPORTED;
    if (TarnSetupProtocol != nullptr &&
        TarnSetupProtocol->GetLanguage != nullptr) {
      Status = TarnSetupProtocol->GetLanguage(Language, sizeof(Language));
    }
    BOOLEAN LevelFirst = FALSE;
    if (EFI_ERROR(Status)) {
      RAID_TRACE(TARN_DEBUG_ERROR,
                 "RAID: [%a] Failed to get the current language -- %r\n",
                 Status);
    } else {
      CHAR16 WideLanguage[sizeof(Language)] = {};
      for (UINTN Index = 0; Index < sizeof(Language) && Language[Index] != 0;
           Index++) {
        WideLanguage[Index] = static_cast<CHAR16>(Language[Index]);
      }
      RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Current language: %s\n",
                 WideLanguage);
      static constexpr const CHAR8 *kLevelFirst[] = {"zh-Hans", "zh-Hant",
                                                     "ko-KR", "ru-RU"};
      for (const CHAR8 *Code : kLevelFirst) {
        if (AsciiStrCmp(Language, Code) == 0) {
          LevelFirst = TRUE;
        }
      }
    }
    Text = LevelFirst ? RaidFormatText(Characters, Format, LevelText(), Min, Max)
                      : RaidFormatText(Characters, Format, Min, Max, LevelText());
  }
  RaidSetControlText(RaidFindNode(kNewArrayPage, RAID_NODE_NEW_ARRAY_HINT),
                     Text);
  RaidShowStatusControl(kNewArrayPage, RAID_NODE_NEW_ARRAY_HINT);
}

// The levels the unconfigured drives of one media type can satisfy.
VOID RaidLevelDisplayInCreateNewArray() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  UINT32 PerMedia[kMediaTypes] = {};
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  UINT32 Seen = 0;
  for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
           Controller->PhysicalDriveList)) {
    if (Seen++ >= Controller->UnconfiguredDriveCount) {
      break;
    }
    if (IsUsableState(Drive->State) && Drive->MediaType < kMediaTypes) {
      PerMedia[Drive->MediaType]++;
    }
  }
  RAID_LEVEL_CAP *Levels[RAID_WIZARD_MAX_LEVELS] = {};
  const UINT32 Count = RaidControllerLevels(Levels, RAID_WIZARD_MAX_LEVELS);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] RAID level count is %d\n", Count);
  CHAR16 Texts[RAID_WIZARD_MAX_LEVELS][kLevelOptionCharacters + 1] = {};
  const CHAR16 *Offered[RAID_WIZARD_MAX_LEVELS] = {};
  UINT16 OfferedCount = 0;
  for (UINT32 Index = 0; Index < Count; Index++) {
    BOOLEAN Enough = FALSE;
    for (UINT32 Media = 0; Media < kMediaTypes; Media++) {
      Enough = Enough || Levels[Index]->MinPhysicalDrives <= PerMedia[Media];
    }
    if (!Enough) {
      continue;
    }
    UnicodeSPrint(Texts[OfferedCount], sizeof(Texts[OfferedCount]), u"RAID %s",
                  Levels[Index]->Name);
    Offered[OfferedCount] = Texts[OfferedCount];
    OfferedCount++;
  }
  if (!RaidSetTextOptions(LevelCombo(), Offered, OfferedCount)) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    return;
  }
  gNewArrayLevelIndex = 0;
  RaidSetControlValue(LevelCombo(), 0);
  RaidShowPage(kNewArrayPage, 0);
}

RAID_CONTROL_CALLBACK(RaidAdvCreateArrayComboCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  const UINT32 Number = RaidLevelNumber(LevelText());
  if (Number == gRaidSelectedLevelNumber) {
    return EFI_SUCCESS;
  }
  gRaidSelectionChanged = 1;
  RAID_LEVEL_CAP *Levels[kMaxLevelLookup] = {};
  const UINT32 Count = RaidControllerLevels(Levels, kMaxLevelLookup);
  RAID_LEVEL_CAP *Level = nullptr;
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Levels[Index]->Level == Number) {
      Level = Levels[Index];
      break;
    }
  }
  gRaidSelectedLevelNumber = Level != nullptr ? Level->Level : RAID_NO_SELECTION;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Selected RAID level = %d\n", Number);
  const BOOLEAN TwoDrives =
      (gRaidAdapterKind == RAID_ADAPTER_KIND_MVSETUP &&
       (Number == 0 || Number == 1)) ||
      (gRaidAdapterKind == RAID_ADAPTER_KIND_RSTE && Number == 1);
  if (TwoDrives) {
    UpdateWarningComboMsg(STR_HINT_TWO_DRIVES, 0, 0);
  } else if (Level != nullptr) {
    UpdateWarningComboMsg(STR_HINT_DRIVE_RANGE, Level->MinPhysicalDrives,
                          Level->MaxPhysicalDrives);
  }
  ShowTable3();
  RaidHideControl(kNewArrayPage, RAID_NODE_NEW_ARRAY_WARNING);
  RaidGrayControl(kNewArrayPage, RAID_NODE_NEXT);
  gRaidDriveValid = 0;
  RaidShowPage(kNewArrayPage, 0);
  return EFI_SUCCESS;
}

// The capacity of a new array over the member drives.
[[nodiscard]] UINT64 GetNewArrayFreeCpacity() {
  UINT64 Smallest = 0;
  for (UINT16 Index = 0; Index < gRaidMemberDriveCount; Index++) {
    RAID_PHYSICAL_DRIVE *Drive =
        RaidFindUnconfiguredDrive(gRaidMemberDriveIds[Index]);
    const UINT64 Capacity = Drive != nullptr ? RaidDriveCapacity(Drive) : 0;
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Disk %d size %d GB\n", Index,
               static_cast<UINT32>(Capacity / 1000));
    if (Index == 0 || Capacity < Smallest) {
      Smallest = Capacity;
    }
  }
  const UINT64 Capacity =
      RaidLevelCapacity(gRaidSelectedLevelNumber, Smallest,
                        gRaidMemberDriveCount) /
      1000;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] New array capacity is %d\n",
             static_cast<UINT32>(Capacity));
  return Capacity;
}

// Splits the ticked rows into members and dedicated hot spares; traced
// under Caller's name.
VOID CollectSelectedDrives(const CHAR8 *Caller) {
  RaidFreeSelectedDrives();
  gRaidTotalCapacity = 0;
  RAID_TABLE_DATA *Table = RaidControlTable(DriveTable());
  if (Table == nullptr || gRowCount == 0) {
    return;
  }
  gRaidMemberDriveIds = static_cast<UINT32 *>(
      AllocateZeroPool(sizeof(UINT32) * (static_cast<UINTN>(gRowCount) + 1)));
  gRaidHotSpareDriveIds = static_cast<UINT32 *>(
      AllocateZeroPool(sizeof(UINT32) * (static_cast<UINTN>(gRowCount) + 1)));
  if (gRaidMemberDriveIds == nullptr || gRaidHotSpareDriveIds == nullptr) {
    RAID_TRACE_AS(Caller, TARN_DEBUG_ERROR, "RAID: [%a] Out of resource\n");
    RaidFreeSelectedDrives();
    return;
  }
  for (UINT32 Row = 1; Row < Table->RowCount && Row <= gRowCount; Row++) {
    if (RaidTableCell(Table, Row, kCheckColumn)->Value == 0) {
      continue;
    }
    if (RaidTableCell(Table, Row, kRoleColumn)->Value == kRoleHotSpare) {
      gRaidHotSpareDriveIds[gRaidHotSpareDriveCount++] = gRowDriveIds[Row - 1];
    } else {
      gRaidMemberDriveIds[gRaidMemberDriveCount++] = gRowDriveIds[Row - 1];
    }
  }
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Member disk drive number %d\n",
                gRaidMemberDriveCount);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO,
                "RAID: [%a] Dedicated hot spare disk drive number %d\n",
                gRaidHotSpareDriveCount);
  gRaidTotalCapacity = GetArrayMaxAvailableFreeCapacity();
}

RAID_CONTROL_CALLBACK(RaidAdvCreateArrayNextCallback) {
  (void)Node;
  (void)Event;
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (gRaidSelectionChanged != 0) {
    if (!HardDriveSelValidation()) {
      RaidGrayControl(kNewArrayPage, RAID_NODE_NEXT);
      gRaidDriveValid = 0;
      RaidShowPage(kNewArrayPage, 0);
      return EFI_SUCCESS;
    }
    RaidFreeVolumeParameterQueue();
    CollectSelectedDrives(__func__);
  }
  RaidHideControl(kNewArrayPage, RAID_NODE_NEW_ARRAY_WARNING);
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
constexpr HOST_CONTROL_DESCRIPTOR kSelectArrayOwn[] = {
    {RAID_NODE_FREE_SEGMENT_TABLE, RaidAdvSelArrayTableCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kNewArrayCommon[] = {
    {RAID_NODE_NEXT, RaidAdvCreateArrayNextCallback},
    {RAID_NODE_BACK, RaidAdvCreateArrayBackCallback},
};
constexpr HOST_CONTROL_DESCRIPTOR kNewArrayOwn[] = {
    {RAID_NODE_NEW_ARRAY_LEVEL_COMBO, RaidAdvCreateArrayComboCallback},
    {RAID_NODE_NEW_ARRAY_DRIVE_TABLE, TableCallback3},
};

}  // namespace

UINT64 GetArrayMaxAvailableFreeCapacity() {
  UINT64 Capacity = 0;
  if (gRaidAdvancedMode == 0) {
    Capacity = GetNewArrayFreeCpacity();
  } else {
    RAID_VOLUME *Segment = RaidSelectedFreeSegment();
    if (Segment != nullptr) {
      Capacity = RaidWholeGb(Segment->SizeFigure, Segment->SizeUnit);
    }
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Available free capacity is %d GB\n",
             static_cast<UINT32>(Capacity));
  return Capacity;
}

VOID InitRaidAdvArraySelectionPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = kArrayPage;
  RaidInstantiatePage(__func__, kArrayPage);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kArrayPage)] != 0) {
    gRaidSelectedArrayId = RAID_NO_SELECTION;
    gRaidSelectedSegmentId = RAID_NO_SELECTION;
    gRaidReInitFlags[RAID_REINIT_FLAG(kArrayPage)] = 0;
    gRaidSelectionChanged = 1;
    ShowTable2();
  }
  RaidShowPage(kArrayPage, RAID_NODE_FREE_SEGMENT_TABLE);
}

VOID ShowTable2() {
  HOST_PAGE_NODE *Node = SegmentTable();
  if (Node == nullptr) {
    return;
  }
  const UINT64 Selected = RaidControlValue(Node, 1);
  RAID_TABLE_DATA Table;
  GetRaidSelectArrayTableData(&Table);
  const UINT32 Rows = Table.RowCount;
  RaidSetControlTable(Node, &Table);
  RaidSetControlValue(Node, Selected < Rows ? Selected : 1);
}

VOID InitRaidAdvCreateArraySelectionPage() {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  gRaidCurrentPage = kNewArrayPage;
  RaidInstantiateOrRefreshPage(__func__, kNewArrayPage);
  SetDriveTableSize();
  RaidShowPage(kNewArrayPage, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
  if (gRaidReInitFlags[RAID_REINIT_FLAG(kNewArrayPage)] != 0) {
    gRaidSelectedLevelNumber = RAID_NO_SELECTION;
    gRaidReInitFlags[RAID_REINIT_FLAG(kNewArrayPage)] = 0;
    gRaidSelectionChanged = 1;
    gRaidDriveValid = 0;
    gNewArrayLevelIndex = 0;
    RaidLevelDisplayInCreateNewArray();
    (VOID) RaidAdvCreateArrayComboCallback(LevelCombo(), nullptr);
  }
  if (gRaidDriveValid != 0) {
    RaidShowControl(kNewArrayPage, RAID_NODE_NEXT);
  } else {
    RaidGrayControl(kNewArrayPage, RAID_NODE_NEXT);
  }
  RaidShowPage(kNewArrayPage, RAID_NODE_NEW_ARRAY_LEVEL_COMBO);
}

VOID RaidNewArrayLanguageChanged() {
  gRaidSelectedLevelNumber = RAID_NO_SELECTION;
  RaidAdvCreateArrayComboCallback(LevelCombo(), nullptr);
}

VOID RaidFreeNewArrayRows() {
  FreePool(gRowDriveIds);
  gRowDriveIds = nullptr;
  gRowCount = 0;
}

constinit const RAID_PAGE_CONTROLS gRaidSelectArrayControls = {
    kSelectArrayCommon, 2, kSelectArrayOwn, 1};
constinit const RAID_PAGE_CONTROLS gRaidNewArrayControls = {
    kNewArrayCommon, 2, kNewArrayOwn, 2};
