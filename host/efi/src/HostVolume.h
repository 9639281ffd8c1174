// The volume raidhost.efi was loaded from: its files, and device paths of
// files on it (so that LoadImage gives a driver that volume as its device).
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

// Opens the root of the volume behind ImageHandle's Loaded Image protocol.
EFI_STATUS HostOpenOwnVolume(EFI_HANDLE ImageHandle, EFI_HANDLE *Device,
                             EFI_FILE_PROTOCOL **Root);

// Reads the whole file Path (at most MaxSize bytes) into a pool buffer with
// a NUL byte after the contents. EFI_NOT_FOUND when it does not exist,
// EFI_BAD_BUFFER_SIZE when it is larger.
EFI_STATUS HostReadFile(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path,
                        UINTN MaxSize, UINT8 **Contents, UINTN *Size);

// A pool copy of Device's device path followed by a file-path node for
// Path; NULL when Device has no device path or memory is short.
EFI_DEVICE_PATH_PROTOCOL *HostFileDevicePath(EFI_HANDLE Device,
                                             const CHAR16 *Path);
