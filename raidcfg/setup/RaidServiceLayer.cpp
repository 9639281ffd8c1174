// The service layer's operations: each wraps one call of the RAID core for
// the wizard, resolving the records from the ids the pages hold, and traces
// what it did.
#include "setup/RaidServiceLayer.h"

#include "EsaDrvMgr.h"
#include "setup/RaidcfgTrace.h"

constinit RAID_CONTROLLER *gCurrentRaidController = nullptr;

namespace {

// The first record of the list at Head that Match accepts, or NULL.
template <typename Record, LIST_ENTRY Record::*Link, typename Matcher>
[[nodiscard]] Record *FindInList(LIST_ENTRY *Head, Matcher Match) {
  if (Head == nullptr || !IsListLive(Head)) {
    return nullptr;
  }
  for (Record *Item : uefi::ListOf<Link>(*Head)) {
    if (Match(Item)) {
      return Item;
    }
  }
  return nullptr;
}

// The controller with Id in the list at Head, or NULL.
[[nodiscard]] RAID_CONTROLLER *FindControllerInList(LIST_ENTRY *Head,
                                                    UINT32 Id) {
  return FindInList<RAID_CONTROLLER, &RAID_CONTROLLER::Link>(
      Head, [Id](RAID_CONTROLLER *Controller) { return Controller->Id == Id; });
}

// The current controller's array with Id, or NULL.
[[nodiscard]] RAID_ARRAY *FindCurrentArray(UINT32 ArrayId) {
  if (gCurrentRaidController == nullptr) {
    return nullptr;
  }
  return FindInList<RAID_ARRAY, &RAID_ARRAY::Link>(
      &gCurrentRaidController->ArrayList,
      [ArrayId](RAID_ARRAY *Array) { return Array->Id == ArrayId; });
}

// The first volume (not free segment) of Array with Id, or NULL.
[[nodiscard]] RAID_VOLUME *FindVolume(RAID_ARRAY *Array, UINT32 VolumeId) {
  return FindInList<RAID_VOLUME, &RAID_VOLUME::Link>(
      &Array->SegmentList, [VolumeId](RAID_VOLUME *Segment) {
        return Segment->IsVolume == 1 && Segment->Id == VolumeId;
      });
}

// A core operation that reads a controller's information.
using ControllerInfoReader = EFI_STATUS (*)(RAID_CONTROLLER *,
                                            RAID_CONTROLLER **, UINT32 *);

// Runs Read on the controller with Id in the list at Head (nothing when
// there is none) and traces its status under the name of the service
// function Caller.
[[nodiscard]] EFI_STATUS ReadControllerInfo(const CHAR8 *Caller,
                                            ControllerInfoReader Read,
                                            LIST_ENTRY *Head, UINT32 Id,
                                            RAID_CONTROLLER **Controller,
                                            UINT32 *ErrorCode) {
  RAID_CONTROLLER *Found = FindControllerInList(Head, Id);
  if (Found == nullptr) {
    return EFI_SUCCESS;
  }
  EFI_STATUS Status = Read(Found, Controller, ErrorCode);
  RAID_TRACE_AS(Caller, TARN_DEBUG_INFO, "RAID: [%a] Status = %r\n", Status);
  return Status;
}

}  // namespace

// Releases a model an earlier run left (a failed discovery can leave
// controllers behind: InitializeRaid would otherwise drop them unfreed), then
// runs discovery.
EFI_STATUS InitializeRaidService(UINT32 *ErrorCode) {
  if (IsListLive(&gControllerList) && !IsListEmpty(&gControllerList)) {
    UINT32 ReleaseCode = 0;
    FinalizeRaid(&ReleaseCode);
  }
  return InitializeRaid(ErrorCode);
}

UINT32 GetRaidControllerList(LIST_ENTRY **Head) {
  if (Head != nullptr) {
    *Head = &gControllerList;
  }
  if (!IsListLive(&gControllerList)) {
    return 0;
  }
  return static_cast<UINT32>(CountListEntries(&gControllerList));
}

RAID_LEVEL_CAP *GetControllerRaidLeveCapPointer(UINT32 Level) {
  if (gCurrentRaidController != nullptr &&
      gCurrentRaidController->Capability != nullptr) {
    RAID_LEVEL_CAP *Cap = FindInList<RAID_LEVEL_CAP, &RAID_LEVEL_CAP::Link>(
        &gCurrentRaidController->Capability->LevelList,
        [Level](RAID_LEVEL_CAP *Entry) { return Entry->Level == Level; });
    if (Cap != nullptr) {
      return Cap;
    }
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Cannot find the RAID level %d\n",
             Level);
  return nullptr;
}

EFI_STATUS GetRaidControllerInfo(LIST_ENTRY *Head, UINT32 Id,
                                 RAID_CONTROLLER **Controller,
                                 UINT32 *ErrorCode) {
  return ReadControllerInfo(__func__, GetControllerInfo, Head, Id, Controller,
                            ErrorCode);
}

EFI_STATUS RefreshRaidControllerInfo(LIST_ENTRY *Head, UINT32 Id,
                                     RAID_CONTROLLER **Controller,
                                     UINT32 *ErrorCode) {
  return ReadControllerInfo(__func__, RefreshControllerInfo, Head, Id,
                            Controller, ErrorCode);
}

RAID_PHYSICAL_DRIVE *RaidDriveAtIndex(RAID_CONTROLLER *Controller,
                                      UINT32 DriveIndex) {
  if (Controller == nullptr || Controller->DriveTable == nullptr ||
      DriveIndex >= Controller->DiskDriveCount) {
    return nullptr;
  }
  return Controller->DriveTable[DriveIndex];
}

// An index beyond the table reaches the core as a missing drive, which it
// refuses. A backend may read the adapter again after the change, so the
// drive is looked up afresh for the state it reports.
EFI_STATUS SetRaidPhysicalDriveState(UINT32 DriveIndex, UINT32 Unused,
                                     UINT32 State, UINT32 *ErrorCode) {
  (void)Unused;
  RAID_CONTROLLER *Controller = gCurrentRaidController;
  EFI_STATUS Status = SetPhysicalDriveState(
      Controller, RaidDriveAtIndex(Controller, DriveIndex), State, ErrorCode);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Status = %r\n", Status);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Errorcode = %x\n", *ErrorCode);
  const RAID_PHYSICAL_DRIVE *Drive = RaidDriveAtIndex(Controller, DriveIndex);
  if (Drive != nullptr) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Disk drive state = %d\n",
               Drive->State);
  }
  return Status;
}

EFI_STATUS SetAllRaidPhysicalDriveState(LIST_ENTRY *Head, UINT32 Id,
                                        UINT32 State, UINT32 *ErrorCode) {
  if (Head == nullptr || !IsListLive(Head)) {
    return EFI_SUCCESS;
  }
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(*Head)) {
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Controller index = %d\n", Id);
    if (Controller->Id != Id) {
      continue;
    }
    EFI_STATUS Status = SetAllPhysicalDriveState(Controller, State, ErrorCode);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Status = %r\n", Status);
    RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Errorcode = %x\n", *ErrorCode);
    return Status;
  }
  return EFI_SUCCESS;
}

EFI_STATUS DeleteRaidArray(UINT32 ArrayId, UINT32 Unused, UINT32 *ErrorCode) {
  (void)Unused;
  RAID_ARRAY *Array = FindCurrentArray(ArrayId);
  if (Array == nullptr) {
    return EFI_SUCCESS;
  }
  return DeleteArray(Array, ErrorCode);
}

EFI_STATUS DeleteRaidVolume(UINT32 ArrayId, UINT32 Unused, UINT32 VolumeId,
                            UINT32 *ErrorCode) {
  (void)Unused;
  EFI_STATUS Status = EFI_SUCCESS;
  RAID_ARRAY *Array = FindCurrentArray(ArrayId);
  RAID_VOLUME *Volume = Array == nullptr ? nullptr : FindVolume(Array, VolumeId);
  if (Volume != nullptr) {
    Status = DeleteVolume(Volume, ErrorCode);
  }
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] end\n");
  return Status;
}

EFI_STATUS CreateRaidVolume(RAID_VOLUME_PARAMETER *Parameter,
                            UINTN PassThrough, UINT32 *ErrorCode) {
  return CreateVolume(Parameter, PassThrough, ErrorCode);
}

UINT32 GetVolumeCount(const RAID_CONTROLLER *Controller) {
  RAID_ARRAY *Arrays[RAID_SERVICE_MAX_ARRAYS];
  UINT32 ArrayCount =
      RaidCollectArrays(Controller, Arrays, RAID_SERVICE_MAX_ARRAYS);
  RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Array count is %d\n", ArrayCount);
  UINT32 Volumes = 0;
  for (UINT32 Index = 0; Index < ArrayCount; Index++) {
    Volumes += Arrays[Index]->VolumeCount;
  }
  return Volumes;
}
