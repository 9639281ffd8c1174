// A MegaRAID adapter seen through a scripted storcli (the shared
// scripted-tool world), its storcli number 0 at bus 3Bh.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "LsiBackend.h"
#include "RaidBackends.h"
#include "ScriptedToolWorld.h"

namespace lsi_test {

// The tests call the backend by its own names.
using namespace lsi;

using backend_test::Crlf;
using backend_test::LoadToolOutput;
using backend_test::Narrow;
using backend_test::SegmentNames;

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
};

}  // namespace lsi_test
