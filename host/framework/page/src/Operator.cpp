// Operator actions: each checks the control, stores the value, hands it to
// the module's data source, calls the control's callback and reads what the
// refresh marks then say.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "FrameworkState.h"
#include "framework/Operator.h"
#include "framework/Text.h"

namespace framework {
namespace {

// Longest text an edit box takes; longer input is cut.
constexpr UINTN kMaxEditLength = 256;

// The record of a control the operator may act on, or an error status.
[[nodiscard]] EFI_STATUS Operable(HOST_PAGE_NODE *Node, UINT32 Kind,
                                  UINT32 OtherKind, Control **Record) {
  *Record = RecordOf(Node);
  if (*Record == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  UINT32 Actual = (*Record)->Public.Kind;
  if (Actual != Kind && Actual != OtherKind) {
    return EFI_INVALID_PARAMETER;
  }
  if (gState.Page == nullptr || !IsInSubtree(Node, gState.Page) ||
      EffectiveState(Node) != HOST_DISPLAY_SHOWN) {
    return EFI_ACCESS_DENIED;
  }
  return EFI_SUCCESS;
}

// TRUE for the statuses with which a data source says it keeps no value.
[[nodiscard]] BOOLEAN IsNotServed(EFI_STATUS Status) {
  return Status == EFI_NOT_FOUND || Status == EFI_UNSUPPORTED;
}

// Hands the control's new value to the data source; an error status when
// the module refused it.
[[nodiscard]] EFI_STATUS HandOver(HOST_PAGE_NODE *Node, Control *Record) {
  RAID_SETUP_DATA_SOURCE_PROTOCOL *Source = gState.DataSource;
  if (Source == nullptr || Source->SetValue == nullptr) {
    return EFI_SUCCESS;
  }
  HOST_CONTROL_VALUE Value = {Record->Public.Kind, Record->Text,
                              Record->Public.Value, Record->Public.Minimum,
                              Record->Public.Maximum};
  EFI_STATUS Status = Source->SetValue(Node, &Value);
  return EFI_ERROR(Status) && !IsNotServed(Status) ? Status : EFI_SUCCESS;
}

// Replaces the control's text copy.
VOID StoreText(Control *Record, CHAR16 *Text) {
  FreePool(Record->Text);
  Record->Text = Text;
  Record->Public.CachedText = Text;
}

// The callback, the steps of the page it showed, then the refresh marks of
// the page shown (the callback may have shown another one, or freed Node).
[[nodiscard]] EFI_STATUS Notify(HOST_PAGE_NODE *Node, Control *Record,
                                const HOST_CONTROL_EVENT &Event) {
  gState.Focus = Node;
  if (Record->Callback != nullptr) {
    Record->Callback(Node, &Event);
  }
  RunDueSteps();
  if (gState.Page != nullptr) {
    ProcessRefreshMarks(gState.Page);
  }
  return EFI_SUCCESS;
}

// Stores Value (and for a combo box the chosen option's text), hands it
// over and notifies; the old value comes back when the module refuses.
[[nodiscard]] EFI_STATUS ChangeValue(HOST_PAGE_NODE *Node, Control *Record,
                                     UINT64 Value) {
  UINT64 Old = Record->Public.Value;
  Record->Public.Value = Value;
  EFI_STATUS Status = HandOver(Node, Record);
  if (EFI_ERROR(Status)) {
    Record->Public.Value = Old;
    return Status;
  }
  if (Record->Public.Kind == HOST_CONTROL_COMBO_BOX) {
    StoreText(Record, CopyText(Record->Options.Items[Value].Text));
  }
  HOST_CONTROL_EVENT Event = {HOST_EVENT_CHANGE, 0, 0, Value};
  return Notify(Node, Record, Event);
}

[[nodiscard]] CellCopy *CellOf(Control *Record, UINT32 Row, UINT32 Column) {
  TableCopy &Table = Record->Table;
  if (Table.Cells == nullptr || Row >= Table.Rows || Column >= Table.Columns) {
    return nullptr;
  }
  return &Table.Cells[static_cast<UINTN>(Row) * Table.Columns + Column];
}

// Hands a table cell's new value to the data source.
[[nodiscard]] EFI_STATUS HandOverCell(HOST_PAGE_NODE *Node, UINT32 Row,
                                      UINT32 Column, UINT32 Value) {
  RAID_SETUP_DATA_SOURCE_PROTOCOL *Source = gState.DataSource;
  if (Source == nullptr || Source->SetTableCell == nullptr) {
    return EFI_SUCCESS;
  }
  HOST_TABLE_CELL_CHANGE Change = {Row, Column, Value};
  EFI_STATUS Status = Source->SetTableCell(Node, &Change);
  return EFI_ERROR(Status) && !IsNotServed(Status) ? Status : EFI_SUCCESS;
}

// The host's own help when the module registered none.
constexpr CHAR16 kHostHelpHeading[] = u"RAID Setup";
constexpr CHAR16 kHostHelpText[] = u"No help is available for this page.";

VOID ShowHostHelp() {
  FreeHelpLines();
  HelpLine *Lines =
      static_cast<HelpLine *>(AllocateZeroPool(sizeof(HelpLine) * 2));
  if (Lines == nullptr) {
    return;
  }
  Lines[0] = {HOST_HELP_HEADING, CopyText(kHostHelpHeading)};
  Lines[1] = {HOST_HELP_PARAGRAPH, CopyText(kHostHelpText)};
  gState.Help.Lines = Lines;
  gState.Help.Count = 2;
  gState.Help.Open = Lines[0].Text != nullptr && Lines[1].Text != nullptr;
  if (!gState.Help.Open) {
    FreeHelpLines();
  }
}

}  // namespace

EFI_STATUS Press(HOST_PAGE_NODE *Node) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_BUTTON, HOST_CONTROL_IMAGE_BUTTON, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  HOST_CONTROL_EVENT Event = {HOST_EVENT_PRESS, 0, 0, 0};
  return Notify(Node, Record, Event);
}

EFI_STATUS Choose(HOST_PAGE_NODE *Node, UINTN Index) {
  Control *Record = nullptr;
  EFI_STATUS Status = Operable(Node, HOST_CONTROL_RADIO_GROUP,
                               HOST_CONTROL_COMBO_BOX, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Index >= Record->Options.Count) {
    return EFI_INVALID_PARAMETER;
  }
  if (Record->Options.Items[Index].DisplayState != HOST_DISPLAY_SHOWN) {
    return EFI_ACCESS_DENIED;
  }
  Record->RadioCursor = static_cast<UINT32>(Index);
  return ChangeValue(Node, Record, Index);
}

EFI_STATUS SetCheck(HOST_PAGE_NODE *Node, BOOLEAN Checked) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_CHECK_BOX, HOST_CONTROL_CHECK_BOX, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  return ChangeValue(Node, Record, Checked ? 1 : 0);
}

EFI_STATUS TypeText(HOST_PAGE_NODE *Node, const CHAR16 *Text) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_EDIT_BOX, HOST_CONTROL_EDIT_BOX, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Text == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  CHAR16 *Copy = CopyTextN(Text, StrnLenS(Text, kMaxEditLength));
  if (Copy == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  CHAR16 *Old = Record->Text;
  Record->Text = Copy;
  Record->Public.CachedText = Copy;
  Status = HandOver(Node, Record);
  if (EFI_ERROR(Status)) {
    Record->Text = Old;
    Record->Public.CachedText = Old;
    FreePool(Copy);
    return Status;
  }
  FreePool(Old);
  HOST_CONTROL_EVENT Event = {HOST_EVENT_CHANGE, 0, 0, 0};
  return Notify(Node, Record, Event);
}

EFI_STATUS Slide(HOST_PAGE_NODE *Node, UINT64 Value) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_SLIDER, HOST_CONTROL_SLIDER, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Value < Record->Public.Minimum) {
    Value = Record->Public.Minimum;
  }
  if (Value > Record->Public.Maximum) {
    Value = Record->Public.Maximum;
  }
  return ChangeValue(Node, Record, Value);
}

EFI_STATUS SelectRow(HOST_PAGE_NODE *Node, UINT32 Row) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_TABLE, HOST_CONTROL_TABLE, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const TableCopy &Table = Record->Table;
  UINT32 First = (Table.Flags & HOST_TABLE_HEADING) != 0 ? 1 : 0;
  if (Row >= Table.Rows || Row < First) {
    return EFI_INVALID_PARAMETER;
  }
  if ((Table.Flags & HOST_TABLE_SELECTABLE) == 0) {
    return EFI_ACCESS_DENIED;
  }
  UINT64 Old = Record->Public.Value;
  Record->Public.Value = Row;
  Status = HandOver(Node, Record);
  if (EFI_ERROR(Status)) {
    Record->Public.Value = Old;
    return Status;
  }
  HOST_CONTROL_EVENT Event = {HOST_EVENT_ROW_SELECT, Row, 0, Row};
  return Notify(Node, Record, Event);
}

EFI_STATUS SetCell(HOST_PAGE_NODE *Node, UINT32 Row, UINT32 Column,
                   UINT32 Value) {
  Control *Record = nullptr;
  EFI_STATUS Status =
      Operable(Node, HOST_CONTROL_TABLE, HOST_CONTROL_TABLE, &Record);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  CellCopy *Cell = CellOf(Record, Row, Column);
  if (Cell == nullptr || Cell->Kind == HOST_CELL_TEXT) {
    return EFI_INVALID_PARAMETER;
  }
  if (Cell->DisplayState != HOST_DISPLAY_SHOWN) {
    return EFI_ACCESS_DENIED;
  }
  if (Cell->Kind == HOST_CELL_CHECK_BOX) {
    Value = Value != 0 ? 1 : 0;
  } else if (Value >= Cell->Options.Count) {
    return EFI_INVALID_PARAMETER;
  } else if (Cell->Options.Items[Value].DisplayState != HOST_DISPLAY_SHOWN) {
    return EFI_ACCESS_DENIED;
  }
  UINT32 Old = Cell->Value;
  Cell->Value = Value;
  Status = HandOverCell(Node, Row, Column, Value);
  if (EFI_ERROR(Status)) {
    Cell->Value = Old;
    return Status;
  }
  HOST_CONTROL_EVENT Event = {HOST_EVENT_CELL_CHANGE, Row, Column, Value};
  return Notify(Node, Record, Event);
}

VOID RequestHelp() {
  if (gState.HelpCallback != nullptr) {
    gState.HelpCallback();
  } else {
    ShowHostHelp();
  }
}

EFI_STATUS SwitchLanguage(UINTN Index) {
  if (Index >= kLanguageCount) {
    return EFI_INVALID_PARAMETER;
  }
  if (gState.Services.SetLanguage != nullptr) {
    EFI_STATUS Status = gState.Services.SetLanguage(gState.Services.Context,
                                                    LanguageCode(Index));
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  gState.Language = Index;
  FreeHelpLines();
  ForgetAllTexts();
  // The module rebuilds its formatted texts; each distinct language
  // callback runs once.
  TARN_MODULE_CALLBACK Called[kMaxRegisteredPages + 1] = {};
  UINTN CalledCount = 0;
  auto CallOnce = [&](TARN_MODULE_CALLBACK Callback) {
    if (Callback == nullptr) {
      return;
    }
    for (UINTN Index = 0; Index < CalledCount; Index++) {
      if (Called[Index] == Callback) {
        return;
      }
    }
    Called[CalledCount++] = Callback;
    Callback();
  };
  CallOnce(gState.LanguageCallback);
  for (UINTN Page = 0; Page < gState.PageCount; Page++) {
    CallOnce(gState.Pages[Page].Language);
  }
  RunDueSteps();
  if (gState.Page != nullptr) {
    ProcessRefreshMarks(gState.Page);
  }
  return EFI_SUCCESS;
}

VOID ReturnToModule() {
  if (gState.ReturnCallback != nullptr) {
    gState.ReturnCallback();
  } else {
    for (UINTN Index = 0; Index < gState.PageCount; Index++) {
      if (gState.Pages[Index].Enter != nullptr) {
        gState.Pages[Index].Enter();
        break;
      }
    }
  }
  RunDueSteps();
  if (gState.Page != nullptr) {
    ProcessRefreshMarks(gState.Page);
  }
}

}  // namespace framework
