// One adapter seen through a scripted vendor tool, for every backend's
// tests: the emulated firmware with its setup protocol (trace) and
// shell-command service, one controller record in gControllerList bound to
// the backend, and canned outputs per command line. The pool must be empty
// once the controller is released.
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
// Fills the shared output buffer with Text (CR LF added) for a parser.
CHAR16 *LoadOutput(const std::string &Text);
// Text of a CHAR16 string (ASCII), "<null>" for NULL.
std::string Narrow(const CHAR16 *Text);

// What the controller record is made of.
struct ScriptedController {
  const char16_t *ToolName;
  const char16_t *Name;
  UINT32 Id;
  VOID (*Bind)(RAID_OPERATIONS *Operations);
  // The card number the tool knows the adapter by.
  UINT32 CardId = 0;
};

class ScriptedToolWorld : public ::testing::Test {
 public:
  explicit ScriptedToolWorld(const ScriptedController &Made);
  ~ScriptedToolWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The answer to every command line not answered otherwise.
  VOID AnswerOthers(const std::string &Output) { Default_ = Output; }
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  // Fails the test, listing the trace, when it lacks Line.
  bool TraceHas(const std::string &Line) const;

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

}  // namespace backend_test
