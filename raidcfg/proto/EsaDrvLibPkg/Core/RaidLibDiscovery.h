// Adapter discovery: storage functions on the PCI bus, their SMBIOS slots,
// the host's slot order, the adapter database pcidb.xml, and the driver
// reconnect after a configuration change.
#pragma once

#include <Protocol/Host/SlotInventory.h>
#include <Protocol/Host/TarnXml.h>
#include <Uefi.h>

#include "RaidLib.h"

// One storage function found on the bus; lives only during discovery.
typedef struct {
  LIST_ENTRY Link;
  UINT8 Bus;
  UINT8 Device;
  UINT8 Function;
  UINT16 VendorId;
  UINT16 DeviceId;
  UINT16 SubVendorId;
  UINT16 SubDeviceId;
  UINT16 SlotNumber;
  EFI_HANDLE PciIoHandle;
} PCI_BUS_DEVICE;

// One `storage` element of pcidb.xml, in file order.
typedef struct {
  LIST_ENTRY Link;
  CHAR16 *StorageId;
  UINT16 VendorId;
  UINT16 DeviceId;
  UINT16 SubVendorId;
  UINT16 SubDeviceId;
  CHAR16 *DevName;
} PCIDB_ENTRY;


// Lists the RAID, SAS and (Marvell) SATA AHCI functions into List.
[[nodiscard]] EFI_STATUS RaidLibScanPciBus(LIST_ENTRY *List, UINT32 *ErrorCode);
VOID ReleasePciBusDeviceList(LIST_ENTRY *List);

// The SMBIOS system-slot id of the first type 9 record on Bus, or
// RAID_SLOT_NUMBER_NONE.
[[nodiscard]] UINT16 RaidLibGetSmbiosSlotNumber(UINT8 Bus);

// The host's slot inventory, fetched once per discovery; Count 0 when the
// host has none.
VOID RaidLibGetSlotInventory(UINTN *Count, SLOT_INVENTORY_ENTRY **Table);

// Moves the devices of ScanList into Ordered: first those the inventory
// names, in inventory order, then the rest in scan order.
VOID RaidLibOrderBySlotInventory(LIST_ENTRY *ScanList, LIST_ENTRY *Ordered,
                                 const SLOT_INVENTORY_ENTRY *Table,
                                 UINTN Count);

// Parses a file at the root of the module's own volume. A missing file is
// not a failure.
[[nodiscard]] EFI_STATUS RaidLibParseXml(const CHAR16 *FileName,
                                         TARNXML_START_ELEMENT Start,
                                         TARNXML_END_ELEMENT End,
                                         UINT32 *ErrorCode);

// Forgets the parser protocol located by RaidLibParseXml (module unload).
VOID RaidLibResetXmlParser();

// Reads pcidb.xml into PcidbList.
[[nodiscard]] EFI_STATUS RaidLibReadPcidb(LIST_ENTRY *PcidbList,
                                          UINT32 *ErrorCode);
VOID ReleasePcidbList(LIST_ENTRY *List);

// Makes a controller for every ordered device that the database names and
// appends it to gControllerList; *Made counts them.
[[nodiscard]] EFI_STATUS RaidLibBuildControllers(LIST_ENTRY *Ordered,
                                                 LIST_ENTRY *PcidbList,
                                                 UINTN *Made,
                                                 UINT32 *ErrorCode);

// Reconnects the adapter's UEFI driver after its configuration changed.
[[nodiscard]] EFI_STATUS UpdateRaidControllerDeviceDriver(
    RAID_CONTROLLER *Controller);

