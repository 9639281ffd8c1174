// The cell screen: drawing primitives, the diff against the last frame and
// the text dump.
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "framework/Screen.h"
#include "framework/Text.h"

namespace framework {
namespace {

ScreenCell *CellAt(ScreenBuffer &Screen, UINTN Column, UINTN Row) {
  if (Screen.Cells == nullptr || Column >= Screen.Columns ||
      Row >= Screen.Rows) {
    return nullptr;
  }
  return &Screen.Cells[Row * Screen.Columns + Column];
}

// Longest run the emitter hands a console at once.
constexpr UINTN kRunLength = kMaxColumns;

}  // namespace

BOOLEAN AllocateScreen(ScreenBuffer &Screen, UINTN Columns, UINTN Rows) {
  Columns = Columns < kMinColumns ? kMinColumns
                                  : (Columns > kMaxColumns ? kMaxColumns : Columns);
  Rows = Rows < kMinRows ? kMinRows : (Rows > kMaxRows ? kMaxRows : Rows);
  Screen.Cells = static_cast<ScreenCell *>(
      AllocateZeroPool(sizeof(ScreenCell) * Columns * Rows));
  if (Screen.Cells == nullptr) {
    Screen = {};
    return FALSE;
  }
  Screen.Columns = Columns;
  Screen.Rows = Rows;
  return TRUE;
}

VOID FreeScreen(ScreenBuffer &Screen) {
  FreePool(Screen.Cells);
  Screen = {};
}

VOID FillScreen(ScreenBuffer &Screen, CHAR16 Char, UINT8 Attribute) {
  FillRect(Screen, 0, 0, Screen.Columns, Screen.Rows, Char, Attribute);
}

VOID FillRect(ScreenBuffer &Screen, UINTN Column, UINTN Row, UINTN Width,
              UINTN Height, CHAR16 Char, UINT8 Attribute) {
  for (UINTN Y = Row; Y < Row + Height && Y < Screen.Rows; Y++) {
    for (UINTN X = Column; X < Column + Width && X < Screen.Columns; X++) {
      Screen.Cells[Y * Screen.Columns + X] = {Char, Attribute};
    }
  }
}

VOID PaintRect(ScreenBuffer &Screen, UINTN Column, UINTN Row, UINTN Width,
               UINTN Height, UINT8 Attribute) {
  for (UINTN Y = Row; Y < Row + Height && Y < Screen.Rows; Y++) {
    for (UINTN X = Column; X < Column + Width && X < Screen.Columns; X++) {
      Screen.Cells[Y * Screen.Columns + X].Attribute = Attribute;
    }
  }
}

VOID PutChar(ScreenBuffer &Screen, UINTN Column, UINTN Row, CHAR16 Char,
             UINT8 Attribute) {
  ScreenCell *Cell = CellAt(Screen, Column, Row);
  if (Cell != nullptr) {
    *Cell = {Char, Attribute};
  }
}

UINTN PutTextN(ScreenBuffer &Screen, UINTN Column, UINTN Row,
               const CHAR16 *Text, UINTN Length, UINTN MaxWidth,
               UINT8 Attribute) {
  UINTN Used = 0;
  for (UINTN Index = 0; Text != nullptr && Index < Length && Text[Index] != 0;
       Index++) {
    CHAR16 Char = Text[Index];
    if (Char == u'\r' || Char == u'\n') {
      break;
    }
    UINTN Width = CharWidth(Char);
    if (Width == 0) {
      continue;
    }
    if (Used + Width > MaxWidth) {
      break;
    }
    PutChar(Screen, Column + Used, Row, Char, Attribute);
    if (Width == 2) {
      PutChar(Screen, Column + Used + 1, Row, kWideTail, Attribute);
    }
    Used += Width;
  }
  return Used;
}

UINTN PutText(ScreenBuffer &Screen, UINTN Column, UINTN Row,
              const CHAR16 *Text, UINTN MaxWidth, UINT8 Attribute) {
  return PutTextN(Screen, Column, Row, Text, ~static_cast<UINTN>(0), MaxWidth,
                  Attribute);
}

VOID EmitChanges(const ScreenBuffer &Next, ScreenBuffer &Shown,
                 const ScreenSink &Sink, BOOLEAN Full) {
  if (Next.Cells == nullptr || Sink.Write == nullptr) {
    return;
  }
  BOOLEAN SameShape = Shown.Cells != nullptr && Shown.Columns == Next.Columns &&
                      Shown.Rows == Next.Rows;
  CHAR16 Run[kRunLength + 1];
  for (UINTN Row = 0; Row < Next.Rows; Row++) {
    UINTN Column = 0;
    while (Column < Next.Columns) {
      UINTN Index = Row * Next.Columns + Column;
      BOOLEAN Changed = Full || !SameShape ||
                        Shown.Cells[Index].Char != Next.Cells[Index].Char ||
                        Shown.Cells[Index].Attribute != Next.Cells[Index].Attribute;
      if (!Changed || Next.Cells[Index].Char == kWideTail) {
        Column++;
        continue;
      }
      // A run of changed cells of one attribute; wide tails ride along.
      UINT8 Attribute = Next.Cells[Index].Attribute;
      UINTN Start = Column;
      UINTN Length = 0;
      UINTN Last = Row + 1 == Next.Rows ? Next.Columns - 1 : Next.Columns;
      while (Column < Last && Next.Cells[Row * Next.Columns + Column].Attribute ==
                                  Attribute) {
        const ScreenCell &Cell = Next.Cells[Row * Next.Columns + Column];
        BOOLEAN CellChanged =
            Full || !SameShape ||
            Shown.Cells[Row * Next.Columns + Column].Char != Cell.Char ||
            Shown.Cells[Row * Next.Columns + Column].Attribute != Cell.Attribute;
        if (!CellChanged && Cell.Char != kWideTail) {
          break;
        }
        if (Cell.Char != kWideTail) {
          Run[Length++] = Cell.Char == 0 ? u' ' : Cell.Char;
        }
        Column++;
      }
      if (Length != 0) {
        Run[Length] = 0;
        Sink.Write(Sink.Context, Start, Row, Attribute, Run, Length);
      }
      if (Column == Start) {
        Column++;  // the screen's last cell
      }
    }
  }
  if (SameShape) {
    CopyMem(Shown.Cells, Next.Cells, sizeof(ScreenCell) * Next.Columns * Next.Rows);
  }
  if (Sink.Flush != nullptr) {
    Sink.Flush(Sink.Context);
  }
}

UINTN ScreenText(const ScreenBuffer &Screen, CHAR16 *Buffer,
                 UINTN BufferSize) {
  UINTN Needed = 0;
  auto Put = [&](CHAR16 Char) {
    if (Buffer != nullptr && Needed + 1 < BufferSize) {
      Buffer[Needed] = Char;
    }
    Needed++;
  };
  for (UINTN Row = 0; Row < Screen.Rows; Row++) {
    UINTN End = Screen.Columns;
    while (End > 0) {
      CHAR16 Char = Screen.Cells[Row * Screen.Columns + End - 1].Char;
      if (Char != u' ' && Char != 0) {
        break;
      }
      End--;
    }
    for (UINTN Column = 0; Column < End; Column++) {
      CHAR16 Char = Screen.Cells[Row * Screen.Columns + Column].Char;
      if (Char != kWideTail) {
        Put(Char == 0 ? u' ' : Char);
      }
    }
    Put(u'\n');
  }
  if (Buffer != nullptr && BufferSize != 0) {
    Buffer[Needed < BufferSize ? Needed : BufferSize - 1] = 0;
  }
  return Needed;
}

}  // namespace framework
