// Reading an adapter's configuration and finding its storcli number.
#include <Library/UefiBootServicesTableLib.h>

#include "LsiOutputs.h"
#include "LsiWorld.h"
#include "RaidLibToolRunner.h"

namespace lsi_test {
namespace {

using LsiReadTest = LsiWorld;

TEST_F(LsiReadTest, RichConfigurationGivesSegmentsInTheWizardsOrder) {
  AnswerRichConfiguration();
  ReadModel();
  EXPECT_EQ(Commands(), (std::vector<std::string>{
                            "storcli.efi /c0 show mronly nolog",
                            "storcli.efi /c0 show freespace mronly nolog",
                            "storcli.efi /c0/v0 show all mronly nolog",
                            "storcli.efi /c0/v1 show all mronly nolog",
                            "storcli.efi /c0/v2 show all mronly nolog"}));
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);

  RAID_ARRAY *Raid5 = Array(0);
  RAID_ARRAY *Raid10 = Array(1);
  ASSERT_NE(Raid5, nullptr);
  ASSERT_NE(Raid10, nullptr);
  EXPECT_EQ(CountListEntries(&Controller_->ArrayList), 2u);
  EXPECT_EQ(Narrow(Raid5->Name), "Array0");
  EXPECT_EQ(Raid5->SizeUnit, (UINT32)RAID_UNIT_TB);

  // Free segments: "-" at the head, a number ahead of the record with that
  // Id; the KB row is ignored.
  EXPECT_EQ(SegmentNames(Raid5),
            (std::vector<std::string>{"FreeCapacity1", "Boot", "FreeCapacity0",
                                      "data"}));
  EXPECT_EQ(SegmentNames(Raid10),
            (std::vector<std::string>{"FreeCapacity3", ""}));
  EXPECT_EQ(Raid5->VolumeCount, 2u);
  EXPECT_EQ(Raid5->FreeSegmentCount, 2u);
  EXPECT_EQ(Raid5->FreeCapacity, 100500u);  // 100 GB + 512 MB
  EXPECT_EQ(Raid5->FreeCapacityUnit, (UINT32)RAID_UNIT_GB);
  EXPECT_EQ(Raid10->FreeCapacity, 1000u);
  EXPECT_EQ(Raid10->FreeCapacityUnit, (UINT32)RAID_UNIT_TB);
  EXPECT_TRUE(TraceHas("[ParseControllerShowFS] Free Capacity in KB, so "
                       "ignore it: 64\r\n"));
  EXPECT_TRUE(TraceHas("[ParseControllerShowFS]Array Freecapacity : 100500 "
                       "GB\r\n"));

  RAID_VOLUME *Head = uefi::RecordOf<&RAID_VOLUME::Link>(
      GetFirstNode(&Raid5->SegmentList));
  EXPECT_EQ(Head->IsVolume, 0);
  EXPECT_EQ(Head->State, RAID_SEGMENT_AFTER_NO_VOLUME);
  EXPECT_EQ(Head->SizeFigure, 512000u);
  EXPECT_EQ(Head->SizeUnit, (UINT32)RAID_UNIT_MB);
}

// Rows the virtual adapter never prints (a copy-back member, unknown state
// words, sizes in MB); the others are compared with it end to end.
TEST_F(LsiReadTest, UnusualDriveRowsGetStateRoleOwnerAndTableEntry) {
  AnswerRichConfiguration();
  ReadModel();
  ASSERT_EQ(Controller_->DiskDriveCount, 18u);
  EXPECT_EQ(Controller_->DriveTable[18], nullptr);
  RAID_ARRAY *Raid10 = Array(1);
  struct DriveExpectation {
    const char *Location;
    UINT32 State;
    UINT32 Role;
    VOID *Owner;
    LIST_ENTRY *List;
  };
  LIST_ENTRY *Unassigned = &Controller_->PhysicalDriveList;
  const DriveExpectation Expected[] = {
      {"253:3", RAID_STATE_INVALID, RAID_ROLE_OTHER, Raid10, &Raid10->DriveList},
      {"252:12", 0, RAID_ROLE_UNCONFIGURED, Controller_, Unassigned},
      {"252:13", RAID_STATE_INVALID, RAID_ROLE_UNCONFIGURED, Controller_,
       Unassigned},
  };
  for (const DriveExpectation &E : Expected) {
    RAID_PHYSICAL_DRIVE *Drive = DriveAt(E.Location);
    ASSERT_NE(Drive, nullptr) << E.Location;
    EXPECT_EQ(Drive->State, E.State) << E.Location;
    EXPECT_EQ(Drive->Role, E.Role) << E.Location;
    EXPECT_EQ(Drive->Owner, E.Owner) << E.Location;
    bool InList = false;
    for (RAID_PHYSICAL_DRIVE *Member :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*E.List)) {
      InList = InList || Member == Drive;
    }
    EXPECT_TRUE(InList) << E.Location;
  }
  EXPECT_EQ(Raid10->MemberDriveCount, 4u);
  EXPECT_EQ(Narrow(Controller_->DriveTable[8]->Location), "252:4");
  EXPECT_EQ(DriveAt("252:7")->MediaType, (UINT32)RAID_MEDIA_PCIE_SSD);
  EXPECT_EQ(DriveAt("252:13")->MediaType, (UINT32)RAID_MEDIA_OTHER);
  EXPECT_EQ(DriveAt("252:13")->SizeUnit, (UINT32)RAID_UNIT_MB);
  EXPECT_EQ(DriveAt("252:12")->Position->Values[LSI_POSITION_SLOT], 12u);
}

TEST_F(LsiReadTest, CurrentModelIsNotReadAgain) {
  AnswerRichConfiguration();
  ReadModel();
  size_t Runs = Commands().size();
  UINT32 ErrorCode = 5;
  EXPECT_EQ(LsiGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(Commands().size(), Runs);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(TraceHas("[LsiGetControllerInfo] Info is up to date.\r\n"));
}

TEST_F(LsiReadTest, SummaryFailureSkipsFreeSpaceAndVolumes) {
  std::string Failed = kRichSummary;
  Failed.replace(Failed.find("Status = Success"), 16, "Status = Failure");
  Answer("storcli.efi /c0 show mronly nolog", Failed);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, LSI_ERROR_SUMMARY_FAILURE);
  EXPECT_EQ(Commands().size(), 1u);
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
  EXPECT_TRUE(TraceHas("[ParseControllerShow]Status = Failure\r\r\n"));
  EXPECT_EQ(CountListEntries(&Controller_->ArrayList), 2u);
}

TEST_F(LsiReadTest, UnsetCardIdIsRefused) {
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(ErrorCode, RAID_ERROR_INVALID_CARD_ID);
  EXPECT_TRUE(Commands().empty());
  EXPECT_TRUE(TraceHas("[LsiGetControllerInfo] Invalid controller id\r\n"));
}

TEST_F(LsiReadTest, BlankNamesKeepTheOldValues) {
  AnswerRichConfiguration();
  ReadModel();
  std::string Blank = kRichSummary;
  Blank.replace(Blank.find("Serial Number = SK01234567"), 26,
                "Serial Number = ");
  Answer("storcli.efi /c0 show mronly nolog", Blank);
  ReadModel();
  EXPECT_EQ(Narrow(Controller_->SerialNumber), "SK01234567");
  EXPECT_TRUE(TraceHas("[ParseControllerShow]Controller Serial Number: "
                       "NULL\r\n"));
}

TEST_F(LsiReadTest, DedicatedSpareWithoutGroupWarnsTheOperator) {
  std::string Slid = kRichSummary;
  Slid.replace(Slid.find("252:3    13 DHS    0 558.406 GB"), 31,
               "252:3    13 DHS      558.406 GB");
  Answer("storcli.efi /c0 show mronly nolog", Slid);
  AnswerOthers(Verdict(true));
  ReadModel();
  ASSERT_EQ(Setup_->MessageBoxes().size(), 1u);
  EXPECT_EQ(Setup_->MessageBoxes()[0].TitleId, 866u);
  EXPECT_EQ(*Setup_->MessageBoxes()[0].Text,
            u"Hot spare DG is null, the disk is 252:3.\r\n Please recreate "
            u"raid valume.\r\n");
  // The slid row names DG 558, which no array has: the row is skipped.
  EXPECT_EQ(DriveAt("252:3"), nullptr);
  EXPECT_EQ(Controller_->DiskDriveCount, 17u);
}

// The output cut after every line: never a fault, always a consistent
// partial model without leaks.
TEST_F(LsiReadTest, SummaryCutAtEveryLineGivesAPartialModel) {
  std::string Full = kRichSummary;
  for (size_t End = Full.find('\n'); End != std::string::npos;
       End = Full.find('\n', End + 1)) {
    for (size_t Cut : {End, End + 1}) {
      CHAR16 *Output = LoadToolOutput(Full.substr(0, Cut));
      UINT32 ErrorCode = 0;
      EXPECT_EQ(ParseControllerShow(Output, Controller_, &ErrorCode),
                EFI_SUCCESS);
      for (UINT32 I = 0; I < Controller_->DiskDriveCount; I++) {
        ASSERT_NE(Controller_->DriveTable[I], nullptr) << Cut;
      }
      EXPECT_EQ(Controller_->DriveTable[Controller_->DiskDriveCount], nullptr);
    }
  }
}

TEST_F(LsiReadTest, FreeSpaceAndShowAllCutAtEveryLine) {
  for (const std::string &Full :
       {std::string(kRichFreeSpace),
        ShowAll("0/0", "RWBD", "256 KB", "Disk's Default")}) {
    for (size_t Cut = 0; Cut <= Full.size(); Cut++) {
      UINT32 ErrorCode = 0;
      EXPECT_EQ(ParseControllerShow(LoadToolOutput(kRichSummary), Controller_,
                                    &ErrorCode),
                EFI_SUCCESS);
      // Any verdict will do on a cut output; the sanitizers judge the reads.
      (void)ParseControllerShowFS(LoadToolOutput(Full.substr(0, Cut)), Controller_,
                                  &ErrorCode);
      RAID_VOLUME Volume = {};
      (void)ParseControllerShowVolume(LoadToolOutput(Full.substr(0, Cut)), &Volume,
                                      &ErrorCode);
    }
  }
}

TEST_F(LsiReadTest, AllocationFailuresLeaveAConsistentModel) {
  for (UINT64 N = 1;; N++) {
    Firmware_->Memory().FailNthAllocation(N);
    UINT32 ErrorCode = 0;
    EFI_STATUS Status =
        ParseControllerShow(LoadToolOutput(kRichSummary), Controller_, &ErrorCode);
    Firmware_->Memory().ClearFaults();
    if (Status == EFI_SUCCESS) {
      break;
    }
    EXPECT_EQ(Status, EFI_OUT_OF_RESOURCES) << N;
    EXPECT_EQ(ErrorCode, RAID_ERROR_OUT_OF_RESOURCES) << N;
    ASSERT_LT(N, 500u);
  }
}

// ---- Card numbering ---------------------------------------------------------

struct CardSearchCase {
  unsigned Count;
  std::vector<unsigned> BusOfCard;  // the bus each card's summary names
  EFI_STATUS Status;
  UINT32 CardId;
  UINT32 ErrorCode;
  size_t Commands;
};

class LsiCardIdTest : public LsiWorld,
                      public ::testing::WithParamInterface<CardSearchCase> {};

TEST_P(LsiCardIdTest, FindsTheCardOfOurPciLocation) {
  const CardSearchCase &Case = GetParam();
  Answer("storcli.efi show ctrlcount mronly nolog", CtrlCount(Case.Count));
  for (unsigned Card = 0; Card < Case.BusOfCard.size(); Card++) {
    Answer("storcli.efi /c" + std::to_string(Card) + " show mronly nolog",
           SummaryAt(Case.BusOfCard[Card], 0, 0));
  }
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(LsiGetCardId(Controller_, &ErrorCode), Case.Status);
  EXPECT_EQ(Controller_->Private->CardId, Case.CardId);
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  EXPECT_EQ(Commands().size(), Case.Commands);
  EXPECT_EQ(gLsiControllerCount, Case.Count);
}

INSTANTIATE_TEST_SUITE_P(
    Adapters, LsiCardIdTest,
    ::testing::Values(
        // None: refused. One: card 0 without asking. No match among
        // three fails with the last verdict (matches run end to end).
        CardSearchCase{0, {}, EFI_ABORTED, RAID_CARD_ID_UNSET, 0, 1},
        CardSearchCase{1, {}, EFI_SUCCESS, 0, 0, 1},
        CardSearchCase{3, {0x10, 0x11, 0x12}, EFI_ABORTED, RAID_CARD_ID_UNSET,
                       0x200023, 4}));

TEST_F(LsiReadTest, CardWithoutBusLineIsAcceptedAsItIs) {
  Answer("storcli.efi show ctrlcount mronly nolog", CtrlCount(3));
  Answer("storcli.efi /c0 show mronly nolog", "Controller = 0\nStatus = Success\n");
  Controller_->Private->CardId = 7;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiGetCardId(Controller_, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(Controller_->Private->CardId, 7u);
  EXPECT_EQ(Commands().size(), 2u);
}

TEST_F(LsiReadTest, NoShellServiceIsAFirmwareError) {
  Shell_.reset();
  RaidLibResetToolRunner();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiGetCardId(Controller_, &ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
}

}  // namespace
}  // namespace lsi_test
