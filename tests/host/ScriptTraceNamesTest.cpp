// The demo scripts drive the wizard through the simple and advanced
// creation flows and the drive-state page. Several trace lines there are
// printed by helpers; a log reader knows them under the function that owns
// the step, so each line must name that function, whichever helper prints.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "native/HostRun.h"

namespace {

struct NamedLine {
  const char *Script;
  const char *Text;      // a piece of the line
  const char *Function;  // the name it must carry
};

void PrintTo(const NamedLine &Line, std::ostream *Out) {
  *Out << Line.Script << ": \"" << Line.Text << "\" under " << Line.Function;
}

constexpr NamedLine kNamedLines[] = {
    {"demo-simple-raid5-hotspare.script", "Stripe size count is",
     "UpdateSimpleConfigNewVolumeParameters"},
    {"demo-simple-raid5-hotspare.script", "Read policy count is",
     "UpdateSimpleConfigNewVolumeParameters"},
    {"demo-simple-raid5-hotspare.script", "capacity is",
     "UpdateSimpleConfigNewVolumeParameters"},
    {"demo-simple-raid5-hotspare.script", "hot spare check box",
     "_RaidLevelSelRGCallback"},
    {"demo-simple-raid5-hotspare.script", "Set the volume capacity to 0",
     "_RaidVerifySummaryNextButtonCallback"},
    {"demo-simple-raid5-hotspare.script", "CreateRaidVolume Status is",
     "RaidShowCreateVolumeProcess"},
    {"demo-simple-raid5-hotspare.script", "CreateRaidVolume Errorcode is",
     "RaidShowCreateVolumeProcess"},
    {"demo-simple-raid5-hotspare.script", "Restore the default value of pages",
     "RaidShowCreateVolumeProcess"},
    {"demo-advanced-raid10-two-vds.script", "Member disk drive number",
     "RaidAdvCreateArrayNextCallback"},
    {"demo-advanced-raid10-two-vds.script", "Dedicated hot spare disk drive",
     "RaidAdvCreateArrayNextCallback"},
    {"demo-advanced-raid10-two-vds.script", "Clear the volume information",
     "RaidShowCreateVolumeProcess"},
    {"demo-manage.script", "RowIndex = ", "RaidManagePhyDrvNextCallback"},
    {"demo-manage.script", "Change JBOD to UGOOD",
     "RaidManagePhyDrvNextCallback"},
    {"demo-manage.script", "Change UGOOD to  JBOD",
     "RaidManagePhyDrvNextCallback"},
};

// The trace lines of one script run on the embedded demo server.
std::vector<std::string> RunScript(const std::string &Script) {
  // ctest runs each row in a process of its own, several at once: one
  // trace file per process.
  const std::string TracePath = ::testing::TempDir() + "/names-" +
                                std::to_string(getpid()) + "-" + Script +
                                ".trace";
  host::Options Options;
  Options.Script = std::string(RAIDCFG_SCENARIO_DIR) + "/" + Script;
  Options.Trace = TracePath;
  std::ostringstream Out;
  std::ostringstream Err;
  EXPECT_EQ(host::RunHost(Options, Out, Err), 0) << Err.str();
  std::ifstream File(TracePath);
  std::vector<std::string> Lines;
  for (std::string Line; std::getline(File, Line);) {
    Lines.push_back(Line);
  }
  return Lines;
}

// Each script runs once for all of its rows.
const std::vector<std::string> &ScriptTrace(const std::string &Script) {
  static std::map<std::string, std::vector<std::string>> Runs;
  auto Found = Runs.find(Script);
  if (Found == Runs.end()) {
    Found = Runs.emplace(Script, RunScript(Script)).first;
  }
  return Found->second;
}

class ScriptTraceNamesTest : public ::testing::TestWithParam<NamedLine> {};

TEST_P(ScriptTraceNamesTest, LineCarriesTheOwningFunctionsName) {
  const NamedLine &Expected = GetParam();
  const std::string Name = std::string("[") + Expected.Function + "]";
  size_t Seen = 0;
  for (const std::string &Line : ScriptTrace(Expected.Script)) {
    if (Line.find(Expected.Text) == std::string::npos) {
      continue;
    }
    Seen++;
    EXPECT_NE(Line.find(Name), std::string::npos) << Line;
  }
  EXPECT_GT(Seen, 0u) << "no line with \"" << Expected.Text << "\"";
}

INSTANTIATE_TEST_SUITE_P(DemoScripts, ScriptTraceNamesTest,
                         ::testing::ValuesIn(kNamedLines));

}  // namespace
