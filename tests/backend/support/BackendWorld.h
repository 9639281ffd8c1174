// A backend seen through a scripted vendor tool: the emulated firmware with
// its setup protocol (trace) and shell-command service, one controller
// record bound to the backend in gControllerList, and canned outputs per
// command line. Each family's backend tests build on it.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "RaidLib.h"
#include "emu/Emulator.h"

namespace backend_test {

// Turns "\n" line ends into the "\r\n" that the UEFI tools print.
std::string Crlf(const std::string &Text);
// Text of a CHAR16 string (ASCII), "<null>" for NULL.
std::string Narrow(const CHAR16 *Text);

// What the controller record of a world is.
struct ControllerSetup {
  const char16_t *ToolName;
  const char16_t *Name;
  UINT32 Id;
  UINT32 CardId;
  VOID (*Bind)(RAID_OPERATIONS *Operations);
};

class BackendWorld : public ::testing::Test {
 public:
  explicit BackendWorld(const ControllerSetup &Setup);
  ~BackendWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The answer to every command line not answered otherwise (as given).
  VOID AnswerOthers(const std::string &Output) { Default_ = Output; }
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  // TRUE when the trace holds Text exactly; else a failure listing it.
  bool TraceHas(const std::string &Text) const;

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

}  // namespace backend_test
