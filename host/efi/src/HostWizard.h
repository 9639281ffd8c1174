// The module's wizard under real firmware: the page framework in the setup
// protocol's slots, and the text UI on the UEFI console (Simple Text Output
// and Input) in the interactive and screen modes.
#pragma once

#include <Uefi.h>

#include "HostRunMode.h"

// Starts the page framework for Mode and fills the setup protocol's
// framework slots with it; before the module loads.
EFI_STATUS HostWizardStart(HostRunMode Mode);
// Gives the console to the text UI (interactive and screen modes): the
// screen is cleared and the host's own console lines are held back until
// HostWizardFinish. Before StartImage, so that the start-up's progress box
// is drawn.
VOID HostWizardOpenScreen(VOID);
// After StartImage: interactive, the text UI runs until the operator leaves
// (Esc or F10); screen, one whole frame is drawn. Then the console is the
// host's again and the page shown is named on it.
VOID HostWizardFinish(BOOLEAN ModuleStarted);
// After UnloadImage: frees what the framework still holds. Returns the
// number of nodes the module left behind (the module root, the framework's
// own, is not counted).
UINTN HostWizardStop(VOID);
