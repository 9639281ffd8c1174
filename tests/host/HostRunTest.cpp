// raidcfg-host as a whole: its options, its exit status, the dump on
// standard output and the trace file.
#include <gtest/gtest.h>

#include <sstream>

#include "HostTestSupport.h"
#include "native/HostRun.h"
#include "native/Options.h"
#include "native/WizardRun.h"

namespace host_test {
namespace {

struct HostResult {
  int Status;
  std::string Out;
  std::string Err;
};

HostResult RunHostWith(const host::Options &Options) {
  std::ostringstream Out, Err;
  int Status = host::RunHost(Options, Out, Err);
  return {Status, Out.str(), Err.str()};
}

// The trace file's lines, each with its CRLF.
std::vector<std::string> Lines(const std::string &Text) {
  std::vector<std::string> Result;
  std::size_t Start = 0;
  while (Start < Text.size()) {
    std::size_t End = Text.find('\n', Start);
    End = End == std::string::npos ? Text.size() : End + 1;
    Result.push_back(Text.substr(Start, End - Start));
    Start = End;
  }
  return Result;
}

TEST(Options, ParsesEveryOption) {
  host::Options Options = host::ParseOptions(
      {"--scenario", "s.json", "--dump-model", "--trace", "t.txt", "--replay",
       "r", "--record", "w"});
  EXPECT_EQ(Options.Scenario, "s.json");
  EXPECT_TRUE(Options.DumpModel);
  EXPECT_EQ(Options.Trace, "t.txt");
  EXPECT_EQ(Options.Replay, "r");
  EXPECT_EQ(Options.Record, "w");
  EXPECT_FALSE(Options.Script.has_value());
  EXPECT_TRUE(host::ParseOptions({"--help"}).Help);
  EXPECT_EQ(host::ParseOptions({"--script", "a"}).Script, "a");
}

TEST(Options, RefusesMalformedCommandLines) {
  const std::vector<std::vector<std::string>> kBad = {
      {"--scenario"},
      {"--trace", ""},
      {"--scenario", "a", "--scenario", "b"},
      {"--dump"},
      {"extra"},
      {"--script", "s", "--dump-model"},
  };
  for (const auto &Arguments : kBad) {
    EXPECT_THROW(host::ParseOptions(Arguments), host::UsageError)
        << Arguments[0];
  }
}

TEST(HostRun, DumpsTheDemoServer) {
  host::Options Options;
  Options.DumpModel = true;
  HostResult Result = RunHostWith(Options);
  EXPECT_EQ(Result.Status, 0) << Result.Err;
  EXPECT_EQ(Result.Err, "");
  json Model = json::parse(Result.Out);
  EXPECT_EQ(Model["status"], "Success");
  std::set<std::string> Families;
  for (const auto &Controller : Model["controllers"]) {
    Families.insert(Controller["Private"]["StorageId"].get<std::string>());
  }
  EXPECT_EQ(Families, (std::set<std::string>{"LSI", "MCHP", "RSTe", "M.2"}));
}

TEST(HostRun, TraceFileHoldsTheModulesLinesInOrder) {
  ScratchDirectory Dir;
  Dir.Write("server.json", FourFamilyScenario().dump());
  host::Options Options;
  Options.Scenario = Dir.Path() / "server.json";
  Options.Trace = Dir.Path() / "trace.txt";
  HostResult Result = RunHostWith(Options);
  ASSERT_EQ(Result.Status, 0) << Result.Err;
  const std::vector<std::string> Trace = Lines(Dir.Read("trace.txt"));
  ASSERT_FALSE(Trace.empty());
  // The first line the module can print is the one naming the setup
  // protocol it found; the last is the exit point's.
  EXPECT_EQ(Trace.front().rfind("RAID: [GetTARNSetupProtocol] TarnSetupProtocol = ", 0), 0u)
      << Trace.front();
  EXPECT_EQ(Trace.back(), "RAID: [RaidcfgSetupExitPoint] end\r\n");
  // Landmarks of start-up and shutdown, in the order the module passes them.
  const char *kLandmarks[] = {
      "RAID library version: 0.34.0\r\n",
      "[RaidLibScanPciBus]Start to scan pci bus:\r\n",
      "[RaidLibScanPciBus]Pci bus(RAID): 0x3B, Dev: 0x0, Func: 0x0\r\n",
      "[RaidLibScanPciBus]Pci bus(SATA): 0x2, Dev: 0x0, Func: 0x0\r\n",
      "[InitializeRaid]INFO: all found controllers:\r\n",
      "[InitializeRaid]INFO: Controller id: 0 name: MegaRAID 9460-8i\r\n",
      ("[InitializeRaid]INFO: Controller id: 3 name: Marvell 88SE9230 M.2 "
       "RAID Adapter\r\n"),
      "[FinalizeRaid] start\r\n",
      "[FinalizeRaid] end\r\n",
  };
  auto Position = Trace.begin();
  for (const char *Landmark : kLandmarks) {
    Position = std::find(Position, Trace.end(), Landmark);
    ASSERT_NE(Position, Trace.end()) << "missing or out of order: " << Landmark;
  }
}

TEST(HostRun, HostFailuresExitWithOne) {
  ScratchDirectory Dir;
  Dir.Write("bad.json", R"({"pciFunctions": 3})");
  struct Case {
    const char *Name;
    host::Options Options;
    const char *Message;
  };
  host::Options BadScenario, MissingScenario, MissingReplay, Script;
  BadScenario.Scenario = Dir.Path() / "bad.json";
  MissingScenario.Scenario = Dir.Path() / "none.json";
  MissingReplay.Replay = Dir.Path() / "no-replay";
  Script.Script = Dir.Path() / "script.txt";
  const Case kCases[] = {
      {"bad scenario", BadScenario, "pciFunctions: expected an array"},
      {"missing scenario", MissingScenario, "cannot read"},
      {"missing replay", MissingReplay, "commands.txt"},
      {"script", Script, "--script"},
  };
  for (const Case &C : kCases) {
    HostResult Result = RunHostWith(C.Options);
    EXPECT_EQ(Result.Status, 1) << C.Name;
    EXPECT_EQ(Result.Out, "") << C.Name;
    EXPECT_NE(Result.Err.find(C.Message), std::string::npos)
        << C.Name << ": " << Result.Err;
  }
}

// raidcfg-host --script fails a run whose module leaves a page node behind
// at unload; every shipped script runs clean.
TEST(HostRun, ShippedScriptsLeaveNoPageNodeAfterUnload) {
  struct Run {
    const char *Script;
    const char *Scenario;  // nullptr: the demo server
  };
  const Run kRuns[] = {
      {"demo-manage.script", nullptr},
      {"demo-simple-raid5-hotspare.script", nullptr},
      {"demo-advanced-raid10-two-vds.script", nullptr},
      {"demo-m2-raid1.script", nullptr},
      {"demo-microchip.script", nullptr},
      {"simple-raid5-hotspare.script", "megaraid-six-sas.json"},
      {"advanced-raid10-two-vds.script", "megaraid-six-sas.json"},
  };
  const std::string Dir = RAIDCFG_SCENARIO_DIR;
  for (const Run &R : kRuns) {
    host::Options Options;
    Options.Script = Dir + "/" + R.Script;
    if (R.Scenario != nullptr) {
      Options.Scenario = Dir + "/" + R.Scenario;
    }
    HostResult Result = RunHostWith(Options);
    EXPECT_EQ(Result.Status, 0) << R.Script << ": " << Result.Err;
    EXPECT_EQ(Result.Err.find("page nodes left"), std::string::npos)
        << R.Script << ": " << Result.Err;
  }
}

// A scripted session reports what the pool still holds once the module is
// unloaded, as a model dump does, and keeps the script's exit status.
TEST(HostRun, ScriptedSessionReportsPoolLeftovers) {
  ScratchDirectory Dir;
  Dir.Write("idle.script", "expect-title \"RAID Setup - Select RAID Adapter\"\n");
  const std::string Report =
      "raidcfg-host: pool memory still allocated after unload: 1 "
      "allocation(s) outstanding:\n";
  for (const bool Leak : {false, true}) {
    host::Server Machine(host::DemoScenario());
    VOID *Kept = nullptr;
    if (Leak) {
      ASSERT_EQ(Machine.Firmware().Memory().Allocate(EfiBootServicesData, 24,
                                                     &Kept),
                EFI_SUCCESS);
    }
    std::ostringstream Out, Err;
    EXPECT_EQ(host::RunScriptedWizard(Machine, Dir.Path() / "idle.script", Out,
                                      Err),
              0);
    EXPECT_EQ(Err.str().rfind(Report, 0), Leak ? 0u : std::string::npos)
        << Err.str();
    EXPECT_EQ(Err.str().find("24 bytes") != std::string::npos, Leak);
  }
}

TEST(HostRun, ModuleFailureIsNotAHostFailure) {
  ScratchDirectory Dir;
  json Scenario = FourFamilyScenario();
  Scenario["volumeFiles"]["pcidb.xml"] = nullptr;
  Dir.Write("server.json", Scenario.dump());
  host::Options Options;
  Options.Scenario = Dir.Path() / "server.json";
  HostResult Result = RunHostWith(Options);
  EXPECT_EQ(Result.Status, 0) << Result.Err;
  EXPECT_EQ(json::parse(Result.Out)["status"], "Not Found");
}

}  // namespace
}  // namespace host_test
