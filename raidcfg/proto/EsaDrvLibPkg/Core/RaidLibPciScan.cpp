// The PCI scan: which functions on the bus can be RAID adapters.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/PciIo.h>

#include "ProductConstants.h"
#include "RaidLibDiscovery.h"
#include "RaidLibTrace.h"

namespace {

constexpr UINT8 kClassMassStorage = 0x01;
constexpr UINT8 kSubClassRaid = 0x04;
constexpr UINT8 kSubClassSata = 0x06;
constexpr UINT8 kSubClassSas = 0x07;
constexpr UINT8 kProgIfAhci = 0x01;

constexpr UINT16 kVendorIntel = 0x8086;
constexpr UINT16 kVendorBroadcom = 0x1000;
constexpr UINT16 kVendorMarvell = 0x1B4B;

// Functions that report a RAID or SAS class but are no adapter the module
// can configure: Intel's on-chip engines and Broadcom's HBA-only devices.
struct ExcludedDevice {
  UINT16 VendorId;
  UINT16 DeviceId;
};
constexpr ExcludedDevice kExcludedDevices[] = {
    {kVendorIntel, 0x201D},    {kVendorIntel, 0x2827},
    {kVendorBroadcom, 0x00AC}, {kVendorBroadcom, 0x00AF},
    {kVendorBroadcom, 0x00B2}, {kVendorBroadcom, 0x00E6},
};

[[nodiscard]] bool IsExcluded(const PCI_BUS_DEVICE *Entry) {
  for (const ExcludedDevice &Excluded : kExcludedDevices) {
    if (Entry->VendorId == Excluded.VendorId &&
        Entry->DeviceId == Excluded.DeviceId) {
      return true;
    }
  }
  return false;
}

// Reads one 32-bit configuration word; false when the read fails or the
// function answers all ones.
[[nodiscard]] bool ReadIdPair(EFI_PCI_IO_PROTOCOL *PciIo, UINT32 Offset,
                              UINT16 *Low, UINT16 *High) {
  UINT32 Value = 0xFFFFFFFF;
  EFI_STATUS Status =
      PciIo->Pci.Read(PciIo, EfiPciIoWidthUint32, Offset, 1, &Value);
  if (EFI_ERROR(Status) || Value == 0xFFFFFFFF) {
    return false;
  }
  *Low = (UINT16)(Value & 0xFFFF);
  *High = (UINT16)(Value >> 16);
  return true;
}

// Fills location, ids, handle and slot of a qualifying function.
VOID FillEntry(PCI_BUS_DEVICE *Entry, EFI_PCI_IO_PROTOCOL *PciIo,
               EFI_HANDLE Handle) {
  UINTN Segment = 0;
  UINTN Bus = 0;
  UINTN Device = 0;
  UINTN Function = 0;
  if (!EFI_ERROR(
          PciIo->GetLocation(PciIo, &Segment, &Bus, &Device, &Function))) {
    Entry->Bus = (UINT8)Bus;
    Entry->Device = (UINT8)Device;
    Entry->Function = (UINT8)Function;
  }
  // A word that cannot be read leaves its ids 0, which name no adapter
  // family: the function is judged on them like any other.
  (VOID) ReadIdPair(PciIo, 0x00, &Entry->VendorId, &Entry->DeviceId);
  (VOID) ReadIdPair(PciIo, 0x2C, &Entry->SubVendorId, &Entry->SubDeviceId);
  Entry->PciIoHandle = Handle;
  Entry->SlotNumber = RaidLibGetSmbiosSlotNumber(Entry->Bus);
}

// Decides for one handle; the entry is either linked into List or freed.
// Traced under Caller's name, the scan's.
[[nodiscard]] EFI_STATUS ScanOneFunction(const CHAR8 *Caller, EFI_HANDLE Handle,
                                         LIST_ENTRY *List) {
  EFI_PCI_IO_PROTOCOL *PciIo = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(Handle, &gEfiPciIoProtocolGuid,
                                    (VOID **)&PciIo)) ||
      PciIo == nullptr) {
    return EFI_SUCCESS;
  }
  // Offset 09h: programming interface, sub-class, base class.
  UINT8 ClassCode[3] = {0, 0, 0};
  if (EFI_ERROR(PciIo->Pci.Read(PciIo, EfiPciIoWidthUint8, 0x09, 3,
                                ClassCode))) {
    return EFI_SUCCESS;
  }
  const UINT8 ProgIf = ClassCode[0];
  const UINT8 SubClass = ClassCode[1];
  const UINT8 BaseClass = ClassCode[2];

  if (ProgIf != 0) {
    if (ProgIf != kProgIfAhci || SubClass != kSubClassSata ||
        BaseClass != kClassMassStorage) {
      return EFI_SUCCESS;
    }
  } else if (BaseClass != kClassMassStorage ||
             (SubClass != kSubClassRaid && SubClass != kSubClassSas)) {
    return EFI_SUCCESS;
  }

  PCI_BUS_DEVICE *Entry = uefi::AllocateRecord<PCI_BUS_DEVICE>();
  if (Entry == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  FillEntry(Entry, PciIo, Handle);

  if (ProgIf != 0) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]Pci bus(SATA): 0x%x, Dev: 0x%x, Func: 0x%x\n",
                      Entry->Bus, Entry->Device, Entry->Function);
    // Only Marvell's M.2 RAID adapters present themselves as AHCI.
    if (Entry->VendorId != kVendorMarvell) {
      FreePool(Entry);
    } else if (Entry->SubVendorId == kSystemSubVendorId) {
      InsertHeadList(List, &Entry->Link);
    } else {
      InsertTailList(List, &Entry->Link);
    }
    return EFI_SUCCESS;
  }

  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a]Pci bus(RAID): 0x%x, Dev: 0x%x, Func: 0x%x\n",
                    Entry->Bus, Entry->Device, Entry->Function);
  if (IsExcluded(Entry)) {
    FreePool(Entry);
  } else {
    InsertTailList(List, &Entry->Link);
  }
  return EFI_SUCCESS;
}

}  // namespace

// Lists every storage function that may be a supported adapter, in the order
// the firmware returns the PCI I/O handles (Marvell M.2 of the system maker
// first).
EFI_STATUS RaidLibScanPciBus(LIST_ENTRY *List, UINT32 *ErrorCode) {
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Start to scan pci bus:\n");
  UINTN HandleCount = 0;
  EFI_HANDLE *Handles = nullptr;
  EFI_STATUS Status = gBS->LocateHandleBuffer(
      ByProtocol, &gEfiPciIoProtocolGuid, nullptr, &HandleCount, &Handles);
  if (EFI_ERROR(Status) || Handles == nullptr) {
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return EFI_NOT_FOUND;
  }
  for (UINTN Index = 0; Index < HandleCount; Index++) {
    if (EFI_ERROR(ScanOneFunction(__func__, Handles[Index], List))) {
      FreePool(Handles);
      ReleasePciBusDeviceList(List);
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
      return EFI_OUT_OF_RESOURCES;
    }
  }
  FreePool(Handles);
  return EFI_SUCCESS;
}

// Frees every entry of a scan or ordered list.
VOID ReleasePciBusDeviceList(LIST_ENTRY *List) {
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  while (PCI_BUS_DEVICE *Entry = uefi::TakeFirst<&PCI_BUS_DEVICE::Link>(List)) {
    FreePool(Entry);
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] end\n");
}
