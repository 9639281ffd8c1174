// The physical device section of the getconfig report: one block per
// "      Device #N" whose next line says it is a hard drive.
#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace mchp {

namespace {

// The longest drive block, and the look-aheads from its "State" line to
// its array and to its configuration type.
constexpr UINTN kDriveBlockLines = 43;
constexpr UINTN kArrayLookAhead = 15;
constexpr UINTN kConfigurationLookAhead = 29;
// Lines passed over once a drive's interface and medium are known.
constexpr UINTN kLinesAfterMedium = 16;
constexpr UINTN kLocationChars = 17;  // 16 and the terminator
constexpr UINTN kModelChars = 100;
// The role of a drive the adapter uses as cache.
constexpr UINT32 kRoleCache = 3;

// The keys of a drive's block; bit k of RaidLibContainsEach's answer is
// entry k.
constexpr const CHAR16 *kDriveBlockKeyTexts[] = {
    u"Total Size", u"Reported Location", u"Model", u"State"};
constexpr RAID_NEEDLES kDriveBlockKeys = RaidLibNeedles(kDriveBlockKeyTexts);
constexpr UINT32 kDriveSizeKey = 1U << 0;
constexpr UINT32 kLocationKey = 1U << 1;
constexpr UINT32 kModelKey = 1U << 2;
constexpr UINT32 kStateKey = 1U << 3;

// What marks the line that gives a drive's configuration type; the lines
// ahead are searched for it with a skip search over each line's extent.
constexpr const CHAR16 *kConfigurationTexts[] = {u"Drive Configuration Type"};
constexpr RAID_PHRASES kConfiguration = RaidLibPhrases(kConfigurationTexts);

// Where one classification of a drive puts it.
typedef struct {
  UINT32 State;
  UINT32 Role;
  BOOLEAN InArray;  // a member of the array numbered on its block
} DRIVE_PLACE;

// What a drive's block gives before its record is made.
typedef struct {
  UINT32 Device;
  UINT32 Channel;
  UINT32 Slot;
  CHAR16 Location[kLocationChars];
  CHAR16 Model[MCHP_KEYWORD_CHARS];
  UINT64 SizeFigure;
  UINT32 SizeUnit;
  UINT32 MediaType;
  UINT32 ArrayNumber;
  UINT32 Classifications;
  DRIVE_PLACE Place;  // the last classification
  // Classifications before the last, counted by where they put the drive.
  UINT32 EarlierMembers;
  UINT32 EarlierSpares;
  UINT32 EarlierOthers;
} DRIVE_BLOCK;

// The lines a "State" line's look-aheads walked, kept so that the block
// reader, which reads the same lines next, takes them from here instead of
// walking them again. Each entry is the walk as it stood after one more
// line; a walk standing where one of them started (or stepped back onto
// its line) goes on exactly as that entry did, since the text ahead is
// only ever cut where the walk cut it.
typedef struct {
  const CHAR16 *From;     // where the look-ahead started
  RAID_LINE_CURSOR Walk;  // the look-ahead, for lines not walked yet
  RAID_LINE_CURSOR After[kConfigurationLookAhead];
  UINTN Count;    // lines walked
  UINTN Taken;    // entries the block reader has taken
  BOOLEAN Ended;  // the output ended within the look-ahead
} LINES_AHEAD;

// A look-ahead from where Lines stands, none of its lines walked yet.
VOID StartAhead(LINES_AHEAD *Ahead, const RAID_LINE_CURSOR *Lines) {
  Ahead->From = Lines->Next;
  Ahead->Walk = *Lines;
  Ahead->Count = 0;
  Ahead->Taken = 0;
  Ahead->Ended = FALSE;
}

// The line Index + 1 further on from where the look-ahead started, walked
// when first asked for; NULL past the output's end.
[[nodiscard]] CHAR16 *LineAhead(LINES_AHEAD *Ahead, UINTN Index) {
  while (Ahead->Count <= Index && !Ahead->Ended) {
    if (RaidLibNextLine(&Ahead->Walk) == nullptr) {
      Ahead->Ended = TRUE;
    } else {
      Ahead->After[Ahead->Count++] = Ahead->Walk;
    }
  }
  return Index < Ahead->Count ? Ahead->After[Index].Current : nullptr;
}

// The next line of Lines, from the look-ahead's entries where they reach.
[[nodiscard]] CHAR16 *NextLineSeen(LINES_AHEAD *Ahead,
                                   RAID_LINE_CURSOR *Lines) {
  UINTN Index = Ahead->Taken > 0 ? Ahead->Taken - 1 : 0;
  for (; Index < Ahead->Count; Index++) {
    const RAID_LINE_CURSOR &Entry = Ahead->After[Index];
    const CHAR16 *Before =
        Index == 0 ? Ahead->From : Ahead->After[Index - 1].Next;
    if (Lines->End != Entry.End || Before > Lines->Next) {
      break;
    }
    if (Lines->Next == Before || Lines->Next == Entry.Current) {
      *Lines = Entry;
      Ahead->Taken = Index + 1;
      return Entry.Current;
    }
  }
  return RaidLibNextLine(Lines);
}

// The array number on the first "         Array" line of the next lines;
// Previous when there is none.
[[nodiscard]] UINT32 ArrayNumberAhead(LINES_AHEAD *Ahead, UINT32 Previous) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  for (UINTN Index = 0; Index < kArrayLookAhead; Index++) {
    CHAR16 *Line = LineAhead(Ahead, Index);
    if (Line == nullptr) {
      break;
    }
    if (RaidLibStartsWith(Line, u"         Array")) {
      return iGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS);
    }
  }
  return Previous;
}

VOID Classify(DRIVE_BLOCK *Block, UINT32 State, UINT32 Role, BOOLEAN InArray) {
  if (Block->Classifications > 0) {
    const DRIVE_PLACE &Last = Block->Place;
    if (Last.Role == RAID_ROLE_HOT_SPARE) {
      Block->EarlierSpares++;
    } else if (Last.InArray) {
      Block->EarlierMembers++;
    } else {
      Block->EarlierOthers++;
    }
  }
  Block->Place = {State, Role, InArray};
  Block->Classifications++;
}

// A state word that needs the drive's configuration type, classified once
// for each "Drive Configuration Type" line of the look-ahead (the report
// prints one; each found counts, the last one wins).
VOID ClassifyByConfiguration(LINES_AHEAD *Ahead, const CHAR16 *Word,
                             DRIVE_BLOCK *Block) {
  for (UINTN Index = 0; Index < kConfigurationLookAhead; Index++) {
    CHAR16 *Line = LineAhead(Ahead, Index);
    if (Line == nullptr) {
      return;
    }
    const UINTN Span = MchpLineChars(&Ahead->After[Index], Line);
    UINT32 Which;
    if (RaidLibNextPhraseEnd(Line, Span, 0, kConfiguration, &Which) == Span) {
      continue;
    }
    BOOLEAN Hba = RaidLibContains(Line, u"HBA");
    if (RaidLibWordIs(Word, u"Online")) {
      if (RaidLibContains(Line, u"Data")) {
        Classify(Block, RAID_STATE2_ONLINE, RAID_ROLE_MEMBER, TRUE);
      } else {
        Classify(Block, RAID_STATE3_CACHE, kRoleCache, FALSE);
      }
    } else if (Hba) {
      Classify(Block, RAID_STATE2_HBA, RAID_ROLE_UNCONFIGURED, FALSE);
    } else if (RaidLibWordIs(Word, u"Exposed to OS")) {
      Classify(Block, RAID_STATE2_UGOOD, RAID_ROLE_UNCONFIGURED, FALSE);
    } else {
      Classify(Block, RAID_STATE_INVALID, RAID_ROLE_OTHER, FALSE);
    }
  }
}

// A "State" line of a drive's block; Lines stands behind it.
VOID ClassifyStateLine(const RAID_LINE_CURSOR *Lines, const CHAR16 *Line,
                       LINES_AHEAD *Ahead, DRIVE_BLOCK *Block) {
  if (RaidLibContains(Line, u"Dedicated Hot-Spare")) {
    Classify(Block, RAID_STATE2_DEDICATED, RAID_ROLE_HOT_SPARE, FALSE);
    return;
  }
  if (RaidLibContains(Line, u"Auto Replace Hot-Spare")) {
    Classify(Block, RAID_STATE2_AUTOREPLACE, RAID_ROLE_HOT_SPARE, FALSE);
    return;
  }
  CHAR16 Word[MCHP_KEYWORD_CHARS];
  if (sGetKeyWord(Line, Word, MCHP_KEYWORD_CHARS) == nullptr) {
    Word[0] = 0;
  }
  StartAhead(Ahead, Lines);
  Block->ArrayNumber = ArrayNumberAhead(Ahead, Block->ArrayNumber);
  if (RaidLibWordIs(Word, u"Ready")) {
    Classify(Block, RAID_STATE2_UGOOD, RAID_ROLE_UNCONFIGURED, FALSE);
  } else if (RaidLibWordIs(Word, u"Offline")) {
    Classify(Block, RAID_STATE2_OFFLINE, RAID_ROLE_MEMBER, TRUE);
  } else {
    ClassifyByConfiguration(Ahead, Word, Block);
  }
}

// "Enclosure 0, Slot 3(Connector 1" gives enclosure 0 and slot 3; a value
// of fewer words gives channel and device instead.
VOID ReadLocation(const CHAR16 *Line, DRIVE_BLOCK *Block) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  RAID_ROW Words;
  RaidLibSplitRow(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS), &Words);
  if (Words.Words[2] != nullptr) {
    Block->Slot = static_cast<UINT32>(RaidLibReadDecimal(Words.Words[3]));
    UINT32 Enclosure =
        static_cast<UINT32>(RaidLibReadDecimal(Words.Words[1]));
    (VOID)RaidLibFormat(Block->Location, kLocationChars, u"%u:%u", Enclosure,
                        Block->Slot);
  } else {
    (VOID)RaidLibFormat(Block->Location, kLocationChars, u"%u:%u",
                        Block->Channel, Block->Device);
  }
  // A location is a label of at most 16 characters; numbers too long for
  // it are cut, and nothing addresses a drive by its label.
}

// Reads one drive's block, at most its length, up to the next device.
VOID ReadDriveBlock(const CHAR8 *Caller, RAID_LINE_CURSOR *Lines,
                    DRIVE_BLOCK *Block) {
  const CHAR16 *Interface = nullptr;
  const CHAR16 *Medium = nullptr;
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  LINES_AHEAD Ahead = {};  // nothing walked ahead until a "State" line
  for (UINTN Budget = kDriveBlockLines; Budget > 0; Budget--) {
    CHAR16 *Line = NextLineSeen(&Ahead, Lines);
    if (Line == nullptr) {
      return;
    }
    if (RaidLibStartsWith(Line, u"      Device #") ||
        RaidLibStartsWith(Line, u"Connector information")) {
      RaidLibStepBack(Lines);
      return;
    }
    // The line stays as it is below, so its keys are looked for at once.
    const UINT32 Found = RaidLibContainsEachIn(Line, MchpLineChars(Lines, Line),
                                               kDriveBlockKeys);
    if ((Found & kDriveSizeKey) != 0) {
      MchpReadSize(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS),
                   &Block->SizeFigure, &Block->SizeUnit);
    }
    if ((Found & kLocationKey) != 0) {
      ReadLocation(Line, Block);
    }
    if (RaidLibStartsWith(Line, u"         Transfer Speed")) {
      Interface = RaidLibContains(Line, u"SATA") ? u"SATA" : u"SAS";
    }
    if (RaidLibStartsWith(Line, u"         SSD")) {
      Medium = RaidLibContains(Line, u"Yes") ? u"SSD" : u"HDD";
    }
    if (Interface != nullptr && Medium != nullptr) {
      // The state and the array come before these lines in the report.
      Block->MediaType = RaidLibMediaCode(Interface, Medium);
      for (UINTN Count = 0; Count < kLinesAfterMedium &&
                            NextLineSeen(&Ahead, Lines) != nullptr;
           Count++) {
      }
      return;
    }
    if ((Found & kModelKey) != 0) {
      RAID_ROW Row;
      CHAR16 *Model = RaidLibTrimmedValue(Line, u":", &Row);
      if (Model == nullptr || Model[0] == 0) {
        RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a] Device Model: NULL\n");
      } else {
        // A longer model is cut: the record keeps 100 characters anyway.
        (VOID)RaidLibFormat(Block->Model, MCHP_KEYWORD_CHARS, u"%s", Model);
      }
    }
    if ((Found & kStateKey) != 0) {
      ClassifyStateLine(Lines, Line, &Ahead, Block);
    }
  }
}

// Makes the drive record of a block, enters it in the drive table once per
// classification and links it where its last classification says. Earlier
// classifications are counted too (deliberately simple; a report has one
// per drive).
[[nodiscard]] EFI_STATUS AddDrive(RAID_CONTROLLER *Controller,
                                  RAID_DRIVE_TABLE_FILL *Fill,
                                  const DRIVE_BLOCK *Block) {
  RAID_PHYSICAL_DRIVE *Drive =
      RaidLibNewDrive(Block->Slot, Block->Location, Block->Model, kModelChars);
  if (Drive == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Drive->Position->Values[MCHP_POSITION_CHANNEL] = Block->Channel;
  Drive->Position->Values[MCHP_POSITION_SLOT] = Block->Slot;
  Drive->Position->Values[MCHP_POSITION_ONE] = 1;
  Drive->Position->Values[MCHP_POSITION_DEVICE] = Block->Device;
  Drive->SizeFigure = Block->SizeFigure;
  Drive->SizeUnit = Block->SizeUnit;
  Drive->MediaType = Block->MediaType;
  RAID_ARRAY *Array = RaidLibFindArray(Controller, Block->ArrayNumber);
  Controller->GlobalSpareCount += Block->EarlierSpares;
  if (Array != nullptr) {
    Array->MemberDriveCount += Block->EarlierMembers;
  } else {
    Controller->UnconfiguredDriveCount += Block->EarlierMembers;
  }
  Controller->UnconfiguredDriveCount += Block->EarlierOthers;
  for (UINT32 Index = 0; Index < Block->Classifications; Index++) {
    (VOID)RaidLibAppendToDriveTable(Fill, Drive);
  }
  if (Block->Classifications == 0) {
    // No classifiable state: an unconfigured drive of no known state.
    RaidLibPlaceDrive(Controller, Drive, nullptr, RAID_STATE_INVALID,
                      RAID_ROLE_UNCONFIGURED);
    return EFI_SUCCESS;
  }
  const DRIVE_PLACE &Place = Block->Place;
  RaidLibPlaceDrive(Controller, Drive, Place.InArray ? Array : nullptr,
                    Place.State, Place.Role);
  return EFI_SUCCESS;
}

[[nodiscard]] bool EndsDriveSection(const CHAR16 *Line) {
  return RaidLibStartsWith(Line, u"Connector information") ||
         RaidLibStartsWith(Line, u"Command completed successfully") ||
         RaidLibStartsWith(Line, u"maxCache information") ||
         RaidLibStartsWith(Line, u"      No physical drives attached");
}

}  // namespace

EFI_STATUS ParsePhysicalDevices(const CHAR8 *Caller, RAID_LINE_CURSOR *Lines,
                                RAID_CONTROLLER *Controller,
                                UINT32 HardDriveLines, UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  RAID_DRIVE_TABLE_FILL Fill;
  EFI_STATUS Status = RaidLibStartDriveTable(&Fill, Controller, HardDriveLines);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  UINT32 Channels = 0;
  UINT32 ArrayNumber = MCHP_KEYWORD_MISSING;
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  for (CHAR16 *Line = RaidLibNextLine(Lines);
       Line != nullptr && HardDriveLines != 0 && !EndsDriveSection(Line);
       Line = RaidLibNextLine(Lines)) {
    if (RaidLibStartsWith(Line, u"   Channel #")) {
      Channels++;
      continue;
    }
    if (!RaidLibStartsWith(Line, u"      Device #")) {
      continue;
    }
    UINT32 Device = iiGetKeyWord(Line, u"#", Value, MCHP_KEYWORD_CHARS);
    // Enclosures and other devices are passed over.
    if (!RaidLibStartsWith(RaidLibPeekLine(Lines),
                           u"         Device is a HardDrive")) {
      continue;
    }
    DRIVE_BLOCK Block = {};
    Block.Device = Device;
    Block.Channel = Channels - 1;
    Block.ArrayNumber = ArrayNumber;
    (VOID)RaidLibNextLine(Lines);
    ReadDriveBlock(Caller, Lines, &Block);
    ArrayNumber = Block.ArrayNumber;
    Status = AddDrive(Controller, &Fill, &Block);
    if (EFI_ERROR(Status)) {
      break;
    }
  }
  RaidLibFinishDriveTable(&Fill);
  return Status;
}

}  // namespace mchp
