// Fill the boot-services and runtime-services tables with the emulator's
// functions (every slot set).
#pragma once

#include <Uefi.h>

namespace emu {

VOID FillBootServices(EFI_BOOT_SERVICES &Table);
VOID FillRuntimeServices(EFI_RUNTIME_SERVICES &Table);
// The standard CRC-32 the table headers and CalculateCrc32 use.
UINT32 Crc32(const VOID *Data, UINTN Size);
// Notes a call of a service the emulator does not provide (see
// Firmware::UnsupportedCalls()); EFI_UNSUPPORTED.
EFI_STATUS Unsupported(const char *Service);
// Stores a table header with its CRC computed over HeaderSize bytes.
VOID SealTableHeader(EFI_TABLE_HEADER &Header);

}  // namespace emu
