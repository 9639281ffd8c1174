// Module-wide pointers saved by the image entry from its arguments.
#pragma once

#include <Uefi.h>

extern EFI_HANDLE gImageHandle;
extern EFI_SYSTEM_TABLE *gST;
extern EFI_BOOT_SERVICES *gBS;
extern EFI_RUNTIME_SERVICES *gRT;
