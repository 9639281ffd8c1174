// Image entry and unload handler of the RAID setup driver: the glue a
// firmware build would generate around the module's own start-up and
// shutdown.
#include "setup/ModuleEntry.h"

#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/LoadedImage.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

constinit EFI_HII_STRING_PROTOCOL *gHiiString = nullptr;
constinit EFI_HII_DATABASE_PROTOCOL *gHiiDatabase = nullptr;
constinit VOID *gHiiConfigRouting = nullptr;
constinit VOID *gHiiFont = nullptr;
constinit VOID *gHiiImage = nullptr;

namespace {

// Locates the protocol Guid and returns its interface, or null when the
// firmware does not offer it.
[[nodiscard]] VOID *LocateOptionalProtocol(EFI_GUID &Guid) {
  VOID *Interface = nullptr;
  if (EFI_ERROR(gBS->LocateProtocol(&Guid, nullptr, &Interface))) {
    return nullptr;
  }
  return Interface;
}

// Library constructors: keeps the entry arguments in the boot-services
// globals and locates the HII protocols. A missing HII protocol is not an
// error here; whoever needs it finds the pointer null.
VOID ProcessLibraryConstructorList(EFI_HANDLE ImageHandle,
                                   EFI_SYSTEM_TABLE *SystemTable) {
  gImageHandle = ImageHandle;
  gST = SystemTable;
  gBS = SystemTable->BootServices;
  gRT = SystemTable->RuntimeServices;

  gHiiString = static_cast<EFI_HII_STRING_PROTOCOL *>(
      LocateOptionalProtocol(gEfiHiiStringProtocolGuid));
  gHiiDatabase = static_cast<EFI_HII_DATABASE_PROTOCOL *>(
      LocateOptionalProtocol(gEfiHiiDatabaseProtocolGuid));
  gHiiConfigRouting = LocateOptionalProtocol(gEfiHiiConfigRoutingProtocolGuid);
  gHiiFont = LocateOptionalProtocol(gEfiHiiFontProtocolGuid);
  gHiiImage = LocateOptionalProtocol(gEfiHiiImageProtocolGuid);
}

// Library destructors: the constructors acquired nothing that needs
// releasing, so this only forgets the located protocols and the module's
// state, as the firmware's fresh load of the image would find it.
VOID ProcessLibraryDestructorList() {
  RaidcfgSetupResetGlobals();
  RaidWizardResetGlobals();
  gCurrentRaidController = nullptr;
  gHiiString = nullptr;
  gHiiDatabase = nullptr;
  gHiiConfigRouting = nullptr;
  gHiiFont = nullptr;
  gHiiImage = nullptr;
}

// Makes the image unloadable: puts the unload handler into the image's
// Loaded Image protocol.
[[nodiscard]] EFI_STATUS ArmUnloadHandler(EFI_HANDLE ImageHandle) {
  EFI_LOADED_IMAGE_PROTOCOL *LoadedImage = nullptr;
  EFI_STATUS Status =
      gBS->HandleProtocol(ImageHandle, &gEfiLoadedImageProtocolGuid,
                          reinterpret_cast<VOID **>(&LoadedImage));
  if (EFI_ERROR(Status)) {
    return Status;
  }
  LoadedImage->Unload = _DriverUnloadHandler;
  return EFI_SUCCESS;
}

}  // namespace

// Image entry, called by the firmware's StartImage with the image's handle
// and the system table.
extern "C" EFI_STATUS EFIAPI _ModuleEntryPoint(EFI_HANDLE ImageHandle,
                                               EFI_SYSTEM_TABLE *SystemTable) {
  if (_gUefiDriverRevision != 0 &&
      SystemTable->Hdr.Revision < _gUefiDriverRevision) {
    return EFI_INCOMPATIBLE_VERSION;
  }

  ProcessLibraryConstructorList(ImageHandle, SystemTable);

  EFI_STATUS Status = ArmUnloadHandler(ImageHandle);
  if (!EFI_ERROR(Status)) {
    Status = RaidcfgSetupEntryPoint(ImageHandle, SystemTable);
  }
  if (EFI_ERROR(Status)) {
    ProcessLibraryDestructorList();
  }
  return Status;
}

// Unload handler, called by the firmware's UnloadImage.
EFI_STATUS EFIAPI _DriverUnloadHandler(EFI_HANDLE ImageHandle) {
  EFI_STATUS Status = RaidcfgSetupExitPoint(ImageHandle);
  if (!EFI_ERROR(Status)) {
    ProcessLibraryDestructorList();
  }
  return Status;
}
