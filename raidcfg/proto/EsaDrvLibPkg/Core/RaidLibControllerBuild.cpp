// Turning the ordered storage devices into controller records, for those
// the adapter database names.
#include <Library/MemoryAllocationLib.h>

#include "RaidLibDiscovery.h"
#include "RaidLibText.h"

namespace {

[[nodiscard]] const PCIDB_ENTRY *FindDatabaseEntry(
    LIST_ENTRY *PcidbList, const PCI_BUS_DEVICE *Device) {
  for (PCIDB_ENTRY *Entry : uefi::ListOf<&PCIDB_ENTRY::Link>(*PcidbList)) {
    if (Entry->VendorId == Device->VendorId &&
        Entry->DeviceId == Device->DeviceId &&
        Entry->SubVendorId == Device->SubVendorId &&
        Entry->SubDeviceId == Device->SubDeviceId) {
      return Entry;
    }
  }
  return nullptr;
}

VOID InitializeControllerLists(RAID_CONTROLLER *Controller) {
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
}

// A controller record with its private record for one device, not yet
// matched; NULL when the pool is exhausted.
[[nodiscard]] RAID_CONTROLLER *NewController(const PCI_BUS_DEVICE *Device,
                                             UINT32 Id) {
  RAID_CONTROLLER *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  if (Controller == nullptr) {
    return nullptr;
  }
  InitializeControllerLists(Controller);
  RAID_CONTROLLER_PRIVATE *Private =
      uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  if (Private == nullptr) {
    FreePool(Controller);
    return nullptr;
  }
  Controller->Private = Private;
  Controller->Id = Id;
  Controller->SlotNumber = Device->SlotNumber;
  Private->CardId = RAID_CARD_ID_UNSET;
  Private->Bus = Device->Bus;
  Private->Device = Device->Device;
  Private->Function = Device->Function;
  Private->VendorId = Device->VendorId;
  Private->DeviceId = Device->DeviceId;
  Private->SubVendorId = Device->SubVendorId;
  Private->SubDeviceId = Device->SubDeviceId;
  Private->PciIoHandle = Device->PciIoHandle;
  return Controller;
}

}  // namespace

// Ids count every ordered device, matched or not, so the ids of the kept
// controllers can have gaps; the wizard and the tools name adapters by them.
EFI_STATUS RaidLibBuildControllers(LIST_ENTRY *Ordered, LIST_ENTRY *PcidbList,
                                   UINTN *Made, UINT32 *ErrorCode) {
  *Made = 0;
  UINT32 Id = 0;
  for (PCI_BUS_DEVICE *Device : uefi::ListOf<&PCI_BUS_DEVICE::Link>(*Ordered)) {
    RAID_CONTROLLER *Controller = NewController(Device, Id++);
    if (Controller == nullptr) {
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
      return EFI_OUT_OF_RESOURCES;
    }
    const PCIDB_ENTRY *Entry = FindDatabaseEntry(PcidbList, Device);
    if (Entry == nullptr) {
      RaidLibFreeController(Controller);
      continue;
    }
    if (!RaidLibCopyText(Entry->StorageId, &Controller->Private->StorageId) ||
        !RaidLibCopyText(Entry->DevName, &Controller->Name)) {
      RaidLibFreeController(Controller);
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
      return EFI_OUT_OF_RESOURCES;
    }
    Controller->ToolType = RAID_TOOL_TYPE_MATCHED;
    InsertTailList(&gControllerList, &Controller->Link);
    (*Made)++;
  }
  return EFI_SUCCESS;
}
