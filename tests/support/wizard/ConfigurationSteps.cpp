// The operator's steps through the configuration wizard, as any family's
// end-to-end test takes them.
#include "WizardWorld.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {

void WizardWorld::NextTo(UINT32 Page) {
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  ASSERT_EQ(gRaidCurrentPage, Page);
}

void WizardWorld::Advanced(UINTN Mode) {
  NextTo(RAID_PAGE_CONFIG_TYPE);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_ADVANCED_MODE_COMBO), Mode),
            EFI_SUCCESS);
  NextTo(Mode == 0 ? RAID_PAGE_ADV_NEW_ARRAY : RAID_PAGE_ADV_SELECT_ARRAY);
}

void WizardWorld::NewArrayEditor(const std::u16string &Level,
                                 std::initializer_list<UINT32> Rows) {
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), Level),
            EFI_SUCCESS);
  TickDrives(Rows);
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
}

void WizardWorld::TickDrives(std::initializer_list<UINT32> Rows) {
  for (UINT32 Row : Rows) {
    ASSERT_EQ(Driver_.SetCell(Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE), Row, 0, 1),
              EFI_SUCCESS);
  }
}

void WizardWorld::PlanVolume(const std::u16string &Capacity,
                             const std::u16string &Name) {
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  if (!Name.empty()) {
    ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT), Name), EFI_SUCCESS);
  }
  if (!Capacity.empty()) {
    ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_CAPACITY_EDIT), Capacity),
              EFI_SUCCESS);
  }
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_ADV_EDIT_VOLUME));
}

void WizardWorld::CreateFrom(UINT32 VerifyPage) {
  if (gRaidCurrentPage != VerifyPage) {
    NextTo(VerifyPage);
  }
  Driver_.QueueAnswer(TRUE);
  NextTo(RAID_PAGE_CREATION_RUNNING);
  EXPECT_EQ(Driver_.Title(), u"RAID Setup - Creating Virtual Disk(s)");
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_SHOWN);
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
}

}  // namespace wizard_test
