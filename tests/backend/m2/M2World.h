// A Marvell M.2 adapter seen through a scripted mvsetup.efi: the emulated
// firmware with its setup protocol (trace) and shell-command service, one
// controller record in gControllerList, and canned outputs per command
// line.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "M2Backend.h"
#include "RaidBackends.h"
#include "emu/Emulator.h"

namespace m2_test {

// The tests call the backend by its own names.
using namespace m2;

// Turns "\n" line ends into the "\r\n" that the UEFI tool prints.
std::string Crlf(const std::string &Text);
// Fills the shared output buffer with Text (CR LF added) for a parser.
CHAR16 *LoadOutput(const std::string &Text);
// Text of a CHAR16 string (ASCII), "<null>" for NULL.
std::string Narrow(const CHAR16 *Text);

class M2World : public ::testing::Test {
 public:
  M2World();
  ~M2World() override;

  // The answer to a command line (CR LF added); later calls replace it.
  VOID Answer(const std::string &CommandLine, const std::string &Output);
  // The three reports of a read.
  VOID AnswerReports(const std::string &Hba, const std::string &Vd,
                     const std::string &Pd);
  std::vector<std::string> Commands() const { return Shell_->CommandLines(); }
  bool TraceHas(const std::string &Line) const;

  // Reads the configuration from the canned outputs; fails the test when
  // the read fails.
  VOID ReadModel();

  RAID_ARRAY *OnlyArray();
  std::vector<RAID_VOLUME *> Volumes();
  std::vector<std::string> Locations(LIST_ENTRY *DriveList);

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  RAID_CONTROLLER *Controller_ = nullptr;
  std::map<std::string, std::string> Answers_;
};

}  // namespace m2_test
