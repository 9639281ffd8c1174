// The show reports of the virtual storcli: whole outputs against the golden
// files, and what the module's reading rules get out of them.
#include <gtest/gtest.h>

#include "Golden.h"
#include "ModuleReader.h"
#include "StorcliTestSupport.h"
#include "sim/megaraid/Capacity.h"
#include "sim/megaraid/StorcliShow.h"

namespace sim::megaraid::test {
namespace {

struct GoldenCase {
  const char *File;
  const char *Arguments;
};

class GoldenShowTest : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenShowTest, MatchesGoldenOutput) {
  auto Tool = RichTool();
  ExpectGolden(GetParam().File, Tool.Run(Line(GetParam().Arguments)));
}

INSTANTIATE_TEST_SUITE_P(
    Rich, GoldenShowTest,
    ::testing::Values(GoldenCase{"ctrlcount.txt", "show ctrlcount"},
                      GoldenCase{"c0-show.txt", "/c0 show"},
                      GoldenCase{"c0-show-freespace.txt", "/c0 show freespace"},
                      GoldenCase{"c0-v1-show-all.txt", "/c0/v1 show all"},
                      GoldenCase{"c0-add-vd-size-too-big.txt",
                                 "/c0 add vd raid1 size=900.000GB name=big "
                                 "drives=252:0,1   pdcache=default   AfterVd=0"},
                      GoldenCase{"c0-set-jbod-online-drive.txt", "/c0/e252/s0 set jbod"},
                      GoldenCase{"syntax-failure.txt", "/c0 frobnicate"}));

TEST(StorcliShowTest, EveryLineEndsInCrLf) {
  auto Tool = RichTool();
  for (const char *Arguments :
       {"show ctrlcount", "/c0 show", "/c0 show freespace", "/c0/v0 show all",
        "/c0/v9 show all", "/c3 show", "/c0/e252/s0 set jbod", "bogus"}) {
    const std::string Output = Tool.Run(Line(Arguments));
    ASSERT_FALSE(Output.empty()) << Arguments;
    ASSERT_EQ(Output.substr(Output.size() - 2), "\r\n") << Arguments;
    for (size_t Pos = Output.find('\n'); Pos != std::string::npos;
         Pos = Output.find('\n', Pos + 1)) {
      ASSERT_TRUE(Pos > 0 && Output[Pos - 1] == '\r') << Arguments << " at " << Pos;
    }
    for (size_t Pos = Output.find('\r'); Pos != std::string::npos;
         Pos = Output.find('\r', Pos + 1)) {
      ASSERT_EQ(Output[Pos + 1], '\n') << Arguments;
    }
  }
}

TEST(StorcliShowTest, FullGroupHasNoFreeSegmentAndTableStaysEmpty) {
  Storcli Tool({AdapterFromJson(nlohmann::json::parse(R"({
    "drives": [{"address": "8:0", "sizeMb": 1000}, {"address": "8:1", "sizeMb": 1000}],
    "driveGroups": [{"raidLevel": 0, "members": ["8:0", "8:1"],
                     "virtualDrives": [{"sizeMb": 2000}]}]})"))});
  EXPECT_TRUE(ReadFreeSpace(Tool.Run(Line("/c0 show freespace"))).empty());
}


TEST(StorcliShowTest, StripSizeTexts) {
  EXPECT_EQ(StripSizeText(8), "8 KB");
  EXPECT_EQ(StripSizeText(512), "512 KB");
  EXPECT_EQ(StripSizeText(1024), "1.0 MB");
  EXPECT_EQ(StripSizeText(2048), "2.000 MB");
}

TEST(StorcliShowTest, ControllersAreNumberedByPciLocation) {
  auto Json = nlohmann::json::parse(kRichAdapterJson);
  auto Second = Json;
  Second["serialNumber"] = "SECOND";
  Second["pci"]["bus"] = 2;
  Storcli Tool({AdapterFromJson(Json), AdapterFromJson(Second)});
  EXPECT_EQ(ReadControllerCount(Tool.Run(Line("show ctrlcount"))), 2u);
  EXPECT_EQ(ReadControllerShow(Tool.Run(Line("/c0 show"))).SerialNumber, "SECOND");
  EXPECT_EQ((*ReadBusDeviceFunction(Tool.Run(Line("/c1 show"))))[0], 3u);
  EXPECT_EQ(ReadControllerShow(Tool.Run(Line("/c2 show"))).Status, "Failure");
}

TEST(StorcliShowTest, AdapterWithoutDrivesPrintsNoTables) {
  Storcli Tool({Adapter()});
  const auto Read = ReadControllerShow(Tool.Run(Line("/c0 show")));
  EXPECT_EQ(Read.Status, "Success");
  EXPECT_TRUE(Read.Arrays.empty());
  EXPECT_TRUE(Read.Drives.empty());
}

}  // namespace
}  // namespace sim::megaraid::test
