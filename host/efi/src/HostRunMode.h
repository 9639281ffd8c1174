// How raidhost.efi runs the wizard, chosen by its load options or by
// \raidhost.cfg on its volume (docs/efi-host.md).
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

enum HostRunMode : UINT8 {
  // The text UI on the console until the operator leaves (Esc or F10).
  HostModeInteractive,
  // The text UI draws the wizard's first page once and leaves at once.
  HostModeScreen,
  // No UI: message boxes and progress as console lines, boxes answered Yes.
  HostModeDump,
};

// The mode: a load option "--interactive", "--screen" or "--dump" first,
// else a line "mode=interactive|screen|dump" of ConfigPath, else
// interactive. *Source says where the choice came from.
HostRunMode HostChooseRunMode(EFI_HANDLE ImageHandle, EFI_FILE_PROTOCOL *Root,
                              const CHAR16 *ConfigPath, const CHAR8 **Source);

// "interactive", "screen" or "dump".
const CHAR8 *HostRunModeName(HostRunMode Mode);
