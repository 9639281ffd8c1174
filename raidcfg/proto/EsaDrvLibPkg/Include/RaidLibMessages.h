// Display texts of the model's codes: drive and volume states, and the
// adapter firmware's status messages that the error box shows.
#pragma once

#include <Uefi.h>

// The text of a state code; "Invalid State" for a code the table does not
// list (58 among them).
[[nodiscard]] const CHAR16 *RaidLibStateText(UINT32 State);

// The error box's messages are indexed by the low 12 bits k of an error code.
#define RAID_ERROR_MESSAGE_FIRST 1
#define RAID_ERROR_MESSAGE_LAST 112
// Message k is also the UI string with id RAID_ERROR_MESSAGE_STRING_BASE + k.
#define RAID_ERROR_MESSAGE_STRING_BASE 1014

typedef struct {
  UINT32 Index;            // k
  EFI_STRING_ID StringId;  // RAID_ERROR_MESSAGE_STRING_BASE + k
  const CHAR16 *Text;
} RAID_ERROR_MESSAGE;

// The 112 messages in order of k; the string packages are generated from it.
extern const RAID_ERROR_MESSAGE gRaidErrorMessages[RAID_ERROR_MESSAGE_LAST];

// The message for an error code's low 12 bits; "Unknown Error" outside 1-112.
[[nodiscard]] const CHAR16 *RaidLibErrorMessage(UINT32 ErrorCode);

// The UI string id of an error code's message, 0 when k is outside 1-112.
[[nodiscard]] EFI_STRING_ID RaidLibErrorMessageStringId(UINT32 ErrorCode);
