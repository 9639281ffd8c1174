// The wizard end to end on virtual M.2 adapters (adapter kinds 2 and 3):
// page 1's label and deletes, the drive-count rules of pages 2 and 7, page
// 11 with nothing to change, creation by the simple and the advanced path,
// and golden screens. Every change checks the adapter's final state and
// that nothing else on the server changed.
#include "DemoServer.h"
#include "Golden.h"
#include "WizardWorld.h"
#include "native/EmbeddedFiles.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

using nlohmann::json;

class M2WizardTest : public WizardWorld {
 protected:
  json M2State(size_t Index = 0) const {
    return AdapterStates()["marvell"][Index];
  }
  std::vector<std::u16string> Labels() {
    return Driver_.Options(Node(RAID_NODE_ADAPTER_RADIO));
  }
  // Deletes the adapter's one array on page 1, answering Yes.
  void DeleteTheArray() {
    ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), u"Array 0"),
              EFI_SUCCESS);
    Driver_.QueueAnswer(TRUE);
    ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  }
  // The demo's M.2 adapter, chosen on page 1.
  void StartOnDemo() {
    StartDemo();
    ASSERT_EQ(ChooseAdapter(kM2Adapter), EFI_SUCCESS);
  }
};

// The README's first command on the demo server: a RAID 1 volume over the
// M.2 adapter's two drives by the simple path, shown on page 1, deleted
// again; the adapter holds exactly that at each step.
TEST_F(M2WizardTest, DemoSimpleRaid1IsCreatedShownAndDeleted) {
  StartOnDemo();
  EXPECT_EQ(Labels()[kM2Adapter],
            u"Marvell 88SE9230 M.2 RAID Adapter     PCI slot 1  (No virtual "
            u"disks created)");
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(State(RAID_NODE_SIMPLE_WARNING), HOST_DISPLAY_HIDDEN);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  EXPECT_EQ(State(RAID_NODE_HOT_SPARE_CHECK), HOST_DISPLAY_HIDDEN);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO), u"RAID Level 1"),
            EFI_SUCCESS);
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  EXPECT_EQ(Text(RAID_NODE_VERIFY_DRIVES), u"Disk Drives: 2");
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);

  const json Created = ExpectChangedOnly(
      {"/marvell/0/volumes", "/marvell/0/drives/*/status"})["marvell"][0];
  ASSERT_EQ(Created["volumes"].size(), 1u);
  EXPECT_EQ(Created["volumes"][0]["level"], 1);
  EXPECT_EQ(Created["volumes"][0]["name"], "Volume1");
  EXPECT_EQ(Created["volumes"][0]["stripeSize"], 64);
  EXPECT_EQ(Created["volumes"][0]["drives"], json({0, 1}));
  EXPECT_EQ(Created["drives"][0]["status"], "online");
  EXPECT_EQ(Created["drives"][1]["status"], "online");
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE22});
  EXPECT_EQ(Labels()[kM2Adapter],
            u"Marvell 88SE9230 M.2 RAID Adapter     PCI slot 1  (1 virtual "
            u"disk created)");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 1), u"Array 0");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 2), u"RAID 1");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 2, 1), u"     VD0: Volume1");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 2, 2), u"     Optimal");

  ASSERT_NO_FATAL_FAILURE(DeleteTheArray());
  EXPECT_EQ(AdapterStates(), Started_);
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(Labels()[kM2Adapter],
            u"Marvell 88SE9230 M.2 RAID Adapter     PCI slot 1  (No virtual "
            u"disks created)");
}

// The advanced path: RAID 0 over both ready drives, with the hint that names
// the fixed drive count.
TEST_F(M2WizardTest, AdvancedRaid0OverBothDrives) {
  StartOnDemo();
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 0"),
            EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_NEW_ARRAY_HINT),
            u"Only 2 disk drives are needed for RAID 0.");
  EXPECT_EQ(Cell(RAID_NODE_NEW_ARRAY_DRIVE_TABLE, 1, 3), u"Ready");
  TickDrives({1, 2});
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"", u"Scratch");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const json Created = ExpectChangedOnly(
      {"/marvell/0/volumes", "/marvell/0/drives/*/status"})["marvell"][0];
  ASSERT_EQ(Created["volumes"].size(), 1u);
  EXPECT_EQ(Created["volumes"][0]["level"], 0);
  EXPECT_EQ(Created["volumes"][0]["name"], "Scratch");
  EXPECT_EQ(Created["volumes"][0]["size"], "457873 M");
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE22});
}

// One drive left ready (the other failed): message 863 on page 2, and the
// new-array choice is refused with it too.
TEST_F(M2WizardTest, FewerThanTwoReadyDrivesAreRefusedWith863) {
  json Server = DemoScenarioJson();
  json &M2 = AdapterOfFamily(Server, "marvell");
  M2["drives"][1]["status"] = "failed";
  Start(ScenarioFrom(Server));
  ASSERT_EQ(ChooseAdapter(kM2Adapter), EFI_SUCCESS);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Text(RAID_NODE_SIMPLE_WARNING),
            u"At least 2 disk drives for M.2 RAID adapter!");
  EXPECT_EQ(Driver_.Value(Node(RAID_NODE_CONFIG_TYPE_RADIO)), 1u);
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(AdapterStates(), Started_);
}

// Page 11 on an M.2 adapter: the all-drives box and every row's box grayed,
// and Next changes nothing.
TEST_F(M2WizardTest, ManageDrivesOffersNothingToChange) {
  StartOnDemo();
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_MANAGE_DRIVES));
  EXPECT_EQ(State(RAID_NODE_ALL_DRIVES_COMBO), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 0), u"SSD0");
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 1), u"Ready");
  for (UINT32 Row : {1u, 2u}) {
    framework::CellView View = {};
    ASSERT_TRUE(framework::CellAt(Node(RAID_NODE_DRIVE_TABLE), Row, 4, &View));
    EXPECT_EQ(View.DisplayState, HOST_DISPLAY_GRAYED) << Row;
    EXPECT_EQ(View.OptionCount, 1u) << Row;
  }
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  EXPECT_EQ(AdapterStates(), Started_);
}

// mnv_cli.efi (kind 3): the rebuilding mirror on page 1, deleted there.
TEST_F(M2WizardTest, MnvCliMirrorIsShownAndDeleted) {
  StartScenario("marvell-mnvcli.json");
  EXPECT_EQ(gRaidAdapterKind, RAID_ADAPTER_KIND_MNV_CLI);
  EXPECT_EQ(Labels(),
            std::vector<std::u16string>{
                u"Marvell 88NR2241 NVMe M.2 RAID Adapter     PCI slot 3  (1 "
                u"virtual disk created)"});
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 2), u"RAID 1");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 2, 1), u"     VD0: BootMirror");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 2, 2), u"     Degraded");
  ASSERT_NO_FATAL_FAILURE(DeleteTheArray());
  const json After =
      ExpectChangedOnly({"/marvell/0/volumes", "/marvell/0/drives/*/status"});
  EXPECT_TRUE(After["marvell"][0]["volumes"].empty());
  EXPECT_EQ(After["marvell"][0]["drives"][1]["status"], "ready");
  EXPECT_TRUE(TraceHas("mnv_cli.efi 0 delete -o vd -i 0 -f --waiveconfirmation"));
}

// The demo's M.2 adapter with a profile naming mnv_cli.efi (kind 3): the
// simple path passes its checks but plans no member drive, as the wizard
// keeps it for this kind, so the create is refused as having no drives and
// the adapter is left as it was.
TEST_F(M2WizardTest, MnvCliSimplePathPlansNoDrives) {
  json Server = DemoScenarioJson();
  std::string Xml(*host::FindEmbeddedFile("raid.xml"));
  Xml.replace(Xml.find("mvsetup.efi"), 11, "mnv_cli.efi");
  Server["volumeFiles"] = {{"raid.xml", {{"text", Xml}}}};
  Start(ScenarioFrom(Server));
  ASSERT_EQ(ChooseAdapter(kM2Adapter), EFI_SUCCESS);
  EXPECT_EQ(gRaidAdapterKind, RAID_ADAPTER_KIND_MNV_CLI);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  EXPECT_EQ(Text(RAID_NODE_VERIFY_DRIVES), u"Disk Drives: 0");
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  EXPECT_EQ(AdapterStates(), Started_);
  EXPECT_TRUE(TraceHas("[M2CreateVolume]No Free Physical Drives!"));
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE21});
}

TEST_F(M2WizardTest, GoldenScreens) {
  StartOnDemo();
  ExpectGolden("page1.txt", Driver_.Dump());
  NextTo(RAID_PAGE_CONFIG_TYPE);
  ExpectGolden("page2.txt", Driver_.Dump());
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 1"),
            EFI_SUCCESS);
  TickDrives({1, 2});
  ExpectGolden("page7.txt", Driver_.Dump());
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ExpectGolden("page11.txt", Driver_.Dump());
}

}  // namespace
}  // namespace wizard_test
