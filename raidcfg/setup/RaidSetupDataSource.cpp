// The data-source protocol on the module's image handle: the host's page
// framework reads and writes the wizard's control values through it.
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/RaidSetupDataSource.h>

#include "setup/RaidcfgSetup.h"

namespace {

constinit RAID_SETUP_DATA_SOURCE_PROTOCOL gRaidSetupDataSource = {};

// Control values are served once the wizard's pages carry controls.
EFI_STATUS EFIAPI RaidDataSourceGetValue(HOST_PAGE_NODE *Node, VOID *Value) {
  (void)Node;
  (void)Value;
  return EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI RaidDataSourceSetValue(HOST_PAGE_NODE *Node, VOID *Value) {
  (void)Node;
  (void)Value;
  return EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI RaidDataSourceGetOptions(HOST_PAGE_NODE *Node, VOID *Value) {
  (void)Node;
  (void)Value;
  return EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI RaidDataSourceGetTable(HOST_PAGE_NODE *Node, VOID *Value) {
  (void)Node;
  (void)Value;
  return EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI RaidDataSourceSetTableCell(HOST_PAGE_NODE *Node,
                                             VOID *Value) {
  (void)Node;
  (void)Value;
  return EFI_UNSUPPORTED;
}

}  // namespace

EFI_STATUS InitRaidSetupDSProtocol(EFI_HANDLE ImageHandle) {
  gRaidSetupDataSource = {RAID_SETUP_DATA_SOURCE_GUID,
                          0,
                          RaidDataSourceGetValue,
                          RaidDataSourceSetValue,
                          RaidDataSourceGetOptions,
                          RaidDataSourceGetTable,
                          RaidDataSourceSetTableCell};
  EFI_HANDLE Handle = ImageHandle;
  EFI_STATUS Status = gBS->InstallMultipleProtocolInterfaces(
      &Handle, &gRaidSetupDataSourceProtocolGuid, &gRaidSetupDataSource,
      nullptr);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Return status of install data source protocol: %r\n",
             Status);
  return Status;
}

EFI_STATUS UnInitRaidSetupDSProtocol(EFI_HANDLE ImageHandle) {
  VOID *Interface = nullptr;
  EFI_STATUS Status = gBS->HandleProtocol(
      ImageHandle, &gRaidSetupDataSourceProtocolGuid, &Interface);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Status = gBS->UninstallMultipleProtocolInterfaces(
      ImageHandle, &gRaidSetupDataSourceProtocolGuid, Interface, nullptr);
  RAID_TRACE(TARN_DEBUG_INFO,
             "RAID: [%a] Return status of uninstall data source protocol: %r\n",
             Status);
  return Status;
}
