// The drive report ("info -o pd"): a block of "key: value" lines per drive,
// each opened by its "PD ID" line, and the adapter's drive count. Keys are
// matched as prefixes; a drive key before the first "PD ID" line has no
// drive to fill and is skipped.
//
// Each drive takes the next DriveTable entry in the report's order; its
// "PD status" decides its list: a ready drive is unconfigured, an online or
// rebuilding one a member of the array, and a drive in any other state sits
// in no list and is reached only through the table, which then owns it.
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "M2Backend.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace m2 {

namespace {

// The most drives a report can list: each needs a "PD ID" line.
constexpr UINT32 kMaxDrives = M2_OUTPUT_CHARS / 8;

struct DriveRead {
  RAID_CONTROLLER *Controller;
  RAID_ARRAY *Array;
  RAID_DRIVE_TABLE_FILL Table;
  RAID_PHYSICAL_DRIVE *Current;  // the drive whose block is being read
  bool CurrentInTable;
};

constexpr const CHAR16 *kDriveCountLine[] = {u"Total # of PD"};
constexpr RAID_LINE_PREFIXES kDriveCountLineSet =
    RaidLibLinePrefixes(kDriveCountLine);

// The drive count the report gives: "Total # of PD" (the last such line),
// 0 when empty or absent.
[[nodiscard]] UINT32 ReportedDriveCount(RAID_LINE_CURSOR Lines) {
  UINT32 Count = 0;
  for (CHAR16 *Line = RaidLibNextLineStartingWith(&Lines, kDriveCountLineSet);
       Line != nullptr;
       Line = RaidLibNextLineStartingWith(&Lines, kDriveCountLineSet)) {
    RAID_ROW Scratch;
    Count = M2ReadCount(
        M2LineValue(Line, RaidLibCurrentLineChars(&Lines), &Scratch));
  }
  return Count;
}

// Ends the current drive's block. A drive beyond the table's size and in
// no list would be held by nothing: it is dropped.
VOID EndDrive(DriveRead *Read) {
  if (Read->Current != nullptr && !Read->CurrentInTable &&
      RaidLibInNoList(Read->Current)) {
    RaidLibFreePhysicalDrive(Read->Current);
  }
  Read->Current = nullptr;
}

// Opens the block of the drive Value names.
[[nodiscard]] EFI_STATUS StartDrive(const CHAR8 *Caller, DriveRead *Read,
                                    const CHAR16 *Value) {
  EndDrive(Read);
  UINT32 Id = M2ReadId(Value);
  CHAR16 Location[M2_LOCATION_CHARS + 1];
  if (Id == M2_ID_NONE) {
    UnicodeSPrint(Location, sizeof(Location), u"%s", M2_LOCATION_UNKNOWN);
  } else if (Id <= 0x7FFFFFFFU) {
    RaidLibNumberedText(Location, M2_LOCATION_CHARS + 1, u"SSD", Id);
  } else {
    // An id past the signed range is printed signed, as it always was.
    UnicodeSPrint(Location, sizeof(Location), u"SSD%d", Id);
  }
  Read->Current = RaidLibNewDrive(Id, Location, nullptr, M2_MODEL_CHARS);
  if (Read->Current == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Read->CurrentInTable = RaidLibAppendToDriveTable(&Read->Table, Read->Current);
  if (!Read->CurrentInTable) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                      "[%a]Drive %s is beyond the %u drives the adapter "
                      "reported\n",
                      Location, Read->Table.Capacity);
  }
  return EFI_SUCCESS;
}

// The drive's list by its "PD status"; a drive in a state of no list keeps
// the list it may already have.
VOID PlaceDrive(DriveRead *Read, const CHAR16 *Value) {
  RAID_PHYSICAL_DRIVE *Drive = Read->Current;
  M2DriveStatus Status = M2DriveStatusOf(Value);
  if (Status.Place == M2DrivePlace::Nowhere) {
    Drive->State = Status.State;
    return;
  }
  RAID_ARRAY *Array =
      Status.Place == M2DrivePlace::Array ? Read->Array : nullptr;
  if (RaidLibInNoList(Drive)) {
    RaidLibPlaceDrive(Read->Controller, Drive, Array, Status.State,
                      Status.Role);
  } else {
    RaidLibMoveDrive(Read->Controller, Drive, Array, Status.State,
                     Status.Role);
  }
}

// Fills the current drive from one of its lines.
[[nodiscard]] EFI_STATUS ReadDriveLine(DriveRead *Read, const CHAR16 *Line,
                                       M2KeyValue &Value) {
  RAID_PHYSICAL_DRIVE *Drive = Read->Current;
  if (RaidLibStartsWith(Line, u"Type")) {
    Drive->MediaType = M2MediaType(Value.Get());
  } else if (RaidLibStartsWith(Line, u"Size")) {
    Drive->SizeFigure = M2ReadSize(Value.Get(), M2SizeOf::Drive);
    Drive->SizeUnit = RAID_UNIT_GB;
  } else if (RaidLibStartsWith(Line, u"model")) {
    const CHAR16 *Text = Value.Get();
    CHAR16 *Model = RaidLibCopyStripped(Text != nullptr ? Text : u"",
                                        M2_MODEL_CHARS);
    if (Model == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
    RaidLibReplaceDriveModel(Drive, Model);
  } else if (RaidLibStartsWith(Line, u"PD status")) {
    PlaceDrive(Read, Value.Get());
  }
  return EFI_SUCCESS;
}

// The second pass: every drive block.
[[nodiscard]] EFI_STATUS ReadDrives(const CHAR8 *Caller,
                                    RAID_LINE_CURSOR Lines, DriveRead *Read) {
  return M2EachKeyLine(Lines, [Caller, Read](const CHAR16 *Line,
                                             M2KeyValue &Value) {
    if (RaidLibStartsWith(Line, u"Adapter")) {
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Adapter: %s\n",
                        M2Shown(Value.Get()));
    } else if (RaidLibStartsWith(Line, u"PD ID")) {
      return StartDrive(Caller, Read, Value.Get());
    } else if (Read->Current != nullptr) {
      return ReadDriveLine(Read, Line, Value);
    }
    return EFI_SUCCESS;
  });
}

}  // namespace

EFI_STATUS ParsePhysicalDriveInfo(CHAR16 *Output, RAID_CONTROLLER *Controller,
                                  RAID_ARRAY *Array, UINT32 *ErrorCode) {
  if (Output == nullptr || Controller == nullptr || Array == nullptr) {
    return EFI_ABORTED;
  }
  DriveRead Read = {Controller, Array, {}, nullptr, false};
  // The table is made for the count the adapter and volume reports left.
  UINT32 Capacity = Controller->DiskDriveCount;
  if (Capacity > kMaxDrives) {
    Capacity = kMaxDrives;
  }
  if (EFI_ERROR(RaidLibStartDriveTable(&Read.Table, Controller, Capacity))) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  // Both passes walk the output from its start: the walk is copied.
  const RAID_LINE_CURSOR Lines = M2ReportLines(Output);
  const UINT32 Reported = ReportedDriveCount(Lines);
  // The report's member drives are the volume report's "# of PDs" already.
  const UINT32 Members = Array->MemberDriveCount;
  EFI_STATUS Status = ReadDrives(__func__, Lines, &Read);
  EndDrive(&Read);
  Array->MemberDriveCount = Members;
  RaidLibFinishDriveTable(&Read.Table);
  RaidLibLeaveOutAmbiguousDrives(Controller);
  // "Total # of PD" is the count, as far as the table holds drives.
  if (Reported < Controller->DiskDriveCount) {
    Controller->DiskDriveCount = Reported;
  }
  return M2ParseResult(Status, ErrorCode);
}

}  // namespace m2
