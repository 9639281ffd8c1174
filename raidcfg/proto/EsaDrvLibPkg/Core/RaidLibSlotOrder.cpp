// Putting the adapters in the order of the host's slot inventory, so that
// the wizard lists them as the host's own pages do.
#include <Library/BaseLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include "RaidLibDiscovery.h"

namespace {

constexpr UINT16 kVendorIntel = 0x8086;
constexpr UINT16 kIntelOnboardRaidEngine = 0x2826;

[[nodiscard]] bool IsEmptyText(const CHAR16 *Text) {
  return Text == nullptr || Text[0] == 0;
}

// The on-board RSTe engine has no slot; the inventory lists it without a
// slot text under a device text that names RSTe.
[[nodiscard]] bool IsOnboardRsteEntry(const PCI_BUS_DEVICE *Device,
                                      const SLOT_INVENTORY_ENTRY &Entry) {
  return Device->SlotNumber == RAID_SLOT_NUMBER_NONE && IsEmptyText(Entry.SlotText) &&
         Entry.DeviceText != nullptr &&
         StrStr(Entry.DeviceText, u"RSTe") != nullptr &&
         Device->VendorId == kVendorIntel &&
         Device->DeviceId == kIntelOnboardRaidEngine;
}

// "Slot %d" inside the entry's slot text. Deliberately a substring test:
// "Slot 1" is also found in "Slot 12". The host's inventory is expected not
// to be ambiguous, and the adapters' order follows this match as the host's
// own pages show it; do not make it exact.
[[nodiscard]] bool SlotTextNamesDevice(const PCI_BUS_DEVICE *Device,
                                       const SLOT_INVENTORY_ENTRY &Entry) {
  if (Entry.SlotText == nullptr) {
    return false;
  }
  CHAR16 SlotName[16];
  UnicodeSPrint(SlotName, sizeof(SlotName), u"Slot %d",
                (UINT32)Device->SlotNumber);
  return StrStr(Entry.SlotText, SlotName) != nullptr;
}

[[nodiscard]] PCI_BUS_DEVICE *FindDeviceForEntry(
    LIST_ENTRY *ScanList, const SLOT_INVENTORY_ENTRY &Entry) {
  for (PCI_BUS_DEVICE *Device : uefi::ListOf<&PCI_BUS_DEVICE::Link>(*ScanList)) {
    if (IsOnboardRsteEntry(Device, Entry) ||
        SlotTextNamesDevice(Device, Entry)) {
      return Device;
    }
  }
  return nullptr;
}

}  // namespace

// Asks the host for its slot inventory. A host without one, or a failed
// call, leaves the scan order as it is.
VOID RaidLibGetSlotInventory(UINTN *Count, SLOT_INVENTORY_ENTRY **Table) {
  *Count = 0;
  *Table = nullptr;
  SLOT_INVENTORY_PROTOCOL *Inventory = nullptr;
  if (EFI_ERROR(gBS->LocateProtocol(&gSlotInventoryProtocolGuid, nullptr,
                                    (VOID **)&Inventory)) ||
      Inventory == nullptr) {
    return;
  }
  UINTN EntryCount = 0;
  SLOT_INVENTORY_ENTRY *Entries = nullptr;
  if (EFI_ERROR(Inventory->GetSlotTable(&EntryCount, &Entries)) ||
      Entries == nullptr) {
    return;
  }
  *Count = EntryCount;
  *Table = Entries;
}

// For each inventory entry in turn, the first device of the scan list that
// it names moves to the ordered list; the rest follow in scan order.
VOID RaidLibOrderBySlotInventory(LIST_ENTRY *ScanList, LIST_ENTRY *Ordered,
                                 const SLOT_INVENTORY_ENTRY *Table,
                                 UINTN Count) {
  for (UINTN Index = 0; Index < Count && Table != nullptr; Index++) {
    PCI_BUS_DEVICE *Device = FindDeviceForEntry(ScanList, Table[Index]);
    if (Device != nullptr) {
      RemoveEntryList(&Device->Link);
      InsertTailList(Ordered, &Device->Link);
    }
  }
  while (PCI_BUS_DEVICE *Device =
             uefi::TakeFirst<&PCI_BUS_DEVICE::Link>(ScanList)) {
    InsertTailList(Ordered, &Device->Link);
  }
}
