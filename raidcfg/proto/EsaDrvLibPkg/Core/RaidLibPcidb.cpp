// The adapter database pcidb.xml: which PCI functions are supported
// adapters, their names and the profile (raid.xml) each one uses.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLibDiscovery.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace {

// Where the start-element callback files its entries while the file is read.
constinit LIST_ENTRY *gPcidbTarget = nullptr;
constinit BOOLEAN gPcidbOutOfResources = FALSE;

// The attributes of a `storage` element are taken by position: each only
// when the attribute at its place has the expected name and a value.
constexpr const CHAR16 *kStorageAttributes[] = {
    u"id", u"vendorid", u"deviceid", u"subvendor", u"subdevice", u"devname"};

[[nodiscard]] bool AttributeAt(const CHAR16 **Attributes, UINTN Position,
                               const CHAR16 **Value) {
  // The list ends at a NULL name; a NULL value ends it too, so that a list
  // cut after a name is never read past.
  for (UINTN Index = 0; Index <= Position; Index++) {
    if (Attributes[2 * Index] == nullptr ||
        (Index < Position && Attributes[2 * Index + 1] == nullptr)) {
      return false;
    }
  }
  const CHAR16 *Name = Attributes[2 * Position];
  const CHAR16 *Text = Attributes[2 * Position + 1];
  if (Text == nullptr || StrCmp(Name, kStorageAttributes[Position]) != 0) {
    return false;
  }
  *Value = Text;
  return true;
}

VOID FillEntry(PCIDB_ENTRY *Entry, const CHAR16 **Attributes) {
  const CHAR16 *Value = nullptr;
  if (AttributeAt(Attributes, 0, &Value) &&
      !RaidLibCopyText(Value, &Entry->StorageId)) {
    gPcidbOutOfResources = TRUE;
  }
  if (AttributeAt(Attributes, 1, &Value)) {
    Entry->VendorId = (UINT16)RaidLibReadHex(Value);
  }
  if (AttributeAt(Attributes, 2, &Value)) {
    Entry->DeviceId = (UINT16)RaidLibReadHex(Value);
  }
  if (AttributeAt(Attributes, 3, &Value)) {
    Entry->SubVendorId = (UINT16)RaidLibReadHex(Value);
  }
  if (AttributeAt(Attributes, 4, &Value)) {
    Entry->SubDeviceId = (UINT16)RaidLibReadHex(Value);
  }
  if (AttributeAt(Attributes, 5, &Value) &&
      !RaidLibCopyText(Value, &Entry->DevName)) {
    gPcidbOutOfResources = TRUE;
  }
}

VOID EFIAPI PcidbStartElement(VOID *UserData, const CHAR16 *Name,
                              const CHAR16 **Attributes) {
  if (gPcidbTarget == nullptr || Name == nullptr || Attributes == nullptr ||
      StrCmp(Name, u"storage") != 0 || Attributes[0] == nullptr) {
    return;
  }
  PCIDB_ENTRY *Entry = uefi::AllocateRecord<PCIDB_ENTRY>();
  if (Entry == nullptr) {
    gPcidbOutOfResources = TRUE;
    return;
  }
  FillEntry(Entry, Attributes);
  InsertTailList(gPcidbTarget, &Entry->Link);
}

VOID EFIAPI PcidbEndElement(VOID *UserData, const CHAR16 *Name) {}

}  // namespace

// Reads the database from the module's volume into PcidbList. A missing
// file leaves the list empty.
EFI_STATUS RaidLibReadPcidb(LIST_ENTRY *PcidbList, UINT32 *ErrorCode) {
  gPcidbTarget = PcidbList;
  gPcidbOutOfResources = FALSE;
  EFI_STATUS Status = RaidLibParseXml(u"pcidb.xml", PcidbStartElement,
                                      PcidbEndElement, ErrorCode);
  gPcidbTarget = nullptr;
  if (!EFI_ERROR(Status) && gPcidbOutOfResources) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  return Status;
}

// Frees the database entries and their two strings.
VOID ReleasePcidbList(LIST_ENTRY *List) {
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  while (PCIDB_ENTRY *Entry = uefi::TakeFirst<&PCIDB_ENTRY::Link>(List)) {
    FreePool(Entry->StorageId);
    FreePool(Entry->DevName);
    FreePool(Entry);
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Done\n");
}
