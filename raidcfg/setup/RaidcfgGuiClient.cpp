// The module as a client of the host GUI driver.
#include <Protocol/Host/EsaGuiDriver.h>

#include "setup/RaidcfgSetup.h"

constinit RAID_GUI_CLIENT gRaidGuiClient = {};

// Connects to the GUI driver with the module's five-word context: image
// handle, system table, HII handle and two zero words.
EFI_STATUS RaidcfgApplicationInit(EFI_HANDLE ImageHandle,
                                  EFI_SYSTEM_TABLE *SystemTable) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  const ESA_GUI_CONTEXT Context = {ImageHandle, SystemTable, gHiiHandle, 0, 0};
  EFI_BOOT_SERVICES *BootServices = SystemTable->BootServices;
  ESA_GUI_DRIVER_PROTOCOL *Driver = nullptr;
  EFI_STATUS Status =
      BootServices->LocateProtocol(&gEsaGuiDriverProtocolGuid, nullptr,
                                   reinterpret_cast<VOID **>(&Driver));
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Driver == nullptr) {
    return EFI_NOT_FOUND;
  }
  gRaidGuiClient.Protocol = Driver;
  ESA_GUI_CONTEXT Copy = Context;
  Status = Driver->Initialize(&Copy);
  gRaidGuiClient.Instance = ImageHandle;
  return Status;
}

EFI_STATUS RaidcfgApplicationUnInit(EFI_HANDLE ImageHandle) {
  if (gRaidGuiClient.Protocol == nullptr) {
    return EFI_NOT_STARTED;
  }
  EFI_STATUS Status = gRaidGuiClient.Protocol->UnInitialize(ImageHandle);
  gRaidGuiClient = {};
  return Status;
}
