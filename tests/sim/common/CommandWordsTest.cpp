// Command words: how a line splits, what is dropped, which word a refusal
// names, and the word shapes of the vendor tools.
#include <gtest/gtest.h>

#include "sim/common/CommandWords.h"

namespace sim::common {
namespace {

std::vector<std::string> AllWords(CommandWords Words) {
  std::vector<std::string> Result;
  for (; !Words.Done(); Words.Skip()) {
    Result.push_back(Words.Current());
  }
  return Result;
}

TEST(CommandWordsTest, DropsTheToolAndIgnoredWordsAtAnyBlanks) {
  const std::pair<const char *, std::vector<std::string>> kCases[] = {
      {"storcli.efi /c0 show mronly nolog", {"/c0", "show"}},
      {" fs0:\\EFI\\storcli.efi\t/C0 \r\n SHOW  MrOnly", {"/C0", "SHOW"}},
      {"mronly /c0 nolog show", {"/c0", "show"}},  // the tool is the first word
      {"arcconf.efi GETCONFIG 1 LD", {"GETCONFIG", "1", "LD"}},
      {"storcli.efi", {}},
      {"", {}},
  };
  for (const auto &[Line, Expected] : kCases) {
    EXPECT_EQ(AllWords(CommandWords(Line, {"mronly", "nolog"})), Expected) << Line;
  }
}

TEST(CommandWordsTest, TakesOnlyTheCurrentWordWithoutCase) {
  CommandWords Words("storcli.efi /c0 SHOW all");
  EXPECT_FALSE(Words.Take("show"));
  Words.Skip();
  EXPECT_EQ(Words.CurrentLower(), "show");
  EXPECT_TRUE(Words.Take("show"));
  EXPECT_EQ(Words.Offending(), "all");
  EXPECT_TRUE(Words.Take("all"));
  EXPECT_TRUE(Words.Done());
  EXPECT_EQ(Words.Current(), "");
  EXPECT_FALSE(Words.Take(""));
  EXPECT_EQ(Words.Offending(), "all");  // the last word once all are taken
  Words.Back();
  EXPECT_EQ(Words.Current(), "all");
  EXPECT_EQ(CommandWords("storcli.efi").Offending(), "");
}

TEST(CommandWordsTest, SplitKeepsEmptyPieces) {
  EXPECT_EQ(Split("0,,1", ','), (std::vector<std::string>{"0", "", "1"}));
  EXPECT_EQ(Split("0,", ','), (std::vector<std::string>{"0", ""}));
  EXPECT_EQ(Split(",", ','), (std::vector<std::string>{"", ""}));
  EXPECT_TRUE(Split("", ',').empty());
}

TEST(CommandWordsTest, DecimalTakesWholeNumbersUpToMax) {
  EXPECT_EQ(Decimal("0", 65535), 0u);
  EXPECT_EQ(Decimal("65535", 65535), 65535u);
  EXPECT_EQ(Decimal("4294967295", 0xFFFFFFFF), 0xFFFFFFFFu);
  for (const char *Text : {"", "65536", "000001", "1a", "-1", " 1", "+1", "99999999999"}) {
    EXPECT_FALSE(Decimal(Text, 65535).has_value()) << Text;
  }
}

TEST(CommandWordsTest, KeyedWordsSwitchesAndPaths) {
  const KeyedWord Size = SplitKeyed("Size=100.5GB");
  EXPECT_EQ(Size.Key, "size");
  EXPECT_EQ(Size.Value, "100.5GB");
  EXPECT_EQ(SplitKeyed("drives=").Value, "");
  EXPECT_EQ(SplitKeyed("a=b=c").Value, "b=c");
  EXPECT_EQ(SplitKeyed("RA").Key, "ra");
  EXPECT_FALSE(SplitKeyed("RA").Value.has_value());

  const auto Name = SplitSwitch("/C:Volume_1");
  ASSERT_TRUE(Name.has_value());
  EXPECT_EQ(Name->Key, "c");
  EXPECT_EQ(Name->Value, "Volume_1");
  const auto Version = SplitSwitch("/ST");
  ASSERT_TRUE(Version.has_value());
  EXPECT_EQ(Version->Key, "st");
  EXPECT_FALSE(Version->Value.has_value());
  EXPECT_FALSE(SplitSwitch("C:x").has_value());

  EXPECT_EQ(SplitPath("/c0/E252/s3"), (std::vector<std::string>{"c0", "e252", "s3"}));
  EXPECT_EQ(SplitPath("/c0/"), (std::vector<std::string>{"c0", ""}));
  EXPECT_EQ(SplitPath("/"), std::vector<std::string>{});
  EXPECT_FALSE(SplitPath("c0").has_value());
}

}  // namespace
}  // namespace sim::common
