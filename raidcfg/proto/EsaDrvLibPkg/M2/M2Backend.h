// The Marvell M.2 backend: mvsetup.efi and mnv_cli.efi command lines, the
// parsers of their "key: value" reports, and the operations it puts into
// RAID_OPERATIONS.
//
// An M.2 adapter holds at most one array with RAID 0 or RAID 1 volumes over
// its two (at most four) M.2 drives, and changes no drive states. The tool
// numbers its adapters from 0 (CardId, set by the core); only the adapter
// report is run without a card number.
//
// Parsers work in place on the output they are given (usually the shared
// tool-output buffer): lines get terminators written into the text.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"
#include "RaidLibLines.h"
#include "RaidLibRow.h"

namespace m2 {

// ---- Error codes of the backend ---------------------------------------------

// A create without member drives.
#define M2_ERROR_NO_FREE_DRIVES 0x00200015U

// ---- Command buffers (characters, terminator included) ----------------------

#define M2_COMMAND_CHARS 100
#define M2_CREATE_COMMAND_CHARS 1000
#define M2_DRIVE_LIST_CHARS 100
// mvsetup reads a word that begins with "-" as an option.
#define M2_TOOL_WORDS RAID_TOOL_WORD_NO_LEADING_DASH

// Longest text a parser reads: the shared output buffer's characters.
#define M2_OUTPUT_CHARS (80960 / sizeof(CHAR16))

// ---- What the backend writes into the model ----------------------------------

// Id of a volume or drive whose id line is empty.
#define M2_ID_NONE 0xFFFFFFFFU
// The one array of the adapter.
#define M2_ARRAY_ID 0
#define M2_ARRAY_NAME u"Array 0"
// Backend-owned blocks of the array and of each volume (zeroed).
#define M2_ARRAY_EXTRA_SIZE 3
#define M2_VOLUME_EXTRA_SIZE 4
// RaidLevel of an array whose "RAID mode" is neither RAID0 nor RAID1.
#define M2_RAID_LEVEL_UNKNOWN 255
// DiskDriveCount while "Maximum supported disk" is empty: the two M.2 slots.
#define M2_DEFAULT_DISK_COUNT 2
// A drive's Location: "SSD<id>", at most this many characters.
#define M2_LOCATION_CHARS 16
#define M2_LOCATION_UNKNOWN u"UNKNOWN"
#define M2_MODEL_CHARS 100

// ---- Operations -------------------------------------------------------------

// Leaves CardId as the core numbered it (from 0) and says so.
[[nodiscard]] EFI_STATUS M2GetCardId(RAID_CONTROLLER *Controller,
                                     UINT32 *ErrorCode);
// Runs the three reports and rebuilds the controller's model, unless Flags
// bit 0 says the model is current. Private is unused.
[[nodiscard]] EFI_STATUS M2GetControllerInfo(
    RAID_CONTROLLER *Controller, RAID_CONTROLLER_PRIVATE *Private OPTIONAL,
    UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS M2CreateVolume(RAID_VOLUME_PARAMETER *Parameter,
                                        UINTN Reserved, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS M2DeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS M2DeleteVolume(RAID_VOLUME *Volume,
                                        UINT32 *ErrorCode);
// The adapter has no drive states to change: both only say so.
[[nodiscard]] EFI_STATUS M2SetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                                 RAID_PHYSICAL_DRIVE *Drive,
                                                 UINT32 State,
                                                 UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS M2SetAllPhysicalDriveState(
    RAID_CONTROLLER *Controller, UINT32 State, UINT32 *ErrorCode);

// ---- Parsers ----------------------------------------------------------------
// Each returns EFI_ABORTED for a NULL output before anything changes, and
// EFI_OUT_OF_RESOURCES with error code 0x00200009 when a record cannot be
// allocated (the records built so far stay in their lists).

// The adapter report ("info -o hba"): serial number, firmware version,
// slot number while it is unknown, DiskDriveCount.
[[nodiscard]] EFI_STATUS ParseControllerInfo(CHAR16 *Output,
                                             RAID_CONTROLLER *Controller,
                                             UINT32 *ErrorCode);
// The volume report ("info -o vd") into the adapter's one array: volumes,
// the array's level, member count and volume count.
[[nodiscard]] EFI_STATUS ParseVolumeInfo(CHAR16 *Output, RAID_ARRAY *Array,
                                         UINT32 *ErrorCode);
// The drive report ("info -o pd"): DriveTable, made for the DiskDriveCount
// the two earlier reports left, and each drive in the list of its status.
[[nodiscard]] EFI_STATUS ParsePhysicalDriveInfo(CHAR16 *Output,
                                                RAID_CONTROLLER *Controller,
                                                RAID_ARRAY *Array,
                                                UINT32 *ErrorCode);

// ---- Reading values ---------------------------------------------------------

// A walk over a whole report.
[[nodiscard]] inline RAID_LINE_CURSOR M2ReportLines(CHAR16 *Output) {
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, M2_OUTPUT_CHARS);
  return Lines;
}


// The value of a "key: value" line: the piece behind the first ":",
// stripped of blanks and line ends at both ends; points into Scratch. NULL
// when it is empty or there is no ":".
[[nodiscard]] CHAR16 *M2LineValue(const CHAR16 *Line, RAID_ROW *Scratch);
// The same for a line of LineChars characters (a walk's line, whose length
// the walk knows): the line is read eight characters at a time.
[[nodiscard]] CHAR16 *M2LineValue(const CHAR16 *Line, UINTN LineChars,
                                  RAID_ROW *Scratch);

// Which unit table a size is read with.
enum class M2SizeOf { Volume, Drive };
// A "size" value ("457798 M", "1.5 T") in thousandths of a GB: only the
// whole number is read, times 1000, scaled by the unit word. NULL gives 0.
[[nodiscard]] UINT64 M2ReadSize(const CHAR16 *Value, M2SizeOf What);

// The tool's words for model codes; NULL (an empty value) gives each
// table's own code for it.
[[nodiscard]] UINT32 M2VolumeState(const CHAR16 *Value);
[[nodiscard]] UINT32 M2StripeSize(const CHAR16 *Value);
[[nodiscard]] UINT8 M2RaidLevel(const CHAR16 *Value);
[[nodiscard]] UINT32 M2MediaType(const CHAR16 *Value);
// The state and role of a drive's "PD status", and where it goes.
enum class M2DrivePlace { Unconfigured, Array, Nowhere };
struct M2DriveStatus {
  UINT32 State;
  UINT32 Role;
  M2DrivePlace Place;
};
[[nodiscard]] M2DriveStatus M2DriveStatusOf(const CHAR16 *Value);

// A count value, held at the largest UINT32; 0 when it is empty.
[[nodiscard]] UINT32 M2ReadCount(const CHAR16 *Value);
// A line's value (M2LineValue), cut out the first time a reader asks for
// it: most lines of a report are no key the reader wants.
class M2KeyValue {
 public:
  M2KeyValue(const CHAR16 *Line, UINTN LineChars)
      : Line_(Line), LineChars_(LineChars) {}
  [[nodiscard]] const CHAR16 *Get() {
    if (!Cut_) {
      Value_ = M2LineValue(Line_, LineChars_, &Scratch_);
      Cut_ = true;
    }
    return Value_;
  }

 private:
  const CHAR16 *Line_;
  UINTN LineChars_;
  const CHAR16 *Value_ = nullptr;
  bool Cut_ = false;
  RAID_ROW Scratch_;
};

// Hands every line of the walk and its value to Each, which returns a
// status; the walk stops at the first failure and returns it.
template <typename Visit>
[[nodiscard]] EFI_STATUS M2EachKeyLine(RAID_LINE_CURSOR Lines, Visit &&Each) {
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    M2KeyValue Value(Line, RaidLibCurrentLineChars(&Lines));
    EFI_STATUS Status = Each(static_cast<const CHAR16 *>(Line), Value);
    if (EFI_ERROR(Status)) {
      return Status;
    }
  }
  return EFI_SUCCESS;
}

// An allocation failure of a parser in its error code; Status handed on.
[[nodiscard]] inline EFI_STATUS M2ParseResult(EFI_STATUS Status,
                                              UINT32 *ErrorCode) {
  if (EFI_ERROR(Status)) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
  }
  return Status;
}

// A value as a trace shows it: an empty one as an empty text.
[[nodiscard]] inline const CHAR16 *M2Shown(const CHAR16 *Value) {
  return Value != nullptr ? Value : u"";
}

// An id value: its number, or M2_ID_NONE when it is empty or no id.
[[nodiscard]] UINT32 M2ReadId(const CHAR16 *Value);

}  // namespace m2
