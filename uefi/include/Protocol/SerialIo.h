#pragma once

#include <Uefi.h>

#define EFI_SERIAL_IO_PROTOCOL_GUID \
  {0xBB25CF6F, 0xF1D4, 0x11D2, {0x9A, 0x0C, 0x00, 0x90, 0x27, 0x3F, 0xC1, 0xFD}}

typedef struct _EFI_SERIAL_IO_PROTOCOL EFI_SERIAL_IO_PROTOCOL;

typedef EFI_STATUS(EFIAPI *EFI_SERIAL_WRITE)(EFI_SERIAL_IO_PROTOCOL *This,
                                             UINTN *BufferSize, VOID *Buffer);

// Only Write is called here; the other services keep their places.
struct _EFI_SERIAL_IO_PROTOCOL {
  UINT32 Revision;
  VOID *Reset;
  VOID *SetAttributes;
  VOID *SetControl;
  VOID *GetControl;
  EFI_SERIAL_WRITE Write;
  VOID *Read;
  VOID *Mode;
};

extern EFI_GUID gEfiSerialIoProtocolGuid;
