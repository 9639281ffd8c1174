// The module's texts as the host hands them out: fetched from the firmware's
// HII string protocol in the host language and kept, so that a text stays
// valid while the module and the page framework hold it.
#pragma once

#include <Uefi.h>

// The text of Id in the host language; NULL when the handle or id is unknown.
const CHAR16 *HostString(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id);
// Makes Language ("fr-FR", a static string) the host language.
VOID HostSetLanguage(const CHAR8 *Language);
// Frees every text handed out.
VOID HostFreeStrings(VOID);
