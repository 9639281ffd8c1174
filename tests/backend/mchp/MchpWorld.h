// A Microchip adapter seen through a scripted arcconf: the emulated
// firmware with its setup protocol (trace) and shell-command service, one
// controller record in gControllerList, and canned outputs per command line.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "MchpBackend.h"
#include "RaidBackends.h"
#include "emu/Emulator.h"

namespace mchp_test {

// The tests call the backend by its own names.
using namespace mchp;

// Turns "\n" line ends into the "\r\n" that the UEFI tool prints.
std::string Crlf(const std::string &Text);
// Text of a CHAR16 string (ASCII), "<null>" for NULL.
std::string Narrow(const CHAR16 *Text);

class MchpWorld : public ::testing::Test {
 public:
  MchpWorld();
  ~MchpWorld() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  VOID AnswerOthers(const std::string &Output) { Default_ = Crlf(Output); }
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  std::vector<std::string> Trace() const { return Setup_->TraceTexts(); }
  // TRUE when the trace holds Line (its CR LF added); else a failure
  // listing the trace.
  bool TraceHas(const std::string &Line) const;

  // Reads Getconfig as the adapter's report; fails the test when the read
  // fails.
  VOID ReadModel(const std::string &Getconfig);
  // Parses Getconfig directly (no tool run), returning the status.
  EFI_STATUS Parse(const std::string &Getconfig, UINT32 *ErrorCode);

  RAID_ARRAY *Array(UINT32 Id);
  RAID_VOLUME *Volume(UINT32 ArrayId, UINT32 Id);
  RAID_PHYSICAL_DRIVE *Drive(UINT32 Slot);
  // Every drive of the model: unconfigured, spares, then array members.
  std::vector<RAID_PHYSICAL_DRIVE *> AllDrives();

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
  std::string Default_;
};

}  // namespace mchp_test
