// "/I": the configuration report. A first pass counts the disks and opens
// the arrays with their sizes and free space; a second pass reads volumes
// and disks, each block by fixed line offsets from its header line, and
// the capacity lines inside the blocks. Sizes end in thousandths of a GB.
#include <Library/MemoryAllocationLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"
#include "RaidLibWordTable.h"
#include "RsteBackend.h"

namespace rste {

namespace {

// An engine has a handful of ports; a count past this is a faulty report
// and would only ask the pool for a table nothing can fill.
constexpr UINT32 kMostDisks = 1024;
// A disk number the tool gives a disk it no longer sees.
constexpr UINT32 kMissingDiskNumber = 0xFFFFFFFFU;
constexpr UINT64 kGiB = 1ULL << 30;
constexpr UINTN kModelChars = 100;
// "Disk4294967294" and its terminator.
constexpr UINTN kLocationChars = 16;
// The lines of a volume's and a disk's block read below its header line.
constexpr UINTN kVolumeLines = 4;
constexpr UINTN kDiskLines = 7;

constexpr RAID_WORD_CODE kDiskStates[] = {
    {u"(Non-RAID", RAID_STATE4_NON_RAID, RAID_ROLE_UNCONFIGURED},
    {u"(Member", RAID_STATE4_ONLINE, RAID_ROLE_MEMBER},
    {u"(Offline", RAID_STATE4_OFFLINE, RAID_ROLE_MEMBER},
    {u"(Spare", RAID_STATE4_GHS, RAID_ROLE_HOT_SPARE},
    {u"(Incompatible", RAID_STATE4_INCOMPATIBLE, RAID_ROLE_MEMBER},
    {u"(Missing", RAID_STATE4_MISSING, RAID_ROLE_MEMBER},
};
constexpr RAID_WORD_TABLE kDiskStateTable = RaidLibWordTable(
    kDiskStates, RaidMatchPrefix, RAID_STATE_INVALID, RAID_ROLE_OTHER);

// The stripe word is the line's last word, so it keeps the line's CR.
constexpr RAID_WORD_CODE kStripeWords[] = {
    {u"4KB\r", 4},       {u"8KB\r", 8},     {u"16KB\r", 16},
    {u"32KB\r", 32},     {u"64KB\r", 64},   {u"128KB\r", 128},
    {u"256KB\r", 256},   {u"512KB\r", 512}, {u"1024KB\r", 1024},
    {u"N/A\r", RAID_STRIPE_SIZE_OTHER},
};
constexpr RAID_WORD_TABLE kStripeTable =
    RaidLibWordTable(kStripeWords, RaidMatchExact, 0);

// Value * Multiplier / Divisor, the product saturating instead of wrapping.
[[nodiscard]] UINT64 Scaled(UINT64 Value, UINT64 Multiplier, UINT64 Divisor) {
  UINT64 Product = 0;
  if (!__builtin_mul_overflow(Value, Multiplier, &Product)) {
    return Product / Divisor;
  }
  if (__builtin_mul_overflow(Value / Divisor, Multiplier, &Product)) {
    return ~0ULL;
  }
  return Product;
}

// Bytes of BlockCount blocks of BlockSize as thousandths of a GB, without
// overflow: whole GiB and the remainder are scaled apart.
[[nodiscard]] UINT64 BlocksToThousandthsGb(UINT64 BlockCount,
                                           UINT64 BlockSize) {
  UINT64 Bytes = 0;
  if (__builtin_mul_overflow(BlockCount, BlockSize, &Bytes)) {
    Bytes = ~0ULL;
  }
  return Scaled(Bytes / kGiB, 1000, 1) + (Bytes % kGiB) * 1000 / kGiB;
}

// A walk's line of Chars characters cut into its " "-words (none for NULL).
VOID SplitLine(const CHAR16 *Line, UINTN Chars, RAID_ROW *Words) {
  RaidLibSplitRowBefore(Line, Line != nullptr ? Line + Chars : nullptr, Words);
}

// The second ":"-piece of a word; NULL without one.
[[nodiscard]] CHAR16 *PieceOf(const CHAR16 *Word, RAID_ROW *Scratch) {
  return RaidLibRowWordOn(Word, u':', 1, Scratch);
}

[[nodiscard]] UINT64 HexPieceOf(const CHAR16 *Word) {
  RAID_ROW Scratch;
  return RaidLibReadHex(PieceOf(Word, &Scratch));
}

[[nodiscard]] UINT64 DecimalPieceOf(const CHAR16 *Word) {
  RAID_ROW Scratch;
  return RaidLibReadDecimal(PieceOf(Word, &Scratch));
}

[[nodiscard]] UINT64 DecimalValue(const CHAR16 *Line) {
  RAID_ROW Scratch;
  return RaidLibReadDecimal(RaidLibSecondPiece(Line, u":", &Scratch));
}

// The arrays of the report by their numbers. The first pass numbers them
// 0, 1, 2, ... into an empty list, so a number names at most one array,
// and volumes and disks name them mostly in that order: the array found
// last and the one behind it are looked at before the whole list.
typedef struct {
  RAID_CONTROLLER *Controller;
  bool OneEach;  // each number names one array at most
  RAID_ARRAY *Last;
} ARRAY_LOOKUP;

[[nodiscard]] RAID_ARRAY *ArrayWithId(ARRAY_LOOKUP *Arrays, UINT64 Id) {
  LIST_ENTRY *List = &Arrays->Controller->ArrayList;
  if (Arrays->OneEach && Arrays->Last != nullptr) {
    if (Arrays->Last->Id == Id) {
      return Arrays->Last;
    }
    LIST_ENTRY *Behind = Arrays->Last->Link.ForwardLink;
    if (Behind != List && BASE_CR(Behind, RAID_ARRAY, Link)->Id == Id) {
      Arrays->Last = BASE_CR(Behind, RAID_ARRAY, Link);
      return Arrays->Last;
    }
  }
  for (RAID_ARRAY *Array : uefi::ListOf<&RAID_ARRAY::Link>(*List)) {
    if (Array->Id == Id) {
      Arrays->Last = Array;
      return Array;
    }
  }
  return nullptr;
}

// ---- First pass: disk count and arrays -----------------------------------------

// The sizes line two below an "Array " line: "TotalMB:" marks sizes in MB,
// else GB. The third word is the total, the fourth word's second ":"-piece
// the free space. An MB report needs more than 1000 MB free for a free
// segment, a GB report any free space at all. FALSE when the pool ran out
// (the array, or its free segment, is missing).
[[nodiscard]] bool OpenArray(RAID_CONTROLLER *Controller,
                             const CHAR16 *SizeLine, UINT32 Id) {
  RAID_ARRAY *Array = RaidLibAddArray(Controller, Id, 0);
  if (Array == nullptr) {
    return false;
  }
  RAID_ROW Row;
  RaidLibSplitRow(SizeLine, &Row);
  bool InMb = RaidLibContains(SizeLine, u"TotalMB:") != FALSE;
  UINT64 Total = Scaled(RaidLibReadDecimal(Row.Words[2]), 1000, 1);
  RAID_ROW Scratch;
  UINT64 Free = Scaled(
      RaidLibReadDecimal(RaidLibSecondPiece(Row.Words[3], u":", &Scratch)),
      1000, 1);
  bool Segment = !(Free < 1000001 && (InMb || Free == 0));
  if (InMb) {
    Total /= 1024;
    Free /= 1024;
  }
  Array->SizeFigure = Total;
  Array->SizeUnit = RAID_UNIT_GB;
  Array->FreeCapacity = Free;
  Array->FreeCapacityUnit = RAID_UNIT_GB;
  return !Segment || RaidLibAddFreeSegment(Array, 0, RAID_SEGMENT_AFTER_NO_VOLUME,
                                           Free, RAID_UNIT_GB, 0) != nullptr;
}

[[nodiscard]] UINT32 SaturatingAdd(UINT32 Count, UINT64 More) {
  UINT64 Sum = Count + More;
  return (More > 0xFFFFFFFFULL || Sum > 0xFFFFFFFFULL) ? 0xFFFFFFFFU
                                                       : static_cast<UINT32>(Sum);
}

// The lines the first pass reads.
constexpr const CHAR16 *kCountAndArrayLines[] = {
    u" Total Physical Disks", u" Total Missing Disks", u"Array "};
constexpr RAID_LINE_PREFIXES kCountAndArrayLineSet =
    RaidLibLinePrefixes(kCountAndArrayLines);

// FALSE when the pool ran out on the way.
[[nodiscard]] bool FirstPass(RAID_LINE_CURSOR Lines, RAID_LINE_MARKS Marks,
                             RAID_CONTROLLER *Controller) {
  bool Whole = true;
  UINT32 ArrayCount = 0;
  for (CHAR16 *Line =
           RaidLibNextMarkedLine(&Lines, &Marks, kCountAndArrayLineSet);
       Line != nullptr;
       Line = RaidLibNextMarkedLine(&Lines, &Marks, kCountAndArrayLineSet)) {
    if (RaidLibStartsWith(Line, u" Total Physical Disks")) {
      Controller->DiskDriveCount = SaturatingAdd(0, DecimalValue(Line));
    } else if (RaidLibStartsWith(Line, u" Total Missing Disks")) {
      Controller->DiskDriveCount =
          SaturatingAdd(Controller->DiskDriveCount, DecimalValue(Line));
    } else if (RaidLibStartsWith(Line, u"Array ")) {
      Whole &= OpenArray(Controller, RaidLibLineAhead(&Lines, 2), ArrayCount++);
    }
  }
  return Whole;
}

// ---- Second pass: volumes, disks, capacities -------------------------------------

// The block the last "Volume " or "Disk " line opened, whose capacity the
// capacity lines set.
typedef struct {
  RAID_VOLUME *Volume;
  RAID_PHYSICAL_DRIVE *Disk;
  UINT64 BlockCount;
} OPEN_BLOCK;

// An array holds at most two volumes, and the tool leaves no free space
// beside a second one: its free segment goes with it.
VOID DropFreeSegments(RAID_ARRAY *Array) {
  LIST_ENTRY *Link = Array->SegmentList.ForwardLink;
  while (Link != &Array->SegmentList) {
    LIST_ENTRY *Next = Link->ForwardLink;
    RAID_VOLUME *Segment = BASE_CR(Link, RAID_VOLUME, Link);
    if (Segment->IsVolume == 0) {
      RemoveEntryList(Link);
      RaidLibFreeSegment(Segment);
    }
    Link = Next;
  }
  Array->FreeCapacity = 0;
  Array->FreeSegmentCount = 0;
}

// FALSE when the pool ran out.
[[nodiscard]] bool OpenVolume(ARRAY_LOOKUP *Arrays, RAID_LINE_CURSOR *Lines,
                              UINT32 *VolumeCount, OPEN_BLOCK *Open,
                              UINT32 *ErrorCode) {
  Open->Volume = nullptr;
  Open->Disk = nullptr;
  CHAR16 *Ahead[kVolumeLines];
  UINTN Chars[kVolumeLines];
  RaidLibLinesAheadSized(Lines, Ahead, Chars, kVolumeLines);
  RAID_ROW Words;
  SplitLine(Ahead[3], Chars[3], &Words);
  RAID_ARRAY *Array = ArrayWithId(Arrays, DecimalPieceOf(Words.Words[2]));
  if (Array == nullptr) {
    return true;  // a volume of no array listed has no place in the model
  }
  RAID_ROW Scratch;
  CHAR16 *Name = RaidLibLineTrimmedValue(Ahead[0], Chars[0], u':', &Scratch);
  RAID_VOLUME *Volume = RaidLibAddVolume(Array, *VolumeCount, Name, 0);
  if (Volume == nullptr) {
    return false;
  }
  (*VolumeCount)++;
  Volume->IsVolume = 1;
  Volume->SizeUnit = RAID_UNIT_GB;
  // Until "/ST" names its state, a volume counts as not normal.
  Volume->State = RAID_STATE4_OFFLINE;
  if (Array->VolumeCount == 2) {
    DropFreeSegments(Array);
  }
  SplitLine(Ahead[1], Chars[1], &Words);
  Array->RaidLevel = static_cast<UINT8>(DecimalPieceOf(Words.Words[0]));
  const RAID_WORD_CODE *Stripe =
      RaidLibFindWord(kStripeTable, PieceOf(Words.Words[3], &Scratch));
  if (Stripe != nullptr) {
    Volume->StripeSize = Stripe->Code;
  } else {
    *ErrorCode = RSTE_ERROR_STRIPE_SIZE;
  }
  SplitLine(Ahead[2], Chars[2], &Words);
  Open->BlockCount = RaidLibReadHex(Words.Words[1]);
  Open->Volume = Volume;
  return true;
}

// The disk's model: the second ":"-piece of its line, runs of blanks made
// one and the ends stripped, "Unknown" when nothing is left.
VOID ReadModel(const CHAR16 *Line, UINTN Chars, CHAR16 *Model) {
  RAID_ROW Scratch;
  const CHAR16 *Piece = RaidLibLineWord(Line, Chars, u':', 1, &Scratch);
  UINTN Length = 0;
  for (; Piece != nullptr && *Piece != 0 && Length < kModelChars; Piece++) {
    if (RaidLibIsSpace(*Piece) && (Length == 0 || Model[Length - 1] == u' ')) {
      continue;
    }
    Model[Length++] = RaidLibIsSpace(*Piece) ? u' ' : *Piece;
  }
  while (Length > 0 && Model[Length - 1] == u' ') {
    Length--;
  }
  Model[Length] = 0;
  if (Length == 0) {
    RAID_LIB_TRACE_AS("ParseControllerInfo", TARN_DEBUG_INFO,
                      "[%a]Drive model: NULL\n");
  }
}

// Blocks of a disk from the line three below its header: a " TotalBlks:"
// line gives them in its first word (none for a disk of another role);
// otherwise a member or spare has them in the second word, a non-RAID disk
// in the first.
[[nodiscard]] UINT64 DiskBlocks(const CHAR16 *Line, UINTN Chars, UINT32 Role) {
  if (Role == RAID_ROLE_OTHER) {
    return 0;
  }
  RAID_ROW Words;
  SplitLine(Line, Chars, &Words);
  if (RaidLibStartsWith(Line, u" TotalBlks:") || Role == RAID_ROLE_UNCONFIGURED) {
    return HexPieceOf(Words.Words[0]);
  }
  return HexPieceOf(Words.Words[1]);
}

// FALSE when the pool ran out.
[[nodiscard]] bool OpenDisk(ARRAY_LOOKUP *Arrays, RAID_LINE_CURSOR *Lines,
                            RAID_DRIVE_TABLE_FILL *Table, OPEN_BLOCK *Open) {
  Open->Volume = nullptr;
  Open->Disk = nullptr;
  CHAR16 *Ahead[kDiskLines];
  UINTN Chars[kDiskLines];
  RaidLibLinesAheadSized(Lines, Ahead, Chars, kDiskLines);
  RAID_ROW IdWords;
  SplitLine(Ahead[3], Chars[3], &IdWords);
  UINT64 Number = HexPieceOf(IdWords.Words[0]);
  UINT32 Id = Number > 0xFFFFFFFFULL ? kMissingDiskNumber
                                     : static_cast<UINT32>(Number);
  const RAID_WORD_CODE &State =
      RaidLibClassifyWord(kDiskStateTable, IdWords.Words[1]);
  RAID_ROW UsageWords;
  SplitLine(Ahead[6], Chars[6], &UsageWords);
  RAID_ARRAY *Owner = ArrayWithId(Arrays, HexPieceOf(UsageWords.Words[1]));
  CHAR16 Model[kModelChars + 1];
  ReadModel(Ahead[0], Chars[0], Model);
  // "Disk<number>", or "Missing Disk" for a disk the engine no longer sees.
  CHAR16 Location[kLocationChars];
  if (Id == kMissingDiskNumber) {
    (VOID)RaidLibFormat(Location, kLocationChars, u"Missing Disk");
  } else {
    RaidLibNumberedText(Location, kLocationChars, u"Disk", Id);
  }
  RAID_PHYSICAL_DRIVE *Disk = RaidLibNewDrive(
      Id, Location, Model[0] != 0 ? Model : u"Unknown", kModelChars);
  if (Disk == nullptr) {
    return false;
  }
  Disk->MediaType = RAID_MEDIA_SATA_SSD;
  Disk->SizeUnit = RAID_UNIT_GB;
  Open->BlockCount = DiskBlocks(Ahead[2], Chars[2], State.Detail);
  // Members go to their array; a spare is the engine's, whatever array its
  // block names; everything else is a free disk.
  RAID_ARRAY *Place = State.Detail == RAID_ROLE_MEMBER ? Owner : nullptr;
  RaidLibPlaceDrive(Arrays->Controller, Disk, Place, State.Code, State.Detail);
  (VOID)RaidLibAppendToDriveTable(Table, Disk);
  Open->Disk = Disk;
  return true;
}

// A capacity line: " Block Size" names the block size ("Unknown" is 512),
// the other kinds imply 512.
VOID SetCapacity(const CHAR16 *Line, UINTN Chars, const OPEN_BLOCK &Open) {
  UINT64 BlockSize = 512;
  if (RaidLibStartsWith(Line, u" Block Size")) {
    RAID_ROW Scratch;
    const CHAR16 *Value = RaidLibLineTrimmedValue(Line, Chars, u':', &Scratch);
    BlockSize = RaidLibStartsWith(Value, u"Unknown")
                    ? 512
                    : RaidLibReadDecimal(Value);
  }
  UINT64 Size = BlocksToThousandthsGb(Open.BlockCount, BlockSize);
  if (Open.Volume != nullptr) {
    Open.Volume->SizeFigure = Size;
    Open.Volume->SizeUnit = RAID_UNIT_GB;
  } else if (Open.Disk != nullptr) {
    Open.Disk->SizeFigure = Size;
    Open.Disk->SizeUnit = RAID_UNIT_GB;
  }
}

// The lines the second pass reads: block headers, then capacity lines.
constexpr const CHAR16 *kBlockLines[] = {
    u"Volume ", u"Disk ", u" Block Size", u" TotalBlocks:",
    u"    DISK_SMART_EVENT_SUPPORTED"};
constexpr RAID_LINE_PREFIXES kBlockLineSet = RaidLibLinePrefixes(kBlockLines);

// FALSE when the pool ran out on the way.
[[nodiscard]] bool SecondPass(RAID_LINE_CURSOR Lines, RAID_LINE_MARKS Marks,
                              ARRAY_LOOKUP *Arrays,
                              RAID_DRIVE_TABLE_FILL *Table, UINT32 *ErrorCode) {
  bool Whole = true;
  OPEN_BLOCK Open = {nullptr, nullptr, 0};
  UINT32 VolumeCount = 0;
  for (CHAR16 *Line = RaidLibNextMarkedLine(&Lines, &Marks, kBlockLineSet);
       Line != nullptr;
       Line = RaidLibNextMarkedLine(&Lines, &Marks, kBlockLineSet)) {
    if (RaidLibStartsWith(Line, u"Volume ")) {
      Whole &= OpenVolume(Arrays, &Lines, &VolumeCount, &Open, ErrorCode);
    } else if (RaidLibStartsWith(Line, u"Disk ")) {
      Whole &= OpenDisk(Arrays, &Lines, Table, &Open);
    } else {
      SetCapacity(Line, RaidLibCurrentLineChars(&Lines), Open);
    }
  }
  return Whole;
}

// The lines of both passes, and how many of them are marked at once (a
// report with more is searched as each pass goes).
constexpr const CHAR16 *kPassLines[] = {
    u" Total Physical Disks", u" Total Missing Disks", u"Array ",
    u"Volume ", u"Disk ", u" Block Size", u" TotalBlocks:",
    u"    DISK_SMART_EVENT_SUPPORTED"};
constexpr RAID_LINE_PREFIXES kPassLineSet = RaidLibLinePrefixes(kPassLines);
constexpr UINT32 kMostMarks = 1024;

// Mirrors keep half their disks' space, RAID 5 (n - 1) of n disks; the
// report gives the raw sums.
VOID ScaleByLevel(RAID_CONTROLLER *Controller) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    UINT64 Divisor = 1;
    UINT64 Multiplier = 1;
    if (Array->RaidLevel == 1 || Array->RaidLevel == 10) {
      Divisor = 2;
    } else if (Array->RaidLevel == 5 && Array->MemberDriveCount != 0) {
      Divisor = Array->MemberDriveCount;
      Multiplier = Array->MemberDriveCount - 1;
    } else {
      continue;
    }
    // Divided first, as the engine's own figures are.
    Array->SizeFigure = Array->SizeFigure / Divisor * Multiplier;
    Array->FreeCapacity = Array->FreeCapacity / Divisor * Multiplier;
    for (RAID_VOLUME *Segment :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Segment->IsVolume == 0) {
        Segment->SizeFigure = Segment->SizeFigure / Divisor * Multiplier;
      }
    }
  }
}

}  // namespace

EFI_STATUS ParseControllerInfo(CHAR16 *Output, RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode) {
  if (Output == nullptr || Controller == nullptr) {
    return EFI_ABORTED;
  }
  // Both passes walk a copy of one cursor: the end of the output is fixed
  // before the first pass writes its line terminators.
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  // One search finds the lines of both passes.
  UINT32 Offsets[kMostMarks];
  RAID_LINE_MARKS Marks;
  RaidLibMarkLines(&Lines, kPassLineSet, Offsets, kMostMarks, &Marks);
  ARRAY_LOOKUP Arrays = {Controller, IsListEmpty(&Controller->ArrayList) != 0,
                         nullptr};
  bool Whole = FirstPass(Lines, Marks, Controller);
  UINT32 Disks = Controller->DiskDriveCount < kMostDisks
                     ? Controller->DiskDriveCount
                     : kMostDisks;
  RAID_DRIVE_TABLE_FILL Table;
  if (EFI_ERROR(RaidLibStartDriveTable(&Table, Controller, Disks))) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  Whole &= SecondPass(Lines, Marks, &Arrays, &Table, ErrorCode);
  RaidLibFinishDriveTable(&Table);
  ScaleByLevel(Controller);
  // A record the pool could not hold leaves the model partial but
  // consistent; the read says so.
  if (!Whole) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  return EFI_SUCCESS;
}

}  // namespace rste
