// Several Microchip adapters: arcconf numbers them from 1; the card search
// finds each by its slot at start-up and again on every read, so that a
// renumbering after a reconnect still reads each controller's own adapter.
#include "EsaDrvMgr.h"
#include "MicrochipWorld.h"

namespace microchip_test {
namespace {

using nlohmann::json;

json AdapterWith(const std::string &Serial, uint32_t Drives) {
  json Devices = json::array();
  for (uint32_t Device = 0; Device < Drives; Device++) {
    Devices.push_back({{"address", "0:" + std::to_string(Device)},
                       {"sizeMb", 953344}});
  }
  return {{"serialNumber", Serial}, {"devices", Devices}};
}

std::string Serial(const RAID_CONTROLLER *Controller) {
  std::string Text;
  for (const CHAR16 *C = Controller->SerialNumber; C && *C; C++) {
    Text += static_cast<char>(*C);
  }
  return Text;
}

struct Layout {
  const char *Name;
  std::vector<std::pair<UINT8, UINT16>> BusSlots;
  std::vector<uint32_t> Numbers;  // the tool's number of each, in order
};

class CardNumberTest : public MicrochipWorld,
                       public ::testing::WithParamInterface<Layout> {};

TEST_P(CardNumberTest, EachControllerReadsItsOwnAdapter) {
  const Layout &Case = GetParam();
  for (size_t Index = 0; Index < Case.BusSlots.size(); Index++) {
    json Content = AdapterWith("SN" + std::to_string(Index), Index + 1);
    Content["number"] = Case.Numbers[Index];
    AddAdapter(Case.BusSlots[Index].first, Case.BusSlots[Index].second,
               Content);
  }
  Start();
  EXPECT_EQ(gMchpCtrlCount, Case.BusSlots.size());
  for (size_t Index = 0; Index < Case.BusSlots.size(); Index++) {
    RAID_CONTROLLER *Controller = ControllerAt(Case.BusSlots[Index].first);
    Refresh(Controller);
    EXPECT_EQ(Controller->Private->CardId, Case.Numbers[Index]);
    EXPECT_EQ(Serial(Controller), "SN" + std::to_string(Index));
    ExpectModelMatches(Case.BusSlots[Index].first);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Servers, CardNumberTest,
    ::testing::Values(Layout{"One", {{0xAF, 6}}, {1}},
                      Layout{"TwoInOrder", {{0x3B, 2}, {0xAF, 6}}, {1, 2}},
                      Layout{"TwoAcross", {{0x3B, 2}, {0xAF, 6}}, {2, 1}},
                      Layout{"Three", {{0x18, 1}, {0x3B, 2}, {0xAF, 6}}, {3, 1, 2}}),
    [](const auto &Info) { return std::string(Info.param.Name); });

TEST_F(MicrochipWorld, OneAdapterRunsListOnceAtStart) {
  AddAdapter(0xAF, 6, AdapterWith("SN", 1));
  Start();
  EXPECT_EQ(Commands_, std::vector<std::string>{"arcconf.efi list"});
  Commands_.clear();
  Refresh(ControllerAt(0xAF));
  EXPECT_EQ(Commands_, std::vector<std::string>{"arcconf.efi getconfig 1"});
}

TEST_F(MicrochipWorld, ARenumberingAfterAChangeIsFollowedOnTheNextRead) {
  json Left = AdapterWith("LEFT", 3);
  Left["arrays"] = json::parse(
      R"([{"raidLevel": 5, "members": ["0:0", "0:1", "0:2"],
           "logicalDrives": [{"number": 0, "name": "v"}]}])");
  Left["numberAfterReconnect"] = 2;
  json Right = AdapterWith("RIGHT", 2);
  Right["numberAfterReconnect"] = 1;
  AddAdapter(0x3B, 2, Left);
  AddAdapter(0xAF, 6, Right);
  Start();
  RAID_CONTROLLER *LeftController = Refresh(ControllerAt(0x3B));
  RAID_CONTROLLER *RightController = Refresh(ControllerAt(0xAF));
  EXPECT_EQ(LeftController->Private->CardId, 1u);
  EXPECT_EQ(RightController->Private->CardId, 2u);
  const json RightBefore = StateAt(0xAF);

  // The delete runs on card 1; the adapters renumber; the re-read finds
  // the left adapter as card 2 by its slot.
  Commands_.clear();
  UINT32 ErrorCode = 0xDEAD;
  ASSERT_EQ(DeleteVolume(VolumeWithId(ArrayWithId(LeftController, 0), 0),
                         &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_, (std::vector<std::string>{
                           "arcconf.efi DELETE 1 LOGICALDRIVE 0 noprompt",
                           "arcconf.efi list", "arcconf.efi getconfig 2"}));
  EXPECT_EQ(LeftController->Private->CardId, 2u);
  EXPECT_TRUE(IsListEmpty(&LeftController->ArrayList));
  Refresh(RightController);
  EXPECT_EQ(RightController->Private->CardId, 1u);
  EXPECT_EQ(Serial(RightController), "RIGHT");
  ExpectModelMatches(0x3B);
  ExpectModelMatches(0xAF);
  // Nothing changed on the other adapter but its number.
  json RightAfter = StateAt(0xAF);
  json Expected = RightBefore;
  Expected["number"] = 1;
  Expected.erase("numberAfterReconnect");
  EXPECT_EQ(RightAfter, Expected);
}

}  // namespace
}  // namespace microchip_test
