// Building a controller's records for any backend.
#include "RaidLibModelBuild.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/DebugLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLibRow.h"
#include "RaidLibText.h"

namespace {

// A pool copy of a numbered name ("Array3", "FreeCapacity0").
[[nodiscard]] CHAR16 *NewNumberedName(const CHAR16 *Prefix, UINT32 Number) {
  CHAR16 Name[32];
  RaidLibNumberedText(Name, 32, Prefix, Number);
  return AllocDestStr(Name);
}

// A zeroed record of type T with ExtraSize zeroed bytes behind it as its
// Extra: one pool block (RaidLibExtraInRecord), or NULL.
template <typename T>
[[nodiscard]] T *NewRecordWithExtra(UINTN ExtraSize) {
  if (ExtraSize > ~static_cast<UINTN>(0) - sizeof(T)) {
    return nullptr;
  }
  auto *Record = static_cast<T *>(AllocateZeroPool(sizeof(T) + ExtraSize));
  if (Record != nullptr) {
    Record->Extra = reinterpret_cast<UINT8 *>(Record) + sizeof(T);
  }
  return Record;
}

// The list a placed drive sits in, and the count that counts it there.
[[nodiscard]] UINT32 *CountOfPlace(RAID_CONTROLLER *Controller,
                                   RAID_PHYSICAL_DRIVE *Drive) {
  bool Spare = Drive->Role == RAID_ROLE_HOT_SPARE;
  if (Drive->Owner == Controller) {
    return Spare ? &Controller->GlobalSpareCount
                 : &Controller->UnconfiguredDriveCount;
  }
  RAID_ARRAY *Array = static_cast<RAID_ARRAY *>(Drive->Owner);
  if (Array == nullptr) {
    return nullptr;
  }
  return Spare ? &Array->DedicatedSpareCount : &Array->MemberDriveCount;
}

}  // namespace

EFI_STATUS RaidLibResetControllerModel(RAID_CONTROLLER *Controller) {
  RaidLibFreeTableOnlyDrives(Controller);
  RaidLibFreeArrayLink(&Controller->ArrayList);
  RaidLibFreeDriveList(&Controller->PhysicalDriveList);
  RaidLibFreeDriveList(&Controller->SpareDriveList);
  Controller->UnconfiguredDriveCount = 0;
  Controller->GlobalSpareCount = 0;
  Controller->DiskDriveCount = 0;
  RAID_DRIVE_TABLE_FILL Fill;
  return RaidLibStartDriveTable(&Fill, Controller, 0);
}

RAID_ARRAY *RaidLibAddArray(RAID_CONTROLLER *Controller, UINT32 Id,
                            UINTN ExtraSize) {
  CHAR16 Name[32];
  RaidLibNumberedText(Name, 32, u"Array", Id);
  return RaidLibAddNamedArray(Controller, Id, Name, ExtraSize);
}

RAID_ARRAY *RaidLibAddNamedArray(RAID_CONTROLLER *Controller, UINT32 Id,
                                 const CHAR16 *Name, UINTN ExtraSize) {
  uefi::PoolPtr<RAID_ARRAY> Array(NewRecordWithExtra<RAID_ARRAY>(ExtraSize));
  if (!Array) {
    return nullptr;
  }
  InitializeListHead(&Array->DriveList);
  InitializeListHead(&Array->SegmentList);
  Array->Name = AllocDestStr(Name);
  if (Array->Name == nullptr) {
    return nullptr;
  }
  Array->Controller = Controller;
  Array->Id = Id;
  InsertTailList(&Controller->ArrayList, &Array->Link);
  return Array.Release();
}

RAID_VOLUME *RaidLibAddVolume(RAID_ARRAY *Array, UINT32 Id, const CHAR16 *Name,
                              UINTN ExtraSize) {
  RAID_VOLUME *Volume = NewRecordWithExtra<RAID_VOLUME>(ExtraSize);
  if (Volume == nullptr) {
    return nullptr;
  }
  Volume->Name = RaidLibCopyStripped(Name != nullptr ? Name : u"", 0);
  if (Volume->Name == nullptr) {
    RaidLibFreeSegment(Volume);
    return nullptr;
  }
  Volume->Array = Array;
  Volume->Id = Id;
  Volume->IsVolume = 1;
  InsertTailList(&Array->SegmentList, &Volume->Link);
  Array->VolumeCount++;
  return Volume;
}

RAID_VOLUME *RaidLibAddFreeSegment(RAID_ARRAY *Array, UINT32 Id,
                                   UINT32 AfterVolume, UINT64 SizeFigure,
                                   UINT32 SizeUnit, UINTN ExtraSize) {
  RAID_VOLUME *Segment = NewRecordWithExtra<RAID_VOLUME>(ExtraSize);
  if (Segment == nullptr) {
    return nullptr;
  }
  Segment->Name = NewNumberedName(u"FreeCapacity", Id);
  if (Segment->Name == nullptr) {
    RaidLibFreeSegment(Segment);
    return nullptr;
  }
  Segment->Array = Array;
  Segment->Id = Id;
  Segment->IsVolume = 0;
  Segment->State = AfterVolume;
  Segment->SizeFigure = SizeFigure;
  Segment->SizeUnit = SizeUnit;
  RaidLibInsertFreeSegment(Array, Segment);
  Array->FreeSegmentCount++;
  return Segment;
}

RAID_ARRAY *RaidLibFindArray(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

namespace {

// Where a drive's parts sit in the block RaidLibNewDrive makes: the record,
// its Position, then Location and Model with their terminators.
[[nodiscard]] const RAID_DRIVE_POSITION *InlinePosition(
    const RAID_PHYSICAL_DRIVE *Drive) {
  return reinterpret_cast<const RAID_DRIVE_POSITION *>(Drive + 1);
}
[[nodiscard]] const CHAR16 *InlineLocation(const RAID_PHYSICAL_DRIVE *Drive) {
  return reinterpret_cast<const CHAR16 *>(InlinePosition(Drive) + 1);
}

static_assert(sizeof(RAID_PHYSICAL_DRIVE) % alignof(RAID_DRIVE_POSITION) == 0);
static_assert(sizeof(RAID_DRIVE_POSITION) % alignof(CHAR16) == 0);

}  // namespace

RAID_PHYSICAL_DRIVE *RaidLibNewDrive(UINT32 Id, const CHAR16 *Location,
                                     const CHAR16 *Model, UINTN ModelChars) {
  const CHAR16 *LocationText = Location != nullptr ? Location : u"";
  const CHAR16 *ModelText = Model != nullptr ? Model : u"";
  const UINTN LocationChars = RaidLibStrippedLength(&LocationText);
  UINTN ModelLength = RaidLibStrippedLength(&ModelText);
  if (ModelChars != 0 && ModelLength > ModelChars) {
    ModelLength = ModelChars;
  }
  const UINTN Size = sizeof(RAID_PHYSICAL_DRIVE) + sizeof(RAID_DRIVE_POSITION) +
                     (LocationChars + 1 + ModelLength + 1) * sizeof(CHAR16);
  auto *Drive = static_cast<RAID_PHYSICAL_DRIVE *>(AllocateZeroPool(Size));
  if (Drive == nullptr) {
    return nullptr;
  }
  Drive->Position = const_cast<RAID_DRIVE_POSITION *>(InlinePosition(Drive));
  Drive->Location = const_cast<CHAR16 *>(InlineLocation(Drive));
  CopyMem(Drive->Location, LocationText, LocationChars * sizeof(CHAR16));
  Drive->Model = Drive->Location + LocationChars + 1;
  CopyMem(Drive->Model, ModelText, ModelLength * sizeof(CHAR16));
  Drive->Id = Id;
  return Drive;
}

BOOLEAN RaidLibInDriveBlock(const RAID_PHYSICAL_DRIVE *Drive,
                            const VOID *Part) {
  if (Part == InlinePosition(Drive) || Part == InlineLocation(Drive)) {
    return TRUE;
  }
  // The model follows the location when the location is the block's own.
  if (Drive->Location != InlineLocation(Drive)) {
    return FALSE;
  }
  const CHAR16 *InlineModel = Drive->Location + StrLen(Drive->Location) + 1;
  return Part == InlineModel ? TRUE : FALSE;
}

VOID RaidLibReplaceDriveModel(RAID_PHYSICAL_DRIVE *Drive, CHAR16 *Model) {
  if (!RaidLibInDriveBlock(Drive, Drive->Model)) {
    FreePool(Drive->Model);
  }
  Drive->Model = Model;
}

VOID RaidLibPlaceDrive(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                       RAID_ARRAY *Array, UINT32 State, UINT32 Role) {
  // An array's drives are counted on the array's own controller.
  ASSERT(Array == nullptr || Array->Controller == Controller);
  Drive->State = State;
  Drive->Role = Role;
  LIST_ENTRY *List = nullptr;
  if (Array != nullptr) {
    Drive->Owner = Array;
    List = &Array->DriveList;
  } else {
    Drive->Owner = Controller;
    List = Role == RAID_ROLE_HOT_SPARE ? &Controller->SpareDriveList
                                       : &Controller->PhysicalDriveList;
  }
  InsertTailList(List, &Drive->Link);
  (*CountOfPlace(Controller, Drive))++;
}

VOID RaidLibMoveDrive(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                      RAID_ARRAY *Array, UINT32 State, UINT32 Role) {
  ASSERT(Drive->Owner != nullptr);  // only a placed drive has a list to leave
  if (UINT32 *Count = CountOfPlace(Controller, Drive);
      Count != nullptr && *Count > 0) {
    (*Count)--;
  }
  RemoveEntryList(&Drive->Link);
  RaidLibPlaceDrive(Controller, Drive, Array, State, Role);
}

EFI_STATUS RaidLibStartDriveTable(RAID_DRIVE_TABLE_FILL *Fill,
                                  RAID_CONTROLLER *Controller,
                                  UINT32 Capacity) {
  Fill->Controller = Controller;
  Fill->Capacity = 0;
  Fill->Filled = 0;
  FreePool(Controller->DriveTable);
  Controller->DriveTable = static_cast<RAID_PHYSICAL_DRIVE **>(
      AllocateZeroPool((static_cast<UINTN>(Capacity) + 1) *
                       sizeof(RAID_PHYSICAL_DRIVE *)));
  if (Controller->DriveTable == nullptr) {
    Controller->DiskDriveCount = 0;
    return EFI_OUT_OF_RESOURCES;
  }
  Fill->Capacity = Capacity;
  Controller->DiskDriveCount = Capacity;
  return EFI_SUCCESS;
}

BOOLEAN RaidLibAppendToDriveTable(RAID_DRIVE_TABLE_FILL *Fill,
                                  RAID_PHYSICAL_DRIVE *Drive) {
  if (Fill->Controller->DriveTable == nullptr ||
      Fill->Filled >= Fill->Capacity) {
    return FALSE;
  }
  Fill->Controller->DriveTable[Fill->Filled++] = Drive;
  return TRUE;
}

VOID RaidLibFinishDriveTable(const RAID_DRIVE_TABLE_FILL *Fill) {
  ASSERT(Fill->Filled <= Fill->Capacity);
  Fill->Controller->DiskDriveCount = Fill->Filled;
}

VOID RaidLibNumberedText(CHAR16 *Text, UINTN TextChars, const CHAR16 *Prefix,
                         UINT32 Number) {
  if (Text == nullptr || TextChars == 0) {
    return;
  }
  CHAR16 Digits[10];
  UINTN DigitCount = 0;
  do {
    Digits[DigitCount++] = static_cast<CHAR16>(u'0' + Number % 10);
    Number /= 10;
  } while (Number != 0);
  UINTN Length = 0;
  for (; Prefix[Length] != 0 && Length + 1 < TextChars; Length++) {
    Text[Length] = Prefix[Length];
  }
  while (DigitCount > 0 && Length + 1 < TextChars) {
    Text[Length++] = Digits[--DigitCount];
  }
  Text[Length] = 0;
}
