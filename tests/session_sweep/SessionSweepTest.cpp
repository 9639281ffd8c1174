// The demo's scripted sessions on the demo server, run once cleanly and
// then once for every pool allocation from module load to unload, that
// allocation made to fail. Whatever fails, the session must not crash,
// must give every byte back and free nothing twice or foreign, may only
// send changes the clean session sent (a shortage of memory can stop a
// change, never turn it into another one), and never asks the operator a
// question without its text.
#include <gtest/gtest.h>

#include <Library/UefiBootServicesTableLib.h>

#include <cctype>
#include <fstream>
#include <map>
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

// What a session left behind.
struct SessionOutcome {
  UINT64 Requests = 0;               // allocation requests, load to unload
  std::vector<std::string> Changes;  // tool commands that change an adapter
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

// Loads the module on a fresh demo server, runs Script and unloads it; with
// Failing non-zero, that allocation request (1 the first after the
// operator's screen is up) fails.
SessionOutcome RunSession(const host::Scenario &Server, const std::string &Script,
                          UINT64 Failing) {
  SessionOutcome Outcome;
  host::Server Machine(Server);
  emu::Pool &Pool = Machine.Firmware().Memory();
  // A module unloaded by the run before leaves its boot-services pointer.
  gBS = nullptr;
  {
    framework::HeadlessDriver Driver;
    framework::EmuBinding Binding(*Machine.Setup(), Driver.Services());
    const UINT64 Before = Pool.Counters().Requests;
    if (Failing != 0) {
      Pool.FailNthAllocation(Failing);
    }
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
      Outcome.FailureShown |= Box.Title == u"Error";
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

class SessionSweepTest : public ::testing::TestWithParam<const char *> {};

TEST_P(SessionSweepTest, NoAllocationFailureChangesWhatIsSent) {
  const host::Scenario Demo = host::DemoScenario();
  const std::string Script = ReadScript(GetParam());
  const SessionOutcome Clean = RunSession(Demo, Script, 0);
  ASSERT_TRUE(Clean.ScriptPassed);
  ASSERT_FALSE(Clean.Changes.empty());
  ASSERT_EQ(Clean.PoolProblems, "");
  ASSERT_FALSE(Clean.FailureShown);
  ASSERT_EQ(Clean.UnreadQuestions, 0);

  for (UINT64 Failing = 1; Failing <= Clean.Requests; Failing++) {
    SCOPED_TRACE("allocation " + std::to_string(Failing) + " of " +
                 std::to_string(Clean.Requests));
    const SessionOutcome Run = RunSession(Demo, Script, Failing);
    EXPECT_EQ(Run.PoolProblems, "");
    EXPECT_EQ(ForeignChanges(Clean, Run), std::vector<std::string>{});
    // A Yes to a question the operator could not read is no consent.
    EXPECT_EQ(Run.UnreadQuestions, 0);
    // A change left out is never left out silently.
    if (Run.Changes.size() < Clean.Changes.size()) {
      EXPECT_TRUE(!Run.ScriptPassed || Run.FailureShown);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    DemoScripts, SessionSweepTest,
    ::testing::Values("demo-simple-raid5-hotspare.script",
                      "demo-advanced-raid10-two-vds.script",
                      "demo-manage.script", "demo-microchip.script",
                      "demo-intel.script"),
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
