// The physical slot of an adapter from the SMBIOS System Slots records.
#include <Protocol/Smbios.h>

#include "RaidLibDiscovery.h"
#include "RaidLibSmbios.h"

namespace {

[[nodiscard]] UINT16 ReadWord(const UINT8 *Bytes) {
  return (UINT16)(Bytes[0] | (Bytes[1] << 8));
}

}  // namespace

// The slot id of the first System Slots record whose bus number is Bus.
// Only the bus is compared, so every function of a multi-function adapter
// shares its slot.
UINT16 RaidLibGetSmbiosSlotNumber(UINT8 Bus) {
  RAID_SMBIOS_WALK Walk;
  if (!RaidLibSmbiosStart(&Walk)) {
    return RAID_SLOT_NUMBER_NONE;
  }
  for (const UINT8 *Record = RaidLibSmbiosNext(&Walk); Record != nullptr;
       Record = RaidLibSmbiosNext(&Walk)) {
    if (Record[0] == SMBIOS_TYPE_SYSTEM_SLOTS &&
        Record[1] > SMBIOS_TYPE9_BUS_OFFSET &&
        Record[SMBIOS_TYPE9_BUS_OFFSET] == Bus) {
      return ReadWord(Record + SMBIOS_TYPE9_SLOT_ID_OFFSET);
    }
  }
  return RAID_SLOT_NUMBER_NONE;
}
