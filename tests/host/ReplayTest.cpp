// Replay directories, recording them, and the shell-command service that
// answers from the virtual adapters or a replay.
#include <gtest/gtest.h>

#include <filesystem>

#include "HostTestSupport.h"
#include "native/Replay.h"
#include "native/VirtualAdapters.h"

namespace host_test {
namespace {

// A scenario with one adapter of the stand-in family.
json FakeAdapterScenario() {
  json Scenario = FourFamilyScenario();
  Scenario["adapters"] = json::array({{{"family", "fake"},
                                       {"pciFunction", "megaraid"}}});
  return Scenario;
}

bool HasLine(const std::vector<std::string> &Lines, const std::string &Line) {
  return std::find(Lines.begin(), Lines.end(), Line) != Lines.end();
}

TEST(Replay, RepeatedCommandGetsItsOutputsInOrderThenTheLastAgain) {
  ScratchDirectory Dir;
  Dir.Write("1.txt", "first\r\n");
  Dir.Write("2.txt", "second\r\n");
  Dir.Write("3.txt", "other\r\n");
  Dir.Write("commands.txt",
            "1.txt\tstorcli.efi /c0 show\n"
            "3.txt\tstorcli.efi /c1 show\n"
            "2.txt\tstorcli.efi /c0 show\n");
  host::Replay Replay(Dir.Path());
  EXPECT_EQ(Replay.Answer("storcli.efi /c0 show"), "first\r\n");
  EXPECT_EQ(Replay.Answer("storcli.efi /c1 show"), "other\r\n");
  EXPECT_EQ(Replay.Answer("storcli.efi /c0 show"), "second\r\n");
  EXPECT_EQ(Replay.Answer("storcli.efi /c0 show"), "second\r\n");
  EXPECT_EQ(Replay.Answer("storcli.efi /c1 show"), "other\r\n");
  // Exact text only: no trimming, no case folding.
  EXPECT_EQ(Replay.Answer("storcli.efi /c0 show "), std::nullopt);
  EXPECT_EQ(Replay.Answer("STORCLI.EFI /c0 show"), std::nullopt);
}

TEST(Replay, CrlfIndexAndBlankLinesAreAccepted) {
  ScratchDirectory Dir;
  Dir.Write("a.txt", "A");
  Dir.Write("commands.txt", "\r\na.txt\tarcconf.efi list\r\n\n");
  host::Replay Replay(Dir.Path());
  EXPECT_EQ(Replay.Answer("arcconf.efi list"), "A");
}

struct BrokenReplay {
  const char *Name;
  const char *Index;  // nullptr: no commands.txt
  const char *Message;
};

class BrokenReplayTest : public ::testing::TestWithParam<BrokenReplay> {};

TEST_P(BrokenReplayTest, IsRefusedWithAMessage) {
  ScratchDirectory Dir;
  Dir.Write("a.txt", "A");
  if (GetParam().Index != nullptr) {
    Dir.Write("commands.txt", GetParam().Index);
  }
  try {
    host::Replay Replay(Dir.Path());
    FAIL() << "accepted";
  } catch (const host::ReplayError &Error) {
    EXPECT_NE(std::string(Error.what()).find(GetParam().Message),
              std::string::npos)
        << Error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Directories, BrokenReplayTest,
    ::testing::Values(
        BrokenReplay{"NoIndex", nullptr, "commands.txt"},
        BrokenReplay{"NoTab", "a.txt storcli.efi show\n", ":1: expected"},
        BrokenReplay{"MissingOutput", "a.txt\tx\nb.txt\ty\n", "b.txt"},
        BrokenReplay{"OutsideTheDirectory", "../a.txt\tx\n", "outside"},
        BrokenReplay{"AbsolutePath", "/etc/hostname\tx\n", "outside"}),
    [](const auto &Info) { return std::string(Info.param.Name); });

TEST(ReplayServer, AnswersFromTheDirectoryAndTracesUnlistedCommands) {
  ScratchDirectory Dir;
  Dir.Write("1.txt", "one\r\n");
  Dir.Write("2.txt", "two\r\n");
  Dir.Write("commands.txt", "1.txt\tstorcli.efi show\n2.txt\tstorcli.efi show\n");
  host::Server Server(host::ParseScenario(FourFamilyScenario(), "."),
                      {Dir.Path(), std::nullopt});
  EXPECT_EQ(RunShellCommand("storcli.efi show"), "one\r\n");
  EXPECT_EQ(RunShellCommand("storcli.efi show"), "two\r\n");
  EXPECT_EQ(RunShellCommand("storcli.efi show"), "two\r\n");
  EXPECT_EQ(RunShellCommand("storcli.efi /c0 show all"), "");
  EXPECT_TRUE(HasLine(Server.Setup()->TraceTexts(),
                      "[ShellCommandReplay]No recorded output for: "
                      "storcli.efi /c0 show all\r\n"));
}

TEST(ToolDispatch, FirstWordNamesTheTool) {
  const std::pair<const char *, const char *> kCases[] = {
      {"storcli.efi /c0 show", "storcli.efi"},
      {"StorCli.EFI /call show", "storcli.efi"},
      {"fs0:\\EFI\\Tools\\arcconf.efi getconfig 1", "arcconf.efi"},
      {"  \tRCfgSata.efi /V", "rcfgsata.efi"},
      {"tools/mvsetup.efi info -o hba", "mvsetup.efi"},
      {"mnv_cli.efi", "mnv_cli.efi"},
      {"", ""},
      {"   ", ""},
  };
  for (const auto &[Line, Tool] : kCases) {
    EXPECT_EQ(host::ToolNameOf(Line), Tool) << Line;
  }
}

TEST(ToolDispatch, RunsTheBoundToolAndTracesAnUnknownOne) {
  host::FamilyRegistry Families = FakeFamilyRegistry();
  host::Server Server(host::ParseScenario(FakeAdapterScenario(), "."), {},
                      Families);
  EXPECT_EQ(RunShellCommand("FAKE.efi a"), "1:FAKE.efi a\r\n");
  EXPECT_EQ(RunShellCommand("fs0:\\fake.efi b"), "2:fs0:\\fake.efi b\r\n");
  EXPECT_EQ(RunShellCommand("storcli.efi show"), "");
  EXPECT_TRUE(HasLine(Server.Setup()->TraceTexts(),
                      "[ShellCommandDispatch]No virtual adapter runs: "
                      "storcli.efi show\r\n"));
  EXPECT_EQ(Server.Adapters().State(), json({{"fake", {{"runs", 2}}}}));
}

TEST(ToolDispatch, UnknownFamilyAndClashingToolsAreScenarioErrors) {
  json Unknown = FourFamilyScenario();
  Unknown["adapters"] = json::array({{{"family", "nosuch"},
                                      {"pciFunction", "megaraid"}}});
  EXPECT_THROW(host::Server(host::ParseScenario(Unknown, ".")),
               host::ScenarioError);

  host::FamilyRegistry Families = FakeFamilyRegistry();
  Families.Register("fake2", [](const std::vector<host::AdapterSite> &) {
    return FakeFamilyRegistry().Find("fake")->operator()({});
  });
  json Clash = FakeAdapterScenario();
  Clash["adapters"].push_back({{"family", "fake2"}, {"pciFunction", "m2"}});
  EXPECT_THROW(host::Server(host::ParseScenario(Clash, "."), {}, Families),
               host::ScenarioError);
}

TEST(Record, WritesADirectoryTheReplayPlaysBack) {
  ScratchDirectory Dir;
  host::FamilyRegistry Families = FakeFamilyRegistry();
  const host::Scenario Scenario =
      host::ParseScenario(FakeAdapterScenario(), ".");
  {
    host::Server Live(Scenario, {std::nullopt, Dir.Path()}, Families);
    RunShellCommand("fake.efi x");
    RunShellCommand("fake.efi y");
    RunShellCommand("fake.efi x");
    RunShellCommand("unknown.efi");
    EXPECT_TRUE(Live.Problems().empty());
  }
  EXPECT_EQ(Dir.Read("commands.txt"),
            "output-0001.txt\tfake.efi x\n"
            "output-0002.txt\tfake.efi y\n"
            "output-0003.txt\tfake.efi x\n"
            "output-0004.txt\tunknown.efi\n");
  EXPECT_EQ(Dir.Read("output-0003.txt"), "3:fake.efi x\r\n");

  host::Server Replayed(Scenario, {Dir.Path(), std::nullopt}, Families);
  EXPECT_EQ(RunShellCommand("fake.efi x"), "1:fake.efi x\r\n");
  EXPECT_EQ(RunShellCommand("fake.efi x"), "3:fake.efi x\r\n");
  EXPECT_EQ(RunShellCommand("fake.efi x"), "3:fake.efi x\r\n");
  EXPECT_EQ(RunShellCommand("fake.efi y"), "2:fake.efi y\r\n");
  EXPECT_EQ(RunShellCommand("unknown.efi"), "");
  // The replay answered, the live tool did not run.
  EXPECT_EQ(Replayed.Adapters().State(), json({{"fake", {{"runs", 0}}}}));
}

TEST(Record, RecordedRunReplaysToTheSameDump) {
  ScratchDirectory Dir;
  DumpRun Live = RunDump(FourFamilyScenario(), {std::nullopt, Dir.Path()});
  DumpRun Replayed = RunDump(FourFamilyScenario(), {Dir.Path(), std::nullopt});
  EXPECT_TRUE(Live.Problems.empty());
  EXPECT_EQ(Live.Model, Replayed.Model);
  EXPECT_EQ(Live.Model.dump(), Replayed.Model.dump());
}

// A server with an M.2 adapter behind each M.2 tool: the recording holds
// both tools' runs and replays to the same model.
TEST(Record, BothM2ToolsReplayToTheSameDump) {
  ScratchDirectory Dir;
  const host::Scenario Scenario = host::LoadScenarioFile(
      std::string(RAIDCFG_SCENARIO_DIR) + "/marvell-two-tools.json");
  DumpRun Live = RunDump(Scenario, {std::nullopt, Dir.Path()});
  DumpRun Replayed = RunDump(Scenario, {Dir.Path(), std::nullopt});
  EXPECT_TRUE(Live.Problems.empty());
  EXPECT_TRUE(Replayed.Problems.empty());
  EXPECT_EQ(Live.Model.dump(), Replayed.Model.dump());
  const std::string Commands = Dir.Read("commands.txt");
  EXPECT_NE(Commands.find("\tmvsetup.efi 0 info -o pd\n"), std::string::npos);
  EXPECT_NE(Commands.find("\tmnv_cli.efi 1 info -o pd\n"), std::string::npos);
}

// A server with an RSTe engine and a VROC sSATA engine: the VROC server
// of scenarios/ with its first engine turned into RSTe.
TEST(Record, IntelServerReplaysToTheSameModel) {
  host::Scenario Scenario = host::LoadScenarioFile(
      std::filesystem::path(RAIDCFG_SCENARIO_DIR) / "vroc-server.json");
  Scenario.Adapters[0].Description["variant"] = "rste-sata";
  ScratchDirectory Dir;
  DumpRun Live = RunDump(Scenario, {std::nullopt, Dir.Path()});
  DumpRun Replayed = RunDump(Scenario, {Dir.Path(), std::nullopt});
  EXPECT_TRUE(Live.Problems.empty());
  ASSERT_EQ(Live.Model["controllers"].size(), 2u);
  EXPECT_EQ(Live.Model["controllers"][0]["Arrays"][0]["Segments"][1]["Name"], "Data_R5");
  EXPECT_EQ(Live.Model.dump(), Replayed.Model.dump());
}

TEST(MegaRaidFamily, StorcliAnswersForTheScenariosAdapter) {
  host::Server Server(host::ParseScenario(FourFamilyScenario(), "."));
  EXPECT_NE(RunShellCommand("storcli.efi /c0 show").find("Bus Number = 59"),
            std::string::npos);
  // The adapter's PCI identity comes from the function it sits on.
  const json State = Server.Adapters().State();
  const json &Adapter = State["megaraid"][0];
  EXPECT_EQ(Adapter["pci"]["bus"], 0x3b);
  EXPECT_EQ(Adapter["pci"]["subDeviceId"], 0x9460);
  EXPECT_EQ(Adapter["drives"].size(), 2u);
}

TEST(MegaRaidFamily, AdapterTheSimulationRefusesIsAScenarioError) {
  json Scenario = FourFamilyScenario();
  Scenario["adapters"][0]["drives"][0]["state"] = "Sleeping";
  try {
    host::Server Server(host::ParseScenario(Scenario, "."));
    FAIL() << "accepted";
  } catch (const host::ScenarioError &Error) {
    EXPECT_NE(std::string(Error.what()).find("megaraid on megaraid"),
              std::string::npos)
        << Error.what();
  }
}

TEST(Record, UnwritableDirectoryIsRefused) {
  ScratchDirectory Dir;
  Dir.Write("file", "");
  EXPECT_THROW(host::Recorder(Dir.Path() / "file" / "sub"), host::RecordError);
}

}  // namespace
}  // namespace host_test
