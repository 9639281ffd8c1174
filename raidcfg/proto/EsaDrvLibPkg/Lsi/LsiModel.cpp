// Building arrays, volumes and drives from the rows of storcli's tables.
#include "LsiModel.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>

#include "LsiBackend.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"
#include "RaidLibWordTable.h"

namespace lsi {

namespace {

// Owned blocks the backend hangs on arrays and volumes.
constexpr UINTN kArrayExtraSize = 3;
constexpr UINTN kVolumeExtraSize = 4;
// Longest drive model kept.
constexpr UINTN kModelChars = 100;

// A drive's state word to its state code (Code) and role (Detail), for
// each kind of DG column.

// A drive in no array ("-" in the DG column).
constexpr RAID_WORD_CODE kUnassignedWords[] = {
    {u"UGood", RAID_STATE_UGOOD, RAID_ROLE_UNCONFIGURED},
    {u"UBad", RAID_STATE_UBAD, RAID_ROLE_UNCONFIGURED},
    {u"UBUnsp", RAID_STATE_UBAD, RAID_ROLE_UNCONFIGURED},
    {u"Onln", RAID_STATE_JBOD, RAID_ROLE_UNCONFIGURED},
    {u"JBOD", RAID_STATE_JBOD, RAID_ROLE_UNCONFIGURED},
    {u"GHS", RAID_STATE_GHS, RAID_ROLE_HOT_SPARE},
};
constexpr RAID_WORD_TABLE kUnassignedStates = RaidLibWordTable(
    kUnassignedWords, RaidMatchExact, RAID_STATE_INVALID,
    RAID_ROLE_UNCONFIGURED);

// A foreign drive in a state of no entry keeps the state its record
// started with.
constexpr UINT32 kStateUnset = 0xFFFFFFFEU;

// A drive with a foreign configuration ("F").
constexpr RAID_WORD_CODE kForeignWords[] = {
    {u"UBad", RAID_STATE_UBAD_FOREIGN, RAID_ROLE_UNCONFIGURED},
    {u"UGood", RAID_STATE_UGOOD_FOREIGN, RAID_ROLE_UNCONFIGURED},
};
constexpr RAID_WORD_TABLE kForeignStates = RaidLibWordTable(
    kForeignWords, RaidMatchExact, kStateUnset, RAID_ROLE_UNCONFIGURED);

// A drive of an array (a DG number).
constexpr RAID_WORD_CODE kMemberWords[] = {
    {u"Onln", RAID_STATE_ONLINE, RAID_ROLE_MEMBER},
    {u"Rbld", RAID_STATE_REBUILD, RAID_ROLE_MEMBER},
    {u"Offln", RAID_STATE_OFFLINE, RAID_ROLE_MEMBER},
    {u"DHS", RAID_STATE_DHS, RAID_ROLE_HOT_SPARE},
};
constexpr RAID_WORD_TABLE kMemberStates = RaidLibWordTable(
    kMemberWords, RaidMatchExact, RAID_STATE_INVALID, RAID_ROLE_OTHER);

// A volume's State column.
constexpr RAID_WORD_CODE kVolumeWords[] = {
    {u"Optl", RAID_STATE_OPTIMAL},
    {u"Dgrd", RAID_STATE_DEGRADED},
    {u"Pdgd", RAID_STATE_PARTIALLY_DEGRADED},
    {u"OfLn", RAID_STATE_OFFLINE},
};
constexpr RAID_WORD_TABLE kVolumeStates =
    RaidLibWordTable(kVolumeWords, RaidMatchExact, RAID_STATE_INVALID);

// A pool copy of a formatted name ("Array%u", "FreeCapacity%u").
CHAR16 *NewNumberedName(const CHAR16 *Format, UINT32 Number) {
  CHAR16 Name[32];
  UnicodeSPrint(Name, sizeof(Name), Format, Number);
  return AllocDestStr(Name);
}

// The digits after "RAID" in a type word ("RAID10" gives 10).
UINT8 LevelOfType(const CHAR16 *Type) {
  if (Type == nullptr || StrLen(Type) <= 4) {
    return 0;
  }
  return static_cast<UINT8>(RaidLibReadDecimal(Type + 4));
}

// The ids that name a drive: its EID:Slt address and its DID.
struct DriveIds {
  UINT32 Enclosure;
  UINT32 Slot;
  UINT32 DeviceId;
};

// Fills the drive's own fields from its row.
EFI_STATUS FillDrive(RAID_PHYSICAL_DRIVE *Drive, const RAID_ROW *Row,
                     const DriveIds &Ids) {
  Drive->Location = RaidLibCopyStripped(Row->Words[0], 0);
  Drive->Position = uefi::AllocateRecord<RAID_DRIVE_POSITION>();
  Drive->Model = RaidLibCopyStripped(Row->Words[11] != nullptr ? Row->Words[11]
                                                           : u"",
                                 kModelChars);
  if (Drive->Location == nullptr || Drive->Position == nullptr ||
      Drive->Model == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Drive->Position->Values[LSI_POSITION_ENCLOSURE] = Ids.Enclosure;
  Drive->Position->Values[LSI_POSITION_SLOT] = Ids.Slot;
  Drive->Id = Ids.DeviceId;
  Drive->SizeFigure = RaidLibReadThousandths(Row->Words[4]);
  Drive->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[5]);
  Drive->MediaType = RaidLibMediaCode(Row->Words[6], Row->Words[7]);
  return EFI_SUCCESS;
}

// Links an unassigned or foreign drive into the controller's lists.
VOID PlaceUnassigned(RAID_CONTROLLER *Controller, RAID_PHYSICAL_DRIVE *Drive,
                     const RAID_WORD_CODE &Rule) {
  if (Rule.Code != kStateUnset) {
    Drive->State = Rule.Code;
  }
  Drive->Role = Rule.Detail;
  Drive->Owner = Controller;
  if (Rule.Code == RAID_STATE_GHS) {
    InsertTailList(&Controller->SpareDriveList, &Drive->Link);
    Controller->GlobalSpareCount++;
  } else {
    InsertTailList(&Controller->PhysicalDriveList, &Drive->Link);
    Controller->UnconfiguredDriveCount++;
  }
}

// Links a drive of an array into that array's DriveList.
VOID PlaceMember(RAID_ARRAY *Array, RAID_PHYSICAL_DRIVE *Drive,
                 const RAID_WORD_CODE &Rule) {
  Drive->State = Rule.Code;
  Drive->Role = Rule.Detail;
  Drive->Owner = Array;
  InsertTailList(&Array->DriveList, &Drive->Link);
  if (Rule.Code == RAID_STATE_DHS) {
    Array->DedicatedSpareCount++;
  } else {
    Array->MemberDriveCount++;
  }
}

}  // namespace

EFI_STATUS LsiNewDriveTable(RAID_CONTROLLER *Controller, UINT32 Count) {
  FreePool(Controller->DriveTable);
  Controller->DriveTable = static_cast<RAID_PHYSICAL_DRIVE **>(
      AllocateZeroPool((static_cast<UINTN>(Count) + 1) *
                       sizeof(RAID_PHYSICAL_DRIVE *)));
  return Controller->DriveTable == nullptr ? EFI_OUT_OF_RESOURCES
                                           : EFI_SUCCESS;
}

RAID_ARRAY *LsiFindArray(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

UINT32 LsiVolumeStateCode(const CHAR16 *Word) {
  return RaidLibCodeOfWord(kVolumeStates, Word);
}

EFI_STATUS LsiAddArray(RAID_CONTROLLER *Controller, const RAID_ROW *Row) {
  UINT32 Group = 0;
  if (!RaidLibReadId(Row->Words[0], &Group)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a]DG %S is not a usable id; drive group left out\n",
                   Row->Words[0]);
    return EFI_SUCCESS;
  }
  RAID_ARRAY *Array = uefi::AllocateRecord<RAID_ARRAY>();
  if (Array == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  InitializeListHead(&Array->DriveList);
  InitializeListHead(&Array->SegmentList);
  Array->Controller = Controller;
  Array->Id = Group;
  Array->Name = NewNumberedName(u"Array%u", Array->Id);
  Array->Extra = AllocateZeroPool(kArrayExtraSize);
  if (Array->Name == nullptr || Array->Extra == nullptr) {
    FreePool(Array->Name);
    FreePool(Array->Extra);
    FreePool(Array);
    return EFI_OUT_OF_RESOURCES;
  }
  Array->RaidLevel = LevelOfType(Row->Words[5]);
  Array->SizeFigure = RaidLibReadThousandths(Row->Words[8]);
  Array->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[9]);
  InsertTailList(&Controller->ArrayList, &Array->Link);
  return EFI_SUCCESS;
}

EFI_STATUS LsiAddVolume(RAID_CONTROLLER *Controller, const RAID_ROW *Row) {
  UINT32 Group = 0;
  UINT32 Number = 0;
  if (!RaidLibReadIdPair(Row->Words[0], u'/', &Group, &Number)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a]DG/VD %S is not a usable id; virtual drive left out\n",
                   Row->Words[0]);
    return EFI_SUCCESS;
  }
  RAID_ARRAY *Array = LsiFindArray(Controller, Group);
  if (Array == nullptr) {
    return EFI_SUCCESS;  // A row of no array read: a fault of the output.
  }
  RAID_VOLUME *Volume = uefi::AllocateRecord<RAID_VOLUME>();
  if (Volume == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  // Only the name's first word is in the row's eleventh word.
  Volume->Name = RaidLibCopyStripped(
      Row->Words[9] != nullptr && Row->Words[10] != nullptr ? Row->Words[10]
                                                            : u"",
      0);
  Volume->Extra = AllocateZeroPool(kVolumeExtraSize);
  if (Volume->Name == nullptr || Volume->Extra == nullptr) {
    RaidLibFreeSegment(Volume);
    return EFI_OUT_OF_RESOURCES;
  }
  Volume->Array = Array;
  Volume->Id = Number;
  Volume->IsVolume = 1;
  Volume->State = LsiVolumeStateCode(Row->Words[2]);
  Volume->SizeFigure = RaidLibReadThousandths(Row->Words[8]);
  Volume->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[9]);
  InsertTailList(&Array->SegmentList, &Volume->Link);
  Array->VolumeCount++;
  return EFI_SUCCESS;
}

EFI_STATUS LsiAddDrive(RAID_CONTROLLER *Controller, const RAID_ROW *Row,
                       RAID_PHYSICAL_DRIVE **Drive) {
  *Drive = nullptr;
  DriveIds Ids = {};
  if (!RaidLibReadIdPair(Row->Words[0], u':', &Ids.Enclosure, &Ids.Slot) ||
      !RaidLibReadId(Row->Words[1], &Ids.DeviceId)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a]EID:Slt %S or DID %S is not a usable id; drive left "
                   "out\n",
                   Row->Words[0], Row->Words[1]);
    return EFI_SUCCESS;
  }
  const CHAR16 *Group = Row->Words[3];
  const CHAR16 *StateWord = Row->Words[2];
  RAID_ARRAY *Array = nullptr;
  bool Unassigned = RaidLibWordIs(Group, u"-");
  bool Foreign = RaidLibWordIs(Group, u"F");
  if (!Unassigned && !Foreign) {
    if (Group == nullptr) {
      return EFI_SUCCESS;  // No DG column.
    }
    UINT32 GroupId = 0;
    if (!RaidLibReadId(Group, &GroupId)) {
      RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                     "[%a]Drive %S names DG %S, which is not a usable id; "
                     "drive left out\n",
                     Row->Words[0], Group);
      return EFI_SUCCESS;
    }
    Array = LsiFindArray(Controller, GroupId);
    if (Array == nullptr) {
      return EFI_SUCCESS;  // A DG of no array read.
    }
  }
  RAID_PHYSICAL_DRIVE *Record = uefi::AllocateRecord<RAID_PHYSICAL_DRIVE>();
  if (Record == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  if (EFI_ERROR(FillDrive(Record, Row, Ids))) {
    RaidLibFreePhysicalDrive(Record);
    return EFI_OUT_OF_RESOURCES;
  }
  if (Unassigned) {
    PlaceUnassigned(Controller, Record,
                    RaidLibClassifyWord(kUnassignedStates, StateWord));
  } else if (Foreign) {
    PlaceUnassigned(Controller, Record,
                    RaidLibClassifyWord(kForeignStates, StateWord));
  } else {
    PlaceMember(Array, Record, RaidLibClassifyWord(kMemberStates, StateWord));
  }
  *Drive = Record;
  return EFI_SUCCESS;
}

}  // namespace lsi
