// Releasing the RAID model: drives, segments, arrays, capabilities and whole
// controllers. Records may be partly built (discovery or a parse that ran
// out of memory), so NULL fields and never-initialised list heads are fine.
#include <Library/MemoryAllocationLib.h>

#include "RaidLib.h"
#include "RaidLibModelBuild.h"
#include "RaidLibTrace.h"

namespace {

// Frees the string and clears the pointer, so a second release is harmless.
template <typename T>
VOID FreeField(T *&Field) {
  FreePool(Field);
  Field = nullptr;
}

VOID FreeLevelList(LIST_ENTRY *Head) {
  while (RAID_LEVEL_CAP *Level = uefi::TakeFirst<&RAID_LEVEL_CAP::Link>(Head)) {
    FreePool(Level->Name);
    FreePool(Level);
  }
}

VOID FreePolicyList(LIST_ENTRY *Head) {
  while (RAID_POLICY_ENTRY *Entry =
             uefi::TakeFirst<&RAID_POLICY_ENTRY::Link>(Head)) {
    FreePool(Entry->Name);
    FreePool(Entry);
  }
}

VOID FreeSegmentList(LIST_ENTRY *Head) {
  while (RAID_VOLUME *Segment = uefi::TakeFirst<&RAID_VOLUME::Link>(Head)) {
    RaidLibFreeSegment(Segment);
  }
}

// One array's Name, drives, segments, Extra and the record.
VOID FreeArray(RAID_ARRAY *Array) {
  RaidLibFreeDriveList(&Array->DriveList);
  FreeSegmentList(&Array->SegmentList);
  if (!RaidLibExtraInRecord(Array)) {
    FreePool(Array->Extra);
  }
  if (!RaidLibNameInRecord(Array)) {
    FreePool(Array->Name);
  }
  FreePool(Array);
}

}  // namespace

// Frees a drive with its strings and position.
VOID RaidLibFreePhysicalDrive(RAID_PHYSICAL_DRIVE *Drive) {
  if (Drive == nullptr) {
    return;
  }
  // Parts made in the drive's own block go with it.
  VOID *const Parts[] = {Drive->Model, Drive->Position, Drive->Location};
  for (VOID *Part : Parts) {
    if (!RaidLibInDriveBlock(Drive, Part)) {
      FreePool(Part);
    }
  }
  FreePool(Drive);
}

// Frees the drives the table alone holds. The table is emptied (its count
// 0, its first entry NULL): it is about to be freed or replaced.
VOID RaidLibFreeTableOnlyDrives(RAID_CONTROLLER *Controller) {
  RAID_PHYSICAL_DRIVE **Table = Controller->DriveTable;
  if (Table == nullptr) {
    return;
  }
  for (UINTN Index = 0; Table[Index] != nullptr; Index++) {
    if (RaidLibInNoList(Table[Index])) {
      RaidLibFreePhysicalDrive(Table[Index]);
    }
  }
  Table[0] = nullptr;
  Controller->DiskDriveCount = 0;
}

// Frees every drive of a list and leaves the list empty.
VOID RaidLibFreeDriveList(LIST_ENTRY *DriveList) {
  while (RAID_PHYSICAL_DRIVE *Drive =
             uefi::TakeFirst<&RAID_PHYSICAL_DRIVE::Link>(DriveList)) {
    RaidLibFreePhysicalDrive(Drive);
  }
}

// Frees a volume or free segment with its Name and Extra.
VOID RaidLibFreeSegment(RAID_VOLUME *Segment) {
  if (Segment == nullptr) {
    return;
  }
  if (!RaidLibExtraInRecord(Segment)) {
    FreePool(Segment->Extra);
  }
  if (!RaidLibNameInRecord(Segment)) {
    FreePool(Segment->Name);
  }
  FreePool(Segment);
}

// Frees every array of a list with all it owns and leaves the list empty.
VOID RaidLibFreeArrayLink(LIST_ENTRY *ArrayList) {
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  while (RAID_ARRAY *Array = uefi::TakeFirst<&RAID_ARRAY::Link>(ArrayList)) {
    FreeArray(Array);
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] end\n");
}

// Frees a capability record with its six lists and two strings.
VOID RaidLibFreeCapability(RAID_CAPABILITY *Capability) {
  if (Capability == nullptr) {
    return;
  }
  FreePool(Capability->ControllerName);
  FreeLevelList(&Capability->LevelList);
  FreePolicyList(&Capability->ReadPolicyList);
  FreePolicyList(&Capability->WritePolicyList);
  FreePolicyList(&Capability->IoPolicyList);
  FreePolicyList(&Capability->DiskCachePolicyList);
  FreePolicyList(&Capability->StripeSizeList);
  FreePool(Capability->ToolName);
  FreePool(Capability);
}

// Frees a controller and everything it owns, in the order of FinalizeRaid.
// StorageId is the private record's own copy and goes with it as well.
VOID RaidLibFreeController(RAID_CONTROLLER *Controller) {
  if (Controller == nullptr) {
    return;
  }
  // Zeroed links: the record was never linked into the controller list.
  if (IsListLive(&Controller->Link)) {
    RemoveEntryList(&Controller->Link);
  }
  FreeField(Controller->Name);
  FreeField(Controller->FirmwareVersion);
  FreeField(Controller->SerialNumber);
  RaidLibFreeTableOnlyDrives(Controller);
  FreeField(Controller->DriveTable);
  RaidLibFreeCapability(Controller->Capability);
  Controller->Capability = nullptr;
  RaidLibFreeDriveList(&Controller->PhysicalDriveList);
  RaidLibFreeDriveList(&Controller->SpareDriveList);
  RaidLibFreeArrayLink(&Controller->ArrayList);
  if (RAID_CONTROLLER_PRIVATE *Private = Controller->Private) {
    FreePool(Private->ProductName);
    FreePool(Private->AuxString);
    FreePool(Private->StorageId);
    FreePool(Private);
  }
  FreePool(Controller);
}
