// Module-wide state set at start-up and the steps of the start-up and
// shutdown sequence (RaidcfgSetupEntryPoint, RaidcfgSetupExitPoint).
#pragma once

#include <Protocol/Host/EsaGuiDriver.h>
#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

#include "setup/RaidcfgTrace.h"

// ---- Module-wide state ------------------------------------------------------

// Handle of the module's string package list in the HII database; NULL when
// registration failed, in which case every UI text comes back empty.
extern EFI_HII_HANDLE gHiiHandle;

// The module's connection to the host GUI driver: the protocol and the
// instance value it knows the module by (the image handle).
typedef struct {
  ESA_GUI_DRIVER_PROTOCOL *Protocol;
  EFI_HANDLE Instance;
} RAID_GUI_CLIENT;
extern RAID_GUI_CLIENT gRaidGuiClient;

// The error box's message table: entry i holds string id 1015 + i.
#define RAID_ERR_MSG_COUNT 113
extern EFI_STRING_ID gRaidErrMsgArray[RAID_ERR_MSG_COUNT];

// ---- Start-up steps -----------------------------------------------------------

// Records the system table, its service tables and the image handle, the
// first time only.
VOID InitAmiLib(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE *SystemTable);
// Locates the host setup protocol into TarnSetupProtocol (NULL on failure).
[[nodiscard]] EFI_STATUS GetTARNSetupProtocol();
// Adds the image's HII package list to the HII database into gHiiHandle.
// Failures leave gHiiHandle NULL.
VOID RaidRegisterHiiPackages(EFI_HANDLE ImageHandle);
// Removes the package list registered above, if any.
VOID RaidRemoveHiiPackages();
// Connects the module to the host GUI driver; the locate status when the
// host has none.
[[nodiscard]] EFI_STATUS RaidcfgApplicationInit(EFI_HANDLE ImageHandle,
                                                EFI_SYSTEM_TABLE *SystemTable);
// Disconnects from the GUI driver; EFI_NOT_STARTED when never connected.
[[nodiscard]] EFI_STATUS RaidcfgApplicationUnInit(EFI_HANDLE ImageHandle);
// Installs the data-source protocol on the image handle.
[[nodiscard]] EFI_STATUS InitRaidSetupDSProtocol(EFI_HANDLE ImageHandle);
// Removes it again once HandleProtocol confirms it is there.
[[nodiscard]] EFI_STATUS UnInitRaidSetupDSProtocol(EFI_HANDLE ImageHandle);
// Fills gRaidErrMsgArray.
VOID init_Raid_Err_Array();
// Page-enter callback of page 0 after a failed discovery: runs discovery
// again and rebuilds the wizard, or shows the error box once more. Returns 0.
[[nodiscard]] UINTN EFIAPI Init_Raid();

// Forgets the module-wide state, so an image loaded anew starts as the
// firmware would start it: with zeroed globals.
VOID RaidcfgSetupResetGlobals();
