// Files of the boot volume.
#include "HostVolume.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/DevicePath.h>
#include <Protocol/LoadedImage.h>

namespace {

UINTN NodeLength(const EFI_DEVICE_PATH_PROTOCOL *Node) {
  return Node->Length[0] | (static_cast<UINTN>(Node->Length[1]) << 8);
}

// Bytes of a device path up to, not including, its end node; 0 for a path
// whose nodes are malformed.
UINTN DevicePathSizeWithoutEnd(const EFI_DEVICE_PATH_PROTOCOL *Path) {
  UINTN Size = 0;
  for (UINTN Nodes = 0; Nodes < 64; Nodes++) {
    if (Path->Type == END_DEVICE_PATH_TYPE) {
      return Size;
    }
    const UINTN Length = NodeLength(Path);
    if (Length < sizeof(EFI_DEVICE_PATH_PROTOCOL)) {
      return 0;
    }
    Size += Length;
    Path = reinterpret_cast<const EFI_DEVICE_PATH_PROTOCOL *>(
        reinterpret_cast<const UINT8 *>(Path) + Length);
  }
  return 0;
}

VOID SetNode(EFI_DEVICE_PATH_PROTOCOL *Node, UINT8 Type, UINT8 SubType,
             UINTN Length) {
  Node->Type = Type;
  Node->SubType = SubType;
  Node->Length[0] = static_cast<UINT8>(Length & 0xFF);
  Node->Length[1] = static_cast<UINT8>(Length >> 8);
}

}  // namespace

EFI_STATUS HostOpenOwnVolume(EFI_HANDLE ImageHandle, EFI_HANDLE *Device,
                             EFI_FILE_PROTOCOL **Root) {
  EFI_LOADED_IMAGE_PROTOCOL *Image = nullptr;
  EFI_STATUS Status = gBS->HandleProtocol(
      ImageHandle, &gEfiLoadedImageProtocolGuid, reinterpret_cast<VOID **>(&Image));
  if (EFI_ERROR(Status)) {
    return Status;
  }
  EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *FileSystem = nullptr;
  Status = gBS->HandleProtocol(Image->DeviceHandle, &gEfiSimpleFileSystemProtocolGuid,
                               reinterpret_cast<VOID **>(&FileSystem));
  if (EFI_ERROR(Status)) {
    return Status;
  }
  *Device = Image->DeviceHandle;
  return FileSystem->OpenVolume(FileSystem, Root);
}

EFI_STATUS HostReadFile(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path,
                        UINTN MaxSize, UINT8 **Contents, UINTN *Size) {
  *Contents = nullptr;
  *Size = 0;
  EFI_FILE_PROTOCOL *File = nullptr;
  EFI_STATUS Status = Root->Open(Root, &File, const_cast<CHAR16 *>(Path),
                                 EFI_FILE_MODE_READ, 0);
  if (EFI_ERROR(Status)) {
    return EFI_NOT_FOUND;
  }
  UINTN Capacity = 4096;
  UINT8 *Buffer = static_cast<UINT8 *>(AllocatePool(Capacity + 1));
  UINTN Used = 0;
  Status = Buffer == nullptr ? EFI_OUT_OF_RESOURCES : EFI_SUCCESS;
  while (!EFI_ERROR(Status)) {
    if (Used == Capacity) {
      if (Capacity >= MaxSize) {
        Status = EFI_BAD_BUFFER_SIZE;
        break;
      }
      const UINTN Larger = Capacity * 2 > MaxSize ? MaxSize : Capacity * 2;
      UINT8 *Grown = static_cast<UINT8 *>(AllocatePool(Larger + 1));
      if (Grown == nullptr) {
        Status = EFI_OUT_OF_RESOURCES;
        break;
      }
      CopyMem(Grown, Buffer, Used);
      FreePool(Buffer);
      Buffer = Grown;
      Capacity = Larger;
    }
    UINTN Chunk = Capacity - Used;
    Status = File->Read(File, &Chunk, Buffer + Used);
    if (EFI_ERROR(Status) || Chunk == 0) {
      break;
    }
    Used += Chunk;
  }
  File->Close(File);
  if (EFI_ERROR(Status)) {
    FreePool(Buffer);
    return Status;
  }
  Buffer[Used] = 0;
  *Contents = Buffer;
  *Size = Used;
  return EFI_SUCCESS;
}

EFI_DEVICE_PATH_PROTOCOL *HostFileDevicePath(EFI_HANDLE Device,
                                             const CHAR16 *Path) {
  EFI_DEVICE_PATH_PROTOCOL *DevicePath = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(Device, &gEfiDevicePathProtocolGuid,
                                    reinterpret_cast<VOID **>(&DevicePath)))) {
    return nullptr;
  }
  const UINTN Prefix = DevicePathSizeWithoutEnd(DevicePath);
  const UINTN FileNode = sizeof(EFI_DEVICE_PATH_PROTOCOL) + StrSize(Path);
  const UINTN EndNode = sizeof(EFI_DEVICE_PATH_PROTOCOL);
  auto *Result = static_cast<UINT8 *>(AllocatePool(Prefix + FileNode + EndNode));
  if (Result == nullptr || FileNode > 0xFFFF) {
    FreePool(Result);
    return nullptr;
  }
  CopyMem(Result, DevicePath, Prefix);
  auto *File = reinterpret_cast<EFI_DEVICE_PATH_PROTOCOL *>(Result + Prefix);
  SetNode(File, MEDIA_DEVICE_PATH, MEDIA_FILEPATH_DP, FileNode);
  CopyMem(File + 1, Path, StrSize(Path));
  SetNode(reinterpret_cast<EFI_DEVICE_PATH_PROTOCOL *>(Result + Prefix + FileNode),
          END_DEVICE_PATH_TYPE, END_ENTIRE_DEVICE_PATH_SUBTYPE, EndNode);
  return reinterpret_cast<EFI_DEVICE_PATH_PROTOCOL *>(Result);
}
