// The Broadcom/LSI MegaRAID backend: storcli.efi command lines, the parsers
// of its text output, and the operations it puts into RAID_OPERATIONS.
//
// The tool prints CR LF line ends. Parsers work in place on the output they
// are given (usually the shared tool-output buffer): lines and words get
// terminators written into the text, so each output is parsed once.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

namespace lsi {

// ---- Error codes of the backend ---------------------------------------------

#define LSI_ERROR_SUMMARY_FAILURE 0x00000007U  // "Status = Failure" in /cN show
#define LSI_ERROR_NO_FREE_DRIVES 0x00200015U
#define LSI_ERROR_BDF_MISMATCH 0x00200023U
#define LSI_ERROR_INVALID_STATE 0x00200024U
#define LSI_ERROR_DISK_CACHE_POLICY 0x00200025U
#define LSI_ERROR_READ_POLICY 0x00200026U
#define LSI_ERROR_WRITE_POLICY 0x00200027U
#define LSI_ERROR_IO_POLICY 0x00200028U
#define LSI_ERROR_STRIPE_SIZE 0x00200029U
#define LSI_ERROR_DRIVE_COMMAND 0x0020002CU
#define LSI_ERROR_ADD_HOT_SPARE 0x0020002DU
#define LSI_ERROR_DELETE_HOT_SPARE 0x0020002EU
// A failed action: the base or'ed with the tool's error number's low 12
// bits, or the base's "no error number" value.
#define LSI_ERROR_ACTION_BASE 0x00201000U
#define LSI_ERROR_ACTION_NO_CODE 0x0020100EU

// ---- ParseActionStatus results ----------------------------------------------

#define LSI_ACTION_FAILED 0
#define LSI_ACTION_SUCCEEDED 1
#define LSI_ACTION_JBOD_OFF 2

// ---- Command buffers (characters) -------------------------------------------

#define LSI_SHORT_COMMAND_CHARS 100
#define LSI_READ_COMMAND_CHARS 200
#define LSI_DRIVE_COMMAND_CHARS 1000
#define LSI_CREATE_COMMAND_CHARS 2048
#define LSI_CREATE_WORD_CHARS 64
// storcli reads "/" as the start of an object path ("/c0/v1").
#define LSI_TOOL_WORDS RAID_TOOL_WORD_NO_SLASH
#define LSI_DRIVE_LIST_CHARS 1024

// Longest text a parser reads: the shared output buffer's characters.
#define LSI_OUTPUT_CHARS (80960 / sizeof(CHAR16))

// ---- A drive's Position -----------------------------------------------------

// The two halves of the "enclosure:slot" word.
#define LSI_POSITION_ENCLOSURE 0
#define LSI_POSITION_SLOT 1

// ---- Module-wide state ------------------------------------------------------

// The create command's form: 0 full, 1 or 2 middle, any other short. The
// module keeps 0; the other forms stay selectable for older tool builds.
extern UINT32 gLsiCommandForm;
// The controller count of the last LsiGetCardId.
extern UINT32 gLsiControllerCount;

// ---- Operations -------------------------------------------------------------

// Finds the adapter's storcli controller number and stores it as CardId.
[[nodiscard]] EFI_STATUS LsiGetCardId(RAID_CONTROLLER *Controller,
                                      UINT32 *ErrorCode);
// Runs storcli and rebuilds the controller's model, unless Flags bit 0 says
// the model is current. Private is unused (the controller's own is used).
[[nodiscard]] EFI_STATUS LsiGetControllerInfo(
    RAID_CONTROLLER *Controller, RAID_CONTROLLER_PRIVATE *Private OPTIONAL,
    UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS LsiCreateVolume(RAID_VOLUME_PARAMETER *Parameter,
                                         UINTN Reserved, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS LsiDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS LsiDeleteVolume(RAID_VOLUME *Volume,
                                         UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS LsiSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                                  RAID_PHYSICAL_DRIVE *Drive,
                                                  UINT32 State,
                                                  UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS LsiSetAllPhysicalDriveState(
    RAID_CONTROLLER *Controller, UINT32 State, UINT32 *ErrorCode);

// ---- Parsers ----------------------------------------------------------------

// "Controller Count = N" of "show ctrlcount"; 0 when there is none.
[[nodiscard]] UINT32 LsiParseControllerShowCtrlCount(CHAR16 *Output,
                                                     UINT32 *ErrorCode);
// Sets CardId to CandidateCardId when the "Bus Number" line and the two
// after it name the adapter's PCI location.
[[nodiscard]] EFI_STATUS ParseBDF(CHAR16 *Output, RAID_CONTROLLER *Controller,
                                  UINT32 CandidateCardId, UINT32 *ErrorCode);
// The controller summary ("/cN show"): names, arrays, volumes, drives.
[[nodiscard]] EFI_STATUS ParseControllerShow(CHAR16 *Output,
                                             RAID_CONTROLLER *Controller,
                                             UINT32 *ErrorCode);
// The free-space report ("/cN show freespace"): free segments per array.
[[nodiscard]] EFI_STATUS ParseControllerShowFS(CHAR16 *Output,
                                               RAID_CONTROLLER *Controller,
                                               UINT32 *ErrorCode);
// One volume's properties ("/cN/vM show all"): strip size and policies.
[[nodiscard]] EFI_STATUS ParseControllerShowVolume(CHAR16 *Output,
                                                   RAID_VOLUME *Volume,
                                                   UINT32 *ErrorCode);
// The verdict of a volume command, as an error code; always EFI_SUCCESS.
[[nodiscard]] EFI_STATUS ParseErrCd(CHAR16 *Output, UINT32 *ErrorCode);
// The verdict of a drive command into *Result (LSI_ACTION_*); EFI_ABORTED
// for a NULL output.
[[nodiscard]] EFI_STATUS ParseActionStatus(CHAR16 *Output,
                                           RAID_CONTROLLER *Controller,
                                           UINT32 *Result);

// ---- Command building -------------------------------------------------------

// Drives per span ("pdperarray") for RAID 10, 50 and 60 with DriveCount
// drives; 0 when no even split exists.
[[nodiscard]] UINT32 LsiDrivesPerSpan(UINT32 RaidLevel, UINT32 DriveCount);

// Selects drives for a drive list.
typedef BOOLEAN (*LSI_DRIVE_FILTER)(const RAID_PHYSICAL_DRIVE *Drive,
                                    const VOID *Context);
// Writes the drives of List that Filter takes, grouped by enclosure in the
// order enclosures are first met ("252:0,1,253:5"), into Buffer of
// BufferChars characters. A list that does not fit whole is never cut,
// since a cut list ends in part of a slot number, another drive's, and
// drops the drives behind it: the buffer is left empty and the result is
// EFI_BUFFER_TOO_SMALL.
[[nodiscard]] EFI_STATUS LsiBuildDriveList(LIST_ENTRY *List,
                                           LSI_DRIVE_FILTER Filter,
                                           const VOID *Context, CHAR16 *Buffer,
                                           UINTN BufferChars);

}  // namespace lsi
