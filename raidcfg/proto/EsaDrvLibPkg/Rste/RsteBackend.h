// The Intel RSTe/VROC backend: the SATA RAID configuration tool
// (RCfgSata.efi and its versioned builds) for the on-board RSTe and VROC
// SATA and sSATA engines, the parsers of its "/V", "/I" and "/ST" reports,
// and the operations it puts into RAID_OPERATIONS.
//
// The tool has no controller number: every command addresses the engine the
// installed driver serves, so CardId is always 0. Parsers work in place on
// the output they are given (usually the shared tool-output buffer).
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

namespace rste {

// ---- Error codes of the backend ---------------------------------------------

#define RSTE_ERROR_NO_FREE_DRIVES 0x00200015U
#define RSTE_ERROR_STRIPE_SIZE 0x00200029U
#define RSTE_ERROR_CREATE 0x0020002FU
#define RSTE_ERROR_DELETE 0x00200030U
#define RSTE_ERROR_DRIVE_STATE 0x00200031U
#define RSTE_ERROR_OTHER 0x0020300EU

// ---- Operation kinds handed to ParseError -------------------------------------

#define RSTE_KIND_DRIVE_STATE 3
#define RSTE_KIND_DELETE_ARRAY 4
#define RSTE_KIND_DELETE_VOLUME 5
#define RSTE_KIND_CREATE_NEW 6
#define RSTE_KIND_CREATE_EXISTING 7

// ---- Buffers (characters) -----------------------------------------------------

// Read, delete and drive commands: at most 100 characters with the
// terminator, as the runner's short line.
#define RSTE_SHORT_COMMAND_CHARS 100
// The tool reads "/" as the start of a switch: "/D:a/Y" is two.
#define RSTE_TOOL_WORDS RAID_TOOL_WORD_NO_SLASH
// A create command names its disks: up to 1000 characters.
#define RSTE_CREATE_COMMAND_CHARS 1000
// The disk list of a create on new disks.
#define RSTE_DISK_LIST_CHARS 100
// The BIOS part of the firmware version, and the whole version text.
#define RSTE_BIOS_PART_CHARS 20
#define RSTE_FIRMWARE_VERSION_CHARS 50

// Longest text a parser reads: the shared output buffer's characters.
#define RSTE_OUTPUT_CHARS (80960 / sizeof(CHAR16))

// ---- Module-wide state ----------------------------------------------------------

// The candidate tool names, in the order they are tried, NULL-terminated.
extern const CHAR16 *const gRsteToolCandidates[];
// The tool every command names; the first candidate until RsteToolInit
// picks the one that answers.
extern const CHAR16 *gRsteTool;
// Set once RsteToolInit has run.
extern UINT8 gRsteToolSelected;
// Set for the VROC report layout (the volume state seven lines below its
// name in "/ST"); cleared by a "/V" report of the RSTe SATA driver.
extern UINT8 gRsteVrocLayout;

// Back to the start-up state: first candidate, not selected, VROC layout.
VOID RsteResetState();

// ---- Operations -------------------------------------------------------------

// Picks the tool: the first candidate whose "/V" begins with "Intel(R)".
VOID RsteToolInit();
[[nodiscard]] EFI_STATUS RsteGetCardId(RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteGetControllerInfo(
    RAID_CONTROLLER *Controller, RAID_CONTROLLER_PRIVATE *Private OPTIONAL,
    UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteCreateVolume(RAID_VOLUME_PARAMETER *Parameter,
                                          UINTN Unused, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteDeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteDeleteVolume(RAID_VOLUME *Volume,
                                          UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteSetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                                   RAID_PHYSICAL_DRIVE *Drive,
                                                   UINT32 State,
                                                   UINT32 *ErrorCode);
[[nodiscard]] EFI_STATUS RsteSetAllPhysicalDriveState(
    RAID_CONTROLLER *Controller, UINT32 State, UINT32 *ErrorCode);

// ---- Parsers ----------------------------------------------------------------

// "/V": the driver version, the layout flag, and FirmwareVersion with the
// BIOS version part from SMBIOS. Always EFI_SUCCESS.
[[nodiscard]] EFI_STATUS ParseControllerVersion(CHAR16 *Output,
                                                RAID_CONTROLLER *Controller,
                                                UINT32 *ErrorCode);
// "/I": arrays, volumes, disks and their sizes. EFI_ABORTED for NULL.
[[nodiscard]] EFI_STATUS ParseControllerInfo(CHAR16 *Output,
                                             RAID_CONTROLLER *Controller,
                                             UINT32 *ErrorCode);
// "/ST": the state of each volume. EFI_ABORTED for NULL.
[[nodiscard]] EFI_STATUS ParseSataInfo(CHAR16 *Output,
                                       RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode);
// The verdict of a change of operation kind Kind (RSTE_KIND_*): an
// "ERROR:" line sets the kind's error code, a success line or neither
// leaves 0. EFI_ABORTED for NULL.
[[nodiscard]] EFI_STATUS ParseError(CHAR16 *Output, UINT32 Kind,
                                    UINT32 *ErrorCode);

// ---- Helpers shared by the operations ----------------------------------------

// The start of every operation that runs the tool: the shell-command
// service located (a failure traced under Caller, its firmware error code
// set) and the tool picked once.
[[nodiscard]] EFI_STATUS RsteReady(const CHAR8 *Caller, UINT32 *ErrorCode);
// The error code an "ERROR:" line gives for an operation kind.
[[nodiscard]] UINT32 RsteErrorCodeOfKind(UINT32 Kind);
// Clears the cached flag, re-reads the controller, takes its error code when
// the change left none, traces "[%a]Error code 0x%x, status = %r.\n" under
// Caller and returns the read's status.
[[nodiscard]] EFI_STATUS RsteRefresh(const CHAR8 *Caller,
                                     RAID_CONTROLLER *Controller,
                                     UINT32 *ErrorCode);

}  // namespace rste
