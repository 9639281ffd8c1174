// The control operations every page uses (show, hide, gray, texts, refresh
// marks, showing pages) and the values the wizard keeps for its controls,
// which the data-source protocol hands to the host.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

// ---- Finding controls --------------------------------------------------------

// The page tree of Page (12 gives page 1's), or NULL before it is built.
[[nodiscard]] HOST_PAGE_NODE *RaidPageRoot(UINT32 Page);
// The node NodeId of Page's tree, or NULL.
[[nodiscard]] HOST_PAGE_NODE *RaidFindNode(UINT32 Page, UINT32 NodeId);
// The display state of a control; HOST_DISPLAY_HIDDEN when it is missing.
[[nodiscard]] UINT8 RaidDisplayState(UINT32 Page, UINT32 NodeId);

// ---- Control operations --------------------------------------------------------

// Display state 0, refresh mark 1.
VOID RaidShowControl(UINT32 Page, UINT32 NodeId);
// Display state 0, refresh mark 2 (status labels).
VOID RaidShowStatusControl(UINT32 Page, UINT32 NodeId);
// Display state 2, refresh mark 1.
VOID RaidHideControl(UINT32 Page, UINT32 NodeId);
// Display state 3, refresh mark 1.
VOID RaidGrayControl(UINT32 Page, UINT32 NodeId);
// A new text id: the cached text dropped, shown, refresh mark 4, redrawn.
VOID RaidSetControlTextId(UINT32 Page, UINT32 NodeId, EFI_STRING_ID TextId);
// Refresh mark 4 on Node and everything below it.
VOID RaidMarkForReRead(HOST_PAGE_NODE *Node);
// Shows Page's tree, the focus on FocusNodeId (0: none).
VOID RaidShowPage(UINT32 Page, UINT32 FocusNodeId);

// ---- Texts -----------------------------------------------------------------------

// The text of Id in the current language; "" when there is none.
[[nodiscard]] const CHAR16 *RaidString(EFI_STRING_ID Id);
// The text of Id formatted with one 32-bit number, in a pool buffer of the
// text's length plus 25 characters; NULL when memory is short.
[[nodiscard]] CHAR16 *RaidFormatNumberText(EFI_STRING_ID Id, UINT32 Number);
// The text of Id followed by Suffix ("%s%s"); with no suffix the text
// alone. A pool buffer, NULL when memory is short.
[[nodiscard]] CHAR16 *RaidAppendText(EFI_STRING_ID Id, const CHAR16 *Suffix);
// A pool copy of Text (NULL gives ""); NULL when memory is short.
[[nodiscard]] CHAR16 *AllocString(const CHAR16 *Text);
// A pool string formatted from Format, at most Characters long.
[[nodiscard]] CHAR16 *EFIAPI RaidFormatText(UINTN Characters,
                                            const CHAR16 *Format, ...);
// "%ld GB" of a size given in thousandths of Unit (a size unit code; ""
// for another unit), in a pool buffer; NULL when memory is short.
[[nodiscard]] CHAR16 *RaidSizeText(UINT64 Thousandths, UINT32 Unit);

// ---- Values kept for controls ------------------------------------------------------

// One table the wizard fills: row-major cells whose texts (and combo
// cells' option lists) the wizard owns.
typedef struct {
  UINT32 RowCount;
  UINT32 ColumnCount;
  UINT32 Flags;
  HOST_TABLE_CELL *Cells;
} RAID_TABLE_DATA;

// Makes an empty table of the given shape, every cell an empty text cell;
// FALSE when memory is short (Table is left empty).
[[nodiscard]] BOOLEAN RaidAllocTable(RAID_TABLE_DATA *Table, UINT32 Rows,
                                     UINT32 Columns, UINT32 Flags);
// The cell at Row, Column, or NULL.
[[nodiscard]] HOST_TABLE_CELL *RaidTableCell(RAID_TABLE_DATA *Table, UINT32 Row,
                                             UINT32 Column);
// Frees the cells' texts and options and the cells.
VOID RaidFreeTable(RAID_TABLE_DATA *Table);
// Gives the cell at Row, Column the text Text (a pool string it takes; the
// cell's previous text is freed). FALSE, Text freed, when the cell is
// missing or Text is NULL (memory was short).
BOOLEAN RaidSetCellText(RAID_TABLE_DATA *Table, UINT32 Row, UINT32 Column,
                        CHAR16 *Text);

// The text the control shows (takes Text, a pool string; NULL drops the
// module's text so the control's text id shows again); refresh mark 4.
VOID RaidSetControlText(HOST_PAGE_NODE *Node, CHAR16 *Text);
// The module's text of the control, or NULL.
[[nodiscard]] const CHAR16 *RaidControlText(HOST_PAGE_NODE *Node);
// The option list (takes List; the previous one is released with
// FreeComboOptions); refresh mark 4.
VOID RaidSetControlOptions(HOST_PAGE_NODE *Node, HOST_OPTION_LIST *List);
// The option list kept for the control, or NULL.
[[nodiscard]] HOST_OPTION_LIST *RaidControlOptions(HOST_PAGE_NODE *Node);
// The table (takes Table, left empty; the previous one is freed); refresh
// mark 4. RaidClearControlTable empties it.
VOID RaidSetControlTable(HOST_PAGE_NODE *Node, RAID_TABLE_DATA *Table);
VOID RaidClearControlTable(HOST_PAGE_NODE *Node);
// The table kept for the control, or NULL.
[[nodiscard]] RAID_TABLE_DATA *RaidControlTable(HOST_PAGE_NODE *Node);
// A value the wizard binds to the control (radio group, combo box, selected
// table row); the host reads it back and hands changes to it.
VOID RaidSetControlValue(HOST_PAGE_NODE *Node, UINT64 Value);
// A slider's range, 0 to Maximum; refresh mark 4.
VOID RaidSetControlRange(HOST_PAGE_NODE *Node, UINT64 Maximum);
// The bound value, or Default when none is bound.
[[nodiscard]] UINT64 RaidControlValue(HOST_PAGE_NODE *Node, UINT64 Default);
// Drops what the wizard keeps for the nodes of the subtree of Root.
VOID RaidForgetControlData(HOST_PAGE_NODE *Root);

// ---- Data source -------------------------------------------------------------------

[[nodiscard]] EFI_STATUS RaidDataSourceGetValue(HOST_PAGE_NODE *Node,
                                                HOST_CONTROL_VALUE *Value);
[[nodiscard]] EFI_STATUS RaidDataSourceSetValue(HOST_PAGE_NODE *Node,
                                                HOST_CONTROL_VALUE *Value);
[[nodiscard]] EFI_STATUS RaidDataSourceGetOptions(HOST_PAGE_NODE *Node,
                                                  HOST_OPTION_LIST *List);
[[nodiscard]] EFI_STATUS RaidDataSourceGetTable(HOST_PAGE_NODE *Node,
                                                HOST_TABLE *Table);
[[nodiscard]] EFI_STATUS RaidDataSourceSetTableCell(
    HOST_PAGE_NODE *Node, const HOST_TABLE_CELL_CHANGE *Change);
