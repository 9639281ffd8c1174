// Reading an M.2 adapter: the three reports into the one array, the drive
// lists by status, and the rules for empty and unknown values.
#include "M2Outputs.h"
#include "M2World.h"

namespace m2_test {
namespace {

using M2ReadTest = M2World;

TEST_F(M2ReadTest, MirrorWithARebuildingDriveFillsTheOneArray) {
  AnswerReports(HbaReport(), VdReport({kMirror}, "1"),
                PdReport({kOnlineDrive0, kRebuildDrive1}, "2"));
  ReadModel();
  EXPECT_EQ(Commands(), (std::vector<std::string>{"mvsetup.efi info -o hba",
                                                  "mvsetup.efi 0 info -o vd",
                                                  "mvsetup.efi 0 info -o pd"}));
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
  EXPECT_EQ(Narrow(Controller_->SerialNumber), "M2SN0001");
  EXPECT_EQ(Narrow(Controller_->FirmwareVersion), "2.3.10.1088");
  EXPECT_EQ(Controller_->SlotNumber, 0);
  EXPECT_TRUE(TraceHas("[ParseControllerInfo]Adapter ID: 0\r\n"));

  RAID_ARRAY *Array = OnlyArray();
  ASSERT_NE(Array, nullptr);
  EXPECT_EQ(Array->Id, 0u);
  EXPECT_EQ(Narrow(Array->Name), "Array 0");
  EXPECT_EQ(Array->RaidLevel, 1);
  EXPECT_EQ(Array->MemberDriveCount, 2u);
  EXPECT_EQ(Array->VolumeCount, 1u);
  EXPECT_EQ(Array->SizeFigure, 447068u);
  EXPECT_EQ(Array->SizeUnit, (UINT32)RAID_UNIT_GB);
  EXPECT_EQ(Array->FreeCapacity, 0u);
  EXPECT_EQ(Array->FreeCapacityUnit, (UINT32)RAID_UNIT_GB);
  EXPECT_EQ(Array->FreeSegmentCount, 0u);
  EXPECT_EQ(Array->DedicatedSpareCount, 0u);

  std::vector<RAID_VOLUME *> Volumes = this->Volumes();
  ASSERT_EQ(Volumes.size(), 1u);
  EXPECT_EQ(Volumes[0]->Id, 0u);
  EXPECT_EQ(Narrow(Volumes[0]->Name), "VD_R1_1");
  EXPECT_EQ(Volumes[0]->IsVolume, 1);
  EXPECT_EQ(Volumes[0]->State, (UINT32)RAID_STATE3_OPTIMAL);
  EXPECT_EQ(Volumes[0]->StripeSize, 64u);
  EXPECT_EQ(Volumes[0]->SizeFigure, 447068u);
  EXPECT_EQ(Volumes[0]->SizeUnit, (UINT32)RAID_UNIT_GB);

  EXPECT_EQ(Locations(&Array->DriveList),
            (std::vector<std::string>{"SSD0", "SSD1"}));
  EXPECT_EQ(CountListEntries(&Controller_->PhysicalDriveList), 0u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 0u);
  ASSERT_EQ(Controller_->DiskDriveCount, 2u);
  RAID_PHYSICAL_DRIVE *Rebuilding = Controller_->DriveTable[1];
  EXPECT_EQ(Controller_->DriveTable[2], nullptr);
  EXPECT_EQ(Controller_->DriveTable[0]->State, (UINT32)RAID_STATE3_ONLINE);
  EXPECT_EQ(Rebuilding->State, (UINT32)RAID_STATE3_REBUILD);
  EXPECT_EQ(Rebuilding->Role, (UINT32)RAID_ROLE_MEMBER);
  EXPECT_EQ(Rebuilding->Owner, Array);
  EXPECT_EQ(Rebuilding->MediaType, (UINT32)RAID_MEDIA_SATA_SSD);
  EXPECT_EQ(Rebuilding->SizeFigure, 223570u);
  EXPECT_EQ(Rebuilding->SizeUnit, (UINT32)RAID_UNIT_GB);
  EXPECT_EQ(Narrow(Rebuilding->Model), "MTFDDAV240TDU");
}

TEST_F(M2ReadTest, NoVolumeShowsNoArrayAndReadyDrivesUnconfigured) {
  AnswerReports(HbaReport(), VdReport({}, "0"),
                PdReport({kReadyDrive0, kReadyDrive1}, "2"));
  ReadModel();
  EXPECT_EQ(CountListEntries(&Controller_->ArrayList), 0u);
  EXPECT_EQ(Locations(&Controller_->PhysicalDriveList),
            (std::vector<std::string>{"SSD0", "SSD1"}));
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 2u);
  ASSERT_EQ(Controller_->DiskDriveCount, 2u);
  EXPECT_EQ(Controller_->DriveTable[0]->State, (UINT32)RAID_STATE3_READY);
  EXPECT_EQ(Controller_->DriveTable[0]->Role, (UINT32)RAID_ROLE_UNCONFIGURED);
  EXPECT_EQ(Controller_->DriveTable[0]->Owner, Controller_);
}

// The drive is the table's alone; the fixture's leak check shows it is
// freed with the model.
TEST_F(M2ReadTest, DriveOfAnUnknownStatusIsInTheTableOnly) {
  DriveBlock Failed = kReadyDrive1;
  Failed.Status = "failed";
  AnswerReports(HbaReport(), VdReport({}, "0"),
                PdReport({kReadyDrive0, Failed}, "2"));
  ReadModel();
  ASSERT_EQ(Controller_->DiskDriveCount, 2u);
  RAID_PHYSICAL_DRIVE *Drive = Controller_->DriveTable[1];
  EXPECT_EQ(Narrow(Drive->Location), "SSD1");
  EXPECT_EQ(Drive->State, (UINT32)RAID_STATE_INVALID);
  EXPECT_EQ(Drive->Owner, nullptr);
  EXPECT_EQ(Locations(&Controller_->PhysicalDriveList),
            (std::vector<std::string>{"SSD0"}));
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 1u);
  // A second read frees it as well.
  ReadModel();
  EXPECT_EQ(Controller_->DriveTable[1]->Owner, nullptr);
}

// Members that the volume report dropped stay reachable by the table when
// the array goes for having no volume.
TEST_F(M2ReadTest, MembersOfAnArrayWithoutVolumesStayInTheTable) {
  AnswerReports(HbaReport(), VdReport({}, "0"),
                PdReport({kOnlineDrive0, kReadyDrive1}, "2"));
  ReadModel();
  EXPECT_EQ(CountListEntries(&Controller_->ArrayList), 0u);
  ASSERT_EQ(Controller_->DiskDriveCount, 2u);
  EXPECT_EQ(Controller_->DriveTable[0]->Owner, nullptr);
  EXPECT_EQ(Controller_->DriveTable[0]->State, (UINT32)RAID_STATE3_ONLINE);
  EXPECT_EQ(Locations(&Controller_->PhysicalDriveList),
            (std::vector<std::string>{"SSD1"}));
}

TEST_F(M2ReadTest, EmptyMaximumSupportedDiskGivesTwoUntilTheDriveCount) {
  UINT32 ErrorCode = 0;
  ASSERT_EQ(ParseControllerInfo(LoadToolOutput(HbaReport("")), Controller_,
                                &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->DiskDriveCount, 2u);
  ASSERT_EQ(ParseControllerInfo(LoadToolOutput(HbaReport("4")), Controller_,
                                &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->DiskDriveCount, 4u);

  // The table is made for four; the report's count replaces it.
  AnswerReports(HbaReport("4"), VdReport({}, "0"),
                PdReport({kReadyDrive0}, "1"));
  ReadModel();
  EXPECT_EQ(Controller_->DiskDriveCount, 1u);
}

// More drives than the table was made for: the table stops at its size and
// the drive beyond it is dropped, never written past the table.
TEST_F(M2ReadTest, DrivesBeyondTheAdaptersCountAreNotTabled) {
  DriveBlock Third = kReadyDrive1;
  Third.Id = "2";
  AnswerReports(HbaReport("2"), VdReport({}, "0"),
                PdReport({kReadyDrive0, kReadyDrive1, Third}, "3"));
  ReadModel();
  EXPECT_EQ(Controller_->DiskDriveCount, 2u);
  EXPECT_EQ(Controller_->DriveTable[2], nullptr);
  EXPECT_TRUE(TraceHas("[ParsePhysicalDriveInfo]Drive SSD2 is beyond the 2 "
                       "drives the adapter reported\r\n"));
}

TEST_F(M2ReadTest, SlotIsTakenOnlyWhileUnknown) {
  UINT32 ErrorCode = 0;
  ASSERT_EQ(ParseControllerInfo(LoadToolOutput(HbaReport("2", "")), Controller_,
                                &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->SlotNumber, RAID_SLOT_NUMBER_NONE);
  EXPECT_TRUE(TraceHas("[ParseControllerInfo]Controller slot number: NULL\r\n"));
  ASSERT_EQ(ParseControllerInfo(LoadToolOutput(HbaReport("2", "5")), Controller_,
                                &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->SlotNumber, 5);
  ASSERT_EQ(ParseControllerInfo(LoadToolOutput(HbaReport("2", "7")), Controller_,
                                &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Controller_->SlotNumber, 5);
}

TEST_F(M2ReadTest, EmptyValuesOfAVolumeAndItsArray) {
  VolumeBlock Bare = {"", "", "", "", "", "", ""};
  AnswerReports(HbaReport(), VdReport({Bare}, ""),
                PdReport({kReadyDrive0, kReadyDrive1}, "2"));
  ReadModel();
  // "Total # of VD" empty leaves no volume counted: the array goes.
  EXPECT_EQ(CountListEntries(&Controller_->ArrayList), 0u);
  // "# of PDs" empty also empties the table.
  EXPECT_EQ(Controller_->DiskDriveCount, 0u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 2u);

  RAID_ARRAY Array = {};
  InitializeListHead(&Array.SegmentList);
  InitializeListHead(&Array.DriveList);
  Array.Controller = Controller_;
  UINT32 ErrorCode = 0;
  ASSERT_EQ(ParseVolumeInfo(LoadToolOutput(VdReport({Bare}, "1")), &Array,
                            &ErrorCode),
            EFI_SUCCESS);
  RAID_VOLUME *Volume = uefi::RecordOf<&RAID_VOLUME::Link>(
      GetFirstNode(&Array.SegmentList));
  EXPECT_EQ(Volume->Id, M2_ID_NONE);
  EXPECT_EQ(Narrow(Volume->Name), "");
  EXPECT_EQ(Volume->State, (UINT32)RAID_STATE3_OFFLINE);
  EXPECT_EQ(Volume->StripeSize, (UINT32)RAID_STRIPE_SIZE_OTHER);
  EXPECT_EQ(Volume->SizeFigure, 0u);
  EXPECT_EQ(Array.RaidLevel, M2_RAID_LEVEL_UNKNOWN);
  EXPECT_EQ(Array.MemberDriveCount, 0u);
  EXPECT_EQ(Array.VolumeCount, 1u);
  RaidLibFreeDriveList(&Array.DriveList);
  while (RAID_VOLUME *Segment =
             uefi::TakeFirst<&RAID_VOLUME::Link>(&Array.SegmentList)) {
    RaidLibFreeSegment(Segment);
  }
}

// Keys before the first "id" or "PD ID" line have no record to fill.
TEST_F(M2ReadTest, KeysBeforeTheFirstRecordAreSkipped) {
  std::string Vd = KeyLine("name", "stray", 21) + KeyLine("size", "9 T", 21) +
                   VdReport({kMirror}, "1");
  std::string Pd = KeyLine("Size", "9 T", 21) +
                   KeyLine("PD status", "online", 21) +
                   PdReport({kReadyDrive0, kReadyDrive1}, "2");
  AnswerReports(HbaReport(), Vd, Pd);
  ReadModel();
  RAID_ARRAY *Array = OnlyArray();
  ASSERT_NE(Array, nullptr);
  EXPECT_EQ(Array->SizeFigure, 447068u);
  EXPECT_EQ(Narrow(Volumes()[0]->Name), "VD_R1_1");
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 2u);
  EXPECT_EQ(CountListEntries(&Array->DriveList), 0u);
}

// The newer tool's volume report names its keys otherwise: only what the
// backend's keys give is read, so the volume count stands without a volume.
TEST_F(M2ReadTest, NewerVolumeLayoutGivesOnlyItsVolumeCount) {
  std::string Vd = "\n" + KeyLine("VD ID", "0", 21) +
                   KeyLine("Name", "VD_0", 21) +
                   KeyLine("Status", "Functional", 21) +
                   KeyLine("RAID Mode", "RAID1", 21) +
                   KeyLine("size", "447 GB", 21) +
                   KeyLine("Stripe Block Size", "128K", 21) + "\n" +
                   KeyLine("Total # of VD", "1", 21);
  AnswerReports(HbaReport(), Vd,
                PdReport({kOnlineDrive0, kRebuildDrive1}, "2"));
  ReadModel();
  RAID_ARRAY *Array = OnlyArray();
  ASSERT_NE(Array, nullptr);
  EXPECT_EQ(Array->VolumeCount, 1u);
  EXPECT_EQ(CountListEntries(&Array->SegmentList), 0u);
  EXPECT_EQ(Array->RaidLevel, M2_RAID_LEVEL_UNKNOWN);
  EXPECT_EQ(CountListEntries(&Array->DriveList), 2u);
}

// An id two drives carry, or none, cannot name one drive in a create: such
// drives are left out of the model.
TEST_F(M2ReadTest, DrivesWithoutAnIdOfTheirOwnAreLeftOut) {
  DriveBlock Twin = kReadyDrive1;
  Twin.Id = "0";
  DriveBlock Nameless = kReadyDrive1;
  Nameless.Id = "";
  AnswerReports(HbaReport("3"), VdReport({}, "0"),
                PdReport({kReadyDrive0, Twin, Nameless}, "3"));
  ReadModel();
  EXPECT_EQ(Controller_->DiskDriveCount, 0u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 0u);
  EXPECT_TRUE(TraceHas("[RaidLibLeaveOutAmbiguousDrives]Drive UNKNOWN: device "
                       "id 4294967295 is the end mark of a drive id list; "
                       "drive left out\r\n"));
}

TEST_F(M2ReadTest, CurrentModelIsNotReadAgain) {
  Controller_->Private->Flags = RAID_FLAG_OUTPUT_VALID;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2GetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(Commands().empty());
  EXPECT_TRUE(TraceHas("[M2GetControllerInfo] Info is up to date.\r\n"));
}

TEST_F(M2ReadTest, NullOutputIsRefusedBeforeAnythingChanges) {
  RAID_ARRAY Array = {};
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseControllerInfo(nullptr, Controller_, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ParseVolumeInfo(nullptr, &Array, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ParsePhysicalDriveInfo(nullptr, Controller_, &Array, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0u);
}

TEST_F(M2ReadTest, CardIdIsLeftAsTheCoreNumberedIt) {
  Controller_->Private->CardId = 1;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2GetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Controller_->Private->CardId, 1u);
  EXPECT_TRUE(TraceHas("[M2GetCardId]This->Id is 3:\r\n"));
  EXPECT_TRUE(Commands().empty());
}

}  // namespace
}  // namespace m2_test
