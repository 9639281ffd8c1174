// The host protocols raidhost.efi installs for the module before loading
// it (docs/host-protocols.md, docs/efi-host.md).
#pragma once

#include <Protocol/Host/EsaGuiDriver.h>
#include <Protocol/Host/QolCommands.h>
#include <Protocol/Host/ShellCommand.h>
#include <Protocol/Host/SlotInventory.h>
#include <Protocol/Host/TarnSetup.h>
#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

// ---- Setup protocol and GUI driver (HostSetupProtocol.cpp) ----------------

TARN_SETUP_PROTOCOL *HostSetupProtocol(VOID);
ESA_GUI_DRIVER_PROTOCOL *HostGuiDriver(VOID);
// Trace lines printed so far.
UINTN HostTraceLineCount(VOID);
// Whether the GUI driver has a module connected.
BOOLEAN HostGuiConnected(VOID);

// ---- Shell-command service on a replay (HostShellReplay.cpp) ---------------

// Loads Directory\commands.txt and the outputs it names from the volume.
// A missing commands.txt gives an empty replay (every command unanswered).
EFI_STATUS HostLoadReplay(EFI_FILE_PROTOCOL *Root, const CHAR16 *Directory);
SHELL_COMMAND_PROTOCOL *HostShellCommand(VOID);
// Recorded command lines, and command lines asked that nobody recorded.
UINTN HostReplayEntryCount(VOID);
UINTN HostReplayUnansweredCount(VOID);
// Every recorded output is answered afresh, from the first (each load of the
// module asks the same commands).
VOID HostRewindReplay(VOID);
VOID HostFreeReplay(VOID);

// ---- Slot inventory (HostSlotInventory.cpp) --------------------------------

// Loads the inventory from Path ("slot text<TAB>device text" per line, an
// empty slot text for on-board devices); a missing file gives no entries.
EFI_STATUS HostLoadSlotInventory(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path);
SLOT_INVENTORY_PROTOCOL *HostSlotInventory(VOID);
UINTN HostSlotCount(VOID);
VOID HostFreeSlotInventory(VOID);

// ---- Management-controller events (HostQolCommands.cpp) ---------------------

QOL_COMMANDS_PROTOCOL *HostQolCommands(VOID);
