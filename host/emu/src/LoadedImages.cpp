// Image handles with their loaded image records, and UnloadImage.
#include <Protocol/LoadedImage.h>

#include "emu/Firmware.h"

namespace emu {

EFI_HANDLE Firmware::CreateImageHandle(EFI_HANDLE DeviceHandle,
                                       EFI_HANDLE ParentHandle) {
  auto Image = std::make_unique<EFI_LOADED_IMAGE_PROTOCOL>();
  *Image = {};
  Image->Revision = EFI_LOADED_IMAGE_PROTOCOL_REVISION;
  Image->ParentHandle = ParentHandle;
  Image->SystemTable = &SystemTable_;
  Image->DeviceHandle = DeviceHandle;
  Image->ImageCodeType = EfiBootServicesCode;
  Image->ImageDataType = EfiBootServicesData;
  EFI_HANDLE Handle = nullptr;
  if (EFI_ERROR(Handles_.Install(&Handle, gEfiLoadedImageProtocolGuid,
                                 Image.get()))) {
    return nullptr;
  }
  Images_.push_back(std::move(Image));
  return Handle;
}

EFI_LOADED_IMAGE_PROTOCOL *Firmware::LoadedImage(EFI_HANDLE ImageHandle) {
  VOID *Interface = nullptr;
  if (EFI_ERROR(Handles_.Find(ImageHandle, gEfiLoadedImageProtocolGuid,
                              &Interface))) {
    return nullptr;
  }
  return static_cast<EFI_LOADED_IMAGE_PROTOCOL *>(Interface);
}

EFI_STATUS Firmware::UnloadImage(EFI_HANDLE ImageHandle) {
  EFI_LOADED_IMAGE_PROTOCOL *Image = LoadedImage(ImageHandle);
  if (Image == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Image->Unload == nullptr) {
    return EFI_UNSUPPORTED;
  }
  const EFI_STATUS Status = Image->Unload(ImageHandle);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Handles_.Uninstall(ImageHandle, gEfiLoadedImageProtocolGuid, Image);
  return EFI_SUCCESS;
}

}  // namespace emu
