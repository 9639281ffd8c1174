// Draws what lies over the page: the message box (plain, Yes/No or
// progress), the help panel and an open drop-down list.
#include <Library/DebugLib.h>
#include <Library/PrintLib.h>

#include "FrameworkState.h"
#include "framework/Framework.h"
#include "framework/Text.h"
#include "framework/TextRenderer.h"

namespace framework {
namespace {

// Double-line box drawing characters (UEFI BOXDRAW_DOUBLE_*).
constexpr CHAR16 kHorizontal = 0x2550;
constexpr CHAR16 kVertical = 0x2551;
constexpr CHAR16 kTopLeft = 0x2554;
constexpr CHAR16 kTopRight = 0x2557;
constexpr CHAR16 kBottomLeft = 0x255A;
constexpr CHAR16 kBottomRight = 0x255D;
constexpr CHAR16 kFull = 0x2588;   // █ done part of the progress bar
constexpr CHAR16 kShade = 0x2591;  // ░ the rest
constexpr CHAR16 kEllipsis = 0x2026;  // … more text than room

[[nodiscard]] BOOLEAN IsBlank(const CHAR16 *Text) {
  for (; *Text != 0; Text++) {
    if (*Text != u' ') {
      return FALSE;
    }
  }
  return TRUE;
}

struct Frame {
  UINTN Column;
  UINTN Row;
  UINTN Width;
  UINTN Height;
};

// A framed box filled with Attribute; Title sits in the top border.
VOID DrawFrame(ScreenBuffer &Screen, const Frame &Box, const CHAR16 *Title,
               const CHAR16 *Footer, UINT8 Attribute) {
  FillRect(Screen, Box.Column, Box.Row, Box.Width, Box.Height, u' ', Attribute);
  UINTN Right = Box.Column + Box.Width - 1;
  UINTN Bottom = Box.Row + Box.Height - 1;
  for (UINTN Column = Box.Column + 1; Column < Right; Column++) {
    PutChar(Screen, Column, Box.Row, kHorizontal, Attribute);
    PutChar(Screen, Column, Bottom, kHorizontal, Attribute);
  }
  for (UINTN Row = Box.Row + 1; Row < Bottom; Row++) {
    PutChar(Screen, Box.Column, Row, kVertical, Attribute);
    PutChar(Screen, Right, Row, kVertical, Attribute);
  }
  PutChar(Screen, Box.Column, Box.Row, kTopLeft, Attribute);
  PutChar(Screen, Right, Box.Row, kTopRight, Attribute);
  PutChar(Screen, Box.Column, Bottom, kBottomLeft, Attribute);
  PutChar(Screen, Right, Bottom, kBottomRight, Attribute);
  if (Title != nullptr && TextWidth(Title) != 0 && !IsBlank(Title) &&
      Box.Width > 6) {
    UINTN Width = TextWidth(Title);
    BOOLEAN Cut = Width > Box.Width - 6;
    Width = Cut ? Box.Width - 6 : Width;
    UINTN Column = Box.Column + (Box.Width - Width - 2) / 2;
    PutChar(Screen, Column, Box.Row, u' ', look::kBoxTitle);
    UINTN Used = PutText(Screen, Column + 1, Box.Row, Title,
                         Cut ? Width - 1 : Width, look::kBoxTitle);
    if (Cut) {
      PutChar(Screen, Column + 1 + Used, Box.Row, kEllipsis, look::kBoxTitle);
    }
    PutChar(Screen, Column + 1 + Width, Box.Row, u' ', look::kBoxTitle);
  }
  if (Footer != nullptr && Box.Width > 6) {
    PutText(Screen, Box.Column + 2, Bottom, Footer, Box.Width - 4, Attribute);
  }
}

// The widest line of Text once wrapped to Limit columns.
[[nodiscard]] UINTN WidestLine(const CHAR16 *Text, UINTN Limit) {
  UINTN Widest = 0;
  UINTN Length = 0;
  const CHAR16 *Cursor = Text;
  for (const CHAR16 *Start = Cursor; NextWrappedLine(&Cursor, Limit, &Length);
       Start = Cursor) {
    UINTN Width = 0;
    for (UINTN Index = 0; Index < Length; Index++) {
      Width += CharWidth(Start[Index]);
    }
    Widest = Width > Widest ? Width : Widest;
  }
  return Widest;
}

// Draws Text wrapped to Width from a position; at most MaxLines lines
// after skipping Skip of them. Returns the lines drawn.
// A text cut after its last line shown ends that line in an ellipsis
// (a scrolled help panel shows the rest).
UINTN DrawWrapped(ScreenBuffer &Screen, UINTN Column, UINTN Row,
                  const CHAR16 *Text, UINTN Width, UINTN Skip, UINTN MaxLines,
                  UINT8 Attribute) {
  UINTN Drawn = 0;
  UINTN Length = 0;
  UINTN Index = 0;
  for (const CHAR16 *Start = Text; Drawn < MaxLines &&
                                   NextWrappedLine(&Text, Width, &Length);
       Start = Text, Index++) {
    if (Index < Skip) {
      continue;
    }
    PutTextN(Screen, Column, Row + Drawn, Start, Length, Width, Attribute);
    Drawn++;
  }
  if (Drawn == MaxLines && Drawn != 0 && *Text != 0) {
    PutChar(Screen, Column + Width - 1, Row + Drawn - 1, kEllipsis, Attribute);
  }
  return Drawn;
}

// "[ Yes ]   [ No ]" or "[ OK ]" in the language shown.
constexpr UINTN kButtonGap = 3;

[[nodiscard]] UINTN ButtonWidth(const CHAR16 *Text) {
  return TextWidth(Text) + 4;
}

// The columns the box's buttons take.
[[nodiscard]] UINTN ButtonsWidth(UINT8 Style) {
  const FrameTexts &Texts = ScreenTexts();
  return Style == HOST_MSGBOX_YES_NO
             ? ButtonWidth(Texts.Yes) + kButtonGap + ButtonWidth(Texts.No)
             : ButtonWidth(Texts.Ok);
}

VOID PutButton(ScreenBuffer &Screen, UINTN Column, UINTN Row,
               const CHAR16 *Text, UINT8 Attribute) {
  UINTN Used = PutText(Screen, Column, Row, u"[ ", 2, Attribute);
  Used += PutText(Screen, Column + Used, Row, Text, TextWidth(Text), Attribute);
  PutText(Screen, Column + Used, Row, u" ]", 2, Attribute);
}

VOID DrawButtons(ScreenBuffer &Screen, const Frame &Box, UINT8 Style,
                 BOOLEAN AnswerYes) {
  const FrameTexts &Texts = ScreenTexts();
  UINTN Row = Box.Row + Box.Height - 2;
  UINTN Column = Box.Column + (Box.Width - ButtonsWidth(Style)) / 2;
  if (Style == HOST_MSGBOX_YES_NO) {
    PutButton(Screen, Column, Row, Texts.Yes,
              AnswerYes ? look::kBoxButton : look::kBox);
    PutButton(Screen, Column + ButtonWidth(Texts.Yes) + kButtonGap, Row,
              Texts.No, AnswerYes ? look::kBox : look::kBoxButton);
  } else {
    PutButton(Screen, Column, Row, Texts.Ok, look::kBoxButton);
  }
}

VOID DrawProgressBar(ScreenBuffer &Screen, const Frame &Box, UINT8 Percent) {
  UINTN Row = Box.Row + Box.Height - 2;
  UINTN Bar = Box.Width - 12;
  UINTN Done = (Bar * Percent) / 100;
  for (UINTN Index = 0; Index < Bar; Index++) {
    PutChar(Screen, Box.Column + 3 + Index, Row, Index < Done ? kFull : kShade,
            look::kBox);
  }
  CHAR16 Number[8];
  UnicodeSPrint(Number, sizeof(Number), u"%3d%%", Percent);
  PutText(Screen, Box.Column + 4 + Bar, Row, Number, 4, look::kBox);
}

}  // namespace

VOID DrawMessageBox(ScreenBuffer &Screen, const UiOverlay *Overlay) {
  const MessageBoxState &State = MessageBox();
  const CHAR16 *Text = State.Text != nullptr ? State.Text : u"";
  const CHAR16 *Title = State.Title != nullptr ? State.Title : u"";
  UINTN Limit = Screen.Columns - 12;
  UINTN Inner = WidestLine(Text, Limit);
  UINTN TitleWidth = TextWidth(Title) + 4;
  Inner = Inner < TitleWidth ? TitleWidth : Inner;
  Inner = Inner < 30 ? 30 : Inner;
  Inner = Inner < ButtonsWidth(State.Style) ? ButtonsWidth(State.Style) : Inner;
  Inner = Inner > Limit ? Limit : Inner;
  UINTN Lines = WrappedLineCount(Text, Inner);
  UINTN MaxLines = Screen.Rows - 10;
  Lines = Lines > MaxLines ? MaxLines : Lines;
  Frame Box = {0, 0, Inner + 6, Lines + 5};
  Box.Column = (Screen.Columns - Box.Width) / 2;
  Box.Row = (Screen.Rows - Box.Height) / 2;
  DrawFrame(Screen, Box, Title, nullptr, look::kBox);
  DrawWrapped(Screen, Box.Column + 3, Box.Row + 2, Text, Inner, 0, Lines,
              look::kBox);
  if (State.Style == HOST_MSGBOX_PROGRESS) {
    DrawProgressBar(Screen, Box, State.Percent);
  } else {
    DrawButtons(Screen, Box, State.Style,
                Overlay == nullptr || Overlay->BoxAnswerYes);
  }
}

VOID DrawHelpPanel(ScreenBuffer &Screen) {
  const HelpState &State = Help();
  BodyArea Body = BodyOf(Screen);
  Frame Box = {Screen.Columns / 4, Body.Row - 1, Screen.Columns - Screen.Columns / 4 - 1,
               Body.Height + 2};
  DrawFrame(Screen, Box, ScreenTexts().Help, ScreenTexts().HelpKeys, look::kBox);
  UINTN Width = Box.Width - 4;
  UINTN Rows = Box.Height - 2;
  UINTN Skip = State.Scroll;
  UINTN Row = 0;
  for (UINTN Index = 0; Index < State.Count && Row < Rows; Index++) {
    const HelpLine &Line = State.Lines[Index];
    BOOLEAN Heading = Line.Style == HOST_HELP_HEADING;
    UINTN Count = WrappedLineCount(Line.Text, Width) + 1;  // blank after
    if (Skip >= Count) {
      Skip -= Count;
      continue;
    }
    Row += DrawWrapped(Screen, Box.Column + 2, Box.Row + 1 + Row, Line.Text,
                       Width, Skip, Rows - Row,
                       Heading ? look::kBoxTitle : look::kBox);
    Skip = 0;
    Row++;
  }
}

VOID DrawDropDown(ScreenBuffer &Screen, const UiOverlay &Overlay) {
  HOST_PAGE_NODE *Node = Overlay.DropDown;
  BOOLEAN Cell = ControlOf(Node) != nullptr &&
                 ControlOf(Node)->Kind == HOST_CONTROL_TABLE;
  UINTN Count = 0;
  if (Cell) {
    CellView View = {};
    if (CellAt(Node, Overlay.DropRow, Overlay.DropColumn, &View)) {
      Count = View.OptionCount;
    }
  } else {
    Count = OptionCount(Node);
  }
  UINTN Column = 0;
  UINTN Row = 0;
  UINTN Width = 0;
  if (Count == 0 || !ControlPosition(Node, &Column, &Row, &Width)) {
    return;
  }
  UINTN Widest = 10;
  for (UINTN Index = 0; Index < Count; Index++) {
    const CHAR16 *Text = nullptr;
    if (Cell) {
      Text = CellOptionText(Node, Overlay.DropRow, Overlay.DropColumn, Index);
    } else {
      OptionView Option = {};
      BOOLEAN Listed = OptionAt(Node, Index, &Option);
      ASSERT(Listed);  // Index is below OptionCount
      Text = Option.Text;
    }
    UINTN TextColumns = TextWidth(Text);
    Widest = TextColumns > Widest ? TextColumns : Widest;
  }
  UINTN MaxRows = Screen.Rows - 6;
  UINTN Shown = Count > MaxRows ? MaxRows : Count;
  Frame Box = {Column, Row + 1, Widest + 4, Shown + 2};
  if (Box.Column + Box.Width >= Screen.Columns) {
    Box.Column = Screen.Columns - Box.Width - 1;
  }
  if (Box.Row + Box.Height >= Screen.Rows - 1) {
    Box.Row = Row > Box.Height ? Row - Box.Height : 1;
  }
  DrawFrame(Screen, Box, nullptr, nullptr, look::kBox);
  UINTN First = Overlay.DropCursor >= Shown ? Overlay.DropCursor - Shown + 1 : 0;
  for (UINTN Line = 0; Line < Shown; Line++) {
    UINTN Index = First + Line;
    const CHAR16 *Text = nullptr;
    UINT8 State = HOST_DISPLAY_SHOWN;
    if (Cell) {
      Text = CellOptionText(Node, Overlay.DropRow, Overlay.DropColumn, Index);
      State = CellOptionState(Node, Overlay.DropRow, Overlay.DropColumn, Index);
    } else {
      OptionView Option = {};
      // A cursor past the options (a value set out of range) leaves the
      // view empty, and the line is drawn empty.
      (VOID) OptionAt(Node, Index, &Option);
      Text = Option.Text;
      State = Option.DisplayState;
    }
    UINT8 Attribute = State != HOST_DISPLAY_SHOWN ? look::kBoxGrayed : look::kBox;
    if (Index == Overlay.DropCursor) {
      Attribute = look::kBoxButton;
      FillRect(Screen, Box.Column + 1, Box.Row + 1 + Line, Box.Width - 2, 1, u' ',
               Attribute);
    }
    PutText(Screen, Box.Column + 2, Box.Row + 1 + Line, Text, Widest, Attribute);
  }
}

}  // namespace framework
