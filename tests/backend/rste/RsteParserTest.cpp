// The "/I" and "/ST" readers and the verdict of a change: sizes and free
// segments, disk blocks and states, stripe words, the state line offsets.
#include <Library/UefiBootServicesTableLib.h>

#include "RsteWorld.h"

namespace rste_test {
namespace {

class RsteInfoTest : public RsteWorld {
 protected:
  // Parses Info on a fresh model; returns the error code.
  UINT32 Parse(const InfoText &Info) {
    EXPECT_EQ(RaidLibResetControllerModel(Controller_), EFI_SUCCESS);
    UINT32 ErrorCode = 0;
    EXPECT_EQ(ParseControllerInfo(LoadToolOutput(InfoReport(Info)), Controller_,
                                  &ErrorCode),
              EFI_SUCCESS);
    return ErrorCode;
  }
  static DiskText Member(const std::string &Number, const std::string &Blocks,
                         const std::string &ArrayId = "0") {
    return DiskText{.Number = Number, .State = "(Member Disk)",
                    .ArrayId = ArrayId, .Blocks = Blocks};
  }
};

TEST_F(RsteInfoTest, FreeSpaceMakesASegmentByTheUnitsRule) {
  struct Case {
    std::string SizeLine;
    bool Segment;
    UINT64 Free;  // thousandths of a GB, before the RAID 0 scaling (none)
  } Cases[] = {
      {" Size: TotalMB: 4000 FreeMB:1000", false, 976},
      {" Size: TotalMB: 4000 FreeMB:1001", true, 977},
      {" Size: TotalMB: 4000 FreeMB:0", false, 0},
      {" Size: TotalGB: 4 FreeGB:1", true, 1000},
      {" Size: TotalGB: 4 FreeGB:0", false, 0},
      {" Size: TotalGB: 4000 FreeGB:1001", true, 1001000},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.SizeLine);
    InfoText Info;
    Info.ArraySizeLines = {C.SizeLine};
    EXPECT_EQ(Parse(Info), 0u);
    RAID_ARRAY *Group = Array(0);
    ASSERT_NE(Group, nullptr);
    EXPECT_EQ(Group->FreeSegmentCount, C.Segment ? 1u : 0u);
    EXPECT_EQ(Group->FreeCapacity, C.Free);
    if (C.Segment) {
      EXPECT_EQ(SegmentNames(Group), std::vector<std::string>{"FreeCapacity0"});
      RAID_VOLUME *Free = BASE_CR(Group->SegmentList.ForwardLink, RAID_VOLUME, Link);
      EXPECT_EQ(Free->SizeFigure, C.Free);
      EXPECT_EQ(Free->State, RAID_SEGMENT_AFTER_NO_VOLUME);
    }
  }
}

TEST_F(RsteInfoTest, LevelsScaleTheRawSums) {
  struct Case {
    unsigned Level;
    unsigned Members;
    UINT64 Size;
    UINT64 Free;
  } Cases[] = {
      // Three raw 1000 GB disks in RAID 5 show 2000 GB.
      {5, 3, 2000000, 200000},
      {1, 2, 1500000, 150000},
      {10, 2, 1500000, 150000},
      {0, 3, 3000000, 300000},
      // A RAID 5 array whose members are not listed divides by nothing.
      {5, 0, 3000000, 300000},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Level * 10 + C.Members);
    InfoText Info;
    Info.Disks = C.Members;
    Info.ArraySizeLines = {" Size: TotalGB: 3000 FreeGB:300"};
    Info.Volumes = {VolumeText{.Level = C.Level, .Stripe = "64KB"}};
    for (unsigned I = 0; I < C.Members; I++) {
      Info.DiskBlocks.push_back(Member(std::to_string(I), "74706DB0"));
    }
    EXPECT_EQ(Parse(Info), 0u);
    RAID_ARRAY *Group = Array(0);
    ASSERT_NE(Group, nullptr);
    EXPECT_EQ(Group->SizeFigure, C.Size);
    EXPECT_EQ(Group->FreeCapacity, C.Free);
    RAID_VOLUME *Free = BASE_CR(Group->SegmentList.ForwardLink, RAID_VOLUME, Link);
    ASSERT_EQ(Free->IsVolume, 0);
    EXPECT_EQ(Free->SizeFigure, C.Free);
  }
}

TEST_F(RsteInfoTest, ASecondVolumeTakesTheFreeSegmentAway) {
  InfoText Info;
  Info.ArraySizeLines = {" Size: TotalGB: 2000 FreeGB:500",
                         " Size: TotalGB: 2000 FreeGB:500"};
  Info.Volumes = {VolumeText{.Name = "A", .Level = 0, .Stripe = "128KB"},
                  VolumeText{.Name = "B", .Level = 0, .Stripe = "16KB"},
                  VolumeText{.Name = "C", .Level = 0, .Stripe = "4KB", .ArrayId = 1}};
  EXPECT_EQ(Parse(Info), 0u);
  EXPECT_EQ(SegmentNames(Array(0)), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(Array(0)->FreeSegmentCount, 0u);
  EXPECT_EQ(Array(0)->FreeCapacity, 0u);
  EXPECT_EQ(Array(0)->VolumeCount, 2u);
  EXPECT_EQ(SegmentNames(Array(1)),
            (std::vector<std::string>{"FreeCapacity0", "C"}));
  // Volume ids run over all arrays.
  RAID_VOLUME *C = BASE_CR(Array(1)->SegmentList.BackLink, RAID_VOLUME, Link);
  EXPECT_EQ(C->Id, 2u);
  EXPECT_EQ(C->StripeSize, 4u);
}

TEST_F(RsteInfoTest, StripeWordsAndAnUnknownOne) {
  struct Case {
    std::string Word;
    UINT32 Stripe;
    UINT32 ErrorCode;
  } Cases[] = {
      {"8KB", 8, 0},         {"32KB", 32, 0},     {"64KB", 64, 0},
      {"256KB", 256, 0},     {"512KB", 512, 0},   {"1024KB", 1024, 0},
      {"N/A", RAID_STRIPE_SIZE_OTHER, 0},          {"2MB", 0, 0x00200029},
      {"64kb", 0, 0x00200029},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Word);
    InfoText Info;
    Info.ArraySizeLines = {" Size: TotalGB: 20 FreeGB:0"};
    Info.Volumes = {VolumeText{.Level = 0, .Stripe = C.Word}};
    EXPECT_EQ(Parse(Info), C.ErrorCode);
    RAID_VOLUME *Volume = BASE_CR(Array(0)->SegmentList.ForwardLink, RAID_VOLUME, Link);
    EXPECT_EQ(Volume->StripeSize, C.Stripe);
  }
}

TEST_F(RsteInfoTest, DisksByStateRoleAndList) {
  InfoText Info;
  Info.Disks = 6;
  Info.Missing = 1;
  Info.ArraySizeLines = {" Size: TotalMB: 1907458 FreeMB:0"};
  Info.Volumes = {VolumeText{}};
  Info.DiskBlocks = {
      DiskText{.Number = "0"},
      Member("1", "74706DB0"),
      DiskText{.Number = "2", .State = "(Spare Disk)", .ArrayId = "0"},
      DiskText{.Number = "3", .State = "(Offline Member)", .ArrayId = "0"},
      DiskText{.Number = "A", .State = "(Incompatible Disk)", .ArrayId = "7"},
      DiskText{.Number = "FFFFFFFF", .State = "(Missing Disk)", .ArrayId = "0"},
      DiskText{.Number = "C", .State = "(Rebuilding?)"},
  };
  EXPECT_EQ(Parse(Info), 0u);
  EXPECT_EQ(Controller_->DiskDriveCount, 7u);
  struct Expect {
    UINT32 Id;
    std::string Location;
    UINT32 State;
    UINT32 Role;
  } Expected[] = {
      {0, "Disk0", RAID_STATE4_NON_RAID, RAID_ROLE_UNCONFIGURED},
      {1, "Disk1", RAID_STATE4_ONLINE, RAID_ROLE_MEMBER},
      {2, "Disk2", RAID_STATE4_GHS, RAID_ROLE_HOT_SPARE},
      {3, "Disk3", RAID_STATE4_OFFLINE, RAID_ROLE_MEMBER},
      {10, "Disk10", RAID_STATE4_INCOMPATIBLE, RAID_ROLE_MEMBER},
      {0xFFFFFFFF, "Missing Disk", RAID_STATE4_MISSING, RAID_ROLE_MEMBER},
      {12, "Disk12", RAID_STATE_INVALID, RAID_ROLE_OTHER},
  };
  for (UINT32 I = 0; I < 7; I++) {
    SCOPED_TRACE(I);
    RAID_PHYSICAL_DRIVE *Drive = Controller_->DriveTable[I];
    ASSERT_NE(Drive, nullptr);
    EXPECT_EQ(Drive->Id, Expected[I].Id);
    EXPECT_EQ(Narrow(Drive->Location), Expected[I].Location);
    EXPECT_EQ(Drive->State, Expected[I].State);
    EXPECT_EQ(Drive->Role, Expected[I].Role);
    EXPECT_EQ(Drive->MediaType, 1u);
  }
  // Members (the missing one too) in the array; the incompatible disk names
  // an array that is not there and stays free; the spare is the engine's.
  EXPECT_EQ(Array(0)->MemberDriveCount, 3u);
  EXPECT_EQ(Controller_->GlobalSpareCount, 1u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 3u);
  // Role 4 has no blocks.
  EXPECT_EQ(Controller_->DriveTable[6]->SizeFigure, 0u);
  EXPECT_EQ(Controller_->DriveTable[0]->SizeFigure, 931513u);
}

TEST_F(RsteInfoTest, BlockCountsByLineFormAndBlockSize) {
  struct Case {
    std::string State;
    std::string BlocksLine;
    std::string CapacityLine;
    UINT64 Size;
  } Cases[] = {
      // 0x40000000 blocks of 512 bytes are 512 GiB.
      {"(Non-RAID Disk)", " TotalBlks:40000000 Port:0", " Block Size: 512", 512000},
      {"(Non-RAID Disk)", " RawBlks:40000000 UsableBlks:20000000", " Block Size: 4096", 4096000},
      {"(Member Disk)", " RawBlks:40000000 UsableBlks:20000000", " TotalBlocks: 1", 256000},
      {"(Spare Disk)", " RawBlks:40000000 UsableBlks:20000000",
       "    DISK_SMART_EVENT_SUPPORTED", 256000},
      {"(Non-RAID Disk)", " TotalBlks:40000000 Port:0", " Block Size: Unknown", 512000},
      {"(Non-RAID Disk)", " TotalBlks:40000000 Port:0", " Serial: none", 0},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.BlocksLine + C.CapacityLine);
    InfoText Info;
    Info.Disks = 1;
    Info.ArraySizeLines = {" Size: TotalGB: 20 FreeGB:0"};
    Info.DiskBlocks = {DiskText{.Number = "4", .State = C.State, .ArrayId = "0",
                                .BlocksLine = C.BlocksLine,
                                .CapacityLine = C.CapacityLine}};
    EXPECT_EQ(Parse(Info), 0u);
    ASSERT_NE(Disk(4), nullptr);
    EXPECT_EQ(Disk(4)->SizeFigure, C.Size);
    EXPECT_EQ(Disk(4)->SizeUnit, 1u);
  }
}

TEST_F(RsteInfoTest, ModelsAreCompactedAndAnEmptyOneIsUnknown) {
  InfoText Info;
  Info.Disks = 2;
  Info.DiskBlocks = {DiskText{.Number = "0", .Model = "  ST1000NM0055   1V410C  "},
                     DiskText{.Number = "1", .Model = "   "}};
  EXPECT_EQ(Parse(Info), 0u);
  EXPECT_EQ(Narrow(Disk(0)->Model), "ST1000NM0055 1V410C");
  EXPECT_EQ(Narrow(Disk(1)->Model), "Unknown");
  TraceHas("[ParseControllerInfo]Drive model: NULL\n");
}

TEST_F(RsteInfoTest, MoreDisksThanCountedStayOutOfTheTable) {
  InfoText Info;
  Info.Disks = 1;
  Info.DiskBlocks = {DiskText{.Number = "0"}, DiskText{.Number = "1"}};
  EXPECT_EQ(Parse(Info), 0u);
  EXPECT_EQ(Controller_->DiskDriveCount, 1u);
  EXPECT_EQ(Controller_->DriveTable[1], nullptr);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 2u);
}

// Whichever allocation fails, the model stays consistent (the world checks
// the pool is empty once it is freed) and the read says it is partial.
TEST_F(RsteInfoTest, AllocationFailuresLeaveAConsistentModel) {
  InfoText Info;
  Info.Disks = 3;
  Info.ArraySizeLines = {" Size: TotalGB: 2000 FreeGB:500"};
  Info.Volumes = {VolumeText{.Name = "A", .Level = 0, .Stripe = "64KB"}};
  Info.DiskBlocks = {Member("0", "74706DB0"), Member("1", "74706DB0"),
                     DiskText{.Number = "2", .State = "(Spare Disk)"}};
  const std::string Report = InfoReport(Info);
  for (UINT64 N = 1;; N++) {
    ASSERT_EQ(RaidLibResetControllerModel(Controller_), EFI_SUCCESS);
    Firmware_->Memory().FailNthAllocation(N);
    UINT32 ErrorCode = 0;
    EFI_STATUS Status = ParseControllerInfo(LoadToolOutput(Report), Controller_, &ErrorCode);
    Firmware_->Memory().ClearFaults();
    if (Status == EFI_SUCCESS) {
      EXPECT_EQ(Controller_->DiskDriveCount, 3u);
      break;
    }
    EXPECT_EQ(Status, EFI_OUT_OF_RESOURCES) << N;
    EXPECT_EQ(ErrorCode, RAID_ERROR_OUT_OF_RESOURCES) << N;
    for (UINT32 I = 0; I < Controller_->DiskDriveCount; I++) {
      ASSERT_NE(Controller_->DriveTable[I], nullptr) << N;
    }
    ASSERT_LT(N, 200u);
  }
}

TEST_F(RsteInfoTest, NullOutputIsAborted) {
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseControllerInfo(nullptr, Controller_, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ParseSataInfo(nullptr, Controller_, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ParseError(nullptr, RSTE_KIND_CREATE_NEW, &ErrorCode), EFI_ABORTED);
}

class RsteStatusTest : public RsteInfoTest {};

TEST_F(RsteStatusTest, TheStateLineStandsByTheLayout) {
  struct Case {
    UINT8 Vroc;
    unsigned Offset;
    std::string Word;
    UINT32 State;
  } Cases[] = {
      {0, 6, "Normal", RAID_STATE4_ONLINE},
      {1, 7, "Degraded", RAID_STATE4_DEGRADED},
      {1, 7, "Rebuilding", RAID_STATE4_REBUILDING},
      {0, 6, "Rebuild", RAID_STATE4_REBUILDING},
      {0, 6, "Failed", RAID_STATE4_OFFLINE},
      // The other layout's offset reads another line.
      {1, 6, "Normal", RAID_STATE4_OFFLINE},
  };
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Word + std::to_string(C.Offset));
    InfoText Info;
    Info.ArraySizeLines = {" Size: TotalGB: 20 FreeGB:0",
                           " Size: TotalGB: 20 FreeGB:0"};
    Info.Volumes = {VolumeText{.Name = "Same"},
                    VolumeText{.Name = "Same", .ArrayId = 1},
                    VolumeText{.Name = "Other", .ArrayId = 1}};
    EXPECT_EQ(Parse(Info), 0u);
    gRsteVrocLayout = C.Vroc;
    UINT32 ErrorCode = 0;
    EXPECT_EQ(ParseSataInfo(LoadToolOutput(StatusReport({{"Same", C.Word}}, C.Offset)),
                            Controller_, &ErrorCode),
              EFI_SUCCESS);
    // The first volume of that name in each array.
    for (UINT32 Id : {0u, 1u}) {
      RAID_VOLUME *Volume = BASE_CR(Array(Id)->SegmentList.ForwardLink, RAID_VOLUME, Link);
      EXPECT_EQ(Volume->State, C.State);
    }
    RAID_VOLUME *Other = BASE_CR(Array(1)->SegmentList.BackLink, RAID_VOLUME, Link);
    EXPECT_EQ(Other->State, static_cast<UINT32>(RAID_STATE4_OFFLINE));
  }
}

TEST(RsteVerdictTest, ErrorCodesByKindAndSuccessLines) {
  struct Case {
    std::string Output;
    UINT32 Kind;
    UINT32 ErrorCode;
  } Cases[] = {
      {"ERROR: Disk 3 is not available.\n", 3, 0x00200031},
      {"ERROR: Volume X not found.\n", 4, 0x00200030},
      {"ERROR: Volume X not found.\n", 5, 0x00200030},
      {"ERROR: Too few disks for the selected RAID level.\n", 6, 0x0020002F},
      {"ERROR: Volume name already in use.\n", 7, 0x0020002F},
      {"ERROR: x\n", 2, 0x0020300E},
      {"ERROR: x\n", 8, 0x0020300E},
      {"Deleting  Volume...Successfully deleted volume\nERROR: late\n", 4, 0},
      {"Creating Volume....Successfully created volume\nERROR: late\n", 6, 0},
      {"Marking selected disks as spares...Completed\nERROR: late\n", 3, 0},
      {"Removing MetaData from selected disks...Completed\nERROR: late\n", 3, 0},
      // One blank in the delete line is not the tool's success line.
      {"Deleting Volume...Successfully deleted volume\nERROR: no\n", 5, 0x00200030},
      // Neither line: the change is taken as done.
      {"Intel(R) RSTe SATA Configuration Utility\n\n", 6, 0},
      {"", 3, 0},
  };
  emu::Firmware Firmware;
  emu::SetupProtocol Setup(Firmware);
  gRaidLibSetupProtocol = &Setup.Interface();
  for (const Case &C : Cases) {
    SCOPED_TRACE(C.Output);
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(ParseError(LoadToolOutput(C.Output), C.Kind, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, C.ErrorCode);
  }
  Setup.ClearTrace();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(ParseError(LoadToolOutput("Header\nERROR: Disk 3 is not available.\n"
                                  "Use /? for help.\n"),
                       RSTE_KIND_DRIVE_STATE, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Setup.TraceTexts(),
            (std::vector<std::string>{"[ParseError] ERROR: Disk 3 is not available.\r\n",
                                      "[ParseError] Use /? for help.\r\n"}));
  gRaidLibSetupProtocol = nullptr;
}

}  // namespace
}  // namespace rste_test
