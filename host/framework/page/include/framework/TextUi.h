// The interactive text UI over any console: renders frames (only the cells
// that changed), reads keys and turns them into operator actions, asks the
// message boxes' questions. The native terminal and the UEFI console each
// supply a screen sink and a key source.
//
// Keys: Tab / Shift+Tab move the focus; Up/Down move within a radio group or
// table (and on to the neighbouring control at its ends); Left/Right move
// between a table row's cells, step a slider, turn a combo box; PgUp/PgDn,
// Home/End page through tables and sliders; Enter/Space press, choose,
// toggle or open a drop-down list; typing edits an edit box (Backspace
// deletes); F1 help; F2 the next language; Ctrl-L redraws the screen;
// Esc/F10 leave.
#pragma once

#include <Uefi.h>

#include "framework/Framework.h"
#include "framework/Screen.h"
#include "framework/TextRenderer.h"

namespace framework {

// Scan code for Shift+Tab, which UEFI consoles do not report.
constexpr UINT16 kScanShiftTab = 0x7F01;
// Scan code a console reports when its size changed: the whole screen is
// drawn again at the new size (as Ctrl-L does at any time).
constexpr UINT16 kScanRedraw = 0x7F02;
constexpr CHAR16 kCharRedraw = 0x000C;  // Ctrl-L
constexpr CHAR16 kCharBackspace = 0x0008;
constexpr CHAR16 kCharTab = 0x0009;
constexpr CHAR16 kCharCarriageReturn = 0x000D;

// Blocking key input; FALSE when no more keys will come.
struct KeySource {
  VOID *Context;
  BOOLEAN (*ReadKey)(VOID *Context, EFI_INPUT_KEY *Key);
};

struct TextUi {
  ScreenBuffer Next;
  ScreenBuffer Shown;
  ScreenSink Sink;
  KeySource Keys;
  UiOverlay Overlay;
  BOOLEAN Started;
  BOOLEAN FullFrame;
};

// Prepares the UI for a console of Columns x Rows.
[[nodiscard]] EFI_STATUS TextUiStart(TextUi &Ui, UINTN Columns, UINTN Rows,
                                     const ScreenSink &Sink,
                                     const KeySource &Keys);
VOID TextUiStop(TextUi &Ui);
// Host services that route the framework's questions and redraws to Ui;
// GetString and SetLanguage are left for the caller to fill.
[[nodiscard]] HostServices TextUiServices(TextUi &Ui);
// Draws the current state (only what changed since the last frame).
VOID TextUiRender(TextUi &Ui);
// Redraws every cell on the next render (after the console was cleared),
// at the console's size then.
VOID TextUiInvalidate(TextUi &Ui);
// Handles one key; FALSE when the operator leaves.
[[nodiscard]] BOOLEAN TextUiHandleKey(TextUi &Ui, const EFI_INPUT_KEY &Key);
// Renders and handles keys until the operator leaves or input ends.
VOID TextUiRun(TextUi &Ui);
// The open box's answer from the keyboard (the framework's Ask service).
[[nodiscard]] BOOLEAN TextUiAsk(TextUi &Ui);

}  // namespace framework
