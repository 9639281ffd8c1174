// The slot inventory from a file of the boot volume: one line per slot in
// display order, "slot text<TAB>device text"; an empty slot text is an
// on-board device. Without the file the inventory is empty, and the module
// keeps the PCI scan order.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "HostConsole.h"
#include "HostProtocols.h"
#include "HostVolume.h"

namespace {

constexpr UINTN kMaxSlots = 64;
constexpr UINTN kMaxFileSize = 64 * 1024;

constinit SLOT_INVENTORY_ENTRY *gSlots = nullptr;
constinit UINTN gSlotCount = 0;

CHAR16 *Widen(const CHAR8 *Text, UINTN Length) {
  const UINTN Chars = Utf8StrToUnicodeLength(Text, Length);
  CHAR16 *Wide = static_cast<CHAR16 *>(AllocatePool((Chars + 1) * sizeof(CHAR16)));
  if (Wide != nullptr && EFI_ERROR(Utf8StrToUnicodeStrS(Text, Length, Wide, Chars + 1))) {
    FreePool(Wide);
    return nullptr;
  }
  return Wide;
}

EFI_STATUS AddSlot(const CHAR8 *Line, UINTN Length) {
  UINTN Tab = 0;
  while (Tab < Length && Line[Tab] != '\t') {
    Tab++;
  }
  if (Tab == Length || gSlotCount == kMaxSlots) {
    return EFI_VOLUME_CORRUPTED;
  }
  SLOT_INVENTORY_ENTRY &Entry = gSlots[gSlotCount];
  Entry.SlotText = Tab == 0 ? nullptr : Widen(Line, Tab);
  Entry.DeviceText = Widen(Line + Tab + 1, Length - Tab - 1);
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
  UINT8 *Contents = nullptr;
  UINTN Size = 0;
  EFI_STATUS Status = HostReadFile(Root, Path, kMaxFileSize, &Contents, &Size);
  if (Status == EFI_NOT_FOUND) {
    return EFI_SUCCESS;
  }
  if (EFI_ERROR(Status)) {
    return Status;
  }
  gSlots = static_cast<SLOT_INVENTORY_ENTRY *>(
      AllocateZeroPool(kMaxSlots * sizeof(SLOT_INVENTORY_ENTRY)));
  if (gSlots == nullptr) {
    FreePool(Contents);
    return EFI_OUT_OF_RESOURCES;
  }
  const CHAR8 *Text = reinterpret_cast<const CHAR8 *>(Contents);
  UINTN Start = 0;
  while (Start < Size && !EFI_ERROR(Status)) {
    UINTN End = Start;
    while (End < Size && Text[End] != '\n') {
      End++;
    }
    UINTN Length = End - Start;
    if (Length > 0 && Text[Start + Length - 1] == '\r') {
      Length--;
    }
    if (Length > 0) {
      Status = AddSlot(Text + Start, Length);
    }
    Start = End + 1;
  }
  FreePool(Contents);
  return Status;
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
