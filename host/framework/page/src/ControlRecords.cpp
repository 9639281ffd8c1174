// Control records: making and freeing them, and reading their text, options,
// table and value again from the module (data source, HII strings).
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "FrameworkState.h"
#include "framework/Text.h"

namespace framework {
namespace {

// Bounds on what the framework copies from a data source.
constexpr UINT32 kMaxTableRows = 4096;
constexpr UINT32 kMaxTableColumns = 32;

VOID FreeOptions(OptionsCopy &Options) {
  for (UINTN Index = 0; Index < Options.Count; Index++) {
    FreePool(Options.Items[Index].Text);
  }
  FreePool(Options.Items);
  Options = {};
}

VOID FreeTable(TableCopy &Table) {
  UINTN CellCount = static_cast<UINTN>(Table.Rows) * Table.Columns;
  for (UINTN Index = 0; Table.Cells != nullptr && Index < CellCount; Index++) {
    FreePool(Table.Cells[Index].Text);
    FreeOptions(Table.Cells[Index].Options);
  }
  FreePool(Table.Cells);
  FreePool(Table.Widths);
  UINT32 Scroll = Table.ScrollTop;
  UINT32 Cursor = Table.CursorColumn;
  UINT32 First = Table.FirstColumn;
  Table = {};
  Table.ScrollTop = Scroll;
  Table.CursorColumn = Cursor;
  Table.FirstColumn = First;
}

// The text of an option or cell: its own text, else its text id's.
[[nodiscard]] CHAR16 *CopyShownText(const CHAR16 *Text, EFI_STRING_ID TextId) {
  return CopyText(Text != nullptr ? Text : HostString(TextId));
}

// Copies a module option list; an empty copy when memory is short.
[[nodiscard]] OptionsCopy CopyOptions(const HOST_OPTION_LIST &List) {
  OptionsCopy Copy = {};
  if (List.Count == 0 || List.Options == nullptr) {
    return Copy;
  }
  Copy.Items = static_cast<OptionCopy *>(
      AllocateZeroPool(sizeof(OptionCopy) * List.Count));
  if (Copy.Items == nullptr) {
    return Copy;
  }
  Copy.Count = List.Count;
  for (UINTN Index = 0; Index < List.Count; Index++) {
    const HOST_OPTION &Option = List.Options[Index];
    Copy.Items[Index].Value = Option.Value;
    Copy.Items[Index].DisplayState = Option.DisplayState;
    Copy.Items[Index].Text = CopyShownText(Option.Text, Option.TextId);
    if (Copy.Items[Index].Text == nullptr) {
      FreeOptions(Copy);
      return Copy;
    }
  }
  return Copy;
}

VOID LoadOptions(HOST_PAGE_NODE *Node, Control *Record) {
  FreeOptions(Record->Options);
  RAID_SETUP_DATA_SOURCE_PROTOCOL *Source = gState.DataSource;
  if (Source == nullptr || Source->GetOptions == nullptr) {
    return;
  }
  HOST_OPTION_LIST List = {};
  if (Source->GetOptions(Node, &List) == EFI_SUCCESS) {
    Record->Options = CopyOptions(List);
  }
}

// Copies the module's table into Record; an empty table on any fault.
VOID CopyTable(const HOST_TABLE &Table, Control *Record) {
  TableCopy &Copy = Record->Table;
  if (Table.Cells == nullptr || Table.RowCount == 0 ||
      Table.ColumnCount == 0 || Table.RowCount > kMaxTableRows ||
      Table.ColumnCount > kMaxTableColumns) {
    return;
  }
  UINTN CellCount = static_cast<UINTN>(Table.RowCount) * Table.ColumnCount;
  Copy.Cells =
      static_cast<CellCopy *>(AllocateZeroPool(sizeof(CellCopy) * CellCount));
  if (Copy.Cells == nullptr) {
    return;
  }
  Copy.Rows = Table.RowCount;
  Copy.Columns = Table.ColumnCount;
  Copy.Flags = Table.Flags;
  for (UINTN Index = 0; Index < CellCount; Index++) {
    const HOST_TABLE_CELL &Cell = Table.Cells[Index];
    CellCopy &Target = Copy.Cells[Index];
    Target.Kind = Cell.Kind <= HOST_CELL_COMBO_BOX ? Cell.Kind : HOST_CELL_TEXT;
    Target.DisplayState = Cell.DisplayState;
    Target.Value = Cell.Value;
    Target.Text = CopyShownText(Cell.Text, Cell.TextId);
    Target.Options = CopyOptions(Cell.Options);
    if (Target.Text == nullptr) {
      FreeTable(Copy);
      return;
    }
  }
  if (Table.ColumnWidths != nullptr) {
    Copy.Widths = static_cast<UINT16 *>(
        AllocateCopyPool(sizeof(UINT16) * Table.ColumnCount, Table.ColumnWidths));
  }
}

VOID LoadTable(HOST_PAGE_NODE *Node, Control *Record) {
  FreeTable(Record->Table);
  RAID_SETUP_DATA_SOURCE_PROTOCOL *Source = gState.DataSource;
  if (Source == nullptr || Source->GetTable == nullptr) {
    return;
  }
  HOST_TABLE Table = {};
  if (Source->GetTable(Node, &Table) == EFI_SUCCESS) {
    CopyTable(Table, Record);
  }
}

// Asks the data source for the control's value; TRUE when it answered.
// *Text receives the module's text, or NULL.
[[nodiscard]] BOOLEAN LoadValue(HOST_PAGE_NODE *Node, Control *Record,
                                const CHAR16 **Text) {
  *Text = nullptr;
  RAID_SETUP_DATA_SOURCE_PROTOCOL *Source = gState.DataSource;
  if (Source == nullptr || Source->GetValue == nullptr) {
    return FALSE;
  }
  HOST_CONTROL_VALUE Value = {Record->Public.Kind, nullptr,
                              Record->Public.Value, Record->Public.Minimum,
                              Record->Public.Maximum};
  if (Source->GetValue(Node, &Value) != EFI_SUCCESS) {
    return FALSE;
  }
  Record->Public.Value = Value.Number;
  Record->Public.Minimum = Value.Minimum;
  Record->Public.Maximum = Value.Maximum;
  *Text = Value.Text;
  return TRUE;
}

// The first data row of a table, or 0 when it has none.
[[nodiscard]] UINT32 FirstDataRow(const TableCopy &Table) {
  UINT32 First = (Table.Flags & HOST_TABLE_HEADING) != 0 ? 1 : 0;
  return First < Table.Rows ? First : 0;
}

// Keeps a loaded value within what the control offers.
VOID ClampValue(Control *Record) {
  HOST_CONTROL &Public = Record->Public;
  switch (Public.Kind) {
    case HOST_CONTROL_RADIO_GROUP:
    case HOST_CONTROL_COMBO_BOX:
      if (Public.Value >= Record->Options.Count) {
        Public.Value = 0;
      }
      break;
    case HOST_CONTROL_CHECK_BOX:
      Public.Value = Public.Value != 0 ? 1 : 0;
      break;
    case HOST_CONTROL_SLIDER:
      if (Public.Maximum < Public.Minimum) {
        Public.Maximum = Public.Minimum;
      }
      if (Public.Value < Public.Minimum) {
        Public.Value = Public.Minimum;
      }
      if (Public.Value > Public.Maximum) {
        Public.Value = Public.Maximum;
      }
      break;
    case HOST_CONTROL_TABLE:
      if (Public.Value >= Record->Table.Rows ||
          Public.Value < FirstDataRow(Record->Table)) {
        Public.Value = FirstDataRow(Record->Table);
      }
      break;
    default:
      break;
  }
}

// A combo box whose text was set by id chooses the option of that text.
VOID ChooseOptionByText(Control *Record) {
  const CHAR16 *Wanted = HostString(Record->Public.TextId);
  for (UINTN Index = 0; Index < Record->Options.Count; Index++) {
    if (SameText(Record->Options.Items[Index].Text, Wanted)) {
      Record->Public.Value = Index;
      return;
    }
  }
}

// The text a control shows after a reload.
[[nodiscard]] const CHAR16 *ShownText(Control *Record, const CHAR16 *ModuleText,
                                      BOOLEAN Dropped) {
  HOST_CONTROL &Public = Record->Public;
  if (Public.Kind == HOST_CONTROL_COMBO_BOX) {
    if (Record->Options.Count != 0) {
      return Record->Options.Items[Public.Value].Text;
    }
    return ModuleText != nullptr ? ModuleText : HostString(Public.TextId);
  }
  if (ModuleText != nullptr) {
    return ModuleText;
  }
  if (Public.Kind == HOST_CONTROL_EDIT_BOX && !Dropped &&
      Record->Text != nullptr) {
    return Record->Text;  // the operator's text stays
  }
  return HostString(Public.TextId);
}

}  // namespace

const CHAR16 *HostString(EFI_STRING_ID Id) {
  const CHAR16 *Text = FrameworkText(Id);
  if (Text == nullptr && Id != 0 && gState.Services.GetString != nullptr) {
    Text = gState.Services.GetString(gState.Services.Context, gState.HiiHandle,
                                     Id);
  }
  return Text != nullptr ? Text : u"";
}

Control *NewControl(UINT32 Kind, EFI_STRING_ID TextId, UINT8 DisplayState,
                    const HOST_LAYOUT &Layout, const EFI_GUID *Owner) {
  Control *Record = uefi::AllocateRecord<Control>();
  if (Record == nullptr) {
    return nullptr;
  }
  Record->Public.Kind = Kind;
  Record->Public.TextId = TextId;
  Record->Public.DisplayState = DisplayState;
  Record->Public.Layout = Layout;
  if (Owner != nullptr) {
    Record->Owner = *Owner;
  }
  return Record;
}

VOID FreeControl(Control *Record) {
  if (Record == nullptr) {
    return;
  }
  FreeOptions(Record->Options);
  FreeTable(Record->Table);
  FreePool(Record->Text);
  FreePool(Record);
}

VOID ReloadControl(HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr) {
    return;
  }
  BOOLEAN Dropped = Record->Public.CachedText != Record->Text;
  UINT32 Kind = Record->Public.Kind;
  if (Kind == HOST_CONTROL_RADIO_GROUP || Kind == HOST_CONTROL_COMBO_BOX) {
    LoadOptions(Node, Record);
  } else if (Kind == HOST_CONTROL_TABLE) {
    LoadTable(Node, Record);
  }
  const CHAR16 *ModuleText = nullptr;
  BOOLEAN Answered = LoadValue(Node, Record, &ModuleText);
  if (Kind == HOST_CONTROL_COMBO_BOX && !Answered && Dropped &&
      Record->Public.TextId != 0) {
    ChooseOptionByText(Record);
  }
  ClampValue(Record);
  CHAR16 *Text = CopyText(ShownText(Record, ModuleText, Dropped));
  FreePool(Record->Text);
  Record->Text = Text;
  Record->Public.CachedText = Text;
  if (Record->RadioCursor >= Record->Options.Count) {
    Record->RadioCursor = 0;
  }
}

VOID ForgetAllTexts() {
  for (MadeNode *Made = gState.Made; Made != nullptr; Made = Made->Next) {
    Control *Record = RecordOf(&Made->Node);
    if (Record != nullptr) {
      Made->Node.RefreshMark |= HOST_REFRESH_TEXT;
    }
  }
}

}  // namespace framework
