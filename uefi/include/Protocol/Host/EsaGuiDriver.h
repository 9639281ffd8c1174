// The host's GUI driver: a module connects to it once at start and
// disconnects at unload.
#pragma once

#include <Uefi.h>

#define ESA_GUI_DRIVER_PROTOCOL_GUID \
  {0xA2DF5376, 0xC2ED, 0x49C0, {0x90, 0xFF, 0x8B, 0x17, 0x3B, 0x0F, 0xD0, 0x66}}

// The five words a module hands over when it connects.
typedef struct {
  EFI_HANDLE ImageHandle;
  EFI_SYSTEM_TABLE *SystemTable;
  EFI_HII_HANDLE HiiHandle;
  UINTN Reserved0;
  UINTN Reserved1;
} ESA_GUI_CONTEXT;

typedef struct _ESA_GUI_DRIVER_PROTOCOL ESA_GUI_DRIVER_PROTOCOL;
struct _ESA_GUI_DRIVER_PROTOCOL {
  // Context points at the caller's copy; the driver keeps its own.
  EFI_STATUS(EFIAPI *Initialize)(const ESA_GUI_CONTEXT *Context);
  EFI_STATUS(EFIAPI *UnInitialize)(EFI_HANDLE Instance);
};

extern EFI_GUID gEsaGuiDriverProtocolGuid;
