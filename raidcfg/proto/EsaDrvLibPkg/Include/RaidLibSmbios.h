// A bounded walk over the SMBIOS 2.x structure table the firmware publishes
// in the system configuration table: the slot records of discovery and the
// BIOS record a backend names its firmware by.
#pragma once

#include <Uefi.h>

typedef struct {
  const UINT8 *Next;  // the next structure's first byte
  const UINT8 *End;   // one past the table
} RAID_SMBIOS_WALK;

// Starts a walk over the table of the "_SM_" entry point; FALSE when there
// is no table, the anchor is another or the table address is 0.
[[nodiscard]] BOOLEAN RaidLibSmbiosStart(RAID_SMBIOS_WALK *Walk);
// The next structure (its formatted area holds at least its Length bytes
// inside the table), or NULL at the end-of-table record, a structure that
// does not fit, or the table's end.
[[nodiscard]] const UINT8 *RaidLibSmbiosNext(RAID_SMBIOS_WALK *Walk);
// String number Number (from 1) of Structure's string set as a NUL-
// terminated text inside the table; NULL for 0, a missing string or one
// that runs past the table's end.
[[nodiscard]] const CHAR8 *RaidLibSmbiosString(const RAID_SMBIOS_WALK *Walk,
                                               const UINT8 *Structure,
                                               UINT8 Number);
