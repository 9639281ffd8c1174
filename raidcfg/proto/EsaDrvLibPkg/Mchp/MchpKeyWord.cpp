// The keyword scanners of the arcconf reports: one rule (the text between
// the first and the second delimiter) in three variants.
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace mchp {

namespace {

// The raw value piece of Line cut at Delimiters, or NULL when the line has
// none or its value is empty (" \r", traced). The copy of the stripped
// value goes to Output, cut to fit.
[[nodiscard]] const CHAR16 *ValuePiece(const CHAR8 *Caller,
                                       const CHAR16 *Line,
                                       const CHAR16 *Delimiters,
                                       CHAR16 *Output, UINTN OutputChars,
                                       RAID_ROW *Row) {
  if (Line == nullptr || Output == nullptr || OutputChars == 0) {
    return nullptr;
  }
  const CHAR16 *Piece = RaidLibSecondPiece(Line, Delimiters, Row);
  if (Piece == nullptr) {
    return nullptr;
  }
  if (RaidLibWordIs(Piece, u" \r")) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]Controller Device Name: NULL\n");
    return nullptr;
  }
  // The original copies the value unbounded; here it is cut to Output.
  const CHAR16 *Start = Piece;
  while (*Start != 0 && RaidLibIsSpace(*Start)) {
    Start++;
  }
  UINTN Length = 0;
  while (Start[Length] != 0) {
    Length++;
  }
  while (Length > 0 && RaidLibIsSpace(Start[Length - 1])) {
    Length--;
  }
  if (Length > OutputChars - 1) {
    Length = OutputChars - 1;
  }
  for (UINTN Index = 0; Index < Length; Index++) {
    Output[Index] = Start[Index];
  }
  Output[Length] = 0;
  return Piece;
}

}  // namespace

UINT32 iGetKeyWord(const CHAR16 *Line, CHAR16 *Output, UINTN OutputChars) {
  RAID_ROW Row;
  const CHAR16 *Piece = ValuePiece(__func__, Line, u":", Output, OutputChars, &Row);
  if (Piece == nullptr) {
    return MCHP_KEYWORD_MISSING;
  }
  return static_cast<UINT32>(RaidLibReadDecimal(Piece));
}

UINT32 iiGetKeyWord(const CHAR16 *Line, const CHAR16 *Delimiters,
                    CHAR16 *Output, UINTN OutputChars) {
  RAID_ROW Row;
  const CHAR16 *Piece =
      ValuePiece(__func__, Line, Delimiters, Output, OutputChars, &Row);
  if (Piece == nullptr) {
    return MCHP_KEYWORD_MISSING_SHORT;
  }
  return static_cast<UINT32>(RaidLibReadDecimal(Piece));
}

CHAR16 *sGetKeyWord(const CHAR16 *Line, CHAR16 *Output, UINTN OutputChars) {
  RAID_ROW Row;
  if (ValuePiece(__func__, Line, u":", Output, OutputChars, &Row) == nullptr) {
    return nullptr;
  }
  return Output;
}

VOID MchpReadSize(const CHAR16 *Value, UINT64 *Figure, UINT32 *Unit) {
  RAID_ROW Row;
  RaidLibSplitRow(Value, &Row);
  *Figure = RaidLibReadThousandths(Row.Words[0]);
  *Unit = RaidLibUnitCodeOfWord(Row.Words[1]);
}

}  // namespace mchp
