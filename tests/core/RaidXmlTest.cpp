// The raid.xml callbacks: the vocabulary fed by hand, the hand-out to the
// family's controllers, and the shipped raid.xml through expat.
#include <Library/BaseLib.h>
#include <gtest/gtest.h>
#include "RaidLib.h"
#include "RaidXml.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "RaidTestSupport.h"
#include "TestPool.h"

namespace {

using test::Narrow;

void Start(const CHAR16 *Name, std::initializer_list<const CHAR16 *> Attrs = {}) {
  std::vector<const CHAR16 *> List(Attrs);
  List.push_back(nullptr);
  RaidXmlTagStart(nullptr, Name, List.data());
}

void End(const CHAR16 *Name) { RaidXmlTagEnd(nullptr, Name); }

// An element with no children.
void Leaf(const CHAR16 *Name, std::initializer_list<const CHAR16 *> Attrs = {}) {
  Start(Name, Attrs);
  End(Name);
}

std::vector<RAID_LEVEL_CAP *> Levels(RAID_CAPABILITY *Capability) {
  std::vector<RAID_LEVEL_CAP *> Result;
  for (RAID_LEVEL_CAP *Level :
       uefi::ListOf<&RAID_LEVEL_CAP::Link>(Capability->LevelList)) {
    Result.push_back(Level);
  }
  return Result;
}

// "name=value*" per entry, '*' marking the default.
std::string Policies(LIST_ENTRY &List) {
  std::string Result;
  for (RAID_POLICY_ENTRY *Entry : uefi::ListOf<&RAID_POLICY_ENTRY::Link>(List)) {
    Result += Narrow(Entry->Name) + "=" + std::to_string(Entry->Value) +
              (Entry->IsDefault ? "*" : "") + " ";
  }
  return Result;
}

// Every field and list of a capability as text, to compare records.
std::string Describe(RAID_CAPABILITY *C) {
  std::ostringstream Out;
  Out << Narrow(C->ControllerName) << "|" << Narrow(C->ToolName) << "|"
      << C->MaxVolumeNameStingLength << "," << C->MaxHotSpares << ","
      << C->MaxArrays << "," << C->MaxLogicalDrivesInArray << ","
      << C->MaxTotalLogicalDrives << "," << C->MaxTotalPhysicalDrives << "|";
  for (RAID_LEVEL_CAP *L : Levels(C)) {
    Out << Narrow(L->Name) << ":" << L->Level << ":" << int(L->IsDefault) << ":"
        << L->MinPhysicalDrives << "-" << L->MaxPhysicalDrives << "/"
        << L->MaxLogicalDrives << " ";
  }
  Out << "|" << Policies(C->ReadPolicyList) << "|" << Policies(C->WritePolicyList)
      << "|" << Policies(C->IoPolicyList) << "|"
      << Policies(C->DiskCachePolicyList) << "|" << Policies(C->StripeSizeList);
  return Out.str();
}

class RaidXmlCallbacks : public ::testing::Test {
 protected:
  void SetUp() override { RaidXmlResetParserState(); }
  void TearDown() override {
    RaidXmlFinishParsing();
    test::FreeAllControllers();
    EXPECT_EQ(gCapability, nullptr);
    EXPECT_EQ(Pool_.Outstanding(), 0u);
  }
  test::ScopedTestPool Pool_;
  test::TraceCapture Trace_;
};

TEST_F(RaidXmlCallbacks, LevelsTakeTheLimitsOfTheirBlock) {
  Start(u"CONTROLLER", {u"ID", u"LSI"});
  Leaf(u"TOOL", {u"ID", u"storcli.efi"});
  Start(u"R1");  // before its LEVEL: lost
  Leaf(u"MinPhysicalDrives", {u"ID", u"9"});
  End(u"R1");
  Leaf(u"LEVEL", {u"ID", u"1", u"DEFAULT", u"1"});
  Leaf(u"LEVEL", {u"ID", u"5", u"DEFAULT", u"0"});
  Leaf(u"MaxPhysicalDrives", {u"ID", u"77"});  // inside no R block: lost
  Start(u"R1");
  Leaf(u"MinPhysicalDrives", {u"ID", u"2"});
  Leaf(u"MaxPhysicalDrives", {u"ID", u"32"});
  Leaf(u"MaxLogicalDrives", {u"ID", u"16"});
  End(u"R1");
  Leaf(u"MaxPhysicalDrives", {u"ID", u"78"});  // after the block: lost
  Leaf(u"LEVEL", {u"ID", u"10"});              // no R10 block: limits stay 0
  for (const CHAR16 *Limit :
       {u"MaxVolumeNameStingLength", u"MaxHotSpares", u"MaxArrays",
        u"MaxLogicalDrivesInArray", u"MaxTotalLogicalDrives",
        u"MaxTotalPhysicalDrives"}) {
    Leaf(Limit, {u"ID", u"15"});
  }
  ASSERT_NE(gCapability, nullptr);
  EXPECT_EQ(Describe(gCapability),
            "LSI|storcli.efi|15,15,15,15,15,15|1:1:1:2-32/16 5:5:0:0-0/0 "
            "10:10:0:0-0/0 |||||");
  End(u"CONTROLLER");  // no controllers: the record stays and is traced
  EXPECT_EQ(Trace_.Lines().back(),
            "[RaidXmlTagEnd]IsListEmpty(&gControllerList) || gCapability == "
            "NULL\n");
}

TEST_F(RaidXmlCallbacks, ALevelListedTwiceGetsTheLimitsInBoth) {
  Leaf(u"LEVEL", {u"ID", u"0"});
  Leaf(u"LEVEL", {u"ID", u"0"});
  Start(u"R0");
  Leaf(u"MaxLogicalDrives", {u"ID", u"4"});
  End(u"R0");
  for (RAID_LEVEL_CAP *Level : Levels(gCapability)) {
    EXPECT_EQ(Level->MaxLogicalDrives, 4u);
  }
}

TEST_F(RaidXmlCallbacks, PoliciesAreFiledByTheirContainer) {
  Leaf(u"POLICY", {u"ID", u"Write Back"});  // outside every container: dropped
  Start(u"WRITEPOLICY");
  Leaf(u"POLICY", {u"ID", u"Write Back", u"DEFAULT", u"1"});
  Leaf(u"POLICY", {u"ID", u"Always Write Back"});
  Start(u"READPOLICY");  // improper nesting: read wins
  Leaf(u"POLICY", {u"ID", u"No Read Ahead"});
  End(u"READPOLICY");
  End(u"WRITEPOLICY");
  Start(u"IOPOLICY");
  Leaf(u"POLICY", {u"ID", u"Direct"});
  Leaf(u"POLICY");  // no ID
  End(u"IOPOLICY");
  Start(u"PDCACHE");
  Leaf(u"POLICY", {u"ID", u"Enabled", u"DEFAULT", u"1"});
  End(u"PDCACHE");
  Leaf(u"POLICY", {u"ID", u"Off"});  // containers closed again: dropped
  Leaf(u"SIZE", {u"ID", u"2048K", u"DEFAULT", u"1"});
  Leaf(u"SIZE", {u"ID", u"4M"});
  EXPECT_EQ(Policies(gCapability->ReadPolicyList), "No Read Ahead=1 ");
  EXPECT_EQ(Policies(gCapability->WritePolicyList),
            "Write Back=1* Always Write Back=2 ");
  EXPECT_EQ(Policies(gCapability->IoPolicyList), "Direct=1 =4294967295 ");
  EXPECT_EQ(Policies(gCapability->DiskCachePolicyList), "Enabled=3* ");
  EXPECT_EQ(Policies(gCapability->StripeSizeList), "2048K=2048* 4M=2049 ");
}

TEST_F(RaidXmlCallbacks, AttributesCountOnlyInTheirPosition) {
  Leaf(u"MaxHotSpares", {u"id", u"8"});                     // lower case
  Leaf(u"MaxArrays", {u"DEFAULT", u"1", u"ID", u"8"});     // swapped
  Leaf(u"LEVEL", {u"ID", u"6", u"X", u"1", u"DEFAULT", u"1"});  // third pair
  Leaf(u"LEVEL", {u"NAME", u"n", u"DEFAULT", u"1"});       // default only
  Leaf(u"maxtotalphysicaldrives", {u"ID", u"8"});           // element case
  Leaf(u"MaxTotalLogicalDrives", {u"ID"});                  // missing value
  RaidXmlTagStart(nullptr, u"MaxTotalLogicalDrives", nullptr);
  EXPECT_EQ(Describe(gCapability),
            "||0,0,0,0,0,0|6:6:0:0-0/0 :0:1:0-0/0 |||||");
}

TEST_F(RaidXmlCallbacks, ABlockForAnAbsentFamilyIsFreedAtItsEnd) {
  RAID_CONTROLLER *Lsi = test::AddController(0, u"LSI", 0x1000);
  Start(u"CONTROLLER", {u"ID", u"MCHP"});
  Leaf(u"LEVEL", {u"ID", u"5"});
  End(u"CONTROLLER");
  EXPECT_EQ(gCapability, nullptr);
  EXPECT_EQ(Lsi->Capability, nullptr);
}

// A tool name no command line can carry whole is refused once, when the
// profile is read: the family's adapters get no profile, as if raid.xml did
// not name them, instead of each command failing or being cut later.
TEST_F(RaidXmlCallbacks, AToolNameThatIsNoShortEfiFileNameWithholdsTheProfile) {
  const std::u16string Longest = std::u16string(28, u's') + u".efi";
  const struct {
    std::u16string Tool;
    bool Taken;
  } Cases[] = {
      {u"storcli.efi", true},
      {u"RCfgSata_v2-1.EFI", true},
      {Longest, true},
      {u"s" + Longest, false},  // one character too many
      {std::u16string(81, u's') + u".efi", false},
      {u"storcli", false},
      {u".efi", false},
      {u"-h.efi", false},
      {u"fs0:\\storcli.efi", false},
      {u"stor cli.efi", false},
      {u"storcli.efi /c0", false},
      {u"", false},
  };
  for (const auto &Case : Cases) {
    SCOPED_TRACE(Narrow(Case.Tool.c_str()));
    RAID_CONTROLLER *Lsi = test::AddController(0, u"LSI", 0x1000);
    Trace_.Clear();
    Start(u"CONTROLLER", {u"ID", u"LSI"});
    Leaf(u"TOOL", {u"ID", Case.Tool.c_str()});
    End(u"CONTROLLER");
    EXPECT_EQ(gCapability, nullptr);
    EXPECT_EQ(Lsi->Capability != nullptr, Case.Taken);
    const std::string Refusal =
        "[RaidXmlTagStart]Tool name of LSI (" +
        std::to_string(Case.Tool.size()) +
        " characters) is no file name of up to 32 characters ending in .efi: "
        "its adapters get no profile\n";
    EXPECT_EQ(std::count(Trace_.Lines().begin(), Trace_.Lines().end(), Refusal),
              Case.Taken ? 0 : 1);
    test::FreeAllControllers();
  }
}

TEST_F(RaidXmlCallbacks, OnlyMatchedControllersWithThatExactStorageIdReceive) {
  RAID_CONTROLLER *Unmatched = test::AddController(0, u"LSI", 0x1000);
  Unmatched->ToolType = RAID_TOOL_TYPE_UNMATCHED;
  RAID_CONTROLLER *Other = test::AddController(1, u"lsi", 0x1000);
  RAID_CONTROLLER *Lsi = test::AddController(2, u"LSI", 0x1000);
  Start(u"CONTROLLER", {u"ID", u"LSI"});
  End(u"CONTROLLER");
  EXPECT_EQ(Unmatched->Capability, nullptr);
  EXPECT_EQ(Other->Capability, nullptr);
  ASSERT_NE(Lsi->Capability, nullptr);
  EXPECT_EQ(Narrow(Lsi->Capability->ControllerName), "LSI");
}

TEST_F(RaidXmlCallbacks, TwoControllersOfAFamilyGetTheRecordAndACopy) {
  RAID_CONTROLLER *First = test::AddController(0, u"LSI", 0x1000);
  test::AddController(1, u"MCHP", 0x9005);
  RAID_CONTROLLER *Second = test::AddController(2, u"LSI", 0x1000);
  Start(u"CONTROLLER", {u"ID", u"LSI"});
  Leaf(u"TOOL", {u"ID", u"storcli.efi"});
  Leaf(u"LEVEL", {u"ID", u"1", u"DEFAULT", u"1"});
  Start(u"R1");
  Leaf(u"MaxPhysicalDrives", {u"ID", u"32"});
  End(u"R1");
  Start(u"READPOLICY");
  Leaf(u"POLICY", {u"ID", u"Always read ahead", u"DEFAULT", u"1"});
  End(u"READPOLICY");
  Leaf(u"SIZE", {u"ID", u"64K"});
  Leaf(u"MaxArrays", {u"ID", u"64"});
  RAID_CAPABILITY *Built = gCapability;
  End(u"CONTROLLER");
  EXPECT_EQ(gCapability, nullptr);
  ASSERT_EQ(First->Capability, Built);
  ASSERT_NE(Second->Capability, nullptr);
  ASSERT_NE(Second->Capability, Built);
  EXPECT_EQ(Describe(Second->Capability), Describe(Built));
  EXPECT_NE(Second->Capability->ToolName, Built->ToolName);

  const std::string Expected = Describe(Second->Capability);
  RaidLibFreeController(First);
  EXPECT_EQ(Describe(Second->Capability), Expected);
}

TEST_F(RaidXmlCallbacks, AFailedCopyLeavesThatControllerWithoutAProfile) {
  RAID_CONTROLLER *First = test::AddController(0, u"LSI", 0x1000);
  RAID_CONTROLLER *Second = test::AddController(1, u"LSI", 0x1000);
  Start(u"CONTROLLER", {u"ID", u"LSI"});
  Leaf(u"TOOL", {u"ID", u"storcli.efi"});
  Leaf(u"LEVEL", {u"ID", u"0"});
  Leaf(u"LEVEL", {u"ID", u"1"});
  // Every failure point of the copy: the record, its strings, its entries.
  for (long Allowed = 0; Allowed < 8; Allowed++) {
    RAID_CAPABILITY *Copy = nullptr;
    Pool_.FailAfter(Allowed);
    Copy = RaidXmlCopyCapability(gCapability);
    Pool_.FailAfter(-1);
    if (Copy != nullptr) {
      EXPECT_EQ(Describe(Copy), Describe(gCapability));
      RaidLibFreeCapability(Copy);
      break;
    }
  }
  size_t Before = Pool_.Outstanding();
  EXPECT_FALSE(RaidXmlShortOfMemory());
  Pool_.FailAfter(0);
  End(u"CONTROLLER");
  Pool_.FailAfter(-1);
  EXPECT_NE(First->Capability, nullptr);
  EXPECT_EQ(Second->Capability, nullptr);
  EXPECT_EQ(Pool_.Outstanding(), Before);
  // The start-up is told, and fails for memory.
  EXPECT_TRUE(RaidXmlShortOfMemory());
}

// Each failure drops only its element, and is noted so that the start-up
// fails for memory rather than hand out a profile the file does not hold.
TEST_F(RaidXmlCallbacks, AllocationFailuresWhileBuildingDropOnlyTheElement) {
  EXPECT_FALSE(RaidXmlShortOfMemory());
  Pool_.FailAfter(0);
  Leaf(u"LEVEL", {u"ID", u"5"});  // no record can be made
  Pool_.FailAfter(-1);
  EXPECT_EQ(gCapability, nullptr);
  EXPECT_TRUE(RaidXmlShortOfMemory());
  // With the record made, Allowed allocations of the element succeed.
  const struct {
    long Allowed;
    const CHAR16 *Element;
    const CHAR16 *Id;
  } kFailures[] = {
      {0, u"LEVEL", u"5"},      // the level
      {1, u"LEVEL", u"6"},      // its name
      {0, u"POLICY", u"Direct"},  // a policy entry
      {1, u"POLICY", u"Direct"},  // its name
      {0, u"SIZE", u"256K"},    // a stripe size entry
      {0, u"TOOL", u"storcli.efi"},
  };
  for (const auto &Failure : kFailures) {
    RaidXmlResetParserState();
    Start(u"IOPOLICY");
    EXPECT_FALSE(RaidXmlShortOfMemory());
    Pool_.FailAfter(Failure.Allowed);
    Leaf(Failure.Element, {u"ID", Failure.Id, u"DEFAULT", u"1"});
    Pool_.FailAfter(-1);
    EXPECT_TRUE(RaidXmlShortOfMemory()) << Narrow(Failure.Element);
    EXPECT_EQ(Describe(gCapability), "||0,0,0,0,0,0||||||");
  }
}

TEST_F(RaidXmlCallbacks, ResetDropsAHalfBuiltRecordAndTheScopes) {
  Start(u"CONTROLLER", {u"ID", u"LSI"});
  Start(u"WRITEPOLICY");
  Start(u"R5");
  RaidXmlResetParserState();
  EXPECT_EQ(gCapability, nullptr);
  Leaf(u"LEVEL", {u"ID", u"5"});
  Leaf(u"POLICY", {u"ID", u"Write Back"});
  Leaf(u"MaxPhysicalDrives", {u"ID", u"8"});
  EXPECT_EQ(Describe(gCapability), "||0,0,0,0,0,0|5:5:0:0-0/0 |||||");
}

std::string ReadFile(const std::string &Path) {
  std::ifstream In(Path, std::ios::binary);
  std::ostringstream Text;
  Text << In.rdbuf();
  return Text.str();
}

TEST_F(RaidXmlCallbacks, TheShippedProfileGivesEachFamilyItsRecord) {
  std::string Document = ReadFile(RAIDCFG_DATA_DIR "/raid.xml");
  ASSERT_FALSE(Document.empty());
  RAID_CONTROLLER *Lsi = test::AddController(0, u"LSI", 0x1000);
  RAID_CONTROLLER *Mchp = test::AddController(1, u"MCHP", 0x9005);
  RAID_CONTROLLER *Rste = test::AddController(2, u"RSTe", 0x8086);
  RAID_CONTROLLER *M2 = test::AddController(3, u"M.2", 0x1B4B);
  ASSERT_TRUE(test::ParseXml(Document, RaidXmlTagStart, RaidXmlTagEnd));
  EXPECT_EQ(gCapability, nullptr);
  for (RAID_CONTROLLER *Controller : {Lsi, Mchp, Rste, M2}) {
    ASSERT_NE(Controller->Capability, nullptr);
    EXPECT_EQ(Narrow(Controller->Capability->ControllerName),
              Narrow(Controller->Private->StorageId));
  }
  EXPECT_EQ(Describe(Lsi->Capability),
            "LSI|storcli.efi|15,32,64,16,64,240|"
            "0:0:1:1-32/16 1:1:0:2-32/16 5:5:0:3-32/16 6:6:0:3-32/16 "
            "10:10:0:4-240/16 50:50:0:6-240/16 60:60:0:6-240/16 |"
            "Always read ahead=0* No Read Ahead=1 |"
            "Write Through=0 Write Back=1* Always Write Back=2 |"
            "Cached=0 Direct=1* |Off=0 On=1 Default=2* |"
            "64K=64 128K=128 256K=256* 512K=512 1024K=1024 ");
  EXPECT_EQ(Narrow(Rste->Capability->ToolName), "RCfgSata.efi");
  EXPECT_EQ(Narrow(Mchp->Capability->ToolName), "arcconf.efi");
  EXPECT_EQ(Narrow(M2->Capability->ToolName), "mvsetup.efi");
  // Every family's levels have a block with sane limits, and one default.
  for (RAID_CONTROLLER *Controller : {Lsi, Mchp, Rste, M2}) {
    int Defaults = 0;
    for (RAID_LEVEL_CAP *Level : Levels(Controller->Capability)) {
      EXPECT_GT(Level->MinPhysicalDrives, 0u) << Narrow(Level->Name);
      EXPECT_LE(Level->MinPhysicalDrives, Level->MaxPhysicalDrives);
      EXPECT_GT(Level->MaxLogicalDrives, 0u);
      Defaults += Level->IsDefault;
    }
    EXPECT_EQ(Defaults, 1) << Narrow(Controller->Private->StorageId);
    int StripeDefaults = 0;
    for (RAID_POLICY_ENTRY *Size : uefi::ListOf<&RAID_POLICY_ENTRY::Link>(
             Controller->Capability->StripeSizeList)) {
      EXPECT_NE(Size->Value, RAID_STRIPE_SIZE_OTHER) << Narrow(Size->Name);
      StripeDefaults += Size->IsDefault;
    }
    EXPECT_EQ(StripeDefaults, 1);
  }
}

TEST_F(RaidXmlCallbacks, MalformedXmlKeepsWhatWasBuiltAndLeaksNothing) {
  RAID_CONTROLLER *Lsi = test::AddController(0, u"LSI", 0x1000);
  EXPECT_FALSE(test::ParseXml(
      "<R><CONTROLLER ID=\"LSI\"><LEVEL ID=\"1\"/></CONTROLLER>"
      "<CONTROLLER ID=\"LSI\"><LEVEL ID=\"5\"/><oops</R>",
      RaidXmlTagStart, RaidXmlTagEnd));
  ASSERT_NE(Lsi->Capability, nullptr);
  EXPECT_EQ(Levels(Lsi->Capability).size(), 1u);
  EXPECT_NE(gCapability, nullptr);  // the unfinished block; freed at finish
}

}  // namespace
