// The physical slot of an adapter from the SMBIOS System Slots records.
#include <Library/BaseMemoryLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Smbios.h>

#include "RaidLibDiscovery.h"

namespace {

[[nodiscard]] const SMBIOS_TABLE_ENTRY_POINT *FindSmbiosEntryPoint() {
  if (gST == nullptr || gST->ConfigurationTable == nullptr) {
    return nullptr;
  }
  for (UINTN Index = 0; Index < gST->NumberOfTableEntries; Index++) {
    const EFI_CONFIGURATION_TABLE &Entry = gST->ConfigurationTable[Index];
    if (CompareGuid(Entry.VendorGuid, gEfiSmbiosTableGuid)) {
      return static_cast<const SMBIOS_TABLE_ENTRY_POINT *>(Entry.VendorTable);
    }
  }
  return nullptr;
}

// Length of a structure's string set: from the end of its formatted area to
// past the double NUL, bounded by the end of the table.
[[nodiscard]] UINTN StringSetLength(const UINT8 *Strings, const UINT8 *End) {
  const UINT8 *Cursor = Strings;
  while (Cursor + 1 < End) {
    if (Cursor[0] == 0 && Cursor[1] == 0) {
      return (UINTN)(Cursor + 2 - Strings);
    }
    Cursor++;
  }
  return (UINTN)(End - Strings);
}

[[nodiscard]] UINT16 ReadWord(const UINT8 *Bytes) {
  return (UINT16)(Bytes[0] | (Bytes[1] << 8));
}

}  // namespace

// The slot id of the first System Slots record whose bus number is Bus.
// Only the bus is compared, so every function of a multi-function adapter
// shares its slot.
UINT16 RaidLibGetSmbiosSlotNumber(UINT8 Bus) {
  const SMBIOS_TABLE_ENTRY_POINT *EntryPoint = FindSmbiosEntryPoint();
  if (EntryPoint == nullptr ||
      CompareMem(EntryPoint->AnchorString, "_SM_", 4) != 0 ||
      EntryPoint->TableAddress == 0) {
    return RAID_SLOT_NUMBER_NONE;
  }
  const UINT8 *Cursor = (const UINT8 *)(UINTN)EntryPoint->TableAddress;
  const UINT8 *End = Cursor + EntryPoint->TableLength;
  while (Cursor + sizeof(SMBIOS_STRUCTURE) <= End) {
    const UINT8 Type = Cursor[0];
    const UINT8 Length = Cursor[1];
    if (Type == SMBIOS_TYPE_END_OF_TABLE || Length < sizeof(SMBIOS_STRUCTURE) ||
        Cursor + Length > End) {
      break;
    }
    if (Type == SMBIOS_TYPE_SYSTEM_SLOTS &&
        Length > SMBIOS_TYPE9_BUS_OFFSET &&
        Cursor[SMBIOS_TYPE9_BUS_OFFSET] == Bus) {
      return ReadWord(Cursor + SMBIOS_TYPE9_SLOT_ID_OFFSET);
    }
    Cursor += Length;
    Cursor += StringSetLength(Cursor, End);
  }
  return RAID_SLOT_NUMBER_NONE;
}
