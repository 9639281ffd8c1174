// The free-space report ("storcli /cN show freespace"): one row per free
// segment (ID, DG, AftrVD, size, unit). Each segment joins its array's
// SegmentList right ahead of the volume it follows, which is the order the
// wizard shows, and its size adds to the array's free capacity.
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "LsiModel.h"
#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

constexpr UINTN kSegmentExtraSize = 4;
// Free capacity is kept in MB until it reaches this many thousandths.
constexpr UINT64 kNextUnitThreshold = 102400;
constexpr const CHAR16 *kUnitText[] = {u"MB", u"GB", u"TB"};

// A segment's size in thousandths of a MB.
[[nodiscard]] UINT64 ThousandthsOfMb(UINT64 Figure, UINT32 Unit) {
  switch (Unit) {
    case RAID_UNIT_TB:
      return Figure * 1048576;
    case RAID_UNIT_GB:
      return Figure * 1024;
    default:
      return Figure;
  }
}

// TRUE when some record of the list carries Id.
[[nodiscard]] bool ListHasId(RAID_ARRAY *Array, UINT32 Id) {
  for (RAID_VOLUME *Record :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Record->Id == Id) {
      return true;
    }
  }
  return false;
}

// The ids of a free-space row: its ID, its DG and the volume it follows.
struct SegmentIds {
  UINT32 Id;
  UINT32 Group;
  UINT32 AfterVd;  // RAID_SEGMENT_AFTER_NO_VOLUME for "-"
};

// Reads the row's ids exactly. An AftrVD of 4294967295 is the mark of "-"
// and could not be told from it, so it is no usable id either.
[[nodiscard]] bool ReadSegmentIds(const RAID_ROW *Row, SegmentIds *Ids) {
  Ids->AfterVd = RAID_SEGMENT_AFTER_NO_VOLUME;
  bool After = RaidLibWordIs(Row->Words[2], u"-") ||
               (RaidLibReadId(Row->Words[2], &Ids->AfterVd) &&
                Ids->AfterVd != RAID_SEGMENT_AFTER_NO_VOLUME);
  return After && RaidLibReadId(Row->Words[0], &Ids->Id) &&
         RaidLibReadId(Row->Words[1], &Ids->Group);
}

// A free segment from one row, linked into its array. A row whose ids are
// not usable is left out.
[[nodiscard]] EFI_STATUS AddFreeSegment(RAID_CONTROLLER *Controller,
                                        const RAID_ROW *Row) {
  SegmentIds Ids = {};
  if (!ReadSegmentIds(Row, &Ids)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR,
                   "[%a]ID %S, DG %S or AftrVD %S is not a usable id; free "
                   "space left out\n",
                   Row->Words[0], Row->Words[1], Row->Words[2]);
    return EFI_SUCCESS;
  }
  RAID_ARRAY *Array = LsiFindArray(Controller, Ids.Group);
  if (Array == nullptr) {
    return EFI_ABORTED;
  }
  UINT64 SizeFigure = RaidLibReadThousandths(Row->Words[3]);
  UINT32 SizeUnit = RaidLibUnitCodeOfWord(Row->Words[4]);
  bool Placed = Ids.AfterVd == RAID_SEGMENT_AFTER_NO_VOLUME ||
                ListHasId(Array, Ids.AfterVd);
  // The kit places the segment as the wizard expects (deliberately ahead of
  // the record it lies after). A segment after no listed record still joins
  // the list (at its tail), so the array owns it, but the report is refused.
  if (RaidLibAddFreeSegment(Array, Ids.Id, Ids.AfterVd, SizeFigure, SizeUnit,
                            kSegmentExtraSize) == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Array->FreeCapacity += ThousandthsOfMb(SizeFigure, SizeUnit);
  return Placed ? EFI_SUCCESS : EFI_ABORTED;
}

// The rows of one free-space table, up to its closing ruler. Row KB sizes
// are too small to use.
[[nodiscard]] EFI_STATUS ReadFreeSpaceRows(const CHAR8 *Caller,
                                           RAID_LINE_CURSOR *Lines,
                                           CHAR16 *FirstRow,
                                           RAID_CONTROLLER *Controller) {
  for (CHAR16 *Line = FirstRow;
       Line != nullptr && !RaidLibStartsWith(Line, u"----");
       Line = RaidLibNextLine(Lines)) {
    RAID_ROW Row;
    RaidLibSplitRow(Line, &Row);
    if (Row.Words[4] != nullptr && RaidLibWordIs(RaidLibTrim(Row.Words[4]), u"KB")) {
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                   "[%a] Free Capacity in KB, so ignore it: %d\n",
                     static_cast<UINT32>(RaidLibReadDecimal(Row.Words[3])));
      continue;
    }
    EFI_STATUS Status = AddFreeSegment(Controller, &Row);
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  return EFI_SUCCESS;
}

// Brings each array's free capacity to MB, GB or TB.
VOID NormaliseFreeCapacity(const CHAR8 *Caller, RAID_CONTROLLER *Controller) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    Array->FreeCapacityUnit = RAID_UNIT_MB;
    if (Array->FreeCapacity >= kNextUnitThreshold) {
      Array->FreeCapacity /= 1024;
      Array->FreeCapacityUnit = RAID_UNIT_GB;
      if (Array->FreeCapacity >= kNextUnitThreshold) {
        Array->FreeCapacity /= 1024;
        Array->FreeCapacityUnit = RAID_UNIT_TB;
      }
    }
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                 "[%a]Array Freecapacity : %d %S\n",
                   static_cast<UINT32>(Array->FreeCapacity),
                   kUnitText[Array->FreeCapacityUnit]);
  }
}

// The trimmed value of the report's first "Status" line, or NULL.
[[nodiscard]] CHAR16 *FindStatus(RAID_LINE_CURSOR Lines, RAID_ROW *Scratch) {
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Status")) {
      return RaidLibTrimmedValue(Line, u"=", Scratch);
    }
  }
  return nullptr;
}

}  // namespace

// Adds the free segments of the report to the arrays the summary built.
EFI_STATUS ParseControllerShowFS(CHAR16 *Output, RAID_CONTROLLER *Controller,
                                 UINT32 *ErrorCode) {
  if (Output == nullptr || Controller == nullptr) {
    return EFI_ABORTED;
  }
  // The walks share one end: lines terminated by one walk are still
  // lines to the next.
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  RAID_ROW Scratch;
  CHAR16 *Status = FindStatus(Lines, &Scratch);
  if (RaidLibWordIs(Status, u"Failure")) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Status: %S\n", Status);
    RaidLibTraceAllLines(__func__, Output, Lines.End);
    return EFI_ABORTED;
  }
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (!RaidLibStartsWith(Line, u"ID DG AftrVD")) {
      continue;
    }
    CHAR16 *FirstRow = RaidLibSkipLines(&Lines, 2);
    if (FirstRow == nullptr || RaidLibStartsWith(FirstRow, u"----")) {
      continue;  // An empty table.
    }
    EFI_STATUS RowStatus = ReadFreeSpaceRows(__func__, &Lines, FirstRow, Controller);
    if (RowStatus == EFI_OUT_OF_RESOURCES) {
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    }
    if (EFI_ERROR(RowStatus)) {
      return RowStatus;
    }
  }
  NormaliseFreeCapacity(__func__, Controller);
  return EFI_SUCCESS;
}

}  // namespace lsi
