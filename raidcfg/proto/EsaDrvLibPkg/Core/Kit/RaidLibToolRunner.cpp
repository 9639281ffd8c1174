// The tool runner: command formatting, the shell-command service and the
// shared output buffer.
#include "RaidLibToolRunner.h"

#include <Library/BaseLib.h>
#include <Library/DebugLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/ShellCommand.h>

#include "RaidLib.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

constinit CHAR16 gRaidToolOutput[RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16)] = {};
constinit UINTN gRaidToolOutputSize = 0;
constinit CHAR16 *gRaidToolOutputCopy = nullptr;
constinit UINT32 gRaidCurrentCardId = RAID_CARD_ID_UNSET;

namespace {

constinit SHELL_COMMAND_PROTOCOL *gShellCommand = nullptr;
// The controller whose read is in progress (RaidLibReadScope).
constinit RAID_CONTROLLER *gReadController = nullptr;

}  // namespace

RaidLibReadScope::RaidLibReadScope(RAID_CONTROLLER *Controller)
    : Outer_(gReadController) {
  gReadController = Controller;
  if (Controller != nullptr && Controller->Private != nullptr) {
    Controller->Private->Flags &= ~RAID_FLAG_OUTPUT_CUT;
  }
}

RaidLibReadScope::~RaidLibReadScope() { gReadController = Outer_; }

VOID RaidLibNoteCutOutput(const CHAR8 *Caller, UINTN NeededBytes,
                          UINTN HeldBytes) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                    "[%a]Tool output cut: it needs %lu bytes, the buffer "
                    "holds %lu; read as far as it arrived\n",
                    static_cast<UINT64>(NeededBytes),
                    static_cast<UINT64>(HeldBytes));
  if (gReadController != nullptr && gReadController->Private != nullptr) {
    gReadController->Private->Flags |= RAID_FLAG_OUTPUT_CUT;
  }
}

// Locates the host's shell-command service once and keeps it.
EFI_STATUS RaidLibLocateShellCommand(const CHAR8 *Caller, UINT32 *ErrorCode) {
  if (gShellCommand != nullptr) {
    return EFI_SUCCESS;
  }
  EFI_STATUS Status = gBS->LocateProtocol(&gShellCommandProtocolGuid, nullptr,
                                          (VOID **)&gShellCommand);
  if (EFI_ERROR(Status) || gShellCommand == nullptr) {
    gShellCommand = nullptr;
    if (!EFI_ERROR(Status)) {
      Status = EFI_NOT_FOUND;
    }
    *ErrorCode = RaidLibFirmwareErrorCode(Status);
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Error code: 0x%x\n",
                      *ErrorCode);
    return Status;
  }
  return EFI_SUCCESS;
}

namespace {

// Formats, traces and runs one command line.
[[nodiscard]] EFI_STATUS RunTool(const RAID_TOOL_RUN &Run, UINT32 *ErrorCode,
                                 const CHAR16 *Format, VA_LIST Marker) {
  EFI_STATUS Status = RaidLibLocateShellCommand(Run.Caller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  // Every backend sizes its lines within the longest; a release image
  // clamps all the same.
  ASSERT(Run.CommandChars <= RAID_TOOL_LONGEST_COMMAND_CHARS);
  UINTN CommandChars = Run.CommandChars;
  if (CommandChars > RAID_TOOL_LONGEST_COMMAND_CHARS) {
    CommandChars = RAID_TOOL_LONGEST_COMMAND_CHARS;
  }
  if (Run.OutputSize >= sizeof(CHAR16)) {
    Run.Output[0] = 0;
  }
  CHAR16 CommandLine[RAID_TOOL_LONGEST_COMMAND_CHARS];
  Status = RaidLibVFormatCommand(Run.Caller, CommandLine, CommandChars,
                                 Run.Words, ErrorCode, Format, Marker);
  if (EFI_ERROR(Status)) {
    return Status;
  }

  RAID_LIB_TRACE_AS(Run.Caller, TARN_DEBUG_INFO, "[%a]Command: %S\n",
                    CommandLine);
  // The shared buffer's size word is the module-wide one.
  UINTN LocalSize = 0;
  UINTN *Size =
      Run.Output == gRaidToolOutput ? &gRaidToolOutputSize : &LocalSize;
  *Size = Run.OutputSize;
  Status = gShellCommand->ExecuteCapture(CommandLine, Run.Output, Size);
  if (Status == EFI_BUFFER_TOO_SMALL && Run.OutputSize >= sizeof(CHAR16)) {
    // The service kept the head of the output: it is read like any other,
    // and the loss is said.
    RaidLibNoteCutOutput(Run.Caller, *Size, Run.OutputSize);
    *Size = StrnLenS(Run.Output, Run.OutputSize / sizeof(CHAR16)) *
            sizeof(CHAR16);
    Status = EFI_SUCCESS;
  }
  return Status;
}

}  // namespace

EFI_STATUS EFIAPI RaidLibRunTool(const RAID_TOOL_RUN &Run, UINT32 *ErrorCode,
                                 const CHAR16 *Format, ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  EFI_STATUS Status = RunTool(Run, ErrorCode, Format, Marker);
  VA_END(Marker);
  return Status;
}

VOID RaidLibResetToolRunner() {
  gShellCommand = nullptr;
  gRaidCurrentCardId = RAID_CARD_ID_UNSET;
}
