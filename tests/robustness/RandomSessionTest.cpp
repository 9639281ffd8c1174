// Random operator sessions on the demo server (adapters of all four
// families): seeded random actions on whatever the wizard shows, each
// written down as a script line. After every action that changed a virtual
// adapter the test checks the change against its own record of what the
// operator chose: a question answered Yes, on the page that deletes,
// creates or changes drive states, on the adapter the operator picked, and
// in that adapter's arrays and drive states only. Each session ends with
// the module unloaded, no page node and no pool byte left.
//
// A failing session names its seed and leaves the script that replays it
// ("raidcfg-host --script FILE" on the demo server) in the test's working
// directory; once the fault is fixed it goes to tests/robustness/regressions/,
// whose scripts run under the same rules.
// RAIDCFG_RANDOM_SESSIONS, RAIDCFG_RANDOM_ACTIONS and
// RAIDCFG_RANDOM_FIRST_SEED make a longer run (scripts/fuzz.sh sessions).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "AdapterStates.h"
#include "DemoServer.h"
#include "OperatorActions.h"
#include "WizardWorld.h"
#include "framework/Framework.h"
#include "framework/Script.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace robustness {
namespace {

// Where a family keeps its arrays and its drives' states in the state.
struct FamilyShape {
  const char *Family;
  const char *Arrays;      // arrays, volumes and spares below it
  const char *Drives;
  const char *DriveState;  // a drive's member
};

// Page 1's adapter radio options on the demo server.
struct RadioAdapter {
  UINTN Option;
  FamilyShape Shape;
  int Index;  // the adapter's place among its family's in the state
};

const RadioAdapter kDemoAdapters[] = {
    {wizard_test::kEmptyMegaRaid, {"megaraid", "driveGroups", "drives", "state"}, 0},
    {wizard_test::kConfiguredMegaRaid, {"megaraid", "driveGroups", "drives", "state"}, 1},
    {wizard_test::kSasMegaRaid, {"megaraid", "driveGroups", "drives", "state"}, 2},
    {wizard_test::kSmartRaid, {"microchip", "arrays", "devices", "state"}, 0},
    {wizard_test::kDemoRste, {"intel", "arrays", "disks", "state"}, 0},
    {wizard_test::kM2Adapter, {"marvell", "volumes", "drives", "status"}, 0},
};

uint64_t FromEnvironment(const char *Name, uint64_t Default) {
  const char *Value = std::getenv(Name);
  return Value != nullptr ? std::strtoull(Value, nullptr, 10) : Default;
}

// Every object with a name below Node: the virtual disks, logical drives
// and volumes of a family's arrays, whole, as text.
void Volumes(const nlohmann::json &Node, std::multiset<std::string> &Found) {
  if (Node.is_object() && Node.contains("name")) {
    Found.insert(Node.dump());
  }
  if (Node.is_structured()) {
    for (const nlohmann::json &Child : Node) {
      Volumes(Child, Found);
    }
  }
}

bool Includes(const std::multiset<std::string> &Outer,
              const std::multiset<std::string> &Inner) {
  return std::includes(Outer.begin(), Outer.end(), Inner.begin(), Inner.end());
}

// The destructive operation a page's confirmed action starts.
enum class Operation { kNone, kDelete, kCreate, kDriveStates };

Operation OperationOf(UINT32 Page) {
  switch (Page) {
    case RAID_PAGE_NODE_ID(RAID_PAGE_CONTROLLER_SELECTION):
      return Operation::kDelete;
    case RAID_PAGE_NODE_ID(RAID_PAGE_SIMPLE_VERIFY):
    case RAID_PAGE_NODE_ID(RAID_PAGE_ADV_VERIFY):
      return Operation::kCreate;
    case RAID_PAGE_NODE_ID(RAID_PAGE_MANAGE_DRIVES):
      return Operation::kDriveStates;
    default:
      return Operation::kNone;
  }
}

class RandomSessionWorld : public wizard_test::WizardWorld {
 protected:
  void SetUp() override {
    // A hang shows as an action that never stops running tools.
    Rewrite_ = [this](const std::string &, const std::string &Output) {
      ToolRuns_++;
      return ToolRuns_ > kToolRunsPerAction ? std::string() : Output;
    };
  }

  // Runs one seeded session of Actions actions; false at the first action
  // that broke a rule (the test has failed then).
  bool RunSession(uint64_t Seed, uint64_t Actions);
  // Runs a kept script's lines, comments left out, under the same rules.
  void RunScript(const std::string &Path);

 private:
  static constexpr uint64_t kToolRunsPerAction = 2000;
  static constexpr size_t kBoxesPerAction = 50;

  // One line run through the script runner and written down; "" when it
  // kept the rules, else the rule it broke.
  [[nodiscard]] std::string RunLine(framework::ScriptRunner &Runner,
                                    const std::string &Line);
  // Whether a question shown since the Boxes-th box was answered No.
  [[nodiscard]] bool DeclinedSince(size_t Boxes) const;
  // What the test's record says about the action just run (Done: it ran
  // and no question of it was declined).
  void Remember(const std::string &Line, bool Done, UINT32 Page);
  // The rules for a change of the adapters' state; "" when it keeps them.
  std::string CheckChange(const nlohmann::json &Before,
                          const nlohmann::json &After, UINT32 Page,
                          size_t BoxesBefore);
  std::string CheckInsideAdapter(const RadioAdapter &Chosen,
                                 const nlohmann::json &Before,
                                 const nlohmann::json &After, Operation Kind);

  uint64_t ToolRuns_ = 0;
  nlohmann::json State_;  // the adapters' state after the last line
  uint64_t Changes_ = 0;  // lines that changed an adapter, checked
  std::ofstream Script_;
  // The test's own record of the operator's choices.
  UINTN ChosenAdapter_ = 0;
  size_t DriveCellsChanged_ = 0;  // on the drive-state page since it showed
  bool AllDrives_ = false;        // an all-drives action chosen there
};

std::string RandomSessionWorld::RunLine(framework::ScriptRunner &Runner,
                                       const std::string &Line) {
  ToolRuns_ = 0;
  // Only the module's actions change the adapters: the state after the
  // last line is the state before this one.
  const nlohmann::json Before = State_;
  const UINT32 Page = Driver_.Page() != nullptr ? Driver_.Page()->NodeId : 0;
  const size_t Boxes = Driver_.MessageBoxes().size();
  const bool Done = Runner.RunText(Line, "random");
  // A refused action stays in the script as a comment: replayed, it would
  // stop the script there.
  Script_ << (Done ? "" : "# refused: ") << Line << "\n" << std::flush;
  std::string Broken;
  if (ToolRuns_ > kToolRunsPerAction ||
      Driver_.MessageBoxes().size() - Boxes > kBoxesPerAction) {
    Broken = "the action did not end (tool runs or message boxes unbounded)";
  } else if (State_ = AdapterStates(); State_ != Before) {
    Broken = CheckChange(Before, State_, Page, Boxes);
    Changes_++;
  }
  Remember(Line, Done && !DeclinedSince(Boxes), Page);
  return Broken;
}

bool RandomSessionWorld::DeclinedSince(size_t Boxes) const {
  const auto &Shown = Driver_.MessageBoxes();
  for (size_t Index = Boxes; Index < Shown.size(); Index++) {
    if (Shown[Index].Style == HOST_MSGBOX_YES_NO && !Shown[Index].Answer) {
      return true;
    }
  }
  return false;
}

void RandomSessionWorld::Remember(const std::string &Line, bool Done,
                                 UINT32 Page) {
  const UINT32 Now = Driver_.Page() != nullptr ? Driver_.Page()->NodeId : 0;
  if (Now != RAID_PAGE_NODE_ID(RAID_PAGE_MANAGE_DRIVES) || Now != Page) {
    DriveCellsChanged_ = 0;
    AllDrives_ = false;
  }
  if (!Done) {
    return;
  }
  const std::string AdapterRadio =
      "choose #" + std::to_string(RAID_NODE_ADAPTER_RADIO) + " #";
  if (Line.rfind(AdapterRadio, 0) == 0 &&
      Page == RAID_PAGE_NODE_ID(RAID_PAGE_CONTROLLER_SELECTION)) {
    ChosenAdapter_ = std::stoul(Line.substr(AdapterRadio.size()));
  }
  if (Page != RAID_PAGE_NODE_ID(RAID_PAGE_MANAGE_DRIVES)) {
    return;
  }
  DriveCellsChanged_ += Line.rfind("choose-cell ", 0) == 0;
  // The all-drives combo box: its first option is no action.
  const std::string AllDrives =
      "choose #" + std::to_string(RAID_NODE_ALL_DRIVES_COMBO) + " #";
  if (Line.rfind(AllDrives, 0) == 0) {
    AllDrives_ = Line != AllDrives + "0";
  }
}

std::string RandomSessionWorld::CheckChange(const nlohmann::json &Before,
                                           const nlohmann::json &After,
                                           UINT32 Page, size_t BoxesBefore) {
  bool Confirmed = false;
  const auto &Boxes = Driver_.MessageBoxes();
  for (size_t Index = BoxesBefore; Index < Boxes.size(); Index++) {
    Confirmed |= Boxes[Index].Style == HOST_MSGBOX_YES_NO && Boxes[Index].Answer;
  }
  if (!Confirmed) {
    return "the adapters changed without a question answered Yes";
  }
  const Operation Kind = OperationOf(Page);
  if (Kind == Operation::kNone) {
    return "the adapters changed from page " + std::to_string(Page);
  }
  if (ChosenAdapter_ >= std::size(kDemoAdapters)) {
    return "the operator chose no adapter of the demo server";
  }
  const RadioAdapter &Chosen = kDemoAdapters[ChosenAdapter_];
  const std::string Path =
      std::string("/") + Chosen.Shape.Family + "/" + std::to_string(Chosen.Index);
  if (wizard_test::WithoutParts(Before, {Path}) !=
      wizard_test::WithoutParts(After, {Path})) {
    return "an adapter the operator did not choose changed (chosen: " + Path +
           ")";
  }
  const nlohmann::json::json_pointer Pointer(Path);
  return CheckInsideAdapter(Chosen, Before[Pointer], After[Pointer], Kind);
}

std::string RandomSessionWorld::CheckInsideAdapter(const RadioAdapter &Chosen,
                                                  const nlohmann::json &Before,
                                                  const nlohmann::json &After,
                                                  Operation Kind) {
  const FamilyShape &Shape = Chosen.Shape;
  const std::vector<std::string> Changeable = {
      std::string("/") + Shape.Arrays,
      std::string("/") + Shape.Drives + "/*/" + Shape.DriveState};
  if (wizard_test::WithoutParts(Before, Changeable) !=
      wizard_test::WithoutParts(After, Changeable)) {
    return std::string("more than the arrays and drive states of the ") +
           Shape.Family + " adapter changed";
  }
  std::multiset<std::string> Was;
  std::multiset<std::string> Is;
  Volumes(Before[Shape.Arrays], Was);
  Volumes(After[Shape.Arrays], Is);
  size_t StatesChanged = 0;
  for (size_t Drive = 0; Drive < Before[Shape.Drives].size(); Drive++) {
    StatesChanged += Before[Shape.Drives][Drive][Shape.DriveState] !=
                     After[Shape.Drives][Drive][Shape.DriveState];
  }
  switch (Kind) {
    case Operation::kDelete:
      return Includes(Was, Is) && Is.size() < Was.size()
                 ? ""
                 : "a deletion did more than take volumes away";
    case Operation::kCreate:
      return Includes(Is, Was) && Is.size() > Was.size()
                 ? ""
                 : "a creation did more than add volumes";
    case Operation::kDriveStates:
      return Was == Is && (AllDrives_ || StatesChanged <= DriveCellsChanged_)
                 ? ""
                 : "drive states changed beyond the " +
                       std::to_string(DriveCellsChanged_) +
                       " the operator set, or volumes changed";
    case Operation::kNone:
      break;
  }
  return "";
}

bool RandomSessionWorld::RunSession(uint64_t Seed, uint64_t Actions) {
  const std::string Name = "random-session-" + std::to_string(Seed) + ".script";
  Script_.open(Name);
  Script_ << "# A random operator session on the demo server, seed " << Seed
          << ".\n";
  std::cout << "seed " << Seed << ": script in "
            << std::filesystem::absolute(Name).string() << "\n";
  StartDemo();
  State_ = AdapterStates();
  std::ostringstream Printed;
  framework::ScriptRunner Runner(Driver_, Printed);
  OperatorActions Operator(Seed);
  bool Kept = RunLine(Runner, "default-answer yes").empty();
  for (uint64_t Action = 0; Action < Actions && Kept; Action++) {
    for (const std::string &Line : Operator.Next(Driver_)) {
      if (const std::string Broken = RunLine(Runner, Line); !Broken.empty()) {
        ADD_FAILURE() << "seed " << Seed << ", action " << Action + 1 << " ("
                      << Line << "): " << Broken
                      << "\nreplay: raidcfg-host --script "
                      << std::filesystem::absolute(Name).string();
        Kept = false;
        break;
      }
    }
  }
  Stop();
  Script_.close();
  std::cout << "seed " << Seed << ": " << Changes_
            << " changes of the adapters checked\n";
  if (Kept && !HasFailure()) {
    std::filesystem::remove(Name);
  }
  return Kept;
}

void RandomSessionWorld::RunScript(const std::string &Path) {
  StartDemo();
  State_ = AdapterStates();
  std::ostringstream Printed;
  framework::ScriptRunner Runner(Driver_, Printed);
  std::ifstream File(Path);
  ASSERT_TRUE(File.is_open()) << Path;
  for (std::string Line; std::getline(File, Line);) {
    if (!Line.empty() && Line[0] != '#') {
      EXPECT_EQ(RunLine(Runner, Line), "") << Line;
    }
  }
  Stop();
}

class RandomSessionTest : public RandomSessionWorld,
                          public ::testing::WithParamInterface<uint64_t> {};

TEST_P(RandomSessionTest, ChangesOnlyWhatTheOperatorChose) {
  const uint64_t Actions = FromEnvironment("RAIDCFG_RANDOM_ACTIONS", 250);
  EXPECT_TRUE(RunSession(GetParam(), Actions));
}

// 40 sessions of 250 actions: 10,000 actions a run.
const uint64_t kFirstSeed = FromEnvironment("RAIDCFG_RANDOM_FIRST_SEED", 1);
INSTANTIATE_TEST_SUITE_P(
    Seeds, RandomSessionTest,
    ::testing::Range<uint64_t>(
        kFirstSeed, kFirstSeed + FromEnvironment("RAIDCFG_RANDOM_SESSIONS", 40)));

// The scripts of sessions that once broke a rule, kept beside this test.
class RegressionScriptTest
    : public RandomSessionWorld,
      public ::testing::WithParamInterface<std::filesystem::path> {};

TEST_P(RegressionScriptTest, KeepsTheRules) { RunScript(GetParam()); }

std::vector<std::filesystem::path> RegressionScripts() {
  std::vector<std::filesystem::path> Found;
  for (const auto &Entry :
       std::filesystem::directory_iterator(RAIDCFG_REGRESSION_DIR)) {
    if (Entry.path().extension() == ".script") {
      Found.push_back(Entry.path());
    }
  }
  std::sort(Found.begin(), Found.end());
  return Found;
}

INSTANTIATE_TEST_SUITE_P(
    Kept, RegressionScriptTest, ::testing::ValuesIn(RegressionScripts()),
    [](const ::testing::TestParamInfo<std::filesystem::path> &Info) {
      std::string Name = Info.param.stem().string();
      std::replace(Name.begin(), Name.end(), '-', '_');
      return Name;
    });

}  // namespace
}  // namespace robustness
