// A stand-in second backend whose reader carries the MegaRAID reader's name
// and signature, as the Microchip reader does: both must link side by side.
#pragma once

#include "RaidLib.h"

namespace second_backend {

// Records the name its traces would carry in gLastFunctionName.
EFI_STATUS ParseControllerShow(CHAR16 *Output, RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode);

extern const CHAR8 *gLastFunctionName;

}  // namespace second_backend
