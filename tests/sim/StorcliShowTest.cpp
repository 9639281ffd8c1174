// The show reports of the virtual storcli: whole outputs against the golden
// files, and what the module's reading rules get out of them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "ModuleReader.h"
#include "StorcliTestSupport.h"
#include "sim/megaraid/Capacity.h"
#include "sim/megaraid/StorcliShow.h"

namespace sim::megaraid::test {
namespace {

std::string ReadFile(const std::string &Path) {
  std::ifstream In(Path, std::ios::binary);
  std::ostringstream Text;
  Text << In.rdbuf();
  return Text.str();
}

// Compares Output with golden/<Name> line by line; SIM_UPDATE_GOLDEN=1
// rewrites the file instead.
void ExpectGolden(const std::string &Name, const std::string &Output) {
  const std::string Path = std::string(SIM_GOLDEN_DIR) + "/" + Name;
  if (std::getenv("SIM_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(Path, std::ios::binary) << Output;
    return;
  }
  const std::string Golden = ReadFile(Path);
  ASSERT_FALSE(Golden.empty()) << Path;
  std::istringstream Want(Golden), Got(Output);
  std::string WantLine, GotLine;
  for (int Number = 1; std::getline(Want, WantLine); ++Number) {
    ASSERT_TRUE(std::getline(Got, GotLine)) << Name << ": ends before line " << Number;
    EXPECT_EQ(WantLine, GotLine) << Name << " line " << Number;
  }
  EXPECT_FALSE(std::getline(Got, GotLine)) << Name << ": extra line " << GotLine;
}

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

TEST(StorcliShowTest, ControllerSummaryReadsBackAsTheAdapterState) {
  auto Tool = RichTool();
  const Adapter &State = Tool.Adapters()[0];
  const auto Read = ReadControllerShow(Tool.Run(Line("/c0 show")));
  EXPECT_EQ(Read.Status, "Success");
  EXPECT_EQ(Read.ProductName, "AVAGO MegaRAID SAS 9361-8i");
  EXPECT_EQ(Read.SerialNumber, "SK72938411");
  EXPECT_EQ(Read.FwPackageBuild, "24.21.0-0148");

  ASSERT_EQ(Read.Arrays.size(), 2u);
  EXPECT_EQ(Read.Arrays[0].Dg, "0");
  EXPECT_EQ(Read.Arrays[0].Type, "RAID1");
  EXPECT_EQ(Read.Arrays[0].Size + " " + Read.Arrays[0].Unit, "931.000 GB");
  EXPECT_EQ(Read.Arrays[1].Type, "RAID5");
  EXPECT_EQ(Read.Arrays[1].Size + " " + Read.Arrays[1].Unit,
            FormatSize(State.GroupCapacityMb(1)));

  ASSERT_EQ(Read.Volumes.size(), 3u);
  const char *const DgVd[] = {"0/0", "1/1", "1/2"};
  const char *const Names[] = {"os", "data", "logs"};
  for (size_t Index = 0; Index < 3; ++Index) {
    EXPECT_EQ(Read.Volumes[Index].DgVd, DgVd[Index]);
    EXPECT_EQ(Read.Volumes[Index].State, "Optl");
    EXPECT_EQ(Read.Volumes[Index].Name, Names[Index]);
  }
  EXPECT_EQ(Read.Volumes[1].Size, "500.000");
  EXPECT_EQ(Read.Volumes[1].Unit, "GB");

  ASSERT_EQ(Read.Drives.size(), State.Drives().size());
  for (size_t Index = 0; Index < Read.Drives.size(); ++Index) {
    const auto &Drive = State.Drives()[Index];
    const auto &Row = Read.Drives[Index];
    EXPECT_EQ(Row.Location, Drive.Address.Text());
    EXPECT_EQ(Row.Did, std::to_string(Drive.DeviceId));
    EXPECT_EQ(Row.State, DriveStateWord(Drive.State));
    EXPECT_EQ(Row.Size + " " + Row.Unit, FormatSize(Drive.SizeMb));
    EXPECT_EQ(Row.Interface, InterfaceWord(Drive.Interface));
    EXPECT_EQ(Row.Medium, MediumWord(Drive.Medium));
    EXPECT_EQ(Row.Model, Drive.Model);
    EXPECT_EQ(Row.Size.find('B'), std::string::npos) << "slid columns";
  }
  // DG column: members and the dedicated spare name their group, the
  // foreign drive "F", the others "-".
  EXPECT_EQ(Read.Drives[0].Dg, "0");
  EXPECT_EQ(Read.Drives[5].Dg, "1");
  EXPECT_EQ(Read.Drives[5].State, "DHS");
  EXPECT_EQ(Read.Drives[8].Dg, "F");
  EXPECT_EQ(Read.Drives[8].State, "UGood");
  EXPECT_EQ(Read.Drives[7].State, "JBOD");
  EXPECT_EQ(Read.Drives[11].State, "GHS");
  EXPECT_EQ(Read.Drives[11].Dg, "-");
}

TEST(StorcliShowTest, BusDeviceFunctionFollowEachOther) {
  auto Tool = RichTool();
  const auto Bdf = ReadBusDeviceFunction(Tool.Run(Line("/c0 show")));
  ASSERT_TRUE(Bdf.has_value());
  EXPECT_EQ(*Bdf, (std::array<uint32_t, 3>{3, 0, 0}));
}

TEST(StorcliShowTest, FreeSpaceSegmentsFollowTheirVolumes) {
  auto Tool = RichTool();
  const auto Segments = ReadFreeSpace(Tool.Run(Line("/c0 show freespace")));
  ASSERT_EQ(Segments.size(), 4u);
  struct Want {
    const char *Id, *Dg, *After, *Size, *Unit;
  };
  const Want Expected[] = {{"0", "0", "0", "831.000", "GB"},
                           {"1", "1", "-", "50.000", "GB"},
                           {"2", "1", "1", "100.000", "GB"},
                           {"3", "1", "2", "1012.000", "GB"}};
  for (size_t Index = 0; Index < 4; ++Index) {
    EXPECT_EQ(Segments[Index].Id, Expected[Index].Id);
    EXPECT_EQ(Segments[Index].Dg, Expected[Index].Dg);
    EXPECT_EQ(Segments[Index].AfterVd, Expected[Index].After);
    EXPECT_EQ(Segments[Index].Size, Expected[Index].Size);
    EXPECT_EQ(Segments[Index].Unit, Expected[Index].Unit);
  }
}

TEST(StorcliShowTest, FullGroupHasNoFreeSegmentAndTableStaysEmpty) {
  Storcli Tool({AdapterFromJson(nlohmann::json::parse(R"({
    "drives": [{"address": "8:0", "sizeMb": 1000}, {"address": "8:1", "sizeMb": 1000}],
    "driveGroups": [{"raidLevel": 0, "members": ["8:0", "8:1"],
                     "virtualDrives": [{"sizeMb": 2000}]}]})"))});
  EXPECT_TRUE(ReadFreeSpace(Tool.Run(Line("/c0 show freespace"))).empty());
}

struct VolumePropertyCase {
  const char *Arguments;
  const char *Strip;
  const char *DiskCache;
  const char *Cache;
};

class VolumePropertyTest : public ::testing::TestWithParam<VolumePropertyCase> {};

TEST_P(VolumePropertyTest, ReadsStripDiskCacheAndCacheWord) {
  auto Tool = RichTool();
  const auto Read = ReadVolumeShowAll(Tool.Run(Line(GetParam().Arguments)));
  EXPECT_EQ(Read.StripValue, GetParam().Strip);
  EXPECT_EQ(Read.DiskCacheValue, GetParam().DiskCache);
  EXPECT_EQ(Read.CacheWord, GetParam().Cache);
}

INSTANTIATE_TEST_SUITE_P(
    Rich, VolumePropertyTest,
    ::testing::Values(
        VolumePropertyCase{"/c0/v0 show all", " 64 KB\r", " Disabled\r", "RWTC"},
        VolumePropertyCase{"/c0/v1 show all", " 1.0 MB\r", " Enabled\r", "NRAWBD"},
        VolumePropertyCase{"/c0/v2 show all", " 256 KB\r", " Disk's Default\r", "RWBD"}));

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
