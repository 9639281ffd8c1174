// The one builder of the tools' command lines: texts that would not reach a
// tool as one word, and lines that would not fit, are refused before
// anything runs. The texts are names as hostile tool outputs print them.
#include <gtest/gtest.h>

#include <string>

#include "RaidLib.h"
#include "RaidLibToolRunner.h"
#include "RaidTestSupport.h"
#include "TestPool.h"

#include "../../raidcfg/proto/EsaDrvLibPkg/Lsi/LsiBackend.h"
#include "../../raidcfg/proto/EsaDrvLibPkg/M2/M2Backend.h"
#include "../../raidcfg/proto/EsaDrvLibPkg/Mchp/MchpBackend.h"
#include "../../raidcfg/proto/EsaDrvLibPkg/Rste/RsteBackend.h"

namespace {

using test::Narrow;

// Each family's rule for a text argument, in the order of the table's
// columns.
constexpr UINT32 kFamilyWords[] = {LSI_TOOL_WORDS, MCHP_TOOL_WORDS,
                                   RSTE_TOOL_WORDS, M2_TOOL_WORDS};
constexpr const char *kFamilyNames[] = {"storcli", "arcconf", "RCfgSata",
                                        "mvsetup"};

TEST(RaidLibCommandLine, ATextReachesTheToolAsOneWordOrNothingRuns) {
  const struct {
    const char16_t *Text;
    // Taken by storcli, arcconf, RCfgSata, mvsetup.
    bool Taken[4];
  } Cases[] = {
      {u"Data_1", {true, true, true, true}},
      {u"vd-1.a:b", {true, true, true, true}},
      {u"\u00c9t\u00e9", {true, true, true, true}},
      {u"Data/1", {false, true, false, true}},
      {u"Data_1/Y", {false, true, false, true}},
      {u"-b", {true, true, true, false}},
      {u"", {false, false, false, false}},
      {u"Data 1", {false, false, false, false}},
      {u"Da\tta", {false, false, false, false}},
      {u"Data\r\n", {false, false, false, false}},
      {u"a\x7f", {false, false, false, false}},
      {u"\"os\"", {false, false, false, false}},
      {u"vd^1", {false, false, false, false}},
      {u"%PATH%", {false, false, false, false}},
      {u"a>b", {false, false, false, false}},
      {u"a<b", {false, false, false, false}},
      {u"a|b", {false, false, false, false}},
      {u"#1", {false, false, false, false}},
  };
  test::ScopedTestPool Pool;
  test::TraceCapture Trace;
  for (const auto &Case : Cases) {
    for (std::size_t Family = 0; Family < std::size(kFamilyWords); Family++) {
      SCOPED_TRACE(std::string(kFamilyNames[Family]) + " \"" +
                   Narrow(Case.Text) + "\"");
      Trace.Clear();
      CHAR16 Line[64];
      UINT32 ErrorCode = 0;
      const EFI_STATUS Status = RaidLibFormatCommand(
          "Caller", Line, std::size(Line), kFamilyWords[Family], &ErrorCode,
          u"%S /c%u name=%W /v%u", u"tool.efi", 0u, Case.Text, 4294967295u);
      if (Case.Taken[Family]) {
        EXPECT_EQ(Status, EFI_SUCCESS);
        EXPECT_EQ(ErrorCode, 0u);
        EXPECT_EQ(Narrow(Line), "tool.efi /c0 name=" + Narrow(Case.Text) +
                                    " /v4294967295");
        EXPECT_TRUE(Trace.Lines().empty());
        continue;
      }
      EXPECT_EQ(Status, EFI_INVALID_PARAMETER);
      EXPECT_EQ(ErrorCode, RAID_ERROR_NOT_ONE_WORD);
      EXPECT_EQ(Narrow(Line), "");  // nothing a caller could run
      ASSERT_EQ(Trace.Lines().size(), 1u);
      EXPECT_EQ(Trace.Lines()[0].rfind("[Caller]\"", 0), 0u) << Trace.Lines()[0];
      EXPECT_NE(Trace.Lines()[0].find("\" would not reach the tool as one "
                                      "word, not run\n"),
                std::string::npos)
          << Trace.Lines()[0];
    }
  }
}

// The longest tool name raid.xml may give fits every family's shortest
// line with ids at their widest; one that does not fit is refused whole.
TEST(RaidLibCommandLine, TheLongestToolNameFitsAndALongerLineIsRefused) {
  test::ScopedTestPool Pool;
  test::TraceCapture Trace;
  const std::u16string Tool =
      std::u16string(RAID_TOOL_NAME_CHARS - 4, u't') + u".efi";
  ASSERT_TRUE(RaidLibIsToolFileName(Tool.c_str()));
  CHAR16 Line[M2_COMMAND_CHARS];
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RaidLibFormatCommand(
                "Caller", Line, M2_COMMAND_CHARS, M2_TOOL_WORDS, &ErrorCode,
                u"%S %d delete -o vd -i %d -f --waiveconfirmation",
                Tool.c_str(), -2147483647 - 1, -2147483647 - 1),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  const std::u16string Longer = std::u16string(80, u't') + u".efi";
  EXPECT_EQ(RaidLibFormatCommand("Caller", Line, M2_COMMAND_CHARS,
                                 M2_TOOL_WORDS, &ErrorCode,
                                 u"%S %d delete -o vd -i %d -f "
                                 u"--waiveconfirmation",
                                 Longer.c_str(), 0, 0),
            EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  ASSERT_EQ(Trace.Lines().size(), 1u);
  EXPECT_EQ(Trace.Lines()[0].rfind("[Caller]Command does not fit in 100 "
                                   "characters, not run: ",
                                   0),
            0u);
}

}  // namespace
