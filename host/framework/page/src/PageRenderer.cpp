// Draws the page shown: the title bar, the controls at their places in their
// display states (hidden ones absent, grayed ones dim), the focus, tables
// with their heading, selection and scrolling, and the key line.
#include <Library/BaseLib.h>
#include <Library/DebugLib.h>
#include <Library/PrintLib.h>

#include "framework/Framework.h"
#include "framework/Text.h"
#include "framework/TextRenderer.h"

namespace framework {
namespace {

constexpr CHAR16 kPointer = 0x25BA;    // ► focus and selected row
constexpr CHAR16 kDownArrow = 0x25BC;  // ▼ combo boxes, more rows below
constexpr CHAR16 kUpArrow = 0x25B2;    // ▲ more rows above
constexpr CHAR16 kRule = 0x2500;       // ─
constexpr CHAR16 kThumb = 0x2588;      // █ slider thumb
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

VOID Place(const HOST_PAGE_NODE *Node, UINTN Column, UINTN Row, UINTN Width,
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
};

[[nodiscard]] BOOLEAN IsFocused(const HOST_PAGE_NODE *Node) {
  return FocusNode() == Node;
}

[[nodiscard]] UINT8 TextAttribute(const HOST_PAGE_NODE *Node, UINT8 Normal) {
  if (EffectiveState(Node) == HOST_DISPLAY_GRAYED) {
    return look::kGrayed;
  }
  return IsFocused(Node) ? look::kFocus : Normal;
}

// Puts text if its row is inside the clip; returns the columns used.
UINTN ClipText(DrawContext &Context, UINTN Column, UINTN Row,
               const CHAR16 *Text, UINTN MaxWidth, UINT8 Attribute) {
  if (Row < Context.Clip.Row || Row >= Context.Clip.Bottom) {
    return 0;
  }
  UINTN Width = Room(Context.Clip, Column);
  return PutText(Context.Screen, Column, Row, Text,
                 MaxWidth < Width ? MaxWidth : Width, Attribute);
}

VOID ClipFill(DrawContext &Context, UINTN Column, UINTN Row, UINTN Width,
              UINT8 Attribute) {
  if (Row < Context.Clip.Row || Row >= Context.Clip.Bottom) {
    return;
  }
  UINTN Room_ = Room(Context.Clip, Column);
  FillRect(Context.Screen, Column, Row, Width < Room_ ? Width : Room_, 1, u' ',
           Attribute);
}

// A label: one line, or wrapped over its height when it has one.
[[nodiscard]] UINTN DrawLabel(DrawContext &Context, const HOST_PAGE_NODE *Node,
                              const HOST_CONTROL &Control, UINTN Column,
                              UINTN Row) {
  UINT8 Attribute = EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                 : look::kLabel;
  UINTN Width = Control.Layout.Width != 0 ? Control.Layout.Width
                                          : Room(Context.Clip, Column);
  UINTN Height = Control.Layout.Height;
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
    if (Row + Index >= Context.Clip.Row && Row + Index < Context.Clip.Bottom) {
      PutTextN(Context.Screen, Column, Row + Index, Start, Length,
               Room(Context.Clip, Column), Attribute);
    }
  }
  return Height;
}

// "[ Next ]" for buttons and image buttons. A button whose text is longer
// in the language shown than its place allows moves left so that it ends
// at the right edge (buttons at the edge, such as Next, stay whole).
VOID DrawButton(DrawContext &Context, const HOST_PAGE_NODE *Node, UINTN Column,
                UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  const CHAR16 *Text = TextOf(Node);
  if (*Text == 0) {
    Text = u"*";
  }
  const UINTN Width = TextWidth(Text) + 4;
  if (Room(Context.Clip, Column) < Width &&
      Context.Clip.Right - Context.Clip.Column >= Width) {
    Column = Context.Clip.Right - Width;
  }
  UINTN Used = ClipText(Context, Column, Row, u"[ ", 2, Attribute);
  Used += ClipText(Context, Column + Used, Row, Text, ~static_cast<UINTN>(0),
                   Attribute);
  ClipText(Context, Column + Used, Row, u" ]", 2, Attribute);
}

[[nodiscard]] UINTN DrawRadioGroup(DrawContext &Context,
                                   const HOST_PAGE_NODE *Node,
                                   const HOST_CONTROL &Control, UINTN Column,
                                   UINTN Row) {
  UINTN Count = OptionCount(Node);
  BOOLEAN GroupGrayed = EffectiveState(Node) == HOST_DISPLAY_GRAYED;
  for (UINTN Index = 0; Index < Count; Index++) {
    OptionView Option = {};
    BOOLEAN Listed = OptionAt(Node, Index, &Option);
    ASSERT(Listed);  // Index is below OptionCount
    BOOLEAN Grayed = GroupGrayed || Option.DisplayState != HOST_DISPLAY_SHOWN;
    UINT8 Attribute = Grayed ? look::kGrayed : look::kLabel;
    if (IsFocused(Node) && RadioCursor(Node) == Index) {
      Attribute = look::kFocus;
    }
    const CHAR16 *Mark = Control.Value == Index ? u"(*) " : u"( ) ";
    UINTN Used = ClipText(Context, Column, Row + Index, Mark, 4, Attribute);
    ClipText(Context, Column + Used, Row + Index, Option.Text,
             Control.Layout.Width != 0 ? Control.Layout.Width - Used
                                       : ~static_cast<UINTN>(0),
             Attribute);
  }
  return Count == 0 ? 1 : Count;
}

// A field: "[text        ▼]" for combo boxes, "[text        ]" for edits.
VOID DrawField(DrawContext &Context, const HOST_PAGE_NODE *Node,
               const HOST_CONTROL &Control, UINTN Column, UINTN Row,
               BOOLEAN Combo) {
  UINTN Width = Control.Layout.Width != 0 ? Control.Layout.Width
                                          : kDefaultFieldWidth;
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
                  const HOST_CONTROL &Control, UINTN Column, UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  UINTN Used = ClipText(Context, Column, Row,
                        Control.Value != 0 ? u"[X]" : u"[ ]", 3, Attribute);
  const CHAR16 *Text = TextOf(Node);
  if (*Text != 0) {
    UINT8 TextAttr = EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                  : look::kLabel;
    ClipText(Context, Column + Used + 1, Row, Text, ~static_cast<UINTN>(0),
             TextAttr);
  }
}

// "Caption [────█─────] 120"
VOID DrawSlider(DrawContext &Context, const HOST_PAGE_NODE *Node,
                const HOST_CONTROL &Control, UINTN Column, UINTN Row) {
  UINT8 Attribute = TextAttribute(Node, look::kLabel);
  UINTN Used = 0;
  const CHAR16 *Caption = TextOf(Node);
  if (*Caption != 0) {
    Used = ClipText(Context, Column, Row, Caption, ~static_cast<UINTN>(0),
                    EffectiveState(Node) == HOST_DISPLAY_GRAYED ? look::kGrayed
                                                                : look::kLabel);
    Used++;
  }
  UINTN Track = Control.Layout.Width != 0 && Control.Layout.Width > Used + 12
                    ? Control.Layout.Width - Used - 10
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
// (widest first) until the table fits.
VOID ColumnWidths(const HOST_PAGE_NODE *Node, UINTN TableWidth,
                  UINTN *Widths, UINT32 Columns) {
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
    Total += Width + 1;
  }
  while (Total > TableWidth) {
    UINTN Widest = 0;
    for (UINT32 Column = 1; Column < Columns; Column++) {
      Widest = Widths[Column] > Widths[Widest] ? Column : Widest;
    }
    if (Widths[Widest] <= 3) {
      break;
    }
    Widths[Widest]--;
    Total--;
  }
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
                              const HOST_CONTROL &Control, UINTN Column,
                              UINTN Row) {
  UINT32 Rows = TableRows(Node);
  UINT32 Columns = TableColumns(Node);
  UINTN Width = Control.Layout.Width != 0 ? Control.Layout.Width
                                          : Room(Context.Clip, Column);
  UINTN Bottom = Context.Clip.Bottom;
  UINTN Height = Control.Layout.Height != 0 ? Control.Layout.Height
                                            : (Bottom > Row ? Bottom - Row : 1);
  if (Rows == 0 || Columns == 0 || Columns > kMaxColumns) {
    Place(Node, Column, Row, Width, 0);
    return Height;
  }
  UINTN Widths[kMaxColumns];
  ColumnWidths(Node, Width, Widths, Columns);
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
  Place(Node, Column, Row, Width, Visible);

  BOOLEAN Focused = IsFocused(Node);
  BOOLEAN Selectable = (TableFlags(Node) & HOST_TABLE_SELECTABLE) != 0;
  BOOLEAN TableGrayed = EffectiveState(Node) == HOST_DISPLAY_GRAYED;
  UINTN Y = Row;
  auto DrawRow = [&](UINT32 TableRow) {
    BOOLEAN IsHeading = Heading && TableRow == 0;
    BOOLEAN IsSelected = !IsHeading && Selectable && TableRow == Selected;
    if (IsSelected) {
      ClipFill(Context, Column, Y, Width,
               Focused ? look::kFocus : look::kSelected);
    }
    UINTN X = Column;
    for (UINT32 Cell = 0; Cell < Columns; Cell++) {
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
      if (Cell == 0 && IsSelected && View.Kind == HOST_CELL_TEXT &&
          *View.Text == 0) {
        CHAR16 Mark[2] = {kPointer, 0};
        ClipText(Context, X, Y, Mark, 1, Attribute);
      } else {
        DrawCell(Context, Node, TableRow, Cell, X, Y, Widths[Cell], Attribute,
                 Grayed);
      }
      X += Widths[Cell] + 1;
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
  UINTN Right = Column + Width - 1;
  if (Top > First) {
    CHAR16 Mark[2] = {kUpArrow, 0};
    ClipText(Context, Right, Row + First, Mark, 1, look::kRule);
  }
  if (Top + Visible < Rows) {
    CHAR16 Mark[2] = {kDownArrow, 0};
    ClipText(Context, Right, Row + First + Visible - 1, Mark, 1, look::kRule);
  }
  return Height;
}

// ---- Nodes ----------------------------------------------------------------

[[nodiscard]] UINTN DrawNode(DrawContext &Context, HOST_PAGE_NODE *Node,
                             UINTN Column, UINTN Row);

// Draws the children of Node from an origin; rows of HOST_LAYOUT_NEXT_ROW
// follow the previous visible sibling. Returns the rows used.
UINTN DrawChildren(DrawContext &Context, HOST_PAGE_NODE *Node, UINTN Column,
                   UINTN Row) {
  UINTN Next = Row;
  UINTN Lowest = Row;
  UINTN Count = 0;
  for (HOST_PAGE_NODE *Child = Node->FirstChild;
       Child != nullptr && Count < kMaxPlacements; Child = Child->NextSibling) {
    Count++;
    HOST_CONTROL *Control = ControlOf(Child);
    if (Control == nullptr || EffectiveState(Child) == HOST_DISPLAY_HIDDEN) {
      continue;
    }
    UINTN ChildRow = Control->Layout.Row == HOST_LAYOUT_NEXT_ROW
                         ? Next
                         : Row + Control->Layout.Row;
    UINTN ChildColumn = Column + Control->Layout.Column;
    UINTN Used = DrawNode(Context, Child, ChildColumn, ChildRow);
    Next = ChildRow + Used;
    Lowest = Next > Lowest ? Next : Lowest;
  }
  return Lowest - Row;
}

UINTN DrawNode(DrawContext &Context, HOST_PAGE_NODE *Node, UINTN Column,
               UINTN Row) {
  HOST_CONTROL *Control = ControlOf(Node);
  if (Control == nullptr) {
    return 0;
  }
  UINTN Used = 1;
  switch (Control->Kind) {
    case HOST_CONTROL_LABEL:
      Used = DrawLabel(Context, Node, *Control, Column, Row);
      break;
    case HOST_CONTROL_BUTTON:
    case HOST_CONTROL_IMAGE_BUTTON:
      DrawButton(Context, Node, Column, Row);
      break;
    case HOST_CONTROL_RADIO_GROUP:
      Used = DrawRadioGroup(Context, Node, *Control, Column, Row);
      break;
    case HOST_CONTROL_COMBO_BOX:
      DrawField(Context, Node, *Control, Column, Row, TRUE);
      break;
    case HOST_CONTROL_EDIT_BOX:
      DrawField(Context, Node, *Control, Column, Row, FALSE);
      break;
    case HOST_CONTROL_CHECK_BOX:
      DrawCheckBox(Context, Node, *Control, Column, Row);
      break;
    case HOST_CONTROL_SLIDER:
      DrawSlider(Context, Node, *Control, Column, Row);
      break;
    case HOST_CONTROL_TABLE:
      return DrawTable(Context, Node, *Control, Column, Row);
    case HOST_CONTROL_CONTAINER:
      Used = DrawChildren(Context, Node, Column, Row);
      break;
    default:
      return 0;
  }
  if (Control->Kind != HOST_CONTROL_TABLE) {
    Place(Node, Column, Row, Control->Layout.Width, Used);
  }
  if (IsFocused(Node) && Column > 0 && Control->Kind != HOST_CONTROL_TABLE) {
    UINTN PointerRow = Row;
    if (Control->Kind == HOST_CONTROL_RADIO_GROUP) {
      PointerRow += RadioCursor(Node);
    }
    CHAR16 Mark[2] = {kPointer, 0};
    ClipText(Context, Column - 1, PointerRow, Mark, 1, look::kLabel);
  }
  if (Control->Layout.Height > Used && Control->Kind != HOST_CONTROL_RADIO_GROUP) {
    Used = Control->Layout.Height;
  }
  return Used;
}

VOID DrawTitle(ScreenBuffer &Screen, const CHAR16 *Title) {
  FillRect(Screen, 0, 0, Screen.Columns, 1, u' ', look::kTitle);
  UINTN Width = TextWidth(Title);
  if (Width > Screen.Columns - 2) {
    Width = Screen.Columns - 2;
  }
  PutText(Screen, (Screen.Columns - Width) / 2, 0, Title, Width, look::kTitle);
}

// The key line: what the keys do, and the language on the right.
VOID DrawKeyLine(ScreenBuffer &Screen) {
  UINTN Row = Screen.Rows - 1;
  FillRect(Screen, 0, Row, Screen.Columns, 1, u' ', look::kKeys);
  static constexpr CHAR16 kKeysText[] =
      u" Tab:Move  Enter:Select  Space:Toggle  F1:Help  F2:Language  Esc:Exit";
  CHAR16 Language[16];
  UnicodeSPrint(Language, sizeof(Language), u"%a ", LanguageCode(LanguageIndex()));
  UINTN LanguageWidth = TextWidth(Language);
  PutText(Screen, 0, Row, kKeysText, Screen.Columns - LanguageWidth - 2,
          look::kKeys);
  PutText(Screen, Screen.Columns - LanguageWidth - 1, Row, Language,
          LanguageWidth, look::kKeys);
  for (UINTN Column = 0; Column < Screen.Columns; Column++) {
    PutChar(Screen, Column, Screen.Rows - 2, kRule, look::kRule);
  }
}

}  // namespace

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
                          Body.Row + Body.Height}};
  DrawChildren(Context, Page, Body.Column, Body.Row);
}

VOID ComposeScreen(ScreenBuffer &Screen, const UiOverlay *Overlay) {
  if (Screen.Cells == nullptr) {
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
