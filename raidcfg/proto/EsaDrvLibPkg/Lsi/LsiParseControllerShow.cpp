// The controller summary ("storcli /cN show"): the adapter's names, then
// three tables, each announced by a "<title> = <count>" line and starting
// eight lines further on (blank lines of CR LF output count):
//   Drive Groups    -> arrays (rows of the TOPOLOGY table with Arr "-")
//   Virtual Drives  -> volumes, appended to their array's SegmentList
//   Physical Drives -> drives, classified by their DG and State columns
// Tables are read through a copy of the line walk, so the walk itself still
// sees every line and a table the tool left out costs no later line.
#include <Library/BaseLib.h>
#include <Library/DebugLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>
#include <strings/RaidcfgStrings.h>

#include "LsiBackend.h"
#include "LsiModel.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

// Lines from a table's title line to its first row.
constexpr UINTN kTableRowOffset = 8;
// The most rows a count line can announce: every row needs a character and
// a line feed of the output.
constexpr UINT64 kMaxTableRows = LSI_OUTPUT_CHARS / 2;

// Title and text of the box shown for a dedicated spare without a DG.
constexpr UINT8 kWarningBoxStyle = 0;

// "Status = Failure" before the tables: the summary is traced and marked.
VOID CheckSummaryStatus(const CHAR8 *Caller, CHAR16 *Output, RAID_LINE_CURSOR Lines, UINT32 *ErrorCode) {
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Status")) {
      RAID_ROW Scratch;
      if (RaidLibWordIs(RaidLibTrimmedValue(Line, u"=", &Scratch), u"Failure")) {
        RaidLibTraceAllLines(Caller, Output, Lines.End);
        *ErrorCode = LSI_ERROR_SUMMARY_FAILURE;
      }
      return;
    }
  }
}

// Stores the stripped value of a name line in *Field, or traces Missing and
// keeps the old value when the tool printed a blank value.
[[nodiscard]] EFI_STATUS StoreName(const CHAR8 *Caller, const CHAR16 *Line,
                                   CHAR16 **Field, const CHAR8 *Missing) {
  RAID_ROW Scratch;
  CHAR16 *Value = RaidLibSecondPiece(Line, u"=", &Scratch);
  if (Value == nullptr || StrCmp(Value, u" \r") == 0) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, Missing);
    return EFI_SUCCESS;
  }
  FreePool(*Field);
  *Field = RaidLibCopyStripped(Value, 0);
  return *Field == nullptr ? EFI_OUT_OF_RESOURCES : EFI_SUCCESS;
}

// The TOPOLOGY table: one array per disk-group row ("-" in the Arr column,
// a RAID type rather than DRIVE).
[[nodiscard]] EFI_STATUS ReadDriveGroups(RAID_LINE_CURSOR Lines,
                                         RAID_CONTROLLER *Controller) {
  for (CHAR16 *Line = RaidLibSkipLines(&Lines, kTableRowOffset);
       Line != nullptr && !RaidLibStartsWith(Line, u"----");
       Line = RaidLibNextLine(&Lines)) {
    RAID_ROW Row;
    RaidLibSplitRowBefore(Line, Lines.End, &Row);
    if (!RaidLibWordIs(Row.Words[1], u"-") || Row.Words[5] == nullptr ||
        RaidLibWordIs(Row.Words[5], u"DRIVE")) {
      continue;
    }
    EFI_STATUS Status = LsiAddArray(Controller, &Row);
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  return EFI_SUCCESS;
}

// The VD LIST table: RowCount volumes.
[[nodiscard]] EFI_STATUS ReadVirtualDrives(RAID_LINE_CURSOR Lines,
                                           UINT64 RowCount,
                                           RAID_CONTROLLER *Controller) {
  CHAR16 *Line = RowCount == 0 ? nullptr : RaidLibSkipLines(&Lines, kTableRowOffset);
  for (UINT64 Index = 0; Index < RowCount && Line != nullptr;
       Index++, Line = RaidLibNextLine(&Lines)) {
    RAID_ROW Row;
    RaidLibSplitRowBefore(Line, Lines.End, &Row);
    EFI_STATUS Status = LsiAddVolume(Controller, &Row);
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  return EFI_SUCCESS;
}

// Warns the operator of a dedicated spare whose DG column is empty, which
// slides the size into the DG column.
VOID WarnSlidColumns(const RAID_ROW &Row) {
  if (gRaidLibSetupProtocol == nullptr ||
      gRaidLibSetupProtocol->MessageBox == nullptr) {
    return;
  }
  CHAR16 Text[RAID_ROW_CHARS];
  UnicodeSPrint(Text, sizeof(Text),
                u"Hot spare DG is null, the disk is %s.\r\n Please recreate "
                u"raid valume.\r\n",
                Row.Words[0]);
  gRaidLibSetupProtocol->MessageBox(kWarningBoxStyle, STR_WARNING_TITLE, 0,
                                    Text);
}

// The PD LIST table: RowCount drives; DriveTable gets RowCount + 1 entries.
[[nodiscard]] EFI_STATUS ReadPhysicalDrives(RAID_LINE_CURSOR Lines,
                                            UINT64 RowCount,
                                            RAID_CONTROLLER *Controller) {
  if (RowCount > kMaxTableRows) {
    RowCount = kMaxTableRows;
  }
  UINT32 Count = static_cast<UINT32>(RowCount);
  RAID_DRIVE_TABLE_FILL Table;
  EFI_STATUS Status = RaidLibStartDriveTable(&Table, Controller, Count);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  RAID_ARRAY *Named = nullptr;
  CHAR16 *Line =
      Count == 0 ? nullptr : RaidLibSkipLines(&Lines, kTableRowOffset);
  for (UINT32 Index = 0; Index < Count && Line != nullptr;
       Index++, Line = RaidLibNextLine(&Lines)) {
    RAID_ROW Row;
    if (RaidLibSplitRowBefore(Line, Lines.End, &Row) == 0) {
      continue;
    }
    if (Row.Words[4] != nullptr && RaidLibContains(Row.Words[4], u"B")) {
      WarnSlidColumns(Row);
    }
    RAID_PHYSICAL_DRIVE *Drive = nullptr;
    Status = LsiAddDrive(Controller, &Row, &Drive, &Named);
    if (EFI_ERROR(Status)) {
      break;
    }
    if (Drive != nullptr) {
      // At most Count rows are read, and the table has Count entries.
      BOOLEAN Tabled = RaidLibAppendToDriveTable(&Table, Drive);
      ASSERT(Tabled);
    }
  }
  // A cut or faulty table leaves fewer drives than announced; the count
  // follows the table so that no reader meets an empty entry early.
  RaidLibFinishDriveTable(&Table);
  return Status;
}

// Acts on one line of the summary; Lines stands just behind it.
[[nodiscard]] EFI_STATUS ReadSummaryLine(const CHAR8 *Caller,
                                         const CHAR16 *Line,
                                         const RAID_LINE_CURSOR &Lines,
                                         RAID_CONTROLLER *Controller) {
  RAID_CONTROLLER_PRIVATE *Private = Controller->Private;
  if (RaidLibStartsWith(Line, u"Product Name")) {
    return StoreName(Caller, Line, &Private->ProductName,
                     "[%a]Controller Device Name: NULL\n");
  }
  if (RaidLibStartsWith(Line, u"Serial Number")) {
    return StoreName(Caller, Line, &Controller->SerialNumber,
                     "[%a]Controller Serial Number: NULL\n");
  }
  if (RaidLibStartsWith(Line, u"FW Package Build")) {
    return StoreName(Caller, Line, &Controller->FirmwareVersion,
                     "[%a]Controller FW Version: NULL\n");
  }
  if (RaidLibStartsWith(Line, u"Drive Groups")) {
    return ReadDriveGroups(Lines, Controller);
  }
  if (RaidLibStartsWith(Line, u"Virtual Drives")) {
    return ReadVirtualDrives(Lines, RaidLibNumberAfter(Line, u'='), Controller);
  }
  if (RaidLibStartsWith(Line, u"Physical Drives")) {
    return ReadPhysicalDrives(Lines, RaidLibNumberAfter(Line, u'='), Controller);
  }
  return EFI_SUCCESS;
}

}  // namespace

// Rebuilds the controller's names, arrays, volumes and drives from the
// summary. Allocation failures stop the parse with what was built so far.
EFI_STATUS ParseControllerShow(CHAR16 *Output, RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode) {
  if (Output == nullptr || Controller == nullptr ||
      Controller->Private == nullptr) {
    return EFI_ABORTED;
  }
  // The walks share one end: lines terminated by one walk are still
  // lines to the next.
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  CheckSummaryStatus(__func__, Output, Lines, ErrorCode);
  // The model the previous summary built goes.
  EFI_STATUS Status = RaidLibResetControllerModel(Controller);
  for (CHAR16 *Line = RaidLibNextLine(&Lines);
       Line != nullptr && !EFI_ERROR(Status); Line = RaidLibNextLine(&Lines)) {
    Status = ReadSummaryLine(__func__, Line, Lines, Controller);
  }
  // A DID two rows carry names neither drive alone.
  RaidLibLeaveOutAmbiguousDrives(Controller);
  if (EFI_ERROR(Status)) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  return EFI_SUCCESS;
}

}  // namespace lsi
