// Building arrays, volumes and drives from the rows of storcli's tables.
#include "LsiModel.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>

#include "LsiBackend.h"
#include "RaidLibModelBuild.h"
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

// The digits after "RAID" in a type word ("RAID10" gives 10).
[[nodiscard]] UINT8 LevelOfType(const CHAR16 *Type) {
  if (Type == nullptr) {
    return 0;
  }
  // Digits follow only a word of five characters or more.
  for (UINTN Index = 0; Index <= 4; Index++) {
    if (Type[Index] == 0) {
      return 0;
    }
  }
  return static_cast<UINT8>(RaidLibReadDecimal(Type + 4));
}

// The ids that name a drive: its EID:Slt address and its DID.
struct DriveIds {
  UINT32 Enclosure;
  UINT32 Slot;
  UINT32 DeviceId;
};

}  // namespace

RAID_ARRAY *LsiFindArray(RAID_CONTROLLER *Controller, UINT32 Id) {
  return RaidLibFindArray(Controller, Id);
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
  RAID_ARRAY *Array = RaidLibAddArray(Controller, Group, kArrayExtraSize);
  if (Array == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Array->RaidLevel = LevelOfType(Row->Words[5]);
  Array->SizeFigure = RaidLibReadThousandths(Row->Words[8]);
  Array->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[9]);
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
  // Only the name's first word is in the row's eleventh word.
  const CHAR16 *Name =
      Row->Words[9] != nullptr && Row->Words[10] != nullptr ? Row->Words[10]
                                                            : u"";
  RAID_VOLUME *Volume =
      RaidLibAddVolume(Array, Number, Name, kVolumeExtraSize);
  if (Volume == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Volume->State = LsiVolumeStateCode(Row->Words[2]);
  Volume->SizeFigure = RaidLibReadThousandths(Row->Words[8]);
  Volume->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[9]);
  return EFI_SUCCESS;
}

EFI_STATUS LsiAddDrive(RAID_CONTROLLER *Controller, const RAID_ROW *Row,
                       RAID_PHYSICAL_DRIVE **Drive, RAID_ARRAY **Named) {
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
    // Arrays are only appended meanwhile, so the first of this id is
    // still the one found for the previous row.
    Array = *Named != nullptr && (*Named)->Id == GroupId
                ? *Named
                : LsiFindArray(Controller, GroupId);
    *Named = Array;
    if (Array == nullptr) {
      return EFI_SUCCESS;  // A DG of no array read.
    }
  }
  RAID_PHYSICAL_DRIVE *Record = RaidLibNewDrive(
      Ids.DeviceId, Row->Words[0],
      Row->Words[11] != nullptr ? Row->Words[11] : u"", kModelChars);
  if (Record == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Record->Position->Values[LSI_POSITION_ENCLOSURE] = Ids.Enclosure;
  Record->Position->Values[LSI_POSITION_SLOT] = Ids.Slot;
  Record->SizeFigure = RaidLibReadThousandths(Row->Words[4]);
  Record->SizeUnit = RaidLibUnitCodeOfWord(Row->Words[5]);
  Record->MediaType = RaidLibMediaCode(Row->Words[6], Row->Words[7]);
  const RAID_WORD_TABLE &States = Unassigned ? kUnassignedStates
                                  : Foreign  ? kForeignStates
                                             : kMemberStates;
  const RAID_WORD_CODE &Rule = RaidLibClassifyWord(States, StateWord);
  // A foreign drive in a state of no entry keeps the state it started with.
  UINT32 State = Rule.Code == kStateUnset ? Record->State : Rule.Code;
  RaidLibPlaceDrive(Controller, Record, Array, State, Rule.Detail);
  *Drive = Record;
  return EFI_SUCCESS;
}

}  // namespace lsi
