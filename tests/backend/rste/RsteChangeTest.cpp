// Changing an engine: the create forms, deletes by name (and the names that
// cannot reach the tool), the /X and /SP disk states, and what each leaves
// in the model.
#include <Library/UefiBootServicesTableLib.h>

#include "RsteWorld.h"

namespace rste_test {
namespace {

// One RAID 1 array (disks 0 and 1) holding volumes named First and
// Second, free disks 2 to 5 and spare 6.
InfoText TwoVolumes(const std::string &First, const std::string &Second) {
  InfoText Info;
  Info.Disks = 7;
  Info.ArraySizeLines = {" Size: TotalMB: 1907458 FreeMB:0"};
  Info.Volumes = {VolumeText{.Name = First}, VolumeText{.Name = Second}};
  for (const char *Number : {"0", "1"}) {
    Info.DiskBlocks.push_back(
        DiskText{.Number = Number, .State = "(Member Disk)", .ArrayId = "0"});
  }
  for (const char *Number : {"2", "3", "4", "5"}) {
    Info.DiskBlocks.push_back(DiskText{.Number = Number});
  }
  Info.DiskBlocks.push_back(DiskText{.Number = "6", .State = "(Spare Disk)"});
  return Info;
}

class RsteChangeTest : public RsteWorld {
 protected:
  VOID ReadTwoVolumes(const std::string &First = "Data_1",
                      const std::string &Second = "Data_2") {
    AnswerReads(VersionReport("Intel RSTe SATA EFI Driver Version"),
                InfoReport(TwoVolumes(First, Second)),
                StatusReport({{First, "Normal"}, {Second, "Normal"}}, 6));
    ReadModel();
    Setup_->ClearTrace();
    MarkCommands();
  }
  RAID_VOLUME_PARAMETER *NewDisks(std::vector<UINT32> Disks, UINT8 Level,
                                  UINT64 Size) {
    Disks_ = Disks;
    Disks_.push_back(RAID_DRIVE_LIST_END);
    Parameter_ = {};
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller_->Id;
    Parameter_.DriveList = Disks_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Disks.size());
    Parameter_.RaidLevel = Level;
    Parameter_.Name = Name_;
    Parameter_.Size = Size;
    Parameter_.Reserved = 1;
    Parameter_.StripeSize = 128;
    return &Parameter_;
  }
  static std::vector<std::string> Reads() {
    return {"RCfgSata.efi /V", "RCfgSata.efi /I", "RCfgSata.efi /ST"};
  }
  static std::vector<std::string> Then(std::vector<std::string> Lines) {
    for (const std::string &Read : Reads()) {
      Lines.push_back(Read);
    }
    return Lines;
  }

  CHAR16 Name_[17] = u"Vol_A";
  std::vector<UINT32> Disks_;
  RAID_VOLUME_PARAMETER Parameter_ = {};
};

TEST_F(RsteChangeTest, CreateOnNewDisksInItsFourForms) {
  struct Case {
    UINT8 Level;
    UINT64 Size;
    std::string Command;
  } Cases[] = {
      {5, 200500, "RCfgSata.efi /Y /C:Vol_A /SS:128 /L:5 /S:200 /DS:2 3 4"},
      {1, 200500, "RCfgSata.efi /Y /C:Vol_A /L:1 /S:200 /DS:2 3 4"},
      // Below 1 GB the volume takes the whole free space.
      {0, 999, "RCfgSata.efi /Y /C:Vol_A /SS:128 /L:0 /S:100% /DS:2 3 4"},
      {10, 0, "RCfgSata.efi /Y /C:Vol_A /SS:128 /L:10 /S:100% /DS:2 3 4"},
      {1, 0, "RCfgSata.efi /Y /C:Vol_A /L:1 /S:100% /DS:2 3 4"},
  };
  ReadTwoVolumes();
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Command);
    MarkCommands();
    Answer(C.Command, "Creating Volume....Successfully created volume\n");
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(RsteCreateVolume(NewDisks({2, 3, 4}, C.Level, C.Size), 0, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    EXPECT_EQ(NewCommands(), Then({C.Command}));
  }
  TraceHas("[RsteCreateVolume]Error code 0x0, status = Success.\n");
}

TEST_F(RsteChangeTest, CreateInAnExistingArrayUsesItsMembersAndLevel) {
  ReadTwoVolumes();
  // Members each followed by a blank; RAID 1 takes no stripe size, no size.
  const std::string Command = "RCfgSata.efi /Y /C:Vol_A /L:1 /DS:0 1 ";
  Answer(Command, "Creating Volume....Successfully created volume\n");
  RAID_VOLUME_PARAMETER *Parameter = NewDisks({}, 5, 10000);
  Parameter->NewArray = 0;
  Parameter->ArrayId = 0;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(RsteCreateVolume(Parameter, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(), Then({Command}));

  Array(0)->RaidLevel = 5;
  MarkCommands();
  Parameter->ArrayId = 0;
  // The re-read above rebuilt the array as RAID 1: set the level again.
  Array(0)->RaidLevel = 5;
  EXPECT_EQ(RsteCreateVolume(Parameter, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(NewCommands(),
            Then({"RCfgSata.efi /Y /C:Vol_A /SS:128 /L:5 /DS:0 1 "}));
}

TEST_F(RsteChangeTest, CreateRefusalsStillReReadTheEngine) {
  ReadTwoVolumes();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteCreateVolume(NewDisks({}, 0, 0), 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200015u);
  TraceHas("[RsteCreateVolume]No Free Physical Drives!\n");
  EXPECT_EQ(NewCommands(), Reads());

  MarkCommands();
  RAID_VOLUME_PARAMETER *Parameter = NewDisks({2}, 0, 0);
  Parameter->NewArray = 0;
  Parameter->ArrayId = 9;
  EXPECT_EQ(RsteCreateVolume(Parameter, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200021u);
  TraceHas("[RsteCreateVolume]Array 9 is empty!\n");
  EXPECT_EQ(NewCommands(), Reads());

  MarkCommands();
  Parameter = NewDisks({2, 3}, 0, 0);
  Parameter->ControllerId = 77;
  EXPECT_EQ(RsteCreateVolume(Parameter, 0, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200021u);
  TraceHas("[RsteCreateVolume]Not find controller.\n");
  EXPECT_TRUE(NewCommands().empty());
}

TEST_F(RsteChangeTest, AFailedCreateKeepsItsOwnErrorCode) {
  ReadTwoVolumes();
  AnswerOthers("ERROR: Too few disks for the selected RAID level.\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteCreateVolume(NewDisks({2}, 5, 0), 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x0020002Fu);
  TraceHas("[RsteCreateVolume] VD creation command failed\n");
  TraceHas("[RsteCreateVolume]Error code 0x20002F, status = Success.\n");
}

TEST_F(RsteChangeTest, DeleteArrayStopsAtTheFirstFailure) {
  ReadTwoVolumes();
  Answer("RCfgSata.efi /Y /D:Data_1", "ERROR: Volume Data_1 not found.\n");
  Answer("RCfgSata.efi /Y /D:Data_2", "Deleting  Volume...Successfully deleted volume\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteDeleteArray(Array(0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_EQ(NewCommands(), Then({"RCfgSata.efi /Y /D:Data_1"}));
  TraceHas("[RsteDeleteArray] Failed to execute command\n");
}

TEST_F(RsteChangeTest, DeleteArrayDeletesEveryVolumeByName) {
  ReadTwoVolumes();
  AnswerOthers("Deleting  Volume...Successfully deleted volume\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteDeleteArray(Array(0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(NewCommands(), Then({"RCfgSata.efi /Y /D:Data_1",
                                 "RCfgSata.efi /Y /D:Data_2"}));
}

TEST_F(RsteChangeTest, DeleteVolumeByName) {
  ReadTwoVolumes();
  Answer("RCfgSata.efi /Y /D:Data_2", "ERROR: Volume Data_2 not found.\n");
  RAID_VOLUME *Second = BASE_CR(Array(0)->SegmentList.BackLink, RAID_VOLUME, Link);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteDeleteVolume(Second, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_EQ(NewCommands(), Then({"RCfgSata.efi /Y /D:Data_2"}));
  TraceHas("[RsteDeleteVolume] Failed to execute the command\n");
}

TEST_F(RsteChangeTest, ANameThatIsNoWholeWordIsNeverPassedOn) {
  const std::string Names[] = {"Data 1", "Data/1", "Da\tta", "Data_1/Y",
                               "\"Data\"", "Data^1", "Data>1",
                               std::string(95, 'N')};
  for (const std::string &Bad : Names) {
    SCOPED_TRACE(Bad);
    RsteResetState();
    ReadTwoVolumes(Bad, "Data_2");
    AnswerOthers("Deleting  Volume...Successfully deleted volume\n");
    RAID_VOLUME *First = BASE_CR(Array(0)->SegmentList.ForwardLink, RAID_VOLUME, Link);
    ASSERT_EQ(Narrow(First->Name), Bad);
    UINT32 ErrorCode = 0;
    EXPECT_EQ(RsteDeleteVolume(First, &ErrorCode), EFI_ABORTED);
    EXPECT_EQ(ErrorCode, 0x00200030u);
    ErrorCode = 0;
    EXPECT_EQ(RsteDeleteArray(Array(0), &ErrorCode), EFI_ABORTED);
    EXPECT_EQ(ErrorCode, 0x00200030u);
    EXPECT_TRUE(NewCommands().empty());
    TraceHas("[RsteDeleteVolume]Volume 0: its name cannot be passed to the "
             "tool as one word, not deleted\n");
  }
}

TEST_F(RsteChangeTest, ARefusedSecondNameStopsTheArrayAfterTheFirst) {
  ReadTwoVolumes("Data_1", "Bad name");
  AnswerOthers("Deleting  Volume...Successfully deleted volume\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteDeleteArray(Array(0), &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200030u);
  EXPECT_EQ(NewCommands(), Then({"RCfgSata.efi /Y /D:Data_1"}));
}

TEST_F(RsteChangeTest, DiskStatesMoveTheDiskAndTheCounts) {
  ReadTwoVolumes();
  Answer("RCfgSata.efi /Y /SP /DS:3", "Marking selected disks as spares...Completed\n");
  Answer("RCfgSata.efi /Y /X /DS:6", "Removing MetaData from selected disks...Completed\n");
  ASSERT_EQ(Controller_->UnconfiguredDriveCount, 4u);
  ASSERT_EQ(Controller_->GlobalSpareCount, 1u);
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(RsteSetPhysicalDriveState(Controller_, Disk(3), RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Disk(3)->State, static_cast<UINT32>(RAID_STATE4_GHS));
  EXPECT_EQ(Disk(3)->Role, static_cast<UINT32>(RAID_ROLE_HOT_SPARE));
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 3u);
  EXPECT_EQ(Controller_->GlobalSpareCount, 2u);
  EXPECT_EQ(RsteSetPhysicalDriveState(Controller_, Disk(6), RAID_STATE4_NON_RAID,
                                      &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Disk(6)->State, static_cast<UINT32>(RAID_STATE4_NON_RAID));
  EXPECT_EQ(Disk(6)->Role, static_cast<UINT32>(RAID_ROLE_UNCONFIGURED));
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 4u);
  EXPECT_EQ(Controller_->GlobalSpareCount, 1u);
  // The cached model stays valid: nothing is read again.
  EXPECT_EQ(NewCommands(), (std::vector<std::string>{"RCfgSata.efi /Y /SP /DS:3",
                                                     "RCfgSata.efi /Y /X /DS:6"}));
  EXPECT_NE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID, 0u);
  size_t Spares = 0;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller_->SpareDriveList)) {
    Spares++;
    EXPECT_EQ(Drive->Id, 3u);
  }
  EXPECT_EQ(Spares, 1u);
}

TEST_F(RsteChangeTest, AMemberMadeNonRaidMovesTheCountsAsAnySpareWould) {
  ReadTwoVolumes();
  Answer("RCfgSata.efi /Y /X /DS:0", "Removing MetaData from selected disks...Completed\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteSetPhysicalDriveState(Controller_, Disk(0), RAID_STATE4_NON_RAID,
                                      &ErrorCode),
            EFI_SUCCESS);
  // Deliberately simple: one more free disk, one spare fewer.
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 5u);
  EXPECT_EQ(Controller_->GlobalSpareCount, 0u);
  EXPECT_EQ(Array(0)->MemberDriveCount, 2u);
}

TEST_F(RsteChangeTest, AFailedOrUnknownDiskStateChangesNothing) {
  ReadTwoVolumes();
  Answer("RCfgSata.efi /Y /SP /DS:3", "ERROR: Disk 3 is not available.\n");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(RsteSetPhysicalDriveState(Controller_, Disk(3), RAID_STATE4_GHS, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0x00200031u);
  EXPECT_EQ(Disk(3)->State, static_cast<UINT32>(RAID_STATE4_NON_RAID));
  TraceHas("[RsteSetPhysicalDriveState]Failed to change disk state\n");
  MarkCommands();
  EXPECT_EQ(RsteSetPhysicalDriveState(Controller_, Disk(3), RAID_STATE4_ONLINE,
                                      &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(NewCommands().empty());
}

}  // namespace
}  // namespace rste_test
