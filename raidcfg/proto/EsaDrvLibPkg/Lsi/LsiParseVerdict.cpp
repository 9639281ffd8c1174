// The verdicts of storcli's change commands: volume commands are judged by
// their "Status" word and error-code table, drive commands by "Status =".
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

// The tool's error number from the row two lines below an "ErrorCode"
// line: the third word when the first reads as a non-zero number, else the
// second. NULL words read as 0.
[[nodiscard]] UINT32 ErrorNumberOfRow(const CHAR16 *Line) {
  RAID_ROW Row;
  RaidLibSplitRow(Line, &Row);
  const CHAR16 *Number =
      RaidLibReadDecimal(Row.Words[0]) != 0 ? Row.Words[2] : Row.Words[1];
  return static_cast<UINT32>(RaidLibReadDecimal(Number));
}

// After a "Failure" status: every following line must be an "ErrorCode"
// line for the last number read to stand; the first other line makes the
// verdict "failed without an error code". Deliberately strict: a number
// survives only when "ErrorCode" lines run to the end of the output, and
// the codes the operator is shown depend on it; do not relax it.
VOID JudgeFailure(const CHAR8 *Caller, RAID_LINE_CURSOR *Lines, UINT32 *ErrorCode) {
  for (CHAR16 *Line = RaidLibNextLine(Lines); Line != nullptr;
       Line = RaidLibNextLine(Lines)) {
    if (!RaidLibStartsWith(Line, u"ErrorCode")) {
      *ErrorCode = LSI_ERROR_ACTION_NO_CODE;
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                   "[%a]Not with an Error Code!\n");
      return;
    }
    RAID_LINE_CURSOR Ahead = *Lines;
    CHAR16 *Row = RaidLibSkipLines(&Ahead, 2);
    if (Row != nullptr) {
      *ErrorCode = LSI_ERROR_ACTION_BASE | (ErrorNumberOfRow(Row) & 0xFFF);
    }
  }
}

}  // namespace

// Walks the "Status" lines: "Success" clears the code, "Failure" sets it
// from the lines that follow.
EFI_STATUS ParseErrCd(CHAR16 *Output, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (!RaidLibStartsWith(Line, u"Status")) {
      continue;
    }
    RAID_ROW Row;
    RaidLibSplitRow(Line, &Row);
    if (RaidLibWordIs(Row.Words[2], u"Success\r")) {
      *ErrorCode = 0;
      return EFI_SUCCESS;
    }
    if (RaidLibWordIs(Row.Words[2], u"Failure\r")) {
      RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]State is Failure!\n");
      RaidLibTraceAllLines(__func__, Output, Lines.End);
      JudgeFailure(__func__, &Lines, ErrorCode);
      return EFI_SUCCESS;
    }
  }
  return EFI_SUCCESS;
}

// Reads "JBOD" lines and the first "Status =" line into *Result.
EFI_STATUS ParseActionStatus(CHAR16 *Output, RAID_CONTROLLER *Controller,
                             UINT32 *Result) {
  if (Output == nullptr) {
    return EFI_ABORTED;
  }
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"JBOD")) {
      RAID_ROW Row;
      RaidLibSplitRow(Line, &Row);
      *Result = RaidLibWordIs(RaidLibTrim(Row.Words[1]), u"OFF")
                    ? LSI_ACTION_JBOD_OFF
                    : LSI_ACTION_SUCCEEDED;
      continue;
    }
    if (RaidLibStartsWith(Line, u"Status =")) {
      RAID_ROW Scratch;
      if (RaidLibWordIs(RaidLibTrimmedValue(Line, u"=", &Scratch), u"Failure")) {
        *Result = LSI_ACTION_FAILED;
        RaidLibTraceAllLines(__func__, Output, Lines.End);
      } else {
        *Result = LSI_ACTION_SUCCEEDED;
      }
      return EFI_SUCCESS;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace lsi
