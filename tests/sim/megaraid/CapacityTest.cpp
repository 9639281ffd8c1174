// Capacity per RAID level as the virtual adapter computes it for new
// groups, and the size texts the tool prints and reads.
#include <gtest/gtest.h>

#include "ModuleReader.h"
#include "StorcliTestSupport.h"
#include "sim/megaraid/Capacity.h"

namespace sim::megaraid::test {
namespace {

using nlohmann::json;

// Sixteen unconfigured good drives of 1000 MB, slot 15 being 900 MB so
// that the smallest member decides.
Storcli BlankTool() {
  json Drives = json::array();
  for (int Slot = 0; Slot < 16; ++Slot) {
    Drives.push_back({{"address", "9:" + std::to_string(Slot)},
                      {"sizeMb", Slot == 15 ? 900 : 1000}});
  }
  return Storcli({AdapterFromJson({{"drives", Drives}})});
}

struct LevelCase {
  const char *Arguments;
  uint64_t CapacityMb;  // 0: refused
  uint32_t Spans;
};

class LevelCapacityTest : public ::testing::TestWithParam<LevelCase> {};

TEST_P(LevelCapacityTest, NewGroupTakesTheLevelsCapacity) {
  auto Tool = BlankTool();
  const std::string Output = Tool.Run(Line(GetParam().Arguments));
  const auto &State = Tool.Adapters()[0];
  if (GetParam().CapacityMb == 0) {
    EXPECT_EQ(ReadErrorCode(Output), 0x20100eu) << Output;
    EXPECT_TRUE(State.Groups().empty());
    return;
  }
  ASSERT_EQ(ReadErrorCode(Output), 0u) << Output;
  ASSERT_EQ(State.Groups().size(), 1u);
  EXPECT_EQ(State.GroupCapacityMb(0), GetParam().CapacityMb);
  EXPECT_EQ(State.Groups()[0].SpanCount(), GetParam().Spans);
  // No size word: the volume takes the whole group.
  EXPECT_EQ(State.Groups()[0].Volumes[0].SizeMb, GetParam().CapacityMb);
  EXPECT_TRUE(ReadFreeSpace(Tool.Run(Line("/c0 show freespace"))).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Levels, LevelCapacityTest,
    ::testing::Values(
        LevelCase{"/c0 add vd raid0 drives=9:0-2 pdcache=default", 3000, 1},
        LevelCase{"/c0 add vd raid0 drives=9:14,15 pdcache=default", 1800, 1},
        LevelCase{"/c0 add vd raid1 drives=9:0,1 pdcache=default", 1000, 1},
        LevelCase{"/c0 add vd raid1 drives=9:0-3 pdcache=default", 2000, 1},
        LevelCase{"/c0 add vd raid1 drives=9:0-2 pdcache=default", 0, 0},
        LevelCase{"/c0 add vd raid5 drives=9:0-3 pdcache=default", 3000, 1},
        LevelCase{"/c0 add vd raid5 drives=9:0,1 pdcache=default", 0, 0},
        LevelCase{"/c0 add vd raid6 drives=9:0-4 pdcache=default", 3000, 1},
        LevelCase{"/c0 add vd raid10 drives=9:0-5 pdperarray=2 pdcache=default", 3000, 3},
        LevelCase{"/c0 add vd raid10 drives=9:0-3 pdperarray=3 pdcache=default", 0, 0},
        LevelCase{"/c0 add vd raid10 drives=9:0-4 pdperarray=0 pdcache=default", 0, 0},
        LevelCase{"/c0 add vd raid10 drives=9:0-3 pdcache=default", 0, 0},
        LevelCase{"/c0 add vd raid10 drives=9:0-15 pdperarray=2 pdcache=default", 7200, 8},
        LevelCase{"/c0 add vd raid0 drives=9:0-15 pdperarray=4 pdcache=default", 14400, 1},
        LevelCase{"/c0 add vd raid50 drives=9:0-7 pdperarray=4 pdcache=default", 6000, 2},
        LevelCase{"/c0 add vd raid50 drives=9:0-5 pdperarray=3 pdcache=default", 4000, 2},
        LevelCase{"/c0 add vd raid60 drives=9:0-7 pdperarray=4 pdcache=default", 4000, 2},
        LevelCase{"/c0 add vd raid60 drives=9:0-6 pdperarray=0 pdcache=default", 0, 0}));

TEST(CapacityTest, FormatSizeCutsToThousandthsOfTheLargestUnit) {
  EXPECT_EQ(FormatSize(0), "0.000 MB");
  EXPECT_EQ(FormatSize(1023), "1023.000 MB");
  EXPECT_EQ(FormatSize(1024), "1.000 GB");
  EXPECT_EQ(FormatSize(571800), "558.398 GB");
  EXPECT_EQ(FormatSize(1048575), "1023.999 GB");
  EXPECT_EQ(FormatSize(1048576), "1.000 TB");
  EXPECT_EQ(FormatSize(1142000), "1.089 TB");
}

TEST(CapacityTest, ParseSizeRoundsDownToWholeMegabytes) {
  EXPECT_EQ(ParseSize("100.000GB"), 102400u);
  EXPECT_EQ(ParseSize("1.089TB"), 1141899u);
  EXPECT_EQ(ParseSize("512mb"), 512u);
  EXPECT_EQ(ParseSize("0.5GB"), 512u);
  EXPECT_EQ(ParseSize("558.406 GB"), 571807u);
  EXPECT_FALSE(ParseSize("GB").has_value());
  EXPECT_FALSE(ParseSize("10").has_value());
  EXPECT_FALSE(ParseSize("10PB").has_value());
  EXPECT_FALSE(ParseSize("99999999999999999999TB").has_value());
}

// A size the tool printed, sent back as a size word, always fits in the
// space it was printed for.
TEST(CapacityTest, PrintedFreeSpaceFitsWhenAskedFor) {
  for (uint64_t Mb : {1024ull, 1500ull, 1048577ull, 1142000ull, 3905945ull}) {
    const std::string Text = FormatSize(Mb);
    const auto Back = ParseSize(Text.substr(0, Text.find(' ')) + Text.substr(Text.find(' ') + 1));
    ASSERT_TRUE(Back.has_value()) << Text;
    EXPECT_LE(*Back, Mb) << Text;
    EXPECT_GT(*Back, Mb - Mb / 500) << Text;
  }
}

}  // namespace
}  // namespace sim::megaraid::test
