// The changing commands of the virtual storcli on the rich adapter: each
// one's whole effect on the adapter's state (the dump before, with the
// intended change applied, must equal the dump after), its verdict as the
// module reads it, and the refusals with their failure text.
#include <gtest/gtest.h>

#include <functional>

#include "ModuleReader.h"
#include "StorcliTestSupport.h"

namespace sim::megaraid::test {
namespace {

using nlohmann::json;

struct ChangeCase {
  const char *Name;
  const char *Arguments;
  uint32_t ErrorCode;  // as the module's volume verdict reads it
  const char *Description;  // the Description line, or "" for none
  std::function<void(json &)> Change;  // on the dump of the state before
};

std::ostream &operator<<(std::ostream &Out, const ChangeCase &Case) {
  return Out << Case.Name;
}

constexpr uint32_t kNoErrorCode = 0x20100e;

// Drive index in the dump: the rich adapter's drives are 252:0..252:11.
json &Drive(json &State, int Slot) { return State["drives"][Slot]; }

void Unchanged(json &) {}

class StorcliChangeTest : public ::testing::TestWithParam<ChangeCase> {};

TEST_P(StorcliChangeTest, ChangesExactlyWhatItSays) {
  const ChangeCase &Case = GetParam();
  auto Tool = RichTool();
  json Expected = AdapterToJson(Tool.Adapters()[0]);
  Case.Change(Expected);
  const std::string Output = Tool.Run(Line(Case.Arguments));
  EXPECT_EQ(ReadErrorCode(Output), Case.ErrorCode) << Output;
  EXPECT_EQ(ReadActionStatus(Output), Case.ErrorCode == 0 ? 1u : 0u) << Output;
  if (*Case.Description != 0) {
    EXPECT_NE(Output.find(std::string("Description = ") + Case.Description + "\r\n"),
              std::string::npos)
        << Output;
  }
  EXPECT_EQ(AdapterToJson(Tool.Adapters()[0]).dump(2), Expected.dump(2));
  EXPECT_EQ(Tool.Adapters()[0].Validate(), "");
}

json NewVolume(uint32_t Number, const char *Name, uint64_t Offset, uint64_t Size,
               uint32_t Strip, const char *Read, const char *Write, const char *Io,
               const char *DiskCache) {
  return {{"number", Number}, {"name", Name},       {"offsetMb", Offset},
          {"sizeMb", Size},     {"stripKb", Strip},  {"readPolicy", Read},
          {"writePolicy", Write}, {"ioPolicy", Io}, {"diskCache", DiskCache}};
}

INSTANTIATE_TEST_SUITE_P(
    DriveCommands, StorcliChangeTest,
    ::testing::Values(
        ChangeCase{"SetJbodOnUGood", "/c0/e252/s9 set jbod", 0,
                   "Set Drive JBOD Succeeded.",
                   [](json &S) { Drive(S, 9)["state"] = "JBOD"; }},
        ChangeCase{"GlobalSpare", "/c0/e252/s9 add hotsparedrive", 0,
                   "Add Hot Spare Succeeded.",
                   [](json &S) { Drive(S, 9)["state"] = "GHS"; }},
        ChangeCase{"DedicatedSpare", "/c0/e252/s9 add hotsparedrive dgs=0", 0, "",
                   [](json &S) {
                     Drive(S, 9)["state"] = "DHS";
                     S["driveGroups"][0]["dedicatedSpares"] = {"252:9"};
                   }},
        ChangeCase{"DeleteDedicatedSpare", "/c0/e252/s5 delete hotsparedrive", 0, "",
                   [](json &S) {
                     Drive(S, 5)["state"] = "UGood";
                     S["driveGroups"][1]["dedicatedSpares"] = json::array();
                   }},
        ChangeCase{"AllToJbod", "/c0/eall/sall set jbod", kNoErrorCode,
                   "Set Drive JBOD Failed.",
                   [](json &S) {
                     Drive(S, 6)["state"] = "JBOD";
                     Drive(S, 9)["state"] = "JBOD";
                   }},
        ChangeCase{"RefuseJbodOnMember", "/c0/e252/s0 set jbod", kNoErrorCode,
                   "Set Drive JBOD Failed.", Unchanged},
        ChangeCase{"RefuseDeleteJbodOnUBad", "/c0/e252/s10 del jbod force",
                   kNoErrorCode, "", Unchanged},
        ChangeCase{"RefuseSpareOnJbod", "/c0/e252/s7 add hotsparedrive",
                   kNoErrorCode, "Add Hot Spare Failed.", Unchanged},
        ChangeCase{"RefuseSpareOnForeign", "/c0/e252/s8 add hotsparedrive",
                   kNoErrorCode, "", Unchanged},
        ChangeCase{"RefuseUnknownDrive", "/c0/e252/s99 set jbod", kNoErrorCode, "",
                   Unchanged},
        ChangeCase{"RefuseOnlineOnUnconfigured", "/c0/e252/s9 set online",
                   kNoErrorCode, "", Unchanged},
        ChangeCase{"RefuseSpareForUnknownGroup",
                   "/c0/e252/s9 add hotsparedrive dgs=5", kNoErrorCode, "",
                   Unchanged},
        ChangeCase{"RefuseDeleteSpareOnUGood", "/c0/e252/s9 delete hotsparedrive",
                   kNoErrorCode, "", Unchanged}),
    [](const auto &Info) { return std::string(Info.param.Name); });

INSTANTIATE_TEST_SUITE_P(
    VolumeCommands, StorcliChangeTest,
    ::testing::Values(
        ChangeCase{"DeleteVolumeKeepsGroup", "/c0/v2 del force", 0,
                   "Delete VD succeeded",
                   [](json &S) { S["driveGroups"][1]["virtualDrives"].erase(1); }},
        ChangeCase{"DeleteForeign", "/c0/fall delete", 0,
                   "Successfully deleted foreign configuration",
                   [](json &S) { Drive(S, 8)["foreign"] = false; }},
        ChangeCase{"CreateNewGroupFullForm",
                   "/c0 add vd raid1 size=100.000GB name=new drives=252:6,9   "
                   "pdcache=on cached wt nora strip=128  ",
                   0, "Add VD Succeeded.",
                   [](json &S) {
                     Drive(S, 6)["state"] = "Onln";
                     Drive(S, 9)["state"] = "Onln";
                     S["driveGroups"].push_back(
                         {{"raidLevel", 1},
                          {"drivesPerSpan", 2},
                          {"members", {"252:6", "252:9"}},
                          {"dedicatedSpares", json::array()},
                          {"virtualDrives",
                           {NewVolume(3, "new", 0, 102400, 128, "nora", "wt",
                                      "cached", "on")}}});
                   }},
        ChangeCase{"CreateNewGroupShortFormTakesAllSpace",
                   "/c0 add vd raid0   drives=252:9   pdcache=default", 0, "",
                   [](json &S) {
                     Drive(S, 9)["state"] = "Onln";
                     S["driveGroups"].push_back(
                         {{"raidLevel", 0},
                          {"drivesPerSpan", 1},
                          {"members", {"252:9"}},
                          {"dedicatedSpares", json::array()},
                          {"virtualDrives",
                           {NewVolume(3, "", 0, 953344, 256, "ra", "wb", "direct",
                                      "default")}}});
                   }},
        ChangeCase{"CreateInHeadSegmentWithoutAfterVd",
                   "/c0 add vd raid5 size=10.000GB name=head drives=252:2,3,4   "
                   "pdcache=default wb ra  ",
                   0, "",
                   [](json &S) {
                     auto &Volumes = S["driveGroups"][1]["virtualDrives"];
                     Volumes.insert(Volumes.begin(),
                                    NewVolume(3, "head", 0, 10240, 256, "ra", "wb",
                                              "direct", "default"));
                   }},
        ChangeCase{"CreateRestOfSegment",
                   "/c0 add vd raid1 name=rest drives=252:0,1 pdcache=default "
                   "AfterVd=0",
                   0, "",
                   [](json &S) {
                     S["driveGroups"][0]["virtualDrives"].push_back(
                         NewVolume(3, "rest", 102400, 850944, 256, "ra", "wb",
                                   "direct", "default"));
                   }},
        ChangeCase{"RefuseForeignDrive",
                   "/c0 add vd raid1 drives=252:8,9 pdcache=default", kNoErrorCode,
                   "resources already in use", Unchanged},
        ChangeCase{"RefuseDriveCount", "/c0 add vd raid5 drives=252:6,9 pdcache=default",
                   kNoErrorCode, "Invalid number of drives for RAID level 5",
                   Unchanged},
        ChangeCase{"RefuseRaid10WithoutSpans",
                   "/c0 add vd raid10 drives=252:6,9 pdperarray=0 pdcache=default",
                   kNoErrorCode, "", Unchanged},
        ChangeCase{"RefuseUnknownDrive",
                   "/c0 add vd raid1 drives=252:6,99 pdcache=default", 0x20100C, "",
                   Unchanged},
        ChangeCase{"RefuseOtherLevelForGroup",
                   "/c0 add vd raid0 drives=252:0,1 pdcache=default", 0x20101E, "",
                   Unchanged},
        ChangeCase{"RefuseAfterVdWithoutSpace",
                   "/c0 add vd raid5 drives=252:2,3,4 pdcache=default AfterVd=0",
                   kNoErrorCode, "No free space after VD 0", Unchanged},
        ChangeCase{"RefuseStripSize",
                   "/c0 add vd raid0 drives=252:9 pdcache=default strip=4096",
                   kNoErrorCode, "Invalid strip size", Unchanged},
        ChangeCase{"RefuseUnknownVolume", "/c0/v7 del force", kNoErrorCode,
                   "VD 7 doesn't exist", Unchanged},
        ChangeCase{"RefuseUnknownController", "/c4/v0 del force", kNoErrorCode,
                   "Controller 4 not found", Unchanged},
        ChangeCase{"SyntaxFailure", "/c0 add vd raid7 drives=252:9", kNoErrorCode,
                   "Invalid input at or near token raid7", Unchanged}),
    [](const auto &Info) { return std::string(Info.param.Name); });

TEST(StorcliLimitsTest, RefusesVolumesBeyondTheGroupAndAdapterLimits) {
  for (const char *Limit : {"maxVolumesPerGroup", "maxVolumes"}) {
    auto Json = json::parse(kRichAdapterJson);
    Json["limits"][Limit] = std::string(Limit) == "maxVolumes" ? 3 : 2;
    Storcli Tool({AdapterFromJson(Json)});
    const std::string Before = CanonicalState(Tool.Adapters()[0]);
    const std::string Output = Tool.Run(
        Line("/c0 add vd raid5 size=1GB drives=252:2-4 pdcache=default AfterVd=2"));
    EXPECT_EQ(ReadErrorCode(Output), 0x20101Au) << Limit << "\n" << Output;
    EXPECT_NE(Output.find("Maximum LDs are already configured"), std::string::npos);
    EXPECT_EQ(CanonicalState(Tool.Adapters()[0]), Before);
  }
}

TEST(StorcliLimitsTest, RefusesMixedInterfacesAndForeignDeleteWithoutForeignDrives) {
  auto Json = json::parse(kRichAdapterJson);
  Json["drives"][8]["foreign"] = false;
  Storcli Tool({AdapterFromJson(Json)});
  EXPECT_EQ(ReadErrorCode(Tool.Run(Line("/c0 add vd raid1 drives=252:8,9 pdcache=default"))),
            0x201026u);
  EXPECT_EQ(ReadErrorCode(Tool.Run(Line("/c0/fall delete"))), 0x20100eu);
}

TEST(StorcliLimitsTest, JbodDisabledRefusesSetJbod) {
  auto Json = json::parse(kRichAdapterJson);
  Json["limits"]["jbodEnabled"] = false;
  Storcli Tool({AdapterFromJson(Json)});
  EXPECT_EQ(ReadActionStatus(Tool.Run(Line("/c0/e252/s9 set jbod"))), 0u);
}

// Deleting a group renumbers the groups behind it, as the firmware does,
// and the next new group takes the number the module predicts (the count
// of groups).
TEST(StorcliSequenceTest, GroupsAreRenumberedAfterADelete) {
  auto Tool = RichTool();
  ASSERT_EQ(ReadErrorCode(Tool.Run(Line("/c0/v0 del force"))), 0u);
  auto Read = ReadControllerShow(Tool.Run(Line("/c0 show")));
  ASSERT_EQ(Read.Arrays.size(), 1u);
  EXPECT_EQ(Read.Arrays[0].Dg, "0");
  EXPECT_EQ(Read.Volumes[0].DgVd, "0/1");
  ASSERT_EQ(ReadErrorCode(Tool.Run(Line(
                "/c0 add vd raid1 drives=252:0,1 pdcache=default"))),
            0u);
  ASSERT_EQ(ReadErrorCode(Tool.Run(Line("/c0/e252/s9 add hotsparedrive dgs=1"))), 0u);
  Read = ReadControllerShow(Tool.Run(Line("/c0 show")));
  EXPECT_EQ(Read.Volumes.front().DgVd, "1/0");  // lowest free target id
  EXPECT_EQ(Read.Drives[9].Dg, "1");
  EXPECT_EQ(Read.Drives[9].State, "DHS");
}

}  // namespace
}  // namespace sim::megaraid::test
