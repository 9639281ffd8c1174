// The text UI's screen sink and key source over the UEFI console (Simple
// Text Output and Simple Text Input), for raidhost.efi.
#pragma once

#include <Uefi.h>

#include "framework/Screen.h"
#include "framework/TextUi.h"

namespace framework {

struct UefiConsole {
  EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *Out;
  EFI_SIMPLE_TEXT_INPUT_PROTOCOL *In;
  EFI_BOOT_SERVICES *BootServices;
  UINTN Attribute;  // the attribute last set, or ~0
};

// Binds the console of a system table; hides the cursor and clears.
VOID UefiConsoleOpen(UefiConsole &Console, EFI_SYSTEM_TABLE *SystemTable);
// The current text mode's size (80x25 when the console cannot tell).
VOID UefiConsoleSize(const UefiConsole &Console, UINTN *Columns, UINTN *Rows);
[[nodiscard]] ScreenSink UefiConsoleSink(UefiConsole &Console);
[[nodiscard]] KeySource UefiConsoleKeys(UefiConsole &Console);
// Restores a plain console: default attribute, cleared, cursor shown.
VOID UefiConsoleClose(UefiConsole &Console);

}  // namespace framework
