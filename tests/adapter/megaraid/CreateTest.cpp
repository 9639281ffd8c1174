// Creating volumes through the dispatch: new arrays at every RAID level in
// each of the three command forms, with and without hot spares; volumes in
// an existing array's free segments; creations the adapter refuses. Each
// checks the adapter's whole state against the state before plus exactly
// the new volume, and the model against the adapter.
#include <algorithm>

#include "MegaRaidWorld.h"
#include "EsaDrvMgr.h"
#include "LsiBackend.h"

namespace megaraid_test {
namespace {

using nlohmann::json;

constexpr UINT8 kBus = 3;

// Enclosure 252 slots 0-8 have device ids 0-8, enclosure 253 ids 20-28.
uint32_t DidOf(const std::string &Address) {
  const auto Colon = Address.find(':');
  const uint32_t Slot = std::stoul(Address.substr(Colon + 1));
  return Address.substr(0, Colon) == "252" ? Slot : 20 + Slot;
}

// Eight good SAS drives in each of two enclosures, a JBOD drive and a SATA
// drive.
json FreeDrivesAdapter() {
  json Drives = json::array();
  for (const char *Enclosure : {"252", "253"}) {
    for (int Slot = 0; Slot < 8; ++Slot) {
      const std::string Address = std::string(Enclosure) + ":" + std::to_string(Slot);
      Drives.push_back({{"address", Address}, {"did", DidOf(Address)}, {"sizeMb", 953344}});
    }
  }
  Drives.push_back({{"address", "252:8"}, {"did", 8}, {"sizeMb", 953344}, {"state", "JBOD"}});
  Drives.push_back({{"address", "253:8"}, {"did", 28}, {"sizeMb", 457862},
                    {"interface", "SATA"}, {"medium", "SSD"}});
  return {{"drives", Drives}};
}

// A parameter record with the storage its blocks point at.
struct Request {
  RAID_VOLUME_PARAMETER Parameter{};
  std::vector<UINT32> Drives;
  std::vector<UINT32> Spares;
  std::u16string Name;
};

// A new array of the given drives; policies chosen (nora, wt, cached, on,
// strip 64); Size in thousandths of a GB.
std::unique_ptr<Request> NewArray(RAID_CONTROLLER *Controller, UINT8 Level,
                                  const std::vector<std::string> &Drives,
                                  const std::vector<std::string> &Spares,
                                  UINT64 Size, const std::u16string &Name) {
  auto R = std::make_unique<Request>();
  for (const auto &Address : Drives) R->Drives.push_back(DidOf(Address));
  R->Drives.push_back(RAID_DRIVE_LIST_END);
  for (const auto &Address : Spares) R->Spares.push_back(DidOf(Address));
  R->Spares.push_back(RAID_DRIVE_LIST_END);
  R->Name = Name;
  RAID_VOLUME_PARAMETER &P = R->Parameter;
  P.NewArray = 1;
  P.ControllerId = Controller->Id;
  P.DriveList = R->Drives.data();
  P.DriveCount = static_cast<UINT32>(Drives.size());
  P.RaidLevel = Level;
  P.SpareList = Spares.empty() ? nullptr : R->Spares.data();
  P.Name = R->Name.data();
  P.Size = Size;
  P.Reserved = 1;
  P.StripeSize = 64;
  P.ReadPolicy = RAID_READ_POLICY_NO_READ_AHEAD;
  P.WritePolicy = RAID_WRITE_POLICY_WRITE_THROUGH;
  P.IoPolicy = RAID_IO_POLICY_CACHED;
  P.DiskCachePolicy = RAID_DISK_CACHE_POLICY_ON;
  return R;
}

// The volume json the adapter keeps for a creation in command form Form.
json CreatedVolume(uint32_t Number, const std::string &Name, uint64_t OffsetMb,
                   uint64_t SizeMb, UINT32 Form) {
  const bool Full = Form == 0;
  const bool Middle = Form == 1 || Form == 2;
  return {{"number", Number},
          {"name", Name},
          {"offsetMb", OffsetMb},
          {"sizeMb", SizeMb},
          {"stripKb", Full ? 64 : 256},
          {"readPolicy", Full || Middle ? "nora" : "ra"},
          {"writePolicy", Full || Middle ? "wt" : "wb"},
          {"ioPolicy", Full ? "cached" : "direct"},
          {"diskCache", "on"}};
}

class CreateWorld : public OneAdapterWorld {
 public:
  ~CreateWorld() override { lsi::gLsiCommandForm = 0; }

  // Runs CreateVolume through the dispatch.
  EFI_STATUS Create(Request &R, UINT32 *ErrorCode) {
    *ErrorCode = 0xFFFFFFFF;
    return CreateVolume(&R.Parameter, 0, ErrorCode);
  }

  // The backend's own refresh already shows the adapter; a forced one too.
  VOID ExpectModelCurrent() {
    EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(kBus)).dump(1));
    ExpectModelMatches(kBus);
  }
};

// ---- New arrays -------------------------------------------------------------

struct LevelCase {
  const char *Name;
  UINT8 Level;
  std::vector<std::string> Drives;
  uint32_t DrivesPerSpan;  // what the adapter keeps
};

const LevelCase kLevels[] = {
    {"Raid0", 0, {"252:0", "252:1"}, 2},
    {"Raid1", 1, {"252:0", "252:1"}, 2},
    {"Raid5", 5, {"252:0", "252:1", "252:2"}, 3},
    {"Raid6", 6, {"252:0", "252:1", "252:2", "252:3"}, 4},
    {"Raid10", 10, {"252:0", "252:1", "253:0", "253:1"}, 2},
    {"Raid10x8", 10, {"252:0", "252:1", "252:2", "252:3", "253:0", "253:1", "253:2", "253:3"}, 2},
    {"Raid50", 50, {"252:0", "252:1", "252:2", "253:0", "253:1", "253:2"}, 3},
    {"Raid60", 60, {"252:0", "252:1", "252:2", "252:3", "253:0", "253:1", "253:2", "253:3"}, 4},
};

struct NewArrayCase {
  LevelCase Level;
  UINT32 Form;
  bool WithSpares;
};

class NewArrayTest : public CreateWorld,
                     public ::testing::WithParamInterface<NewArrayCase> {};

TEST_P(NewArrayTest, AddsExactlyTheNewArray) {
  const NewArrayCase &Case = GetParam();
  StartWith(kBus, FreeDrivesAdapter());
  lsi::gLsiCommandForm = Case.Form;
  // Drives are handed over in a scrambled order: the command lists them by
  // enclosure in the controller's drive order.
  std::vector<std::string> Drives(Case.Level.Drives.rbegin(), Case.Level.Drives.rend());
  const std::vector<std::string> Spares =
      Case.WithSpares ? std::vector<std::string>{"252:6", "252:7"} : std::vector<std::string>{};
  auto R = NewArray(Controller, Case.Level.Level, Drives, Spares, 100000, u"vol1");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Create(*R, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);

  json Expected = Before;
  for (const auto &Address : Case.Level.Drives) JsonDrive(Expected, Address)["state"] = "Onln";
  for (const auto &Address : Spares) JsonDrive(Expected, Address)["state"] = "DHS";
  Expected["driveGroups"].push_back(
      {{"raidLevel", Case.Level.Level},
       {"drivesPerSpan", Case.Level.DrivesPerSpan},
       {"members", Case.Level.Drives},
       {"dedicatedSpares", Spares},
       {"virtualDrives", {CreatedVolume(0, "vol1", 0, 102400, Case.Form)}}});
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  ExpectModelCurrent();
}

std::vector<NewArrayCase> NewArrayCases() {
  std::vector<NewArrayCase> Cases;
  for (const LevelCase &Level : kLevels) {
    for (UINT32 Form : {0u, 1u, 3u}) {
      for (bool Spares : {false, true}) {
        Cases.push_back({Level, Form, Spares});
      }
    }
  }
  return Cases;
}

INSTANTIATE_TEST_SUITE_P(
    Levels, NewArrayTest, ::testing::ValuesIn(NewArrayCases()),
    [](const auto &Info) {
      const NewArrayCase &Case = Info.param;
      return std::string(Case.Level.Name) + "Form" + std::to_string(Case.Form) +
             (Case.WithSpares ? "Spares" : "");
    });

// The command lines of each form, word for word.
TEST_F(CreateWorld, CommandLinesOfTheThreeForms) {
  StartWith(kBus, FreeDrivesAdapter());
  const std::vector<std::pair<UINT32, std::string>> Forms = {
      {0, "storcli.efi /c0 add vd raid10 size=100.000GB name=v drives=252:0,1,253:0,1 "
          "pdperarray=2 pdcache=on cached wt nora strip=64  mronly nolog"},
      {2, "storcli.efi /c0 add vd raid10 size=100.000GB name=v drives=252:0,1,253:0,1 "
          "pdperarray=2 pdcache=on wt nora mronly nolog"},
      {7, "storcli.efi /c0 add vd raid10 size=100.000GB name=v drives=252:0,1,253:0,1 "
          "pdperarray=2 pdcache=on mronly nolog"},
  };
  for (const auto &[Form, Line] : Forms) {
    lsi::gLsiCommandForm = Form;
    ClearCommands();
    auto R = NewArray(Controller, 10, {"253:1", "252:0", "253:0", "252:1"}, {}, 100000, u"v");
    UINT32 ErrorCode = 0;
    Create(*R, &ErrorCode);
    ASSERT_FALSE(Commands_.empty());
    EXPECT_EQ(Commands_.front(), Line);
    // Take the array away again for the next form.
    RAID_ARRAY *Array = ArrayWithId(Controller, 0);
    ASSERT_NE(Array, nullptr);
    EXPECT_EQ(DeleteArray(Array, &ErrorCode), EFI_SUCCESS);
    Refresh(Controller);
  }
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

// Hot spares in two enclosures: only the first enclosure is named and the
// second one's number runs into the slot list ("/e252/s7,253"). The adapter
// makes 252:7 a spare, finds no drive 252:253 and reports the command as
// failed; that verdict, not the volume's, is the operation's.
TEST_F(CreateWorld, SparesInTwoEnclosuresNameOnlyTheFirst) {
  StartWith(kBus, FreeDrivesAdapter());
  auto R = NewArray(Controller, 1, {"252:0", "252:1"}, {"252:7", "253:7"}, 100000, u"m");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Create(*R, &ErrorCode), EFI_SUCCESS);
  ASSERT_GE(Commands_.size(), 2u);
  EXPECT_EQ(Commands_[1], "storcli.efi /c0/e252/s7,253 add hotsparedrive dgs=0 mronly nolog");
  EXPECT_EQ(ErrorCode, 0x0020100Eu);
  json Expected = Before;
  JsonDrive(Expected, "252:0")["state"] = "Onln";
  JsonDrive(Expected, "252:1")["state"] = "Onln";
  JsonDrive(Expected, "252:7")["state"] = "DHS";
  Expected["driveGroups"].push_back(
      {{"raidLevel", 1}, {"drivesPerSpan", 2}, {"members", {"252:0", "252:1"}},
       {"dedicatedSpares", {"252:7"}},
       {"virtualDrives", {CreatedVolume(0, "m", 0, 102400, 0)}}});
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  ExpectModelCurrent();
}

// ---- Existing arrays ----------------------------------------------------------

// DG0 RAID 5 with volume 0 at its start and volume 1 behind a 200 GB gap;
// DG1 RAID 1 with volume 2 behind a 50 GB gap.
json UsedAdapter() {
  json Adapter = FreeDrivesAdapter();
  Adapter["driveGroups"] = json::parse(R"([
    {"raidLevel": 5, "members": ["252:0", "252:1", "252:2"],
     "virtualDrives": [
       {"number": 0, "name": "a", "sizeMb": 102400},
       {"number": 1, "name": "b", "offsetMb": 307200, "sizeMb": 102400}]},
    {"raidLevel": 1, "members": ["253:0", "253:1"],
     "virtualDrives": [{"number": 2, "name": "c", "offsetMb": 51200, "sizeMb": 102400}]}
  ])");
  return Adapter;
}

struct ExistingCase {
  const char *Name;
  UINT32 Array;
  UINT32 AfterVd;  // the chosen segment's after-volume number
  UINT64 Size;     // thousandths of a GB; below 1000: all of the segment
  uint64_t OffsetMb;
  uint64_t SizeMb;
  const char *AfterWord;
};

class ExistingArrayTest : public CreateWorld,
                          public ::testing::WithParamInterface<ExistingCase> {};

TEST_P(ExistingArrayTest, PlacesTheVolumeInTheChosenSegment) {
  const ExistingCase &Case = GetParam();
  StartWith(kBus, UsedAdapter());
  RAID_ARRAY *Array = ArrayWithId(Controller, Case.Array);
  ASSERT_NE(Array, nullptr);
  RAID_VOLUME *Segment = FreeSegmentAfter(Array, Case.AfterVd);
  ASSERT_NE(Segment, nullptr);
  Request R;
  R.Name = u"new";
  R.Parameter.NewArray = 0;
  R.Parameter.ControllerId = Controller->Id;
  R.Parameter.ArrayId = Array->Id;
  R.Parameter.FreeSegmentId = Segment->Id;
  R.Parameter.DriveCount = Array->MemberDriveCount;
  R.Parameter.Name = R.Name.data();
  R.Parameter.Size = Case.Size;
  R.Parameter.Reserved = 1;
  R.Parameter.StripeSize = 64;
  R.Parameter.ReadPolicy = RAID_READ_POLICY_NO_READ_AHEAD;
  R.Parameter.WritePolicy = RAID_WRITE_POLICY_WRITE_THROUGH;
  R.Parameter.IoPolicy = RAID_IO_POLICY_CACHED;
  R.Parameter.DiskCachePolicy = RAID_DISK_CACHE_POLICY_ON;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Create(R, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  ASSERT_FALSE(Commands_.empty());
  EXPECT_NE(Commands_.front().find(std::string("strip=64 ") + Case.AfterWord + " mronly"),
            std::string::npos)
      << Commands_.front();

  json Expected = Before;
  json &Volumes = Expected["driveGroups"][Case.Array]["virtualDrives"];
  Volumes.push_back(CreatedVolume(3, "new", Case.OffsetMb, Case.SizeMb, 0));
  std::vector<json> Sorted(Volumes.begin(), Volumes.end());
  std::sort(Sorted.begin(), Sorted.end(), [](const json &A, const json &B) {
    return A["offsetMb"] < B["offsetMb"];
  });
  Volumes = Sorted;
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  ExpectModelCurrent();
}

INSTANTIATE_TEST_SUITE_P(
    Segments, ExistingArrayTest,
    ::testing::Values(
        ExistingCase{"BetweenVolumes", 0, 0, 50000, 102400, 51200, "AfterVd=0"},
        ExistingCase{"AfterTheLastVolumeAllOfIt", 0, 1, 500, 409600,
                     2 * 953344 - 409600, "AfterVd=1"},
        ExistingCase{"BeforeEveryVolume", 1, 0xFFFFFFFF, 10000, 0, 10240, " "}),
    [](const auto &Info) { return std::string(Info.param.Name); });

// ---- Refusals -----------------------------------------------------------------

struct RefusalCase {
  const char *Name;
  UINT8 Level;
  std::vector<std::string> Drives;
  UINT64 Size;
  UINT32 ErrorCode;
};

class RefusedCreateTest : public CreateWorld,
                          public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(RefusedCreateTest, ReportsTheToolsCodeAndChangesNothing) {
  const RefusalCase &Case = GetParam();
  StartWith(kBus, UsedAdapter());
  auto R = NewArray(Controller, Case.Level, Case.Drives, {}, Case.Size, u"x");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Create(*R, &ErrorCode), EFI_SUCCESS);  // the refresh worked
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
  ExpectModelCurrent();
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, RefusedCreateTest,
    ::testing::Values(
        RefusalCase{"Raid5WithTwoDrives", 5, {"252:3", "252:4"}, 100000, 0x0020100E},
        RefusalCase{"Raid6WithTwoDrives", 6, {"252:3", "252:4"}, 100000, 0x0020100E},
        RefusalCase{"Raid10WithFiveDrives", 10, {"252:3", "252:4", "252:5", "252:6", "252:7"},
                    100000, 0x0020100E},
        RefusalCase{"Raid50WithSevenDrives", 50,
                    {"252:3", "252:4", "252:5", "252:6", "252:7", "253:2", "253:3"}, 100000,
                    0x0020100E},
        RefusalCase{"JbodDrive", 1, {"252:3", "252:8"}, 100000, 0x0020100E},
        RefusalCase{"TooLarge", 1, {"252:3", "252:4"}, 1000000, 0x0020100D},
        RefusalCase{"MixedInterfaces", 1, {"252:3", "253:8"}, 100000, 0x00201026}),
    [](const auto &Info) { return std::string(Info.param.Name); });

// A member id that names no unconfigured drive (here one of an array's
// members) would leave the drive list one drive short, and a RAID 0 of the
// rest is an array the operator did not choose: nothing runs.
TEST_F(CreateWorld, MemberOfAnArrayRunsNothing) {
  StartWith(kBus, UsedAdapter());
  for (UINT8 Level : {0, 1}) {
    auto R = NewArray(Controller, Level, {"252:0", "252:3"}, {}, 100000, u"x");
    UINT32 ErrorCode = 0;
    EXPECT_EQ(Create(*R, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0x00200021u);
  }
  for (const auto &Line : Commands_) {
    EXPECT_EQ(Line.find(" add "), std::string::npos) << Line;
  }
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

// No member drives: nothing runs, the model is re-read all the same.
TEST_F(CreateWorld, NewArrayWithoutDrivesRunsNothing) {
  StartWith(kBus, UsedAdapter());
  auto R = NewArray(Controller, 1, {}, {}, 100000, u"x");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Create(*R, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200015u);
  for (const auto &Line : Commands_) {
    EXPECT_EQ(Line.find(" add "), std::string::npos) << Line;
  }
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

}  // namespace
}  // namespace megaraid_test
