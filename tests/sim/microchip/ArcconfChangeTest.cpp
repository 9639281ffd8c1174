// The virtual arcconf's changes: what each command does to the adapter and
// what it refuses, with the rest of the adapter left as it was.
#include <gtest/gtest.h>

#include "SmartRaid.h"
#include "sim/microchip/Arcconf.h"
#include "sim/microchip/MicrochipJson.h"

namespace microchip_sim_test {
namespace {

using namespace sim::microchip;
using nlohmann::json;

class ArcconfChangeTest : public ::testing::Test {
 protected:
  ArcconfChangeTest() {
    Tool_.AddAdapter(AdapterFromJson(RichAdapter()));
    Before_ = State();
  }
  json State() const { return AdapterToJson(Tool_.Adapters().front()); }
  bool Succeeds(const std::string &Line) {
    const std::string Out = Tool_.Run("arcconf.efi " + Line);
    return Out.find("Command completed successfully.") != std::string::npos;
  }

  Arcconf Tool_;
  json Before_;
};

TEST_F(ArcconfChangeTest, RefusalsChangeNothing) {
  for (const char *Line :
       {"create 1 logicaldrive stripesize 256 MAX 5 1 4 1 5 noprompt",
        "create 1 logicaldrive stripesize 256 MAX 1 0 0 1 4 noprompt",
        "create 1 logicaldrive stripesize 256 MAX 0 7 7 noprompt",
        "create 1 logicaldrive MAX 5 ARRAY 3 noprompt",
        "create 1 logicaldrive 999999999 5 ARRAY 0 noprompt",
        "create 1 logicaldrive MAX 1 ARRAY 0 noprompt",
        "create 2 logicaldrive MAX 0 1 4 noprompt",
        "DELETE 1 ARRAY 4 noprompt", "DELETE 1 LOGICALDRIVE 9 noprompt",
        "SETSTATE 1 DEVICE 0 0 RDY", "SETSTATE 1 DEVICE 0 0 HSP ARRAY 0 noprompt",
        "SETSTATE 1 DEVICE 1 4 HSP ARRAY 1 noprompt",
        "SETSTATE 1 DEVICE 0 3 HSP ARRAY 0 noprompt", "frobnicate 1"}) {
    SCOPED_TRACE(Line);
    const std::string Out = Tool_.Run(std::string("arcconf.efi ") + Line);
    EXPECT_NE(Out.find("Command failed."), std::string::npos) << Out;
    EXPECT_EQ(State(), Before_);
  }
}

TEST_F(ArcconfChangeTest, SpaceComesFromTheArrayAndGoesBack) {
  const auto Free = [this] {
    const Adapter &State = Tool_.Adapters().front();
    return State.UnusedMb(State.Arrays[0]);
  };
  const uint64_t Before = Free();
  ASSERT_TRUE(Succeeds("create 1 logicaldrive NAME x 10240 5 ARRAY 0 noprompt"));
  EXPECT_EQ(Free(), Before - 10240);
  ASSERT_TRUE(Succeeds("DELETE 1 LOGICALDRIVE 2 noprompt"));
  EXPECT_EQ(Free(), Before);
  EXPECT_EQ(State(), Before_);
}

TEST_F(ArcconfChangeTest, DeletingAnArrayFreesItsMembersAndSpares) {
  ASSERT_TRUE(Succeeds("DELETE 1 ARRAY 0 noprompt"));
  json Expected = Before_;
  Expected["arrays"] = json::array();
  for (int Device = 0; Device < 4; Device++) {
    Expected["devices"][Device]["state"] = "Ready";
  }
  EXPECT_EQ(State(), Expected);
}

TEST_F(ArcconfChangeTest, ASpareOfSeveralArraysStaysOneUntilReady) {
  ASSERT_TRUE(Succeeds(
      "create 1 logicaldrive stripesize 256 MAX 1 1 4 1 5 noprompt"));
  ASSERT_TRUE(Succeeds("SETSTATE 1 DEVICE 0 3 HSP ARRAY 1 noprompt"));
  json After = State();
  EXPECT_EQ(After["arrays"][0]["spares"], json({"0:3"}));
  EXPECT_EQ(After["arrays"][1]["spares"], json({"0:3"}));
  ASSERT_TRUE(Succeeds("DELETE 1 ARRAY 0 noprompt"));
  After = State();
  EXPECT_EQ(After["arrays"][0]["spares"], json({"0:3"}));
  EXPECT_EQ(After["devices"][3]["state"], "DedicatedSpare");
  ASSERT_TRUE(Succeeds("SETSTATE 1 DEVICE 0 3 RDY"));
  EXPECT_EQ(State()["devices"][3]["state"], "Ready");
}

TEST(ArcconfNumbers, AReconnectRenumbersOnce) {
  Arcconf Tool;
  json Left = RichAdapter();
  Left["pci"]["bus"] = 0x3B;
  Left["numberAfterReconnect"] = 2;
  json Right = json::parse(R"({"pci": {"bus": 175}, "slot": 6,
                               "numberAfterReconnect": 1})");
  Tool.AddAdapter(AdapterFromJson(Right));
  Tool.AddAdapter(AdapterFromJson(Left));
  EXPECT_EQ(Tool.NumberOf(0), 1u);  // by location: bus 3b first
  EXPECT_NE(Tool.Run("arcconf.efi DELETE 1 LOGICALDRIVE 0 noprompt")
                .find("Command completed successfully."),
            std::string::npos);
  EXPECT_EQ(Tool.NumberOf(0), 2u);
  EXPECT_EQ(Tool.NumberOf(1), 1u);
  Tool.Run("arcconf.efi DELETE 2 LOGICALDRIVE 1 noprompt");
  EXPECT_EQ(Tool.NumberOf(0), 2u);
}

}  // namespace
}  // namespace microchip_sim_test
