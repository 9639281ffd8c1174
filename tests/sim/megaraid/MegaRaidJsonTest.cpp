// Loading and dumping the adapter's JSON: the dump loads back to the same
// state, defaults fill in what a scenario leaves out, and states the
// firmware could not hold are refused with the reason.
#include <gtest/gtest.h>

#include "StorcliTestSupport.h"

namespace sim::megaraid::test {
namespace {

using nlohmann::json;

TEST(MegaRaidJsonTest, DumpLoadsBackToTheSameState) {
  const Adapter State = RichAdapter();
  const json Dump = AdapterToJson(State);
  EXPECT_EQ(CanonicalState(AdapterFromJson(Dump)), CanonicalState(State));
}

TEST(MegaRaidJsonTest, FillsMemberStatesSpansNumbersAndOffsets) {
  const Adapter State = AdapterFromJson(json::parse(R"({
    "drives": [{"address": "1:0", "size": "931.000 GB"}, {"address": "1:1", "sizeMb": 953344},
               {"address": "1:2", "sizeMb": 953344}, {"address": "1:3", "sizeMb": 953344},
               {"address": "1:4", "sizeMb": 953344}],
    "driveGroups": [{"raidLevel": 10, "members": ["1:0", "1:1", "1:2", "1:3"],
                     "dedicatedSpares": ["1:4"],
                     "virtualDrives": [{"number": 0, "sizeMb": 1000}, {"sizeMb": 2000}]}]})"));
  EXPECT_EQ(State.Drives()[0].SizeMb, 953344u);
  EXPECT_EQ(State.Drives()[0].DeviceId, 0u);
  EXPECT_EQ(State.Drives()[0].State, DriveState::Onln);
  EXPECT_EQ(State.Drives()[4].State, DriveState::DHS);
  const auto &Group = State.Groups()[0];
  EXPECT_EQ(Group.DrivesPerSpan, 2u);
  EXPECT_EQ(Group.Volumes[1].Number, 1u);
  EXPECT_EQ(Group.Volumes[1].OffsetMb, 1000u);
  EXPECT_EQ(Group.Volumes[1].StripKb, 256u);
  EXPECT_EQ(State.GroupCapacityMb(0), 2u * 953344u);
}

class MegaRaidJsonRefusalTest
    : public ::testing::TestWithParam<std::pair<const char *, const char *>> {};

TEST_P(MegaRaidJsonRefusalTest, NamesWhatIsWrong) {
  try {
    AdapterFromJson(json::parse(GetParam().first));
    FAIL() << "accepted " << GetParam().first;
  } catch (const std::runtime_error &Error) {
    EXPECT_NE(std::string(Error.what()).find(GetParam().second), std::string::npos)
        << Error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Refused, MegaRaidJsonRefusalTest,
    ::testing::Values(
        std::pair{R"([])", "JSON object"},
        std::pair{R"({"drives": [{"address": "1:0"}]})", "\"sizeMb\" or \"size\""},
        std::pair{R"({"drives": [{"address": "x", "sizeMb": 1}]})", "enclosure:slot"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 1, "state": "Sleepy"}]})",
                  "unknown interface, medium or state"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 1, "did": 4},
                                 {"address": "1:1", "sizeMb": 1, "did": 4}]})",
                  "used twice"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 1, "state": "Onln"}]})",
                  "does not match its group"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 1, "state": "JBOD",
                                  "foreign": true}]})",
                  "foreign drive"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 10}],
                      "driveGroups": [{"raidLevel": 1, "members": ["1:0"],
                                       "virtualDrives": [{"sizeMb": 1}]}]})",
                  "drive count"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 10}],
                      "driveGroups": [{"raidLevel": 0, "members": ["1:0"],
                                       "virtualDrives": [{"sizeMb": 11}]}]})",
                  "exceed its capacity"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 10}],
                      "driveGroups": [{"raidLevel": 0, "members": ["1:0"],
                                       "virtualDrives": []}]})",
                  "no virtual drive"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 10}],
                      "driveGroups": [{"raidLevel": 0, "members": ["1:1"]}]})",
                  "no drive 1:1"},
        std::pair{R"({"drives": [{"address": "1:0", "sizeMb": 10}],
                      "driveGroups": [{"raidLevel": 0, "members": ["1:0"],
                                       "virtualDrives": [{"sizeMb": 5, "readPolicy": "fast"}]}]})",
                  "unknown readPolicy"},
        std::pair{R"({"pci": {"bus": "three"}})", "wrong type"}));

}  // namespace
}  // namespace sim::megaraid::test
