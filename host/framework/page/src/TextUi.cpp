// The interactive text UI: frames, keys to operator actions, questions.
#include "framework/TextUi.h"

#include <Library/DebugLib.h>

#include "framework/Operator.h"

namespace framework {
namespace {

// A key whose action the page refuses (a grayed control, an option that
// cannot be chosen, a language past the last) does nothing, and the screen
// shows that: the text UI deliberately does not look at the action's status.
VOID OutcomeOnScreen(EFI_STATUS ActionStatus) { (VOID) ActionStatus; }

[[nodiscard]] BOOLEAN IsKind(const HOST_PAGE_NODE *Node, UINT32 Kind) {
  HOST_CONTROL *Control = ControlOf(Node);
  return Control != nullptr && Control->Kind == Kind;
}

// ---- Drop-down lists --------------------------------------------------------

[[nodiscard]] UINTN DropCount(const UiOverlay &Overlay) {
  if (IsKind(Overlay.DropDown, HOST_CONTROL_TABLE)) {
    CellView Cell = {};
    return CellAt(Overlay.DropDown, Overlay.DropRow, Overlay.DropColumn, &Cell)
               ? Cell.OptionCount
               : 0;
  }
  return OptionCount(Overlay.DropDown);
}

VOID OpenDropDown(TextUi &Ui, HOST_PAGE_NODE *Node, UINT32 Row, UINT32 Column,
                  UINT32 Current) {
  Ui.Overlay.DropDown = Node;
  Ui.Overlay.DropRow = Row;
  Ui.Overlay.DropColumn = Column;
  Ui.Overlay.DropCursor = Current;
}

VOID HandleDropDownKey(TextUi &Ui, const EFI_INPUT_KEY &Key) {
  UiOverlay &Overlay = Ui.Overlay;
  UINTN Count = DropCount(Overlay);
  if (Key.ScanCode == SCAN_UP && Overlay.DropCursor > 0) {
    Overlay.DropCursor--;
  } else if (Key.ScanCode == SCAN_DOWN && Overlay.DropCursor + 1 < Count) {
    Overlay.DropCursor++;
  } else if (Key.ScanCode == SCAN_ESC) {
    Overlay.DropDown = nullptr;
  } else if (Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ') {
    HOST_PAGE_NODE *Node = Overlay.DropDown;
    Overlay.DropDown = nullptr;
    if (IsKind(Node, HOST_CONTROL_TABLE)) {
      OutcomeOnScreen(SetCell(Node, Overlay.DropRow, Overlay.DropColumn,
                              Overlay.DropCursor));
    } else {
      OutcomeOnScreen(Choose(Node, Overlay.DropCursor));
    }
  }
}

// ---- Controls -------------------------------------------------------------

// The option Step away from From that can be chosen, or From.
[[nodiscard]] UINT32 NextChoosable(const HOST_PAGE_NODE *Node, UINT32 From,
                                   INTN Step) {
  UINTN Count = OptionCount(Node);
  for (INTN Index = static_cast<INTN>(From) + Step;
       Index >= 0 && static_cast<UINTN>(Index) < Count; Index += Step) {
    OptionView Option = {};
    BOOLEAN Listed = OptionAt(Node, static_cast<UINTN>(Index), &Option);
    ASSERT(Listed);  // Index is below OptionCount
    if (Option.DisplayState == HOST_DISPLAY_SHOWN) {
      return static_cast<UINT32>(Index);
    }
  }
  return From;
}

[[nodiscard]] BOOLEAN HandleRadioKey(HOST_PAGE_NODE *Node,
                                     const EFI_INPUT_KEY &Key) {
  UINT32 Cursor = RadioCursor(Node);
  if (Key.ScanCode == SCAN_UP || Key.ScanCode == SCAN_DOWN) {
    UINT32 Next = NextChoosable(Node, Cursor, Key.ScanCode == SCAN_UP ? -1 : 1);
    if (Next == Cursor) {
      return FALSE;  // at the end: the focus moves on
    }
    SetRadioCursor(Node, Next);
    return TRUE;
  }
  if (Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ') {
    OutcomeOnScreen(Choose(Node, Cursor));
    return TRUE;
  }
  return FALSE;
}

[[nodiscard]] UINT32 FirstDataRow(const HOST_PAGE_NODE *Node) {
  return (TableFlags(Node) & HOST_TABLE_HEADING) != 0 ? 1 : 0;
}

// Moves the cell cursor to the next interactive cell of the row.
VOID MoveCellCursor(HOST_PAGE_NODE *Node, UINT32 Row, INTN Step) {
  UINT32 Columns = TableColumns(Node);
  for (INTN Column = static_cast<INTN>(TableCursorColumn(Node)) + Step;
       Column >= 0 && static_cast<UINT32>(Column) < Columns; Column += Step) {
    CellView Cell = {};
    if (CellAt(Node, Row, static_cast<UINT32>(Column), &Cell) &&
        Cell.Kind != HOST_CELL_TEXT) {
      SetTableCursorColumn(Node, static_cast<UINT32>(Column));
      return;
    }
  }
}

// Enter or Space on the cell under the cursor.
VOID ActivateCell(TextUi &Ui, HOST_PAGE_NODE *Node, UINT32 Row) {
  UINT32 Column = TableCursorColumn(Node);
  CellView Cell = {};
  if (!CellAt(Node, Row, Column, &Cell)) {
    return;
  }
  if (Cell.Kind == HOST_CELL_CHECK_BOX) {
    OutcomeOnScreen(SetCell(Node, Row, Column, Cell.Value != 0 ? 0 : 1));
  } else if (Cell.Kind == HOST_CELL_COMBO_BOX &&
             Cell.DisplayState == HOST_DISPLAY_SHOWN) {
    OpenDropDown(Ui, Node, Row, Column, Cell.Value);
  }
}

[[nodiscard]] BOOLEAN HandleTableKey(TextUi &Ui, HOST_PAGE_NODE *Node,
                                     const EFI_INPUT_KEY &Key) {
  HOST_CONTROL *Control = ControlOf(Node);
  UINT32 Rows = TableRows(Node);
  UINT32 First = FirstDataRow(Node);
  UINT32 Row = static_cast<UINT32>(Control->Value);
  UINT32 Page = TableVisibleRows(Node);
  UINT32 Target = Row;
  switch (Key.ScanCode) {
    case SCAN_UP:
      if (Row <= First) {
        return FALSE;
      }
      Target = Row - 1;
      break;
    case SCAN_DOWN:
      if (Row + 1 >= Rows) {
        return FALSE;
      }
      Target = Row + 1;
      break;
    case SCAN_PAGE_UP:
      Target = Row > First + Page ? Row - Page : First;
      break;
    case SCAN_PAGE_DOWN:
      Target = Row + Page < Rows ? Row + Page : Rows - 1;
      break;
    case SCAN_HOME:
      Target = First;
      break;
    case SCAN_END:
      Target = Rows - 1;
      break;
    case SCAN_LEFT:
    case SCAN_RIGHT: {
      UINT32 Before = TableCursorColumn(Node);
      MoveCellCursor(Node, Row, Key.ScanCode == SCAN_LEFT ? -1 : 1);
      if (TableCursorColumn(Node) == Before) {
        // No cell to move to: a table wider than its place scrolls
        // sideways (the renderer keeps the view inside the table).
        UINT32 First = TableFirstColumn(Node);
        SetTableFirstColumn(Node, Key.ScanCode == SCAN_LEFT
                                      ? (First > 1 ? First - 1 : First)
                                      : First + 1);
      }
      return TRUE;
    }
    default:
      if (Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ') {
        ActivateCell(Ui, Node, Row);
        return TRUE;
      }
      return FALSE;
  }
  if ((TableFlags(Node) & HOST_TABLE_SELECTABLE) != 0) {
    OutcomeOnScreen(SelectRow(Node, Target));
  } else {
    // A table without selection still scrolls.
    SetTableScrollTop(Node, Target);
    Control->Value = Target;
  }
  return TRUE;
}

[[nodiscard]] BOOLEAN HandleSliderKey(HOST_PAGE_NODE *Node,
                                      const EFI_INPUT_KEY &Key) {
  HOST_CONTROL *Control = ControlOf(Node);
  UINT64 Span = Control->Maximum - Control->Minimum;
  UINT64 Step = Span / 20 == 0 ? 1 : Span / 20;
  UINT64 Value = Control->Value;
  switch (Key.ScanCode) {
    case SCAN_LEFT:
      Value = Value - Control->Minimum > 1 ? Value - 1 : Control->Minimum;
      break;
    case SCAN_RIGHT:
      Value = Value + 1;
      break;
    case SCAN_PAGE_DOWN:
      Value = Value - Control->Minimum > Step ? Value - Step : Control->Minimum;
      break;
    case SCAN_PAGE_UP:
      Value = Value + Step;
      break;
    case SCAN_HOME:
      Value = Control->Minimum;
      break;
    case SCAN_END:
      Value = Control->Maximum;
      break;
    default:
      return FALSE;
  }
  OutcomeOnScreen(Slide(Node, Value));
  return TRUE;
}

[[nodiscard]] BOOLEAN HandleEditKey(HOST_PAGE_NODE *Node,
                                    const EFI_INPUT_KEY &Key) {
  if (Key.ScanCode != SCAN_NULL) {
    return FALSE;
  }
  CHAR16 Text[257];
  const CHAR16 *Current = TextOf(Node);
  UINTN Length = 0;
  while (Current[Length] != 0 && Length < 256) {
    Text[Length] = Current[Length];
    Length++;
  }
  if (Key.UnicodeChar == kCharBackspace) {
    if (Length == 0) {
      return TRUE;
    }
    Length--;
  } else if (Key.UnicodeChar >= u' ' && Length < 256) {
    Text[Length++] = Key.UnicodeChar;
  } else {
    return FALSE;
  }
  Text[Length] = 0;
  OutcomeOnScreen(TypeText(Node, Text));
  return TRUE;
}

[[nodiscard]] BOOLEAN HandleComboKey(TextUi &Ui, HOST_PAGE_NODE *Node,
                                     const EFI_INPUT_KEY &Key) {
  HOST_CONTROL *Control = ControlOf(Node);
  UINT32 Value = static_cast<UINT32>(Control->Value);
  if (Key.ScanCode == SCAN_LEFT || Key.ScanCode == SCAN_RIGHT) {
    UINT32 Next = NextChoosable(Node, Value, Key.ScanCode == SCAN_LEFT ? -1 : 1);
    if (Next != Value) {
      OutcomeOnScreen(Choose(Node, Next));
    }
    return TRUE;
  }
  if (Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ') {
    OpenDropDown(Ui, Node, 0, 0, Value);
    return TRUE;
  }
  return FALSE;
}

// Keys the focused control takes; FALSE when it leaves the key alone.
[[nodiscard]] BOOLEAN HandleControlKey(TextUi &Ui, HOST_PAGE_NODE *Node,
                                       const EFI_INPUT_KEY &Key) {
  HOST_CONTROL *Control = ControlOf(Node);
  if (Control == nullptr) {
    return FALSE;
  }
  BOOLEAN Activate =
      Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ';
  switch (Control->Kind) {
    case HOST_CONTROL_BUTTON:
    case HOST_CONTROL_IMAGE_BUTTON:
      if (Activate) {
        OutcomeOnScreen(Press(Node));
      }
      return Activate;
    case HOST_CONTROL_CHECK_BOX:
      if (Activate) {
        OutcomeOnScreen(SetCheck(Node, Control->Value == 0));
      }
      return Activate;
    case HOST_CONTROL_RADIO_GROUP:
      return HandleRadioKey(Node, Key);
    case HOST_CONTROL_COMBO_BOX:
      return HandleComboKey(Ui, Node, Key);
    case HOST_CONTROL_EDIT_BOX:
      return HandleEditKey(Node, Key);
    case HOST_CONTROL_SLIDER:
      return HandleSliderKey(Node, Key);
    case HOST_CONTROL_TABLE:
      return HandleTableKey(Ui, Node, Key);
    default:
      return FALSE;
  }
}

VOID HandleHelpKey(const EFI_INPUT_KEY &Key) {
  if (Key.ScanCode == SCAN_UP && Help().Scroll > 0) {
    SetHelpScroll(Help().Scroll - 1);
  } else if (Key.ScanCode == SCAN_DOWN) {
    SetHelpScroll(Help().Scroll + 1);
  } else if (Key.ScanCode == SCAN_ESC || Key.ScanCode == SCAN_F1 ||
             Key.UnicodeChar == kCharCarriageReturn) {
    CloseHelp();
  }
}

// ---- Host services ----------------------------------------------------------

[[nodiscard]] BOOLEAN AskService(VOID *Context) {
  return TextUiAsk(*static_cast<TextUi *>(Context));
}

VOID RefreshService(VOID *Context) {
  TextUiRender(*static_cast<TextUi *>(Context));
}

}  // namespace

EFI_STATUS TextUiStart(TextUi &Ui, UINTN Columns, UINTN Rows,
                       const ScreenSink &Sink, const KeySource &Keys) {
  Ui = {};
  if (!AllocateScreen(Ui.Next, Columns, Rows)) {
    return EFI_OUT_OF_RESOURCES;
  }
  if (!AllocateScreen(Ui.Shown, Columns, Rows)) {
    FreeScreen(Ui.Next);
    return EFI_OUT_OF_RESOURCES;
  }
  Ui.Sink = Sink;
  Ui.Keys = Keys;
  Ui.Overlay.ShowKeys = TRUE;
  Ui.Started = TRUE;
  Ui.FullFrame = TRUE;
  return EFI_SUCCESS;
}

VOID TextUiStop(TextUi &Ui) {
  FreeScreen(Ui.Next);
  FreeScreen(Ui.Shown);
  Ui = {};
}

HostServices TextUiServices(TextUi &Ui) {
  HostServices Services;
  Services.Context = &Ui;
  Services.Ask = AskService;
  Services.Refresh = RefreshService;
  return Services;
}

namespace {

[[nodiscard]] BOOLEAN IsRedrawKey(const EFI_INPUT_KEY &Key) {
  return Key.ScanCode == kScanRedraw ||
         (Key.ScanCode == SCAN_NULL && Key.UnicodeChar == kCharRedraw);
}

// Takes the console's size when it changed: new screens, all drawn. The
// old screens stay when memory for the new ones is short.
VOID FollowConsoleSize(TextUi &Ui) {
  if (Ui.Sink.Size == nullptr) {
    return;
  }
  UINTN Columns = 0;
  UINTN Rows = 0;
  Ui.Sink.Size(Ui.Sink.Context, &Columns, &Rows);
  ScreenBuffer Next = {};
  ScreenBuffer Shown = {};
  if (!AllocateScreen(Next, Columns, Rows)) {
    return;
  }
  if (Next.Columns == Ui.Next.Columns && Next.Rows == Ui.Next.Rows) {
    FreeScreen(Next);
    return;
  }
  if (!AllocateScreen(Shown, Columns, Rows)) {
    FreeScreen(Next);
    return;
  }
  FreeScreen(Ui.Next);
  FreeScreen(Ui.Shown);
  Ui.Next = Next;
  Ui.Shown = Shown;
  Ui.FullFrame = TRUE;
}

}  // namespace

VOID TextUiRender(TextUi &Ui) {
  if (!Ui.Started) {
    return;
  }
  if (Ui.FullFrame) {
    FollowConsoleSize(Ui);
  }
  if (Ui.Overlay.DropDown != nullptr &&
      (CurrentPage() == nullptr || !IsFocusable(Ui.Overlay.DropDown))) {
    Ui.Overlay.DropDown = nullptr;
  }
  ComposeScreen(Ui.Next, &Ui.Overlay);
  EmitChanges(Ui.Next, Ui.Shown, Ui.Sink, Ui.FullFrame);
  Ui.FullFrame = FALSE;
}

VOID TextUiInvalidate(TextUi &Ui) { Ui.FullFrame = TRUE; }

BOOLEAN TextUiHandleKey(TextUi &Ui, const EFI_INPUT_KEY &Key) {
  if (IsRedrawKey(Key)) {
    TextUiInvalidate(Ui);
    return TRUE;
  }
  if (Help().Open) {
    HandleHelpKey(Key);
    return TRUE;
  }
  if (Ui.Overlay.DropDown != nullptr) {
    HandleDropDownKey(Ui, Key);
    return TRUE;
  }
  if (Key.ScanCode == SCAN_ESC || Key.ScanCode == SCAN_F10) {
    return FALSE;
  }
  if (Key.ScanCode == SCAN_F1) {
    RequestHelp();
    return TRUE;
  }
  if (Key.ScanCode == SCAN_F2) {
    OutcomeOnScreen(SwitchLanguage((LanguageIndex() + 1) % kLanguageCount));
    return TRUE;
  }
  if (Key.ScanCode == kScanShiftTab) {
    FocusPrevious();
    return TRUE;
  }
  if (Key.UnicodeChar == kCharTab) {
    FocusNext();
    return TRUE;
  }
  HOST_PAGE_NODE *Focus = FocusNode();
  if (Focus != nullptr && HandleControlKey(Ui, Focus, Key)) {
    return TRUE;
  }
  if (Key.ScanCode == SCAN_UP || Key.ScanCode == SCAN_LEFT) {
    FocusPrevious();
  } else if (Key.ScanCode == SCAN_DOWN || Key.ScanCode == SCAN_RIGHT ||
             (Focus == nullptr && Key.UnicodeChar == kCharCarriageReturn)) {
    FocusNext();
  }
  return TRUE;
}

VOID TextUiRun(TextUi &Ui) {
  TextUiRender(Ui);
  EFI_INPUT_KEY Key = {};
  while (Ui.Keys.ReadKey != nullptr && Ui.Keys.ReadKey(Ui.Keys.Context, &Key)) {
    if (!TextUiHandleKey(Ui, Key)) {
      return;
    }
    TextUiRender(Ui);
  }
}

BOOLEAN TextUiAsk(TextUi &Ui) {
  // Destructive questions start on No: Enter alone never confirms them.
  Ui.Overlay.BoxAnswerYes = FALSE;
  BOOLEAN YesNo = MessageBox().Style == HOST_MSGBOX_YES_NO;
  TextUiRender(Ui);
  EFI_INPUT_KEY Key = {};
  while (Ui.Keys.ReadKey != nullptr && Ui.Keys.ReadKey(Ui.Keys.Context, &Key)) {
    if (IsRedrawKey(Key)) {
      TextUiInvalidate(Ui);
      TextUiRender(Ui);
      continue;
    }
    if (!YesNo) {
      if (Key.UnicodeChar == kCharCarriageReturn || Key.UnicodeChar == u' ' ||
          Key.ScanCode == SCAN_ESC) {
        return TRUE;
      }
      continue;
    }
    if (Key.ScanCode == SCAN_LEFT || Key.ScanCode == SCAN_RIGHT ||
        Key.UnicodeChar == kCharTab) {
      Ui.Overlay.BoxAnswerYes = !Ui.Overlay.BoxAnswerYes;
    } else if (Key.UnicodeChar == u'y' || Key.UnicodeChar == u'Y') {
      return TRUE;
    } else if (Key.UnicodeChar == u'n' || Key.UnicodeChar == u'N' ||
               Key.ScanCode == SCAN_ESC) {
      return FALSE;
    } else if (Key.UnicodeChar == kCharCarriageReturn) {
      return Ui.Overlay.BoxAnswerYes;
    }
    TextUiRender(Ui);
  }
  return FALSE;
}

}  // namespace framework
