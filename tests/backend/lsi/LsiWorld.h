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
#include "ScriptedToolWorld.h"

namespace lsi_test {

// The tests call the backend by its own names.
using namespace lsi;

using backend_test::Crlf;
using backend_test::Narrow;
using backend_test::SegmentNames;
// Fills the shared output buffer with Text (CR LF added) for a parser.
inline CHAR16 *LoadOutput(const std::string &Text) {
  return backend_test::LoadToolOutput(Text);
}

// A verdict block of storcli: "Status = Success" or "Status = Failure".
std::string Verdict(bool Success);

class LsiWorld : public backend_test::ScriptedToolWorld {
 public:
  LsiWorld();
  ~LsiWorld() override;

  // Answers the read commands with the rich configuration of LsiOutputs.h.
  VOID AnswerRichConfiguration();
  // Reads the configuration from the canned outputs; fails the test when
  // the read fails.
  VOID ReadModel();

  // Model lookups by tool numbers.
  RAID_ARRAY *Array(UINT32 Id) {
    return backend_test::ArrayWithId(Controller_, Id);
  }
  RAID_PHYSICAL_DRIVE *DriveAt(const std::string &Location);

  RAID_CONTROLLER *Controller_ = nullptr;
};

}  // namespace lsi_test
