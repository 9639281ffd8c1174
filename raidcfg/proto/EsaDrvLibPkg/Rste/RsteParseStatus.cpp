// "/ST", the volumes' states, and the verdict of a change command.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"
#include "RaidLibWordTable.h"
#include "RsteBackend.h"

namespace rste {

namespace {

constexpr RAID_WORD_CODE kVolumeStates[] = {
    {u"Normal", RAID_STATE4_ONLINE},
    {u"Degraded", RAID_STATE4_DEGRADED},
    {u"Rebuilding", RAID_STATE4_REBUILDING},
    {u"Rebuild", RAID_STATE4_REBUILDING},
};
constexpr RAID_WORD_TABLE kVolumeStateTable =
    RaidLibWordTable(kVolumeStates, RaidMatchExact, RAID_STATE4_OFFLINE);

// Lines that end a change command's output as a success.
constexpr const CHAR16 *kSuccessLines[] = {
    u"Deleting  Volume...Successfully deleted volume",
    u"Creating Volume....Successfully created volume",
    u"Marking selected disks as spares...Completed",
    u"Removing MetaData from selected disks...Completed",
};

// Where a volume's state stands below its "Name:" line.
[[nodiscard]] UINTN StateLineOffset() { return gRsteVrocLayout != 0 ? 7 : 6; }

// Sets State on the first volume of each array named Name.
VOID SetStateByName(RAID_CONTROLLER *Controller, const CHAR16 *Name,
                    UINT32 State) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume == 1 && RaidLibWordIs(Volume->Name, Name)) {
        Volume->State = State;
        break;
      }
    }
  }
}

[[nodiscard]] bool IsSuccessLine(const CHAR16 *Line) {
  for (const CHAR16 *Success : kSuccessLines) {
    if (RaidLibStartsWith(Line, Success)) {
      return true;
    }
  }
  return false;
}

}  // namespace

EFI_STATUS ParseSataInfo(CHAR16 *Output, RAID_CONTROLLER *Controller,
                         UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  if (Output == nullptr || Controller == nullptr) {
    return EFI_ABORTED;
  }
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (!RaidLibStartsWith(Line, u"Name:")) {
      continue;
    }
    RAID_ROW NameRow;
    const CHAR16 *Name = RaidLibTrimmedValue(Line, u":", &NameRow);
    RAID_ROW StateRow;
    const CHAR16 *Word = RaidLibTrimmedValue(
        RaidLibLineAhead(&Lines, StateLineOffset()), u":", &StateRow);
    if (Name != nullptr) {
      SetStateByName(Controller, Name,
                     RaidLibCodeOfWord(kVolumeStateTable, Word));
    }
  }
  return EFI_SUCCESS;
}

// A success line ends the walk; an "ERROR:" line is traced with all that
// follows it and gives the kind's error code. Output with neither is taken
// as success: the tool prints nothing more for some completed changes.
EFI_STATUS ParseError(CHAR16 *Output, UINT32 Kind, UINT32 *ErrorCode) {
  if (Output == nullptr) {
    return EFI_ABORTED;
  }
  *ErrorCode = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (IsSuccessLine(Line)) {
      *ErrorCode = 0;
      return EFI_SUCCESS;
    }
    if (RaidLibStartsWith(Line, u"ERROR:")) {
      for (; Line != nullptr; Line = RaidLibNextLine(&Lines)) {
        RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] %S\n", RaidLibTrim(Line));
      }
      *ErrorCode = RsteErrorCodeOfKind(Kind);
      return EFI_SUCCESS;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace rste
