// The values the wizard keeps for its controls (formatted label texts,
// option lists, tables, bound values) and the data-source callbacks through
// which the host's page framework reads and changes them.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"

namespace {

// What the wizard keeps for one control.
typedef struct {
  HOST_PAGE_NODE *Node;  // NULL: the entry is free
  CHAR16 *Text;
  HOST_OPTION_LIST Options;
  BOOLEAN HasOptions;
  RAID_TABLE_DATA Table;
  BOOLEAN HasTable;
  UINT64 Value;
  BOOLEAN HasValue;
  UINT64 Maximum;  // a slider's range, from 0
  BOOLEAN HasRange;
} RAID_CONTROL_DATA;

// Controls with values of their own across all pages; more are refused
// (the control then shows its template text).
constexpr UINTN kMaxControlData = 160;
constinit RAID_CONTROL_DATA gControlData[kMaxControlData] = {};

[[nodiscard]] RAID_CONTROL_DATA *FindData(const HOST_PAGE_NODE *Node) {
  if (Node == nullptr) {
    return nullptr;
  }
  for (RAID_CONTROL_DATA &Data : gControlData) {
    if (Data.Node == Node) {
      return &Data;
    }
  }
  return nullptr;
}

// The entry of Node, made when there is none; NULL when all are used.
[[nodiscard]] RAID_CONTROL_DATA *DataOf(HOST_PAGE_NODE *Node) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data != nullptr || Node == nullptr) {
    return Data;
  }
  for (RAID_CONTROL_DATA &Free : gControlData) {
    if (Free.Node == nullptr) {
      Free = {};
      Free.Node = Node;
      return &Free;
    }
  }
  return nullptr;
}

// Frees a cell's option texts and array, quietly (cells are many).
VOID FreeCellOptions(HOST_OPTION_LIST *List) {
  for (UINTN Index = 0; List->Options != nullptr && Index < List->Count;
       Index++) {
    FreePool(List->Options[Index].Text);
  }
  FreePool(List->Options);
  *List = {};
}

VOID ReleaseData(RAID_CONTROL_DATA *Data) {
  FreePool(Data->Text);
  FreeComboOptions(&Data->Options);
  FreePool(Data->Options.Options);
  RaidFreeTable(&Data->Table);
  *Data = {};
}

VOID MarkText(HOST_PAGE_NODE *Node) {
  if (Node != nullptr) {
    Node->RefreshMark |= HOST_REFRESH_TEXT;
  }
}

}  // namespace

// ---- Tables ----------------------------------------------------------------------

BOOLEAN RaidAllocTable(RAID_TABLE_DATA *Table, UINT32 Rows, UINT32 Columns,
                       UINT32 Flags) {
  *Table = {};
  if (Rows == 0 || Columns == 0 || Rows > 0x10000 || Columns > 64) {
    return FALSE;
  }
  Table->Cells = static_cast<HOST_TABLE_CELL *>(AllocateZeroPool(
      sizeof(HOST_TABLE_CELL) * static_cast<UINTN>(Rows) * Columns));
  if (Table->Cells == nullptr) {
    return FALSE;
  }
  Table->RowCount = Rows;
  Table->ColumnCount = Columns;
  Table->Flags = Flags;
  return TRUE;
}

HOST_TABLE_CELL *RaidTableCell(RAID_TABLE_DATA *Table, UINT32 Row,
                               UINT32 Column) {
  if (Table == nullptr || Table->Cells == nullptr || Row >= Table->RowCount ||
      Column >= Table->ColumnCount) {
    return nullptr;
  }
  return &Table->Cells[static_cast<UINTN>(Row) * Table->ColumnCount + Column];
}

BOOLEAN RaidSetCellText(RAID_TABLE_DATA *Table, UINT32 Row, UINT32 Column,
                        CHAR16 *Text) {
  HOST_TABLE_CELL *Cell = RaidTableCell(Table, Row, Column);
  if (Cell == nullptr || Text == nullptr) {
    FreePool(Text);
    return FALSE;
  }
  FreePool(const_cast<CHAR16 *>(Cell->Text));
  Cell->Text = Text;
  return TRUE;
}

VOID RaidFreeTable(RAID_TABLE_DATA *Table) {
  if (Table == nullptr) {
    return;
  }
  const UINTN CellCount =
      static_cast<UINTN>(Table->RowCount) * Table->ColumnCount;
  for (UINTN Index = 0; Table->Cells != nullptr && Index < CellCount;
       Index++) {
    FreePool(const_cast<CHAR16 *>(Table->Cells[Index].Text));
    FreeCellOptions(&Table->Cells[Index].Options);
  }
  FreePool(Table->Cells);
  *Table = {};
}

// ---- Values ------------------------------------------------------------------------

VOID RaidSetControlText(HOST_PAGE_NODE *Node, CHAR16 *Text) {
  // The framework's copy is stale now; until it reads the new text, the
  // module's own is what the control holds (an edit box's typed text too).
  if (Node != nullptr && Node->Control != nullptr &&
      Node->Control != HOST_NODE_NO_CONTROL) {
    Node->Control->CachedText = nullptr;
  }
  RAID_CONTROL_DATA *Data = DataOf(Node);
  if (Data == nullptr) {
    FreePool(Text);
    return;
  }
  FreePool(Data->Text);
  Data->Text = Text;
  MarkText(Node);
}

const CHAR16 *RaidControlText(HOST_PAGE_NODE *Node) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  return Data != nullptr ? Data->Text : nullptr;
}

VOID RaidSetControlOptions(HOST_PAGE_NODE *Node, HOST_OPTION_LIST *List) {
  RAID_CONTROL_DATA *Data = DataOf(Node);
  if (Data == nullptr) {
    FreeComboOptions(List);
    FreePool(List->Options);
    *List = {};
    return;
  }
  FreeComboOptions(&Data->Options);
  FreePool(Data->Options.Options);
  Data->Options = *List;
  Data->HasOptions = TRUE;
  *List = {};
  MarkText(Node);
}

HOST_OPTION_LIST *RaidControlOptions(HOST_PAGE_NODE *Node) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  return Data != nullptr && Data->HasOptions ? &Data->Options : nullptr;
}

VOID RaidSetControlTable(HOST_PAGE_NODE *Node, RAID_TABLE_DATA *Table) {
  RAID_CONTROL_DATA *Data = DataOf(Node);
  if (Data == nullptr) {
    RaidFreeTable(Table);
    return;
  }
  RaidFreeTable(&Data->Table);
  Data->Table = *Table;
  Data->HasTable = TRUE;
  *Table = {};
  MarkText(Node);
}

VOID RaidClearControlTable(HOST_PAGE_NODE *Node) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr) {
    return;
  }
  RaidFreeTable(&Data->Table);
  Data->HasTable = TRUE;
  MarkText(Node);
}

RAID_TABLE_DATA *RaidControlTable(HOST_PAGE_NODE *Node) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  return Data != nullptr && Data->HasTable ? &Data->Table : nullptr;
}

VOID RaidSetControlValue(HOST_PAGE_NODE *Node, UINT64 Value) {
  RAID_CONTROL_DATA *Data = DataOf(Node);
  if (Data == nullptr) {
    return;
  }
  Data->Value = Value;
  Data->HasValue = TRUE;
  MarkText(Node);
}

VOID RaidSetControlRange(HOST_PAGE_NODE *Node, UINT64 Maximum) {
  RAID_CONTROL_DATA *Data = DataOf(Node);
  if (Data == nullptr) {
    return;
  }
  Data->Maximum = Maximum;
  Data->HasRange = TRUE;
  MarkText(Node);
}

UINT64 RaidControlValue(HOST_PAGE_NODE *Node, UINT64 Default) {
  RAID_CONTROL_DATA *Data = FindData(Node);
  return Data != nullptr && Data->HasValue ? Data->Value : Default;
}

VOID RaidForgetControlData(HOST_PAGE_NODE *Root) {
  for (RAID_CONTROL_DATA &Data : gControlData) {
    if (Data.Node == nullptr) {
      continue;
    }
    for (HOST_PAGE_NODE *Node = Data.Node; Node != nullptr;
         Node = Node->Parent) {
      if (Node == Root) {
        ReleaseData(&Data);
        break;
      }
    }
  }
}

VOID RaidFreeWizardDynamicNodes() {
  for (RAID_CONTROL_DATA &Data : gControlData) {
    if (Data.Node != nullptr) {
      ReleaseData(&Data);
    }
  }
}

// ---- Data source -----------------------------------------------------------------------

EFI_STATUS RaidDataSourceGetValue(HOST_PAGE_NODE *Node,
                                  HOST_CONTROL_VALUE *Value) {
  if (Node == nullptr || Value == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr || (Data->Text == nullptr && !Data->HasValue)) {
    return EFI_NOT_FOUND;
  }
  if (Data->Text != nullptr) {
    Value->Text = Data->Text;
  }
  if (Data->HasValue) {
    Value->Number = Data->Value;
  }
  if (Data->HasRange) {
    Value->Minimum = 0;
    Value->Maximum = Data->Maximum;
  }
  return EFI_SUCCESS;
}

EFI_STATUS RaidDataSourceSetValue(HOST_PAGE_NODE *Node,
                                  HOST_CONTROL_VALUE *Value) {
  if (Node == nullptr || Value == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr || !Data->HasValue) {
    return EFI_NOT_FOUND;
  }
  Data->Value = Value->Number;
  return EFI_SUCCESS;
}

EFI_STATUS RaidDataSourceGetOptions(HOST_PAGE_NODE *Node,
                                    HOST_OPTION_LIST *List) {
  if (Node == nullptr || List == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr || !Data->HasOptions) {
    return EFI_NOT_FOUND;
  }
  *List = Data->Options;
  return EFI_SUCCESS;
}

EFI_STATUS RaidDataSourceGetTable(HOST_PAGE_NODE *Node, HOST_TABLE *Table) {
  if (Node == nullptr || Table == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr || !Data->HasTable) {
    return EFI_NOT_FOUND;
  }
  *Table = {Data->Table.RowCount, Data->Table.ColumnCount, Data->Table.Flags,
            nullptr, Data->Table.Cells};
  return EFI_SUCCESS;
}

EFI_STATUS RaidDataSourceSetTableCell(HOST_PAGE_NODE *Node,
                                      const HOST_TABLE_CELL_CHANGE *Change) {
  if (Node == nullptr || Change == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  RAID_CONTROL_DATA *Data = FindData(Node);
  if (Data == nullptr || !Data->HasTable) {
    return EFI_NOT_FOUND;
  }
  HOST_TABLE_CELL *Cell =
      RaidTableCell(&Data->Table, Change->Row, Change->Column);
  if (Cell == nullptr || Cell->Kind == HOST_CELL_TEXT) {
    return EFI_INVALID_PARAMETER;
  }
  if (Cell->Kind == HOST_CELL_COMBO_BOX && Change->Value >= Cell->Options.Count) {
    return EFI_INVALID_PARAMETER;
  }
  Cell->Value = Change->Value;
  return EFI_SUCCESS;
}
