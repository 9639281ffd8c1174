// Collectors: turn the model's lists into arrays of record pointers (or
// copies) for the wizard's tables.
#include <Library/BaseMemoryLib.h>

#include "setup/RaidServiceLayer.h"

namespace {

// Fills Out with the records of a list, at most Max of them. The list heads
// are the model's own, so they are walked through a non-const view.
template <typename Record, LIST_ENTRY Record::*Link>
UINT32 CollectAll(const LIST_ENTRY &Head, Record **Out, UINT32 Max) {
  if (Out == nullptr || Head.ForwardLink == nullptr) {
    return 0;
  }
  UINT32 Count = 0;
  for (Record *Item : uefi::ListOf<Link>(const_cast<LIST_ENTRY &>(Head))) {
    if (Count >= Max) {
      break;
    }
    Out[Count++] = Item;
  }
  return Count;
}

// The segments of an array whose IsVolume equals WantVolume.
UINT32 CollectSegments(const RAID_ARRAY *Array, UINT8 WantVolume,
                       RAID_VOLUME **Out, UINT32 Max) {
  if (Array == nullptr || Out == nullptr ||
      Array->SegmentList.ForwardLink == nullptr) {
    return 0;
  }
  UINT32 Count = 0;
  for (RAID_VOLUME *Segment : uefi::ListOf<&RAID_VOLUME::Link>(
           const_cast<LIST_ENTRY &>(Array->SegmentList))) {
    if (Count >= Max) {
      break;
    }
    if ((Segment->IsVolume != 0) == (WantVolume != 0)) {
      Out[Count++] = Segment;
    }
  }
  return Count;
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
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->ReadPolicyList, Out, Max);
}

UINT32 RaidCollectWritePolicies(const RAID_CAPABILITY *Capability,
                                RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->WritePolicyList, Out, Max);
}

UINT32 RaidCollectIoPolicies(const RAID_CAPABILITY *Capability,
                             RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->IoPolicyList, Out, Max);
}

UINT32 RaidCollectDiskCachePolicies(const RAID_CAPABILITY *Capability,
                                    RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->DiskCachePolicyList, Out, Max);
}

UINT32 RaidCollectStripeSizes(const RAID_CAPABILITY *Capability,
                              RAID_POLICY_ENTRY **Out, UINT32 Max) {
  return Capability == nullptr
             ? 0
             : CollectAll<RAID_POLICY_ENTRY, &RAID_POLICY_ENTRY::Link>(
                   Capability->StripeSizeList, Out, Max);
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
  if (Array == nullptr || Out == nullptr ||
      Array->DriveList.ForwardLink == nullptr) {
    return 0;
  }
  UINT32 Count = 0;
  for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
           const_cast<LIST_ENTRY &>(Array->DriveList))) {
    if (Count >= Max) {
      break;
    }
    CopyMem(&Out[Count++], Drive, sizeof(*Drive));
  }
  return Count;
}

UINT32 RaidCollectVolumes(const RAID_ARRAY *Array, RAID_VOLUME **Out,
                          UINT32 Max) {
  return CollectSegments(Array, 1, Out, Max);
}

UINT32 RaidCollectFreeSegments(const RAID_ARRAY *Array, RAID_VOLUME **Out,
                               UINT32 Max) {
  return CollectSegments(Array, 0, Out, Max);
}
