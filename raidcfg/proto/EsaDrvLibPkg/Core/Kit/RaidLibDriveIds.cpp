// Device ids that name one drive each. The wizard hands a create the ids of
// the drives the operator ticked, and a backend finds the drives by id, so
// an id two drives carry would take the unticked one as well.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLib.h"
#include "RaidLibModelBuild.h"
#include "RaidLibTrace.h"

namespace {

[[nodiscard]] bool InList(LIST_ENTRY *List, const RAID_PHYSICAL_DRIVE *Drive) {
  for (RAID_PHYSICAL_DRIVE *Listed :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
    if (Listed == Drive) {
      return true;
    }
  }
  return false;
}

// Takes the drive off the count of the list it sits in, unlinks and frees
// it.
VOID Drop(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive) {
  if (Drive->Owner == Controller) {
    UINT32 &Count = InList(&Controller->SpareDriveList, Drive)
                        ? Controller->GlobalSpareCount
                        : Controller->UnconfiguredDriveCount;
    Count = Count > 0 ? Count - 1 : 0;
  } else if (Drive->Owner != nullptr) {
    RAID_ARRAY *Array = static_cast<RAID_ARRAY *>(Drive->Owner);
    UINT32 &Count = Drive->Role == RAID_ROLE_HOT_SPARE
                        ? Array->DedicatedSpareCount
                        : Array->MemberDriveCount;
    Count = Count > 0 ? Count - 1 : 0;
  }
  // A drive of no list is the table's alone.
  if (!RaidLibInNoList(Drive)) {
    RemoveEntryList(&Drive->Link);
  }
  RaidLibFreePhysicalDrive(Drive);
}

constexpr const CHAR8 *kRepeatedId =
    "[%a]Drive %S: device id %u is listed for another drive too; drive left "
    "out\n";
constexpr const CHAR8 *kEndMarkId =
    "[%a]Drive %S: device id %u is the end mark of a drive id list; drive "
    "left out\n";

// Traces why the drive in *Entry goes, under Caller's name, drops it and
// empties the entry.
VOID LeaveOut(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
              RAID_PHYSICAL_DRIVE **Entry, const CHAR8 *Why) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR, Why, (*Entry)->Location,
                    (*Entry)->Id);
  Drop(Controller, *Entry);
  *Entry = nullptr;
}

// TRUE when the ids rise strictly from entry to entry: then no id repeats,
// which is how the tools list their drives, and one pass tells.
[[nodiscard]] bool IdsRise(RAID_PHYSICAL_DRIVE *const *Table, UINT32 Count) {
  for (UINT32 Index = 1; Index < Count; Index++) {
    if (Table[Index - 1] == nullptr || Table[Index] == nullptr ||
        Table[Index - 1]->Id >= Table[Index]->Id) {
      return false;
    }
  }
  return true;
}

}  // namespace

VOID RaidLibLeaveOutAmbiguousDrives(RAID_CONTROLLER *Controller) {
  RAID_PHYSICAL_DRIVE **Table = Controller->DriveTable;
  if (Table == nullptr) {
    return;
  }
  UINT32 Count = Controller->DiskDriveCount;
  const bool Unique = IdsRise(Table, Count);
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Table[Index] == nullptr) {
      continue;  // left out with an earlier drive of its id
    }
    const UINT32 Id = Table[Index]->Id;
    bool Repeated = false;
    for (UINT32 Later = Index + 1; !Unique && Later < Count; Later++) {
      if (Table[Later] != nullptr && Table[Later]->Id == Id) {
        LeaveOut(__func__, Controller, &Table[Later], kRepeatedId);
        Repeated = true;
      }
    }
    if (Repeated) {
      LeaveOut(__func__, Controller, &Table[Index], kRepeatedId);
    } else if (Id == RAID_DRIVE_LIST_END) {
      LeaveOut(__func__, Controller, &Table[Index], kEndMarkId);
    }
  }
  UINT32 Kept = 0;
  for (UINT32 Index = 0; Index < Count; Index++) {
    if (Table[Index] != nullptr) {
      Table[Kept++] = Table[Index];
    }
  }
  for (UINT32 Index = Kept; Index < Count; Index++) {
    Table[Index] = nullptr;
  }
  Controller->DiskDriveCount = Kept;
}

UINT32 RaidLibCountDrivesWithId(LIST_ENTRY *List, UINT32 Id) {
  UINT32 Found = 0;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
    Found += Drive->Id == Id ? 1 : 0;
  }
  return Found;
}
