// The UEFI console as the text UI's screen and keyboard.
#include "framework/UefiConsole.h"

#include <Library/BaseMemoryLib.h>

namespace framework {
namespace {

constexpr UINTN kDefaultAttribute = 0x07;  // light gray on black

VOID Write(VOID *Context, UINTN Column, UINTN Row, UINT8 Attribute,
           const CHAR16 *Text, UINTN Length) {
  UefiConsole &Console = *static_cast<UefiConsole *>(Context);
  if (Console.Out == nullptr) {
    return;
  }
  CHAR16 Run[kMaxColumns + 1];
  if (Length > kMaxColumns) {
    Length = kMaxColumns;
  }
  CopyMem(Run, Text, Length * sizeof(CHAR16));
  Run[Length] = 0;
  Console.Out->SetCursorPosition(Console.Out, Column, Row);
  if (Console.Attribute != Attribute) {
    Console.Out->SetAttribute(Console.Out, Attribute);
    Console.Attribute = Attribute;
  }
  Console.Out->OutputString(Console.Out, Run);
}

[[nodiscard]] BOOLEAN ReadKey(VOID *Context, EFI_INPUT_KEY *Key) {
  UefiConsole &Console = *static_cast<UefiConsole *>(Context);
  if (Console.In == nullptr) {
    return FALSE;
  }
  for (;;) {
    EFI_STATUS Status = Console.In->ReadKeyStroke(Console.In, Key);
    if (Status == EFI_SUCCESS) {
      return TRUE;
    }
    if (Status != EFI_NOT_READY || Console.BootServices == nullptr) {
      return FALSE;
    }
    UINTN Index = 0;
    EFI_EVENT Event = Console.In->WaitForKey;
    if (Console.BootServices->WaitForEvent(1, &Event, &Index) != EFI_SUCCESS) {
      Console.BootServices->Stall(10000);
    }
  }
}

VOID Size(VOID *Context, UINTN *Columns, UINTN *Rows) {
  UefiConsoleSize(*static_cast<UefiConsole *>(Context), Columns, Rows);
}

// Sets the console's largest text mode (up to the largest screen the
// renderer draws): the pages use the room there is.
VOID UseLargestMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *Out) {
  if (Out->Mode == nullptr) {
    return;
  }
  INT32 Best = Out->Mode->Mode;
  UINTN BestCells = 0;
  for (INT32 Mode = 0; Mode < Out->Mode->MaxMode; Mode++) {
    UINTN Columns = 0;
    UINTN Rows = 0;
    if (Out->QueryMode(Out, static_cast<UINTN>(Mode), &Columns, &Rows) !=
            EFI_SUCCESS ||
        Columns > kMaxColumns || Rows > kMaxRows) {
      continue;
    }
    if (Columns * Rows > BestCells) {
      Best = Mode;
      BestCells = Columns * Rows;
    }
  }
  if (Best != Out->Mode->Mode) {
    // A mode the console refuses leaves the one it has.
    (VOID) Out->SetMode(Out, static_cast<UINTN>(Best));
  }
}

}  // namespace

VOID UefiConsoleOpen(UefiConsole &Console, EFI_SYSTEM_TABLE *SystemTable) {
  Console = {};
  Console.Attribute = ~static_cast<UINTN>(0);
  if (SystemTable == nullptr) {
    return;
  }
  Console.Out = SystemTable->ConOut;
  Console.In = SystemTable->ConIn;
  Console.BootServices = SystemTable->BootServices;
  if (Console.Out != nullptr) {
    UseLargestMode(Console.Out);
    Console.Out->EnableCursor(Console.Out, FALSE);
    Console.Out->ClearScreen(Console.Out);
  }
}

VOID UefiConsoleSize(const UefiConsole &Console, UINTN *Columns, UINTN *Rows) {
  *Columns = 80;
  *Rows = 25;
  if (Console.Out == nullptr || Console.Out->Mode == nullptr) {
    return;
  }
  UINTN QueriedColumns = 0;
  UINTN QueriedRows = 0;
  if (Console.Out->QueryMode(Console.Out,
                             static_cast<UINTN>(Console.Out->Mode->Mode),
                             &QueriedColumns, &QueriedRows) == EFI_SUCCESS &&
      QueriedColumns != 0 && QueriedRows != 0) {
    *Columns = QueriedColumns;
    *Rows = QueriedRows;
  }
}

ScreenSink UefiConsoleSink(UefiConsole &Console) {
  return {&Console, Write, nullptr, Size};
}

KeySource UefiConsoleKeys(UefiConsole &Console) { return {&Console, ReadKey}; }

VOID UefiConsoleClose(UefiConsole &Console) {
  if (Console.Out != nullptr) {
    Console.Out->SetAttribute(Console.Out, kDefaultAttribute);
    Console.Out->ClearScreen(Console.Out);
    Console.Out->EnableCursor(Console.Out, TRUE);
  }
  Console = {};
}

}  // namespace framework
