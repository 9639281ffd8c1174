// Page 11: the drive table and its per-row actions, the all-drives combo
// box with its confirmation, Next and Back with and without pending
// changes, and the adapter's drive states after each.
#include "MegaRaidWizard.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

class ManageDrivesTest : public MegaRaidWizardWorld {
 protected:
  // Page 11 of demo adapter Adapter.
  void Open(UINTN Adapter) {
    StartDemo();
    ASSERT_EQ(ChooseAdapter(Adapter), EFI_SUCCESS);
    ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
    ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_MANAGE_DRIVES));
    Before_ = MegaRaidState();
  }
  HOST_PAGE_NODE *Table() { return Node(RAID_NODE_DRIVE_TABLE); }
  HOST_PAGE_NODE *AllDrives() { return Node(RAID_NODE_ALL_DRIVES_COMBO); }
  std::string DriveState(UINTN Adapter, UINTN Drive) {
    return MegaRaidState()[Adapter]["drives"][Drive]["state"];
  }
  // The Yes/No questions asked so far.
  size_t Questions() const {
    size_t Count = 0;
    for (const framework::MessageBoxRecord &Box : Driver_.MessageBoxes()) {
      Count += Box.Style == HOST_MSGBOX_YES_NO ? 1 : 0;
    }
    return Count;
  }
  nlohmann::json Before_;
};

TEST_F(ManageDrivesTest, TableListsEveryDriveWithTheActionItsStateAllows) {
  Open(kConfiguredMegaRaid);
  EXPECT_EQ(Text(RAID_NODE_DRIVES_ATTACHED),
            u"9 disk drives attached to the controller");
  ASSERT_EQ(framework::TableRows(Table()), 10u);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 0, 0), u"EID:Slot");
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 0, 4), u"Actions");
  // 252:7 is JBOD: it can become unconfigured good; an online member
  // offers nothing and its cell is grayed.
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 8, 0), u"252:7");
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 8, 1), u"JBOD");
  EXPECT_EQ(framework::CellOptionText(Table(), 8, 4, 1), std::u16string(u"UGood"));
  framework::CellView View = {};
  ASSERT_TRUE(framework::CellAt(Table(), 1, 4, &View));
  EXPECT_EQ(View.DisplayState, HOST_DISPLAY_GRAYED);
  EXPECT_EQ(View.OptionCount, 1u);
  // JBOD only: the all-drives box offers the change to unconfigured good.
  EXPECT_EQ(Driver_.Options(AllDrives()),
            (std::vector<std::u16string>{
                u"Actions on All Disk Drives",
                u"Change all disk drives state from JBOD to UGood"}));
}

TEST_F(ManageDrivesTest, RowChangesApplyOnNextInEachDirection) {
  Open(kEmptyMegaRaid);
  // Drive 0 from unconfigured good to JBOD.
  ASSERT_EQ(Driver_.ChooseCell(Table(), 1, 4, u"JBOD"), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(DriveState(0, 0), "JBOD");
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE12});
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  EXPECT_EQ(framework::FocusNode(), Node(RAID_NODE_MANAGE_DRIVES));
  nlohmann::json Expected = Before_;
  Expected[0]["drives"][0]["state"] = "JBOD";
  EXPECT_EQ(MegaRaidState(), Expected);

  // The page starts afresh and offers the way back.
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 1), u"JBOD");
  ASSERT_EQ(Driver_.ChooseCell(Table(), 1, 4, u"UGood"), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(MegaRaidState(), Before_);
}

TEST_F(ManageDrivesTest, AllDrivesActionNeedsConfirmationAndOverridesRows) {
  Open(kEmptyMegaRaid);
  ASSERT_EQ(Driver_.ChooseCell(Table(), 2, 4, u"JBOD"), EFI_SUCCESS);
  // No: the box goes back to "Actions on All Disk Drives", rows kept.
  Driver_.QueueAnswer(FALSE);
  ASSERT_EQ(Driver_.Choose(AllDrives(),
                           u"Change all disk drives state from UGood to JBOD"),
            EFI_SUCCESS);
  EXPECT_EQ(Driver_.Text(AllDrives()), u"Actions on All Disk Drives");
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 2, 4), u"JBOD");
  // Yes: every row back on "Select" and grayed.
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Driver_.Choose(AllDrives(),
                           u"Change all disk drives state from UGood to JBOD"),
            EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 2, 4), u"Select");
  EXPECT_EQ(Driver_.ChooseCell(Table(), 2, 4, u"JBOD"), EFI_ACCESS_DENIED);
  // Back to no action: the rows of unconfigured drives open again.
  ASSERT_EQ(Driver_.Choose(AllDrives(), u"Actions on All Disk Drives"),
            EFI_SUCCESS);
  EXPECT_EQ(Driver_.ChooseCell(Table(), 2, 4, u"JBOD"), EFI_SUCCESS);
  EXPECT_EQ(Questions(), 2u);
}

TEST_F(ManageDrivesTest, AllDrivesToJbodChangesEveryUnconfiguredDrive) {
  Open(kEmptyMegaRaid);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Driver_.Choose(AllDrives(),
                           u"Change all disk drives state from UGood to JBOD"),
            EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  nlohmann::json Expected = Before_;
  for (auto &Drive : Expected[0]["drives"]) {
    if (Drive["state"] == "UGood") {
      Drive["state"] = "JBOD";
    }
  }
  EXPECT_EQ(MegaRaidState(), Expected);
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE12});
}

TEST_F(ManageDrivesTest, NextWithoutChangesAsksNothing) {
  Open(kEmptyMegaRaid);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(Questions(), 0u);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  EXPECT_EQ(MegaRaidState(), Before_);
}

TEST_F(ManageDrivesTest, NextAnsweredNoStaysWithTheChoices) {
  Open(kEmptyMegaRaid);
  ASSERT_EQ(Driver_.ChooseCell(Table(), 1, 4, u"JBOD"), EFI_SUCCESS);
  Driver_.QueueAnswer(FALSE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_MANAGE_DRIVES));
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 4), u"JBOD");
  EXPECT_EQ(MegaRaidState(), Before_);
}

TEST_F(ManageDrivesTest, BackDiscardsPendingChangesAfterConfirmation) {
  Open(kEmptyMegaRaid);
  ASSERT_EQ(Driver_.ChooseCell(Table(), 1, 4, u"JBOD"), EFI_SUCCESS);
  Driver_.QueueAnswer(FALSE);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_MANAGE_DRIVES));
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 1, 4), u"Select");
  EXPECT_EQ(MegaRaidState(), Before_);
  // Without a change Back asks nothing.
  const size_t Asked = Questions();
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  EXPECT_EQ(Questions(), Asked);
}

TEST_F(ManageDrivesTest, LanguageChangeRebuildsTheTable) {
  Open(kConfiguredMegaRaid);
  ASSERT_EQ(Driver_.SwitchLanguage("de-DE"), EFI_SUCCESS);
  EXPECT_NE(Cell(RAID_NODE_DRIVE_TABLE, 0, 4), u"Actions");
  EXPECT_NE(Driver_.Title(), u"RAID Setup - Manage Disk Drives");
  EXPECT_EQ(Cell(RAID_NODE_DRIVE_TABLE, 8, 0), u"252:7");
}

}  // namespace
}  // namespace wizard_test
