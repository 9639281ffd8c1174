// Finding a controller of gControllerList by its Id: the lookup every
// caller of the core and every backend uses, and the version line that
// opens each of the core's functions.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

#define RAID_LIB_VERSION_MAJOR 0
#define RAID_LIB_VERSION_MINOR 34
#define RAID_LIB_VERSION_PATCH 0

// "RAID library version: 0.34.0", the first line of every core function.
VOID RaidLibTraceVersion();

// The controller with this Id, or NULL after "[GetController]Not find
// controller".
[[nodiscard]] RAID_CONTROLLER *GetController(UINT32 Id);
// The same, and makes its card the current one for the tools' command lines.
[[nodiscard]] RAID_CONTROLLER *RaidLibGetController(UINT32 Id);
