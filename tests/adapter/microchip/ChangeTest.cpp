// Changing a virtual Microchip adapter through the dispatch: creates on new
// drives and in an array, deletes, drive states; each change leaves the
// adapter holding exactly what was asked and nothing else different, and a
// refusal leaves it as it was.
#include "EsaDrvMgr.h"
#include "MicrochipWorld.h"

namespace microchip_test {
namespace {

using nlohmann::json;

constexpr UINT8 kBus = 0xAF;

// Twelve ready drives on two channels, and an array 0 (RAID 1 on 0:0, 0:1
// with a logical drive and free space).
json Adapter() {
  json Devices = json::array();
  for (int Device = 0; Device < 12; Device++) {
    Devices.push_back({{"address", std::to_string(Device / 6) + ":" +
                                       std::to_string(Device)},
                       {"sizeMb", 953344}});
  }
  return {{"devices", Devices},
          {"arrays",
           json::parse(R"([{"raidLevel": 1, "members": ["0:0", "0:1"],
              "logicalDrives": [{"number": 0, "name": "os", "sizeMb": 102400}]}])")}};
}

class ChangeTest : public MicrochipWorld {
 protected:
  ChangeTest() {
    AddAdapter(kBus, 6, Adapter());
    Start();
    Controller_ = Refresh(ControllerAt(kBus));
    Before_ = StateAt(kBus);
    Commands_.clear();
  }
  // A create on the new drives in Slots.
  RAID_VOLUME_PARAMETER &NewArray(std::vector<UINT32> Slots, UINT8 Level,
                                  UINT64 Size, const char16_t *Name) {
    Slots_ = Slots;
    Slots_.push_back(RAID_DRIVE_LIST_END);
    Name_ = Name;
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller_->Id;
    Parameter_.DriveList = Slots_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Slots.size());
    Parameter_.RaidLevel = Level;
    Parameter_.Size = Size;
    Parameter_.Name = reinterpret_cast<CHAR16 *>(Name_.data());
    return Parameter_;
  }
  VOID ExpectCreated(RAID_VOLUME_PARAMETER &Parameter) {
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(CreateVolume(&Parameter, 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    ExpectModelMatches(kBus);
  }
  // Before_ with one more array of Members at Level holding one drive.
  json WithArray(std::vector<std::string> Members, uint32_t Level,
                 bool Triple, uint64_t SizeMb, const std::string &Name) {
    json Expected = Before_;
    for (json &Device : Expected["devices"]) {
      if (std::find(Members.begin(), Members.end(),
                    Device["address"].get<std::string>()) != Members.end()) {
        Device["state"] = "Online";
      }
    }
    Expected["arrays"].push_back(
        {{"raidLevel", Level},
         {"triple", Triple},
         {"members", Members},
         {"spares", json::array()},
         {"logicalDrives",
          {{{"number", 1}, {"name", Name}, {"sizeMb", SizeMb},
            {"status", "Optimal"}}}}});
    return Expected;
  }

  RAID_CONTROLLER *Controller_ = nullptr;
  json Before_;
  RAID_VOLUME_PARAMETER Parameter_ = {};
  std::vector<UINT32> Slots_;
  std::u16string Name_;
};

struct NewArrayCase {
  const char *Name;
  UINT8 Level;
  std::vector<UINT32> Slots;
  bool Triple;
  uint64_t CapacityDrives;  // data drives of 953344 MB each
};

class CreateOnNewDrivesTest : public ChangeTest,
                              public ::testing::WithParamInterface<NewArrayCase> {
};

TEST_P(CreateOnNewDrivesTest, TheAdapterGainsExactlyTheArray) {
  const NewArrayCase &Case = GetParam();
  ExpectCreated(NewArray(Case.Slots, Case.Level, 0, u"new"));
  std::vector<std::string> Members;
  for (UINT32 Slot : Case.Slots) {
    Members.push_back(std::to_string(Slot / 6) + ":" + std::to_string(Slot));
  }
  EXPECT_EQ(StateAt(kBus), WithArray(Members, Case.Level, Case.Triple,
                                     Case.CapacityDrives * 953344, "new"));
}

INSTANTIATE_TEST_SUITE_P(
    Levels, CreateOnNewDrivesTest,
    ::testing::Values(
        NewArrayCase{"Raid0", 0, {2, 3}, false, 2},
        NewArrayCase{"Raid1OnTwo", 1, {2, 3}, false, 1},
        NewArrayCase{"Raid1OnThree", 1, {2, 3, 6}, true, 1},
        NewArrayCase{"Raid5AcrossChannels", 5, {5, 6, 7}, false, 2},
        NewArrayCase{"Raid6", 6, {2, 3, 4, 5}, false, 2},
        NewArrayCase{"Raid10", 10, {2, 3, 4, 5}, false, 2},
        NewArrayCase{"Raid50", 50, {2, 3, 4, 5, 6, 7}, false, 4},
        NewArrayCase{"Raid60", 60, {2, 3, 4, 5, 6, 7, 8, 9}, false, 4}),
    [](const auto &Info) { return std::string(Info.param.Name); });

TEST_F(ChangeTest, ASizedCreateTakesItsMegabytes) {
  ExpectCreated(NewArray({2, 3, 4}, 5, 100000, u"sized"));
  EXPECT_EQ(StateAt(kBus),
            WithArray({"0:2", "0:3", "0:4"}, 5, false, 102400, "sized"));
  EXPECT_EQ(Commands_.front(),
            "arcconf.efi create 1 logicaldrive stripesize 256 NAME sized "
            "102400 5 0 2 0 3 0 4 noprompt");
}

TEST_F(ChangeTest, ACreateInAnArrayTakesItsFreeSpace) {
  RAID_VOLUME_PARAMETER &Parameter = NewArray({}, 1, 200000, u"more");
  Parameter.NewArray = 0;
  Parameter.ArrayId = 0;
  Parameter.FreeSegmentId = 0;
  ExpectCreated(Parameter);
  json Expected = Before_;
  Expected["arrays"][0]["logicalDrives"].push_back(
      {{"number", 1}, {"name", "more"}, {"sizeMb", 204800},
       {"status", "Optimal"}});
  EXPECT_EQ(StateAt(kBus), Expected);
  EXPECT_EQ(VolumeWithId(ArrayWithId(Controller_, 0), 1)->SizeFigure,
            204800000u);
}

TEST_F(ChangeTest, ARefusedCreateIsSeenOnlyInTheRereadModel) {
  // RAID 5 needs three drives: the adapter refuses, nothing changes.
  const json ModelBefore = ModelSummary(Controller_);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(CreateVolume(&NewArray({2, 3}, 5, 0, u"no"), 0, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(StateAt(kBus), Before_);
  EXPECT_EQ(ModelSummary(Controller_), ModelBefore);
  // A drive that is not ready is refused the same way.
  EXPECT_EQ(CreateVolume(&NewArray({0, 2}, 1, 0, u"no"), 0, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(StateAt(kBus), Before_);
}

TEST_F(ChangeTest, DeletingTheLastLogicalDriveDeletesItsArray) {
  UINT32 ErrorCode = 0xDEAD;
  ASSERT_EQ(DeleteVolume(VolumeWithId(ArrayWithId(Controller_, 0), 0),
                         &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  json Expected = Before_;
  Expected["arrays"] = json::array();
  Expected["devices"][0]["state"] = "Ready";
  Expected["devices"][1]["state"] = "Ready";
  EXPECT_EQ(StateAt(kBus), Expected);
  ExpectModelMatches(kBus);
}

TEST_F(ChangeTest, DeletingAnArrayKeepsTheOthers) {
  ExpectCreated(NewArray({2, 3, 4}, 5, 100000, u"keep"));
  const json WithTwo = StateAt(kBus);
  Commands_.clear();
  UINT32 ErrorCode = 0xDEAD;
  ASSERT_EQ(DeleteArray(ArrayWithId(Controller_, 0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_.front(), "arcconf.efi DELETE 1 ARRAY 0 noprompt");
  json Expected = WithTwo;
  Expected["arrays"].erase(0);
  Expected["devices"][0]["state"] = "Ready";
  Expected["devices"][1]["state"] = "Ready";
  EXPECT_EQ(StateAt(kBus), Expected);
  ExpectModelMatches(kBus);
}

TEST_F(ChangeTest, ARefusedDeleteLeavesTheLogicalDriveListed) {
  Fault_ = [](const std::string &Line) -> std::optional<std::string> {
    if (Line.find("DELETE") != std::string::npos) {
      return "Controllers found: 1\r\n\r\nThe logical device is in use.\r\n"
             "\r\nCommand failed.\r\n";
    }
    return std::nullopt;
  };
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(DeleteVolume(VolumeWithId(ArrayWithId(Controller_, 0), 0),
                         &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(StateAt(kBus), Before_);
  ASSERT_NE(ArrayWithId(Controller_, 0), nullptr);
  EXPECT_NE(VolumeWithId(ArrayWithId(Controller_, 0), 0), nullptr);
}

TEST_F(ChangeTest, AHotSpareIsOfferedToEveryArrayAndReadyUndoesIt) {
  ExpectCreated(NewArray({2, 3}, 1, 100000, u"b"));
  ExpectCreated(NewArray({4, 5, 6}, 5, 100000, u"c"));
  Commands_.clear();
  const json WithThree = StateAt(kBus);
  RAID_PHYSICAL_DRIVE *Drive = DriveWithSlot(Controller_, 9);
  ASSERT_NE(Drive, nullptr);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(SetPhysicalDriveState(Controller_, Drive, 30, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_,
            (std::vector<std::string>{
                "arcconf.efi SETSTATE 1 DEVICE 1 9 HSP ARRAY 0 noprompt",
                "arcconf.efi SETSTATE 1 DEVICE 1 9 HSP ARRAY 1 noprompt",
                "arcconf.efi SETSTATE 1 DEVICE 1 9 HSP ARRAY 2 noprompt"}));
  json Expected = WithThree;
  Expected["devices"][9]["state"] = "DedicatedSpare";
  for (int Array = 0; Array < 3; Array++) {
    Expected["arrays"][Array]["spares"] = {"1:9"};
  }
  EXPECT_EQ(StateAt(kBus), Expected);
  // The model was edited in place, and agrees with a fresh read.
  EXPECT_EQ(Drive->State, RAID_STATE2_DEDICATED);
  ExpectModelMatches(kBus);

  Drive = DriveWithSlot(Controller_, 9);
  EXPECT_EQ(SetPhysicalDriveState(Controller_, Drive, 22, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Commands_.back(), "arcconf.efi SETSTATE 1 DEVICE 1 9 RDY");
  EXPECT_EQ(StateAt(kBus), WithThree);
  ExpectModelMatches(kBus);
}

TEST_F(ChangeTest, ARefusedSpareLeavesTheDriveAsItWas) {
  // A member cannot become a spare: every array refuses.
  RAID_PHYSICAL_DRIVE *Member = DriveWithSlot(Controller_, 0);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(SetPhysicalDriveState(Controller_, Member, 30, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Member->State, RAID_STATE2_ONLINE);
  EXPECT_EQ(StateAt(kBus), Before_);
  EXPECT_TRUE(TraceHas("[MchpSetPhysicalDriveState]Failed to change disk state"));
}

}  // namespace
}  // namespace microchip_test
