// Draws the page shown: the title bar, the controls at their places in their
// display states (hidden ones absent, grayed ones dim), the focus, tables
// with their heading, selection and scrolling, and the key line.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/DebugLib.h>
#include <Library/PrintLib.h>

#include "framework/Framework.h"
#include "framework/Text.h"
#include "framework/TextRenderer.h"
#include "FrameworkState.h"
#include "Layout.h"

namespace framework {
namespace {

constexpr CHAR16 kPointer = 0x25BA;    // ► focus and selected row
constexpr CHAR16 kDownArrow = 0x25BC;  // ▼ combo boxes, more rows below
constexpr CHAR16 kUpArrow = 0x25B2;    // ▲ more rows above
constexpr CHAR16 kRule = 0x2500;       // ─
constexpr CHAR16 kThumb = 0x2588;      // █ slider thumb
constexpr CHAR16 kEllipsis = 0x2026;   // … the end of a cut text
constexpr CHAR16 kLeftMark = 0x00AB;   // « columns left of the view
constexpr CHAR16 kRightMark = 0x00BB;  // » columns right of it
constexpr UINTN kDefaultFieldWidth = 20;

// Where each control went in the last frame.
struct Placement {
  const HOST_PAGE_NODE *Node;
  UINT16 Column;
  UINT16 Row;
  UINT16 Width;
  UINT16 VisibleRows;
};
constexpr UINTN kMaxPlacements = 256;
constinit Placement gPlacements[kMaxPlacements] = {};
constinit UINTN gPlacementCount = 0;

VOID RecordPlacement(const HOST_PAGE_NODE *Node, UINTN Column, UINTN Row, UINTN Width,
           UINTN VisibleRows) {
  if (gPlacementCount < kMaxPlacements) {
    gPlacements[gPlacementCount++] = {
        Node, static_cast<UINT16>(Column), static_cast<UINT16>(Row),
        static_cast<UINT16>(Width), static_cast<UINT16>(VisibleRows)};
  }
}

// The clip rectangle controls are drawn in.
struct Area {
  UINTN Column;
  UINTN Row;
  UINTN Right;   // one past the last column
  UINTN Bottom;  // one past the last row
};

[[nodiscard]] UINTN Room(const Area &Clip, UINTN Column) {
  return Column < Clip.Right ? Clip.Right - Column : 0;
}

struct DrawContext {
  ScreenBuffer &Screen;
  const UiOverlay *Overlay;
  Area Clip;
  const HOST_PAGE_NODE *Owner;  // the control being drawn
};

// The layout check: which control drew each cell, and what ran into what.
constinit UINT16 *gOwners = nullptr;
constinit LayoutFaults *gFaults = nullptr;
constexpr UINTN kMaxOwners = 512;
constinit const HOST_PAGE_NODE *gOwnerNodes[kMaxOwners] = {};
constinit UINTN gOwnerCount = 0;
constexpr UINT16 kInk = 0x8000;

[[nodiscard]] UINT16 OwnerNumber(const HOST_PAGE_NODE *Node) {
  for (UINTN Index = 0; Index < gOwnerCount; Index++) {
    if (gOwnerNodes[Index] == Node) {
      return static_cast<UINT16>(Index + 1);
    }
  }
  if (gOwnerCount == kMaxOwners) {
    return 0;
  }
  gOwnerNodes[gOwnerCount++] = Node;
  return static_cast<UINT16>(gOwnerCount);
}

[[nodiscard]] UINT32 NodeIdOf(UINT16 Owner) {
  return Owner != 0 && Owner <= gOwnerCount ? gOwnerNodes[Owner - 1]->NodeId : 0;
}

VOID NoteFault(UINT32 &Counter, UINT32 NodeId, UINT32 OtherId, UINTN Column,
               UINTN Row) {
  if (gFaults->Overlaps == 0 && gFaults->Cuts == 0) {
    gFaults->NodeId = NodeId;
    gFaults->OtherNodeId = OtherId;
    gFaults->Column = static_cast<UINT16>(Column);
    gFaults->Row = static_cast<UINT16>(Row);
  }
  Counter++;
}

// Claims the cells just drawn for the control being drawn; a cell another
// control drew ink into, or that this one draws ink over, is an overlap.
VOID Claim(const DrawContext &Context, UINTN Column, UINTN Row, UINTN Width) {
  if (gOwners == nullptr || Context.Owner == nullptr) {
    return;
  }
  UINT16 Owner = OwnerNumber(Context.Owner);
  const ScreenBuffer &Screen = Context.Screen;
  for (UINTN X = Column; X < Column + Width && X < Screen.Columns; X++) {
    UINTN At = Row * Screen.Columns + X;
    CHAR16 Char = Screen.Cells[At].Char;
    UINT16 Ink = Char != u' ' ? kInk : 0;
    UINT16 Before = gOwners[At];
    if ((Before & ~kInk) != 0 && (Before & ~kInk) != Owner &&
        ((Before & kInk) != 0 || Ink != 0)) {
      NoteFault(gFaults->Overlaps, Context.Owner->NodeId,
                NodeIdOf(static_cast<UINT16>(Before & ~kInk)), X, Row);
    }
    gOwners[At] = static_cast<UINT16>(Owner | Ink);
  }
}

// A text the screen has no room for at all: cut with nothing to show it.
VOID NoteLostText(const DrawContext &Context, const CHAR16 *Text, UINTN Column,
                  UINTN Row) {
  if (gFaults != nullptr && Context.Owner != nullptr && Text != nullptr &&
      TextWidth(Text) != 0) {
    NoteFault(gFaults->Cuts, Context.Owner->NodeId, 0, Column, Row);
  }
}

[[nodiscard]] BOOLEAN IsFocused(const HOST_PAGE_NODE *Node) {
  return FocusNode() == Node;
}

[[nodiscard]] UINT8 TextAttribute(const HOST_PAGE_NODE *Node, UINT8 Normal) {
  if (EffectiveState(Node) == HOST_DISPLAY_GRAYED) {
    return look::kGrayed;
  }
  return IsFocused(Node) ? look::kFocus : Normal;
}

// Puts text if its row is inside the clip; a text cut short ends in an
// ellipsis. Returns the columns used.
UINTN ClipText(DrawContext &Context, UINTN Column, UINTN Row,
               const CHAR16 *Text, UINTN MaxWidth, UINT8 Attribute) {
  if (Row < Context.Clip.Row || Row >= Context.Clip.Bottom) {
    NoteLostText(Context, Text, Column, Row);
    return 0;
  }
  UINTN Width = Room(Context.Clip, Column);
  Width = MaxWidth < Width ? MaxWidth : Width;
  if (Width == 0) {
    NoteLostText(Context, Text, Column, Row);
    return 0;
  }
  UINTN Used = 0;
  if (TextWidth(Text) > Width) {
    Used = PutText(Context.Screen, Column, Row, Text, Width - 1, Attribute);
    PutChar(Context.Screen, Column + Used, Row, kEllipsis, Attribute);
    Used++;
  } else {
    Used = PutText(Context.Screen, Column, Row, Text, Width, Attribute);
  }
  Claim(Context, Column, Row, Used);
  return Used;
}

VOID ClipFill(DrawContext &Context, UINTN Column, UINTN Row, UINTN Width,
              UINT8 Attribute) {
  if (Row < Context.Clip.Row || Row >= Context.Clip.Bottom) {
    return;
  }
  UINTN Room_ = Room(Context.Clip, Column);
  Width = Width < Room_ ? Width : Room_;
  FillRect(Context.Screen, Column, Row, Width, 1, u' ', Attribute);
  Claim(Context, Column, Row, Width);
}

// A label: one line, or wrapped over its height when it has one; the last
// line of a text longer than the label ends in an ellipsis.
[[nodiscard]] UINTN DrawLabel(DrawContext &Context, const HOST_PAGE_NODE *Node,
                              const Slot &Place, UINTN Column, UINTN Row) {
  UINT8 Attribute = EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                 : look::kLabel;
  UINTN Width = Place.Width != 0 ? Place.Width : Room(Context.Clip, Column);
  UINTN Height = ControlOf(Node)->Layout.Height;
  if (Height <= 1) {
    ClipText(Context, Column, Row, TextOf(Node), Width, Attribute);
    return 1;
  }
  const CHAR16 *Text = TextOf(Node);
  UINTN Length = 0;
  for (UINTN Index = 0; Index < Height; Index++) {
    const CHAR16 *Start = Text;
    if (!NextWrappedLine(&Text, Width, &Length)) {
      break;
    }
    if (Index + 1 == Height && *Text != 0) {
      // More text than rows: the last row shows how it goes on.
      ClipText(Context, Column, Row + Index, Start, Width, Attribute);
      if (TextWidth(Start) <= Width) {
        UINTN End = Column + Width - 1;
        PutChar(Context.Screen, End, Row + Index, kEllipsis, Attribute);
        Claim(Context, End, Row + Index, 1);
      }
      break;
    }
    if (Row + Index >= Context.Clip.Row && Row + Index < Context.Clip.Bottom) {
      UINTN Used = PutTextN(Context.Screen, Column, Row + Index, Start, Length,
                            Room(Context.Clip, Column), Attribute);
      Claim(Context, Column, Row + Index, Used);
    } else {
      NoteLostText(Context, Start, Column, Row + Index);
    }
  }
  return Height;
}

// "[ Next ]" for buttons and image buttons, as wide as the layout allows.
VOID DrawButton(DrawContext &Context, const HOST_PAGE_NODE *Node,
                const Slot &Place, UINTN Column, UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  const CHAR16 *Text = TextOf(Node);
  if (*Text == 0) {
    Text = u"*";
  }
  UINTN Inner = Place.Width > 4 ? Place.Width - 4 : 1;
  UINTN Used = ClipText(Context, Column, Row, u"[ ", 2, Attribute);
  Used += ClipText(Context, Column + Used, Row, Text, Inner, Attribute);
  ClipText(Context, Column + Used, Row, u" ]", 2, Attribute);
}

[[nodiscard]] UINTN DrawRadioGroup(DrawContext &Context,
                                   const HOST_PAGE_NODE *Node,
                                   const HOST_CONTROL &Control,
                                   const Slot &Place, UINTN Column, UINTN Row) {
  UINTN Count = OptionCount(Node);
  UINTN Spacing = RadioSpacing(Node, Place.Height);
  BOOLEAN GroupGrayed = EffectiveState(Node) == HOST_DISPLAY_GRAYED;
  for (UINTN Index = 0; Index < Count; Index++) {
    OptionView Option = {};
    BOOLEAN Listed = OptionAt(Node, Index, &Option);
    ASSERT(Listed);  // Index is below OptionCount
    BOOLEAN Grayed = GroupGrayed || Option.DisplayState != HOST_DISPLAY_SHOWN;
    UINT8 Attribute = Grayed ? look::kGrayed : look::kLabel;
    if (IsFocused(Node) && RadioCursor(Node) == Index) {
      // A grayed option keeps its dim text under the cursor.
      Attribute = Grayed ? look::kFocusGrayed : look::kFocus;
    }
    const CHAR16 *Mark = Control.Value == Index ? u"(*) " : u"( ) ";
    UINTN OptionRow = Row + Index * Spacing;
    UINTN Used = ClipText(Context, Column, OptionRow, Mark, 4, Attribute);
    ClipText(Context, Column + Used, OptionRow, Option.Text,
             Place.Width > Used ? Place.Width - Used : 1, Attribute);
  }
  return Count == 0 ? 1 : (Count - 1) * Spacing + 1;
}

// A field: "[text        ▼]" for combo boxes, "[text        ]" for edits.
VOID DrawField(DrawContext &Context, const HOST_PAGE_NODE *Node,
               const Slot &Place, UINTN Column, UINTN Row, BOOLEAN Combo) {
  UINTN Width = Place.Width != 0 ? Place.Width : kDefaultFieldWidth;
  if (Width < 4) {
    Width = 4;
  }
  BOOLEAN Grayed = EffectiveState(Node) == HOST_DISPLAY_GRAYED;
  UINT8 Attribute = Grayed ? look::kFieldGrayed
                           : (IsFocused(Node) ? look::kFocus : look::kField);
  ClipFill(Context, Column, Row, Width, Attribute);
  ClipText(Context, Column, Row, u"[", 1, Attribute);
  ClipText(Context, Column + Width - 1, Row, u"]", 1, Attribute);
  UINTN Inner = Width - (Combo ? 4 : 2);
  const CHAR16 *Text = TextOf(Node);
  // An edit box shows the end of a text longer than its field.
  if (!Combo) {
    while (TextWidth(Text) > Inner - (IsFocused(Node) ? 1 : 0) && *Text != 0) {
      Text++;
    }
  }
  UINTN Used = ClipText(Context, Column + 1, Row, Text, Inner, Attribute);
  if (Combo) {
    CHAR16 Arrow[2] = {kDownArrow, 0};
    ClipText(Context, Column + Width - 2, Row, Arrow, 1, Attribute);
  } else if (IsFocused(Node) && Used < Inner) {
    ClipText(Context, Column + 1 + Used, Row, u"_", 1, Attribute);
  }
}

VOID DrawCheckBox(DrawContext &Context, const HOST_PAGE_NODE *Node,
                  const HOST_CONTROL &Control, const Slot &Place, UINTN Column,
                  UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  UINTN Used = ClipText(Context, Column, Row,
                        Control.Value != 0 ? u"[X]" : u"[ ]", 3, Attribute);
  const CHAR16 *Text = TextOf(Node);
  if (*Text != 0) {
    UINT8 TextAttr = EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                  : look::kLabel;
    ClipText(Context, Column + Used + 1, Row, Text,
             Place.Width > Used + 1 ? Place.Width - Used - 1 : 1, TextAttr);
  }
}

// "Caption [────█─────] 120"
VOID DrawSlider(DrawContext &Context, const HOST_PAGE_NODE *Node,
                const HOST_CONTROL &Control, const Slot &Place, UINTN Column,
                UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  UINTN Used = 0;
  const CHAR16 *Caption = TextOf(Node);
  if (*Caption != 0) {
    Used = ClipText(Context, Column, Row, Caption, ~static_cast<UINTN>(0),
                    EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                : look::kLabel);
    Used++;
  }
  UINTN Track = Place.Width != 0 && Place.Width > Used + 12
                    ? Place.Width - Used - 10
                    : kDefaultFieldWidth;
  UINT64 Span = Control.Maximum - Control.Minimum;
  UINTN Thumb = Span == 0 ? 0
                          : static_cast<UINTN>(((Control.Value - Control.Minimum) *
                                                (Track - 1)) / Span);
  ClipText(Context, Column + Used, Row, u"[", 1, Attribute);
  for (UINTN Index = 0; Index < Track; Index++) {
    CHAR16 Cell[2] = {Index == Thumb ? kThumb : kRule, 0};
    ClipText(Context, Column + Used + 1 + Index, Row, Cell, 1, Attribute);
  }
  ClipText(Context, Column + Used + 1 + Track, Row, u"]", 1, Attribute);
  CHAR16 Number[24];
  UnicodeSPrint(Number, sizeof(Number), u" %lu", Control.Value);
  ClipText(Context, Column + Used + 2 + Track, Row, Number, 21,
           EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                       : look::kLabel);
}

// ---- Tables ---------------------------------------------------------------

constexpr UINTN kMaxColumns = 32;

// Width a cell needs.
[[nodiscard]] UINTN CellWidth(const HOST_PAGE_NODE *Node, UINT32 Row,
                              UINT32 Column) {
  CellView Cell = {};
  if (!CellAt(Node, Row, Column, &Cell)) {
    return 0;
  }
  if (Cell.Kind == HOST_CELL_CHECK_BOX) {
    return 3;
  }
  if (Cell.Kind == HOST_CELL_COMBO_BOX) {
    UINTN Widest = 0;
    for (UINTN Option = 0; Option < Cell.OptionCount; Option++) {
      UINTN Width = TextWidth(CellOptionText(Node, Row, Column, Option));
      Widest = Width > Widest ? Width : Widest;
    }
    return Widest + 2;
  }
  return TextWidth(Cell.Text);
}

// Column widths: the module's, else each column's widest cell, narrowed
// (widest first) until the table fits, but not below kMinColumnWidth (or
// the column's content). A table that would not fit even so keeps its
// columns whole and scrolls sideways.
constexpr UINTN kMinColumnWidth = 8;

VOID ColumnWidths(const HOST_PAGE_NODE *Node, UINTN TableWidth,
                  UINTN *Widths, UINTN *Minimums, UINT32 Columns) {
  UINTN Total = 0;
  for (UINT32 Column = 0; Column < Columns; Column++) {
    UINTN Width = TableColumnWidth(Node, Column);
    if (Width == 0) {
      for (UINT32 Row = 0; Row < TableRows(Node); Row++) {
        UINTN Needed = CellWidth(Node, Row, Column);
        Width = Needed > Width ? Needed : Width;
      }
      if (Column == 0 && Width == 0) {
        Width = 1;  // the selection mark
      }
    }
    Widths[Column] = Width;
    // The first column names the rows and stays when the table scrolls
    // sideways: it keeps its width up to a third of the table.
    UINTN Minimum = Column == 0 ? TableWidth / 3 : kMinColumnWidth;
    Minimums[Column] = Width < Minimum ? Width : Minimum;
    Total += Width + 1;
  }
  UINTN Narrowest = 0;
  for (UINT32 Column = 0; Column < Columns; Column++) {
    Narrowest += Minimums[Column] + 1;
  }
  while (Total > TableWidth && Narrowest <= TableWidth) {
    UINTN Widest = 0;
    for (UINT32 Column = 1; Column < Columns; Column++) {
      UINTN Slack = Widths[Column] - Minimums[Column];
      Widest = Slack > Widths[Widest] - Minimums[Widest] ? Column : Widest;
    }
    if (Widths[Widest] <= Minimums[Widest]) {
      break;
    }
    Widths[Widest]--;
    Total--;
  }
}

// The first column shown after the first (which stays, it names the rows):
// the one asked for, moved so that the cell cursor is in view and no
// room is left empty on the right.
[[nodiscard]] UINT32 FirstShownColumn(HOST_PAGE_NODE *Node, const UINTN *Widths,
                                      UINT32 Columns, UINTN TableWidth) {
  auto Fits = [&](UINT32 From, UINT32 To) {
    UINTN Used = Widths[0] + 1;
    for (UINT32 Column = From; Column <= To; Column++) {
      Used += Widths[Column] + 1;
    }
    return Used <= TableWidth + 1;
  };
  UINT32 First = TableFirstColumn(Node);
  First = First < 1 ? 1 : (First >= Columns ? Columns - 1 : First);
  UINT32 Cursor = TableCursorColumn(Node);
  if (Cursor >= 1 && Cursor < First) {
    First = Cursor;
  }
  while (Cursor < Columns && Cursor > First && !Fits(First, Cursor)) {
    First++;
  }
  while (First > 1 && Fits(First - 1, Columns - 1)) {
    First--;
  }
  SetTableFirstColumn(Node, First);
  return First;
}

[[nodiscard]] UINT8 CellAttribute(const CellView &Cell, BOOLEAN SelectedRow,
                                  BOOLEAN Heading, BOOLEAN TableFocused,
                                  BOOLEAN Cursor) {
  if (Cursor) {
    return look::kCellCursor;
  }
  if (SelectedRow) {
    return TableFocused ? look::kFocus : look::kSelected;
  }
  if (Cell.DisplayState == HOST_DISPLAY_GRAYED) {
    return look::kGrayed;
  }
  return Heading ? look::kHeading : look::kBody;
}

VOID DrawCell(DrawContext &Context, const HOST_PAGE_NODE *Node, UINT32 Row,
              UINT32 Column, UINTN X, UINTN Y, UINTN Width, UINT8 Attribute,
              BOOLEAN Grayed) {
  CellView Cell = {};
  if (!CellAt(Node, Row, Column, &Cell) ||
      Cell.DisplayState == HOST_DISPLAY_HIDDEN) {
    return;
  }
  if (Grayed && Attribute == look::kFocus) {
    Attribute = attr::Make(attr::kDarkGray, attr::kCyan);
  } else if (Grayed && Attribute == look::kSelected) {
    Attribute = attr::Make(attr::kDarkGray, attr::kLightGray);
  }
  if (Cell.Kind == HOST_CELL_CHECK_BOX) {
    ClipText(Context, X, Y, Cell.Value != 0 ? u"[X]" : u"[ ]", Width, Attribute);
  } else if (Cell.Kind == HOST_CELL_COMBO_BOX) {
    ClipText(Context, X, Y, CellOptionText(Node, Row, Column, Cell.Value),
             Width > 2 ? Width - 2 : 0, Attribute);
    CHAR16 Arrow[2] = {kDownArrow, 0};
    ClipText(Context, X + (Width > 1 ? Width - 1 : 0), Y, Arrow, 1, Attribute);
  } else {
    ClipText(Context, X, Y, Cell.Text, Width, Attribute);
  }
}

[[nodiscard]] UINTN DrawTable(DrawContext &Context, HOST_PAGE_NODE *Node,
                              const HOST_CONTROL &Control, const Slot &Slot_,
                              UINTN Column, UINTN Row) {
  UINT32 Rows = TableRows(Node);
  UINT32 Columns = TableColumns(Node);
  UINTN Width = Slot_.Width != 0 ? Slot_.Width : Room(Context.Clip, Column);
  UINTN Bottom = Context.Clip.Bottom;
  UINTN Height = Slot_.Height != 0 ? Slot_.Height
                                   : (Bottom > Row ? Bottom - Row : 1);
  if (Rows == 0 || Columns == 0 || Columns > kMaxColumns) {
    RecordPlacement(Node, Column, Row, Width, 0);
    return Height;
  }
  UINTN Widths[kMaxColumns];
  UINTN Minimums[kMaxColumns];
  ColumnWidths(Node, Width, Widths, Minimums, Columns);
  UINT32 FirstColumn = Columns > 1 ? FirstShownColumn(Node, Widths, Columns, Width)
                                   : 1;
  BOOLEAN Heading = (TableFlags(Node) & HOST_TABLE_HEADING) != 0;
  UINT32 First = Heading ? 1 : 0;
  UINTN Visible = Height > First ? Height - First : 1;
  // Keep the selected row in view.
  UINT32 Selected = static_cast<UINT32>(Control.Value);
  UINT32 Top = TableScrollTop(Node);
  if (Top < First) {
    Top = First;
  }
  if (Selected >= First && Selected < Top) {
    Top = Selected;
  }
  if (Selected >= First && Selected >= Top + Visible) {
    Top = static_cast<UINT32>(Selected - Visible + 1);
  }
  if (Top > First && Top + Visible > Rows) {
    Top = Rows > Visible + First ? static_cast<UINT32>(Rows - Visible) : First;
  }
  SetTableScrollTop(Node, Top);
  RecordPlacement(Node, Column, Row, Width, Visible);

  BOOLEAN Focused = IsFocused(Node);
  BOOLEAN Selectable = (TableFlags(Node) & HOST_TABLE_SELECTABLE) != 0;
  BOOLEAN TableGrayed = EffectiveState(Node) == HOST_DISPLAY_GRAYED;
  UINTN Right = Column + Width;  // one past the table
  BOOLEAN MoreRight = FALSE;
  UINTN Y = Row;
  auto DrawRow = [&](UINT32 TableRow) {
    BOOLEAN IsHeading = Heading && TableRow == 0;
    BOOLEAN IsSelected = !IsHeading && Selectable && TableRow == Selected;
    if (IsSelected) {
      ClipFill(Context, Column, Y, Width,
               Focused ? look::kFocus : look::kSelected);
    }
    UINTN X = Column;
    for (UINT32 Cell = 0; Cell < Columns; Cell = Cell == 0 ? FirstColumn : Cell + 1) {
      if (X >= Right) {
        MoreRight = TRUE;
        break;
      }
      CellView View = {};
      // A cell the table's copy lacks draws from the empty view.
      (VOID) CellAt(Node, TableRow, Cell, &View);
      BOOLEAN Cursor = Focused && IsSelected && Cell == TableCursorColumn(Node) &&
                       View.Kind != HOST_CELL_TEXT;
      UINT8 Attribute = CellAttribute(View, IsSelected, IsHeading, Focused, Cursor);
      if (TableGrayed) {
        Attribute = look::kGrayed;
      }
      BOOLEAN Grayed = View.DisplayState == HOST_DISPLAY_GRAYED;
      UINTN CellWidth_ = Widths[Cell];
      if (X + CellWidth_ > Right) {
        CellWidth_ = Right - X;
        MoreRight = TRUE;
      }
      if (Cell == 0 && IsSelected && View.Kind == HOST_CELL_TEXT &&
          *View.Text == 0) {
        CHAR16 Mark[2] = {kPointer, 0};
        ClipText(Context, X, Y, Mark, 1, Attribute);
      } else {
        DrawCell(Context, Node, TableRow, Cell, X, Y, CellWidth_, Attribute,
                 Grayed);
      }
      X += Widths[Cell] + 1;
      if (Cell == 0 && FirstColumn > 1 && X > Column && X - 1 < Right) {
        CHAR16 Mark[2] = {kLeftMark, 0};
        ClipText(Context, X - 1, Y, Mark, 1, look::kRule);
      }
    }
    Y++;
  };
  if (Heading) {
    DrawRow(0);
  }
  for (UINT32 TableRow = Top; TableRow < Rows && TableRow < Top + Visible;
       TableRow++) {
    DrawRow(TableRow);
  }
  if (MoreRight) {
    CHAR16 Mark[2] = {kRightMark, 0};
    ClipText(Context, Right - 1, Row, Mark, 1, look::kRule);
  }
  if (Top > First) {
    CHAR16 Mark[2] = {kUpArrow, 0};
    ClipText(Context, Right - 1, Row + First, Mark, 1, look::kRule);
  }
  if (Top + Visible < Rows) {
    CHAR16 Mark[2] = {kDownArrow, 0};
    ClipText(Context, Right - 1, Row + First + Visible - 1, Mark, 1, look::kRule);
  }
  return Height;
}

// ---- Nodes ----------------------------------------------------------------

[[nodiscard]] UINTN DrawNode(DrawContext &Context, const Slot &Place,
                             UINTN Column, UINTN Row);

// Draws the children of Node from an origin, placed by the layout in Room;
// children that follow the previous one go below it. Returns the rows used.
UINTN DrawChildren(DrawContext &Context, HOST_PAGE_NODE *Node, UINTN Column,
                   UINTN Row, const LayoutRoom &Room) {
  Slot Slots[kMaxSlots];
  UINTN Count = LayOutChildren(Node, Room, Slots);
  UINTN Next = Row;
  UINTN Lowest = Row;
  for (UINTN Index = 0; Index < Count && gPlacementCount < kMaxPlacements;
       Index++) {
    const Slot &Place = Slots[Index];
    UINTN ChildRow = Place.FollowsPrevious ? Next : Row + Place.Row;
    UINTN Used = DrawNode(Context, Place, Column + Place.Column, ChildRow);
    Next = ChildRow + Used;
    Lowest = Next > Lowest ? Next : Lowest;
  }
  return Lowest - Row;
}

UINTN DrawNode(DrawContext &Context, const Slot &Place, UINTN Column,
               UINTN Row) {
  HOST_PAGE_NODE *Node = Place.Node;
  HOST_CONTROL *Control = ControlOf(Node);
  if (Control == nullptr) {
    return 0;
  }
  Context.Owner = Node;
  UINTN Used = 1;
  switch (Control->Kind) {
    case HOST_CONTROL_LABEL:
      Used = DrawLabel(Context, Node, Place, Column, Row);
      break;
    case HOST_CONTROL_BUTTON:
    case HOST_CONTROL_IMAGE_BUTTON:
      DrawButton(Context, Node, Place, Column, Row);
      break;
    case HOST_CONTROL_RADIO_GROUP:
      Used = DrawRadioGroup(Context, Node, *Control, Place, Column, Row);
      break;
    case HOST_CONTROL_COMBO_BOX:
      DrawField(Context, Node, Place, Column, Row, TRUE);
      break;
    case HOST_CONTROL_EDIT_BOX:
      DrawField(Context, Node, Place, Column, Row, FALSE);
      break;
    case HOST_CONTROL_CHECK_BOX:
      DrawCheckBox(Context, Node, *Control, Place, Column, Row);
      break;
    case HOST_CONTROL_SLIDER:
      DrawSlider(Context, Node, *Control, Place, Column, Row);
      break;
    case HOST_CONTROL_TABLE:
      return DrawTable(Context, Node, *Control, Place, Column, Row);
    case HOST_CONTROL_CONTAINER: {
      UINTN Width = Place.Width != 0 ? Place.Width : Room(Context.Clip, Column);
      LayoutRoom Inner = {Width,
                          Control->Layout.Width != 0 ? Control->Layout.Width
                                                     : Width,
                          0, Place.ExtraRows};
      Used = DrawChildren(Context, Node, Column, Row, Inner);
      Context.Owner = Node;
      break;
    }
    default:
      return 0;
  }
  RecordPlacement(Node, Column, Row, Place.Width, Used);
  if (IsFocused(Node) && Column > 0) {
    UINTN PointerRow = Row;
    if (Control->Kind == HOST_CONTROL_RADIO_GROUP) {
      PointerRow += RadioCursor(Node) * RadioSpacing(Node, Place.Height);
    }
    CHAR16 Mark[2] = {kPointer, 0};
    ClipText(Context, Column - 1, PointerRow, Mark, 1, look::kLabel);
  }
  if (Control->Layout.Height > Used && Control->Kind != HOST_CONTROL_RADIO_GROUP) {
    Used = Control->Layout.Height;
  }
  return Used;
}

// A line of the frame (title or key line), cut with an ellipsis when the
// screen is too narrow for it.
VOID PutLine(ScreenBuffer &Screen, UINTN Column, UINTN Row, const CHAR16 *Text,
             UINTN Width, UINT8 Attribute) {
  if (TextWidth(Text) <= Width) {
    PutText(Screen, Column, Row, Text, Width, Attribute);
  } else if (Width != 0) {
    UINTN Used = PutText(Screen, Column, Row, Text, Width - 1, Attribute);
    PutChar(Screen, Column + Used, Row, kEllipsis, Attribute);
  }
}

VOID DrawTitle(ScreenBuffer &Screen, const CHAR16 *Title) {
  FillRect(Screen, 0, 0, Screen.Columns, 1, u' ', look::kTitle);
  UINTN Width = TextWidth(Title);
  if (Width > Screen.Columns - 2) {
    Width = Screen.Columns - 2;
  }
  PutLine(Screen, (Screen.Columns - Width) / 2, 0, Title, Width, look::kTitle);
}

// The key line: what the keys do, and the language on the right.
VOID DrawKeyLine(ScreenBuffer &Screen) {
  UINTN Row = Screen.Rows - 1;
  FillRect(Screen, 0, Row, Screen.Columns, 1, u' ', look::kKeys);
  CHAR16 Language[16];
  UnicodeSPrint(Language, sizeof(Language), u"%a ", LanguageCode(LanguageIndex()));
  UINTN LanguageWidth = TextWidth(Language);
  PutLine(Screen, 0, Row, ScreenTexts().Keys, Screen.Columns - LanguageWidth - 3,
          look::kKeys);
  PutText(Screen, Screen.Columns - LanguageWidth - 1, Row, Language,
          LanguageWidth, look::kKeys);
  for (UINTN Column = 0; Column < Screen.Columns; Column++) {
    PutChar(Screen, Column, Screen.Rows - 2, kRule, look::kRule);
  }
}

// Below the smallest screen the pages are laid out for: only a notice to
// enlarge the window, wrapped to the screen there is.
VOID DrawTooSmall(ScreenBuffer &Screen) {
  FillScreen(Screen, u' ', look::kBody);
  const CHAR16 *Text = ScreenTexts().Enlarge;
  UINTN Width = Screen.Columns > 4 ? Screen.Columns - 4 : Screen.Columns;
  UINTN Lines = WrappedLineCount(Text, Width);
  UINTN Row = Screen.Rows > Lines ? (Screen.Rows - Lines) / 2 : 0;
  UINTN Length = 0;
  for (const CHAR16 *Start = Text; NextWrappedLine(&Text, Width, &Length);
       Start = Text, Row++) {
    PutTextN(Screen, 2, Row, Start, Length, Width, look::kLabel);
  }
}

}  // namespace

BOOLEAN ScreenTooSmall(const ScreenBuffer &Screen) {
  return Screen.Columns < kLayoutColumns || Screen.Rows < kLayoutRows;
}

VOID CheckLayout(UINT16 *Owners, LayoutFaults *Faults) {
  gOwners = Owners;
  gFaults = Faults;
}

BodyArea BodyOf(const ScreenBuffer &Screen) {
  BodyArea Body = {2, 2, Screen.Columns - 4, Screen.Rows - 5};
  return Body;
}

BOOLEAN ControlPosition(const HOST_PAGE_NODE *Node, UINTN *Column,
                        UINTN *Row, UINTN *Width) {
  for (UINTN Index = 0; Index < gPlacementCount; Index++) {
    if (gPlacements[Index].Node == Node) {
      *Column = gPlacements[Index].Column;
      *Row = gPlacements[Index].Row;
      *Width = gPlacements[Index].Width;
      return TRUE;
    }
  }
  return FALSE;
}

UINT32 TableVisibleRows(const HOST_PAGE_NODE *Node) {
  for (UINTN Index = 0; Index < gPlacementCount; Index++) {
    if (gPlacements[Index].Node == Node) {
      return gPlacements[Index].VisibleRows != 0 ? gPlacements[Index].VisibleRows
                                                 : 1;
    }
  }
  return 1;
}

VOID DrawPage(ScreenBuffer &Screen, const UiOverlay *Overlay) {
  gPlacementCount = 0;
  gOwnerCount = 0;
  if (gOwners != nullptr) {
    SetMem(gOwners, Screen.Columns * Screen.Rows * sizeof(UINT16), 0);
    *gFaults = {};
  }
  FillScreen(Screen, u' ', look::kBody);
  HOST_PAGE_NODE *Page = CurrentPage();
  DrawTitle(Screen, Page != nullptr ? TextOf(Page) : u"");
  DrawKeyLine(Screen);
  if (Page == nullptr) {
    return;
  }
  BodyArea Body = BodyOf(Screen);
  DrawContext Context = {Screen, Overlay,
                         {Body.Column - 1, Body.Row, Body.Column + Body.Width,
                          Body.Row + Body.Height},
                         nullptr};
  LayoutRoom Room = {Body.Width, kDesignColumns, kDesignRows,
                     Body.Height > kDesignRows ? Body.Height - kDesignRows : 0};
  DrawChildren(Context, Page, Body.Column, Body.Row, Room);
}

VOID ComposeScreen(ScreenBuffer &Screen, const UiOverlay *Overlay) {
  if (Screen.Cells == nullptr) {
    return;
  }
  if (ScreenTooSmall(Screen)) {
    gPlacementCount = 0;
    DrawTooSmall(Screen);
    return;
  }
  DrawPage(Screen, Overlay);
  if (Overlay != nullptr && Overlay->DropDown != nullptr) {
    DrawDropDown(Screen, *Overlay);
  }
  if (Help().Open) {
    DrawHelpPanel(Screen);
  }
  if (MessageBox().Open) {
    DrawMessageBox(Screen, Overlay);
  }
}

}  // namespace framework
