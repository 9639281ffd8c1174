// Changing the configuration: create, delete and drive-state commands, their
// verdicts, and the model afterwards.
#include <Library/MemoryAllocationLib.h>

#include "LsiOutputs.h"
#include "LsiWorld.h"
#include "RaidLibText.h"

namespace lsi_test {
namespace {

// A summary without arrays whose unassigned drives are given as
// "EID:Slt DID" pairs (all UGood SAS HDDs).
std::string FreshSummary(
    const std::vector<std::pair<std::string, unsigned>> &Drives) {
  std::string Text =
      "Controller = 0\nStatus = Success\nDescription = None\n\n"
      "Product Name = MegaRAID 9460-8i\nDrive Groups = 0\n\nTOPOLOGY :\n"
      "========\n\n-----\nDG Arr Row EID:Slot DID Type State\n-----\n-----\n"
      "\nVirtual Drives = 0\n\nPhysical Drives = " +
      std::to_string(Drives.size()) +
      "\n\nPD LIST :\n=======\n\n-----\nEID:Slt DID State DG Size Intf Med "
      "SED PI SeSz Model Sp\n-----\n";
  for (const auto &[Location, Id] : Drives) {
    Text += Location + " " + std::to_string(Id) +
            " UGood - 558.406 GB SAS HDD N N 512B AL13SEB600 U\n";
  }
  return Text + "-----\n";
}

class LsiChangeTest : public LsiWorld {
 protected:
  // Reads the given summary (no free space, no volumes).
  VOID ReadFresh(const std::string &Summary) {
    Answer("storcli.efi /c0 show mronly nolog", Summary);
    Answer("storcli.efi /c0 show freespace mronly nolog", Verdict(true));
    ReadModel();
    Setup_->ClearTrace();
    Baseline_ = Commands().size();
  }
  // Reads the rich configuration.
  VOID ReadRich() {
    AnswerRichConfiguration();
    ReadModel();
    Setup_->ClearTrace();
    Baseline_ = Commands().size();
  }
  // The command lines sent since the model was read.
  std::vector<std::string> NewCommands() const {
    std::vector<std::string> All = Commands();
    return std::vector<std::string>(All.begin() + Baseline_, All.end());
  }
  // A parameter record in the pool, freed by the fixture.
  RAID_VOLUME_PARAMETER *Parameter(std::vector<UINT32> Members,
                                   std::vector<UINT32> Spares) {
    Parameter_ = {};
    Members.push_back(RAID_DRIVE_LIST_END);
    Spares.push_back(RAID_DRIVE_LIST_END);
    Members_ = Members;
    Spares_ = Spares;
    Parameter_.NewArray = 1;
    Parameter_.ControllerId = Controller_->Id;
    Parameter_.DriveList = Members_.data();
    Parameter_.DriveCount = static_cast<UINT32>(Members_.size() - 1);
    Parameter_.SpareList = Spares_.size() > 1 ? Spares_.data() : nullptr;
    Parameter_.Name = Name_;
    Parameter_.Size = 100500;
    Parameter_.Reserved = 1;
    Parameter_.RaidLevel = 5;
    Parameter_.StripeSize = 64;
    Parameter_.ReadPolicy = RAID_READ_POLICY_ALWAYS_READ_AHEAD;
    Parameter_.WritePolicy = RAID_WRITE_POLICY_WRITE_BACK;
    Parameter_.IoPolicy = RAID_IO_POLICY_CACHED;
    Parameter_.DiskCachePolicy = RAID_DISK_CACHE_POLICY_DEFAULT;
    return &Parameter_;
  }

  size_t Baseline_ = 0;
  RAID_VOLUME_PARAMETER Parameter_ = {};
  std::vector<UINT32> Members_, Spares_;
  CHAR16 Name_[16] = u"vd1";
};

const std::vector<std::pair<std::string, unsigned>> kMixedEnclosures = {
    {"252:0", 1}, {"253:5", 2}, {"252:1", 3}, {"253:6", 4}, {"252:2", 5}};

TEST_F(LsiChangeTest, NewArrayGroupsDrivesByEnclosure) {
  ReadFresh(FreshSummary(kMixedEnclosures));
  Answer("storcli.efi /c0 add vd raid5 size=100.500GB name=vd1 "
         "drives=252:0,1,253:5   pdcache=default cached wb ra strip=64  "
         "mronly nolog",
         Verdict(true));
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(LsiCreateVolume(Parameter({1, 2, 3}, {}), 0, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  // Only the answered command line succeeds; the refresh follows.
  EXPECT_EQ(NewCommands()[1], "storcli.efi /c0 show mronly nolog");
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
  EXPECT_TRUE(TraceHas(
      "[LsiCreateVolume] Error code: 0x0, Status: Success\r\n"));
}

TEST_F(LsiChangeTest, ExistingArrayPlacesTheVolumeAfterTheFreeSegment) {
  struct Case {
    UINT32 FreeSegmentId;
    const char *After;
  };
  // Placement after a volume is checked end to end; segment 9 does not
  // exist and gives no AfterVd word.
  for (const Case &C : {Case{9, " "}}) {
    ReadRich();
    RAID_VOLUME_PARAMETER *P = Parameter({}, {});
    P->NewArray = 0;
    P->ArrayId = 0;
    P->FreeSegmentId = C.FreeSegmentId;
    P->DriveCount = 3;
    P->RaidLevel = 0;  // the array's level counts
    P->Size = 50000;
    P->ReadPolicy = RAID_READ_POLICY_NO_READ_AHEAD;
    P->WritePolicy = RAID_WRITE_POLICY_ALWAYS_WRITE_BACK;
    P->IoPolicy = RAID_IO_POLICY_DIRECT;
    P->DiskCachePolicy = RAID_DISK_CACHE_POLICY_OFF;
    P->StripeSize = 128;
    Answer("storcli.efi /c0 add vd raid5 size=50.000GB name=vd1 "
           "drives=252:0,1,2   pdcache=off direct awb nora strip=128 " +
               std::string(C.After) + " mronly nolog",
           Verdict(true));
    AnswerOthers(Verdict(false));
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u) << NewCommands()[0];
  }
}

TEST_F(LsiChangeTest, SpanWordOfNestedLevels) {
  struct Case {
    UINT32 Level, Drives, PerSpan;
  };
  const Case Cases[] = {{10, 4, 2},  {10, 6, 2},  {10, 18, 6}, {10, 5, 0},
                        {10, 2, 0},  {10, 32, 4}, {10, 34, 0}, {50, 8, 4},
                        {50, 7, 0},  {50, 4, 0},  {60, 6, 3},  {60, 12, 6},
                        {5, 8, 0}};
  for (const Case &C : Cases) {
    EXPECT_EQ(LsiDrivesPerSpan(C.Level, C.Drives), C.PerSpan)
        << C.Level << "/" << C.Drives;
  }
  ReadFresh(FreshSummary(kMixedEnclosures));
  RAID_VOLUME_PARAMETER *P = Parameter({1, 2, 3, 4, 5}, {});
  P->RaidLevel = 10;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(NewCommands()[0],
            "storcli.efi /c0 add vd raid10 size=100.500GB name=vd1 "
            "drives=252:0,1,2,253:5,6 pdperarray=0 pdcache=default cached wb "
            "ra strip=64  mronly nolog");
}

TEST_F(LsiChangeTest, CommandFormsAndBlankWords) {
  ReadFresh(FreshSummary(kMixedEnclosures));
  struct Case {
    UINT32 Form;
    const char *Command;
  };
  const Case Cases[] = {
      {0, "storcli.efi /c0 add vd raid1     drives=252:0,1   pdcache=on    "
          "strip=2049  mronly nolog"},
      {2, "storcli.efi /c0 add vd raid1     drives=252:0,1   pdcache=on   "
          "mronly nolog"},
      {7, "storcli.efi /c0 add vd raid1     drives=252:0,1   pdcache=on "
          "mronly nolog"},
  };
  for (const Case &C : Cases) {
    gLsiCommandForm = C.Form;
    RAID_VOLUME_PARAMETER *P = Parameter({1, 3}, {});
    P->RaidLevel = 1;
    P->Size = 999;  // below one unit: the tool takes all the space
    P->Name = nullptr;
    P->StripeSize = RAID_STRIPE_SIZE_OTHER;
    P->ReadPolicy = RAID_READ_POLICY_OTHER;
    P->WritePolicy = RAID_WRITE_POLICY_OTHER;
    P->IoPolicy = RAID_IO_POLICY_OTHER;
    P->DiskCachePolicy = RAID_DISK_CACHE_POLICY_ON;
    Baseline_ = Commands().size();
    UINT32 ErrorCode = 0;
    EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(NewCommands()[0], C.Command) << C.Form;
  }
}

TEST_F(LsiChangeTest, CreateRefusals) {
  ReadRich();
  UINT32 ErrorCode = 0;
  RAID_VOLUME_PARAMETER *P = Parameter({}, {});
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, LSI_ERROR_NO_FREE_DRIVES);
  EXPECT_TRUE(TraceHas("[LsiCreateVolume]No Free Physical Drives!\r\n"));
  EXPECT_EQ(NewCommands()[0], "storcli.efi /c0 show mronly nolog");

  P = Parameter({30}, {});
  P->NewArray = 0;
  P->ArrayId = 9;
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, RAID_ERROR_MISSING);
  EXPECT_TRUE(TraceHas("[LsiCreateVolume]Array 9 is empty!\r\n"));

  P->ControllerId = 42;
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, RAID_ERROR_MISSING);
  EXPECT_TRUE(TraceHas("[LsiCreateVolume]Not find controller.\r\n"));

  P->ControllerId = Controller_->Id;
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  Baseline_ = Commands().size();
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, RAID_ERROR_INVALID_CARD_ID);
  EXPECT_TRUE(NewCommands().empty());
}

// Two drives with one device id (read from another tool, or past the
// parser's own check): a create naming that id is refused before anything
// runs, since its drive list would hold both.
TEST_F(LsiChangeTest, AnIdNamingTwoDrivesIsRefused) {
  ReadFresh(FreshSummary(kMixedEnclosures));
  DriveAt("253:5")->Id = 1;
  for (bool AsSpare : {false, true}) {
    Baseline_ = Commands().size();
    RAID_VOLUME_PARAMETER *P =
        AsSpare ? Parameter({3, 4}, {1}) : Parameter({1, 3}, {});
    P->RaidLevel = 1;
    UINT32 ErrorCode = 0;
    EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, RAID_ERROR_MISSING);
    EXPECT_TRUE(
        TraceHas("[LsiCreateVolume]Drive id 1 names 2 drives; nothing is run\r\n"));
    // Only the refresh runs.
    EXPECT_EQ(NewCommands(), (std::vector<std::string>{
                                 "storcli.efi /c0 show mronly nolog",
                                 "storcli.efi /c0 show freespace mronly nolog"}));
    // The refresh read the unchanged summary again.
    DriveAt("253:5")->Id = 1;
  }
}

TEST_F(LsiChangeTest, DeletingOneVolumeTakesOverTheRefreshCode) {
  ReadRich();
  RAID_ARRAY *Raid10 = Array(1);
  RAID_VOLUME *Volume = nullptr;
  for (RAID_VOLUME *V : uefi::ListOf<&RAID_VOLUME::Link>(Raid10->SegmentList)) {
    Volume = V->IsVolume ? V : Volume;
  }
  Answer("storcli.efi /c0/v2 del force mronly nolog", Verdict(true));
  Answer("storcli.efi /c0/v2 show all mronly nolog",
         ShowAll("1/2", "RAWBC", "4.000 MB", "Enabled"));
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiDeleteVolume(Volume, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, LSI_ERROR_STRIPE_SIZE);
  EXPECT_TRUE(TraceHas("[LsiDeleteVolume]Controller id: 3, Array id: 1\r\n"));
  EXPECT_TRUE(TraceHas("[LsiDeleteVolume] Failed to refresh controller "
                       "information, Status: Success, Error code: "
                       "0x200029\r\n"));
  EXPECT_EQ(NewCommands()[0], "storcli.efi /c0/v2 del force mronly nolog");
}

// ---- Command lines that do not fit ----------------------------------------

// Ten-digit slots of enclosure 252 (DIDs from 100), then the drives of
// Extra: a drive list of them outgrows its 1024 characters after 92 slots.
std::vector<std::pair<std::string, unsigned>> LongSlots(
    unsigned Count,
    const std::vector<std::pair<std::string, unsigned>> &Extra = {}) {
  std::vector<std::pair<std::string, unsigned>> Drives;
  for (unsigned Index = 0; Index < Count; Index++) {
    Drives.push_back({"252:" + std::to_string(1000000000u + Index), 100 + Index});
  }
  Drives.insert(Drives.end(), Extra.begin(), Extra.end());
  return Drives;
}

std::vector<UINT32> IdsOf(const std::vector<std::pair<std::string, unsigned>> &Drives) {
  std::vector<UINT32> Ids;
  for (const auto &Drive : Drives) Ids.push_back(Drive.second);
  return Ids;
}

// The drive list of LongSlots(92) and one more slot.
std::string LongList(const std::string &LastSlot) {
  std::string List = "252:";
  for (unsigned Index = 0; Index < 92; Index++) {
    List += std::to_string(1000000000u + Index) + ",";
  }
  return List + LastSlot;
}

class LsiCommandLengthTest : public LsiChangeTest {
 protected:
  // Replaces the profile's tool name by one of Length characters.
  VOID ToolOfLength(size_t Length) {
    std::u16string Tool = u"fs0:\\";
    Tool.append(Length - Tool.size() - 11, u'x');
    Tool += u"storcli.efi";
    FreePool(Controller_->Capability->ToolName);
    Controller_->Capability->ToolName = AllocDestStr(Tool.c_str());
  }
  // Only the re-read ran.
  VOID ExpectOnlyTheRefresh() {
    EXPECT_EQ(NewCommands(), (std::vector<std::string>{
                                 "storcli.efi /c0 show mronly nolog",
                                 "storcli.efi /c0 show freespace mronly nolog"}));
  }
};

// A list of 1023 characters runs whole; one of 1024 would have been cut to
// end in "1000000" (the unticked 252:1000000) while dropping a ticked
// drive, and is refused instead.
TEST_F(LsiCommandLengthTest, DriveListPastItsBufferIsRefused) {
  struct Case {
    const char *LastSlot;
    bool Fits;
  };
  for (const Case &C : {Case{"1000000", true}, Case{"10000000", false}}) {
    const auto Drives =
        LongSlots(92, {{std::string("252:") + C.LastSlot, 99}, {"252:1000000", 98}});
    ReadFresh(FreshSummary(Drives));
    std::vector<UINT32> Members = IdsOf(Drives);
    Members.pop_back();  // 252:1000000 is not ticked
    RAID_VOLUME_PARAMETER *P = Parameter(Members, {});
    P->RaidLevel = 0;
    UINT32 ErrorCode = 0;
    EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
    if (C.Fits) {
      ASSERT_FALSE(NewCommands().empty());
      EXPECT_NE(NewCommands()[0].find(" drives=" + LongList(C.LastSlot) + " "),
                std::string::npos);
      continue;
    }
    EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
    EXPECT_TRUE(TraceHas("[LsiCreateVolume]Drive list does not fit in 1024 "
                         "characters; nothing is run\r\n"));
    ExpectOnlyTheRefresh();
  }
}

// The hot spares are listed before the array is made: a spare list that
// does not fit refuses the whole create, not just the spares.
TEST_F(LsiCommandLengthTest, SpareListPastItsBufferRefusesTheCreate) {
  const auto Drives = LongSlots(93, {{"253:0", 1}, {"253:1", 2}});
  ReadFresh(FreshSummary(Drives));
  std::vector<UINT32> Spares = IdsOf(Drives);
  Spares.resize(93);
  RAID_VOLUME_PARAMETER *P = Parameter({1, 2}, Spares);
  P->RaidLevel = 1;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_TRUE(TraceHas("[LsiCreateVolume]Hot spare list does not fit in 1024 "
                       "characters; nothing is run\r\n"));
  ExpectOnlyTheRefresh();
}

// "name=" and 58 characters fill the name word's 64; one more is refused
// rather than create a volume under a cut name.
TEST_F(LsiCommandLengthTest, NameWordPastItsBufferIsRefused) {
  for (size_t Length : {58u, 59u}) {
    ReadFresh(FreshSummary(kMixedEnclosures));
    std::u16string Name(Length, u'n');
    RAID_VOLUME_PARAMETER *P = Parameter({1, 3}, {});
    P->RaidLevel = 1;
    P->Name = Name.data();
    UINT32 ErrorCode = 0;
    EXPECT_EQ(LsiCreateVolume(P, 0, &ErrorCode), EFI_SUCCESS);
    const std::string Command = NewCommands()[0];
    if (Length == 58) {
      EXPECT_NE(Command.find(" name=" + std::string(58, 'n') + " "),
                std::string::npos);
      continue;
    }
    EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
    EXPECT_TRUE(TraceHas("[LsiCreateVolume]Name word does not fit in 64 "
                         "characters; nothing is run\r\n"));
    ExpectOnlyTheRefresh();
  }
}

// With a tool path of 69 characters "/c0/v0 del force" fills the 100 of a
// deletion; "/c0/v10" does not, and cut it would name volume 1. No volume
// of the array is deleted, nor is the adapter re-read.
TEST_F(LsiCommandLengthTest, DeletionLinesAreAllFormattedBeforeAnyRuns) {
  ReadRich();
  RAID_ARRAY *Raid5 = Array(0);
  RAID_VOLUME *Second = nullptr;
  for (RAID_VOLUME *V : uefi::ListOf<&RAID_VOLUME::Link>(Raid5->SegmentList)) {
    Second = V->IsVolume && V->Id == 1 ? V : Second;
  }
  ASSERT_NE(Second, nullptr);
  Second->Id = 10;
  ToolOfLength(69);
  Baseline_ = Commands().size();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiDeleteArray(Raid5, &ErrorCode), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  // Had anything run, the re-read would have replaced the array's records.
  ASSERT_TRUE(NewCommands().empty());
  EXPECT_TRUE(TraceHas("[LsiDeleteArray]Command does not fit in 100 "
                       "characters, not run: fs0:\\" + std::string(53, 'x') +
                       "storcli.efi /c0/v10 del force mronly nolo\r\n"));
  EXPECT_EQ(LsiDeleteVolume(Second, &ErrorCode), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_TRUE(NewCommands().empty());
}

// A drive change of two commands checks both before the first runs: a
// global spare that is to become JBOD keeps its state when "delete
// hotsparedrive" does not fit, though "set jbod" would.
TEST_F(LsiCommandLengthTest, DriveCommandsAreCheckedBeforeAnyRuns) {
  ReadRich();
  RAID_PHYSICAL_DRIVE *Spare = DriveAt("252:9");
  ASSERT_NE(Spare, nullptr);
  // The buffer holds 999: "set jbod" takes 994, the release 1006.
  ToolOfLength(960);
  Baseline_ = Commands().size();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiSetPhysicalDriveState(Controller_, Spare, RAID_STATE_JBOD,
                                     &ErrorCode),
            static_cast<EFI_STATUS>(RAID_ERROR_BUFFER_TOO_SMALL & 0xFF));
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_TRUE(NewCommands().empty());
  EXPECT_EQ(Spare->State, (UINT32)RAID_STATE_GHS);
  EXPECT_EQ(Controller_->GlobalSpareCount, 1u);
}

// A single command is refused by the tool runner itself: a change of all
// drives whose line does not fit runs nothing, and reports the refusal.
TEST_F(LsiCommandLengthTest, TheRunnerRefusesALineThatDoesNotFit) {
  ReadRich();
  ToolOfLength(960);  // 1002 characters with "/c0/eall/sall del jbod force"
  Baseline_ = Commands().size();
  UINT32 ErrorCode = 0;
  // Judged by its error code, as callers judge a change of all drives.
  (void)LsiSetAllPhysicalDriveState(Controller_, RAID_STATE_UGOOD, &ErrorCode);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_TRUE(NewCommands().empty());  // the re-read's lines do not fit either
}

// Reads too: a card search whose command does not fit stops with the
// refusal instead of counting the cards of a cut command's output.
TEST_F(LsiCommandLengthTest, CardSearchStopsAtARefusedCommand) {
  ToolOfLength(90);
  Controller_->Private->CardId = RAID_CARD_ID_UNSET;
  UINT32 ErrorCode = 0;
  EXPECT_EQ(LsiGetCardId(Controller_, &ErrorCode), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(ErrorCode, RAID_ERROR_BUFFER_TOO_SMALL);
  EXPECT_TRUE(Commands().empty());
  EXPECT_EQ(Controller_->Private->CardId, RAID_CARD_ID_UNSET);
}

// ---- One drive's state ------------------------------------------------------

struct DriveStateCase {
  const char *Name;
  const char *Location;
  UINT32 Target;
  std::vector<std::pair<std::string, bool>> Commands;  // action, succeeds
  UINT32 State;
  UINT32 Role;
  char List;  // 'P' PhysicalDriveList, 'S' SpareDriveList, 'A' an array
  UINT32 ErrorCode;
  UINT32 Unconfigured;  // counts afterwards (9 and 1 before)
  UINT32 Spares;
};

class LsiDriveStateTest
    : public LsiChangeTest,
      public ::testing::WithParamInterface<DriveStateCase> {};

TEST_P(LsiDriveStateTest, CommandsAndModelEdits) {
  const DriveStateCase &Case = GetParam();
  ReadRich();
  RAID_PHYSICAL_DRIVE *Drive = DriveAt(Case.Location);
  ASSERT_NE(Drive, nullptr);
  std::string Address = std::string("storcli.efi /c0/e") +
                        std::to_string(Drive->Position->Values[LSI_POSITION_ENCLOSURE]) + "/s" +
                        std::to_string(Drive->Position->Values[LSI_POSITION_SLOT]) + " ";
  std::vector<std::string> Expected;
  for (const auto &[Action, Succeeds] : Case.Commands) {
    std::string Line = Action == "fall delete"
                           ? "storcli.efi /c0/fall delete mronly nolog"
                           : Address + Action + " mronly nolog";
    Answer(Line, Verdict(Succeeds));
    Expected.push_back(Line);
  }
  UINT32 ErrorCode = 0xDEAD;
  EFI_STATUS Status =
      LsiSetPhysicalDriveState(Controller_, Drive, Case.Target, &ErrorCode);
  EXPECT_EQ(NewCommands(), Expected);
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  EXPECT_EQ(Status, Case.ErrorCode == 0
                        ? EFI_SUCCESS
                        : static_cast<EFI_STATUS>(Case.ErrorCode & 0xFF));
  EXPECT_EQ(Drive->State, Case.State);
  EXPECT_EQ(Drive->Role, Case.Role);
  LIST_ENTRY *List = Case.List == 'P'   ? &Controller_->PhysicalDriveList
                     : Case.List == 'S' ? &Controller_->SpareDriveList
                                        : nullptr;
  if (List != nullptr) {
    bool InList = false;
    for (RAID_PHYSICAL_DRIVE *D :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
      InList = InList || D == Drive;
    }
    EXPECT_TRUE(InList);
  }
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, Case.Unconfigured);
  EXPECT_EQ(Controller_->GlobalSpareCount, Case.Spares);
  EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LsiDriveStateTest,
    // The accepted transitions run end to end against the virtual adapter;
    // these are the refusals and the drives that adapter does not hold.
    ::testing::Values(
        DriveStateCase{"GhsToUGoodRefused", "252:9", 6,
                       {{"delete hotsparedrive", false}}, 13, 2, 'S', 0x20002C,
                       9, 1},
        DriveStateCase{"ForeignBadToUGood", "252:11", 6,
                       {{"del jbod force", true}, {"fall delete", true}}, 6, 0,
                       'P', 0, 9, 1},
        DriveStateCase{"ForeignBadToUGoodFirstRefused", "252:11", 6,
                       {{"del jbod force", false}}, 9, 0, 'P', 0x20002C, 9, 1},
        DriveStateCase{"ForeignBadToUGoodSecondRefused", "252:11", 6,
                       {{"del jbod force", true}, {"fall delete", false}}, 9, 0,
                       'P', 0x20002C, 9, 1},
        DriveStateCase{"MissingRefusedSilently", "252:0", 10,
                       {{"set missing", false}}, 14, 1, 'A', 0, 9, 1},
        DriveStateCase{"GhsToJbodRefused", "252:9", 11,
                       {{"delete hotsparedrive", false}}, 11, 0, 'S', 0x20002E,
                       9, 1},
        DriveStateCase{"JbodToGhsFirstRefused", "252:8", 13,
                       {{"del jbod force", false}}, 11, 0, 'P', 0x20002C, 9, 1},
        DriveStateCase{"JbodToGhsSecondRefused", "252:8", 13,
                       {{"del jbod force", true}, {"add hotsparedrive", false}},
                       6, 0, 'P', 0x20002D, 9, 1},
        DriveStateCase{"OfflineRefusedSilently", "252:0", 15,
                       {{"set offline", false}}, 14, 1, 'A', 0, 9, 1}),
    [](const ::testing::TestParamInfo<DriveStateCase> &Info) {
      return std::string(Info.param.Name);
    });

TEST_F(LsiChangeTest, AllDrivesAtOnce) {
  struct Case {
    UINT32 Target;
    const char *Command;
    const char *Trace;
    UINT32 ErrorCode;
  };
  const Case Cases[] = {
      {6, "storcli.efi /c0/eall/sall del jbod force mronly nolog",
       "[LsiSetAllPhysicalDriveState] execute the LSI_STATE_UGOOD \r\n", 0},
      {11, "storcli.efi /c0/eall/sall set jbod mronly nolog",
       "[LsiSetAllPhysicalDriveState] execute the LSI_STATE_JBOD \r\n", 0},
      {13, nullptr,
       "[LsiSetAllPhysicalDriveState] execute the default INVALID_RAID_STATE "
       "\r\n",
       0x200024},
  };
  for (const Case &C : Cases) {
    ReadRich();
    UINT32 ErrorCode = 0xDEAD;
    EXPECT_EQ(LsiSetAllPhysicalDriveState(Controller_, C.Target, &ErrorCode),
              EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, C.ErrorCode);
    EXPECT_TRUE(TraceHas(C.Trace));
    std::vector<std::string> Sent = NewCommands();
    ASSERT_FALSE(Sent.empty());
    EXPECT_EQ(Sent[0], C.Command != nullptr
                           ? std::string(C.Command)
                           : std::string("storcli.efi /c0 show mronly nolog"));
    EXPECT_TRUE(Controller_->Private->Flags & RAID_FLAG_OUTPUT_VALID);
  }
}

}  // namespace
}  // namespace lsi_test
