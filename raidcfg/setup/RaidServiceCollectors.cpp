// Collectors: turn the model's lists into arrays of record pointers (or
// copies) for the wizard's tables.
#include <Library/BaseMemoryLib.h>

#include "setup/RaidServiceLayer.h"

namespace {

// Walks the records of a list, handing each to Take until Max were taken;
// Take(Record, Index) returns whether it took the record. The list heads
// are the model's own, so they are walked through a non-const view.
template <typename Record, LIST_ENTRY Record::*Link, typename Taker>
[[nodiscard]] UINT32 CollectFrom(const LIST_ENTRY &Head, UINT32 Max,
                                 Taker Take) {
  if (!IsListLive(&Head)) {
    return 0;
  }
  UINT32 Count = 0;
  for (Record *Item : uefi::ListOf<Link>(const_cast<LIST_ENTRY &>(Head))) {
    if (Count >= Max) {
      break;
    }
    if (Take(Item, Count)) {
      Count++;
    }
  }
  return Count;
}

// Fills Out with the records of a list, at most Max of them.
template <typename Record, LIST_ENTRY Record::*Link>
[[nodiscard]] UINT32 CollectAll(const LIST_ENTRY &Head, Record **Out,
                                UINT32 Max) {
  if (Out == nullptr) {
    return 0;
  }
  return CollectFrom<Record, Link>(Head, Max, [Out](Record *Item, UINT32 At) {
    Out[At] = Item;
    return true;
  });
}

// The segments of an array whose IsVolume equals WantVolume.
[[nodiscard]] UINT32 CollectSegments(const RAID_ARRAY *Array, UINT8 WantVolume,
                                     RAID_VOLUME **Out, UINT32 Max) {
  if (Array == nullptr || Out == nullptr) {
    return 0;
  }
  return CollectFrom<RAID_VOLUME, &RAID_VOLUME::Link>(
      Array->SegmentList, Max, [Out, WantVolume](RAID_VOLUME *Segment,
                                                 UINT32 At) {
        if ((Segment->IsVolume != 0) != (WantVolume != 0)) {
          return false;
        }
        Out[At] = Segment;
        return true;
      });
}

// One of the capability's policy lists (List names it).
[[nodiscard]] UINT32 CollectPolicies(const RAID_CAPABILITY *Capability,
                                     LIST_ENTRY RAID_CAPABILITY::*List,
                                     RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->*List, Out, Max);
}

}  // namespace

UINT32 RaidCollectLevels(const RAID_CAPABILITY *Capability,
                         RAID_LEVEL_CAP **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_LEVEL_CAP, &RAID_LEVEL_CAP::Link>(
                   Capability->LevelList, Out, Max);
}

UINT32 RaidCollectReadPolicies(const RAID_CAPABILITY *Capability,
                               RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return CollectPolicies(Capability, &RAID_CAPABILITY::ReadPolicyList, Out,
                         Max);
}

UINT32 RaidCollectWritePolicies(const RAID_CAPABILITY *Capability,
                                RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return CollectPolicies(Capability, &RAID_CAPABILITY::WritePolicyList, Out,
                         Max);
}

UINT32 RaidCollectIoPolicies(const RAID_CAPABILITY *Capability,
                             RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return CollectPolicies(Capability, &RAID_CAPABILITY::IoPolicyList, Out, Max);
}

UINT32 RaidCollectDiskCachePolicies(const RAID_CAPABILITY *Capability,
                                    RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return CollectPolicies(Capability, &RAID_CAPABILITY::DiskCachePolicyList,
                         Out, Max);
}

UINT32 RaidCollectStripeSizes(const RAID_CAPABILITY *Capability,
                              RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return CollectPolicies(Capability, &RAID_CAPABILITY::StripeSizeList, Out,
                         Max);
}

UINT32 RaidCollectArrays(const RAID_CONTROLLER *Controller, RAID_ARRAY **Out,
                         UINT32 Max) {
  return Controller == nullptr ? 0
                               : CollectAll<RAID_ARRAY, &RAID_ARRAY::Link>(
                                     Controller->ArrayList, Out, Max);
}

UINT32 RaidCollectArrayDrives(const RAID_ARRAY *Array,
                              RAID_PHYSICAL_DRIVE **Out, UINT32 Max) {
  return Array == nullptr
             ? 0
             : CollectAll<RAID_PHYSICAL_DRIVE, &RAID_PHYSICAL_DRIVE::Link>(
                   Array->DriveList, Out, Max);
}

UINT32 RaidCopyArrayDrives(const RAID_ARRAY *Array, RAID_PHYSICAL_DRIVE *Out,
                           UINT32 Max) {
  if (Array == nullptr || Out == nullptr) {
    return 0;
  }
  return CollectFrom<RAID_PHYSICAL_DRIVE, &RAID_PHYSICAL_DRIVE::Link>(
      Array->DriveList, Max, [Out](RAID_PHYSICAL_DRIVE *Drive, UINT32 At) {
        CopyMem(&Out[At], Drive, sizeof(*Drive));
        return true;
      });
}

UINT32 RaidCollectVolumes(const RAID_ARRAY *Array, RAID_VOLUME **Out,
                          UINT32 Max) {
  return CollectSegments(Array, 1, Out, Max);
}

UINT32 RaidCollectFreeSegments(const RAID_ARRAY *Array, RAID_VOLUME **Out,
                               UINT32 Max) {
  return CollectSegments(Array, 0, Out, Max);
}
