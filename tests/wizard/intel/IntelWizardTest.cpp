// The wizard end to end on virtual Intel engines (adapter kinds 1 and 4):
// the demo's RSTe engine read on page 1, volumes created by the simple and
// the advanced path, a delete, a spare and a non-RAID disk on page 11, and
// the golden screens of pages 1, 2, 7, 8 and 11. Each change checks the
// engine's final state and that nothing else changed.
#include "Golden.h"
#include "IntelWizard.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

using nlohmann::json;

constexpr UINT32 kCreated = 0xFE22;

class IntelWizardTest : public IntelWizardWorld {
 protected:
  void OpenDemoRste() {
    StartDemo();
    ASSERT_EQ(ChooseAdapter(kDemoRste), EFI_SUCCESS);
    Before_ = IntelState();
  }
  // The engine's arrays now; nothing else changed but its disks' states.
  json Arrays() {
    const json After = ExpectChangedOnly({"/intel/0/arrays", "/intel/0/disks/*/state"});
    return After["intel"][0]["arrays"];
  }
  std::string DiskState(size_t Disk) {
    return IntelState()[0]["disks"][Disk]["state"];
  }
  json Before_;
};

TEST_F(IntelWizardTest, PageOneShowsTheRsteVolumeWithoutASlot) {
  OpenDemoRste();
  ExpectGolden("page1.txt", Driver_.Dump());
}

TEST_F(IntelWizardTest, PageTwoOnTheDemoEngine) {
  OpenDemoRste();
  NextTo(RAID_PAGE_CONFIG_TYPE);
  ExpectGolden("page2.txt", Driver_.Dump());
}

// One operator session on the demo's RSTe engine: a mirror by the advanced
// path, RAID 0 by the simple path over what is left, the old mirror
// deleted, then on page 11 its disks made spares and one of them non-RAID
// again. The engine holds exactly that.
TEST_F(IntelWizardTest, DemoSessionLeavesExactlyWhatTheOperatorDid) {
  OpenDemoRste();
  NewArrayEditor(u"RAID 1", {1, 2});
  PlanVolume(u"", u"Mirror_2");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO), u"RAID Level 0"),
            EFI_SUCCESS);
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), u"VD0: OS_Mirror"),
            EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  HOST_PAGE_NODE *Table = nullptr;
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  Table = Node(RAID_NODE_DRIVE_TABLE);
  ASSERT_EQ(Driver_.ChooseCell(Table, 1, 4, u"GHS"), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(Table, 2, 4, u"GHS"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(Table, 2, 4, u"Non-RAID"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);

  json Expected = Before_;
  json &Engine = Expected[0];
  Engine["disks"][0]["state"] = "spare";
  Engine["disks"][1]["state"] = "non-raid";
  for (int Disk : {2, 3, 4, 5}) {
    Engine["disks"][Disk]["state"] = "member";
  }
  const json After = IntelState();
  ASSERT_EQ(After[0]["arrays"].size(), 2u);
  Engine["arrays"] = json::array({After[0]["arrays"][0], After[0]["arrays"][1]});
  EXPECT_EQ(After, Expected);
  EXPECT_EQ(After[0]["arrays"][0]["disks"], json({2, 3}));
  EXPECT_EQ(After[0]["arrays"][0]["volumes"][0]["name"], "Mirror_2");
  EXPECT_EQ(After[0]["arrays"][0]["volumes"][0]["level"], 1);
  EXPECT_EQ(After[0]["arrays"][1]["disks"], json({4, 5}));
  EXPECT_EQ(After[0]["arrays"][1]["volumes"][0]["level"], 0);
  EXPECT_EQ(After[0]["arrays"][1]["volumes"][0]["stripeKb"], 128);
}

// The simple path over the four non-RAID disks: the engine's stripe default
// per level, members up to the level's maximum, never a hot spare.
struct SimpleCase {
  int Level;
  int Stripe;  // what the engine keeps; 0 for RAID 1 ("N/A")
  std::vector<int> Disks;
};

class IntelSimplePathTest : public IntelWizardTest,
                            public ::testing::WithParamInterface<SimpleCase> {};

TEST_P(IntelSimplePathTest, CreatesTheLevelOverTheNonRaidDisks) {
  const SimpleCase Case = GetParam();
  OpenDemoRste();
  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO),
                           u"RAID Level " + framework::FromUtf8(std::to_string(Case.Level))),
            EFI_SUCCESS);
  EXPECT_EQ(State(RAID_NODE_HOT_SPARE_CHECK), HOST_DISPLAY_HIDDEN);
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  const json Made = Arrays();
  ASSERT_EQ(Made.size(), 2u);
  EXPECT_EQ(Made[0], Before_[0]["arrays"][0]);
  EXPECT_EQ(Made[1]["disks"], json(Case.Disks));
  EXPECT_EQ(Made[1]["volumes"][0]["level"], Case.Level);
  EXPECT_EQ(Made[1]["volumes"][0]["stripeKb"], Case.Stripe);
  EXPECT_EQ(Events(), std::vector<UINT32>{kCreated});
}

INSTANTIATE_TEST_SUITE_P(
    Levels, IntelSimplePathTest,
    ::testing::Values(SimpleCase{0, 128, {2, 3, 4, 5}}, SimpleCase{1, 0, {2, 3}},
                      SimpleCase{5, 128, {2, 3, 4, 5}},
                      SimpleCase{10, 64, {2, 3, 4, 5}}),
    [](const ::testing::TestParamInfo<SimpleCase> &Info) {
      return "Raid" + std::to_string(Info.param.Level);
    });

TEST_F(IntelWizardTest, AdvancedPathMakesRaidOneWithoutAStripe) {
  OpenDemoRste();
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 1"),
            EFI_SUCCESS);
  TickDrives({1, 2});
  ExpectGolden("page7.txt", Driver_.Dump());
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  EXPECT_EQ(State(RAID_NODE_POPUP_STRIPE_COMBO), HOST_DISPLAY_HIDDEN);
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT), u"Mirror_2"), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  ExpectGolden("page8.txt", Driver_.Dump());
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const json Made = Arrays();
  ASSERT_EQ(Made.size(), 2u);
  EXPECT_EQ(Made[1]["disks"], json({2, 3}));
  EXPECT_EQ(Made[1]["volumes"][0]["name"], "Mirror_2");
  EXPECT_EQ(Made[1]["volumes"][0]["level"], 1);
  EXPECT_EQ(Made[1]["volumes"][0]["stripeKb"], 0);
}

// The engine leaves 4K and 8K out of RAID 5 and 128K out of RAID 10.
TEST_F(IntelWizardTest, StripeChoicesFollowTheLevel) {
  struct Case {
    std::u16string Level;
    std::initializer_list<UINT32> Rows;
    std::vector<std::u16string> Options;
  } Cases[] = {
      {u"RAID 5", {1, 2, 3}, {u"16K", u"32K", u"64K", u"128K"}},
      {u"RAID 10", {1, 2, 3, 4}, {u"4K", u"8K", u"16K", u"32K", u"64K"}},
      {u"RAID 0", {1, 2}, {u"4K", u"8K", u"16K", u"32K", u"64K", u"128K"}},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(framework::ToUtf8(C.Level));
    OpenDemoRste();
    NewArrayEditor(C.Level, C.Rows);
    ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
    EXPECT_EQ(Driver_.Options(Node(RAID_NODE_POPUP_STRIPE_COMBO)), C.Options);
    Stop();
  }
}

TEST_F(IntelWizardTest, DeletingTheRsteVolumeFreesItsDisks) {
  OpenDemoRste();
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), u"VD0: OS_Mirror"),
            EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  EXPECT_EQ(Arrays(), json::array());
  EXPECT_EQ(DiskState(0), "non-raid");
  EXPECT_EQ(DiskState(1), "non-raid");
}

// The demo with the RSTe engine's disks 2 to 5 set by States.
json DemoWithDisks(const std::vector<std::string> &States) {
  json Scenario = DemoScenarioJson();
  json &Engine = AdapterOfFamily(Scenario, "intel");
  for (size_t I = 0; I < States.size(); I++) {
    Engine["disks"][2 + I]["state"] = States[I];
  }
  if (States[0] == "member") {
    Engine["arrays"].push_back(
        {{"disks", {2, 3, 4}}, {"volumes", {{{"name", "Data"}, {"level", 5}}}}});
  }
  return Scenario;
}

TEST_F(IntelWizardTest, OneNonRaidDiskIsTooFewForEitherPath) {
  Start(ScenarioFrom(DemoWithDisks({"member", "member", "member", "non-raid"})));
  ASSERT_EQ(ChooseAdapter(kDemoRste), EFI_SUCCESS);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Text(RAID_NODE_SIMPLE_WARNING),
            u"At least 2 disk drives for Intel RSTe RAID adapter!");
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_ADVANCED_WARNING),
            u"At least 2 disk drives for Intel RSTe RAID adapter!");
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
}

// An incompatible disk is free but not ready: it is left out, and said so.
TEST_F(IntelWizardTest, AnIncompatibleDiskBesideTheNonRaidDisksIsWarnedAbout) {
  Start(ScenarioFrom(DemoWithDisks({"non-raid", "non-raid", "non-raid", "incompatible"})));
  ASSERT_EQ(ChooseAdapter(kDemoRste), EFI_SUCCESS);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Text(RAID_NODE_SIMPLE_WARNING),
            u"Warning: Only the Ready state hard drives will be used to create "
            u"new RAID volume!");
  EXPECT_EQ(State(RAID_NODE_SIMPLE_WARNING), HOST_DISPLAY_SHOWN);
  // Simple configuration stays possible.
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
}

// A VROC engine (raid.xml names RCfgVROC.efi, adapter kind 4): the backend
// still finds and runs the installed RCfgSata build.
TEST_F(IntelWizardTest, VrocServerCreatesThroughTheInstalledTool) {
  StartScenario("vroc-server.json");
  ASSERT_EQ(ChooseAdapter(0), EFI_SUCCESS);
  EXPECT_EQ(gRaidAdapterKind, static_cast<UINT32>(RAID_ADAPTER_KIND_VROC));
  const json Before = IntelState();
  // The engine's free disks in the new-array table: Disk3, then the sSATA
  // engine's Disk10 to Disk12; a mirror on two of the sSATA disks.
  NewArrayEditor(u"RAID 1", {2, 3});
  PlanVolume(u"", u"Boot_1");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const json After = ExpectChangedOnly({"/intel/1/arrays", "/intel/1/disks/*/state"});
  ASSERT_EQ(After["intel"][1]["arrays"].size(), 1u);
  EXPECT_EQ(After["intel"][1]["arrays"][0]["disks"], json({10, 11}));
  EXPECT_EQ(After["intel"][1]["arrays"][0]["volumes"][0]["name"], "Boot_1");
  EXPECT_TRUE(TraceHas("Command: RCfgSata_V55.efi /Y /C:"));
}

TEST_F(IntelWizardTest, PageElevenMakesASpareAndANonRaidDisk) {
  OpenDemoRste();
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_MANAGE_DRIVES));
  ExpectGolden("page11.txt", Driver_.Dump());
  HOST_PAGE_NODE *Table = Node(RAID_NODE_DRIVE_TABLE);
  ASSERT_EQ(Driver_.ChooseCell(Table, 3, 4, u"GHS"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(DiskState(2), "spare");
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(Table, 3, 4, u"Non-RAID"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(IntelState(), Before_);
}

}  // namespace
}  // namespace wizard_test
