// Reading the loaded module's exported data symbols, the way a debugger
// reads a target through its symbols: the RAID model stays inside the
// module, and raidhost.efi looks at it between StartImage and UnloadImage.
#pragma once

#include <Uefi.h>

// The address of the export Name in the PE32+ image loaded at Base (of
// ImageSize bytes), or NULL. Every header offset is checked against the
// image's size.
VOID *FindImageExport(VOID *Base, UINT64 ImageSize, const CHAR8 *Name);
