// The M.2 tools' values: "key: value" lines, sizes with a unit letter, and
// the words for states, stripe sizes, RAID modes and drive types.
#include <Library/BaseMemoryLib.h>

#include "M2Backend.h"
#include "RaidLibLanes.h"
#include "RaidLibText.h"
#include "RaidLibWordTable.h"

namespace m2 {

namespace {

constexpr RAID_WORD_CODE kVolumeStates[] = {
    {u"online", RAID_STATE3_ONLINE},     {u"offline", RAID_STATE3_OFFLINE},
    {u"optimal", RAID_STATE3_OPTIMAL},   {u"critical", RAID_STATE3_CRITICAL},
    {u"degraded", RAID_STATE3_DEGRADED}, {u"foreign", RAID_STATE3_FOREIGN},
};

constexpr RAID_WORD_CODE kStripeSizes[] = {
    {u"8", 8},     {u"16", 16},   {u"32", 32},   {u"64", 64},
    {u"128", 128}, {u"256", 256}, {u"512", 512}, {u"1024", 1024},
};

constexpr RAID_WORD_CODE kRaidModes[] = {
    {u"RAID0", 0},
    {u"RAID1", 1},
};

constexpr RAID_WORD_CODE kMediaTypes[] = {
    {u"SATA PD", RAID_MEDIA_SATA_SSD},
};

// Code: state; Detail: role. Where each goes is told apart by the state.
constexpr RAID_WORD_CODE kDriveStates[] = {
    {u"ready", RAID_STATE3_READY, RAID_ROLE_UNCONFIGURED},
    {u"online", RAID_STATE3_ONLINE, RAID_ROLE_MEMBER},
    {u"rebuild", RAID_STATE3_REBUILD, RAID_ROLE_MEMBER},
};

constexpr RAID_WORD_TABLE kVolumeStateTable =
    RaidLibWordTable(kVolumeStates, RaidMatchExact, RAID_STATE_INVALID);
constexpr RAID_WORD_TABLE kStripeSizeTable =
    RaidLibWordTable(kStripeSizes, RaidMatchExact, RAID_STRIPE_SIZE_OTHER);
constexpr RAID_WORD_TABLE kRaidModeTable =
    RaidLibWordTable(kRaidModes, RaidMatchExact, M2_RAID_LEVEL_UNKNOWN);
constexpr RAID_WORD_TABLE kMediaTypeTable =
    RaidLibWordTable(kMediaTypes, RaidMatchExact, RAID_MEDIA_SAS_SSD);
// Role RAID_ROLE_UNCONFIGURED for a word of no entry: its role is not
// changed, since the drive is placed nowhere.
constexpr RAID_WORD_TABLE kDriveStateTable =
    RaidLibWordTable(kDriveStates, RaidMatchExact, RAID_STATE_INVALID);

// One GB is 1024 MB and 1048576 KB. A volume's "K" is taken as it stands,
// a drive's is divided: the tools print volumes and drives in these units.
constexpr UINT64 kPerTera = 1024;
constexpr UINT64 kMegaPerGiga = 1024;
constexpr UINT64 kKiloPerGiga = 1048576;

constexpr UINT64 kLargestFigure = ~static_cast<UINT64>(0);
constexpr UINT32 kLargestCount = ~static_cast<UINT32>(0);

// Value * Factor, held at the largest value instead of wrapping.
[[nodiscard]] UINT64 Times(UINT64 Value, UINT64 Factor) {
  return Value > kLargestFigure / Factor ? kLargestFigure : Value * Factor;
}

}  // namespace

CHAR16 *M2LineValue(const CHAR16 *Line, UINTN LineChars, RAID_ROW *Scratch) {
  if (Line == nullptr) {
    return nullptr;
  }
  // As far as a row holds the line: the piece behind the first run of
  // colons, up to the next colon, stripped; only that piece is copied.
  using namespace raidlib_lanes;
  const UINTN Count = LineChars < RAID_ROW_CHARS - 1 ? LineChars
                                                      : RAID_ROW_CHARS - 1;
  UINTN Index = 0;
  while (Index < Count && Line[Index] == u':') {
    Index++;
  }
  Index = FindIn(Line, Index, Count, u':');
  while (Index < Count && Line[Index] == u':') {
    Index++;
  }
  const UINTN Start = SkipSpaceIn(Line, Index, Count);
  UINTN End = FindIn(Line, Start, Count, u':');
  while (End > Start && RaidLibIsSpace(Line[End - 1])) {
    End--;
  }
  if (End == Start) {
    return nullptr;
  }
  CopyMem(Scratch->Text, Line + Start, (End - Start) * sizeof(CHAR16));
  Scratch->Text[End - Start] = 0;
  return Scratch->Text;
}

CHAR16 *M2LineValue(const CHAR16 *Line, RAID_ROW *Scratch) {
  UINTN Chars = 0;
  while (Line != nullptr && Chars < RAID_ROW_CHARS - 1 && Line[Chars] != 0) {
    Chars++;
  }
  return M2LineValue(Line, Chars, Scratch);
}

UINT64 M2ReadSize(const CHAR16 *Value, M2SizeOf What) {
  if (Value == nullptr) {
    return 0;
  }
  RAID_ROW Words;
  if (RaidLibSplitRow(Value, &Words) == 0) {
    return 0;
  }
  // "1.5 T" reads 1: the fraction is dropped.
  UINT64 Figure = Times(RaidLibReadDecimal(Words.Words[0]), 1000);
  const CHAR16 *Unit = Words.Words[1];
  if (RaidLibWordIs(Unit, u"T")) {
    return Times(Figure, kPerTera);
  }
  if (RaidLibWordIs(Unit, u"M")) {
    return Figure / kMegaPerGiga;
  }
  if (RaidLibWordIs(Unit, u"K") && What == M2SizeOf::Drive) {
    return Figure / kKiloPerGiga;
  }
  return Figure;
}

UINT32 M2VolumeState(const CHAR16 *Value) {
  if (Value == nullptr) {
    return RAID_STATE3_OFFLINE;
  }
  return RaidLibCodeOfWord(kVolumeStateTable, Value);
}

UINT32 M2StripeSize(const CHAR16 *Value) {
  return RaidLibCodeOfWord(kStripeSizeTable, Value);
}

UINT8 M2RaidLevel(const CHAR16 *Value) {
  return static_cast<UINT8>(RaidLibCodeOfWord(kRaidModeTable, Value));
}

UINT32 M2MediaType(const CHAR16 *Value) {
  if (Value == nullptr) {
    return RAID_MEDIA_SATA_SSD;
  }
  return RaidLibCodeOfWord(kMediaTypeTable, Value);
}

M2DriveStatus M2DriveStatusOf(const CHAR16 *Value) {
  const RAID_WORD_CODE &Word = RaidLibClassifyWord(kDriveStateTable, Value);
  M2DrivePlace Place = M2DrivePlace::Nowhere;
  if (Word.Code == RAID_STATE3_READY) {
    Place = M2DrivePlace::Unconfigured;
  } else if (Word.Code != RAID_STATE_INVALID) {
    Place = M2DrivePlace::Array;
  }
  return {Word.Code, Word.Detail, Place};
}

UINT32 M2ReadCount(const CHAR16 *Value) {
  UINT64 Count = RaidLibReadDecimal(Value);
  return Count > kLargestCount ? kLargestCount : static_cast<UINT32>(Count);
}

UINT32 M2ReadId(const CHAR16 *Value) {
  UINT32 Id = M2_ID_NONE;
  return RaidLibReadId(Value, &Id) ? Id : M2_ID_NONE;
}

}  // namespace m2
