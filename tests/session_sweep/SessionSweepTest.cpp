// The demo's scripted sessions on the demo server (adapters of all four
// families), run once cleanly and then once for every pool allocation from
// module load to unload, that allocation made to fail, and once for every
// tool run, that run failing (the shell-command service's error, or the
// tool printing nothing). Whatever fails, the session must not crash, must
// give every byte back and free nothing twice or foreign, and never asks a
// question without its text. A shortage of memory may only stop changes
// the clean session sent, never silently, and the error box it brings
// shows the out-of-resources code; a failed tool run never touches an
// adapter the clean session left alone.
#include <gtest/gtest.h>

#include <Library/UefiBootServicesTableLib.h>

#include <cctype>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "framework/EmuBinding.h"
#include "framework/HeadlessDriver.h"
#include "framework/Script.h"
#include "native/ModuleSession.h"
#include "native/Scenario.h"
#include "native/Server.h"

namespace {

// The one thing that goes wrong in a session.
enum class FaultKind {
  kNone,
  kAllocation,  // the Nth allocation request fails
  kToolStatus,  // the Nth tool run: the shell-command service fails
  kToolEmpty,   // the Nth tool run prints nothing
};

struct Fault {
  FaultKind Kind = FaultKind::kNone;
  UINT64 Nth = 0;
};

// The codes a shortage of memory may show: out of resources, and not found
// from the start-up's PCI scan, whose handle list the firmware could not
// allocate. A box without a code (a question that could not be shown)
// shows 0 here.
constexpr UINT32 kOutOfResources = 0x00200009;
constexpr UINT32 kNoPciList = 0x0020000E;

// What a session left behind.
struct SessionOutcome {
  UINT64 Requests = 0;               // allocation requests, load to unload
  std::vector<std::string> ToolRuns;  // every command line run, in order
  std::vector<std::string> Changes;  // tool commands that change an adapter
  nlohmann::json Adapters;           // the virtual adapters' state at the end
  std::set<std::string> Touched;     // adapters a tool run changed
  std::vector<std::string> ErrorBoxes;  // the error boxes' texts
  bool ScriptPassed = false;
  bool FailureShown = false;  // an error box, or a failure event sent
  int UnreadQuestions = 0;    // Yes/No boxes asked without title or text
  std::string PoolProblems;   // leaks and invalid frees
};

std::string ReadScript(const std::string &Name) {
  std::ifstream File(std::string(RAIDCFG_SCENARIO_DIR) + "/" + Name);
  std::ostringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

// The tools' reads: storcli's "show" commands, arcconf's "list" and
// "getconfig", the M.2 tools' "info" reports and the Intel tool's three
// reports. Any other command changes something.
bool IsChange(const std::string &CommandLine) {
  for (const char *Read : {" show", " list", " getconfig ", " info -o "}) {
    if (CommandLine.find(Read) != std::string::npos) {
      return false;
    }
  }
  for (const std::string Report : {" /V", " /I", " /ST"}) {
    if (CommandLine.size() >= Report.size() &&
        CommandLine.compare(CommandLine.size() - Report.size(), Report.size(),
                            Report) == 0) {
      return false;
    }
  }
  return true;
}

// Management-controller events that report a failed change.
bool IsFailureEvent(UINT32 EventCode) {
  return EventCode == 0xFE11 || EventCode == 0xFE21 || EventCode == 0xFE31;
}

std::string PoolProblems(const emu::Pool &Pool) {
  std::string Problems = Pool.LeakReport();
  for (const emu::PoolEvent &Event : Pool.Events()) {
    if (Event.Kind != emu::PoolEventKind::kInjectedFailure) {
      Problems += std::string(emu::PoolEventName(Event.Kind)) + "\n";
    }
  }
  return Problems;
}

// The code an error box shows ("Error code: 0x%08X"); 0 when it shows none.
UINT32 ShownErrorCode(const std::string &Text) {
  const size_t At = Text.find("0x");
  if (At == std::string::npos || At + 10 > Text.size() ||
      Text.find_first_not_of("0123456789abcdefABCDEF", At + 2) < At + 10) {
    return 0;
  }
  return static_cast<UINT32>(std::stoul(Text.substr(At + 2, 8), nullptr, 16));
}

// The adapters ("megaraid/1") whose state differs between two states.
std::set<std::string> Differing(const nlohmann::json &Before,
                                const nlohmann::json &After) {
  std::set<std::string> Found;
  for (const auto &[Family, Adapters] : Before.items()) {
    for (size_t Index = 0; Index < Adapters.size(); Index++) {
      if (After[Family][Index] != Adapters[Index]) {
        Found.insert(Family + "/" + std::to_string(Index));
      }
    }
  }
  return Found;
}

// Arms Failure on the machine before the module loads. Unless an
// allocation fails, every tool run goes through a handler that notes the
// adapters a change changed into Touched.
void Arm(host::Server &Machine, const Fault &Failure,
         std::set<std::string> &Touched) {
  if (Failure.Kind == FaultKind::kAllocation) {
    Machine.Firmware().Memory().FailNthAllocation(Failure.Nth);
    return;
  }
  if (Failure.Kind == FaultKind::kToolStatus) {
    Machine.Shell()->FailNthCall(Failure.Nth, EFI_DEVICE_ERROR);
  }
  Machine.Shell()->SetHandler([&Machine, &Touched, Run = UINT64{0},
                               Failure](const std::string &Line) mutable {
    if (++Run == Failure.Nth && Failure.Kind == FaultKind::kToolEmpty) {
      return std::string();
    }
    if (!IsChange(Line)) {
      return Machine.Adapters().Run(Line).value_or("");
    }
    const nlohmann::json Before = Machine.Adapters().State();
    std::string Output = Machine.Adapters().Run(Line).value_or("");
    Touched.merge(Differing(Before, Machine.Adapters().State()));
    return Output;
  });
}

// Loads the module on a fresh demo server, runs Script and unloads it, with
// Failure (counted from module load) on the way.
SessionOutcome RunSession(const host::Scenario &Server, const std::string &Script,
                          const Fault &Failure) {
  SessionOutcome Outcome;
  host::Server Machine(Server);
  emu::Pool &Pool = Machine.Firmware().Memory();
  // A module unloaded by the run before leaves its boot-services pointer.
  gBS = nullptr;
  {
    framework::HeadlessDriver Driver;
    framework::EmuBinding Binding(*Machine.Setup(), Driver.Services());
    const UINT64 Before = Pool.Counters().Requests;
    Arm(Machine, Failure, Outcome.Touched);
    host::ModuleSession Module(Machine);
    if (!EFI_ERROR(Module.Load())) {
      std::ostringstream Printed;
      framework::ScriptRunner Runner(Driver, Printed);
      Outcome.ScriptPassed = Runner.RunText(Script, "script");
      Module.Unload();
    }
    Pool.ClearFaults();
    Outcome.Requests = Pool.Counters().Requests - Before;
    for (const framework::MessageBoxRecord &Box : Driver.MessageBoxes()) {
      if (Box.Title == u"Error") {
        Outcome.FailureShown = true;
        Outcome.ErrorBoxes.push_back(framework::ToUtf8(Box.Text));
      }
      if (Box.Style == HOST_MSGBOX_YES_NO &&
          (Box.Title.empty() || Box.Text.empty())) {
        Outcome.UnreadQuestions++;
      }
    }
  }
  for (const emu::SentEvent &Event : Machine.Qol()->Events()) {
    Outcome.FailureShown |= IsFailureEvent(Event.EventCode);
  }
  Outcome.PoolProblems = PoolProblems(Pool);
  Outcome.ToolRuns = Machine.Shell()->CommandLines();
  Outcome.Adapters = Machine.Adapters().State();
  for (const std::string &CommandLine : Machine.Shell()->CommandLines()) {
    if (IsChange(CommandLine)) {
      Outcome.Changes.push_back(CommandLine);
    }
  }
  return Outcome;
}

// The changes of Run that the clean run did not send (as many times).
std::vector<std::string> ForeignChanges(const SessionOutcome &Clean,
                                        const SessionOutcome &Run) {
  std::map<std::string, int> Left;
  for (const std::string &Change : Clean.Changes) {
    Left[Change]++;
  }
  std::vector<std::string> Foreign;
  for (const std::string &Change : Run.Changes) {
    if (Left[Change]-- <= 0) {
      Foreign.push_back(Change);
    }
  }
  return Foreign;
}

// The rules every run with a fault keeps: nothing leaks or is freed
// twice or foreign, and a Yes to a question the operator could not read is
// never taken as consent.
void ExpectSafe(const SessionOutcome &Run) {
  EXPECT_EQ(Run.PoolProblems, "");
  EXPECT_EQ(Run.UnreadQuestions, 0);
}

// A shortage of memory can stop a change, never turn it into another one,
// and a change left out, or an adapter left otherwise, is never left so
// silently.
void ExpectOnlyCleanChanges(const SessionOutcome &Clean,
                            const SessionOutcome &Run) {
  EXPECT_EQ(ForeignChanges(Clean, Run), std::vector<std::string>{});
  if (Run.Changes.size() < Clean.Changes.size() ||
      Run.Adapters != Clean.Adapters) {
    EXPECT_TRUE(!Run.ScriptPassed || Run.FailureShown)
        << "the adapters differ from the clean session's, and the script "
           "passed without an error box or failure event";
  }
}

// A failed tool run is judged by the output it left (none), as the tools'
// verdicts are read, so the changes after it may differ from the clean
// session's; but no adapter the clean session left alone is touched.
void ExpectUntouchedStayUntouched(const SessionOutcome &Clean,
                                  const SessionOutcome &Run) {
  for (const std::string &Adapter : Run.Touched) {
    EXPECT_EQ(Clean.Touched.count(Adapter), 1u) << Adapter << " changed";
  }
}

class SessionSweepTest : public ::testing::TestWithParam<const char *> {
 protected:
  void SetUp() override {
    Script_ = ReadScript(GetParam());
    Clean_ = RunSession(Demo_, Script_, {});
    ASSERT_TRUE(Clean_.ScriptPassed);
    ASSERT_FALSE(Clean_.Changes.empty());
    ASSERT_EQ(Clean_.PoolProblems, "");
    ASSERT_FALSE(Clean_.FailureShown);
    ASSERT_EQ(Clean_.UnreadQuestions, 0);
  }

  const host::Scenario Demo_ = host::DemoScenario();
  std::string Script_;
  SessionOutcome Clean_;
};

TEST_P(SessionSweepTest, NoAllocationFailureChangesWhatIsSent) {
  for (UINT64 Failing = 1; Failing <= Clean_.Requests; Failing++) {
    SCOPED_TRACE("allocation " + std::to_string(Failing) + " of " +
                 std::to_string(Clean_.Requests));
    const SessionOutcome Run =
        RunSession(Demo_, Script_, {FaultKind::kAllocation, Failing});
    ExpectSafe(Run);
    ExpectOnlyCleanChanges(Clean_, Run);
    for (const std::string &Box : Run.ErrorBoxes) {
      const UINT32 Code = ShownErrorCode(Box);
      EXPECT_TRUE(Code == 0 || Code == kOutOfResources || Code == kNoPciList)
          << Box;
    }
  }
}

TEST_P(SessionSweepTest, NoFailingToolRunTouchesAnotherAdapter) {
  for (FaultKind Kind : {FaultKind::kToolStatus, FaultKind::kToolEmpty}) {
    for (UINT64 Failing = 1; Failing <= Clean_.ToolRuns.size(); Failing++) {
      SCOPED_TRACE(std::string(Kind == FaultKind::kToolStatus
                                   ? "failing tool run "
                                   : "empty tool run ") +
                   std::to_string(Failing) + " of " +
                   std::to_string(Clean_.ToolRuns.size()) + ": " +
                   Clean_.ToolRuns[Failing - 1]);
      const SessionOutcome Run = RunSession(Demo_, Script_, {Kind, Failing});
      ExpectSafe(Run);
      ExpectUntouchedStayUntouched(Clean_, Run);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    DemoScripts, SessionSweepTest,
    ::testing::Values("demo-simple-raid5-hotspare.script",
                      "demo-advanced-raid10-two-vds.script",
                      "demo-manage.script", "demo-microchip.script",
                      "demo-intel.script", "demo-m2-raid1.script"),
    [](const ::testing::TestParamInfo<const char *> &Info) {
      std::string Name = Info.param;
      Name = Name.substr(5, Name.find('.') - 5);  // without "demo-", ".script"
      std::string Id;
      bool Upper = true;
      for (char Char : Name) {
        if (Char == '-') {
          Upper = true;
        } else {
          Id += Upper ? static_cast<char>(std::toupper(Char)) : Char;
          Upper = false;
        }
      }
      return Id;
    });

}  // namespace
