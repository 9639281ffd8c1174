// Events to the server's management controller: the outcome of each
// configuration action, handed to the host's QolCommandsProtocol.
#pragma once

#include <Uefi.h>

// Event bytes the wizard sends; the event code is 0xFE00 | byte.
#define RAID_EVENT_UNSUPPORTED_ADAPTER 0x01
#define RAID_EVENT_DRIVE_STATE_FAILED 0x11
#define RAID_EVENT_DRIVE_STATE_DONE 0x12
#define RAID_EVENT_CREATE_FAILED 0x21
#define RAID_EVENT_CREATE_DONE 0x22
#define RAID_EVENT_DELETE_FAILED 0x31
#define RAID_EVENT_DELETE_DONE 0x32

#define RAID_EVENT_CODE_BASE 0xFE00U
#define RAID_EVENT_ID_SIZE 16

// One event: the message identifier, the code and the English message. A
// table ends with an entry whose code is 0.
typedef struct {
  CHAR8 MessageId[RAID_EVENT_ID_SIZE];
  UINT32 EventCode;
  const CHAR8 *Message;
} RAID_EVENT_ENTRY;

#define RAID_EVENT_TABLE_SIZE 8
extern const RAID_EVENT_ENTRY gRaidEventTable[RAID_EVENT_TABLE_SIZE];

// Reports an outcome; failures are traced and never reach the caller.
VOID SendEventCode(UINT8 EventByte);

// Looks EventCode up in Table up to its end mark. On a match: the message,
// the entry and EFI_SUCCESS; otherwise both NULL and EFI_NOT_FOUND.
[[nodiscard]] EFI_STATUS MatchString(const RAID_EVENT_ENTRY *Table,
                                     UINT32 EventCode, const CHAR8 **Message,
                                     const RAID_EVENT_ENTRY **Entry);
