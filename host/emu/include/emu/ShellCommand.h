// The shell-command service: each command line goes to a handler that
// answers with the tool's printed bytes (UTF-8/ASCII, CRLF kept); the
// answer is copied into the caller's CHAR16 buffer within its size.
#pragma once

#include <Protocol/Host/ShellCommand.h>
#include <Uefi.h>

#include <functional>
#include <string>
#include <vector>

namespace emu {

class Firmware;

struct ShellCommandCall {
  std::string CommandLine;  // UTF-8
  bool Captured;            // ExecuteCapture (true) or Execute (false)
  bool Answered;            // a handler produced the output
  std::string Output;       // the handler's bytes, whole
  UINTN BufferSize;         // caller's size in bytes on entry
  UINTN BytesWritten;       // bytes written, without the NUL
  bool Truncated;           // the output did not fit: EFI_BUFFER_TOO_SMALL
};

class ShellCommand {
 public:
  using Handler = std::function<std::string(const std::string &CommandLine)>;

  explicit ShellCommand(Firmware &Firmware);
  ~ShellCommand();
  ShellCommand(const ShellCommand &) = delete;
  ShellCommand &operator=(const ShellCommand &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  // No handler: every command gets an empty output and counts as unanswered.
  VOID SetHandler(Handler Handler) { Handler_ = std::move(Handler); }
  // A status every call returns instead of running anything (EFI_SUCCESS
  // restores normal service).
  VOID SetFailure(EFI_STATUS Status) { Failure_ = Status; }
  // The Nth call from now (1: the next) returns Status instead of running
  // anything; the calls after it are served again.
  VOID FailNthCall(UINT64 N, EFI_STATUS Status);
  const std::vector<ShellCommandCall> &Calls() const { return Calls_; }
  // Forgets the calls so far (a fuzz target's calls would otherwise pile
  // up, every output kept, over millions of inputs).
  VOID ClearCalls() { Calls_.clear(); }
  // The command lines in order.
  std::vector<std::string> CommandLines() const;

  // Copies Text as CHAR16 into Output of *OutputSize bytes, cut to fit and
  // NUL-terminated when one CHAR16 fits; *OutputSize becomes the bytes
  // written without the NUL. Returns whether the text was cut.
  static bool CopyOut(const std::u16string &Text, CHAR16 *Output,
                      UINTN *OutputSize);

 private:
  static ShellCommand &Active();
  std::string Run(const std::string &CommandLine, bool &Answered);
  // The status the call about to be made fails with; EFI_SUCCESS: none.
  [[nodiscard]] EFI_STATUS FailureOfThisCall() const;
  static EFI_STATUS EFIAPI Execute(const CHAR16 *CommandLine);
  static EFI_STATUS EFIAPI ExecuteCapture(const CHAR16 *CommandLine,
                                          CHAR16 *Output, UINTN *OutputSize);

  Firmware &Firmware_;
  SHELL_COMMAND_PROTOCOL Protocol_;
  EFI_HANDLE Handle_ = nullptr;
  Handler Handler_;
  EFI_STATUS Failure_ = EFI_SUCCESS;
  UINT64 FailCall_ = 0;  // the number of the call that fails, 0: none
  EFI_STATUS FailCallStatus_ = EFI_SUCCESS;
  std::vector<ShellCommandCall> Calls_;
};

}  // namespace emu
