// Changing an M.2 adapter: the create and delete command lines, the re-read
// after each, their trace lines and error codes, and the drive-state
// operations that run nothing.
#include "M2Outputs.h"
#include "M2World.h"
#include "RaidLibToolRunner.h"

namespace m2_test {
namespace {

class M2ChangeTest : public M2World {
 protected:
  // Reads an adapter with the given volumes (drives 0 and 1 online).
  VOID ReadWith(const std::vector<VolumeBlock> &Volumes) {
    AnswerReports(HbaReport(),
                  VdReport(Volumes, std::to_string(Volumes.size())),
                  Volumes.empty()
                      ? PdReport({kReadyDrive0, kReadyDrive1}, "2")
                      : PdReport({kOnlineDrive0, kRebuildDrive1}, "2"));
    ReadModel();
    Setup_->ClearTrace();
    Baseline_ = Commands().size();
  }
  std::vector<std::string> NewCommands() const {
    std::vector<std::string> All = Commands();
    return std::vector<std::string>(All.begin() + Baseline_, All.end());
  }
  RAID_VOLUME_PARAMETER *Parameter(std::vector<UINT32> Members) {
    Members.push_back(RAID_DRIVE_LIST_END);
    Members_ = Members;
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller_->Id;
    Parameter_.DriveList = Members_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Members_.size() - 1);
    Parameter_.Name = Name_;
    Parameter_.Reserved = 1;
    Parameter_.RaidLevel = 1;
    Parameter_.StripeSize = 64;
    return &Parameter_;
  }

  size_t Baseline_ = 0;
  RAID_VOLUME_PARAMETER Parameter_ = {};
  std::vector<UINT32> Members_;
  CHAR16 Name_[17] = u"Mirror";
};

const std::vector<std::string> kReRead = {"mvsetup.efi info -o hba",
                                          "mvsetup.efi 0 info -o vd",
                                          "mvsetup.efi 0 info -o pd"};

std::vector<std::string> Then(std::string First) {
  std::vector<std::string> All = {std::move(First)};
  All.insert(All.end(), kReRead.begin(), kReRead.end());
  return All;
}

TEST_F(M2ChangeTest, CreateJoinsTheDrivesAndReadsTheAdapterAgain) {
  ReadWith({});
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2CreateVolume(Parameter({0, 1}), 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(),
            Then("mvsetup.efi 0 create -o vd -r1 -d 0,1 -n Mirror -b 64 "
                 "--waiveconfirmation"));
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
  EXPECT_TRUE(TraceHas("[M2CreateVolume]Command: mvsetup.efi 0 create -o vd "
                       "-r1 -d 0,1 -n Mirror -b 64 --waiveconfirmation\r\n"));
  EXPECT_TRUE(
      TraceHas("[M2CreateVolume]Error code: 0x0, status = Success\r\n"));
}

TEST_F(M2ChangeTest, CreateWithoutDrivesRunsNothingButTheReRead) {
  ReadWith({});
  UINT32 ErrorCode = 0;
  EXPECT_EQ(M2CreateVolume(Parameter({}), 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, (UINT32)M2_ERROR_NO_FREE_DRIVES);
  EXPECT_EQ(NewCommands(), kReRead);
  EXPECT_TRUE(TraceHas("[M2CreateVolume]No Free Physical Drives!\r\n"));
  EXPECT_TRUE(
      TraceHas("[M2CreateVolume]Error code: 0x200015, status = Success\r\n"));
}

TEST_F(M2ChangeTest, CreateOnAnUnknownControllerIsRefused) {
  ReadWith({});
  RAID_VOLUME_PARAMETER *P = Parameter({0, 1});
  P->ControllerId = 9;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(M2CreateVolume(P, 0, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, (UINT32)RAID_ERROR_MISSING);
  EXPECT_TRUE(NewCommands().empty());
  EXPECT_TRUE(TraceHas("[M2CreateVolume]Not find controller.\r\n"));
}

// A drive list that does not fit its 100 characters is never cut.
TEST_F(M2ChangeTest, CreateWithADriveListTooLongRunsNoCreate) {
  ReadWith({});
  std::vector<UINT32> Many(12, 4000000000u);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(M2CreateVolume(Parameter(Many), 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, (UINT32)RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_EQ(NewCommands(), kReRead);
}

// A name that is no one word for mvsetup would take "-b" as the name or
// end the options early: no create runs, the adapter is read again.
TEST_F(M2ChangeTest, CreateWithANameThatIsNoOneWordRunsNoCreate) {
  for (const char16_t *Name : {u"", u"-b", u"Mir ror", u"Mirror\r\n"}) {
    SCOPED_TRACE(std::u16string(Name).size());
    ReadWith({});
    std::u16string(Name).copy(Name_, 16);
    Name_[std::u16string(Name).size()] = 0;
    UINT32 ErrorCode = 0;
    EXPECT_EQ(M2CreateVolume(Parameter({0, 1}), 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, (UINT32)RAID_ERROR_NOT_ONE_WORD);
    EXPECT_EQ(NewCommands(), kReRead);
  }
}

TEST_F(M2ChangeTest, DeleteArrayDeletesOnlyTheFirstVolume) {
  VolumeBlock Second = kMirror;
  Second.Id = "3";
  Second.Name = "Second";
  VolumeBlock First = kMirror;
  First.Id = "2";
  ReadWith({First, Second});
  RAID_ARRAY *Array = OnlyArray();
  ASSERT_NE(Array, nullptr);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2DeleteArray(Array, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(),
            Then("mvsetup.efi 0 delete -o vd -i 2 -f --waiveconfirmation"));
  EXPECT_TRUE(
      TraceHas("[M2DeleteArray]Error code 0x0, status = Success.\r\n"));
}

TEST_F(M2ChangeTest, DeleteVolumeNamesThatVolume) {
  VolumeBlock Second = kMirror;
  Second.Id = "3";
  ReadWith({kMirror, Second});
  std::vector<RAID_VOLUME *> Volumes = this->Volumes();
  ASSERT_EQ(Volumes.size(), 2u);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2DeleteVolume(Volumes[1], &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(),
            Then("mvsetup.efi 0 delete -o vd -i 3 -f --waiveconfirmation"));
  EXPECT_TRUE(
      TraceHas("[M2DeleteVolume]Error code: 0x0, status = Success\r\n"));
}

TEST_F(M2ChangeTest, ReReadErrorIsTakenOverByTheDelete) {
  ReadWith({kMirror});
  // The adapter report now fails for memory: nothing but the error code
  // shows it.
  Firmware_->Memory().FailAllocationsFrom(1);
  UINT32 ErrorCode = 0;
  EFI_STATUS Status = M2DeleteArray(OnlyArray(), &ErrorCode);
  Firmware_->Memory().ClearFaults();
  EXPECT_EQ(Status, EFI_OUT_OF_RESOURCES);
  EXPECT_EQ(ErrorCode, (UINT32)RAID_ERROR_OUT_OF_RESOURCES);
}

TEST_F(M2ChangeTest, DriveStateChangesOnlySayTheyAreNotSupported) {
  ReadWith({});
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2SetPhysicalDriveState(Controller_, Controller_->DriveTable[0],
                                    RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  ErrorCode = 0xDEAD;
  EXPECT_EQ(M2SetAllPhysicalDriveState(Controller_, RAID_STATE_JBOD,
                                       &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(NewCommands().empty());
  EXPECT_TRUE(TraceHas("[M2SetPhysicalDriveState]M.2 card does not support "
                       "this functionality.\r\n"));
  EXPECT_TRUE(TraceHas("[M2SetAllPhysicalDriveState]M.2 card does not "
                       "support this functionality.\r\n"));
}

// Without the shell-command service nothing runs: each operation returns
// the firmware's status at once, with its error code.
TEST_F(M2ChangeTest, MissingShellServiceStopsEveryOperation) {
  ReadWith({kMirror});
  RAID_ARRAY *Array = OnlyArray();
  Shell_.reset();
  RaidLibResetToolRunner();
  Controller_->Private->Flags = 0;
  const UINT32 NotFound = RaidLibFirmwareErrorCode(EFI_NOT_FOUND);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(M2GetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, NotFound);
  ErrorCode = 0;
  EXPECT_EQ(M2CreateVolume(Parameter({0, 1}), 0, &ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, NotFound);
  ErrorCode = 0;
  EXPECT_EQ(M2DeleteArray(Array, &ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, NotFound);
  EXPECT_TRUE(TraceHas("[M2GetControllerInfo]Error code: 0x20000E\r\n"));
}

}  // namespace
}  // namespace m2_test
