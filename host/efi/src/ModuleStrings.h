// The module's strings as the firmware holds them: its package list found
// in the HII database, texts fetched back through the HII string protocol.
#pragma once

#include <Uefi.h>

// The HII handle under which the database holds the package list that the
// image ModuleHandle carries (its HII package list protocol); NULL when the
// module registered none.
EFI_HII_HANDLE FindModuleHiiHandle(EFI_HANDLE ModuleHandle);

// The text of Id in Language through the firmware's HII string protocol,
// into Text of TextSize bytes.
EFI_STATUS FetchHiiString(EFI_HII_HANDLE Handle, const CHAR8 *Language,
                          EFI_STRING_ID Id, CHAR16 *Text, UINTN TextSize);
