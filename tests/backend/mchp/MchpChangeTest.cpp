// Changing the configuration: the create, delete and drive-state command
// lines, their traces and error codes, and the model afterwards.
#include <Library/MemoryAllocationLib.h>

#include "MchpOutputs.h"
#include "MchpWorld.h"

namespace mchp_test {
namespace {

DriveLines ReadyDrive(uint32_t Device, uint32_t Slot) {
  DriveLines Drive;
  Drive.Device = Device;
  Drive.Location = "Enclosure 0, Slot " + std::to_string(Slot) +
                   "(Connector 0:CN0)";
  return Drive;
}

DriveLines MemberDrive(uint32_t Device, uint32_t Slot, int Array) {
  DriveLines Drive = ReadyDrive(Device, Slot);
  Drive.State = "Online";
  Drive.Array = Array;
  Drive.Configuration = {"Data"};
  return Drive;
}

class MchpChangeTest : public MchpWorld {
 protected:
  // Ready drives on channel 0 (devices 4, 5, 6 in slots 0, 1, 2) and
  // channel 1 (device 2 in slot 3), and three arrays of one RAID 1 member
  // pair, one three-drive RAID 1 and one RAID 5.
  VOID ReadConfiguration() {
    Configuration_ = Getconfig(
        ArrayBlock(0, "2000 MB", "500 MB", 1) +
            ArrayBlock(1, "3000 MB", "0 MB", 1) +
            ArrayBlock(2, "3000 MB", "0 MB", 5),
        VolumeBlock(0, 0, "Optimal", "500 MB", "a") +
            VolumeBlock(1, 1, "Optimal", "1000 MB", "b") +
            VolumeBlock(2, 2, "Optimal", "2000 MB", "c"),
        Channel(0) + DriveBlock(ReadyDrive(4, 0)) + DriveBlock(ReadyDrive(5, 1)) +
            DriveBlock(ReadyDrive(6, 2)) + DriveBlock(MemberDrive(10, 10, 0)) +
            DriveBlock(MemberDrive(11, 11, 0)) +
            DriveBlock(MemberDrive(12, 12, 1)) +
            DriveBlock(MemberDrive(13, 13, 1)) +
            DriveBlock(MemberDrive(14, 14, 1)) + Channel(1) +
            DriveBlock(ReadyDrive(2, 3)));
    ReadModel(Configuration_);
    Setup_->ClearTrace();
    Baseline_ = Commands().size();
  }
  std::vector<std::string> NewCommands() const {
    std::vector<std::string> All = Commands();
    return std::vector<std::string>(All.begin() + Baseline_, All.end());
  }
  RAID_VOLUME_PARAMETER *Parameter(std::vector<UINT32> Drives,
                                   UINT8 RaidLevel, UINT64 Size,
                                   const char16_t *Name) {
    Drives_ = Drives;
    Drives_.push_back(RAID_DRIVE_LIST_END);
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller_->Id;
    Parameter_.DriveList = Drives_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Drives.size());
    Parameter_.RaidLevel = RaidLevel;
    Parameter_.Size = Size;
    Name_ = Name;
    Parameter_.Name = reinterpret_cast<CHAR16 *>(Name_.data());
    return &Parameter_;
  }
  // Creates and expects success with error code 0; the new commands.
  std::vector<std::string> Create(RAID_VOLUME_PARAMETER *Request) {
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(MchpCreateVolume(Request, 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    return NewCommands();
  }

  std::string Configuration_;
  size_t Baseline_ = 0;
  RAID_VOLUME_PARAMETER Parameter_ = {};
  std::vector<UINT32> Drives_;
  std::u16string Name_;
};

struct CreateCase {
  std::vector<UINT32> Slots;
  UINT8 Level;
  UINT64 Size;
  const char16_t *Name;
  const char *Command;
};

class CreateFormatTest : public MchpChangeTest,
                         public ::testing::WithParamInterface<CreateCase> {};

TEST_P(CreateFormatTest, ANewArrayIsNamedByChannelAndDevice) {
  ReadConfiguration();
  const auto &Case = GetParam();
  const std::vector<std::string> Expected = {Case.Command,
                                             "arcconf.efi getconfig 1"};
  EXPECT_EQ(Create(Parameter(Case.Slots, Case.Level, Case.Size, Case.Name)),
            Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, CreateFormatTest,
    ::testing::Values(
        CreateCase{{0, 1, 2}, 5, 100000, u"data",
                   "arcconf.efi create 1 logicaldrive stripesize 256 NAME "
                   "data 102400 5 0 4 0 5 0 6 noprompt"},
        // Without a name the single-blank word leaves three blanks.
        CreateCase{{0, 1}, 1, 1500, u"",
                   "arcconf.efi create 1 logicaldrive stripesize 256   1024 1 "
                   "0 4 0 5 noprompt"},
        CreateCase{{0, 1, 2}, 1, 0, u"m",
                   "arcconf.efi create 1 logicaldrive stripesize 256 NAME m "
                   "MAX 1Triple 0 4 0 5 0 6 noprompt"},
        CreateCase{{0, 1}, 0, 999, u"s",
                   "arcconf.efi create 1 logicaldrive stripesize 256 NAME s "
                   "MAX 0 0 4 0 5 noprompt"},
        // Channels group in the order they first appear in the list.
        CreateCase{{3, 0, 2, 1}, 10, 2000, u"t",
                   "arcconf.efi create 1 logicaldrive stripesize 256 NAME t "
                   "2048 10 0 4 0 5 0 6 1 2 noprompt"}));

TEST_F(MchpChangeTest, HotSparesOfANewArrayAreOnlyCountedInTheTrace) {
  ReadConfiguration();
  RAID_VOLUME_PARAMETER *Request = Parameter({0, 1}, 1, 0, u"m");
  std::vector<UINT32> Spares = {3, RAID_DRIVE_LIST_END};
  Request->SpareList = Spares.data();
  gMchpHotSpareRequested = 0;
  Create(Request);
  EXPECT_EQ(gMchpHotSpareRequested, 1u);
  TraceHas("[MchpCreateVolume]Hotsparecount.....: 1");
  TraceHas("[MchpCreateVolume] Error code: 0x0, Status: Success");
}

struct ExistingCase {
  UINT32 Array;
  const char *Command;
};

class CreateInArrayTest : public MchpChangeTest,
                          public ::testing::WithParamInterface<ExistingCase> {
};

TEST_P(CreateInArrayTest, TheArraysOwnLevelIsUsed) {
  ReadConfiguration();
  RAID_VOLUME_PARAMETER *Request = Parameter({}, 0, 300000, u"more");
  Request->NewArray = 0;
  Request->ArrayId = GetParam().Array;
  const std::vector<std::string> Expected = {GetParam().Command,
                                             "arcconf.efi getconfig 1"};
  EXPECT_EQ(Create(Request), Expected);
}

INSTANTIATE_TEST_SUITE_P(
    Arrays, CreateInArrayTest,
    ::testing::Values(
        ExistingCase{0, "arcconf.efi create 1 logicaldrive NAME more 307200 1 "
                        "ARRAY 0 noprompt"},
        ExistingCase{1, "arcconf.efi create 1 logicaldrive NAME more 307200 "
                        "1Triple ARRAY 1 noprompt"},
        ExistingCase{2, "arcconf.efi create 1 logicaldrive NAME more 307200 5 "
                        "ARRAY 2 noprompt"}));

struct RefusalCase {
  const char *Situation;
  UINT32 ErrorCode;
  const char *Trace;
};

TEST_F(MchpChangeTest, RefusedCreatesRereadAndCarryTheirCode) {
  ReadConfiguration();
  const RefusalCase Cases[] = {
      {"no drives", 0x00200015u, "[MchpCreateVolume]No Free Physical Drives!"},
      {"no array", 0x00200021u, "[MchpCreateVolume]Array 9 is empty!"},
      {"no card", 0x00200022u,
       "[MchpCreateVolume] Error code: 0x200022, Status: Aborted"},
  };
  for (const RefusalCase &Case : Cases) {
    SCOPED_TRACE(Case.Situation);
    RAID_VOLUME_PARAMETER *Request = Parameter({}, 0, 0, u"x");
    const std::string Situation = Case.Situation;
    UINT32 CardId = Controller_->Private->CardId;
    if (Situation == "no array") {
      Request->NewArray = 0;
      Request->ArrayId = 9;
    } else if (Situation == "no card") {
      Request->DriveCount = 1;
      Controller_->Private->CardId = RAID_CARD_ID_UNSET;
      // The re-read refuses too, but the create's own code comes first.
    }
    UINT32 ErrorCode = 0;
    EFI_STATUS Status = MchpCreateVolume(Request, 0, &ErrorCode);
    EXPECT_EQ(ErrorCode, Case.ErrorCode);
    if (Situation != "no card") {
      EXPECT_EQ(Status, EFI_SUCCESS);
      EXPECT_EQ(NewCommands(),
                std::vector<std::string>{"arcconf.efi getconfig 1"});
    } else {
      EXPECT_EQ(Status, EFI_ABORTED);
    }
    TraceHas(Case.Trace);
    Controller_->Private->CardId = CardId;
    Baseline_ = Commands().size();
  }
}

TEST_F(MchpChangeTest, ACreateOnAnUnknownControllerRunsNothing) {
  ReadConfiguration();
  RAID_VOLUME_PARAMETER *Request = Parameter({0}, 0, 0, u"x");
  Request->ControllerId = 77;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpCreateVolume(Request, 0, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200021u);
  TraceHas("[MchpCreateVolume]Not find controller.");
  EXPECT_TRUE(NewCommands().empty());
}

TEST_F(MchpChangeTest, DeletesNameTheArrayOrLogicalDriveAndReread) {
  ReadConfiguration();
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpDeleteVolume(Volume(2, 2), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  TraceHas("[MchpDeleteVolume]Controller id: 2, Array id: 2");
  EXPECT_EQ(MchpDeleteArray(Array(1), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(),
            (std::vector<std::string>{
                "arcconf.efi DELETE 1 LOGICALDRIVE 2 noprompt",
                "arcconf.efi getconfig 1",
                "arcconf.efi DELETE 1 ARRAY 1 noprompt",
                "arcconf.efi getconfig 1"}));
}

TEST_F(MchpChangeTest, AFailedRereadAfterADeleteIsTracedAndPassedOn) {
  ReadConfiguration();
  RAID_ARRAY *Target = Array(0);
  // The re-read of a card the tool no longer knows finds nothing; make the
  // refresh fail by an unset card after the delete command ran.
  Shell_->SetHandler([this](const std::string &CommandLine) {
    if (CommandLine.rfind("arcconf.efi DELETE", 0) == 0) {
      Controller_->Private->CardId = RAID_CARD_ID_UNSET;
    }
    return std::string();
  });
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpDeleteArray(Target, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200022u);
  TraceHas(
      "[MchpDeleteArray] Failed to refresh controller information, Status: "
      "Aborted, Error code: 0x200022");
}

TEST_F(MchpChangeTest, ADeleteOfAnUnsetCardRunsNothing) {
  ReadConfiguration();
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpDeleteVolume(Volume(0, 0), &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200022u);
  EXPECT_EQ(MchpDeleteArray(Array(0), &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200022u);
  EXPECT_TRUE(NewCommands().empty());
}

TEST_F(MchpChangeTest, AHotSpareIsOfferedToEveryArrayByPosition) {
  ReadConfiguration();
  RAID_PHYSICAL_DRIVE *Drive = this->Drive(3);
  ASSERT_NE(Drive, nullptr);
  AnswerOthers("Command failed.\n");
  Answer("arcconf.efi SETSTATE 1 DEVICE 1 2 HSP ARRAY 1 noprompt",
         "Command completed successfully.\n");
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpSetPhysicalDriveState(Controller_, Drive, 30, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(),
            (std::vector<std::string>{
                "arcconf.efi SETSTATE 1 DEVICE 1 2 HSP ARRAY 0 noprompt",
                "arcconf.efi SETSTATE 1 DEVICE 1 2 HSP ARRAY 1 noprompt",
                "arcconf.efi SETSTATE 1 DEVICE 1 2 HSP ARRAY 2 noprompt"}));
  EXPECT_EQ(Drive->State, RAID_STATE2_DEDICATED);
  EXPECT_EQ(Drive->Role, RAID_ROLE_HOT_SPARE);
  EXPECT_EQ(Controller_->GlobalSpareCount, 1u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 3u);
  // The model was edited in place: it is still current.
  EXPECT_NE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID, 0u);

  Answer("arcconf.efi SETSTATE 1 DEVICE 1 2 RDY",
         "Command completed successfully.\n");
  EXPECT_EQ(MchpSetPhysicalDriveState(Controller_, Drive, 22, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(NewCommands().back(), "arcconf.efi SETSTATE 1 DEVICE 1 2 RDY");
  EXPECT_EQ(Drive->State, RAID_STATE2_UGOOD);
  EXPECT_EQ(Controller_->GlobalSpareCount, 0u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 4u);
}

TEST_F(MchpChangeTest, AFailedStateChangeIsSuccessWithTheDriveUnchanged) {
  ReadConfiguration();
  RAID_PHYSICAL_DRIVE *Drive = this->Drive(0);
  AnswerOthers("Device is not ready.\nCommand failed.\n");
  for (UINT32 Target : {30u, 22u}) {
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(MchpSetPhysicalDriveState(Controller_, Drive, Target, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    EXPECT_EQ(Drive->State, RAID_STATE2_UGOOD);
    TraceHas("[MchpSetPhysicalDriveState]Failed to change disk state");
  }
}

TEST_F(MchpChangeTest, OtherStatesAndTheChangeOfAllDrivesDoNothing) {
  ReadConfiguration();
  RAID_PHYSICAL_DRIVE *Drive = this->Drive(0);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpSetPhysicalDriveState(Controller_, Drive, 28, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  ErrorCode = 0xDEAD;
  EXPECT_EQ(MchpSetAllPhysicalDriveState(Controller_, 22, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  TraceHas("[MchpSetAllPhysicalDriveState] start");
  EXPECT_TRUE(NewCommands().empty());
  EXPECT_EQ(Drive->State, RAID_STATE2_UGOOD);
}

TEST_F(MchpWorld, AHotSpareWithoutArraysRunsNothing) {
  ReadModel(Getconfig("", "", Channel(0) + DriveBlock(DriveLines{})));
  const size_t Before = Commands().size();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(MchpSetPhysicalDriveState(Controller_, Drive(0), 30, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Commands().size(), Before);
  EXPECT_EQ(Drive(0)->State, RAID_STATE2_UGOOD);
}

}  // namespace
}  // namespace mchp_test
