// The error box's message table: one HII string id per adapter status code.
#include <strings/RaidcfgStrings.h>

#include "setup/RaidcfgSetup.h"

constinit EFI_STRING_ID gRaidErrMsgArray[RAID_ERR_MSG_COUNT] = {};

VOID init_Raid_Err_Array() {
  for (UINT32 Index = 0; Index < RAID_ERR_MSG_COUNT; Index++) {
    gRaidErrMsgArray[Index] =
        static_cast<EFI_STRING_ID>(STR_ERROR_MESSAGE_001 + Index);
  }
}
