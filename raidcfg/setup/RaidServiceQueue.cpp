// The queue of planned volumes: RAID_VOLUME_PARAMETER records waiting for
// the creation page, linked through their Next field.
#include <Library/MemoryAllocationLib.h>

#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgTrace.h"

namespace {

constinit RAID_VOLUME_PARAMETER *gVolumeParameterQueue = nullptr;

}  // namespace

// Frees a parameter record with the three blocks it owns.
VOID FreeVolumeParameter(RAID_VOLUME_PARAMETER **Parameter) {
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] start\n");
  if (Parameter != nullptr && *Parameter != nullptr) {
    FreePool((*Parameter)->Name);
    FreePool((*Parameter)->DriveList);
    FreePool((*Parameter)->SpareList);
    FreePool(*Parameter);
    *Parameter = nullptr;
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
}

VOID RaidEnqueueVolumeParameter(RAID_VOLUME_PARAMETER *Parameter) {
  if (Parameter == nullptr) {
    return;
  }
  RAID_VOLUME_PARAMETER **Slot = &gVolumeParameterQueue;
  while (*Slot != nullptr) {
    if (*Slot == Parameter) {
      return;  // already queued: appending again would cut or loop the queue
    }
    Slot = &(*Slot)->Next;
  }
  Parameter->Next = nullptr;
  *Slot = Parameter;
}

VOID RaidDequeueVolumeParameter(RAID_VOLUME_PARAMETER *Parameter) {
  if (Parameter == nullptr) {
    return;
  }
  for (RAID_VOLUME_PARAMETER **Slot = &gVolumeParameterQueue; *Slot != nullptr;
       Slot = &(*Slot)->Next) {
    if (*Slot == Parameter) {
      *Slot = Parameter->Next;
      FreeVolumeParameter(&Parameter);
      return;
    }
  }
}

RAID_VOLUME_PARAMETER *RaidVolumeParameterQueue() {
  return gVolumeParameterQueue;
}

VOID RaidFreeVolumeParameterQueue() {
  while (gVolumeParameterQueue != nullptr) {
    RaidDequeueVolumeParameter(gVolumeParameterQueue);
  }
}
