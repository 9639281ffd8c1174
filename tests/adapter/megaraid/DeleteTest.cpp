// Deleting through the dispatch: one volume, an array with three volumes,
// and an array whose first volume the adapter refuses to delete.
#include "MegaRaidWorld.h"
#include "EsaDrvMgr.h"

namespace megaraid_test {
namespace {

using nlohmann::json;

constexpr UINT8 kBus = 3;

// DG0: RAID 5 with volumes 4, 1 and 6 and a dedicated spare; DG1 behind it:
// RAID 1 with volume 0. A JBOD and a global spare stay out of the way.
const json kAdapter = json::parse(R"({
  "drives": [
    {"address": "252:0", "did": 0, "sizeMb": 953344},
    {"address": "252:1", "did": 1, "sizeMb": 953344},
    {"address": "252:2", "did": 2, "sizeMb": 953344},
    {"address": "252:3", "did": 3, "sizeMb": 953344},
    {"address": "252:4", "did": 4, "sizeMb": 953344},
    {"address": "252:5", "did": 5, "sizeMb": 953344},
    {"address": "252:6", "did": 6, "sizeMb": 953344, "state": "JBOD"},
    {"address": "252:7", "did": 7, "sizeMb": 953344, "state": "GHS"}
  ],
  "driveGroups": [
    {"raidLevel": 5, "members": ["252:0", "252:1", "252:2"], "dedicatedSpares": ["252:3"],
     "virtualDrives": [
       {"number": 4, "name": "first", "sizeMb": 102400},
       {"number": 1, "name": "second", "sizeMb": 102400},
       {"number": 6, "name": "third", "offsetMb": 409600, "sizeMb": 102400}]},
    {"raidLevel": 1, "members": ["252:4", "252:5"],
     "virtualDrives": [{"number": 0, "name": "other", "sizeMb": 51200}]}
  ]
})");

class DeleteTest : public OneAdapterWorld {
 public:
  DeleteTest() { StartWith(kBus, kAdapter); }

  // "del force" lines of the commands run, in order.
  std::vector<std::string> Deletions() const {
    std::vector<std::string> Lines;
    for (const auto &Line : Commands_) {
      if (Line.find(" del force ") != std::string::npos) Lines.push_back(Line);
    }
    return Lines;
  }

  // Before, without the volumes of DG Group numbered in Gone.
  json Without(uint32_t Group, std::initializer_list<uint32_t> Gone) const {
    json Expected = Before;
    json Kept = json::array();
    for (const json &Volume : Expected["driveGroups"][Group]["virtualDrives"]) {
      if (std::find(Gone.begin(), Gone.end(), Volume["number"].get<uint32_t>()) == Gone.end()) {
        Kept.push_back(Volume);
      }
    }
    Expected["driveGroups"][Group]["virtualDrives"] = Kept;
    return Expected;
  }
};

TEST_F(DeleteTest, OneVolume) {
  RAID_VOLUME *Volume = VolumeWithId(ArrayWithId(Controller, 0), 1);
  ASSERT_NE(Volume, nullptr);
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteVolume(Volume, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Deletions(), std::vector<std::string>{"storcli.efi /c0/v1 del force mronly nolog"});
  EXPECT_EQ(StateAt(kBus).dump(1), Without(0, {1}).dump(1));
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(kBus)).dump(1));
  ExpectModelMatches(kBus);
}

// The whole array goes with its last volume: members and the dedicated
// spare become unconfigured good, and the group behind moves down.
TEST_F(DeleteTest, ArrayWithThreeVolumes) {
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteArray(ArrayWithId(Controller, 0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  // In the order of the array's segment list, which follows the VD numbers.
  EXPECT_EQ(Deletions(), (std::vector<std::string>{
                             "storcli.efi /c0/v1 del force mronly nolog",
                             "storcli.efi /c0/v4 del force mronly nolog",
                             "storcli.efi /c0/v6 del force mronly nolog"}));
  json Expected = Before;
  for (const char *Address : {"252:0", "252:1", "252:2", "252:3"}) {
    JsonDrive(Expected, Address)["state"] = "UGood";
  }
  Expected["driveGroups"].erase(0);
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(kBus)).dump(1));
  ExpectModelMatches(kBus);
}

struct RefusedCase {
  const char *Name;
  uint32_t Refused;        // the VD whose deletion the adapter refuses
  uint32_t FirmwareStatus;  // 0: a description line only
  UINT32 ErrorCode;         // what the operation reports
};

class RefusedDeleteTest : public DeleteTest,
                          public ::testing::WithParamInterface<RefusedCase> {};

// The deletion goes on after a refusal; the error code is the verdict of
// the last command only, so a refusal of an earlier volume goes unreported.
TEST_P(RefusedDeleteTest, GoesOnAndReportsTheLastVerdict) {
  const RefusedCase &Case = GetParam();
  const std::string Refused =
      "storcli.efi /c0/v" + std::to_string(Case.Refused) + " del force mronly nolog";
  Fault_ = [&](const std::string &Line) -> std::optional<std::string> {
    if (Line != Refused) return std::nullopt;
    return FailureOutput(0, Case.FirmwareStatus, "Delete VD failed");
  };
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteArray(ArrayWithId(Controller, 0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  EXPECT_EQ(Deletions().size(), 3u);
  json Expected = Before;
  for (json &Volume : Expected["driveGroups"][0]["virtualDrives"]) {
    if (Volume["number"] == Case.Refused) {
      Expected["driveGroups"][0]["virtualDrives"] = json::array({Volume});
      break;
    }
  }
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(kBus)).dump(1));
  ExpectModelMatches(kBus);
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, RefusedDeleteTest,
    ::testing::Values(RefusedCase{"FirstWithoutErrorCode", 1, 0, 0},
                      RefusedCase{"FirstWithErrorCode", 1, 11, 0},
                      RefusedCase{"LastWithoutErrorCode", 6, 0, 0x0020100E},
                      RefusedCase{"LastWithErrorCode", 6, 11, 0x0020100B}),
    [](const auto &Info) { return std::string(Info.param.Name); });

// A free segment is no volume: the dispatch refuses it and runs nothing.
TEST_F(DeleteTest, FreeSegmentIsRefused) {
  RAID_VOLUME *Segment = FreeSegmentAfter(ArrayWithId(Controller, 0), 6);
  ASSERT_NE(Segment, nullptr);
  UINT32 ErrorCode = 0x1234;
  EXPECT_EQ(DeleteVolume(Segment, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x1234u);
  EXPECT_TRUE(Commands_.empty());
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

}  // namespace
}  // namespace megaraid_test
