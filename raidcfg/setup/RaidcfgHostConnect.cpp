// The module's connection to its host: the library globals of InitAmiLib,
// the host setup protocol, and the HII package list carried by the image.
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Hii.h>

#include "setup/RaidcfgSetup.h"

constinit TARN_SETUP_PROTOCOL *TarnSetupProtocol = nullptr;
constinit EFI_HII_HANDLE gHiiHandle = nullptr;

namespace {

// What InitAmiLib records, once per module life.
struct AmiLibGlobals {
  BOOLEAN Initialized;
  EFI_HANDLE ImageHandle;
  EFI_SYSTEM_TABLE *SystemTable;
  EFI_BOOT_SERVICES *BootServices;
  EFI_RUNTIME_SERVICES *RuntimeServices;
};
constinit AmiLibGlobals gAmiLib = {};

}  // namespace

VOID InitAmiLib(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE *SystemTable) {
  if (gAmiLib.Initialized || SystemTable == nullptr) {
    return;
  }
  gAmiLib.Initialized = TRUE;
  gAmiLib.ImageHandle = ImageHandle;
  gAmiLib.SystemTable = SystemTable;
  gAmiLib.BootServices = SystemTable->BootServices;
  gAmiLib.RuntimeServices = SystemTable->RuntimeServices;
}

EFI_STATUS GetTARNSetupProtocol() {
  TARN_SETUP_PROTOCOL *Protocol = nullptr;
  EFI_STATUS Status =
      gBS->LocateProtocol(&gTarnSetupProtocolGuid, nullptr,
                          reinterpret_cast<VOID **>(&Protocol));
  TarnSetupProtocol = EFI_ERROR(Status) ? nullptr : Protocol;
  // Only the low half of the address fits the host's "%x".
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] TarnSetupProtocol = %x\n",
             static_cast<UINT32>(reinterpret_cast<UINTN>(TarnSetupProtocol)));
  return Status;
}

// The firmware's image loader puts the image's package list on the image
// handle; it goes into the HII database without a driver handle. A failed
// step leaves gHiiHandle NULL and the texts empty.
VOID RaidRegisterHiiPackages(EFI_HANDLE ImageHandle) {
  EFI_HII_PACKAGE_LIST_HEADER *PackageList = nullptr;
  gBS->OpenProtocol(ImageHandle, &gEfiHiiPackageListProtocolGuid,
                    reinterpret_cast<VOID **>(&PackageList), ImageHandle,
                    nullptr, EFI_OPEN_PROTOCOL_GET_PROTOCOL);
  EFI_HII_DATABASE_PROTOCOL *Database = nullptr;
  gBS->LocateProtocol(&gEfiHiiDatabaseProtocolGuid, nullptr,
                      reinterpret_cast<VOID **>(&Database));
  if (PackageList == nullptr || Database == nullptr) {
    return;
  }
  EFI_HII_HANDLE Handle = nullptr;
  if (!EFI_ERROR(Database->NewPackageList(Database, PackageList, nullptr,
                                          &Handle))) {
    gHiiHandle = Handle;
  }
}

VOID RaidRemoveHiiPackages() {
  if (gHiiHandle == nullptr) {
    return;
  }
  EFI_HII_DATABASE_PROTOCOL *Database = nullptr;
  if (!EFI_ERROR(gBS->LocateProtocol(&gEfiHiiDatabaseProtocolGuid, nullptr,
                                     reinterpret_cast<VOID **>(&Database))) &&
      Database != nullptr) {
    Database->RemovePackageList(Database, gHiiHandle);
  }
  gHiiHandle = nullptr;
}

VOID RaidcfgSetupResetGlobals() {
  TarnSetupProtocol = nullptr;
  gHiiHandle = nullptr;
  gAmiLib = {};
  gRaidGuiClient = {};
}
