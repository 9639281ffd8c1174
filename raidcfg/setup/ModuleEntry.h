// The module's image entry, its unload handler, and the start-up and
// shutdown they hand over to. Also the HII protocols the library
// constructors locate for the rest of the module.
#pragma once

#include <Protocol/Hii.h>
#include <Uefi.h>

// Lowest UEFI revision the module accepts; 0 accepts every firmware.
inline constexpr UINT32 _gUefiDriverRevision = 0;

// HII protocols located at image entry; null when the firmware lacks one.
// Configuration routing, font and image are only kept, never called.
extern EFI_HII_STRING_PROTOCOL *gHiiString;
extern EFI_HII_DATABASE_PROTOCOL *gHiiDatabase;
extern VOID *gHiiConfigRouting;
extern VOID *gHiiFont;
extern VOID *gHiiImage;

// Image entry: checks the firmware revision, runs the library
// constructors, arms the unload handler and calls RaidcfgSetupEntryPoint.
// Returns the start-up status; on an error the library destructors have run.
extern "C" [[nodiscard]] EFI_STATUS EFIAPI
_ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE *SystemTable);

// Unload handler put into the Loaded Image protocol: calls
// RaidcfgSetupExitPoint and, when that succeeds, the library destructors.
[[nodiscard]] EFI_STATUS EFIAPI _DriverUnloadHandler(EFI_HANDLE ImageHandle);

// Start-up: connects the module to its host and builds the wizard.
[[nodiscard]] EFI_STATUS EFIAPI
RaidcfgSetupEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE *SystemTable);

// Shutdown: releases everything start-up built, in reverse order.
[[nodiscard]] EFI_STATUS EFIAPI RaidcfgSetupExitPoint(EFI_HANDLE ImageHandle);
