// The data-source protocol on the module's image handle: the host's page
// framework reads and writes the wizard's control values through it.
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/RaidSetupDataSource.h>

#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizardControls.h"

namespace {

constinit RAID_SETUP_DATA_SOURCE_PROTOCOL gRaidSetupDataSource = {};

// The host reads and changes control values by node; the wizard keeps them
// by the kind of value: texts, option lists, tables and bound numbers.
EFI_STATUS EFIAPI RaidDataSourceGetValueCallback(HOST_PAGE_NODE *Node,
                                                 VOID *Value) {
  return RaidDataSourceGetValue(Node, static_cast<HOST_CONTROL_VALUE *>(Value));
}

EFI_STATUS EFIAPI RaidDataSourceSetValueCallback(HOST_PAGE_NODE *Node,
                                                 VOID *Value) {
  return RaidDataSourceSetValue(Node, static_cast<HOST_CONTROL_VALUE *>(Value));
}

EFI_STATUS EFIAPI RaidDataSourceGetOptionsCallback(HOST_PAGE_NODE *Node,
                                                   VOID *Value) {
  return RaidDataSourceGetOptions(Node, static_cast<HOST_OPTION_LIST *>(Value));
}

EFI_STATUS EFIAPI RaidDataSourceGetTableCallback(HOST_PAGE_NODE *Node,
                                                 VOID *Value) {
  return RaidDataSourceGetTable(Node, static_cast<HOST_TABLE *>(Value));
}

EFI_STATUS EFIAPI RaidDataSourceSetTableCellCallback(HOST_PAGE_NODE *Node,
                                                     VOID *Value) {
  return RaidDataSourceSetTableCell(
      Node, static_cast<const HOST_TABLE_CELL_CHANGE *>(Value));
}

}  // namespace

EFI_STATUS InitRaidSetupDSProtocol(EFI_HANDLE ImageHandle) {
  gRaidSetupDataSource = {RAID_SETUP_DATA_SOURCE_GUID,
                          0,
                          RaidDataSourceGetValueCallback,
                          RaidDataSourceSetValueCallback,
                          RaidDataSourceGetOptionsCallback,
                          RaidDataSourceGetTableCallback,
                          RaidDataSourceSetTableCellCallback};
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
