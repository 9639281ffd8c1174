// The wizard on Microchip adapters (adapter kind 5), end to end against the
// virtual SmartRAID: what the operator sees on pages 1, 3, 7 and 11, and
// what the adapter holds after each change, nothing else changed.
#include <algorithm>

#include "DemoServer.h"
#include "Golden.h"
#include "WizardWorld.h"
#include "framework/HeadlessDriver.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

using nlohmann::json;

constexpr UINT32 kCreated = 0xFE22;
constexpr UINT32 kRemoved = 0xFE32;
constexpr UINT32 kDrivesChanged = 0xFE12;

class MicrochipWizardTest : public WizardWorld {
 protected:
  json SmartRaid() const { return AdapterStates()["microchip"][0]; }
  // One SmartRAID in slot 6 holding Content.
  void StartOn(const json &Content) {
    json Server = json::parse(R"({
      "pciFunctions": [{"name": "smartraid", "location": "af:00.0",
        "vendorId": "9005", "deviceId": "028F", "subVendorId": "9005",
        "subDeviceId": "0800", "subClass": "07"}],
      "smbios": {"slots": [{"slotId": 6, "bus": "af",
                            "designation": "PCIe Slot 6"}]},
      "adapters": []})");
    json Adapter = Content;
    Adapter["family"] = "microchip";
    Adapter["pciFunction"] = "smartraid";
    Adapter["slot"] = 6;
    Server["adapters"].push_back(Adapter);
    Start(Server);
  }
  EFI_STATUS DeleteRow(const std::u16string &RowText) {
    EFI_STATUS Status = Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), RowText);
    if (EFI_ERROR(Status)) {
      return Status;
    }
    Driver_.QueueAnswer(TRUE);
    return Press(RAID_NODE_DELETE);
  }
  HOST_PAGE_NODE *DriveTable() { return Node(RAID_NODE_DRIVE_TABLE); }
};

json ReadyDrives(int Count) {
  json Devices = json::array();
  for (int Device = 0; Device < Count; Device++) {
    Devices.push_back({{"address", "0:" + std::to_string(Device)},
                       {"sizeMb", 1143455}});
  }
  return Devices;
}

// The operator's session on the demo server: page 1 shows the SmartRAID's
// configuration; a RAID 5 by the simple path, two logical drives in the
// first array's free space by the advanced path, the simple one deleted
// again, and a freed drive made a hot spare on page 11.
TEST_F(MicrochipWizardTest, TheDemoSessionLeavesExactlyWhatTheOperatorDid) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kSmartRaid), EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 1), u"Array0");
  const json Before = SmartRaid();

  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO), u"RAID Level 5"),
            EFI_SUCCESS);
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  json After = SmartRaid();
  ASSERT_EQ(After["arrays"].size(), 2u);
  EXPECT_EQ(After["arrays"][1]["raidLevel"], 5);
  EXPECT_EQ(After["arrays"][1]["members"],
            (json{"1:4", "1:5", "1:6", "1:7"}));

  Advanced(1);
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"100", u"logs");
  PlanVolume(u"", u"scratch");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  After = SmartRaid();
  ASSERT_EQ(After["arrays"][0]["logicalDrives"].size(), 4u);
  EXPECT_EQ(After["arrays"][0]["logicalDrives"][2]["name"], "logs");
  EXPECT_EQ(After["arrays"][0]["logicalDrives"][2]["sizeMb"], 100 * 1024);
  EXPECT_EQ(After["arrays"][0]["logicalDrives"][3]["name"], "scratch");

  // The simple path's logical drive goes, and its array with it.
  ASSERT_EQ(DeleteRow(u"VD2: Volume1"), EFI_SUCCESS);
  After = SmartRaid();
  ASSERT_EQ(After["arrays"].size(), 1u);

  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(DriveTable(), 5, 4, u"GHS"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);

  json Expected = Before;
  Expected["arrays"][0]["logicalDrives"] = After["arrays"][0]["logicalDrives"];
  Expected["arrays"][0]["spares"] = {"0:3", "1:4"};
  Expected["devices"][4]["state"] = "DedicatedSpare";
  EXPECT_EQ(SmartRaid(), Expected);
  EXPECT_EQ(Events(), (std::vector<UINT32>{kCreated, kCreated, kCreated,
                                           kRemoved, kDrivesChanged}));
}

TEST_F(MicrochipWizardTest, MirrorArraysAreShownAtHalfTheirSize) {
  json Content = {{"devices", ReadyDrives(2)},
                  {"arrays", json::parse(R"([{"raidLevel": 1,
                     "members": ["0:0", "0:1"],
                     "logicalDrives": [{"name": "os", "sizeMb": 102400}]}])")}};
  StartOn(Content);
  ASSERT_EQ(ChooseAdapter(0), EFI_SUCCESS);
  // 2 x 1143455 MB raw, 1041055 MB free: both halved.
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 3), u"1116 GB (508 GB free)");
}

TEST_F(MicrochipWizardTest, TheSimpleLevelPageHidesTheHotSpare) {
  StartOn({{"devices", ReadyDrives(4)}});
  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  EXPECT_EQ(State(RAID_NODE_HOT_SPARE_CHECK), HOST_DISPLAY_HIDDEN);
  ExpectGolden("page3.txt", Driver_.Dump());
}

TEST_F(MicrochipWizardTest, NewArrayDrivesAreHeadedByEnclosureAndSlot) {
  StartOn({{"devices", ReadyDrives(4)}});
  Advanced(0);
  EXPECT_EQ(Cell(RAID_NODE_NEW_ARRAY_DRIVE_TABLE, 0, 1), u"EID:Slot");
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 5"),
            EFI_SUCCESS);
  TickDrives({1, 2, 3});
  ExpectGolden("page7.txt", Driver_.Dump());
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const json After = ExpectChangedOnly(
      {"/microchip/0/arrays", "/microchip/0/devices/*/state"});
  ASSERT_EQ(After["microchip"][0]["arrays"].size(), 1u);
  EXPECT_EQ(After["microchip"][0]["arrays"][0]["members"],
            (json{"0:0", "0:1", "0:2"}));
}

// A drive the tool reports ready but the adapter holds exposed to the OS:
// the simple RAID 5 takes it, the adapter refuses the create, and the
// operator sees only that page 1 lists no logical drive; the adapter is as
// it was.
TEST_F(MicrochipWizardTest, ARefusedCreateShowsInTheRereadModelOnly) {
  json Devices = ReadyDrives(4);
  Devices[3]["state"] = "Raw";
  Rewrite_ = [](const std::string &, const std::string &Output) {
    std::string Text = Output;
    for (const auto &[From, To] :
         {std::pair<std::string, std::string>{": Exposed to OS", ": Ready"},
          {": HBA", ": Unassigned"}}) {
      for (size_t At = Text.find(From); At != std::string::npos;
           At = Text.find(From, At)) {
        Text.replace(At, From.size(), To);
      }
    }
    return Text;
  };
  StartOn({{"devices", Devices}});
  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO), u"RAID Level 5"),
            EFI_SUCCESS);
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  EXPECT_EQ(Text(RAID_NODE_VERIFY_DRIVES), u"Disk Drives: 4");
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  const std::vector<std::string> Sent = Server_->Shell()->CommandLines();
  EXPECT_NE(std::find(Sent.begin(), Sent.end(),
                      "arcconf.efi create 1 logicaldrive stripesize 256 NAME "
                      "Volume1 MAX 5 0 0 0 1 0 2 0 3 noprompt"),
            Sent.end());
  EXPECT_EQ(AdapterStates(), Started_);
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
}

TEST_F(MicrochipWizardTest, WithoutArraysAReadyDriveOffersNoAction) {
  StartOn({{"devices", ReadyDrives(2)}});
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  framework::CellView View = {};
  ASSERT_TRUE(framework::CellAt(DriveTable(), 1, 4, &View));
  EXPECT_EQ(View.DisplayState, HOST_DISPLAY_GRAYED);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 1), u"UGood");
}

TEST_F(MicrochipWizardTest, ADedicatedSpareCanBeMadeReadyAgain) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kSmartRaid), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ExpectGolden("page11.txt", Driver_.Dump());
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 4, 1), u"Dedicated");
  ASSERT_EQ(Driver_.ChooseCell(DriveTable(), 4, 4, u"UGood"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  const json After = ExpectChangedOnly(
      {"/microchip/0/devices/3/state", "/microchip/0/arrays/0/spares"});
  EXPECT_EQ(After["microchip"][0]["devices"][3]["state"], "Ready");
  EXPECT_EQ(After["microchip"][0]["arrays"][0]["spares"], json::array());
}

TEST_F(MicrochipWizardTest, PageOneGoldenScreen) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kSmartRaid), EFI_SUCCESS);
  ExpectGolden("page1.txt", Driver_.Dump());
}

}  // namespace
}  // namespace wizard_test
