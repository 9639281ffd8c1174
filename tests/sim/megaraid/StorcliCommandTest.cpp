// Reading storcli command lines: the forms the module writes, with their
// blank words, and the words the tool does not take.
#include <gtest/gtest.h>

#include "sim/megaraid/StorcliCommand.h"

namespace sim::megaraid {
namespace {

TEST(StorcliCommandTest, ReadsTheFullCreateFormWithBlankWords) {
  std::string Bad;
  const auto Command = ParseCommand(
      "storcli.efi /c1 add vd raid50 size=1.500TB name=Vol_1 "
      "drives=252:0,1,2,253:5,6,7 pdperarray=3 pdcache=off direct awb nora "
      "strip=512   mronly nolog",
      Bad);
  ASSERT_TRUE(Command.has_value()) << Bad;
  EXPECT_EQ(Command->Kind, CommandKind::AddVolume);
  EXPECT_EQ(Command->Controller, 1u);
  const auto &Create = Command->Create;
  EXPECT_EQ(Create.RaidLevel, 50u);
  EXPECT_EQ(Create.SizeMb, 1572864u);
  EXPECT_EQ(Create.Name, "Vol_1");
  const std::vector<DriveAddress> Drives = {{252, 0}, {252, 1}, {252, 2},
                                            {253, 5}, {253, 6}, {253, 7}};
  EXPECT_EQ(Create.Drives, Drives);
  EXPECT_EQ(Create.DrivesPerSpan, 3u);
  EXPECT_EQ(Create.DiskCache, DiskCachePolicy::Off);
  EXPECT_EQ(Create.Io, IoPolicy::Direct);
  EXPECT_EQ(Create.Write, WritePolicy::AlwaysWriteBack);
  EXPECT_EQ(Create.Read, ReadPolicy::NoReadAhead);
  EXPECT_EQ(Create.StripKb, 512u);
  EXPECT_FALSE(Create.AfterVd.has_value());
}

TEST(StorcliCommandTest, ReadsAfterVdAndLeavesUnsetPoliciesUnset) {
  std::string Bad;
  const auto Command = ParseCommand(
      "storcli.efi /c0 add vd raid1   drives=8:0,1   pdcache=default AfterVd=3 mronly nolog",
      Bad);
  ASSERT_TRUE(Command.has_value()) << Bad;
  EXPECT_EQ(Command->Create.AfterVd, 3u);
  EXPECT_FALSE(Command->Create.SizeMb.has_value());
  EXPECT_FALSE(Command->Create.Io.has_value());
  EXPECT_FALSE(Command->Create.Write.has_value());
  EXPECT_FALSE(Command->Create.Read.has_value());
  EXPECT_FALSE(Command->Create.StripKb.has_value());
}

struct PathCase {
  const char *Line;
  CommandKind Kind;
  size_t DriveCount;
  bool AllDrives;
};

class StorcliPathTest : public ::testing::TestWithParam<PathCase> {};

TEST_P(StorcliPathTest, ReadsTheObjectAndAction) {
  std::string Bad;
  const auto Command = ParseCommand(GetParam().Line, Bad);
  ASSERT_TRUE(Command.has_value()) << GetParam().Line << ": " << Bad;
  EXPECT_EQ(Command->Kind, GetParam().Kind);
  EXPECT_EQ(Command->Drives.size(), GetParam().DriveCount);
  EXPECT_EQ(Command->AllDrives, GetParam().AllDrives);
}

INSTANTIATE_TEST_SUITE_P(
    ModuleLines, StorcliPathTest,
    ::testing::Values(
        PathCase{"storcli.efi show ctrlcount mronly nolog", CommandKind::ControllerCount, 0, false},
        PathCase{"storcli.efi /c0 show mronly nolog", CommandKind::ShowController, 0, false},
        PathCase{"storcli.efi /c0 show freespace mronly nolog", CommandKind::ShowFreeSpace, 0, false},
        PathCase{"storcli.efi /c0/v12 show all mronly nolog", CommandKind::ShowVolume, 0, false},
        PathCase{"storcli.efi /c0/v1 del force mronly nolog", CommandKind::DeleteVolume, 0, false},
        PathCase{"storcli.efi /c0/fall delete mronly nolog", CommandKind::DeleteForeign, 0, false},
        PathCase{"storcli.efi /c0/e252/s4,5 add hotsparedrive dgs=2 mronly nolog",
                 CommandKind::AddHotSpare, 2, false},
        PathCase{"storcli.efi /c0/e252/s3 add hotsparedrive mronly nolog",
                 CommandKind::AddHotSpare, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 delete hotsparedrive mronly nolog",
                 CommandKind::DeleteHotSpare, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 del jbod force mronly nolog", CommandKind::DeleteJbod, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 set jbod mronly nolog", CommandKind::SetJbod, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 set missing mronly nolog", CommandKind::SetMissing, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 set online mronly nolog", CommandKind::SetOnline, 1, false},
        PathCase{"storcli.efi /c0/e252/s3 set offline mronly nolog", CommandKind::SetOffline, 1, false},
        PathCase{"storcli.efi /c0/eall/sall del jbod force mronly nolog", CommandKind::DeleteJbod, 0, true},
        PathCase{"storcli.efi /c0/eall/sall set jbod mronly nolog", CommandKind::SetJbod, 0, true},
        PathCase{"fs0:\\EFI\\storcli.efi /C0/E8/S0-3 SET JBOD", CommandKind::SetJbod, 4, false}));

class StorcliSyntaxTest : public ::testing::TestWithParam<std::pair<const char *, const char *>> {};

TEST_P(StorcliSyntaxTest, NamesTheWordItCannotTake) {
  std::string Bad;
  EXPECT_FALSE(ParseCommand(GetParam().first, Bad).has_value());
  EXPECT_EQ(Bad, GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Refused, StorcliSyntaxTest,
    ::testing::Values(
        std::pair{"storcli.efi", ""},
        std::pair{"storcli.efi show", "show"},
        std::pair{"storcli.efi /c0 show all now", "all"},
        std::pair{"storcli.efi /cx show", "/cx"},
        std::pair{"storcli.efi /c0/e252 set jbod", "/c0/e252"},
        std::pair{"storcli.efi /c0/eall/s3 set jbod", "/c0/eall/s3"},
        std::pair{"storcli.efi /c0/eall/sall set online", "online"},
        std::pair{"storcli.efi /c0/e252/s5-3 set jbod", "/c0/e252/s5-3"},
        std::pair{"storcli.efi /c0 add vd raid1 drives=252:0,,1", "drives=252:0,,1"},
        std::pair{"storcli.efi /c0 add vd raid1 size=0.5XB drives=252:0,1", "size=0.5XB"},
        std::pair{"storcli.efi /c0 add vd raid1 drives= ", "drives="},
        std::pair{"storcli.efi /c0 add vd raid1 pdcache=maybe drives=1:1", "pdcache=maybe"},
        std::pair{"storcli.efi /c0 add vd raid1 name=x", "name=x"},
        std::pair{"storcli.efi /c0/v1 del now", "now"}));

TEST(StorcliCommandTest, DriveListRanges) {
  const auto Drives = ParseDriveList("252:0-2,7|253:1");
  ASSERT_TRUE(Drives.has_value());
  const std::vector<DriveAddress> Expected = {{252, 0}, {252, 1}, {252, 2}, {252, 7}, {253, 1}};
  EXPECT_EQ(*Drives, Expected);
  EXPECT_FALSE(ParseDriveList("0,1").has_value());
  EXPECT_FALSE(ParseDriveList("252:").has_value());
  EXPECT_FALSE(ParseDriveList("252:999999").has_value());
}

}  // namespace
}  // namespace sim::megaraid
