// Pages at work: display states and refresh marks, focus, the operator's
// actions on every control kind, table cells, message and progress boxes,
// help, language changes and the return to the module.
#include "FrameworkTestSupport.h"

namespace {

using demo::Current;

// The adapter page's texts, options and cells are pinned by its golden
// screen; the slider's range is not drawn as a number.
TEST_F(FrameworkTest, SliderRangeComesFromTheDataSource) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(ControlOn(demo::kCapacitySlider)->Maximum, 500u);
  EXPECT_EQ(TextOn(demo::kCapacityLabel), u"Capacity: 100 GB");
}

TEST_F(FrameworkTest, DisplayStatesFollowTheCallbacks) {
  // The label shown on ticking is pinned by the advanced golden screen.
  EXPECT_EQ(Driver.Tick(On(demo::kAdvancedCheck), true), EFI_SUCCESS);
  EXPECT_EQ(On(demo::kAdvancedLabel)->RefreshMark, 0)
      << "the framework read the mark";

  // Choosing the second adapter grays Remove: pressing it is refused and
  // its callback does not run.
  EXPECT_EQ(Driver.Choose(On(demo::kAdapterRadio), 1), EFI_SUCCESS);
  EXPECT_EQ(Driver.State(On(demo::kDeleteButton)), HOST_DISPLAY_GRAYED);
  Current().Events.clear();
  EXPECT_EQ(Driver.Press(On(demo::kDeleteButton)), EFI_ACCESS_DENIED);
  EXPECT_TRUE(Current().Events.empty());
}

TEST_F(FrameworkTest, HiddenContainersHideTheirChildren) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.State(On(demo::kResultText)), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(Driver.Dump().find("created"), std::string::npos);
  EXPECT_EQ(Driver.Type(On(demo::kNameEdit), u"Volume0"), EFI_SUCCESS);
  EXPECT_EQ(Driver.Press(On(demo::kCreateButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.State(On(demo::kResultText)), HOST_DISPLAY_SHOWN);
  EXPECT_NE(Driver.Dump().find("The virtual disk was created."),
            std::string::npos);
}

TEST_F(FrameworkTest, SetTextDropsTheCacheAndReadsTheNewId) {
  EXPECT_EQ(Driver.Tick(On(demo::kAdvancedCheck), true), EFI_SUCCESS);
  EXPECT_EQ(TextOn(demo::kAdvancedLabel), u"Show advanced settings");
  EXPECT_EQ(Driver.Choose(On(demo::kModeCombo), u"Safe"), EFI_SUCCESS);
  EXPECT_EQ(TextOn(demo::kAdvancedLabel), u"Safe mode keeps a spare drive");
  EXPECT_EQ(ControlOn(demo::kAdvancedLabel)->CachedText,
            framework::TextOf(On(demo::kAdvancedLabel)));
}

TEST_F(FrameworkTest, ComboBoxTextSetByIdChoosesThatOption) {
  HOST_CONTROL *Combo = ControlOn(demo::kModeCombo);
  Combo->TextId = demo::kStrSafe;
  Combo->CachedText = nullptr;
  Setup.Interface().RedrawControl(On(demo::kModeCombo));
  EXPECT_EQ(Combo->Value, 1u);
  EXPECT_EQ(TextOn(demo::kModeCombo), u"Safe");
}

TEST_F(FrameworkTest, RefreshMarksAreReadOnShowAndRedraw) {
  // Without a mark the framework keeps its copy; with mark 4 it reads again.
  Current().Drives[0] = u"Renamed";
  Setup.Interface().RedrawScreen();
  EXPECT_EQ(Driver.Cell(On(demo::kDriveTable), 1, 1), u"Disk 0");
  On(demo::kDriveTable)->RefreshMark = HOST_REFRESH_TEXT;
  Setup.Interface().RedrawScreen();
  EXPECT_EQ(Driver.Cell(On(demo::kDriveTable), 1, 1), u"Renamed");
  // Mark 8 on the page reads every control of it.
  Current().Drives[1] = u"Again";
  demo::AdapterPage()->RefreshMark = HOST_REFRESH_MODE;
  Setup.Interface().ShowPage(demo::AdapterPage(), 0);
  EXPECT_EQ(Driver.Cell(On(demo::kDriveTable), 2, 1), u"Again");
  EXPECT_EQ(demo::AdapterPage()->RefreshMark, 0);
}

// Focus order of the adapter page from the radio group, as Tab walks it.
std::vector<UINT32> WalkFocus(framework::HeadlessDriver &Driver, int Steps) {
  std::vector<UINT32> Ids;
  for (int Step = 0; Step < Steps; Step++) {
    Driver.FocusNext();
    Ids.push_back(framework::FocusNode()->NodeId);
  }
  return Ids;
}

TEST_F(FrameworkTest, FocusSkipsHiddenAndGrayedControls) {
  EXPECT_EQ(framework::FocusNode(), On(demo::kAdapterRadio));
  EXPECT_EQ(WalkFocus(Driver, 6),
            (std::vector<UINT32>{demo::kAdvancedCheck, demo::kModeCombo,
                                 demo::kDriveTable, demo::kDeleteButton,
                                 demo::kNextButton, demo::kAdapterRadio}));
  EXPECT_EQ(Driver.Choose(On(demo::kAdapterRadio), 1),
            EFI_SUCCESS);  // grays Remove
  EXPECT_EQ(WalkFocus(Driver, 4),
            (std::vector<UINT32>{demo::kAdvancedCheck, demo::kModeCombo,
                                 demo::kDriveTable, demo::kNextButton}));
  Driver.FocusPrevious();
  EXPECT_EQ(framework::FocusNode()->NodeId, demo::kDriveTable);
}

TEST_F(FrameworkTest, FocusLeavesAControlThatIsHidden) {
  EXPECT_EQ(Driver.Choose(On(demo::kAdapterRadio), 0), EFI_SUCCESS);
  ASSERT_EQ(framework::FocusOn(On(demo::kDeleteButton)), EFI_SUCCESS);
  ControlOn(demo::kDeleteButton)->DisplayState = HOST_DISPLAY_HIDDEN;
  On(demo::kDeleteButton)->RefreshMark = HOST_REFRESH_STATE;
  Setup.Interface().RedrawScreen();
  EXPECT_EQ(framework::FocusNode(), On(demo::kNextButton));
  EXPECT_EQ(framework::FocusOn(On(demo::kDeleteButton)), EFI_ACCESS_DENIED);
  EXPECT_EQ(framework::FocusOn(On(demo::kDriveLabel)), EFI_ACCESS_DENIED);
}

TEST_F(FrameworkTest, ShowPageFocusesTheNamedControl) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(framework::FocusNode(), On(demo::kNameEdit));
  EXPECT_EQ(Driver.Press(On(demo::kBackButton)), EFI_SUCCESS);
  EXPECT_EQ(framework::FocusNode(), On(demo::kNextButton));
  // A grayed control does not take the focus it is given.
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  Setup.Interface().ShowPage(demo::VolumePage(), demo::kCreateButton);
  EXPECT_EQ(framework::FocusNode(), On(demo::kNameEdit));
}

TEST_F(FrameworkTest, RadioGroupRefusesGrayedAndMissingOptions) {
  HOST_PAGE_NODE *Radio = On(demo::kAdapterRadio);
  EXPECT_EQ(Driver.Choose(Radio, 2), EFI_ACCESS_DENIED);
  EXPECT_EQ(Driver.Choose(Radio, 3), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Current().Adapter, 0u);
  EXPECT_EQ(Driver.Choose(Radio, u"Adapter B     PCI slot 2"), EFI_SUCCESS);
  EXPECT_EQ(Current().Adapter, 1u);
  EXPECT_EQ(Driver.Value(Radio), 1u);
}

TEST_F(FrameworkTest, WrongKindsAndOtherPagesAreRefused) {
  EXPECT_EQ(Driver.Press(On(demo::kAdapterRadio)), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Driver.Tick(On(demo::kNextButton), true), EFI_INVALID_PARAMETER);
  HOST_PAGE_NODE *Edit = nullptr;
  Setup.Interface().FindNode(demo::VolumePage(), demo::kNameEdit, &Edit);
  EXPECT_EQ(Driver.Type(Edit, u"x"), EFI_ACCESS_DENIED);
  EXPECT_EQ(Driver.Press(nullptr), EFI_INVALID_PARAMETER);
}

TEST_F(FrameworkTest, EditBoxAndSliderHandTheirValuesToTheModule) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.State(On(demo::kCreateButton)), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(Driver.Type(On(demo::kNameEdit), u"Volume1"), EFI_SUCCESS);
  EXPECT_EQ(Current().VolumeName, u"Volume1");
  EXPECT_EQ(Driver.State(On(demo::kCreateButton)), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(Driver.Slide(On(demo::kCapacitySlider), 900), EFI_SUCCESS);
  EXPECT_EQ(Current().Capacity, 500u) << "clamped to the range";
  EXPECT_EQ(TextOn(demo::kCapacityLabel), u"Capacity: 500 GB");
  // A refused value is put back and no callback runs.
  Current().RefuseNames = true;
  Current().Events.clear();
  EXPECT_EQ(Driver.Type(On(demo::kNameEdit), u"Other"), EFI_ACCESS_DENIED);
  EXPECT_EQ(TextOn(demo::kNameEdit), u"Volume1");
  EXPECT_TRUE(Current().Events.empty());
}

TEST_F(FrameworkTest, TableCellsTickChooseAndRespectGrayedCells) {
  HOST_PAGE_NODE *Table = On(demo::kDriveTable);
  // The role cell opens once its row is ticked.
  EXPECT_EQ(Driver.ChooseCell(Table, 1, 3, u"DHS"), EFI_ACCESS_DENIED);
  EXPECT_EQ(Driver.SetCell(Table, 1, 2, 1), EFI_SUCCESS);
  EXPECT_EQ(Driver.Cell(Table, 1, 2), u"[X]");
  EXPECT_EQ(Driver.ChooseCell(Table, 1, 3, u"DHS"), EFI_SUCCESS);
  EXPECT_EQ(Current().Roles[0], 1u);
  EXPECT_EQ(Driver.Cell(Table, 1, 3), u"DHS");
  // The fourth drive's check box is grayed; text cells take no value.
  EXPECT_EQ(Driver.SetCell(Table, 4, 2, 1), EFI_ACCESS_DENIED);
  EXPECT_EQ(Driver.SetCell(Table, 1, 1, 1), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Driver.SetCell(Table, 9, 2, 1), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Driver.ChooseCell(Table, 1, 3, u"Nothing"), EFI_NOT_FOUND);
  EXPECT_EQ(Current().Events,
            (std::vector<std::string>{"cell 1 2 1", "cell 1 3 1"}));
}

TEST_F(FrameworkTest, TableRowsAreSelectedBelowTheHeading) {
  HOST_PAGE_NODE *Table = On(demo::kDriveTable);
  EXPECT_EQ(Driver.SelectRow(Table, 0), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Driver.SelectRow(Table, 5), EFI_INVALID_PARAMETER);
  EXPECT_EQ(Driver.SelectRow(Table, u"Disk 2"), EFI_SUCCESS);
  EXPECT_EQ(Current().SelectedRow, 3u);
  EXPECT_EQ(Current().Events.back(), "select 3 0 3");
}

struct AnswerCase {
  std::vector<BOOLEAN> Queued;
  BOOLEAN Default;
  size_t DrivesLeft;
  bool FromQueue;
};

class MessageBoxAnswers : public FrameworkTest,
                          public ::testing::WithParamInterface<AnswerCase> {};

TEST_P(MessageBoxAnswers, YesNoQuestionsTakeTheQueuedOrDefaultAnswer) {
  const AnswerCase &Case = GetParam();
  for (BOOLEAN Answer : Case.Queued) {
    Driver.QueueAnswer(Answer);
  }
  Driver.SetDefaultAnswer(Case.Default);
  EXPECT_EQ(Driver.Press(On(demo::kDeleteButton)), EFI_SUCCESS);
  EXPECT_EQ(Current().Drives.size(), Case.DrivesLeft);
  ASSERT_EQ(Driver.MessageBoxes().size(), 1u);
  const framework::MessageBoxRecord &Box = Driver.MessageBoxes()[0];
  EXPECT_EQ(Box.Style, HOST_MSGBOX_YES_NO);
  EXPECT_EQ(Box.Title, u"Warning");
  EXPECT_EQ(Box.Text, u"Do you want to remove the drive from the list?");
  EXPECT_EQ(Box.FromQueue, Case.FromQueue);
  EXPECT_FALSE(framework::MessageBox().Open) << "the box closed";
}

INSTANTIATE_TEST_SUITE_P(
    Answers, MessageBoxAnswers,
    ::testing::Values(AnswerCase{{TRUE}, FALSE, 3, true},
                      AnswerCase{{FALSE}, TRUE, 4, true},
                      AnswerCase{{}, TRUE, 3, false},
                      AnswerCase{{}, FALSE, 4, false}));

// A question is asked whole or not at all: one whose title or text cannot
// be copied, or that has no text, is answered No, and the operator is told
// instead in a box that needs no memory.
TEST_F(FrameworkTest, QuestionsThatCannotBeShownAreAnsweredNo) {
  Driver.SetDefaultAnswer(TRUE);
  const struct {
    const char *Why;
    UINT64 Failing;  // the allocation that fails, 0 none
    EFI_STRING_ID TextId;
  } kCases[] = {
      {"title not copied", 1, demo::kStrDeleteQuestion},
      {"text not copied", 2, demo::kStrDeleteQuestion},
      {"no text", 0, 0},
  };
  const std::u16string Notice =
      u"A question could not be shown (out of memory) and was answered No.";
  for (const auto &Case : kCases) {
    SCOPED_TRACE(Case.Why);
    const size_t Seen = Driver.MessageBoxes().size();
    Firmware.Memory().FailNthAllocation(Case.Failing);
    EXPECT_FALSE(Setup.Interface().MessageBox(
        HOST_MSGBOX_YES_NO, demo::kStrWarning, Case.TextId, nullptr));
    Firmware.Memory().ClearFaults();
    ASSERT_EQ(Driver.MessageBoxes().size(), Seen + 1);
    const framework::MessageBoxRecord &Told = Driver.MessageBoxes().back();
    EXPECT_EQ(Told.Style, HOST_MSGBOX_PLAIN);
    EXPECT_EQ(Told.Title, u"Error");
    EXPECT_EQ(Told.Text, Notice);
    EXPECT_FALSE(framework::MessageBox().Open);
  }
  // The module takes it as No: the drive stays.
  Setup.SetString(demo::kStrDeleteQuestion, u"");
  EXPECT_EQ(Driver.Press(On(demo::kDeleteButton)), EFI_SUCCESS);
  EXPECT_EQ(Current().Drives.size(), 4u);
  EXPECT_EQ(Driver.MessageBoxes().back().Text, Notice);
}

TEST_F(FrameworkTest, PlainBoxesAreAcknowledgedWithoutUsingAnswers) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.Type(On(demo::kNameEdit), u"Volume0"), EFI_SUCCESS);
  Driver.QueueAnswer(FALSE);
  EXPECT_EQ(Driver.Press(On(demo::kCreateButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.PendingAnswers(), 1u);
  EXPECT_EQ(Driver.MessageBoxes().back().Style, HOST_MSGBOX_PLAIN);
  EXPECT_EQ(Driver.MessageBoxes().back().Text, u"Virtual disk created");
  // The message text, when given, replaces the id's.
  EXPECT_TRUE(Setup.Interface().MessageBox(HOST_MSGBOX_PLAIN, demo::kStrResult,
                                           demo::kStrCreated, u"Own text"));
  EXPECT_EQ(Driver.MessageBoxes().back().Text, u"Own text");
}

TEST_F(FrameworkTest, ProgressBoxMovesAndClosesAtAHundred) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.Press(On(demo::kRefreshButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.ProgressSeen(), (std::vector<UINT8>{40, 80}));
  EXPECT_EQ(Driver.MessageBoxes().back().Style, HOST_MSGBOX_PROGRESS);
  EXPECT_FALSE(framework::MessageBox().Open);
  EXPECT_EQ(Setup.Interface().SetProgress(50), EFI_NOT_READY);
}

TEST_F(FrameworkTest, ShowingAPageClosesTheProgressBox) {
  Setup.Interface().MessageBox(HOST_MSGBOX_PROGRESS, demo::kStrBlank,
                               demo::kStrRefresh, nullptr);
  Setup.Interface().SetProgress(30);
  EXPECT_TRUE(framework::MessageBox().Open);
  Setup.Interface().ShowPage(demo::AdapterPage(), 0);
  EXPECT_FALSE(framework::MessageBox().Open);
  EXPECT_EQ(Driver.Dump().find(" 30%"), std::string::npos);
}

TEST_F(FrameworkTest, HelpShowsTheModulesEntriesHeadingFirst) {
  Driver.Help();
  const framework::HelpState &Help = framework::Help();
  ASSERT_TRUE(Help.Open);
  ASSERT_EQ(Help.Count, 3u);  // the texts are pinned by the help golden
  EXPECT_EQ(Help.Lines[0].Style, HOST_HELP_HEADING);
  EXPECT_EQ(Help.Lines[2].Style, HOST_HELP_PARAGRAPH);
  Driver.CloseHelp();
  EXPECT_FALSE(framework::Help().Open);
  // Without the module's callbacks the host shows its own help.
  Setup.Interface().RegisterDefaultCallbacks();
  Driver.Help();
  EXPECT_EQ(std::u16string(framework::Help().Lines[1].Text),
            u"No help is available for this page.");
  EXPECT_EQ(Setup.Interface().ShowHelp(nullptr, nullptr, 1),
            EFI_INVALID_PARAMETER);
}

TEST_F(FrameworkTest, LanguageSwitchReadsEveryTextAgain) {
  Driver.Help();
  EXPECT_EQ(Driver.SwitchLanguage("fr-FR"), EFI_SUCCESS);
  EXPECT_EQ(Current().LanguageCallbacks, 1);
  EXPECT_FALSE(framework::Help().Open) << "its texts were in English";
  // The page shown is pinned by the French golden; a page not shown is read again when it is shown.
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(TextOn(demo::kBackButton), u"Retour");
  EXPECT_EQ(Driver.SwitchLanguage("xx-XX"), EFI_NOT_FOUND);
  EXPECT_EQ(framework::SwitchLanguage(11), EFI_INVALID_PARAMETER);
  CHAR8 Code[8];
  Setup.Interface().GetLanguage(Code, sizeof(Code));
  EXPECT_STREQ(Code, "fr-FR");
}

TEST_F(FrameworkTest, ReturningToTheModuleCallsItsReturnCallback) {
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  Driver.ReturnToModule();
  EXPECT_EQ(Current().ReturnCallbacks, 1);
  EXPECT_EQ(framework::CurrentPage(), demo::AdapterPage());
}

UINTN gRetries = 0;
UINTN EFIAPI RetryDiscovery() {
  gRetries++;
  return 0;
}

TEST_F(FrameworkTest, WithDefaultCallbacksReturnRunsTheRegisteredPageEntry) {
  Setup.Interface().RegisterDefaultCallbacks();
  gRetries = 0;
  Setup.Interface().RegisterPage(nullptr, nullptr, 0, RetryDiscovery, nullptr,
                                 nullptr);
  Driver.ReturnToModule();
  EXPECT_EQ(gRetries, 1u);
  EXPECT_EQ(Current().ReturnCallbacks, 0);
}

}  // namespace

namespace steps {
UINTN gCalls = 0;
UINTN gLast = 0;  // the step that reports completion; 0 never does
HOST_PAGE_NODE *gShownDuringStep = nullptr;
BOOLEAN EFIAPI Step() {
  gCalls++;
  gShownDuringStep = framework::CurrentPage();
  return gLast == 0 || gCalls < gLast;
}
}  // namespace steps

TEST_F(FrameworkTest, StepsRunAfterTheActionThatShowsTheirPageUntilDone) {
  steps::gCalls = 0;
  steps::gLast = 3;
  EXPECT_EQ(Setup.Interface().RegisterStepCallback(nullptr, steps::Step),
            EFI_INVALID_PARAMETER);
  ASSERT_EQ(Setup.Interface().RegisterStepCallback(demo::VolumePage(),
                                                   steps::Step),
            EFI_SUCCESS);
  EXPECT_EQ(Driver.Tick(On(demo::kAdvancedCheck), true), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 0u) << "its page is not shown";
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 3u);
  EXPECT_EQ(steps::gShownDuringStep, framework::CurrentPage());
  EXPECT_EQ(Driver.Press(On(demo::kBackButton)), EFI_SUCCESS);
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 3u) << "a finished step is not called again";
}

TEST_F(FrameworkTest, AStepThatNeverFinishesGivesTheInputBackAndCanBeCancelled) {
  steps::gCalls = 0;
  steps::gLast = 0;
  EXPECT_EQ(Driver.Press(On(demo::kNextButton)), EFI_SUCCESS);
  Setup.Interface().RegisterStepCallback(framework::CurrentPage(), steps::Step);
  EXPECT_EQ(Driver.Press(On(demo::kRefreshButton)), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 4096u);
  EXPECT_EQ(Driver.Press(On(demo::kRefreshButton)), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 8192u);
  Setup.Interface().RegisterStepCallback(nullptr, nullptr);
  EXPECT_EQ(Driver.Press(On(demo::kRefreshButton)), EFI_SUCCESS);
  EXPECT_EQ(steps::gCalls, 8192u);
}
