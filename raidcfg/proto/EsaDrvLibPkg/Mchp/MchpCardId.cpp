// Which arcconf controller number is our adapter: "list" counts the
// adapters and, with several, names each by its slot.
//
// The UEFI build of the tool prints one row per adapter under the
// "Controller information" heading, four lines below it:
//   Controller 1:             : Optimal, 14 1, RAID (Hide RAW), ...
// Its second comma-separated field holds the adapter's slot and then its
// controller number (docs/microchip.md).
#include <Library/BaseMemoryLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibLines.h"
#include "RaidLibOperation.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp {

namespace {

constexpr UINTN kListCopyChars = MCHP_LIST_COPY_BYTES / sizeof(CHAR16);
constexpr UINTN kOutputChars = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16);

// The copy of the "list" output that the slot search cuts up.
constinit CHAR16 gListCopy[kOutputChars] = {};

// The decimal read of the second piece of Line cut at Separators; 0 without
// one.
[[nodiscard]] UINT32 SecondPieceNumber(const CHAR16 *Line,
                                       const CHAR16 *Separators) {
  RAID_ROW Row;
  return static_cast<UINT32>(
      RaidLibReadDecimal(RaidLibSecondPiece(Line, Separators, &Row)));
}

// The card number in Field: its part before ":", second blank-separated
// word. 1 when the field holds nothing before a ":".
[[nodiscard]] UINT32 CardNumberIn(const CHAR16 *Field) {
  RAID_ROW Parts;
  if (RaidLibSplitRowOn(Field, u":", &Parts) == 0) {
    return 1;
  }
  RAID_ROW Words;
  RaidLibSplitRow(Parts.Words[0], &Words);
  return static_cast<UINT32>(RaidLibReadDecimal(Words.Words[1]));
}

// TRUE when the adapter row names SlotNumber in its second comma field;
// *CardId is then read from the field that FieldIndex picks (the second for
// the start-up search, the first for the search after a renumbering).
[[nodiscard]] bool RowNamesSlot(const CHAR16 *Line, UINT16 SlotNumber,
                                UINTN FieldIndex, UINT32 *CardId) {
  RAID_ROW Fields;
  if (RaidLibSplitRowOn(Line, u",", &Fields) < 2) {
    return false;
  }
  if (RaidLibReadDecimal(Fields.Words[1]) != SlotNumber) {
    return false;
  }
  *CardId = CardNumberIn(Fields.Words[FieldIndex]);
  return true;
}

[[nodiscard]] bool IsListEnd(const CHAR16 *Line) {
  return Line == nullptr ||
         RaidLibContains(Line, u"Command completed successfully");
}

// The start-up search: each "Controller information" block whose heading
// row (two lines below) names "Controller ID" lists its adapters from four
// lines below on.
VOID FindCardBySlot(CHAR16 *List, RAID_CONTROLLER *Controller) {
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, List, kListCopyChars);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); !IsListEnd(Line);
       Line = RaidLibNextLine(&Lines)) {
    if (!RaidLibStartsWith(Line, u"Controller information") ||
        !RaidLibContains(RaidLibLineAhead(&Lines, 2), u"Controller ID")) {
      continue;
    }
    CHAR16 *Row = RaidLibSkipLines(&Lines, 4);
    for (; Row != nullptr && RaidLibContains(Row, u"Controller ") &&
           !IsListEnd(Row);
         Row = RaidLibNextLine(&Lines)) {
      if (RowNamesSlot(Row, Controller->SlotNumber, 1,
                       &Controller->Private->CardId)) {
        return;
      }
    }
    if (IsListEnd(Row)) {
      return;
    }
    // The search resumes two lines after the last line examined.
    (VOID)RaidLibNextLine(&Lines);
  }
}

}  // namespace

UINT32 ParseControllerShowCtrlCount(CHAR16 *Output, UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  UINT32 Count = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, kOutputChars);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Controllers found") ||
        RaidLibContains(Line, u"Controllers found") ||
        RaidLibContains(Line, u"Controllers Found")) {
      Count = SecondPieceNumber(Line, u":");
      break;
    }
    if (RaidLibContains(Line, u"Controller Count") ||
        RaidLibContains(Line, u"Controllers Count") ||
        RaidLibContains(Line, u"Controller")) {
      Count = SecondPieceNumber(Line, u"=");
      break;
    }
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Controller Count: %d\n", Count);
  return Count;
}

EFI_STATUS MchpGetCardId(RAID_CONTROLLER *Controller, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  EFI_STATUS Status = RaidLibToolAvailable(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  ZeroMem(gRaidToolOutput, MCHP_LIST_COPY_BYTES);
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(RaidLibSharedRun(__func__, MCHP_LIST_COMMAND_CHARS),
                     ErrorCode, u"%S list", Controller->Capability->ToolName));
  CopyMem(gListCopy, gRaidToolOutput, MCHP_LIST_COPY_BYTES);
  gListCopy[kListCopyChars] = 0;
  gMchpCtrlCount = ParseControllerShowCtrlCount(gRaidToolOutput, ErrorCode);
  if (gMchpCtrlCount == 0) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Error: Card Count %d\n",
                   gMchpCtrlCount);
    return EFI_ABORTED;
  }
  if (gMchpCtrlCount == 1) {
    Controller->Private->CardId = 1;
    return EFI_SUCCESS;
  }
  FindCardBySlot(gListCopy, Controller);
  return EFI_SUCCESS;
}

// Deliberately unlike MchpGetCardId: the tool is named "arcconf.efi" whatever
// the profile says, the number starts at 1, and a matching row gives its
// number from its first field ("Controller 2:"); any row naming a
// controller is looked at, wherever it stands.
EFI_STATUS MchpGetCardIdN(RAID_CONTROLLER *Controller, UINT16 SlotNumber,
                          UINT32 *CardId, UINT32 *ErrorCode) {
  (VOID)Controller;
  *CardId = 1;
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(RaidLibSharedRun(__func__, MCHP_LIST_COMMAND_CHARS),
                     ErrorCode, u"%S list", u"arcconf.efi"));
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, gRaidToolOutput, kOutputChars);
  for (CHAR16 *Line = RaidLibNextLine(&Lines);
       Line != nullptr &&
       !RaidLibContains(Line, u"Command completed successfully.");
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibContains(Line, u"Controller") &&
        !RaidLibContains(Line, u"Controller ID") &&
        RowNamesSlot(Line, SlotNumber, 0, CardId)) {
      break;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace mchp
