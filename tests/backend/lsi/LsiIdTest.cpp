// Ids in storcli's output name what a later command acts on, so each is read
// exactly: a row whose DG, DG/VD, EID:Slt, DID or free-space id is not a
// whole 32-bit number (or is a value the model keeps as a mark) is left out
// of the model with a trace line, and every other record stays as it was.
#include <set>
#include <vector>

#include "LsiOutputs.h"
#include "LsiWorld.h"

namespace lsi_test {
namespace {

using Items = std::set<std::string>;

// Every record of the model with the ids that name it.
Items ModelItems(RAID_CONTROLLER *Controller) {
  Items Found;
  auto AddDrives = [&](LIST_ENTRY &List) {
    for (RAID_PHYSICAL_DRIVE *Drive :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(List)) {
      Found.insert("drive " + std::to_string(Drive->Position->Values[LSI_POSITION_ENCLOSURE]) +
                   ":" + std::to_string(Drive->Position->Values[LSI_POSITION_SLOT]) +
                   " did " + std::to_string(Drive->Id));
    }
  };
  AddDrives(Controller->PhysicalDriveList);
  AddDrives(Controller->SpareDriveList);
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    const std::string Group = std::to_string(Array->Id);
    Found.insert("array " + Group);
    AddDrives(Array->DriveList);
    for (RAID_VOLUME *Segment :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      Found.insert((Segment->IsVolume ? "volume " : "segment ") + Group + "/" +
                   std::to_string(Segment->Id) + " " + Narrow(Segment->Name));
    }
  }
  return Found;
}

// A row of the summary or of the free-space report, and what replaces it.
struct Replacement {
  bool FreeSpace;
  const char *Row;
  const char *Hostile;
};

struct IdCase {
  const char *Name;
  std::vector<Replacement> Rows;
  Items Gone;  // what the hostile rows take out of the model
  std::vector<const char *> Traces;
};

class LsiIdTest : public LsiWorld,
                  public ::testing::WithParamInterface<IdCase> {};

TEST_P(LsiIdTest, RowIsLeftOutAndTheRestStays) {
  const IdCase &Case = GetParam();
  AnswerRichConfiguration();
  ReadModel();
  const Items Before = ModelItems(Controller_);
  for (const std::string &Item : Case.Gone) {
    ASSERT_EQ(Before.count(Item), 1u) << Item;
  }

  std::string Summary = kRichSummary;
  std::string FreeSpace = kRichFreeSpace;
  for (const Replacement &Row : Case.Rows) {
    std::string &Output = Row.FreeSpace ? FreeSpace : Summary;
    const size_t At = Output.find(Row.Row);
    ASSERT_NE(At, std::string::npos) << Row.Row;
    Output.replace(At, std::string(Row.Row).size(), Row.Hostile);
  }
  Answer("storcli.efi /c0 show mronly nolog", Summary);
  Answer("storcli.efi /c0 show freespace mronly nolog", FreeSpace);
  Setup_->ClearTrace();
  ReadModel();

  Items Expected;
  for (const std::string &Item : Before) {
    if (Case.Gone.count(Item) == 0) {
      Expected.insert(Item);
    }
  }
  EXPECT_EQ(ModelItems(Controller_), Expected);
  for (const char *Line : Case.Traces) {
    EXPECT_TRUE(TraceHas(Line));
  }
  // The drive table holds exactly the drives of the lists.
  UINT32 Drives = 0;
  for (const std::string &Item : Expected) {
    Drives += Item.rfind("drive ", 0) == 0 ? 1 : 0;
  }
  EXPECT_EQ(Controller_->DiskDriveCount, Drives);
  // Each count still follows its list.
  EXPECT_EQ(Controller_->UnconfiguredDriveCount,
            CountListEntries(&Controller_->PhysicalDriveList));
  EXPECT_EQ(Controller_->GlobalSpareCount,
            CountListEntries(&Controller_->SpareDriveList));
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller_->ArrayList)) {
    EXPECT_EQ(Array->MemberDriveCount + Array->DedicatedSpareCount,
              CountListEntries(&Array->DriveList));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LsiIdTest,
    ::testing::Values(
        // Read modulo 2^32 it would be VD 0, the boot volume's number. The
        // tool prints the same number for the free space behind it.
        IdCase{"VdPast32Bits",
               {{false, "0/1   RAID5  Dgrd", "0/4294967296 RAID5  Dgrd"},
                {true, " 0  0 1 ", " 0  0 4294967296 "}},
               {"volume 0/1 data", "segment 0/0 FreeCapacity0"},
               {"[LsiAddVolume]DG/VD 0/4294967296 is not a usable id; "
                "virtual drive left out\r\n",
                "[AddFreeSegment]ID 0, DG 0 or AftrVD 4294967296 is not a "
                "usable id; free space left out\r\n"}},
        IdCase{"VdGroupPast32Bits",
               {{false, "1/2   RAID10", "4294967297/2 RAID10"},
                {true, " 3  1 2 ", " 3  1 - "}},
               {"volume 1/2 "},
               {"[LsiAddVolume]DG/VD 4294967297/2 is not a usable id; "
                "virtual drive left out\r\n"}},
        IdCase{"VdNotANumber",
               {{false, "0/1   RAID5  Dgrd", "0/1x  RAID5  Dgrd"},
                {true, " 0  0 1 ", " 0  0 1x "}},
               {"volume 0/1 data", "segment 0/0 FreeCapacity0"},
               {"[LsiAddVolume]DG/VD 0/1x is not a usable id; virtual drive "
                "left out\r\n"}},
        // The group goes with its volume, its members and its free space,
        // whose rows name a group no longer read.
        IdCase{"GroupPast32Bits",
               {{false, " 1 -   -   -        -   RAID10",
                 " 4294967297 -   -   -        -   RAID10"}},
               {"array 1", "volume 1/2 ", "segment 1/3 FreeCapacity3",
                "drive 253:0 did 20", "drive 253:1 did 21",
                "drive 253:2 did 22", "drive 253:3 did 23"},
               {"[LsiAddArray]DG 4294967297 is not a usable id; drive group "
                "left out\r\n"}},
        // 252 + 2^32 and 5 + 2^32: modulo 2^32 the address of another drive.
        IdCase{"EnclosurePast32Bits",
               {{false, "252:4    30 UGood", "4294967548:4 30 UGood"}},
               {"drive 252:4 did 30"},
               {"[LsiAddDrive]EID:Slt 4294967548:4 or DID 30 is not a usable "
                "id; drive left out\r\n"}},
        IdCase{"SlotPast32Bits",
               {{false, "252:5    31 UBad", "252:4294967301 31 UBad"}},
               {"drive 252:5 did 31"},
               {"[LsiAddDrive]EID:Slt 252:4294967301 or DID 31 is not a "
                "usable id; drive left out\r\n"}},
        IdCase{"DidPast32Bits",
               {{false, "252:8    34 JBOD", "252:8    4294967330 JBOD"}},
               {"drive 252:8 did 34"},
               {"[LsiAddDrive]EID:Slt 252:8 or DID 4294967330 is not a usable "
                "id; drive left out\r\n"}},
        IdCase{"DidNotANumber",
               {{false, "252:0    10 Onln", "252:0    1O Onln"}},
               {"drive 252:0 did 10"},
               {"[LsiAddDrive]EID:Slt 252:0 or DID 1O is not a usable id; "
                "drive left out\r\n"}},
        IdCase{"MemberGroupPast32Bits",
               {{false, "253:0    20 Onln   1", "253:0    20 Onln   4294967297"}},
               {"drive 253:0 did 20"},
               {"[LsiAddDrive]Drive 253:0 names DG 4294967297, which is not a "
                "usable id; drive left out\r\n"}},
        IdCase{"FreeSpaceIdPast32Bits",
               {{true, " 1  0 -      512.000 MB",
                 " 4294967297  0 -      512.000 MB"}},
               {"segment 0/1 FreeCapacity1"},
               {"[AddFreeSegment]ID 4294967297, DG 0 or AftrVD - is not a "
                "usable id; free space left out\r\n"}},
        IdCase{"FreeSpaceGroupPast32Bits",
               {{true, " 3  1 2", " 3  4294967297 2"}},
               {"segment 1/3 FreeCapacity3"},
               {"[AddFreeSegment]ID 3, DG 4294967297 or AftrVD 2 is not a "
                "usable id; free space left out\r\n"}},
        // A DID two rows carry names neither drive alone: a create naming
        // it would take both.
        IdCase{"RepeatedDid",
               {{false, "252:1    11 Onln", "252:1    10 Onln"}},
               {"drive 252:0 did 10", "drive 252:1 did 11"},
               {"[RaidLibLeaveOutAmbiguousDrives]Drive 252:0: device id 10 is "
                "listed for another drive too; drive left out\r\n",
                "[RaidLibLeaveOutAmbiguousDrives]Drive 252:1: device id 10 is "
                "listed for another drive too; drive left out\r\n"}},
        IdCase{"DidRepeatedThriceAcrossLists",
               {{false, "252:9    35 GHS", "252:9    30 GHS"},
                {false, "253:3    23 Cpybck", "253:3    30 Cpybck"}},
               {"drive 252:4 did 30", "drive 252:9 did 35",
                "drive 253:3 did 23"},
               {"[RaidLibLeaveOutAmbiguousDrives]Drive 252:9: device id 30 is "
                "listed for another drive too; drive left out\r\n"}},
        // 4294967295 fits 32 bits but ends the wizard's drive id lists.
        IdCase{"DidIsTheListEndMark",
               {{false, "252:6    32 UBUnsp", "252:6    4294967295 UBUnsp"}},
               {"drive 252:6 did 32"},
               {"[RaidLibLeaveOutAmbiguousDrives]Drive 252:6: device id "
                "4294967295 is the end mark of a drive id list; drive left "
                "out\r\n"}},
        // 4294967295 fits 32 bits but is the mark of "-": the segment would
        // move to the head of its array and the create lose its AfterVd.
        IdCase{"AfterVdIsTheNoVolumeMark",
               {{true, " 0  0 1 ", " 0  0 4294967295 "}},
               {"segment 0/0 FreeCapacity0"},
               {"[AddFreeSegment]ID 0, DG 0 or AftrVD 4294967295 is not a "
                "usable id; free space left out\r\n"}}),
    [](const auto &Info) { return std::string(Info.param.Name); });

// The largest 32-bit ids are ids like any other.
TEST_F(LsiWorld, LargestIdsAreRead) {
  AnswerRichConfiguration();
  std::string Summary = kRichSummary;
  Summary.replace(Summary.find("252:4    30 UGood"), 17,
                  "4294967295:4294967295 4294967294 UGood");
  Answer("storcli.efi /c0 show mronly nolog", Summary);
  ReadModel();
  RAID_PHYSICAL_DRIVE *Drive = DriveAt("4294967295:4294967295");
  ASSERT_NE(Drive, nullptr);
  EXPECT_EQ(Drive->Position->Values[LSI_POSITION_ENCLOSURE], 4294967295u);
  EXPECT_EQ(Drive->Position->Values[LSI_POSITION_SLOT], 4294967295u);
  EXPECT_EQ(Drive->Id, 4294967294u);
}

// The card numbers searched come from the controller count: one that is
// not a whole 32-bit number counts no card, where modulo 2^32 it would be
// one card, numbered 0 without a look at its PCI location.
TEST_F(LsiWorld, ControllerCountPast32BitsNumbersNoCard) {
  std::string Count = CtrlCount(1);
  Count.replace(Count.find("= 1"), 3, "= 4294967297");
  Answer("storcli.efi show ctrlcount mronly nolog", Count);
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(LsiGetCardId(Controller_, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(Controller_->Private->CardId, RAID_CARD_ID_UNSET);
  EXPECT_EQ(Commands(),
            std::vector<std::string>{"storcli.efi show ctrlcount mronly nolog"});
  EXPECT_TRUE(TraceHas("[LsiParseControllerShowCtrlCount]Controller Count "
                       "4294967297 is not a usable number\r\n"));
  EXPECT_TRUE(TraceHas("[LsiGetCardId]Error: Card Count 0\r\n"));
}

}  // namespace
}  // namespace lsi_test
