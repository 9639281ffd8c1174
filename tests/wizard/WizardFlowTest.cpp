// The wizard's frame: the page flow from page 1, help, the no-adapter page,
// the return into the module, golden screens, the model of the demo server
// and scripts.
#include <sstream>

#include "DemoServer.h"
#include "Golden.h"
#include "WizardWorld.h"
#include "emu/TextConversion.h"
#include "framework/Script.h"
#include "native/HostRun.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardPages.h"

namespace wizard_test {
namespace {

class WizardFlowTest : public WizardWorld {};

nlohmann::json ServerWithoutAdapters() {
  nlohmann::json Server = DemoScenarioJson();
  Server["adapters"] = nlohmann::json::array();
  Server["pciFunctions"] = nlohmann::json::array();
  return Server;
}

TEST_F(WizardFlowTest, NoAdapterPageIsTerminal) {
  Start(ScenarioFrom(ServerWithoutAdapters()));
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_NO_ADAPTER));
  EXPECT_EQ(State(RAID_NODE_NO_ADAPTER_MESSAGE), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(State(RAID_NODE_ADAPTER_RADIO), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  Driver_.ReturnToModule();
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_NO_ADAPTER));
  // A language change leaves the adapter controls alone.
  ASSERT_EQ(Driver_.SwitchLanguage("fr-FR"), EFI_SUCCESS);
  EXPECT_EQ(State(RAID_NODE_ADAPTER_RADIO), HOST_DISPLAY_HIDDEN);
  EXPECT_FALSE(TraceHas("RAID adapter count"));
}

TEST_F(WizardFlowTest, PageOneIsBuiltOnce) {
  StartDemo();
  HOST_PAGE_NODE *Root = gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION];
  const size_t Boxes = Driver_.MessageBoxes().size();
  InitRaidControllerSelectionPage();
  EXPECT_EQ(gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION], Root);
  EXPECT_EQ(Driver_.MessageBoxes().size(), Boxes);
}

TEST_F(WizardFlowTest, LoadingProgressMovesPerAdapter) {
  StartDemo();
  // Six adapters: 30 + 70 / 6 per adapter, the last one 100 (not seen, it
  // closes the box).
  EXPECT_EQ(Driver_.ProgressSeen(),
            (std::vector<UINT8>{10, 30, 41, 52, 63, 74, 85}));
}

TEST_F(WizardFlowTest, NextAndBackBetweenThePages) {
  StartDemo();
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONFIG_TYPE));
  EXPECT_EQ(Driver_.Title(), u"RAID Setup - Select RAID configuration type");
  EXPECT_EQ(framework::FocusNode(), Node(RAID_NODE_NEXT));
  EXPECT_EQ(gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_CONFIG_TYPE)], 0);
  EXPECT_EQ(Driver_.Options(Node(RAID_NODE_CONFIG_TYPE_RADIO)),
            (std::vector<std::u16string>{u"Simple configuration",
                                         u"Advanced configuration"}));
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  EXPECT_EQ(framework::FocusNode(), Node(RAID_NODE_NEXT));
  // Start enters the same page. The first adapter's drives are of mixed
  // types, so only the advanced path is open: Next goes to the new array.
  ASSERT_EQ(Press(RAID_NODE_START), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONFIG_TYPE));
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_ADV_NEW_ARRAY));
}

TEST_F(WizardFlowTest, DrivesOfOneTypeOpenTheSimplePath) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kSasMegaRaid), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONFIG_TYPE));
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_SIMPLE_LEVEL));
}

TEST_F(WizardFlowTest, HelpShowsTheCurrentPagesEntries) {
  StartDemo();
  Driver_.Help();
  const framework::HelpState &Help = framework::Help();
  ASSERT_TRUE(Help.Open);
  ASSERT_EQ(Help.Count, 8u);
  EXPECT_EQ(Help.Lines[0].Style, HOST_HELP_HEADING);
  EXPECT_EQ(std::u16string(Help.Lines[0].Text), u"RAID Adapter Selection");
  EXPECT_EQ(Help.Lines[1].Style, HOST_HELP_PARAGRAPH);
  Driver_.CloseHelp();
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  Driver_.Help();
  ASSERT_EQ(framework::Help().Count, 8u);
  EXPECT_EQ(std::u16string(framework::Help().Lines[0].Text),
            u"Manage Disk Drives");
}

TEST_F(WizardFlowTest, ReturnAfterCreationFreesTheResultPageOnce) {
  StartDemo();
  // The first return after start-up finds the flag of start-up set, and
  // no result page to free.
  Driver_.ReturnToModule();
  ASSERT_EQ(gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED], 0);
  EXPECT_TRUE(TraceHas("RAID: [FreeRaidStaticPageNodes] Out of resource"));
  InitRaidCreateVolProcessPage();
  ASSERT_NE(gRaidPageRoots[RAID_PAGE_CREATE_VOLUMES], nullptr);
  const UINTN Nodes = framework::LiveNodeCount();
  gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED] = 1;
  Driver_.ReturnToModule();
  EXPECT_EQ(gRaidPageRoots[RAID_PAGE_CREATE_VOLUMES], nullptr);
  EXPECT_LT(framework::LiveNodeCount(), Nodes);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  EXPECT_EQ(gRaidReInitFlags[RAID_REINIT_FLAG_VOLUMES_CREATED], 0);
  Server_->Setup()->ClearTrace();
  Driver_.ReturnToModule();
  EXPECT_FALSE(TraceHas("Out of resource"));
  EXPECT_FALSE(TraceHas("RAID adapter count"));
}

TEST_F(WizardFlowTest, UnloadFreesEveryPageAndValue) {
  StartDemo();
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  ASSERT_GT(framework::LiveModuleNodeCount(), 0u);
  EXPECT_EQ(Module_->Unload(), EFI_SUCCESS);
  Module_.reset();
  // Only the module root the framework made for the module is left: the
  // framework's own, freed when the framework shuts down.
  EXPECT_EQ(framework::LiveModuleNodeCount(), 0u);
  EXPECT_EQ(framework::LiveNodeCount(), 1u);
  ASSERT_NE(framework::ModuleRoot(), nullptr);
  EXPECT_EQ(framework::ModuleRoot()->FirstChild, nullptr);
  Binding_.reset();
  EXPECT_EQ(framework::LiveNodeCount(), 0u);
  EXPECT_EQ(Server_->Firmware().Memory().LeakReport(), "");
  Server_.reset();
}

TEST_F(WizardFlowTest, UnloadFromTheNoAdapterPageFreesPageOnesTree) {
  // Page 12 is shown on page 1's tree, which is freed once.
  Start(ScenarioFrom(ServerWithoutAdapters()));
  ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_NO_ADAPTER));
  ASSERT_GT(framework::LiveModuleNodeCount(), 0u);
  Stop();  // checks the nodes and the pool
}

struct GoldenCase {
  const char *Name;
  const char *Language;
  int Page;
};

class GoldenScreenTest : public WizardFlowTest,
                         public ::testing::WithParamInterface<GoldenCase> {};

TEST_P(GoldenScreenTest, ScreenMatches) {
  const GoldenCase &Case = GetParam();
  if (Case.Page == RAID_PAGE_NO_ADAPTER) {
    Start(ScenarioFrom(ServerWithoutAdapters()));
  } else {
    StartDemo();
    ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  }
  ASSERT_EQ(Driver_.SwitchLanguage(Case.Language), EFI_SUCCESS);
  if (Case.Page == RAID_PAGE_MANAGE_DRIVES) {
    ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  }
  ExpectGolden(std::string(Case.Name) + ".txt", Driver_.Dump());
}

INSTANTIATE_TEST_SUITE_P(
    Pages, GoldenScreenTest,
    ::testing::Values(GoldenCase{"page1-en-US", "en-US", 1},
                      GoldenCase{"page1-fr-FR", "fr-FR", 1},
                      GoldenCase{"page11-en-US", "en-US", 11},
                      GoldenCase{"page11-fr-FR", "fr-FR", 11},
                      GoldenCase{"page12-en-US", "en-US", 12},
                      GoldenCase{"page12-fr-FR", "fr-FR", 12}),
    [](const auto &Info) {
      std::string Name = Info.param.Name;
      for (char &Char : Name) {
        if (Char == '-') {
          Char = '_';
        }
      }
      return Name;
    });

// The framework's Next, Back and Refresh are translated, and the longer
// texts still show whole on an 80-column screen.
TEST_F(WizardFlowTest, SharedButtonsShowWholeInEveryLanguage) {
  StartDemo();
  auto ExpectWhole = [&](const std::string &Code,
                         std::initializer_list<UINT32> Buttons) {
    const std::string Screen = Driver_.Dump();
    for (UINT32 Button : Buttons) {
      const std::u16string Shown = Text(Button);
      EXPECT_EQ(Shown == u"Next" || Shown == u"Back" || Shown == u"Refresh",
                Code == "en-US")
          << Code;
      EXPECT_NE(Screen.find("[ " + emu::Utf16ToUtf8(Shown) + " ]"),
                std::string::npos)
          << Code << "\n" << Screen;
    }
  };
  for (UINTN Language = 0; Language < framework::kLanguageCount; Language++) {
    const std::string Code = framework::LanguageCode(Language);
    ASSERT_EQ(Driver_.SwitchLanguage(Code), EFI_SUCCESS);
    ExpectWhole(Code, {RAID_NODE_NEXT, RAID_NODE_REFRESH});
    ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
    ExpectWhole(Code, {RAID_NODE_NEXT, RAID_NODE_BACK});
    ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  }
}

// The model dump reads every controller: the MegaRAIDs with every drive,
// drive group, virtual disk and free segment.
TEST(DemoModelTest, DumpShowsEveryMegaRaidAdapterWhole) {
  host::Server Machine(host::DemoScenario());
  const host::ModelJson Model = host::RunModuleForModel(Machine);
  ASSERT_FALSE(Model.is_null());
  std::vector<host::ModelJson> MegaRaids;
  for (const auto &Controller : Model["controllers"]) {
    if (Controller["ToolType"] == 0 && !Controller["DriveTable"].empty()) {
      MegaRaids.push_back(Controller);
    }
  }
  ASSERT_EQ(MegaRaids.size(), 3u);
  EXPECT_EQ(MegaRaids[0]["DriveTable"].size(), 8u);
  EXPECT_EQ(MegaRaids[1]["DriveTable"].size(), 9u);
  EXPECT_EQ(MegaRaids[2]["DriveTable"].size(), 8u);
  ASSERT_EQ(MegaRaids[1]["Arrays"].size(), 2u);
  size_t Volumes = 0;
  size_t FreeSegments = 0;
  for (const auto &Array : MegaRaids[1]["Arrays"]) {
    for (const auto &Segment : Array["Segments"]) {
      (Segment["IsVolume"] == 1 ? Volumes : FreeSegments)++;
    }
  }
  EXPECT_EQ(Volumes, 3u);
  EXPECT_GE(FreeSegments, 2u);
  EXPECT_EQ(Machine.Firmware().Memory().LeakReport(), "");
}

// The shipped script ends in the same adapter state as the same actions
// taken headless.
TEST_F(WizardFlowTest, ShippedScriptMatchesTheHeadlessActions) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), u"VD1: logs"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(Node(RAID_NODE_DRIVE_TABLE), 8, 4, u"UGood"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  ASSERT_EQ(ChooseAdapter(kEmptyMegaRaid), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Driver_.ChooseCell(Node(RAID_NODE_DRIVE_TABLE), 1, 4, u"JBOD"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  const nlohmann::json Headless = Server_->Adapters().State();
  Stop();

  std::ostringstream Out;
  std::ostringstream Err;
  host::Options Options;
  Options.Script = std::string(RAIDCFG_SOURCE_DIR) +
                   "/scenarios/demo-manage.script";
  ASSERT_EQ(host::RunHost(Options, Out, Err), 0) << Err.str();
  const std::string Printed = Out.str();
  const nlohmann::json Scripted =
      nlohmann::json::parse(Printed.substr(Printed.rfind("\n{\n") + 1));
  EXPECT_EQ(Scripted, Headless);
}

}  // namespace
}  // namespace wizard_test
