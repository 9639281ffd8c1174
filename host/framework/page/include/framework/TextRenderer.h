// The text renderer: draws the page shown (title, controls in their display
// states, focus, tables with scrolling), the message or progress box, the
// help panel and an open drop-down list into a cell screen.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#include "framework/Screen.h"

namespace framework {

// What the interactive UI adds on top of the framework's state.
struct UiOverlay {
  BOOLEAN BoxAnswerYes;     // the Yes/No box's highlighted button
  HOST_PAGE_NODE *DropDown; // combo box (or table) whose list is open
  UINT32 DropRow;           // table combo cell: its row and column
  UINT32 DropColumn;
  UINT32 DropCursor;        // option under the cursor
  BOOLEAN ShowKeys;         // the key line at the bottom
};

// Attributes of the look.
namespace look {
constexpr UINT8 kBody = attr::Make(attr::kLightGray, attr::kBlue);
constexpr UINT8 kLabel = attr::Make(attr::kWhite, attr::kBlue);
constexpr UINT8 kGrayed = attr::Make(attr::kDarkGray, attr::kBlue);
constexpr UINT8 kTitle = attr::Make(attr::kBlack, attr::kCyan);
constexpr UINT8 kKeys = attr::Make(attr::kBlack, attr::kCyan);
constexpr UINT8 kRule = attr::Make(attr::kCyan, attr::kBlue);
constexpr UINT8 kField = attr::Make(attr::kBlack, attr::kLightGray);
constexpr UINT8 kFieldGrayed = attr::Make(attr::kDarkGray, attr::kBlue);
constexpr UINT8 kFocus = attr::Make(attr::kBlack, attr::kCyan);
constexpr UINT8 kFocusGrayed = attr::Make(attr::kDarkGray, attr::kCyan);
constexpr UINT8 kHeading = attr::Make(attr::kYellow, attr::kBlue);
constexpr UINT8 kSelected = attr::Make(attr::kBlue, attr::kLightGray);
constexpr UINT8 kCellCursor = attr::Make(attr::kWhite, attr::kBlack);
constexpr UINT8 kBox = attr::Make(attr::kBlack, attr::kLightGray);
constexpr UINT8 kBoxTitle = attr::Make(attr::kRed, attr::kLightGray);
constexpr UINT8 kBoxGrayed = attr::Make(attr::kDarkGray, attr::kLightGray);
constexpr UINT8 kBoxButton = attr::Make(attr::kWhite, attr::kBlue);
}  // namespace look

// The body: where a page's direct children are placed.
struct BodyArea {
  UINTN Column;
  UINTN Row;
  UINTN Width;
  UINTN Height;
};
[[nodiscard]] BodyArea BodyOf(const ScreenBuffer &Screen);

// The smallest screen the pages are laid out for; below it the screen
// shows only a notice to enlarge the window.
constexpr UINTN kLayoutColumns = 80;
constexpr UINTN kLayoutRows = 25;
[[nodiscard]] BOOLEAN ScreenTooSmall(const ScreenBuffer &Screen);

// What the layout check found in the last page drawn: cells where one
// control's text ran into another's, and texts cut with nothing on the
// screen to show it (a cut text that ends in an ellipsis is not counted).
// The first fault is described by the two node ids and its cell.
struct LayoutFaults {
  UINT32 Overlaps;
  UINT32 Cuts;
  UINT32 NodeId;
  UINT32 OtherNodeId;
  UINT16 Column;
  UINT16 Row;
};
// Checks every page drawn from now on: Owners holds a cell per screen
// cell, Faults the result. NULL, NULL ends the check.
VOID CheckLayout(UINT16 *Owners, LayoutFaults *Faults);

// Draws everything the operator sees now. Overlay may be NULL.
VOID ComposeScreen(ScreenBuffer &Screen, const UiOverlay *Overlay);

// Parts of ComposeScreen, for the renderer's own files.
VOID DrawPage(ScreenBuffer &Screen, const UiOverlay *Overlay);
VOID DrawMessageBox(ScreenBuffer &Screen, const UiOverlay *Overlay);
VOID DrawHelpPanel(ScreenBuffer &Screen);
VOID DrawDropDown(ScreenBuffer &Screen, const UiOverlay &Overlay);
// Screen position of a control drawn in the last ComposeScreen; FALSE when
// it was not drawn.
[[nodiscard]] BOOLEAN ControlPosition(const HOST_PAGE_NODE *Node, UINTN *Column,
                                      UINTN *Row, UINTN *Width);
// Number of data rows a table shows at once, as last drawn (1 when it was
// not drawn).
[[nodiscard]] UINT32 TableVisibleRows(const HOST_PAGE_NODE *Node);

}  // namespace framework
