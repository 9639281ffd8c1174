// Scripts: words of a line, a whole session on the demo module, and the
// errors a script reports with its line.
#include <sstream>

#include "FrameworkTestSupport.h"
#include "framework/Script.h"

namespace {

using framework::ScriptRunner;

TEST(ScriptWords, QuotesCommentsAndNodeReferences) {
  struct Case {
    const char *Line;
    std::vector<std::string> Words;
  };
  const Case kCases[] = {
      {"press Next", {"press", "Next"}},
      {"press #108   # the Next button", {"press", "#108"}},
      {"type #201 \"Volume 0\"", {"type", "#201", "Volume 0"}},
      {"type Name \"say \\\"hi\\\"\"", {"type", "Name", "say \"hi\""}},
      {"# a comment line", {}},
      {"   ", {}},
      {"choose Mode #1", {"choose", "Mode", "#1"}},
  };
  for (const Case &Each : kCases) {
    std::string Problem;
    EXPECT_EQ(ScriptRunner::Words(Each.Line, &Problem), Each.Words) << Each.Line;
    EXPECT_EQ(Problem, "");
  }
  std::string Problem;
  EXPECT_TRUE(ScriptRunner::Words("type Name \"open", &Problem).empty());
  EXPECT_EQ(Problem, "unterminated quoted text");
}

TEST_F(FrameworkTest, ScriptDrivesAWholeSession) {
  std::ostringstream Out;
  ScriptRunner Runner(Driver, Out);
  const char *kScript = R"(# Pick the first adapter and tick two drives.
expect-title "Demo - Select Adapter"
choose #101 "Adapter A     PCI slot 1"
tick "Show advanced settings"
expect-state #105 shown
tick-cell #107 1 2
choose-cell #107 1 3 DHS
tick-cell #107 2 2
expect-cell #107 1 3 DHS
select #107 "Disk 1"
answer no
press Remove
expect-message "remove the drive"
press Next
type #201 Volume0
slide #202 300
expect-text #203 "Capacity: 300 GB"
press Create
language fr-FR
expect-text #208 Retour
)";
  ASSERT_TRUE(Runner.RunText(kScript, "session")) << Runner.Errors()[0].Line
                                                  << ": " << Runner.Errors()[0].Message;
  EXPECT_EQ(demo::Current().Drives.size(), 4u) << "the answer was No";
  EXPECT_EQ(demo::Current().Roles[0], 1u);
  EXPECT_EQ(demo::Current().VolumeName, u"Volume0");
  EXPECT_EQ(demo::Current().Capacity, 300u);
}

TEST_F(FrameworkTest, ScriptErrorsNameTheirLine) {
  struct Case {
    const char *Script;
    size_t Line;
    const char *Message;
  };
  const Case kCases[] = {
      {"press Nowhere\n", 1, "no control \"Nowhere\" on the page shown"},
      {"press\n", 1, "\"press\" takes 1 word(s)"},
      {"choose #101 \"Adapter C     (not supported)\"\n", 1,
       "the control is hidden, grayed or not on the page shown"},
      {"expect-state #105 shown\n", 1, "the control is hidden"},
      {"slide #101 many\n", 1, "slide takes a number"},
      {"answer maybe\n", 1, "answer yes or no"},
      {"language tlh\n", 1, "no such option, row or language"},
      {"press Next\nfly away\n", 2, "unknown action \"fly\""},
  };
  for (const Case &Each : kCases) {
    std::ostringstream Out;
    ScriptRunner Runner(Driver, Out);
    EXPECT_FALSE(Runner.RunText(Each.Script, "bad"));
    ASSERT_EQ(Runner.Errors().size(), 1u);
    EXPECT_EQ(Runner.Errors()[0].Line, Each.Line) << Each.Script;
    EXPECT_EQ(Runner.Errors()[0].Message, Each.Message) << Each.Script;
  }
}

TEST_F(FrameworkTest, ScriptDumpPrintsTheScreen) {
  std::ostringstream Out;
  ScriptRunner Runner(Driver, Out);
  ASSERT_TRUE(Runner.RunText("dump\n", "dump"));
  EXPECT_EQ(Out.str(), Driver.Dump());
  ScriptRunner Missing(Driver, Out);
  EXPECT_FALSE(Missing.RunFile("/nonexistent/script.txt"));
}

}  // namespace
