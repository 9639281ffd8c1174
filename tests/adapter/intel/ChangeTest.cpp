// Changing virtual Intel engines through the dispatch: each test checks the
// engine's final state against its state before, changed only where the
// operator chose.
#include "EsaDrvMgr.h"
#include "IntelWorld.h"

namespace intel_test {
namespace {

using nlohmann::json;

// A mirror "OS" on disks 0 and 1, free disks 2 to 5 and spare 6.
json SixDisks() {
  return {{"disks", {DiskJson(0, "member"), DiskJson(1, "member"),
                     DiskJson(2, "non-raid"), DiskJson(3, "non-raid"),
                     DiskJson(4, "non-raid"), DiskJson(5, "non-raid"),
                     DiskJson(6, "spare")}},
          {"arrays", {{{"disks", {0, 1}},
                       {"volumes", {{{"name", "OS"}, {"level", 1}}}}}}}};
}

json &EngineDisk(json &State, uint32_t Number) {
  for (json &Disk : State[0]["disks"]) {
    if (Disk["number"] == Number) {
      return Disk;
    }
  }
  throw std::runtime_error("no disk");
}

class IntelChangeTest : public IntelWorld {
 protected:
  RAID_VOLUME_PARAMETER *NewArray(std::vector<UINT32> Disks, UINT8 Level,
                                  UINT64 SizeGb, UINT32 Stripe) {
    Disks_ = Disks;
    Disks_.push_back(RAID_DRIVE_LIST_END);
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller->Id;
    Parameter_.DriveList = Disks_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Disks.size());
    Parameter_.RaidLevel = Level;
    Parameter_.Name = Name_;
    Parameter_.Size = SizeGb * 1000;
    Parameter_.Reserved = 1;
    Parameter_.StripeSize = Stripe;
    return &Parameter_;
  }
  // Before with a new array of Disks holding one volume.
  json WithArray(std::vector<uint32_t> Disks, uint32_t Level, uint32_t Stripe,
                 uint64_t Blocks) const {
    json Expected = Before;
    for (uint32_t Number : Disks) {
      EngineDisk(Expected, Number)["state"] = "member";
    }
    Expected[0]["arrays"].push_back(
        {{"disks", Disks},
         {"volumes", {{{"name", "Vol_A"}, {"level", Level}, {"stripeKb", Stripe},
                       {"blocks", Blocks}, {"status", "Normal"}}}}});
    return Expected;
  }

  CHAR16 Name_[17] = u"Vol_A";
  std::vector<UINT32> Disks_;
  RAID_VOLUME_PARAMETER Parameter_ = {};
};

TEST_F(IntelChangeTest, CreateOnNewDisksForEachLevel) {
  const uint64_t Gib = 1024 * kBlocksPerMib;
  struct Case {
    std::vector<UINT32> Disks;
    UINT8 Level;
    UINT64 SizeGb;
    UINT32 Stripe;   // asked
    UINT32 Printed;  // kept by the engine
    uint64_t Blocks;
  } Cases[] = {
      {{2, 3}, 0, 100, 128, 128, 100 * Gib},
      {{2, 3}, 1, 0, 64, 0, kThousandGib},
      {{2, 3, 4}, 5, 300, 64, 64, 300 * Gib},
      {{2, 3, 4, 5}, 10, 0, 64, 64, 2 * kThousandGib},
      {{4, 5}, 1, 200, 0, 0, 200 * Gib},
  };
  AddEngine(SixDisks());
  Start();
  for (const Case &C : Cases) {
    SCOPED_TRACE(int(C.Level));
    // A fresh engine and a fresh module for each case.
    UINT32 ErrorCode = 0xFFFFFFFF;
    EXPECT_EQ(FinalizeRaid(&ErrorCode), EFI_SUCCESS);
    Family_ = sim::intel::MakeFamily();
    Family_->AddAdapter(SixDisks());
    ASSERT_EQ(InitializeRaid(&ErrorCode), EFI_SUCCESS);
    Controller = Controllers().front();
    Refresh();
    Before = State();
    EXPECT_EQ(CreateVolume(NewArray(C.Disks, C.Level, C.SizeGb, C.Stripe), 0,
                           &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    EXPECT_EQ(State().dump(1), WithArray({C.Disks.begin(), C.Disks.end()}, C.Level,
                                         C.Printed, C.Blocks).dump(1));
    RAID_VOLUME *Volume = VolumeNamed(Controller, "Vol_A");
    ASSERT_NE(Volume, nullptr);
    EXPECT_EQ(Volume->Array->RaidLevel, C.Level);
  }
}

TEST_F(IntelChangeTest, ASecondVolumeInAnExistingArrayTakesItsFreeSpace) {
  AddEngine(SixDisks());
  Start();
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(CreateVolume(NewArray({2, 3}, 0, 100, 128), 0, &ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, 0u);
  RAID_ARRAY *Array = VolumeNamed(Controller, "Vol_A")->Array;
  EXPECT_EQ(Array->FreeSegmentCount, 1u);
  Before = State();
  ClearCommands();
  Name_[4] = u'B';
  RAID_VOLUME_PARAMETER *Parameter = NewArray({}, 0, 0, 64);
  Parameter->NewArray = 0;
  Parameter->ArrayId = Array->Id;
  EXPECT_EQ(CreateVolume(Parameter, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_.front(), "RCfgSata.efi /Y /C:Vol_B /SS:64 /L:0 /DS:2 3 ");
  json Expected = Before;
  const uint64_t Left = 2 * (kThousandGib - 100 * 1024 * kBlocksPerMib / 2);
  Expected[0]["arrays"][1]["volumes"].push_back(
      {{"name", "Vol_B"}, {"level", 0}, {"stripeKb", 64}, {"blocks", Left},
       {"status", "Normal"}});
  EXPECT_EQ(State().dump(1), Expected.dump(1));
  Array = VolumeNamed(Controller, "Vol_B")->Array;
  EXPECT_EQ(SegmentNames(Array), (std::vector<std::string>{"Vol_A", "Vol_B"}));
  EXPECT_EQ(Array->FreeSegmentCount, 0u);
  EXPECT_EQ(Array->FreeCapacity, 0u);
}

TEST_F(IntelChangeTest, DeleteArrayWithTwoVolumesStopsWhenTheFirstFails) {
  json Engine = SixDisks();
  Engine["disks"][2]["state"] = "member";
  Engine["disks"][3]["state"] = "member";
  Engine["arrays"].push_back(
      {{"disks", {2, 3}},
       {"volumes", {{{"name", "A"}, {"level", 0}, {"blocks", kThousandGib}},
                    {{"name", "B"}, {"level", 0}, {"blocks", kThousandGib}}}}});
  AddEngine(Engine);
  Start();
  Fault_ = [](const std::string &Line) -> std::optional<std::string> {
    if (Line == "RCfgSata.efi /Y /D:A") {
      return "ERROR: Volume A is in use.\r\n";
    }
    return std::nullopt;
  };
  RAID_ARRAY *Array = VolumeNamed(Controller, "A")->Array;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(DeleteArray(Array, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_EQ(Commands_.front(), "RCfgSata.efi /Y /D:A");
  EXPECT_EQ(std::count(Commands_.begin(), Commands_.end(), "RCfgSata.efi /Y /D:B"), 0);
  EXPECT_EQ(State().dump(1), Before.dump(1));

  Fault_ = nullptr;
  ClearCommands();
  EXPECT_EQ(DeleteArray(VolumeNamed(Controller, "A")->Array, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  json Expected = Before;
  Expected[0]["arrays"].erase(1);
  EngineDisk(Expected, 2)["state"] = "non-raid";
  EngineDisk(Expected, 3)["state"] = "non-raid";
  EXPECT_EQ(State().dump(1), Expected.dump(1));
  EXPECT_EQ(VolumeNamed(Controller, "B"), nullptr);
  EXPECT_NE(VolumeNamed(Controller, "OS"), nullptr);
}

TEST_F(IntelChangeTest, SpareAndNonRaid) {
  AddEngine(SixDisks());
  Start();
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(SetPhysicalDriveState(Controller, DiskWithId(Controller, 2),
                                  RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(SetPhysicalDriveState(Controller, DiskWithId(Controller, 6),
                                  RAID_STATE4_NON_RAID, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Commands_, (std::vector<std::string>{"RCfgSata.efi /Y /SP /DS:2",
                                                 "RCfgSata.efi /Y /X /DS:6"}));
  json Expected = Before;
  EngineDisk(Expected, 2)["state"] = "spare";
  EngineDisk(Expected, 6)["state"] = "non-raid";
  EXPECT_EQ(State().dump(1), Expected.dump(1));
  EXPECT_EQ(DiskWithId(Controller, 2)->State, static_cast<UINT32>(RAID_STATE4_GHS));
  EXPECT_EQ(DiskWithId(Controller, 6)->State, static_cast<UINT32>(RAID_STATE4_NON_RAID));
  Refresh();
  EXPECT_EQ(Controller->GlobalSpareCount, 1u);
  EXPECT_EQ(Controller->UnconfiguredDriveCount, 4u);
}

TEST_F(IntelChangeTest, AMemberCannotLoseItsMetadata) {
  AddEngine(SixDisks());
  Start();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(SetPhysicalDriveState(Controller, DiskWithId(Controller, 0),
                                  RAID_STATE4_NON_RAID, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200031u);
  EXPECT_EQ(State().dump(1), Before.dump(1));
}

TEST_F(IntelChangeTest, AnAnswerWithNeitherErrorNorSuccessIsTakenAsDone) {
  AddEngine(SixDisks());
  Start();
  Fault_ = [](const std::string &Line) -> std::optional<std::string> {
    if (Line.find("/SP") != std::string::npos) {
      return "Intel(R) RSTe SATA Configuration Utility\r\n\r\n";
    }
    return std::nullopt;
  };
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(SetPhysicalDriveState(Controller, DiskWithId(Controller, 3),
                                  RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  // The model believes the tool; the engine never ran the command.
  EXPECT_EQ(DiskWithId(Controller, 3)->State, static_cast<UINT32>(RAID_STATE4_GHS));
  EXPECT_EQ(State().dump(1), Before.dump(1));
}

TEST_F(IntelChangeTest, AVolumeNameWithABlankIsNotDeleted) {
  json Engine = SixDisks();
  Engine["arrays"][0]["volumes"][0]["name"] = "My OS";
  AddEngine(Engine);
  Start();
  RAID_VOLUME *Volume = VolumeNamed(Controller, "My OS");
  ASSERT_NE(Volume, nullptr);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(DeleteVolume(Volume, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_EQ(DeleteArray(Volume->Array, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_TRUE(Commands_.empty());
  EXPECT_EQ(State().dump(1), Before.dump(1));
  EXPECT_NE(VolumeNamed(Controller, "My OS"), nullptr);
}

}  // namespace
}  // namespace intel_test
