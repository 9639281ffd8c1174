// The Microchip backend: arcconf.efi command lines, the parsers of its
// "list" and "getconfig" reports, and the operations it puts into
// RAID_OPERATIONS.
//
// The tool prints CR LF line ends and aligns its keys in a column, each key
// indented by three, six or nine blanks. Which keys are matched at a line's
// start and which anywhere in it is part of the report's format and is kept
// key by key. Parsers cut the text they are given in place.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"
#include "RaidLibLines.h"

namespace mchp {

// ---- Error codes of the backend ---------------------------------------------

#define MCHP_ERROR_NO_FREE_DRIVES 0x00200015U

// ---- Buffers (bytes or characters as named) ---------------------------------

// The "list" output is copied (its first half) before it is parsed.
#define MCHP_LIST_COPY_BYTES 40480
// "getconfig" has its own output buffer, ten times the shared one; only the
// first half of it is cleared and copied.
#define MCHP_GETCONFIG_OUTPUT_BYTES 809600
#define MCHP_GETCONFIG_COPY_BYTES 404800
#define MCHP_LIST_COMMAND_CHARS 200
#define MCHP_READ_COMMAND_CHARS 200
#define MCHP_DELETE_COMMAND_CHARS 200
#define MCHP_DRIVE_COMMAND_CHARS 1000
#define MCHP_CREATE_COMMAND_CHARS 2048
#define MCHP_DRIVE_LIST_CHARS 1024
// The longest value a keyword scanner hands back; longer values are cut.
#define MCHP_KEYWORD_CHARS 256
// Every stripe size this tool is given.
#define MCHP_STRIPE_SIZE 256
// arcconf takes a name as the word after "NAME": the shell's rules suffice.
#define MCHP_TOOL_WORDS RAID_TOOL_WORD_PLAIN
// The most arrays a hot spare is offered to.
#define MCHP_MAX_SPARE_ARRAYS 240

// ---- A drive's Position -----------------------------------------------------

#define MCHP_POSITION_CHANNEL 0
#define MCHP_POSITION_SLOT 1
#define MCHP_POSITION_UNSET 2
#define MCHP_POSITION_ONE 3
#define MCHP_POSITION_DEVICE 4

// ---- Missing results of the keyword scanners --------------------------------

#define MCHP_KEYWORD_MISSING 0xFFFFFFFFU
#define MCHP_KEYWORD_MISSING_SHORT 0xFFFFU

// ---- Module-wide state ------------------------------------------------------

// Set to 1 by a create on new drives that asked for hot spares; nothing
// reads it (the spares are made through a drive-state change).
extern UINT32 gMchpHotSpareRequested;
// The getconfig output and the copy the free-space parser reads.
extern CHAR16 gMchpGetconfigOutput[MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16)];
extern CHAR16 gMchpGetconfigCopy[MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16)];

// ---- Operations -------------------------------------------------------------

// Counts the adapters ("list") into gMchpCtrlCount and, with several, finds
// this adapter's number by its slot.
[[nodiscard]] EFI_STATUS MchpGetCardId(RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode);
// The number of the adapter in SlotNumber after a renumbering; always
// success.
[[nodiscard]] EFI_STATUS MchpGetCardIdN(RAID_CONTROLLER *Controller,
                                        UINT16 SlotNumber, UINT32 *CardId,
                                        UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpGetControllerInfo(
    RAID_CONTROLLER *Controller, RAID_CONTROLLER_PRIVATE *Private OPTIONAL,
    UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpCreateVolume(RAID_VOLUME_PARAMETER *Parameter,
                                          UINTN Unused, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpDeleteVolume(RAID_VOLUME *Volume,
                                          UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                                   RAID_PHYSICAL_DRIVE *Drive,
                                                   UINT32 State,
                                                   UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS MchpSetAllPhysicalDriveState(
    RAID_CONTROLLER *Controller, UINT32 State, UINT32 *ErrorCode);

// ---- Parsers ----------------------------------------------------------------

// The adapter count of a "list" report; 0 when none is given.
[[nodiscard]] UINT32 ParseControllerShowCtrlCount(CHAR16 *Output,
                                                  UINT32 *ErrorCode);
// Rebuilds the controller's arrays, volumes and drives from a getconfig
// report in a buffer of OutputChars characters (all of them readable; the
// report ends at its terminator or the buffer's end).
[[nodiscard]] EFI_STATUS ParseControllerShow(CHAR16 *Output,
                                             UINTN OutputChars,
                                             RAID_CONTROLLER *Controller,
                                             UINT32 *ErrorCode);
// Adds each array's free segment from a second copy of the same report,
// in a buffer of OutputChars characters as above.
[[nodiscard]] EFI_STATUS ParseControllerShowFS(CHAR16 *Output,
                                               UINTN OutputChars,
                                               RAID_CONTROLLER *Controller,
                                               UINT32 *ErrorCode);

// The count of a getconfig report that the parser traces: its lines and
// those naming a hard drive, a logical device and an array.
typedef struct {
  UINT32 Lines;
  UINT32 With[3];
} MCHP_REPORT_COUNT;

// Counts the report in a buffer of BufferChars characters, all readable,
// and finds its end in the same pass: returns the report's length.
[[nodiscard]] UINTN MchpCountReport(const CHAR16 *Output, UINTN BufferChars,
                                    MCHP_REPORT_COUNT *Count);
// The two parsers for a report of exactly TextChars characters at Text,
// its end found and Count taken by MchpCountReport (none of the characters
// is a terminator). Their trace lines carry the names above.
[[nodiscard]] EFI_STATUS ParseControllerShowText(
    CHAR16 *Text, UINTN TextChars, const MCHP_REPORT_COUNT &Count,
    RAID_CONTROLLER *Controller, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS ParseControllerShowFSText(CHAR16 *Text,
                                                   UINTN TextChars,
                                                   RAID_CONTROLLER *Controller,
                                                   UINT32 *ErrorCode);

// The physical device section; the walk stands on the line after its
// heading. Used by ParseControllerShow, whose name (Caller) its trace
// lines carry.
[[nodiscard]] EFI_STATUS ParsePhysicalDevices(const CHAR8 *Caller,
                                              RAID_LINE_CURSOR *Lines,
                                              RAID_CONTROLLER *Controller,
                                              UINT32 HardDriveLines,
                                              UINT32 *ErrorCode);

// ---- Keyword scanners -------------------------------------------------------
// A report line "key : value": the value is the text between the first and
// the second delimiter, copied stripped into Output (at most OutputChars
// characters with the terminator; a longer value is cut).

// The value as a decimal number; MCHP_KEYWORD_MISSING when there is none.
[[nodiscard]] UINT32 iGetKeyWord(const CHAR16 *Line, CHAR16 *Output,
                                 UINTN OutputChars);
// The same cut at any of Delimiters; MCHP_KEYWORD_MISSING_SHORT when none.
[[nodiscard]] UINT32 iiGetKeyWord(const CHAR16 *Line, const CHAR16 *Delimiters,
                                  CHAR16 *Output, UINTN OutputChars);
// The value text (Output), or NULL when there is none.
[[nodiscard]] CHAR16 *sGetKeyWord(const CHAR16 *Line, CHAR16 *Output,
                                  UINTN OutputChars);

// The characters of Line, the line the walk Lines returned last, with its
// terminator: it lies wholly before the next line's start.
[[nodiscard]] inline UINTN MchpLineChars(const RAID_LINE_CURSOR *Lines,
                                         const CHAR16 *Line) {
  return static_cast<UINTN>(Lines->Next - Line);
}

// A size word pair ("457873 MB") as thousandths and a unit code.
VOID MchpReadSize(const CHAR16 *Value, UINT64 *Figure, UINT32 *Unit);

}  // namespace mchp
