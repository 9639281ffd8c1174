// The RAID model in the model-dump JSON format (docs/model-dump.md), built
// in pool memory from the module's records. ASCII only: every character
// outside it is written as a \u escape, since the firmware console carries
// ASCII alone.
#pragma once

#include <Uefi.h>
#include "RaidLib.h"

// The dump of Controllers with the discovery's outcome, NUL-terminated, in
// a pool buffer the caller frees; NULL when memory is short.
CHAR8 *BuildModelJson(EFI_STATUS Status, UINT32 ErrorCode, LIST_ENTRY *Controllers);
