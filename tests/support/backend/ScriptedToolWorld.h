// A backend's adapter seen through a scripted tool: the emulated firmware
// with its setup protocol (trace) and shell-command service answering
// canned outputs per command line. Each family's backend world derives from
// it and adds its controller record and its own outputs.
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

class ScriptedToolWorld : public ::testing::Test {
 public:
  ScriptedToolWorld();
  // Checks that the pool is empty: the derived world frees its records
  // first.
  ~ScriptedToolWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The answer to every command line not answered otherwise.
  VOID AnswerOthers(const std::string &Output) { Default_ = Output; }
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  // The trace holds Line; a line given with a plain "\n" end is compared as
  // the console prints it, with CR LF.
  bool TraceHas(const std::string &Line) const;

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

// Model lookups by the tool's numbers.
RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id);
std::vector<std::string> SegmentNames(RAID_ARRAY *Array);

}  // namespace backend_test
