// The host's management-controller command service; the module uses it to
// report outcomes as events.
#pragma once

#include <Uefi.h>

#define QOL_COMMANDS_PROTOCOL_GUID \
  {0x3F701926, 0x015D, 0x481B, {0xA0, 0x38, 0x0A, 0x66, 0xB6, 0x76, 0xAC, 0x47}}

typedef struct _QOL_COMMANDS_PROTOCOL QOL_COMMANDS_PROTOCOL;
struct _QOL_COMMANDS_PROTOCOL {
  EFI_STATUS(EFIAPI *GetVersion)(QOL_COMMANDS_PROTOCOL *This, UINT32 *Version);
  // Forwards one event; *Result receives the controller's completion code.
  EFI_STATUS(EFIAPI *SendEvent)
  (QOL_COMMANDS_PROTOCOL *This, UINT32 EventCode, const CHAR8 *Message,
   const CHAR8 *Identifier, UINT32 *Result, UINT32 Count);
};

extern EFI_GUID gQolCommandsProtocolGuid;
