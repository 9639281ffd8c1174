// The host's shell-command service: runs a UEFI command-line tool and hands
// back what it printed.
#pragma once

#include <Uefi.h>

#define SHELL_COMMAND_PROTOCOL_GUID \
  {0xC87D40DD, 0x1717, 0x4AD3, {0x95, 0xEB, 0xF7, 0x70, 0xBB, 0x6B, 0xF7, 0x8E}}

typedef struct _SHELL_COMMAND_PROTOCOL SHELL_COMMAND_PROTOCOL;
struct _SHELL_COMMAND_PROTOCOL {
  // Runs a command whose output is not wanted.
  EFI_STATUS(EFIAPI *Execute)(const CHAR16 *CommandLine);
  // Runs a command and copies its output, as CHAR16 text, into Output.
  // *OutputSize: the buffer's size in bytes on entry, the bytes written
  // (without the terminating NUL) on return. The text is always
  // NUL-terminated when the buffer holds at least one CHAR16. An output
  // that does not fit is cut to fit and reported as UEFI services report a
  // short buffer: EFI_BUFFER_TOO_SMALL, with *OutputSize the bytes the
  // whole output needs, terminating NUL included; what fitted is in Output.
  EFI_STATUS(EFIAPI *ExecuteCapture)
  (const CHAR16 *CommandLine, CHAR16 *Output, UINTN *OutputSize);
};

extern EFI_GUID gShellCommandProtocolGuid;
