// Records the page framework and the wizard share: page templates, page
// nodes, control records, control descriptors and the values the data-source
// protocol carries. The wizard owns the page templates (static data in the
// module); the host instantiates them, draws the controls and calls the
// wizard's callbacks. docs/page-framework.md describes the whole contract.
#pragma once

#include <Uefi.h>

// A page-tree node whose control record is this value has none of its own.
#define HOST_NODE_NO_CONTROL ((HOST_CONTROL *)~(UINTN)0)

// Display states of a control.
#define HOST_DISPLAY_SHOWN 0
#define HOST_DISPLAY_HIDDEN 2
#define HOST_DISPLAY_GRAYED 3

// Refresh marks: what the framework must read again. A node's mark is
// cleared when the framework has read it (show page, redraw).
#define HOST_REFRESH_STATE 1   // display state changed
#define HOST_REFRESH_STATUS 2  // display state changed (status labels)
#define HOST_REFRESH_TEXT 4    // text, options, table or value changed
#define HOST_REFRESH_MODE 8    // the page changed its mode: read it all

// Message box styles.
#define HOST_MSGBOX_PLAIN 0
#define HOST_MSGBOX_PROGRESS 9
#define HOST_MSGBOX_YES_NO 10

// Help entry styles.
#define HOST_HELP_HEADING 1
#define HOST_HELP_PARAGRAPH 3

// Texts the framework answers itself, in the language shown, for the
// buttons that every page or pop-up of every module shares. Template text ids from
// HOST_STRING_FIRST up never reach the module's package list.
#define HOST_STRING_FIRST 0xFF00
#define HOST_STRING_NEXT 0xFF01
#define HOST_STRING_BACK 0xFF02
#define HOST_STRING_REFRESH 0xFF03
#define HOST_STRING_CLOSE 0xFF04  // a pop-up's exit

// Control kinds.
#define HOST_CONTROL_NONE 0  // a node without a record (template only)
#define HOST_CONTROL_PAGE 1  // a page; its text is the page title
#define HOST_CONTROL_LABEL 2
#define HOST_CONTROL_BUTTON 3
#define HOST_CONTROL_IMAGE_BUTTON 4
#define HOST_CONTROL_RADIO_GROUP 5
#define HOST_CONTROL_COMBO_BOX 6
#define HOST_CONTROL_CHECK_BOX 7
#define HOST_CONTROL_EDIT_BOX 8
#define HOST_CONTROL_SLIDER 9
#define HOST_CONTROL_TABLE 10
#define HOST_CONTROL_CONTAINER 11

// Kinds of table cells.
#define HOST_CELL_TEXT 0
#define HOST_CELL_CHECK_BOX 1
#define HOST_CELL_COMBO_BOX 2

// Table flags.
#define HOST_TABLE_HEADING 0x01     // row 0 is a heading row
#define HOST_TABLE_SELECTABLE 0x02  // the data rows can be selected

// Layout: a row of HOST_LAYOUT_NEXT_ROW places the node on the row below
// its previous sibling.
#define HOST_LAYOUT_NEXT_ROW 0xFFFF

// Control events handed to the control callbacks.
#define HOST_EVENT_PRESS 1        // button or image button pressed
#define HOST_EVENT_CHANGE 2       // radio, combo, check, edit or slider value
#define HOST_EVENT_ROW_SELECT 3   // a table row was selected
#define HOST_EVENT_CELL_CHANGE 4  // a check box or combo box cell changed

typedef struct _HOST_CONTROL HOST_CONTROL;
typedef struct _HOST_PAGE_NODE HOST_PAGE_NODE;
typedef struct _HOST_NODE_TEMPLATE HOST_NODE_TEMPLATE;
typedef struct _HOST_PAGE_TEMPLATE HOST_PAGE_TEMPLATE;
typedef struct _HOST_CONTROL_DESCRIPTOR HOST_CONTROL_DESCRIPTOR;

// Where a control sits, in character cells, relative to the content origin
// of its parent (the page body for a page's direct children). Width 0: as
// wide as its text (or to the parent's right edge for tables); Height 0: one
// row (a radio group: one row per option; a table: up to the body's end).
typedef struct {
  UINT16 Column;
  UINT16 Row;
  UINT16 Width;
  UINT16 Height;
} HOST_LAYOUT;

// ---- Templates (static data in the module) ----------------------------------

// One node of a page template. A container or page lists its children.
struct _HOST_NODE_TEMPLATE {
  UINT32 NodeId;
  UINT32 Kind;            // HOST_CONTROL_*
  EFI_STRING_ID TextId;   // caption, title or (combo) the initial choice
  UINT8 DisplayState;     // initial display state
  HOST_LAYOUT Layout;
  const HOST_NODE_TEMPLATE *Children;
  UINT32 ChildCount;
};

// A page template: the page node (kind HOST_CONTROL_PAGE, text = title)
// and its controls.
struct _HOST_PAGE_TEMPLATE {
  UINT32 NodeId;
  EFI_STRING_ID TitleId;
  const HOST_NODE_TEMPLATE *Nodes;
  UINT32 NodeCount;
};

// ---- Page nodes and control records ------------------------------------------

// The part of a control record the wizard reads and writes; the framework
// keeps more behind it. The module writes DisplayState, TextId (dropping
// CachedText to NULL to have the text read again) and Layout; the other
// fields are the framework's and are read-only to the module.
struct _HOST_CONTROL {
  UINT8 DisplayState;
  UINT32 Kind;
  EFI_STRING_ID TextId;
  // The text the control shows now: caption, the chosen option of a combo
  // box, an edit box's text. Framework-owned; NULL asks for a re-read.
  CHAR16 *CachedText;
  // Option index (radio, combo), check state, slider value, selected table
  // row; Minimum and Maximum bound a slider.
  UINT64 Value;
  UINT64 Minimum;
  UINT64 Maximum;
  HOST_LAYOUT Layout;
};

struct _HOST_PAGE_NODE {
  HOST_CONTROL *Control;
  UINT32 NodeId;
  UINT8 RefreshMark;
  HOST_PAGE_NODE *FirstChild;
  HOST_PAGE_NODE *NextSibling;
  HOST_PAGE_NODE *Parent;
};

// ---- Control descriptors and callbacks ------------------------------------------

typedef struct {
  UINT32 Event;  // HOST_EVENT_*
  UINT32 Row;    // table events: the row (0 is the heading row)
  UINT32 Column; // cell changes: the column
  UINT64 Value;  // the new value (option index, check state, slider value)
} HOST_CONTROL_EVENT;

// Called after the operator acted on a control and the data source took
// the new value. The callback may change any control and show any page.
typedef EFI_STATUS(EFIAPI *HOST_CONTROL_CALLBACK)(
    HOST_PAGE_NODE *Node, const HOST_CONTROL_EVENT *Event);

// Binds a node id of a page to the module's callback.
struct _HOST_CONTROL_DESCRIPTOR {
  UINT32 NodeId;
  HOST_CONTROL_CALLBACK Callback;
};

// ---- Values carried by the data-source protocol ------------------------------

// One option of a radio group or combo box. Text, when not NULL, is shown;
// otherwise the text of TextId. A grayed option cannot be chosen.
typedef struct {
  UINT32 Value;
  CHAR16 *Text;
  EFI_STRING_ID TextId;
  UINT8 DisplayState;
} HOST_OPTION;

typedef struct {
  UINT16 Count;
  HOST_OPTION *Options;
} HOST_OPTION_LIST;

// GetValue and SetValue. The host fills Kind and the control's current
// Number, Minimum and Maximum and sets Text to NULL; GetValue overwrites
// what the module provides. SetValue carries the operator's new Number, or
// Text for an edit box (valid during the call only).
typedef struct {
  UINT32 Kind;
  const CHAR16 *Text;
  UINT64 Number;
  UINT64 Minimum;
  UINT64 Maximum;
} HOST_CONTROL_VALUE;

// One table cell.
typedef struct {
  UINT8 Kind;          // HOST_CELL_*
  UINT8 DisplayState;  // shown, grayed (2: empty)
  EFI_STRING_ID TextId;
  const CHAR16 *Text;  // NULL: the text of TextId
  UINT32 Value;        // check state, or the combo cell's chosen option
  HOST_OPTION_LIST Options;  // combo cells
} HOST_TABLE_CELL;

// GetTable: the module fills every field; the cells are row-major and stay
// the module's (the host copies them during the call).
typedef struct {
  UINT32 RowCount;     // the heading row included
  UINT32 ColumnCount;
  UINT32 Flags;        // HOST_TABLE_*
  const UINT16 *ColumnWidths;  // NULL: the host sizes the columns
  const HOST_TABLE_CELL *Cells;
} HOST_TABLE;

// SetTableCell: the operator's new value of a check box or combo box cell.
typedef struct {
  UINT32 Row;
  UINT32 Column;
  UINT32 Value;
} HOST_TABLE_CELL_CHANGE;

typedef struct {
  EFI_STRING_ID TextId;
  UINT8 Style;
} HOST_HELP_ENTRY;
