// Start-up and shutdown of the RAID setup module. The host connection, the
// HII strings and the wizard are not wired in yet: both only report success.
#include "setup/ModuleEntry.h"

// Connects the module to its host and builds the wizard.
EFI_STATUS EFIAPI RaidcfgSetupEntryPoint(EFI_HANDLE ImageHandle,
                                         EFI_SYSTEM_TABLE *SystemTable) {
  return EFI_SUCCESS;
}

// Releases everything start-up built.
EFI_STATUS EFIAPI RaidcfgSetupExitPoint(EFI_HANDLE ImageHandle) {
  return EFI_SUCCESS;
}
