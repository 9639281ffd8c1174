// A text screen as cells (character and UEFI text attribute), the output
// interface a console implements, and the emission of only the cells that
// changed since the last frame.
#pragma once

#include <Uefi.h>

namespace framework {

// UEFI text attributes: foreground | background << 4.
namespace attr {
constexpr UINT8 kBlack = 0x0, kBlue = 0x1, kCyan = 0x3, kRed = 0x4,
                kLightGray = 0x7, kDarkGray = 0x8, kYellow = 0xE, kWhite = 0xF;
[[nodiscard]] constexpr UINT8 Make(UINT8 Foreground, UINT8 Background) {
  return static_cast<UINT8>(Foreground | (Background << 4));
}
}  // namespace attr

// The second half of a wide character.
constexpr CHAR16 kWideTail = 0xFFFF;

struct ScreenCell {
  CHAR16 Char;
  UINT8 Attribute;
};

// Largest screen the renderer draws; bigger consoles use this much.
constexpr UINTN kMaxColumns = 240;
constexpr UINTN kMaxRows = 100;
constexpr UINTN kMinColumns = 40;
constexpr UINTN kMinRows = 12;

struct ScreenBuffer {
  UINTN Columns;
  UINTN Rows;
  ScreenCell *Cells;
};

// A console: Write puts Length characters of one attribute at a position
// (never past the row's end); Flush ends a frame. Size, when not NULL,
// gives the console's size now (a terminal window can be resized).
struct ScreenSink {
  VOID *Context;
  VOID (*Write)(VOID *Context, UINTN Column, UINTN Row, UINT8 Attribute,
                const CHAR16 *Text, UINTN Length);
  VOID (*Flush)(VOID *Context);
  VOID (*Size)(VOID *Context, UINTN *Columns, UINTN *Rows);
};

// Allocates a screen (sizes clamped to the limits above); FALSE when memory
// is short.
[[nodiscard]] BOOLEAN AllocateScreen(ScreenBuffer &Screen, UINTN Columns,
                                     UINTN Rows);
VOID FreeScreen(ScreenBuffer &Screen);
VOID FillScreen(ScreenBuffer &Screen, CHAR16 Char, UINT8 Attribute);
// Fills a rectangle, clipped to the screen.
VOID FillRect(ScreenBuffer &Screen, UINTN Column, UINTN Row, UINTN Width,
              UINTN Height, CHAR16 Char, UINT8 Attribute);
// Puts text at a position, at most MaxWidth columns (stops at a line
// break); returns the columns used. Wide characters take two cells.
UINTN PutText(ScreenBuffer &Screen, UINTN Column, UINTN Row,
              const CHAR16 *Text, UINTN MaxWidth, UINT8 Attribute);
// As PutText over the first Length characters only.
UINTN PutTextN(ScreenBuffer &Screen, UINTN Column, UINTN Row,
               const CHAR16 *Text, UINTN Length, UINTN MaxWidth,
               UINT8 Attribute);
VOID PutChar(ScreenBuffer &Screen, UINTN Column, UINTN Row, CHAR16 Char,
             UINT8 Attribute);
// Sets the attribute of a run of cells, keeping their characters.
VOID PaintRect(ScreenBuffer &Screen, UINTN Column, UINTN Row, UINTN Width,
               UINTN Height, UINT8 Attribute);

// Emits the cells of Next that differ from Shown (all of them when Full),
// in runs of one attribute, then copies Next into Shown and flushes. The
// screen's last cell is never written: consoles scroll when it is.
VOID EmitChanges(const ScreenBuffer &Next, ScreenBuffer &Shown,
                 const ScreenSink &Sink, BOOLEAN Full);

// The screen as text: one line per row, trailing blanks removed, each line
// ended by "\n", wide tails left out. Returns the characters the whole
// text needs (terminator excluded); writes at most BufferSize - 1 of them.
UINTN ScreenText(const ScreenBuffer &Screen, CHAR16 *Buffer,
                 UINTN BufferSize);

}  // namespace framework
