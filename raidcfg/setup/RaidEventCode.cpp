// Event codes to the management controller through the host's
// QolCommandsProtocol. Delivery is best effort: nothing is retried and the
// wizard carries on whatever happened.
#include "setup/RaidEventCode.h"

#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/QolCommands.h>

#include "setup/RaidcfgTrace.h"

// Level of the trace of an unknown event code.
#define RAID_EVENT_TRACE_LEVEL 2

// The identifiers and messages are what the management controller's event
// catalogue holds, spelling included ("KDZPMRS0011K", no full stop after
// "virtual disk" in 0xFE21): kept deliberately, they must not be corrected.
constinit const RAID_EVENT_ENTRY gRaidEventTable[RAID_EVENT_TABLE_SIZE] = {
    {"KDZPMSR0001K", 0xFE01, "Find unsupported RAID adapter."},
    {"KDZPMRS0011K", 0xFE11, "Failed to change disk drives' state."},
    {"KDZPMSR0012I", 0xFE12, "Change disk drives' state successfully."},
    {"KDZPMSR0021L", 0xFE21, "Failed to create new virtual disk"},
    {"KDZPMSR0022I", 0xFE22, "Create new virtual disk successfully."},
    {"KDZPMSR0031L", 0xFE31, "Failed to remove existing virtual disk."},
    {"KDZPMSR0032I", 0xFE32, "Removed existing virtual disk successfully."},
    {"", 0, nullptr},
};

EFI_STATUS MatchString(const RAID_EVENT_ENTRY *Table, UINT32 EventCode,
                       const CHAR8 **Message, const RAID_EVENT_ENTRY **Entry) {
  for (const RAID_EVENT_ENTRY *Row = Table; Row != nullptr && Row->EventCode != 0;
       Row++) {
    if (Row->EventCode == EventCode) {
      *Message = Row->Message;
      *Entry = Row;
      return EFI_SUCCESS;
    }
  }
  *Message = nullptr;
  *Entry = nullptr;
  RAID_TRACE(RAID_EVENT_TRACE_LEVEL,
             "RAID: [%a] Cannot find the event code entry -- %X\n", EventCode);
  return EFI_NOT_FOUND;
}

VOID SendEventCode(UINT8 EventByte) {
  QOL_COMMANDS_PROTOCOL *Qol = nullptr;
  EFI_STATUS Status = gBS->LocateProtocol(&gQolCommandsProtocolGuid, nullptr,
                                          reinterpret_cast<VOID **>(&Qol));
  if (EFI_ERROR(Status) || Qol == nullptr) {
    RAID_TRACE(TARN_DEBUG_ERROR,
               "RAID: [%a] Locate QolCommandsProtocolGuid fail.\n");
    return;
  }
  const UINT32 EventCode = RAID_EVENT_CODE_BASE | EventByte;
  const CHAR8 *Message = nullptr;
  const RAID_EVENT_ENTRY *Entry = nullptr;
  if (EFI_ERROR(MatchString(gRaidEventTable, EventCode, &Message, &Entry))) {
    RAID_TRACE(TARN_DEBUG_ERROR, "RAID: [%a] Cannot match the event code\n");
    return;
  }
  UINT32 Result = 0;
  Status = Qol->SendEvent(Qol, EventCode, Message, Entry->MessageId, &Result, 1);
  if (EFI_ERROR(Status)) {
    RAID_TRACE(TARN_DEBUG_ERROR,
               "RAID: [%a] Failed to send out event code -- %r\n", Status);
  } else {
    RAID_TRACE(TARN_DEBUG_INFO,
               "RAID: [%a] Send out event code successfully\n");
  }
}
