// Servers with Microchip adapters through the native host: a recorded run
// replays to the same model, and the demo's SmartRAID is read.
#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "native/Scenario.h"

namespace host_test {
namespace {

const std::filesystem::path kScenarios = RAIDCFG_SCENARIO_DIR;

const host::ModelJson *ControllerNamed(const host::ModelJson &Model,
                                       const std::string &Serial) {
  for (const host::ModelJson &Controller : Model["controllers"]) {
    if (Controller["SerialNumber"] == Serial) {
      return &Controller;
    }
  }
  return nullptr;
}

class MicrochipReplayTest : public ::testing::TestWithParam<const char *> {};

TEST_P(MicrochipReplayTest, ARecordedRunReplaysToTheSameModel) {
  const host::Scenario Scenario =
      host::LoadScenarioFile(kScenarios / GetParam());
  ScratchDirectory Dir;
  DumpRun Live = RunDump(Scenario, {std::nullopt, Dir.Path()});
  DumpRun Replayed = RunDump(Scenario, {Dir.Path(), std::nullopt});
  EXPECT_TRUE(Live.Problems.empty());
  EXPECT_TRUE(Replayed.Problems.empty());
  EXPECT_EQ(Live.Model.dump(), Replayed.Model.dump());
  EXPECT_NE(Dir.Read("commands.txt").find("\tarcconf.efi list"),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, MicrochipReplayTest,
                         ::testing::Values("demo.json",
                                           "microchip-renumbered.json"));

TEST(MicrochipHost, TwoAdaptersAreEachReadByTheirSlot) {
  DumpRun Run =
      RunDump(host::LoadScenarioFile(kScenarios / "microchip-renumbered.json"));
  const host::ModelJson *Left = ControllerNamed(Run.Model, "7A4620EC0A1");
  const host::ModelJson *Right = ControllerNamed(Run.Model, "7A4620EC0B2");
  ASSERT_NE(Left, nullptr);
  ASSERT_NE(Right, nullptr);
  EXPECT_EQ((*Left)["SlotNumber"], 2);
  EXPECT_EQ((*Left)["Private"]["CardId"], 1);
  EXPECT_EQ((*Left)["Arrays"].size(), 1u);
  EXPECT_EQ((*Right)["SlotNumber"], 6);
  EXPECT_EQ((*Right)["Private"]["CardId"], 2);
  EXPECT_EQ((*Right)["PhysicalDrives"].size(), 4u);
}

TEST(MicrochipHost, TheDemosSmartRaidHoldsItsArray) {
  DumpRun Run = RunDump(host::LoadScenarioFile(kScenarios / "demo.json"));
  const host::ModelJson *SmartRaid = ControllerNamed(Run.Model, "7A4620EC0F2");
  ASSERT_NE(SmartRaid, nullptr);
  const host::ModelJson &Array = (*SmartRaid)["Arrays"][0];
  EXPECT_EQ(Array["RaidLevel"], 5);
  EXPECT_EQ(Array["Segments"].size(), 3u);  // two volumes and free space
  EXPECT_EQ((*SmartRaid)["SpareDrives"].size(), 1u);
  EXPECT_EQ((*SmartRaid)["PhysicalDrives"].size(), 4u);
}

}  // namespace
}  // namespace host_test
