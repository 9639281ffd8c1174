// The data-source protocol on the module's image handle: the host's page
// framework reads and writes the wizard's control values through it.
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/RaidSetupDataSource.h>

#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizardControls.h"

namespace {

constinit RAID_SETUP_DATA_SOURCE_PROTOCOL gRaidSetupDataSource = {};

// The host reads and changes control values by node; the wizard keeps them
// by the kind of value: texts, option lists, tables and bound numbers. Each
// slot of the protocol hands its untyped value to the wizard's handler for
// that kind.
template <typename ValueType,
          EFI_STATUS (*Handler)(HOST_PAGE_NODE *, ValueType *)>
[[nodiscard]] EFI_STATUS EFIAPI RaidDataSourceCallback(HOST_PAGE_NODE *Node,
                                                       VOID *Value) {
  return Handler(Node, static_cast<ValueType *>(Value));
}

}  // namespace

EFI_STATUS InitRaidSetupDSProtocol(EFI_HANDLE ImageHandle) {
  gRaidSetupDataSource = {
      RAID_SETUP_DATA_SOURCE_GUID,
      0,
      RaidDataSourceCallback<HOST_CONTROL_VALUE, RaidDataSourceGetValue>,
      RaidDataSourceCallback<HOST_CONTROL_VALUE, RaidDataSourceSetValue>,
      RaidDataSourceCallback<HOST_OPTION_LIST, RaidDataSourceGetOptions>,
      RaidDataSourceCallback<HOST_TABLE, RaidDataSourceGetTable>,
      RaidDataSourceCallback<const HOST_TABLE_CELL_CHANGE,
                             RaidDataSourceSetTableCell>};
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
