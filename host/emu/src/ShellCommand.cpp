// The shell-command service and its bounded copy into CHAR16 buffers.
#include "emu/ShellCommand.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "emu/Firmware.h"
#include "emu/TextConversion.h"

namespace emu {
namespace {

ShellCommand *gActiveShell = nullptr;

}  // namespace

ShellCommand::ShellCommand(Firmware &Firmware) : Firmware_(Firmware) {
  if (gActiveShell != nullptr) {
    std::fprintf(stderr, "emu::ShellCommand: one is already active\n");
    std::abort();
  }
  Protocol_ = {Execute, ExecuteCapture};
  Firmware_.Handles().Install(&Handle_, gShellCommandProtocolGuid, &Protocol_);
  gActiveShell = this;
}

ShellCommand::~ShellCommand() {
  gActiveShell = nullptr;
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gShellCommandProtocolGuid,
                                  &Protocol_);
  }
}

ShellCommand &ShellCommand::Active() {
  if (gActiveShell == nullptr) {
    std::fprintf(stderr, "emu::ShellCommand: called after it was removed\n");
    std::abort();
  }
  return *gActiveShell;
}

std::vector<std::string> ShellCommand::CommandLines() const {
  std::vector<std::string> Lines;
  for (const auto &Call : Calls_) {
    Lines.push_back(Call.CommandLine);
  }
  return Lines;
}

std::string ShellCommand::Run(const std::string &CommandLine, bool &Answered) {
  Answered = static_cast<bool>(Handler_);
  return Answered ? Handler_(CommandLine) : std::string();
}

bool ShellCommand::CopyOut(const std::u16string &Text, CHAR16 *Output,
                           UINTN *OutputSize) {
  const UINTN Capacity = *OutputSize / sizeof(CHAR16);
  if (Capacity == 0) {
    *OutputSize = 0;
    return !Text.empty();
  }
  const UINTN Count = std::min<UINTN>(Text.size(), Capacity - 1);
  std::memcpy(Output, Text.data(), Count * sizeof(CHAR16));
  Output[Count] = 0;
  *OutputSize = Count * sizeof(CHAR16);
  return Count < Text.size();
}

VOID ShellCommand::FailNthCall(UINT64 N, EFI_STATUS Status) {
  FailCall_ = Calls_.size() + N;
  FailCallStatus_ = Status;
}

EFI_STATUS ShellCommand::FailureOfThisCall() const {
  return Calls_.size() + 1 == FailCall_ ? FailCallStatus_ : Failure_;
}

EFI_STATUS EFIAPI ShellCommand::Execute(const CHAR16 *CommandLine) {
  ShellCommand &Self = Active();
  if (CommandLine == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  ShellCommandCall Call{ToUtf8(CommandLine), false, false, "", 0, 0, false};
  const EFI_STATUS Failure = Self.FailureOfThisCall();
  if (!EFI_ERROR(Failure)) {
    Call.Output = Self.Run(Call.CommandLine, Call.Answered);
  }
  Self.Calls_.push_back(std::move(Call));
  return Failure;
}

EFI_STATUS EFIAPI ShellCommand::ExecuteCapture(const CHAR16 *CommandLine,
                                               CHAR16 *Output,
                                               UINTN *OutputSize) {
  ShellCommand &Self = Active();
  if (CommandLine == nullptr || OutputSize == nullptr ||
      (Output == nullptr && *OutputSize != 0)) {
    return EFI_INVALID_PARAMETER;
  }
  ShellCommandCall Call{ToUtf8(CommandLine), true,  false, "",
                        *OutputSize,         0,     false};
  if (const EFI_STATUS Failure = Self.FailureOfThisCall(); EFI_ERROR(Failure)) {
    *OutputSize = 0;
    Self.Calls_.push_back(std::move(Call));
    return Failure;
  }
  Call.Output = Self.Run(Call.CommandLine, Call.Answered);
  const std::u16string Text = Utf8ToUtf16(Call.Output);
  Call.Truncated = CopyOut(Text, Output, OutputSize);
  Call.BytesWritten = *OutputSize;
  Self.Calls_.push_back(std::move(Call));
  if (Self.Calls_.back().Truncated) {
    // What fitted stays in Output; the size says what the whole would take.
    *OutputSize = (Text.size() + 1) * sizeof(CHAR16);
    return EFI_BUFFER_TOO_SMALL;
  }
  return EFI_SUCCESS;
}

}  // namespace emu
