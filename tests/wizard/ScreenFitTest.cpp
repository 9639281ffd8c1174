// Every page of the wizard, its pop-up, help panel and message boxes, in
// every language at 80 x 25 and at a wider screen: no control's text runs
// into another's and no text is cut without a mark, as the renderer's
// layout check reports it. The pages' screens in three languages (one of
// them CJK) at 80 x 25, and in en-US at the wider size, are golden files
// (golden/screens/).
#include <string>
#include <vector>

#include "DemoServer.h"
#include "Golden.h"
#include "WizardWorld.h"
#include "framework/TextRenderer.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

struct ScreenSize {
  UINTN Columns;
  UINTN Rows;
};
constexpr ScreenSize kSizes[] = {{80, 25}, {100, 30}};

// Golden screens: the languages kept at 80 x 25, and the one kept wider.
const std::string kGoldenLanguages[] = {"en-US", "de-DE", "ja-JP"};
const std::string kWideGoldenLanguage = "en-US";

// "page 8, eight virtual disks planned" -> "page-8-eight-virtual-disks-planned"
std::string Slug(const std::string &Where) {
  std::string Name;
  for (char Char : Where) {
    bool Word = (Char >= 'a' && Char <= 'z') || (Char >= '0' && Char <= '9');
    if (Word) {
      Name += Char;
    } else if (!Name.empty() && Name.back() != '-') {
      Name += '-';
    }
  }
  while (!Name.empty() && Name.back() == '-') {
    Name.pop_back();
  }
  return Name;
}

class ScreenFitTest : public WizardWorld,
                      public ::testing::WithParamInterface<const char *> {
 protected:
  // Draws what the operator sees now at each size with the layout check on.
  void ExpectFits(const std::string &Where) {
    for (const ScreenSize &Size : kSizes) {
      framework::ScreenBuffer Screen = {};
      ASSERT_TRUE(framework::AllocateScreen(Screen, Size.Columns, Size.Rows));
      std::vector<UINT16> Owners(Size.Columns * Size.Rows);
      framework::LayoutFaults Faults = {};
      framework::CheckLayout(Owners.data(), &Faults);
      framework::ComposeScreen(Screen, nullptr);
      framework::CheckLayout(nullptr, nullptr);
      EXPECT_EQ(Faults.Overlaps + Faults.Cuts, 0u)
          << Where << " at " << Size.Columns << "x" << Size.Rows << ": "
          << Faults.Overlaps << " overlapping cells, " << Faults.Cuts
          << " unmarked cuts; first: node " << Faults.NodeId << " against "
          << Faults.OtherNodeId << " at column " << Faults.Column << ", row "
          << Faults.Row << "\n"
          << Driver_.Dump(Size.Columns, Size.Rows);
      framework::FreeScreen(Screen);
    }
  }

  void StartIn(const nlohmann::json &Scenario) {
    Start(Scenario);
    ASSERT_EQ(Driver_.SwitchLanguage(GetParam()), EFI_SUCCESS);
    // Every box is checked as it opens, then answered: Yes to questions
    // unless Answers_ holds another answer.
    Driver_.SetAskHandler([this] {
      const CHAR16 *Title = framework::MessageBox().Title;
      ExpectFits("message box \"" +
                 framework::ToUtf8(Title != nullptr ? Title : u"") + "\"");
      KeepGolden("message box " + std::to_string(++Boxes_));
      if (Answers_.empty()) {
        return static_cast<BOOLEAN>(TRUE);
      }
      BOOLEAN Answer = Answers_.front();
      Answers_.erase(Answers_.begin());
      return Answer;
    });
  }

  // Compares the screen with its golden files, if kept.
  void KeepGolden(const std::string &Where) {
    const std::string Language = GetParam();
    for (const std::string &Kept : kGoldenLanguages) {
      if (Kept == Language) {
        ExpectGolden("screens/" + Language + "/" + Slug(Where) + ".txt",
                     Driver_.Dump(80, 25));
      }
    }
    if (Language == kWideGoldenLanguage) {
      ExpectGolden("screens/100x30/" + Slug(Where) + ".txt",
                   Driver_.Dump(100, 30));
    }
  }

  void Visit(UINT32 Page, const std::string &Where) {
    ASSERT_EQ(gRaidCurrentPage, Page) << Where;
    ExpectFits(Where);
    KeepGolden(Where);
  }

  std::vector<BOOLEAN> Answers_;
  int Boxes_ = 0;
};

TEST_P(ScreenFitTest, EveryScreenFits) {
  StartIn(DemoScenarioJson());
  Visit(RAID_PAGE_CONTROLLER_SELECTION, "page 1");
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  Visit(RAID_PAGE_CONTROLLER_SELECTION, "page 1, a configured adapter");
  Driver_.Help();
  Visit(RAID_PAGE_CONTROLLER_SELECTION, "page 1's help");
  Driver_.CloseHelp();
  // Removing a virtual disk is asked, and refused here.
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), 2), EFI_SUCCESS);
  Answers_ = {FALSE};
  if (State(RAID_NODE_DELETE) == HOST_DISPLAY_SHOWN) {
    ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  }
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  Visit(RAID_PAGE_MANAGE_DRIVES, "page 11");
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);

  // The simple path, to the creation.
  ASSERT_EQ(ChooseAdapter(kSasMegaRaid), EFI_SUCCESS);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  Visit(RAID_PAGE_CONFIG_TYPE, "page 2");
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  Visit(RAID_PAGE_SIMPLE_LEVEL, "page 3");
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  Visit(RAID_PAGE_SIMPLE_VERIFY, "page 4");
  NextTo(RAID_PAGE_CREATION_RUNNING);
  Visit(RAID_PAGE_CREATION_RUNNING, "page 5");
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);

  // The advanced path: free capacity of an array, then a new array with
  // many virtual disks.
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  Advanced(1);
  Visit(RAID_PAGE_ADV_SELECT_ARRAY, "page 6");
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(ChooseAdapter(kEmptyMegaRaid), EFI_SUCCESS);
  Advanced(0);
  Visit(RAID_PAGE_ADV_NEW_ARRAY, "page 7");
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 0"),
            EFI_SUCCESS);
  TickDrives({1, 2});
  Visit(RAID_PAGE_ADV_NEW_ARRAY, "page 7, drives chosen");
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  Visit(RAID_PAGE_ADV_EDIT_VOLUME, "page 8");
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  Visit(RAID_PAGE_ADV_EDIT_VOLUME, "the pop-up");
  ASSERT_EQ(Press(RAID_NODE_POPUP_CANCEL), EFI_SUCCESS);
  for (int Planned = 0; Planned < 8; Planned++) {
    PlanVolume(u"10");
  }
  Visit(RAID_PAGE_ADV_EDIT_VOLUME, "page 8, eight virtual disks planned");
  NextTo(RAID_PAGE_ADV_VERIFY);
  Visit(RAID_PAGE_ADV_VERIFY, "page 9");
  // The results of page 10 are shown as the creation's page.
  NextTo(RAID_PAGE_CREATION_RUNNING);
  Visit(RAID_PAGE_CREATION_RUNNING, "page 10");
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  Stop();

  nlohmann::json Empty = DemoScenarioJson();
  Empty["adapters"] = nlohmann::json::array();
  Empty["pciFunctions"] = nlohmann::json::array();
  StartIn(Empty);
  Visit(RAID_PAGE_NO_ADAPTER, "page 12");
}

INSTANTIATE_TEST_SUITE_P(Languages, ScreenFitTest,
                         ::testing::Values("en-US", "fr-FR", "de-DE", "es-ES",
                                           "it-IT", "ko-KR", "zh-Hans",
                                           "zh-Hant", "ja-JP", "ru-RU",
                                           "pt-BR"),
                         [](const auto &Info) {
                           std::string Name = Info.param;
                           for (char &Char : Name) {
                             Char = Char == '-' ? '_' : Char;
                           }
                           return Name;
                         });

}  // namespace
}  // namespace wizard_test
