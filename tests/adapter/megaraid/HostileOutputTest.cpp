// The backend against a virtual adapter whose output a test edits into what
// a faulty tool prints, or whose numbers outgrow the backend's buffers: a
// volume number past 32 bits, a device id two drives share, drive lists
// longer than their 1024 characters. Nothing the request did not name may
// change on the adapter.
#include <map>

#include "MegaRaidWorld.h"
#include "RowEdit.h"
#include "EsaDrvMgr.h"

namespace megaraid_test {
namespace {

using nlohmann::json;
using tool_output::EditRows;
using tool_output::RowEdit;

constexpr UINT8 kBus = 3;
constexpr const char *kShow = "storcli.efi /c0 show mronly nolog";

json Drive(const std::string &Address) {
  return {{"address", Address}, {"sizeMb", 953344}};
}

class HostileOutputTest : public OneAdapterWorld {
 protected:
  // From now on the adapter's answers to CommandLine carry Edits.
  VOID Edit(const std::string &CommandLine, std::vector<RowEdit> Edits) {
    Edits_[CommandLine] = std::move(Edits);
    Fault_ = [this](const std::string &Line) -> std::optional<std::string> {
      auto Found = Edits_.find(Line);
      if (Found == Edits_.end()) return std::nullopt;
      return EditRows(Storcli_->Run(Line), Found->second);
    };
  }
  // The command lines run that contain Text.
  std::vector<std::string> Run(const std::string &Text) const {
    std::vector<std::string> Lines;
    for (const auto &Line : Commands_) {
      if (Line.find(Text) != std::string::npos) Lines.push_back(Line);
    }
    return Lines;
  }
  // A request of 100 GB named "v" with the tool's default policies.
  RAID_VOLUME_PARAMETER Request() {
    RAID_VOLUME_PARAMETER P = {};
    P.ControllerId = Controller->Id;
    P.Name = Name_;
    P.Size = 100000;
    P.Reserved = 1;
    P.StripeSize = 64;
    P.ReadPolicy = RAID_READ_POLICY_OTHER;
    P.WritePolicy = RAID_WRITE_POLICY_OTHER;
    P.IoPolicy = RAID_IO_POLICY_OTHER;
    P.DiskCachePolicy = RAID_DISK_CACHE_POLICY_OTHER;
    return P;
  }
  // A create of a new array over the drives with these device ids.
  EFI_STATUS CreateNew(UINT8 Level, std::vector<UINT32> Ids,
                       std::vector<UINT32> Spares, UINT32 *ErrorCode) {
    Members_ = Ids;
    Members_.push_back(RAID_DRIVE_LIST_END);
    Spares_ = Spares;
    Spares_.push_back(RAID_DRIVE_LIST_END);
    RAID_VOLUME_PARAMETER P = Request();
    P.NewArray = 1;
    P.DriveList = Members_.data();
    P.DriveCount = static_cast<UINT32>(Ids.size());
    P.SpareList = Spares.empty() ? nullptr : Spares_.data();
    P.RaidLevel = Level;
    *ErrorCode = 0xFFFFFFFF;
    return CreateVolume(&P, 0, ErrorCode);
  }

  std::map<std::string, std::vector<RowEdit>> Edits_;
  std::vector<UINT32> Members_, Spares_;
  CHAR16 Name_[8] = u"v";
};

// ---- A volume number past 32 bits ----------------------------------------

// "logs" is VD 4294967296 beside "boot", VD 0. Read modulo 2^32 it would be
// VD 0, and deleting it, or its array, would delete "boot".
TEST_F(HostileOutputTest, AVolumeNumberPast32BitsIsNeverNamed) {
  Edit(kShow, {{{"1/1"}, 0, "1/4294967296"}});
  StartWith(kBus, json::parse(R"({
    "drives": [{"address": "252:0", "sizeMb": 953344}, {"address": "252:1", "sizeMb": 953344},
               {"address": "252:2", "sizeMb": 953344}, {"address": "252:3", "sizeMb": 953344}],
    "driveGroups": [
      {"raidLevel": 1, "members": ["252:0", "252:1"],
       "virtualDrives": [{"number": 0, "name": "boot", "sizeMb": 953344}]},
      {"raidLevel": 1, "members": ["252:2", "252:3"],
       "virtualDrives": [{"number": 1, "name": "logs", "sizeMb": 953344}]}]
  })"));
  RAID_ARRAY *Logs = ArrayWithId(Controller, 1);
  ASSERT_NE(Logs, nullptr);
  EXPECT_EQ(Logs->VolumeCount, 0u);
  EXPECT_EQ(VolumeWithId(Logs, 0), nullptr);

  // Its array holds no volume the backend could name: nothing is deleted.
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(DeleteArray(Logs, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(Run(" del ").empty());
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));

  // "boot" is deleted alone.
  RAID_VOLUME *Boot = VolumeWithId(ArrayWithId(Controller, 0), 0);
  ASSERT_NE(Boot, nullptr);
  EXPECT_EQ(DeleteVolume(Boot, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Run(" del "),
            std::vector<std::string>{"storcli.efi /c0/v0 del force mronly nolog"});
  json Expected = Before;
  Expected["driveGroups"].erase(0);
  JsonDrive(Expected, "252:0")["state"] = "UGood";
  JsonDrive(Expected, "252:1")["state"] = "UGood";
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
}

// ---- A device id two drives share ------------------------------------------

// 252:1 is printed with 252:0's device id. Neither drive is in the model,
// so neither is offered; a create naming that id (as a plan made before
// would) takes neither, where the id would have taken both.
TEST_F(HostileOutputTest, DrivesSharingADeviceIdAreNeverTaken) {
  Edit(kShow, {{{"252:1"}, 1, "0"}});
  json Drives = json::array();
  for (int Slot = 0; Slot < 6; ++Slot) Drives.push_back(Drive("252:" + std::to_string(Slot)));
  StartWith(kBus, {{"drives", Drives}});
  EXPECT_EQ(DriveAt(Controller, "252:0"), nullptr);
  EXPECT_EQ(DriveAt(Controller, "252:1"), nullptr);
  EXPECT_EQ(Controller->DiskDriveCount, 4u);
  EXPECT_EQ(Controller->UnconfiguredDriveCount, 4u);

  UINT32 ErrorCode = 0;
  CreateNew(0, {0}, {}, &ErrorCode);
  for (const auto &Line : Run(" add vd ")) {
    EXPECT_EQ(Line.find("252:0"), std::string::npos) << Line;
  }
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));

  // The drives that are offered are taken, and only they.
  ClearCommands();
  EXPECT_EQ(CreateNew(1, {2, 3}, {}, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  ASSERT_EQ(Run(" add vd ").size(), 1u);
  EXPECT_NE(Run(" add vd ")[0].find(" drives=252:2,3 "), std::string::npos);
  const json After = StateAt(kBus);
  ASSERT_EQ(After["driveGroups"].size(), 1u);
  EXPECT_EQ(After["driveGroups"][0]["members"], (json{"252:2", "252:3"}));
  for (const char *Untouched : {"252:0", "252:1", "252:4", "252:5"}) {
    json Now = After;
    EXPECT_EQ(JsonDrive(Now, Untouched), JsonDrive(Before, Untouched));
  }
}

// ---- Drive lists past their buffer -----------------------------------------

// 171 drives 2:10000 to 2:10170, 2:1, and two more. A list of the 171
// outgrows its 1024 characters: cut, it would end in "...,10169,1", naming
// 2:1, not asked for, and dropping 2:10170, which was.
constexpr unsigned kLongCount = 171;

json LongSlotAdapter() {
  json Drives = json::array();
  for (unsigned Index = 0; Index < kLongCount; ++Index) {
    Drives.push_back(Drive("2:" + std::to_string(10000 + Index)));
  }
  Drives.push_back(Drive("2:1"));
  Drives.push_back(Drive("3:0"));
  Drives.push_back(Drive("3:1"));
  return {{"limits", {{"maxDrivesPerSpan", 256}}}, {"drives", Drives}};
}

std::vector<UINT32> LongSlotIds() {
  std::vector<UINT32> Ids;
  for (UINT32 Id = 0; Id < kLongCount; ++Id) Ids.push_back(Id);  // the index
  return Ids;
}

TEST_F(HostileOutputTest, ADriveListPastItsBufferRunsNothing) {
  StartWith(kBus, LongSlotAdapter());
  UINT32 ErrorCode = 0;
  EXPECT_EQ(CreateNew(0, LongSlotIds(), {}, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200005u);
  EXPECT_TRUE(Run(" add ").empty());
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

// Spares are listed before the array is made: a spare list that does not
// fit refuses the array too.
TEST_F(HostileOutputTest, ASpareListPastItsBufferRunsNothing) {
  StartWith(kBus, LongSlotAdapter());
  UINT32 ErrorCode = 0;
  EXPECT_EQ(CreateNew(1, {kLongCount + 1, kLongCount + 2}, LongSlotIds(), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200005u);
  EXPECT_TRUE(Run(" add ").empty());
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

// A volume in the free space of an array of the 171: its member list does
// not fit either.
TEST_F(HostileOutputTest, AnExistingArraysListPastItsBufferRunsNothing) {
  json Adapter = LongSlotAdapter();
  json Members = json::array();
  for (unsigned Index = 0; Index < kLongCount; ++Index) {
    Members.push_back("2:" + std::to_string(10000 + Index));
  }
  Adapter["driveGroups"] = {{{"raidLevel", 0}, {"members", Members},
                             {"virtualDrives", {{{"name", "a"}, {"sizeMb", 102400}}}}}};
  StartWith(kBus, Adapter);
  RAID_ARRAY *Array = ArrayWithId(Controller, 0);
  ASSERT_NE(Array, nullptr);
  RAID_VOLUME *Segment = FreeSegmentAfter(Array, 0);
  ASSERT_NE(Segment, nullptr);
  RAID_VOLUME_PARAMETER P = Request();
  P.ArrayId = 0;
  P.FreeSegmentId = Segment->Id;
  P.DriveCount = Array->MemberDriveCount;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(CreateVolume(&P, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200005u);
  EXPECT_TRUE(Run(" add ").empty());
  EXPECT_EQ(StateAt(kBus).dump(1), Before.dump(1));
}

}  // namespace
}  // namespace megaraid_test
