// The configuration wizard end to end against virtual MegaRAID adapters:
// every test checks the adapter's final state and that nothing else on it
// changed.
#include <fstream>
#include <functional>
#include <sstream>

#include "Golden.h"
#include "MegaRaidWizard.h"
#include "emu/Firmware.h"
#include "native/HostRun.h"
#include "setup/RaidServiceLayer.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"

namespace wizard_test {
namespace {

constexpr UINT32 kFailed = 0xFE21;
constexpr UINT32 kCreated = 0xFE22;

class ConfigWizardTest : public MegaRaidWizardWorld {
 protected:
  void StartOn(const nlohmann::json &Server) {
    Start(ScenarioFrom(Server));
    Before_ = MegaRaidState();
  }
  // Adapter Index's drive groups now; nothing else changed but its
  // drives' states.
  nlohmann::json Groups(size_t Index) {
    const std::string Adapter = "/megaraid/" + std::to_string(Index);
    const nlohmann::json After = ExpectChangedOnly(
        {Adapter + "/driveGroups", Adapter + "/drives/*/state"});
    return After["megaraid"][Index]["driveGroups"];
  }
  // The creations sent to the adapters so far.
  std::vector<std::string> CreatesSent() {
    std::vector<std::string> Sent;
    for (const std::string &Line : Server_->Shell()->CommandLines()) {
      if (Line.find(" add vd ") != std::string::npos) {
        Sent.push_back(Line);
      }
    }
    return Sent;
  }
  // Whether an error box was shown since the first Boxes boxes.
  bool ErrorShownAfter(size_t Boxes) {
    for (size_t Box = Boxes; Box < Driver_.MessageBoxes().size(); Box++) {
      if (Driver_.MessageBoxes()[Box].Title == u"Error") {
        return true;
      }
    }
    return false;
  }

  nlohmann::json Before_;
};

// ---- Simple configuration ---------------------------------------------------------

struct SimpleCase {
  int Level;
  bool HotSpare;
  size_t Members;  // of six drives
};

class SimplePathTest : public ConfigWizardTest,
                       public ::testing::WithParamInterface<SimpleCase> {};

TEST_P(SimplePathTest, CreatesTheLevelOverTheUnconfiguredDrives) {
  const SimpleCase Case = GetParam();
  StartOn(SixSasServer());
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Driver_.Value(Node(RAID_NODE_CONFIG_TYPE_RADIO)), 0u);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO),
                           u"RAID Level " + framework::FromUtf8(
                                                std::to_string(Case.Level))),
            EFI_SUCCESS);
  if (Case.Level == 0) {
    EXPECT_EQ(State(RAID_NODE_HOT_SPARE_CHECK), HOST_DISPLAY_GRAYED);
  }
  if (Case.HotSpare) {
    ASSERT_EQ(Driver_.Tick(Node(RAID_NODE_HOT_SPARE_CHECK), true), EFI_SUCCESS);
  }
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  EXPECT_EQ(Text(RAID_NODE_VERIFY_DRIVES),
            u"Disk Drives: " + framework::FromUtf8(std::to_string(Case.Members)));
  EXPECT_EQ(Cell(RAID_NODE_VERIFY_TABLE, 0, 1), u"Volume1");
  CreateFrom(RAID_PAGE_SIMPLE_VERIFY);
  const nlohmann::json Made = Groups(0);
  ASSERT_EQ(Made.size(), 1u);
  EXPECT_EQ(Made[0]["raidLevel"], Case.Level);
  EXPECT_EQ(Made[0]["members"].size(), Case.Members);
  EXPECT_EQ(Made[0]["members"][0], "252:0");
  EXPECT_EQ(Made[0]["dedicatedSpares"].size(), Case.HotSpare ? 1u : 0u);
  if (Case.HotSpare) {
    // The first drive after the last member.
    EXPECT_EQ(Made[0]["dedicatedSpares"][0],
              "252:" + std::to_string(Case.Members));
  }
  EXPECT_EQ(Made[0]["virtualDrives"][0]["name"], "Volume1");
  EXPECT_EQ(Made[0]["virtualDrives"][0]["stripKb"], 256);
  EXPECT_EQ(Events(), std::vector<UINT32>{kCreated});
}

INSTANTIATE_TEST_SUITE_P(
    Levels, SimplePathTest,
    ::testing::Values(SimpleCase{0, false, 6}, SimpleCase{1, false, 6},
                      SimpleCase{1, true, 4}, SimpleCase{5, false, 6},
                      SimpleCase{5, true, 5}, SimpleCase{6, false, 6},
                      SimpleCase{6, true, 5}, SimpleCase{10, false, 6},
                      SimpleCase{10, true, 4}, SimpleCase{50, false, 6},
                      SimpleCase{60, false, 6}),
    [](const ::testing::TestParamInfo<SimpleCase> &Info) {
      return "Raid" + std::to_string(Info.param.Level) +
             (Info.param.HotSpare ? "HotSpare" : "");
    });

TEST_F(ConfigWizardTest, MixedDriveTypesGraySimpleConfiguration) {
  StartOn(DemoScenarioJson());
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Text(RAID_NODE_SIMPLE_WARNING),
            u"Warning: Simple configuration does not support mixed types of "
            u"disk drives!");
  EXPECT_EQ(Driver_.Value(Node(RAID_NODE_CONFIG_TYPE_RADIO)), 1u);
  EXPECT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 0) == EFI_SUCCESS,
            false);
  // No array has free capacity: only the new-array choice is offered.
  EXPECT_EQ(Driver_.Options(Node(RAID_NODE_ADVANCED_MODE_COMBO)).size(), 1u);
}

// One array takes one type of drive: with SAS and SATA drives unconfigured,
// the select-all box is grayed whatever kind of adapter this is.
TEST_F(ConfigWizardTest, MixedDriveTypesGrayTheSelectAllBoxForEveryKind) {
  for (UINT32 Kind : {RAID_ADAPTER_KIND_STORCLI, RAID_ADAPTER_KIND_MNV_CLI,
                      RAID_ADAPTER_KIND_VROC, RAID_ADAPTER_KIND_UNSUPPORTED}) {
    StartOn(DemoScenarioJson());
    gRaidAdapterKind = Kind;
    Advanced(0);
    framework::CellView Heading = {};
    ASSERT_TRUE(framework::CellAt(Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE), 0, 0,
                                  &Heading));
    EXPECT_EQ(Heading.DisplayState, HOST_DISPLAY_GRAYED) << "kind " << Kind;
    Stop();
  }
}

// ---- Advanced configuration, new array ---------------------------------------------

EFI_STATUS EFIAPI CannotScheduleSteps(HOST_PAGE_NODE *, TARN_STEP_CALLBACK) {
  return EFI_UNSUPPORTED;
}

// Whether the framework calls the creation steps or the page has to run
// them itself, the same virtual disks come out.
class StepSchedulingTest : public ConfigWizardTest,
                           public ::testing::WithParamInterface<bool> {};

TEST_P(StepSchedulingTest, TwoVirtualDisksOnANewArray) {
  StartOn(SixSasServer());
  if (!GetParam()) {
    Server_->Setup()->Interface().RegisterStepCallback = CannotScheduleSteps;
  }
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 5"),
            EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_NEW_ARRAY_HINT),
            u"3 to 32 disk drives are needed for RAID 5.");
  TickDrives({1, 2});
  EXPECT_EQ(Text(RAID_NODE_NEW_ARRAY_WARNING),
            u"The minimum number of disks for RAID 5 is 3!");
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  TickDrives({3});
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_SHOWN);
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"300");
  PlanVolume(u"");
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 2, 1), u"Volume1");
  EXPECT_EQ(State(RAID_NODE_CREATE_VD), HOST_DISPLAY_GRAYED);
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const nlohmann::json Made = Groups(0);
  ASSERT_EQ(Made.size(), 1u);
  EXPECT_EQ(Made[0]["members"],
            (nlohmann::json{"252:0", "252:1", "252:2"}));
  ASSERT_EQ(Made[0]["virtualDrives"].size(), 2u);
  EXPECT_EQ(Made[0]["virtualDrives"][0]["sizeMb"], 300 * 1024);
  // The second went into the new array's free space and took all of it.
  EXPECT_EQ(Made[0]["virtualDrives"][1]["offsetMb"], 300 * 1024);
  EXPECT_EQ(Events(), (std::vector<UINT32>{kCreated, kCreated}));
}

INSTANTIATE_TEST_SUITE_P(ByFrameworkOrByPage, StepSchedulingTest,
                         ::testing::Bool());

// After a creation, and after a return to the module, the configuration
// type page starts over: simple configuration, shown and followed alike.
TEST_F(ConfigWizardTest, ConfigurationTypeStartsOverAfterCreationAndReturn) {
  StartOn(SixSasServer());
  Driver_.ReturnToModule();
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Driver_.Options(Node(RAID_NODE_CONFIG_TYPE_RADIO)).size(), 2u);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  NewArrayEditor(u"RAID 0", {1});
  PlanVolume(u"");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  EXPECT_EQ(Driver_.Value(Node(RAID_NODE_CONFIG_TYPE_RADIO)), 0u);
  EXPECT_EQ(gRaidConfigType, 0u);
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
}

TEST_F(ConfigWizardTest, ThreeVirtualDisksWithAHotSpareAndPolicies) {
  StartOn(SixSasServer());
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 1"),
            EFI_SUCCESS);
  TickDrives({1, 2, 3});
  EXPECT_EQ(Text(RAID_NODE_NEW_ARRAY_WARNING),
            u"The number of disk drives for RAID 1 should be even!");
  // A dedicated hot spare does not count towards the members.
  ASSERT_EQ(Driver_.ChooseCell(Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE), 3, 5,
                               u"DHS"),
            EFI_SUCCESS);
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_SHOWN);
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_POPUP_WRITE_COMBO), u"Write Through"),
            EFI_SUCCESS);
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_CAPACITY_EDIT), u"100"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  PlanVolume(u"100");
  PlanVolume(u"");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  const nlohmann::json Made = Groups(0);
  ASSERT_EQ(Made.size(), 1u);
  EXPECT_EQ(Made[0]["dedicatedSpares"], nlohmann::json{"252:2"});
  ASSERT_EQ(Made[0]["virtualDrives"].size(), 3u);
  EXPECT_EQ(Made[0]["virtualDrives"][0]["writePolicy"].get<std::string>(),
            "wt");
  // The pop-up keeps the choices of the disk before.
  EXPECT_EQ(Made[0]["virtualDrives"][1]["writePolicy"].get<std::string>(),
            "wt");
  EXPECT_EQ(Made[0]["virtualDrives"][2]["name"], "Volume2");
}

TEST_F(ConfigWizardTest, BackFromTheEditorKeepsThePlan) {
  StartOn(SixSasServer());
  NewArrayEditor(u"RAID 0", {1, 2});
  PlanVolume(u"50");
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_ADV_NEW_ARRAY));
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 1, 1), u"Volume0");
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 1, 3), u"50 GB");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  EXPECT_EQ(Groups(0)[0]["virtualDrives"][0]["sizeMb"], 50 * 1024);
}

TEST_F(ConfigWizardTest, NamesAreCheckedInThePopup) {
  StartOn(SixSasServer());
  NewArrayEditor(u"RAID 0", {1});
  PlanVolume(u"10");
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  const struct {
    std::u16string Name;
    const char16_t *Message;
  } kCases[] = {
      {u"Data-1", u"Error: Virtual disk name may contain"},
      {u"Da ta", u"Error: Virtual disk name may contain"},
      {u"ABCDEFGHIJKLMNOP", u"up to 15 characters"},
      {u"Volume0", u"The virtual disk name has existed"},
  };
  for (const auto &Case : kCases) {
    ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT), Case.Name),
              EFI_SUCCESS);
    ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
    ASSERT_FALSE(Driver_.MessageBoxes().empty());
    EXPECT_NE(Driver_.MessageBoxes().back().Text.find(Case.Message),
              std::u16string::npos)
        << framework::ToUtf8(Case.Name);
  }
  // Blanks around a name go; the longest name passes.
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT), u" ABCDEFGHIJKLMNO "),
            EFI_SUCCESS);
  // "12a" empties the box and keeps 12.
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_CAPACITY_EDIT), u"12a"),
            EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_POPUP_CAPACITY_EDIT), u"");
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 2, 1), u"ABCDEFGHIJKLMNO");
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 2, 3), u"12 GB");
  // Removing a planned disk.
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_PLANNED_TABLE), 1), EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_REMOVE_VD), EFI_SUCCESS);
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 1, 1), u"ABCDEFGHIJKLMNO");
  CreateFrom(RAID_PAGE_ADV_VERIFY);
  EXPECT_EQ(Groups(0)[0]["virtualDrives"][0]["name"], "ABCDEFGHIJKLMNO");
}

TEST_F(ConfigWizardTest, NameLengthFollowsTheProfileBeyondSixtyFourCharacters) {
  StartOn(SixSasServer());
  NewArrayEditor(u"RAID 0", {1});
  // arcconf adapters allow 64 characters.
  gCurrentRaidController->Capability->MaxVolumeNameStingLength = 64;
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  const size_t Boxes = Driver_.MessageBoxes().size();
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT),
                         std::u16string(65, u'A')),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  ASSERT_EQ(Driver_.MessageBoxes().size(), Boxes + 1);
  EXPECT_NE(Driver_.MessageBoxes().back().Text.find(u"up to 64 characters"),
            std::u16string::npos);
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT),
                         std::u16string(64, u'A')),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  EXPECT_EQ(Driver_.MessageBoxes().size(), Boxes + 1);
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 1, 1), std::u16string(64, u'A'));
}

// Every field of a planned record that reaches the adapter, as text.
std::string PlanText(const RAID_VOLUME_PARAMETER *Record) {
  std::ostringstream Out;
  Out << framework::ToUtf8(Record->Name != nullptr ? Record->Name : u"") << " "
      << int(Record->NewArray) << " raid" << int(Record->RaidLevel) << " size "
      << Record->Size << " strip " << Record->StripeSize << " policies "
      << Record->ReadPolicy << "," << Record->WritePolicy << ","
      << Record->IoPolicy << "," << Record->DiskCachePolicy << " drives";
  for (const UINT32 *Ids : {Record->DriveList, Record->SpareList}) {
    for (UINT32 Index = 0; Ids != nullptr && Ids[Index] != RAID_DRIVE_LIST_END;
         Index++) {
      Out << " " << Ids[Index];
    }
    Out << " |";
  }
  return Out.str();
}

// Whichever allocation fails while a virtual disk with a hot spare is
// planned (the pop-up opened and filled, the record made), what gets planned
// is the virtual disk a run without faults plans, whole, or nothing is, and
// the operator is told.
TEST_F(ConfigWizardTest, ShortMemoryPlansTheSameVirtualDiskOrNone) {
  const struct {
    const char *Path;
    std::function<void()> Prepare;
    std::vector<UINT32> Steps;  // the presses whose allocations fail
  } kPaths[] = {
      {"simple",
       [&] {
         NextTo(RAID_PAGE_CONFIG_TYPE);
         NextTo(RAID_PAGE_SIMPLE_LEVEL);
         ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO),
                                  u"RAID Level 5"),
                   EFI_SUCCESS);
         ASSERT_EQ(Driver_.Tick(Node(RAID_NODE_HOT_SPARE_CHECK), true),
                   EFI_SUCCESS);
       },
       {RAID_NODE_NEXT}},
      {"advanced",
       [&] {
         Advanced(0);
         ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO),
                                  u"RAID 5"),
                   EFI_SUCCESS);
         TickDrives({1, 2, 3, 4});
         ASSERT_EQ(Driver_.ChooseCell(Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE), 4,
                                      5, u"DHS"),
                   EFI_SUCCESS);
         NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
       },
       {RAID_NODE_CREATE_VD, RAID_NODE_POPUP_CREATE}},
  };
  for (const auto &Path : kPaths) {
    // A run without faults: the plan, and the allocations the steps ask for.
    StartOn(SixSasServer());
    Path.Prepare();
    emu::Pool &Pool = emu::Firmware::Current().Memory();
    const UINT64 Before = Pool.Counters().Requests;
    for (UINT32 Step : Path.Steps) {
      ASSERT_EQ(Press(Step), EFI_SUCCESS);
    }
    const UINT64 Requests = Pool.Counters().Requests - Before;
    ASSERT_NE(RaidVolumeParameterQueue(), nullptr);
    const std::string Clean = PlanText(RaidVolumeParameterQueue());
    Stop();
    bool SawWhole = false;
    bool SawNone = false;
    for (UINT64 Failing = 1; Failing <= Requests; Failing++) {
      SCOPED_TRACE(std::string(Path.Path) + " path, allocation " +
                   std::to_string(Failing));
      StartOn(SixSasServer());
      Path.Prepare();
      const size_t Boxes = Driver_.MessageBoxes().size();
      emu::Firmware::Current().Memory().FailNthAllocation(Failing);
      bool Pressed = true;
      for (UINT32 Step : Path.Steps) {
        Pressed = Pressed && Node(Step) != nullptr && Press(Step) == EFI_SUCCESS;
      }
      emu::Firmware::Current().Memory().ClearFaults();
      const RAID_VOLUME_PARAMETER *Planned = RaidVolumeParameterQueue();
      if (Planned != nullptr) {
        SawWhole = true;
        EXPECT_EQ(PlanText(Planned), Clean);
      } else {
        SawNone = true;
        // Nothing planned and nothing said: only when a step's button
        // never came up.
        EXPECT_TRUE(ErrorShownAfter(Boxes) || !Pressed);
      }
      Stop();
    }
    EXPECT_TRUE(SawNone && SawWhole) << Path.Path << " " << Requests;
  }
}

// The verify table as the module hands it to the framework, cell by cell.
std::string VerifyTableText(HOST_PAGE_NODE *Node) {
  HOST_TABLE Table = {};
  if (Node == nullptr || RaidDataSourceGetTable(Node, &Table) != EFI_SUCCESS ||
      Table.Cells == nullptr) {
    return "";
  }
  std::string Text;
  for (UINT32 Index = 0; Index < Table.RowCount * Table.ColumnCount; Index++) {
    const CHAR16 *Cell = Table.Cells[Index].Text;
    Text += framework::ToUtf8(Cell != nullptr ? Cell : u"") + "|";
  }
  return Text;
}

struct VerifyPath {
  const char *Name;
  UINT32 Page;
  UINT32 TableNode;
};

void PrintTo(const VerifyPath &Path, std::ostream *Out) { *Out << Path.Name; }

constexpr VerifyPath kVerifyPaths[] = {
    {"simple", RAID_PAGE_SIMPLE_VERIFY, RAID_NODE_VERIFY_TABLE},
    {"advanced", RAID_PAGE_ADV_VERIFY,
     RAID_NODE_VERIFY_TABLE + RAID_NODE_ADV_VERIFY_OFFSET},
};

class VerifyTableTest : public ConfigWizardTest,
                        public ::testing::WithParamInterface<VerifyPath> {
 protected:
  // The page before the verify page, with a RAID 5 planned (and, on the
  // advanced path, two virtual disks).
  void Prepare() {
    StartOn(SixSasServer());
    if (GetParam().Page == RAID_PAGE_SIMPLE_VERIFY) {
      NextTo(RAID_PAGE_CONFIG_TYPE);
      NextTo(RAID_PAGE_SIMPLE_LEVEL);
      ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO),
                               u"RAID Level 5"),
                EFI_SUCCESS);
    } else {
      NewArrayEditor(u"RAID 5", {1, 2, 3});
      PlanVolume(u"100");
      PlanVolume(u"");
    }
  }
};

// Whichever allocation fails while the verify page is made (the plan, the
// page, its table), the disks are created only from a page that showed
// the table a run without faults shows; else nothing is created and the
// operator is told.
TEST_P(VerifyTableTest, ShortMemoryCreatesOnlyWhatTheTableShowed) {
  const VerifyPath Path = GetParam();
  Prepare();
  emu::Pool &CleanPool = emu::Firmware::Current().Memory();
  const UINT64 Before = CleanPool.Counters().Requests;
  NextTo(Path.Page);
  const UINT64 Requests = CleanPool.Counters().Requests - Before;
  const std::string CleanTable = VerifyTableText(Node(Path.TableNode));
  ASSERT_NE(CleanTable.find("Volume1|"), std::string::npos) << CleanTable;
  CreateFrom(Path.Page);
  const std::vector<std::string> CleanCreates = CreatesSent();
  Stop();
  bool SawCreated = false;
  bool SawRefused = false;
  for (UINT64 Failing = 1; Failing <= Requests; Failing++) {
    SCOPED_TRACE(std::string(Path.Name) + " path, allocation " +
                 std::to_string(Failing));
    Prepare();
    const size_t Boxes = Driver_.MessageBoxes().size();
    emu::Firmware::Current().Memory().FailNthAllocation(Failing);
    Press(RAID_NODE_NEXT);
    emu::Firmware::Current().Memory().ClearFaults();
    std::string Shown;
    if (gRaidCurrentPage == Path.Page) {
      Shown = VerifyTableText(Node(Path.TableNode));
      Driver_.QueueAnswer(TRUE);
      Press(RAID_NODE_NEXT);
    }
    const std::vector<std::string> Sent = CreatesSent();
    if (Sent.empty()) {
      SawRefused = true;
      EXPECT_TRUE(ErrorShownAfter(Boxes));
    } else {
      SawCreated = true;
      EXPECT_EQ(Shown, CleanTable);
      EXPECT_EQ(Sent, CleanCreates);
    }
    Stop();
  }
  EXPECT_TRUE(SawCreated && SawRefused) << Requests;
}

// A verify page that has lost its table refuses Next with the error box
// before asking, and stays.
TEST_P(VerifyTableTest, NextWithoutTheTableCreatesNothing) {
  const VerifyPath Path = GetParam();
  Prepare();
  NextTo(Path.Page);
  RaidClearControlTable(Node(Path.TableNode));
  const size_t Boxes = Driver_.MessageBoxes().size();
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_NEXT), EFI_SUCCESS);
  EXPECT_EQ(gRaidCurrentPage, Path.Page);
  EXPECT_EQ(Driver_.PendingAnswers(), 1u) << "nothing was asked";
  ASSERT_EQ(Driver_.MessageBoxes().size(), Boxes + 1);
  EXPECT_NE(Driver_.MessageBoxes().back().Text.find(u"00200009"),
            std::u16string::npos);
  EXPECT_EQ(CreatesSent(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Paths, VerifyTableTest,
                         ::testing::ValuesIn(kVerifyPaths),
                         [](const ::testing::TestParamInfo<VerifyPath> &Info) {
                           return std::string(Info.param.Name);
                         });

// Two virtual disks on a new array, whichever allocation fails while they
// are created: nothing is created that a run without faults would not
// create. A creation after which the adapter could not be read again stops
// the rest, which are reported as failed, rather than placing the second
// disk by a model that was not read (on no drives, on part of them, or
// without its place after the first).
TEST_F(ConfigWizardTest, ShortMemoryDuringTheCreationsCreatesNothingElse) {
  const auto Prepare = [&] {
    StartOn(SixSasServer());
    NewArrayEditor(u"RAID 10", {1, 2, 3, 4});
    PlanVolume(u"100");
    PlanVolume(u"");
    NextTo(RAID_PAGE_ADV_VERIFY);
    Driver_.QueueAnswer(TRUE);
  };
  Prepare();
  emu::Pool &Pool = emu::Firmware::Current().Memory();
  const UINT64 Before = Pool.Counters().Requests;
  NextTo(RAID_PAGE_CREATION_RUNNING);
  const UINT64 Requests = Pool.Counters().Requests - Before;
  const std::vector<std::string> Clean = CreatesSent();
  ASSERT_EQ(Clean.size(), 2u);
  ASSERT_NE(Clean[1].find("AfterVd=0"), std::string::npos);
  Stop();
  bool SawStop = false;
  for (UINT64 Failing = 1; Failing <= Requests; Failing++) {
    SCOPED_TRACE("allocation " + std::to_string(Failing));
    Prepare();
    emu::Firmware::Current().Memory().FailNthAllocation(Failing);
    Press(RAID_NODE_NEXT);
    emu::Firmware::Current().Memory().ClearFaults();
    const std::vector<std::string> Sent = CreatesSent();
    ASSERT_LE(Sent.size(), Clean.size());
    for (size_t Index = 0; Index < Sent.size(); Index++) {
      EXPECT_EQ(Sent[Index], Clean[Index]);
    }
    if (Sent.size() == 1 && gRaidCurrentPage == RAID_PAGE_CREATION_RUNNING) {
      SawStop = true;
      // Both disks are reported, the second as failed.
      const std::vector<UINT32> Reported = Events();
      ASSERT_EQ(Reported.size(), 2u);
      EXPECT_EQ(Reported[1], kFailed);
    }
    Stop();
  }
  EXPECT_TRUE(SawStop);
}

TEST_F(ConfigWizardTest, EditShowsThePlannedDiskAfterACancelledPopup) {
  StartOn(SixSasServer());
  NewArrayEditor(u"RAID 0", {1});
  PlanVolume(u"10", u"Data_1");
  // A second pop-up, its name cleared, closed without creating.
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_NAME_EDIT), u""), EFI_SUCCESS);
  Server_->Setup()->ClearTrace();
  ASSERT_EQ(Press(RAID_NODE_POPUP_EXIT), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("RAID: [_RaidAdvCreateVolumeExitButtonCallback] Show "
                       "the creat and edit virtual disk page"));
  ASSERT_EQ(gRaidCurrentPage, static_cast<UINT32>(RAID_PAGE_ADV_EDIT_VOLUME));
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 2, 1), u"");
  // Editing Data_1 shows its name, and Create is available for it.
  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_PLANNED_TABLE), 1), EFI_SUCCESS);
  Server_->Setup()->ClearTrace();
  ASSERT_EQ(Press(RAID_NODE_EDIT_VD), EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_POPUP_NAME_EDIT), u"Data_1");
  EXPECT_EQ(State(RAID_NODE_POPUP_CREATE), HOST_DISPLAY_SHOWN);
  std::vector<std::string> Layout;
  for (const std::string &Line : Server_->Setup()->TraceTexts()) {
    if (Line.rfind("RAID: [UpdateCreateVolumeLayout]", 0) == 0) {
      Layout.push_back(Line);
    }
  }
  const std::string Left = std::to_string(
      std::stoul(framework::ToUtf8(Text(RAID_NODE_POPUP_CAPACITY_MAX).c_str())));
  EXPECT_EQ(Layout,
            (std::vector<std::string>{
                "RAID: [UpdateCreateVolumeLayout] start\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1, "
                "params.VC: 10000\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1, "
                "VolCap: 10\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1, "
                "ControlValue: 10\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1, " +
                    Left + " GB MAX:\r\n",
                "RAID: [UpdateCreateVolumeLayout] Edit volume is Data_1, "
                "FreeSizeString: " + Left + " GB MAX:\r\n",
                "RAID: [UpdateCreateVolumeLayout] Read policy is: Read "
                "Ahead\r\n",
                "RAID: [UpdateCreateVolumeLayout] Write policy is: Write "
                "Back\r\n",
                "RAID: [UpdateCreateVolumeLayout] IO policy is Direct\r\n",
                "RAID: [UpdateCreateVolumeLayout] Disk cache policy is "
                "Unchanged\r\n",
            }));
}

// ---- Free capacity of an existing array ---------------------------------------------

TEST_F(ConfigWizardTest, FreeCapacityOnAnExistingArray) {
  StartOn(DemoScenarioJson());
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  Advanced(1);
  EXPECT_EQ(Cell(RAID_NODE_FREE_SEGMENT_TABLE, 1, 2), u"RAID 1");
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  // The new disk keeps the array's stripe size, fixed.
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  EXPECT_EQ(State(RAID_NODE_POPUP_STRIPE_COMBO), HOST_DISPLAY_GRAYED);
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_CAPACITY_EDIT), u"20"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  NextTo(RAID_PAGE_ADV_VERIFY);
  EXPECT_EQ(Text(RAID_NODE_VERIFY_LEVEL + RAID_NODE_ADV_VERIFY_OFFSET),
            u"RAID Level: 1");
  Driver_.QueueAnswer(TRUE);
  NextTo(RAID_PAGE_CREATION_RUNNING);
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  const nlohmann::json Made = Groups(1);
  ASSERT_EQ(Made[0]["virtualDrives"].size(), 3u);
  EXPECT_EQ(Made[0]["virtualDrives"][2]["name"], "Volume0");
  EXPECT_EQ(Made[0]["virtualDrives"][2]["sizeMb"], 20 * 1024);
  EXPECT_EQ(Made[1], Before_[1]["driveGroups"][1]);
}

// ---- A creation the adapter refuses ---------------------------------------------------

TEST_F(ConfigWizardTest, RefusedCreationIsShownAndTheNextIsAttempted) {
  StartOn(DemoScenarioJson());
  Advanced(0);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 1"),
            EFI_SUCCESS);
  // A SAS and a SATA drive: the adapter refuses to mix interfaces.
  TickDrives({1, 3});
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"100");
  PlanVolume(u"");
  NextTo(RAID_PAGE_ADV_VERIFY);
  Driver_.QueueAnswer(TRUE);
  NextTo(RAID_PAGE_CREATION_RUNNING);
  const std::string Screen = Driver_.Dump();
  EXPECT_NE(Screen.find("Failure ("), std::string::npos) << Screen;
  EXPECT_EQ(Events(), (std::vector<UINT32>{kFailed, kFailed}));
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  EXPECT_EQ(MegaRaidState(), Before_);
}

// ---- Languages ----------------------------------------------------------------------------

TEST_F(ConfigWizardTest, LanguageChangesOnEveryPageOfTheFlow) {
  StartOn(SixSasServer());
  const char *Languages[] = {"fr-FR", "zh-Hans", "de-DE", "ru-RU",
                             "ja-JP", "ko-KR", "en-US"};
  size_t Next = 0;
  auto Switch = [&] {
    ASSERT_EQ(Driver_.SwitchLanguage(Languages[Next++ % 7]), EFI_SUCCESS);
  };
  NextTo(RAID_PAGE_CONFIG_TYPE);
  Switch();
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
  NextTo(RAID_PAGE_ADV_NEW_ARRAY);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 1"),
            EFI_SUCCESS);
  Switch();  // zh-Hans: the hint names the level first
  EXPECT_EQ(Text(RAID_NODE_NEW_ARRAY_HINT).find(u"RAID 1"), 0u);
  TickDrives({1, 2});
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  PlanVolume(u"");
  Switch();
  EXPECT_EQ(Cell(RAID_NODE_PLANNED_TABLE, 1, 1), u"Volume0");
  NextTo(RAID_PAGE_ADV_VERIFY);
  Switch();
  Driver_.QueueAnswer(TRUE);
  NextTo(RAID_PAGE_CREATION_RUNNING);
  Switch();
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  const nlohmann::json Made = Groups(0);
  ASSERT_EQ(Made.size(), 1u);
  EXPECT_EQ(Made[0]["raidLevel"], 1);
}

// ---- Golden screens ---------------------------------------------------------------------------

TEST_F(ConfigWizardTest, GoldenScreens) {
  StartOn(SixSasServer());
  NextTo(RAID_PAGE_CONFIG_TYPE);
  ExpectGolden("page2.txt", Driver_.Dump());
  NextTo(RAID_PAGE_SIMPLE_LEVEL);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_SIMPLE_LEVEL_RADIO), u"RAID Level 5"),
            EFI_SUCCESS);
  ExpectGolden("page3.txt", Driver_.Dump());
  NextTo(RAID_PAGE_SIMPLE_VERIFY);
  ExpectGolden("page4.txt", Driver_.Dump());
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
  NextTo(RAID_PAGE_ADV_NEW_ARRAY);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), u"RAID 0"),
            EFI_SUCCESS);
  TickDrives({1, 2});
  ExpectGolden("page7.txt", Driver_.Dump());
  NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
  ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
  ExpectGolden("page8-popup.txt", Driver_.Dump());
  ASSERT_EQ(Driver_.Type(Node(RAID_NODE_POPUP_CAPACITY_EDIT), u"500"),
            EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
  ExpectGolden("page8.txt", Driver_.Dump());
  NextTo(RAID_PAGE_ADV_VERIFY);
  ExpectGolden("page9.txt", Driver_.Dump());
  Driver_.QueueAnswer(TRUE);
  NextTo(RAID_PAGE_CREATION_RUNNING);
  ExpectGolden("page10.txt", Driver_.Dump());
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  NextTo(RAID_PAGE_CONFIG_TYPE);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
  ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_ADVANCED_MODE_COMBO), 1),
            EFI_SUCCESS);
  NextTo(RAID_PAGE_ADV_SELECT_ARRAY);
  ExpectGolden("page6.txt", Driver_.Dump());
}

// ---- Scripts -----------------------------------------------------------------------------------

// Runs a script of scenarios/ on a scenario file, or on the embedded demo
// server when Scenario is empty.
nlohmann::json RunScript(const std::string &Script,
                         const std::string &Scenario = "megaraid-six-sas.json") {
  std::ostringstream Out;
  std::ostringstream Err;
  host::Options Options;
  if (!Scenario.empty()) {
    Options.Scenario = std::string(RAIDCFG_SOURCE_DIR) + "/scenarios/" + Scenario;
  }
  Options.Script = Script.front() == '/'
                       ? Script
                       : std::string(RAIDCFG_SOURCE_DIR) + "/scenarios/" + Script;
  EXPECT_EQ(host::RunHost(Options, Out, Err), 0) << Err.str();
  const std::string Printed = Out.str();
  EXPECT_EQ(Printed.find("error"), std::string::npos) << Printed;
  return nlohmann::json::parse(Printed.substr(Printed.rfind("\n{\n") + 1));
}

TEST(ConfigScriptTest, SimpleRaid5WithHotSpare) {
  const nlohmann::json Groups =
      RunScript("simple-raid5-hotspare.script")["megaraid"][0]["driveGroups"];
  ASSERT_EQ(Groups.size(), 1u);
  EXPECT_EQ(Groups[0]["raidLevel"], 5);
  EXPECT_EQ(Groups[0]["members"].size(), 5u);
  EXPECT_EQ(Groups[0]["dedicatedSpares"], nlohmann::json{"252:5"});
  EXPECT_EQ(Groups[0]["virtualDrives"].size(), 1u);
}

TEST(ConfigScriptTest, TwoVirtualDisksOnANewRaid10) {
  const nlohmann::json Groups =
      RunScript("advanced-raid10-two-vds.script")["megaraid"][0]["driveGroups"];
  ASSERT_EQ(Groups.size(), 1u);
  EXPECT_EQ(Groups[0]["raidLevel"], 10);
  EXPECT_EQ(Groups[0]["members"].size(), 4u);
  ASSERT_EQ(Groups[0]["virtualDrives"].size(), 2u);
  EXPECT_EQ(Groups[0]["virtualDrives"][0]["sizeMb"], 200 * 1024);
  EXPECT_EQ(Groups[0]["virtualDrives"][1]["name"], "Volume1");
}

// The same two flows on the demo server that the README's first command
// starts, on its third MegaRAID adapter; the other adapters stay as they were.
TEST(ConfigScriptTest, DemoServerFlowsTouchOnlyTheChosenAdapter) {
  const std::string Idle = ::testing::TempDir() + "/idle.script";
  std::ofstream(Idle) << "expect-title \"RAID Setup - Select RAID Adapter\"\n";
  const nlohmann::json Before = RunScript(Idle, "")["megaraid"];
  ASSERT_EQ(Before.size(), 3u);
  struct Flow {
    const char *Script;
    int Level;
    size_t Members;
    size_t Spares;
    size_t Volumes;
  };
  for (const Flow &Case : {Flow{"demo-simple-raid5-hotspare.script", 5, 7, 1, 1},
                           Flow{"demo-advanced-raid10-two-vds.script", 10, 4, 0, 2}}) {
    SCOPED_TRACE(Case.Script);
    const nlohmann::json After = RunScript(Case.Script, "")["megaraid"];
    ASSERT_EQ(After.size(), 3u);
    EXPECT_EQ(After[0], Before[0]);
    EXPECT_EQ(After[1], Before[1]);
    const nlohmann::json &Groups = After[2]["driveGroups"];
    ASSERT_EQ(Groups.size(), 1u);
    EXPECT_EQ(Groups[0]["raidLevel"], Case.Level);
    EXPECT_EQ(Groups[0]["members"].size(), Case.Members);
    EXPECT_EQ(Groups[0]["dedicatedSpares"].size(), Case.Spares);
    EXPECT_EQ(Groups[0]["virtualDrives"].size(), Case.Volumes);
  }
}

}  // namespace
}  // namespace wizard_test
