// Building a controller's records for any backend.
#include "RaidLibModelBuild.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/DebugLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLibRow.h"
#include "RaidLibText.h"

namespace {

// Bytes of Name with its terminator, rounded up to keep Extra aligned.
[[nodiscard]] UINTN InlineNameBytes(const CHAR16 *Name) {
  return Name != nullptr ? ((StrLen(Name) + 1) * sizeof(CHAR16) + 7) & ~7ULL
                         : 0;
}

// A zeroed record of type T in one pool block with a copy of Name (NULL:
// none) and ExtraSize zeroed bytes as its Extra, or NULL.
template <typename T>
[[nodiscard]] T *NewRecord(UINTN ExtraSize, const CHAR16 *Name) {
  const UINTN NameBytes = InlineNameBytes(Name);
  if (ExtraSize > ~static_cast<UINTN>(0) - sizeof(T) - NameBytes) {
    return nullptr;
  }
  auto *Record = static_cast<T *>(
      AllocateZeroPool(sizeof(T) + NameBytes + ExtraSize));
  if (Record == nullptr) {
    return nullptr;
  }
  auto *Behind = reinterpret_cast<UINT8 *>(Record + 1);
  if (Name != nullptr) {
    Record->Name = reinterpret_cast<CHAR16 *>(Behind);
    CopyMem(Record->Name, Name, (StrLen(Name) + 1) * sizeof(CHAR16));
  }
  Record->Extra = Behind + NameBytes;
  return Record;
}

template <typename T>
[[nodiscard]] BOOLEAN NameInBlock(const T *Record) {
  return Record->Name == reinterpret_cast<const CHAR16 *>(Record + 1) ? TRUE
                                                                      : FALSE;
}

template <typename T>
[[nodiscard]] BOOLEAN ExtraInBlock(const T *Record) {
  const UINT8 *Behind = reinterpret_cast<const UINT8 *>(Record + 1);
  if (NameInBlock(Record)) {
    Behind += InlineNameBytes(Record->Name);
  }
  return Record->Extra == Behind ? TRUE : FALSE;
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
  // An array has a name: none given makes no array.
  RAID_ARRAY *Array =
      Name != nullptr ? NewRecord<RAID_ARRAY>(ExtraSize, Name) : nullptr;
  if (Array == nullptr) {
    return nullptr;
  }
  InitializeListHead(&Array->DriveList);
  InitializeListHead(&Array->SegmentList);
  Array->Controller = Controller;
  Array->Id = Id;
  InsertTailList(&Controller->ArrayList, &Array->Link);
  return Array;
}

RAID_VOLUME *RaidLibAddVolume(RAID_ARRAY *Array, UINT32 Id, const CHAR16 *Name,
                              UINTN ExtraSize) {
  RAID_VOLUME *Volume = NewRecord<RAID_VOLUME>(ExtraSize, nullptr);
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
  CHAR16 Name[32];
  RaidLibNumberedText(Name, 32, u"FreeCapacity", Id);
  RAID_VOLUME *Segment = NewRecord<RAID_VOLUME>(ExtraSize, Name);
  if (Segment == nullptr) {
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

BOOLEAN RaidLibNameInRecord(const RAID_ARRAY *Array) {
  return NameInBlock(Array);
}

BOOLEAN RaidLibNameInRecord(const RAID_VOLUME *Segment) {
  return NameInBlock(Segment);
}

BOOLEAN RaidLibExtraInRecord(const RAID_ARRAY *Array) {
  return ExtraInBlock(Array);
}

BOOLEAN RaidLibExtraInRecord(const RAID_VOLUME *Segment) {
  return ExtraInBlock(Segment);
}
