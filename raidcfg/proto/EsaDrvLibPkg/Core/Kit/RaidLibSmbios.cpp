// Walking the SMBIOS 2.x structure table, every read bounded by the table.
#include "RaidLibSmbios.h"

#include <Library/BaseMemoryLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Smbios.h>

namespace {

[[nodiscard]] const SMBIOS_TABLE_ENTRY_POINT *FindEntryPoint() {
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

}  // namespace

BOOLEAN RaidLibSmbiosStart(RAID_SMBIOS_WALK *Walk) {
  Walk->Next = nullptr;
  Walk->End = nullptr;
  const SMBIOS_TABLE_ENTRY_POINT *EntryPoint = FindEntryPoint();
  if (EntryPoint == nullptr ||
      CompareMem(EntryPoint->AnchorString, "_SM_", 4) != 0 ||
      EntryPoint->TableAddress == 0) {
    return FALSE;
  }
  Walk->Next = (const UINT8 *)(UINTN)EntryPoint->TableAddress;
  Walk->End = Walk->Next + EntryPoint->TableLength;
  return TRUE;
}

const UINT8 *RaidLibSmbiosNext(RAID_SMBIOS_WALK *Walk) {
  const UINT8 *Cursor = Walk->Next;
  if (Cursor == nullptr || Cursor + sizeof(SMBIOS_STRUCTURE) > Walk->End) {
    return nullptr;
  }
  const UINT8 Type = Cursor[0];
  const UINT8 Length = Cursor[1];
  if (Type == SMBIOS_TYPE_END_OF_TABLE || Length < sizeof(SMBIOS_STRUCTURE) ||
      Cursor + Length > Walk->End) {
    Walk->Next = nullptr;
    return nullptr;
  }
  Walk->Next = Cursor + Length + StringSetLength(Cursor + Length, Walk->End);
  return Cursor;
}

const CHAR8 *RaidLibSmbiosString(const RAID_SMBIOS_WALK *Walk,
                                 const UINT8 *Structure, UINT8 Number) {
  if (Structure == nullptr || Number == 0) {
    return nullptr;
  }
  const UINT8 *Cursor = Structure + Structure[1];
  for (UINT8 Index = 1; Cursor < Walk->End; Index++) {
    const UINT8 *Start = Cursor;
    while (Cursor < Walk->End && *Cursor != 0) {
      Cursor++;
    }
    if (Cursor >= Walk->End || Start == Cursor) {
      return nullptr;  // past the table, or the set's closing NUL
    }
    if (Index == Number) {
      return (const CHAR8 *)Start;
    }
    Cursor++;
  }
  return nullptr;
}
