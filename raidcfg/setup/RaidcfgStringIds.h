// HII string ids the module's start-up and error box use, until the
// generated string header provides them.
#pragma once

#include <Uefi.h>

#define STR_LOADING_RAID_DATA 707
#define STR_OPERATION_FAILED 817
#define STR_ERROR_TITLE 818
#define STR_BLANK 865
#define STR_ERROR_MESSAGE_001 1015
#define STR_ERROR_MESSAGE_041 1055
