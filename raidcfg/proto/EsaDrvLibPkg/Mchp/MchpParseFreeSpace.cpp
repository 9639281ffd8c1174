// The free space of each array, from the "Unused Size" the array section
// gave: one free segment per array, behind its logical devices.
#include "MchpBackend.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"

namespace mchp {

namespace {

// More than 0.1 MB, or more than 0.001 of a larger (or unknown) unit.
[[nodiscard]] bool WorthASegment(UINT64 Figure, UINT32 Unit) {
  return Unit != RAID_UNIT_MB ? Figure > 1 : Figure > 100;
}

// The array section of the report, read for its arrays' free space.
[[nodiscard]] EFI_STATUS ReadFreeSpace(RAID_LINE_CURSOR *Lines,
                                       RAID_CONTROLLER *Controller) {
  CHAR16 *Line = RaidLibNextLine(Lines);
  while (Line != nullptr && !RaidLibStartsWith(Line, u"Array Information")) {
    Line = RaidLibNextLine(Lines);
  }
  UINT32 ArrayLines = 0;
  for (; Line != nullptr &&
         !RaidLibStartsWith(Line, u"Logical device information");
       Line = RaidLibNextLine(Lines)) {
    if (!RaidLibStartsWith(Line, u"Array Number")) {
      continue;
    }
    ArrayLines++;
    RAID_ROW Words;
    RaidLibSplitRow(Line, &Words);
    const CHAR16 *Word = Words.Words[2];
    UINT32 Number = (Word != nullptr && !RaidLibWordIs(Word, u"\r"))
                        ? static_cast<UINT32>(RaidLibReadDecimal(Word))
                        : ArrayLines - 1;
    RAID_ARRAY *Array = RaidLibFindArray(Controller, Number);
    if (Array == nullptr) {
      return EFI_ABORTED;
    }
    // A segment too small to keep is simply not made.
    if (WorthASegment(Array->FreeCapacity, Array->FreeCapacityUnit) &&
        RaidLibAddFreeSegment(Array, Number, RAID_SEGMENT_AFTER_ALL,
                              Array->FreeCapacity, Array->FreeCapacityUnit,
                              0) == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
  }
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    Array->FreeCapacityUnit = RAID_UNIT_MB;
  }
  return EFI_SUCCESS;
}

}  // namespace

EFI_STATUS ParseControllerShowFS(CHAR16 *Output, UINTN OutputChars,
                                 RAID_CONTROLLER *Controller,
                                 UINT32 *ErrorCode) {
  return ParseControllerShowFSText(
      Output, RaidLibBufferTextChars(Output, OutputChars), Controller,
      ErrorCode);
}

EFI_STATUS ParseControllerShowFSText(CHAR16 *Text, UINTN TextChars,
                                     RAID_CONTROLLER *Controller,
                                     UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesOver(&Lines, Text, TextChars);
  return ReadFreeSpace(&Lines, Controller);
}

}  // namespace mchp
