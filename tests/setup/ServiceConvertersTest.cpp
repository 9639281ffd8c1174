// Words and codes of the wizard's screens, and the size texts.
#include <gtest/gtest.h>

#include <string>

#include "setup/RaidServiceLayer.h"

namespace setup_test {
namespace {

std::string Narrow(const CHAR16 *Text) {
  std::string Out;
  for (; Text != nullptr && *Text != 0; Text++) {
    Out += static_cast<char>(*Text);
  }
  return Out;
}

struct PolicyKind {
  const char *Name;
  UINT32 (*Code)(const CHAR16 *);
  const CHAR16 *(*Word)(UINT32);
  std::vector<std::pair<const CHAR16 *, UINT32>> Pairs;
  UINT32 Other;
};

TEST(ServiceConverters, WordsAndCodesOfEveryPolicyList) {
  const PolicyKind Kinds[] = {
      {"stripe", RaidStripeSizeCode, RaidStripeSizeWord,
       {{u"2K", 2}, {u"4K", 4}, {u"8K", 8}, {u"16K", 16}, {u"32K", 32},
        {u"64K", 64}, {u"128K", 128}, {u"256K", 256}, {u"512K", 512},
        {u"1024K", 1024}, {u"2048K", 2048}},
       2049},
      {"read", RaidReadPolicyCode, RaidReadPolicyWord,
       {{u"Read Ahead", 0}, {u"No Read Ahead", 1}}, 2},
      {"write", RaidWritePolicyCode, RaidWritePolicyWord,
       {{u"Write Through", 0}, {u"Write Back", 1}, {u"Always Write Back", 2}},
       3},
      {"io", RaidIoPolicyCode, RaidIoPolicyWord,
       {{u"Cached", 0}, {u"Direct", 1}}, 2},
      {"disk cache", RaidDiskCachePolicyCode, RaidDiskCachePolicyWord,
       {{u"Disable", 0}, {u"Enable", 1}, {u"Unchanged", 2}}, 3},
  };
  for (const PolicyKind &Kind : Kinds) {
    SCOPED_TRACE(Kind.Name);
    for (const auto &[Word, Code] : Kind.Pairs) {
      EXPECT_EQ(Kind.Code(Word), Code) << Narrow(Word);
      EXPECT_EQ(Narrow(Kind.Word(Code)), Narrow(Word));
    }
    // The whole word is compared; the "other" code has no word.
    EXPECT_EQ(Kind.Code(u""), Kind.Other);
    EXPECT_EQ(Kind.Code(nullptr), Kind.Other);
    EXPECT_EQ(Kind.Code(u"Cached "), Kind.Other);
    EXPECT_EQ(Narrow(Kind.Word(Kind.Other)), "N/A");
  }
  // raid.xml's words are not the screen's.
  EXPECT_EQ(RaidReadPolicyCode(u"Always read ahead"), 2u);
  EXPECT_EQ(RaidDiskCachePolicyCode(u"On"), 3u);
  EXPECT_EQ(RaidStripeSizeCode(u"64k"), 2049u);
}

TEST(ServiceConverters, RaidLevelWords) {
  const std::pair<const CHAR16 *, UINT32> Levels[] = {
      {u"RAID 0", 0},   {u"RAID 1", 1},   {u"RAID 5", 5},  {u"RAID 6", 6},
      {u"RAID 10", 10}, {u"RAID 50", 50}, {u"RAID 60", 60}};
  for (const auto &[Word, Level] : Levels) {
    EXPECT_EQ(RaidLevelNumber(Word), Level) << Narrow(Word);
  }
  for (const CHAR16 *Word : {u"RAID 2", u"RAID0", u"raid 1", u"", u"RAID 1 "}) {
    EXPECT_EQ(RaidLevelNumber(Word), RAID_LEVEL_NONE) << Narrow(Word);
  }
}

struct SizeCase {
  UINT64 Figure;
  UINT64 Fraction;
  UINT32 Unit;
  const char *Text;
  const char *WithFree;  // "x" followed by the free suffix of the same size
};

TEST(ServiceConverters, SizeTextsInWholeGigabytes) {
  const SizeCase Cases[] = {
      {2048, 0, RAID_UNIT_MB, "2 GB", "x (2 GB free)"},
      {1023, 999, RAID_UNIT_MB, "0 GB", "x (0 GB free)"},
      {930, 500, RAID_UNIT_GB, "930 GB", "x (930 GB free)"},
      {1, 90, RAID_UNIT_TB, "1116 GB", "x (1116 GB free)"},
      {0, 500, RAID_UNIT_TB, "512 GB", "x (512 GB free)"},
      {7, 0, RAID_UNIT_OTHER, "", "x"},
      {0, 0, RAID_UNIT_OTHER, "", "x (0 GB free)"},
      {0, 0, RAID_UNIT_GB, "0 GB", "x (0 GB free)"},
  };
  for (const SizeCase &Case : Cases) {
    SCOPED_TRACE(Case.Text);
    CHAR16 Buffer[32] = {};
    RaidFormatSizeText(Buffer, sizeof(Buffer), Case.Figure, Case.Fraction,
                       Case.Unit);
    EXPECT_EQ(Narrow(Buffer), Case.Text);
    CHAR16 Free[32] = u"x";
    RaidAppendFreeSizeText(Free, sizeof(Free), Case.Figure, Case.Fraction,
                           Case.Unit);
    EXPECT_EQ(Narrow(Free), Case.WithFree);
  }
}

TEST(ServiceConverters, SizeTextsStayInTheirBuffers) {
  CHAR16 Buffer[6];
  for (CHAR16 &Char : Buffer) {
    Char = u'#';
  }
  RaidFormatSizeText(Buffer, 4 * sizeof(CHAR16), 123456, 0, RAID_UNIT_GB);
  EXPECT_EQ(Narrow(Buffer).substr(0, 3), "123");
  EXPECT_EQ(Buffer[3], 0);
  EXPECT_EQ(Buffer[4], u'#');

  CHAR16 Unterminated[3] = {u'a', u'b', u'c'};
  RaidAppendFreeSizeText(Unterminated, sizeof(Unterminated), 1, 0, RAID_UNIT_GB);
  EXPECT_EQ(Unterminated[2], u'c');
}

TEST(ServiceConverters, LeadingBlanksAreSkipped) {
  EXPECT_EQ(Narrow(RaidSkipLeadingBlanks(u"     VD0: data")), "VD0: data");
  EXPECT_EQ(Narrow(RaidSkipLeadingBlanks(u"   ")), "");
  EXPECT_EQ(Narrow(RaidSkipLeadingBlanks(u"x ")), "x ");
  EXPECT_EQ(RaidSkipLeadingBlanks(nullptr), nullptr);
}

}  // namespace
}  // namespace setup_test
