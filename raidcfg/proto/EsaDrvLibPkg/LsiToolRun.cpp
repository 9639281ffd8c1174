// Running storcli with command lines longer than the core runner's 100
// characters (a create command names every drive of the new array).
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Host/ShellCommand.h>

#include "LsiBackend.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

// Formats the command into a buffer of BufferChars characters (at most the
// create command's), traces it and runs it into the shared output buffer.
EFI_STATUS EFIAPI LsiRunToolInto(const CHAR8 *Caller, UINTN BufferChars,
                                 UINT32 *ErrorCode, const CHAR16 *Format,
                                 ...) {
  EFI_STATUS Status = RaidLibLocateShellCommand(Caller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  SHELL_COMMAND_PROTOCOL *ShellCommand = nullptr;
  Status = gBS->LocateProtocol(&gShellCommandProtocolGuid, nullptr,
                               (VOID **)&ShellCommand);
  if (EFI_ERROR(Status) || ShellCommand == nullptr) {
    return EFI_ERROR(Status) ? Status : EFI_NOT_FOUND;
  }
  if (BufferChars > LSI_CREATE_COMMAND_CHARS) {
    BufferChars = LSI_CREATE_COMMAND_CHARS;
  }
  CHAR16 CommandLine[LSI_CREATE_COMMAND_CHARS];
  VA_LIST Marker;
  VA_START(Marker, Format);
  UnicodeVSPrint(CommandLine, BufferChars * sizeof(CHAR16), Format, Marker);
  VA_END(Marker);

  if (gRaidLibSetupProtocol != nullptr &&
      gRaidLibSetupProtocol->DebugPrint != nullptr) {
    gRaidLibSetupProtocol->DebugPrint(TARN_DEBUG_INFO, "[%a]Command: %S\n",
                                      Caller, CommandLine);
  }
  gRaidToolOutput[0] = 0;
  gRaidToolOutputSize = RAID_TOOL_OUTPUT_SIZE;
  return ShellCommand->ExecuteCapture(CommandLine, gRaidToolOutput,
                                      &gRaidToolOutputSize);
}
