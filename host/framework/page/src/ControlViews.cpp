// Read access to the framework's copies of a control: its text, options,
// table cells, and the table and radio cursors the framework keeps.
#include "FrameworkState.h"

namespace framework {
namespace {

[[nodiscard]] const CellCopy *CellOf(const HOST_PAGE_NODE *Node, UINT32 Row,
                                     UINT32 Column) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr || Record->Table.Cells == nullptr ||
      Row >= Record->Table.Rows || Column >= Record->Table.Columns) {
    return nullptr;
  }
  return &Record->Table
              .Cells[static_cast<UINTN>(Row) * Record->Table.Columns + Column];
}

}  // namespace

const CHAR16 *TextOf(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr || Record->Text == nullptr) {
    return u"";
  }
  return Record->Text;
}

UINTN OptionCount(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Options.Count;
}

BOOLEAN OptionAt(const HOST_PAGE_NODE *Node, UINTN Index, OptionView *View) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr || Index >= Record->Options.Count) {
    return FALSE;
  }
  const OptionCopy &Option = Record->Options.Items[Index];
  *View = {Option.Value, Option.Text, Option.DisplayState};
  return TRUE;
}

UINT32 TableRows(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.Rows;
}

UINT32 TableColumns(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.Columns;
}

UINT32 TableFlags(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.Flags;
}

UINT16 TableColumnWidth(const HOST_PAGE_NODE *Node, UINT32 Column) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr || Record->Table.Widths == nullptr ||
      Column >= Record->Table.Columns) {
    return 0;
  }
  return Record->Table.Widths[Column];
}

BOOLEAN CellAt(const HOST_PAGE_NODE *Node, UINT32 Row, UINT32 Column,
               CellView *View) {
  const CellCopy *Cell = CellOf(Node, Row, Column);
  if (Cell == nullptr) {
    return FALSE;
  }
  *View = {Cell->Kind, Cell->DisplayState,
           Cell->Text != nullptr ? Cell->Text : u"", Cell->Value,
           Cell->Options.Count};
  return TRUE;
}

const CHAR16 *CellOptionText(const HOST_PAGE_NODE *Node, UINT32 Row,
                             UINT32 Column, UINTN Option) {
  const CellCopy *Cell = CellOf(Node, Row, Column);
  if (Cell == nullptr || Option >= Cell->Options.Count) {
    return u"";
  }
  return Cell->Options.Items[Option].Text;
}

UINT8 CellOptionState(const HOST_PAGE_NODE *Node, UINT32 Row, UINT32 Column,
                      UINTN Option) {
  const CellCopy *Cell = CellOf(Node, Row, Column);
  if (Cell == nullptr || Option >= Cell->Options.Count) {
    return HOST_DISPLAY_HIDDEN;
  }
  return Cell->Options.Items[Option].DisplayState;
}

UINT32 TableScrollTop(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.ScrollTop;
}

VOID SetTableScrollTop(HOST_PAGE_NODE *Node, UINT32 Top) {
  Control *Record = RecordOf(Node);
  if (Record != nullptr) {
    Record->Table.ScrollTop = Top;
  }
}

UINT32 TableCursorColumn(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.CursorColumn;
}

VOID SetTableCursorColumn(HOST_PAGE_NODE *Node, UINT32 Column) {
  Control *Record = RecordOf(Node);
  if (Record != nullptr) {
    Record->Table.CursorColumn = Column;
  }
}

UINT32 TableFirstColumn(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->Table.FirstColumn;
}

VOID SetTableFirstColumn(HOST_PAGE_NODE *Node, UINT32 Column) {
  Control *Record = RecordOf(Node);
  if (Record != nullptr) {
    Record->Table.FirstColumn = Column;
  }
}

UINT32 RadioCursor(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? 0 : Record->RadioCursor;
}

VOID SetRadioCursor(HOST_PAGE_NODE *Node, UINT32 Option) {
  Control *Record = RecordOf(Node);
  if (Record != nullptr && Option < Record->Options.Count) {
    Record->RadioCursor = Option;
  }
}

}  // namespace framework
