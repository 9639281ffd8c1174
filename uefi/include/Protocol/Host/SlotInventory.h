// The host's slot inventory: the server's PCIe slots in the order the host
// shows them, each with the device it holds.
#pragma once

#include <Uefi.h>

#define SLOT_INVENTORY_PROTOCOL_GUID \
  {0xD0A72386, 0x9632, 0x40F1, {0x96, 0x86, 0x9E, 0x7A, 0x23, 0xE9, 0x23, 0x86}}

typedef struct {
  CHAR16 *SlotText;    // e.g. u"Slot 3"; NULL or empty for on-board devices
  CHAR16 *DeviceText;  // e.g. u"RSTe SATA Controller"
} SLOT_INVENTORY_ENTRY;

typedef struct _SLOT_INVENTORY_PROTOCOL SLOT_INVENTORY_PROTOCOL;
struct _SLOT_INVENTORY_PROTOCOL {
  EFI_STATUS(EFIAPI *GetSlotCount)(UINTN *Count);
  // The table stays owned by the host and valid until the next call.
  EFI_STATUS(EFIAPI *GetSlotTable)(UINTN *Count, SLOT_INVENTORY_ENTRY **Table);
};

extern EFI_GUID gSlotInventoryProtocolGuid;
