// One adapter seen through a scripted vendor tool, for every backend's
// tests: the emulated firmware with its setup protocol (trace) and
// shell-command service answering canned outputs per command line, and one
// controller record in gControllerList bound to the backend. The pool must
// be empty once the controller is released.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "RaidLib.h"
#include "ScriptedTool.h"
#include "emu/Emulator.h"

namespace backend_test {

// What the controller record is made of.
struct ScriptedController {
  const char16_t *ToolName;
  const char16_t *Name;
  UINT32 Id;
  RAID_BIND_BACKEND Bind;
  // The card number the tool knows the adapter by.
  UINT32 CardId = 0;
};

class ScriptedToolWorld : public ::testing::Test {
 public:
  explicit ScriptedToolWorld(const ScriptedController &Made);
  ~ScriptedToolWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The answer to every command line not answered otherwise (as given).
  VOID AnswerOthers(const std::string &Output) { Default_ = Output; }
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  // The trace holds Line; a line given with a plain "\n" end is compared as
  // the console prints it, with CR LF. Else a failure listing the trace.
  bool TraceHas(const std::string &Line) const;

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

// Model lookups by the tool's numbers.
RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id);
std::vector<std::string> SegmentNames(RAID_ARRAY *Array);

}  // namespace backend_test
