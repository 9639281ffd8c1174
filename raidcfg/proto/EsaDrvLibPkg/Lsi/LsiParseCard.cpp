// Which storcli controller number is our PCI adapter: the controller count
// and the PCI location in each controller's summary.
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

// The number behind "=" on the first line that starts with "Controller
// Count", or else on the first line that contains it. The card numbers
// searched come from it, so it is read exactly; a count that is not a whole
// 32-bit number counts no card.
UINT32 LsiParseControllerShowCtrlCount(CHAR16 *Output, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  CHAR16 *Found = nullptr;
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Controller Count")) {
      Found = Line;
      break;
    }
    if (Found == nullptr && RaidLibContains(Line, u"Controller Count")) {
      Found = Line;
    }
  }
  if (Found == nullptr) {
    return 0;
  }
  RAID_ROW Scratch;
  CHAR16 *Value = RaidLibTrimmedValue(Found, u"=", &Scratch);
  UINT32 Count = 0;
  if (!RaidLibReadId(Value, &Count)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a]Controller Count %S is not a usable number\n", Value);
    return 0;
  }
  return Count;
}

// Compares the bus, device and function of the first "Bus Number" line and
// the two lines after it with the adapter's location.
EFI_STATUS ParseBDF(CHAR16 *Output, RAID_CONTROLLER *Controller,
                    UINT32 CandidateCardId, UINT32 *ErrorCode) {
  if (Controller == nullptr || Controller->Private == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  CHAR16 *Line = RaidLibNextLine(&Lines);
  while (Line != nullptr && !RaidLibStartsWith(Line, u"Bus Number")) {
    Line = RaidLibNextLine(&Lines);
  }
  if (Line == nullptr) {
    return EFI_SUCCESS;  // No location printed: the card is accepted as is.
  }
  UINT64 Location[3] = {};
  bool Complete = true;
  for (UINTN Index = 0; Index < 3; Index++) {
    if (Line == nullptr) {
      Complete = false;  // Output cut short: the location cannot match.
      break;
    }
    Location[Index] = RaidLibNumberAfter(Line, u'=');
    if (Index < 2) {
      Line = RaidLibNextLine(&Lines);
    }
  }
  RAID_CONTROLLER_PRIVATE *Private = Controller->Private;
  if (Complete && static_cast<UINT8>(Location[0]) == Private->Bus &&
      static_cast<UINT8>(Location[1]) == Private->Device &&
      static_cast<UINT8>(Location[2]) == Private->Function) {
    Private->CardId = CandidateCardId;
    return EFI_SUCCESS;
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO,
                 "[%a]Card Id: %d, Bus: 0x%x, Device: 0x%x, Function: 0x%x\n",
                 CandidateCardId, static_cast<UINT32>(Location[0]),
                 static_cast<UINT32>(Location[1]),
                 static_cast<UINT32>(Location[2]));
  *ErrorCode = LSI_ERROR_BDF_MISMATCH;
  return EFI_ABORTED;
}

}  // namespace lsi
