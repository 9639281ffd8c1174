// What every backend operation does around its tool run: the readiness
// checks before it, and the re-read of the adapter after a change.
#pragma once

#include <Uefi.h>

#include "RaidLib.h"

// Clears an operation table and writes Signature into it, zero-padded; the
// first step of every backend's binding operation.
VOID RaidLibStartOperations(RAID_OPERATIONS *Operations,
                            const CHAR8 *Signature);

// TRUE when the controller has what a command line needs: its private
// record (the card number) and a capability naming the tool.
[[nodiscard]] BOOLEAN RaidLibControllerCanRunTool(
    const RAID_CONTROLLER *Controller);

// The start of an operation that runs the tool: the controller must pass
// RaidLibControllerCanRunTool (else RAID_ERROR_MISSING and EFI_ABORTED) and
// the shell-command service is located (a failure is traced under Caller
// and returned with its firmware error code).
[[nodiscard]] EFI_STATUS RaidLibToolAvailable(const CHAR8 *Caller,
                                              const RAID_CONTROLLER *Controller,
                                              UINT32 *ErrorCode);

// The start of a backend's GetControllerInfo: FALSE when there is nothing
// to read, because the controller cannot run its tool (*ErrorCode
// RAID_ERROR_MISSING, *Status EFI_ABORTED) or its cached output is still
// valid (traced "[<Caller>] Info is up to date.", *Status EFI_SUCCESS).
// *ErrorCode is 0 otherwise.
[[nodiscard]] BOOLEAN RaidLibReadIsDue(const CHAR8 *Caller,
                                       const RAID_CONTROLLER *Controller,
                                       UINT32 *ErrorCode, EFI_STATUS *Status);

// Before a command is built: the shell-command service is located (a
// failure is traced under Caller and returned with its firmware error
// code) and the card has a number (else RAID_ERROR_INVALID_CARD_ID and
// EFI_ABORTED). The controller must pass RaidLibControllerCanRunTool.
[[nodiscard]] EFI_STATUS RaidLibReadyToRunTool(const CHAR8 *Caller,
                                               const RAID_CONTROLLER *Controller,
                                               UINT32 *ErrorCode);

// The outcome of the re-read after a change.
typedef struct {
  EFI_STATUS Status;
  UINT32 ErrorCode;  // the read's own error code
} RAID_REFRESH;

[[nodiscard]] inline BOOLEAN RaidLibRefreshFailed(const RAID_REFRESH &Refresh) {
  return (EFI_ERROR(Refresh.Status) || Refresh.ErrorCode != 0) ? TRUE : FALSE;
}

// Marks the controller's cached tool output stale, so that the next read
// runs the tool again: every command that changes the adapter does this.
inline VOID RaidLibMarkOutputStale(RAID_CONTROLLER *Controller) {
  Controller->Private->Flags &= ~RAID_FLAG_OUTPUT_VALID;
}

// Re-reads the adapter after a change through its backend's own
// GetControllerInfo. The cached output is as the change left it: a change
// that ran nothing leaves the model current and the read only says so. The
// read's
// error code is taken over into *ErrorCode only when the change left none:
// the change's own verdict comes first. The caller traces a failure in its
// own words.
[[nodiscard]] RAID_REFRESH RaidLibRefreshAfterChange(
    RAID_CONTROLLER *Controller, UINT32 *ErrorCode);

// Re-reads the adapter after a deletion as RaidLibRefreshAfterChange does;
// a re-read that failed is traced under Caller as "[<Caller>] Failed to
// refresh controller information, Status: <status>, Error code: <code>".
VOID RaidLibRefreshAfterDelete(const CHAR8 *Caller,
                               RAID_CONTROLLER *Controller, UINT32 *ErrorCode);
