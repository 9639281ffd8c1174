// Pool allocation through the boot services. Before the image entry has
// set gBS (or after the services are gone) every allocation fails cleanly.
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

// Allocates AllocationSize bytes of boot-services data; NULL on failure.
VOID *AllocatePool(UINTN AllocationSize) {
  if (gBS == nullptr || gBS->AllocatePool == nullptr) {
    return nullptr;
  }
  VOID *Buffer = nullptr;
  EFI_STATUS Status =
      gBS->AllocatePool(EfiBootServicesData, AllocationSize, &Buffer);
  if (EFI_ERROR(Status)) {
    return nullptr;
  }
  return Buffer;
}

// Allocates AllocationSize bytes filled with zeros; NULL on failure.
VOID *AllocateZeroPool(UINTN AllocationSize) {
  VOID *Buffer = AllocatePool(AllocationSize);
  if (Buffer != nullptr) {
    ZeroMem(Buffer, AllocationSize);
  }
  return Buffer;
}

// Allocates AllocationSize bytes holding a copy of Buffer; NULL on failure
// or when there is nothing to copy from.
VOID *AllocateCopyPool(UINTN AllocationSize, const VOID *Buffer) {
  if (Buffer == nullptr) {
    return nullptr;
  }
  VOID *Copy = AllocatePool(AllocationSize);
  if (Copy != nullptr) {
    CopyMem(Copy, Buffer, AllocationSize);
  }
  return Copy;
}

// Returns Buffer to the pool; NULL is ignored.
VOID FreePool(VOID *Buffer) {
  if (Buffer == nullptr || gBS == nullptr || gBS->FreePool == nullptr) {
    return;
  }
  gBS->FreePool(Buffer);
}
