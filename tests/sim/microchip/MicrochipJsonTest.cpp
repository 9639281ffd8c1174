// The scenario form of a virtual Microchip adapter: a dump loads back to the
// same state, and states the firmware could not hold are refused by place.
#include <gtest/gtest.h>

#include "SmartRaid.h"
#include "sim/common/JsonFields.h"
#include "sim/microchip/MicrochipJson.h"

namespace microchip_sim_test {
namespace {

using namespace sim::microchip;
using nlohmann::json;

TEST(MicrochipJson, ADumpLoadsBackToTheSameState) {
  const Adapter State = AdapterFromJson(RichAdapter());
  const json Dump = AdapterToJson(State);
  EXPECT_EQ(CanonicalState(AdapterFromJson(Dump)), CanonicalState(State));
  EXPECT_EQ(Dump["devices"][3]["state"], "DedicatedSpare");
  EXPECT_EQ(Dump["devices"][0]["state"], "Online");
}

struct Refusal {
  const char *Patch;  // merged into the rich adapter
  const char *Message;
};

class RefusalTest : public ::testing::TestWithParam<Refusal> {};

TEST_P(RefusalTest, NamesWhatIsWrong) {
  json Adapter = RichAdapter();
  Adapter.merge_patch(json::parse(GetParam().Patch));
  try {
    AdapterFromJson(Adapter);
    FAIL() << "accepted";
  } catch (const sim::common::ScenarioError &Error) {
    EXPECT_EQ(std::string(Error.what()), GetParam().Message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    States, RefusalTest,
    ::testing::Values(
        Refusal{R"({"arrays": [{"raidLevel": 5, "members": ["0:0", "0:9"],
                    "logicalDrives": [{}]}]})",
                "arrays[0].members[1]: no device 0:9"},
        Refusal{R"({"arrays": [{"raidLevel": 5, "members": ["0:0", "0:1"],
                    "logicalDrives": [{}]}]})",
                "array 0: RAID 5 does not allow 2 drives"},
        Refusal{R"({"arrays": [{"raidLevel": 0, "members": ["0:0"],
                    "logicalDrives": []}]})",
                "array 0: an array holds at least one logical drive"},
        Refusal{R"({"arrays": [{"raidLevel": 0, "members": ["0:0"],
                    "logicalDrives": [{"sizeMb": 9999999}]}]})",
                "array 0: logical drives exceed the array's capacity"},
        Refusal{R"({"devices": [{"address": "0-1", "sizeMb": 1}]})",
                "devices[0].address: \"0-1\" is not a channel:device address"},
        Refusal{R"({"devices": [{"address": "0:1", "sizeMb": 1, "state": "Busy"}]})",
                "devices[0]: unknown state \"Busy\""},
        Refusal{R"({"colour": "red"})", "unknown key \"colour\""}));

}  // namespace
}  // namespace microchip_sim_test
