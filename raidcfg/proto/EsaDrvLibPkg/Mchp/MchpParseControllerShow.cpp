// The getconfig report: the controller's names, its arrays and logical
// devices. The physical devices are read in MchpParseDrives.cpp.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"
#include "RaidLibWordTable.h"

namespace mchp {

namespace {

// The longest blocks the report gives an array and a logical device.
constexpr UINTN kArrayBlockLines = 268;
constexpr UINTN kVolumeBlockLines = 280;

// The phrases the report's lines are counted by: drives, logical devices
// and arrays.
constexpr const CHAR16 *kCountedPhraseTexts[] = {
    u"Device is a HardDrive", u"Logical Device number", u"Array Number"};
constexpr RAID_PHRASES kCountedPhrases = RaidLibPhrases(kCountedPhraseTexts);

// The keys of an array's block and of a logical device's, each line looked
// at once for all of them; bit k of the answer is entry k.
constexpr const CHAR16 *kArrayBlockKeyTexts[] = {
    u"Array Number", u"Logical device information", u"Total Size",
    u"Unused Size", u"Array Logical Device Information"};
constexpr RAID_NEEDLES kArrayBlockKeys = RaidLibNeedles(kArrayBlockKeyTexts);
constexpr UINT32 kArrayNumberKey = 1U << 0;
constexpr UINT32 kVolumeSectionKey = 1U << 1;
constexpr UINT32 kTotalSizeKey = 1U << 2;
constexpr UINT32 kUnusedSizeKey = 1U << 3;
constexpr UINT32 kArrayVolumesKey = 1U << 4;

constexpr const CHAR16 *kVolumeBlockKeyTexts[] = {
    u"   Status of Logical Device",
    u"Size                                     ", u"Logical Device name"};
constexpr RAID_NEEDLES kVolumeBlockKeys = RaidLibNeedles(kVolumeBlockKeyTexts);
constexpr UINT32 kVolumeStatusKey = 1U << 0;
constexpr UINT32 kVolumeSizeKey = 1U << 1;
constexpr UINT32 kVolumeNameKey = 1U << 2;

// What ends the logical device section where it appears in a line: the
// maxCache section (either spelling) or the note that there are none.
constexpr const CHAR16 *kVolumeSectionEndTexts[] = {
    u"maxCache information", u"MaxCache information",
    u"No logical devices configured"};
constexpr RAID_NEEDLES kVolumeSectionEnds =
    RaidLibNeedles(kVolumeSectionEndTexts);
constexpr UINT32 kMaxCacheKeys = (1U << 0) | (1U << 1);
constexpr UINT32 kNoVolumesKey = 1U << 2;

// Status words of a logical device that are taken as they are.
constexpr RAID_WORD_CODE kVolumeStateWords[] = {
    {u"Optimal", RAID_STATE2_OPTIMAL},
    {u"Failed", RAID_STATE3_FAILED},
    {u"Interim Recovery", RAID_STATE2_DEGRADED},
    {u"Recovering", RAID_STATE2_REBUILD},
    {u"Dgrd", RAID_STATE2_DEGRADED},
    {u"Pdgd", RAID_STATE2_PARTIALLY_DEGRADED},
    {u"Offline", RAID_STATE2_OFFLINE},
    {u"rebuilding", RAID_STATE2_REBUILD},
    {u"Rebuilding", RAID_STATE2_REBUILD},
};
constexpr RAID_WORD_TABLE kVolumeStates =
    RaidLibWordTable(kVolumeStateWords, RaidMatchExact, RAID_STATE2_OPTIMAL);

// The state code of a "Status of Logical Device" value. Only a status that
// carries the parity-initialisation words after another word ("Optimal
// (Background Parity Initialization)") is told apart; one that begins with
// the parenthesis counts as optimal. Kept so on purpose.
[[nodiscard]] UINT32 VolumeStateCode(const CHAR16 *Status) {
  if (const RAID_WORD_CODE *Entry = RaidLibFindWord(kVolumeStates, Status)) {
    return Entry->Code;
  }
  if (!RaidLibContains(Status, u"Background Parity Initialization") ||
      RaidLibStartsWith(Status, u"(Bac")) {
    return RAID_STATE2_OPTIMAL;
  }
  return RAID_STATE_INVALID;
}

// The number in Word (a row's word); when the word is missing or empty,
// the number behind "number" on Line (MCHP_KEYWORD_MISSING_SHORT without
// one).
[[nodiscard]] UINT32 NumberWord(const CHAR16 *Line, const CHAR16 *Word) {
  if (Word != nullptr && !RaidLibWordIs(Word, u"\r")) {
    return static_cast<UINT32>(RaidLibReadDecimal(Word));
  }
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  return iiGetKeyWord(Line, u" number ", Value, MCHP_KEYWORD_CHARS);
}

// Replaces *Field by the stripped value of Line; an empty value leaves it
// and is traced with Missing.
[[nodiscard]] EFI_STATUS TakeControllerValue(const CHAR8 *Caller,
                                             const CHAR16 *Line,
                                             CHAR16 **Field,
                                             const CHAR8 *Missing) {
  RAID_ROW Row;
  const CHAR16 *Piece = RaidLibSecondPiece(Line, u":", &Row);
  if (Piece == nullptr || RaidLibWordIs(Piece, u" \r")) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, Missing);
    return EFI_SUCCESS;
  }
  CHAR16 *Value = RaidLibCopyStripped(Piece, 0);
  if (Value == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  FreePool(*Field);
  *Field = Value;
  return EFI_SUCCESS;
}

// The controller section: model, serial number and firmware, the first
// three such lines before the arrays or logical devices.
[[nodiscard]] EFI_STATUS ParseControllerSection(const CHAR8 *Caller,
                                                RAID_LINE_CURSOR *Lines,
                                                RAID_CONTROLLER *Controller) {
  UINTN Taken = 0;
  EFI_STATUS Status = EFI_SUCCESS;
  for (CHAR16 *Line = RaidLibNextLine(Lines); Line != nullptr && Taken < 3;
       Line = RaidLibNextLine(Lines)) {
    if (RaidLibStartsWith(Line, u"Array Information") ||
        RaidLibStartsWith(Line, u"Logical device information")) {
      RaidLibStepBack(Lines);
      break;
    }
    if (RaidLibStartsWith(Line, u"   Controller Model") ||
        RaidLibContains(Line, u"Controller Model")) {
      Status = TakeControllerValue(Caller, Line, &Controller->Private->ProductName,
                                   "[%a]Controller Device Name: NULL\n");
      Taken++;
    } else if (RaidLibStartsWith(Line, u"   Controller Serial Number") ||
               RaidLibContains(Line, u"Controller Serial Number")) {
      Status = TakeControllerValue(Caller, Line, &Controller->SerialNumber,
                                   "[%a]Controller Serial Number: NULL\n");
      Taken++;
    } else if (RaidLibStartsWith(Line, u"   Firmware") ||
               RaidLibContains(Line, u"Firmware")) {
      Status = TakeControllerValue(Caller, Line, &Controller->FirmwareVersion,
                                   "[%a]Controller FW Version: NULL\n");
      Taken++;
    }
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  return EFI_SUCCESS;
}

// The RAID level on the "Logical N : Optimal (5, Data, ...)" row: the
// number after "(" up to ",".
[[nodiscard]] UINT8 RaidLevelOfRow(const CHAR16 *Row) {
  RAID_ROW Pieces;
  RAID_ROW Parts;
  CHAR16 *Inside = RaidLibSecondPiece(Row, u"(", &Pieces);
  if (Inside == nullptr) {
    return 0;
  }
  RaidLibSplitRowOn(Inside, u",", &Parts);
  return static_cast<UINT8>(RaidLibReadDecimal(Parts.Words[0]));
}

// One array's block: its sizes and RAID level.
VOID ParseArrayBlock(RAID_LINE_CURSOR *Lines, RAID_ARRAY *Array) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  UINTN Budget = kArrayBlockLines;
  for (CHAR16 *Line = RaidLibNextLineWithin(Lines, &Budget); Line != nullptr;
       Line = RaidLibNextLineWithin(Lines, &Budget)) {
    const UINT32 Found = RaidLibContainsEachIn(Line, MchpLineChars(Lines, Line),
                                               kArrayBlockKeys);
    if ((Found & (kArrayNumberKey | kVolumeSectionKey)) != 0) {
      RaidLibStepBack(Lines);
      return;
    }
    if ((Found & kTotalSizeKey) != 0) {
      MchpReadSize(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS),
                   &Array->SizeFigure, &Array->SizeUnit);
    } else if ((Found & kUnusedSizeKey) != 0) {
      MchpReadSize(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS),
                   &Array->FreeCapacity, &Array->FreeCapacityUnit);
    } else if ((Found & kArrayVolumesKey) != 0) {
      Array->RaidLevel = RaidLevelOfRow(RaidLibLineAhead(Lines, 4));
    }
  }
}

// The array section. *Complete is set when it reached the logical devices.
[[nodiscard]] EFI_STATUS ParseArraySection(RAID_LINE_CURSOR *Lines,
                                           RAID_CONTROLLER *Controller,
                                           RAID_ARRAY **LastArray,
                                           BOOLEAN *Complete) {
  for (CHAR16 *Line = RaidLibNextLine(Lines); Line != nullptr;
       Line = RaidLibNextLine(Lines)) {
    if (RaidLibContains(Line, u"Logical device information")) {
      RaidLibStepBack(Lines);
      *Complete = TRUE;
      return EFI_SUCCESS;
    }
    if (!RaidLibContains(Line, u"Array Number")) {
      continue;
    }
    RAID_ROW Words;
    RaidLibSplitRow(Line, &Words);
    RAID_ARRAY *Array =
        RaidLibAddArray(Controller, NumberWord(Line, Words.Words[2]), 0);
    if (Array == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
    *LastArray = Array;
    ParseArrayBlock(Lines, Array);
  }
  return EFI_SUCCESS;
}

// What a logical device's block gives before its record is made.
typedef struct {
  UINT32 Id;
  UINT32 State;
  UINT64 SizeFigure;
  UINT32 SizeUnit;
  CHAR16 Name[MCHP_KEYWORD_CHARS];
} VOLUME_BLOCK;

// One logical device's block. *Array becomes the array its "   Array" line
// names, when there is one.
VOID ParseVolumeBlock(RAID_LINE_CURSOR *Lines, RAID_CONTROLLER *Controller,
                      VOLUME_BLOCK *Volume, RAID_ARRAY **Array) {
  CHAR16 Value[MCHP_KEYWORD_CHARS];
  UINTN Budget = kVolumeBlockLines;
  for (CHAR16 *Line = RaidLibNextLineWithin(Lines, &Budget); Line != nullptr;
       Line = RaidLibNextLineWithin(Lines, &Budget)) {
    if (RaidLibStartsWith(Line, u"Logical Device number") ||
        RaidLibStartsWith(Line, u"Physical Device information")) {
      RaidLibStepBack(Lines);
      return;
    }
    if (RaidLibStartsWith(Line, u"   Logical Device segment information")) {
      return;
    }
    if (RaidLibStartsWith(Line, u"   Array")) {
      UINT32 Id = iGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS);
      if (RAID_ARRAY *Named = RaidLibFindArray(Controller, Id)) {
        *Array = Named;
      }
      continue;
    }
    const UINT32 Found = RaidLibContainsEachIn(Line, MchpLineChars(Lines, Line),
                                               kVolumeBlockKeys);
    if ((Found & kVolumeStatusKey) != 0) {
      if (sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS) != nullptr) {
        Volume->State = VolumeStateCode(Value);
      }
    } else if ((Found & kVolumeSizeKey) != 0) {
      MchpReadSize(sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS),
                   &Volume->SizeFigure, &Volume->SizeUnit);
    } else if ((Found & kVolumeNameKey) != 0) {
      if (sGetKeyWord(Line, Value, MCHP_KEYWORD_CHARS) != nullptr) {
        // Value is no longer than Name: the copy cannot fail.
        (VOID)StrCpyS(Volume->Name, MCHP_KEYWORD_CHARS, Value);
      }
    }
  }
}

// The logical device section. A device whose block names no array joins
// the array used last (deliberately unchecked); with none yet it is left
// out, since it has no array to belong to.
[[nodiscard]] EFI_STATUS ParseVolumeSection(RAID_LINE_CURSOR *Lines,
                                            RAID_CONTROLLER *Controller,
                                            RAID_ARRAY **LastArray) {
  for (CHAR16 *Line = RaidLibNextLine(Lines); Line != nullptr;
       Line = RaidLibNextLine(Lines)) {
    const UINT32 Ends = RaidLibContainsEachIn(
        Line, MchpLineChars(Lines, Line), kVolumeSectionEnds);
    if ((Ends & kMaxCacheKeys) != 0) {
      for (Line = RaidLibNextLine(Lines); Line != nullptr &&
                                          !RaidLibStartsWith(
                                              Line, u"Physical Device information");
           Line = RaidLibNextLine(Lines)) {
      }
      RaidLibStepBack(Lines);
      return EFI_SUCCESS;
    }
    if ((Ends & kNoVolumesKey) != 0) {
      return EFI_SUCCESS;
    }
    if (RaidLibStartsWith(Line, u"Physical Device information")) {
      RaidLibStepBack(Lines);
      return EFI_SUCCESS;
    }
    if (!RaidLibStartsWith(Line, u"Logical Device number")) {
      continue;
    }
    RAID_ROW Words;
    RaidLibSplitRow(Line, &Words);
    VOLUME_BLOCK Block = {};
    Block.Id = NumberWord(Line, Words.Words[3]);
    ParseVolumeBlock(Lines, Controller, &Block, LastArray);
    if (*LastArray == nullptr) {
      continue;
    }
    RAID_VOLUME *Volume = RaidLibAddVolume(*LastArray, Block.Id, Block.Name, 0);
    if (Volume == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
    Volume->State = Block.State;
    Volume->SizeFigure = Block.SizeFigure;
    Volume->SizeUnit = Block.SizeUnit;
  }
  return EFI_SUCCESS;
}

// Traces the report's count (a line counts once for each phrase it holds)
// and gives its hard drives.
[[nodiscard]] UINT32 TraceCount(const CHAR8 *Caller,
                                const MCHP_REPORT_COUNT &Count,
                                RAID_CONTROLLER *Controller) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a] : %d LineCount:%d pds/lds/ars:%d/%d/%d\n",
                    Controller->Id, Count.Lines, Count.With[0], Count.With[1],
                    Count.With[2]);
  return Count.With[0];
}

// The report's trace lines carry the name of the parser it is given to.
constexpr CHAR8 kCaller[] = "ParseControllerShow";

[[nodiscard]] EFI_STATUS ParseReport(RAID_LINE_CURSOR *Lines,
                                     const MCHP_REPORT_COUNT &Count,
                                     RAID_CONTROLLER *Controller,
                                     UINT32 *ErrorCode) {
  UINT32 HardDrives = TraceCount(kCaller, Count, Controller);
  EFI_STATUS Status = RaidLibResetControllerModel(Controller);
  RAID_ARRAY *LastArray = nullptr;
  BOOLEAN ArraysComplete = FALSE;
  for (CHAR16 *Line = RaidLibNextLine(Lines);
       Line != nullptr && !EFI_ERROR(Status); Line = RaidLibNextLine(Lines)) {
    if (RaidLibStartsWith(Line, u"Controller information")) {
      Status = ParseControllerSection(kCaller, Lines, Controller);
    } else if (RaidLibStartsWith(Line, u"Array Information") &&
               !ArraysComplete) {
      Status = ParseArraySection(Lines, Controller, &LastArray,
                                 &ArraysComplete);
    } else if (RaidLibStartsWith(Line, u"Logical device information")) {
      Status = ParseVolumeSection(Lines, Controller, &LastArray);
    } else if (RaidLibStartsWith(Line, u"Physical Device information")) {
      Status = ParsePhysicalDevices(kCaller, Lines, Controller, HardDrives,
                                    ErrorCode);
      break;
    }
  }
  if (Status == EFI_OUT_OF_RESOURCES) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
  }
  return Status;
}

}  // namespace

UINTN MchpCountReport(const CHAR16 *Output, UINTN BufferChars,
                      MCHP_REPORT_COUNT *Count) {
  UINTN TextChars = 0;
  Count->Lines = RaidLibCountBufferLines(Output, BufferChars, kCountedPhrases,
                                         Count->With, &TextChars);
  return TextChars;
}

EFI_STATUS ParseControllerShow(CHAR16 *Output, UINTN OutputChars,
                               RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode) {
  if (Output == nullptr) {
    return EFI_ABORTED;
  }
  MCHP_REPORT_COUNT Count;
  const UINTN TextChars = MchpCountReport(Output, OutputChars, &Count);
  return ParseControllerShowText(Output, TextChars, Count, Controller,
                                 ErrorCode);
}

EFI_STATUS ParseControllerShowText(CHAR16 *Text, UINTN TextChars,
                                   const MCHP_REPORT_COUNT &Count,
                                   RAID_CONTROLLER *Controller,
                                   UINT32 *ErrorCode) {
  if (Text == nullptr) {
    return EFI_ABORTED;
  }
  RAID_LINE_CURSOR Lines;
  RaidLibLinesOver(&Lines, Text, TextChars);
  return ParseReport(&Lines, Count, Controller, ErrorCode);
}

}  // namespace mchp
