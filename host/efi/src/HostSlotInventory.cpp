// The slot inventory from a file of the boot volume: one line per slot in
// display order, "slot text<TAB>device text"; an empty slot text is an
// on-board device. Without the file the inventory is empty, and the module
// keeps the PCI scan order.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "HostConsole.h"
#include "HostProtocols.h"
#include "HostTextFile.h"

namespace {

constexpr UINTN kMaxSlots = 64;
constexpr UINTN kMaxFileSize = 64 * 1024;

constinit SLOT_INVENTORY_ENTRY *gSlots = nullptr;
constinit UINTN gSlotCount = 0;

// Adds the slot of one line: "slot text<TAB>device text".
EFI_STATUS AddSlot(VOID *Context, const CHAR8 *Line, UINTN Length) {
  UINTN Tab = 0;
  while (Tab < Length && Line[Tab] != '\t') {
    Tab++;
  }
  if (Tab == Length || gSlotCount == kMaxSlots) {
    return EFI_VOLUME_CORRUPTED;
  }
  SLOT_INVENTORY_ENTRY &Entry = gSlots[gSlotCount];
  Entry.SlotText = Tab == 0 ? nullptr : HostUtf8ToString(Line, Tab);
  Entry.DeviceText = HostUtf8ToString(Line + Tab + 1, Length - Tab - 1);
  if ((Tab != 0 && Entry.SlotText == nullptr) || Entry.DeviceText == nullptr) {
    FreePool(Entry.SlotText);
    FreePool(Entry.DeviceText);
    return EFI_OUT_OF_RESOURCES;
  }
  gSlotCount++;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetSlotCount(UINTN *Count) {
  if (Count == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Count = gSlotCount;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetSlotTable(UINTN *Count, SLOT_INVENTORY_ENTRY **Table) {
  if (Count == nullptr || Table == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Count = gSlotCount;
  *Table = gSlots;
  return EFI_SUCCESS;
}

constinit SLOT_INVENTORY_PROTOCOL gSlotInventory = {GetSlotCount, GetSlotTable};

}  // namespace

EFI_STATUS HostLoadSlotInventory(EFI_FILE_PROTOCOL *Root, const CHAR16 *Path) {
  gSlots = static_cast<SLOT_INVENTORY_ENTRY *>(
      AllocateZeroPool(kMaxSlots * sizeof(SLOT_INVENTORY_ENTRY)));
  if (gSlots == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  return HostReadFileLines(Root, Path, kMaxFileSize, AddSlot, nullptr);
}

SLOT_INVENTORY_PROTOCOL *HostSlotInventory(VOID) { return &gSlotInventory; }

UINTN HostSlotCount(VOID) { return gSlotCount; }

VOID HostFreeSlotInventory(VOID) {
  for (UINTN I = 0; I < gSlotCount; I++) {
    FreePool(gSlots[I].SlotText);
    FreePool(gSlots[I].DeviceText);
  }
  FreePool(gSlots);
  gSlots = nullptr;
  gSlotCount = 0;
}
