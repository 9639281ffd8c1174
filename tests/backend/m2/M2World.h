// A Marvell M.2 adapter seen through a scripted mvsetup.efi (the shared
// scripted-tool world), its card number 0.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "M2Backend.h"
#include "RaidBackends.h"
#include "ScriptedToolWorld.h"

namespace m2_test {

// The tests call the backend by its own names.
using namespace m2;

using backend_test::Crlf;
using backend_test::LoadToolOutput;
using backend_test::Narrow;

class M2World : public backend_test::ScriptedToolWorld {
 public:
  M2World();

  // The three reports of a read.
  VOID AnswerReports(const std::string &Hba, const std::string &Vd,
                     const std::string &Pd);
  // Reads the configuration from the canned outputs; fails the test when
  // the read fails.
  VOID ReadModel();

  RAID_ARRAY *OnlyArray();
  std::vector<RAID_VOLUME *> Volumes();
  std::vector<std::string> Locations(LIST_ENTRY *DriveList);
};

}  // namespace m2_test
