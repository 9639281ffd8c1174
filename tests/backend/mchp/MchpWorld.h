// A Microchip adapter seen through a scripted arcconf: the emulated
// firmware with its setup protocol (trace) and shell-command service, one
// controller record in gControllerList, and canned outputs per command line.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ScriptedToolWorld.h"
#include "MchpBackend.h"
#include "RaidBackends.h"

namespace mchp_test {

// The tests call the backend by its own names.
using namespace mchp;

using backend_test::Crlf;
using backend_test::LoadToolOutput;
using backend_test::Narrow;

class MchpWorld : public backend_test::ScriptedToolWorld {
 public:
  MchpWorld();
  ~MchpWorld() override;

  // TRUE when the trace holds Line (its CR LF added); else a failure
  // listing the trace.
  bool TraceHas(const std::string &Line) const {
    return ScriptedToolWorld::TraceHas(Line + "\r\n");
  }

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

};

}  // namespace mchp_test
