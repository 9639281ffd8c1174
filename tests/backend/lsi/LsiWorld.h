// A MegaRAID adapter seen through a scripted storcli: the emulated firmware
// with its setup protocol (trace) and shell-command service, one controller
// record in gControllerList, and canned outputs per command line.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "emu/Emulator.h"
#include "LsiBackend.h"
#include "RaidBackends.h"
#include "ScriptedTool.h"

namespace lsi_test {

// The tests call the backend by its own names.
using namespace lsi;

using backend_test::Crlf;
using backend_test::Narrow;
// Fills the shared output buffer with Text (CR LF added) for a parser.
inline CHAR16 *LoadOutput(const std::string &Text) {
  return backend_test::LoadToolOutput(Text);
}

// A verdict block of storcli: "Status = Success" or "Status = Failure".
std::string Verdict(bool Success);

class LsiWorld : public ::testing::Test {
 public:
  LsiWorld();
  ~LsiWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The answer to every command line not answered otherwise.
  VOID AnswerOthers(const std::string &Output) { Default_ = Output; }
  std::vector<std::string> Commands() const {
    return Shell_->CommandLines();
  }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  bool TraceHas(const std::string &Line) const;

  // Answers the read commands with the rich configuration of LsiOutputs.h.
  VOID AnswerRichConfiguration();
  // Reads the configuration from the canned outputs; fails the test when
  // the read fails.
  VOID ReadModel();

  // Model lookups by tool numbers.
  RAID_ARRAY *Array(UINT32 Id);
  RAID_PHYSICAL_DRIVE *DriveAt(const std::string &Location);
  std::vector<std::string> SegmentNames(RAID_ARRAY *Array);

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

}  // namespace lsi_test
