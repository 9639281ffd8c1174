// How raidhost.efi runs the wizard, chosen by its load options or by
// \raidhost.cfg on its volume (docs/efi-host.md).
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

#include "HostTrace.h"

enum HostRunMode : UINT8 {
  // The text UI on the console until the operator leaves (Esc or F10).
  HostModeInteractive,
  // The text UI draws the wizard's first page once and leaves at once.
  HostModeScreen,
  // No UI: message boxes and progress as console lines, boxes answered Yes.
  HostModeDump,
};

// The most load cycles a run may ask for.
constexpr UINTN kHostMaxCycles = 1000;

// What a run does, from the load options and the configuration file.
struct HostSettings {
  HostRunMode Mode;
  // Where the mode came from: "load options", "configuration file" or
  // "default".
  const CHAR8 *ModeSource;
  // Where the module's trace lines go (console by default).
  HostTraceRoute Trace;
  // How many times the module is loaded, started and unloaded (1 by
  // default).
  UINTN Cycles;
};

// The mode: a load option "--interactive", "--screen" or "--dump" first,
// else a line "mode=interactive|screen|dump" of ConfigPath, else
// interactive. The trace route ("trace=console|serial|memory") and the
// number of load cycles ("cycles=N", 1 to kHostMaxCycles) come from
// ConfigPath only.
HostSettings HostReadSettings(EFI_HANDLE ImageHandle, EFI_FILE_PROTOCOL *Root,
                              const CHAR16 *ConfigPath);

// "interactive", "screen" or "dump".
const CHAR8 *HostRunModeName(HostRunMode Mode);
