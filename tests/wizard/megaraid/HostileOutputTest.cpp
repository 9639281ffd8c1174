// The wizard end to end against virtual MegaRAID adapters whose output is
// edited into what a faulty tool prints, or whose numbers outgrow the
// backend's buffers: what the operator cannot have chosen is never offered
// and never changed, and a request that cannot be written whole fails with
// nothing run.
#include <map>

#include "MegaRaidWizard.h"
#include "RowEdit.h"
#include "setup/RaidServiceLayer.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace wizard_test {
namespace {

using tool_output::EditRows;
using tool_output::RowEdit;

constexpr UINT32 kFailed = 0xFE21;

class HostileOutputTest : public MegaRaidWizardWorld {
 protected:
  // Edits the adapters' answers to the command lines given.
  void EditAnswers(std::map<std::string, std::vector<RowEdit>> Edits) {
    Rewrite_ = [Edits](const std::string &Line, const std::string &Output) {
      auto Found = Edits.find(Line);
      return Found == Edits.end() ? Output : EditRows(Output, Found->second);
    };
  }
  // Page 7 with Level chosen.
  void NewArrayPage(const std::u16string &Level) {
    NextTo(RAID_PAGE_CONFIG_TYPE);
    ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_CONFIG_TYPE_RADIO), 1), EFI_SUCCESS);
    NextTo(RAID_PAGE_ADV_NEW_ARRAY);
    ASSERT_EQ(Driver_.Choose(Node(RAID_NODE_NEW_ARRAY_LEVEL_COMBO), Level),
              EFI_SUCCESS);
  }
  // The addresses page 7 offers, in its order.
  std::vector<std::string> Offered() {
    std::vector<std::string> Addresses;
    HOST_PAGE_NODE *Table = Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE);
    for (UINT32 Row = 1; Row < framework::TableRows(Table); Row++) {
      Addresses.push_back(framework::ToUtf8(Cell(RAID_NODE_NEW_ARRAY_DRIVE_TABLE, Row, 1)));
    }
    return Addresses;
  }
  void Tick(const std::vector<std::string> &Addresses) {
    const std::vector<std::string> Rows = Offered();
    for (const std::string &Address : Addresses) {
      auto Found = std::find(Rows.begin(), Rows.end(), Address);
      ASSERT_NE(Found, Rows.end()) << Address;
      ASSERT_EQ(Driver_.SetCell(Node(RAID_NODE_NEW_ARRAY_DRIVE_TABLE),
                                static_cast<UINT32>(Found - Rows.begin()) + 1, 0, 1),
                EFI_SUCCESS);
    }
  }
  // Plans one virtual disk of all the space and confirms its creation.
  void PlanAndCreate() {
    NextTo(RAID_PAGE_ADV_EDIT_VOLUME);
    ASSERT_EQ(Press(RAID_NODE_CREATE_VD), EFI_SUCCESS);
    ASSERT_EQ(Press(RAID_NODE_POPUP_CREATE), EFI_SUCCESS);
    NextTo(RAID_PAGE_ADV_VERIFY);
    Driver_.QueueAnswer(TRUE);
    NextTo(RAID_PAGE_CREATION_RUNNING);
  }
  std::vector<std::string> Run(const std::string &Text) const {
    std::vector<std::string> Lines;
    for (const std::string &Line : Server_->Shell()->CommandLines()) {
      if (Line.find(Text) != std::string::npos) Lines.push_back(Line);
    }
    return Lines;
  }
};

// The demo's configured adapter prints "logs" as VD 4294967296 beside
// "boot", VD 0, with its free space behind it. Read modulo 2^32 the row
// would read "VD0: logs", and deleting it would delete "boot".
TEST_F(HostileOutputTest, AVolumeNumberPast32BitsCannotBeChosenOnPage1) {
  EditAnswers({{"storcli.efi /c1 show mronly nolog", {{{"0/1"}, 0, "0/4294967296"}}},
               {"storcli.efi /c1 show freespace mronly nolog",
                {{{"", "0", "1"}, 2, "4294967296"}}}});
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  const nlohmann::json Before = MegaRaidState();
  EXPECT_TRUE(TraceHas("[LsiAddVolume]DG/VD 0/4294967296 is not a usable id"));
  HOST_PAGE_NODE *Table = Node(RAID_NODE_CONFIG_TABLE);
  for (UINT32 Row = 0; Row < framework::TableRows(Table); Row++) {
    EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, Row, 1).find(u"logs"), std::u16string::npos);
  }
  // So the operator cannot choose it, and nothing is deleted.
  EXPECT_EQ(Driver_.SelectRow(Table, u"VD0: logs"), EFI_NOT_FOUND);
  EXPECT_TRUE(Run(" del ").empty());

  // "boot" is deleted alone.
  ASSERT_EQ(Driver_.SelectRow(Table, u"VD0: boot"), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  EXPECT_EQ(Run(" del "), std::vector<std::string>{"storcli.efi /c1/v0 del force mronly nolog"});
  nlohmann::json Expected = Before;
  auto &Volumes = Expected[1]["driveGroups"][0]["virtualDrives"];
  ASSERT_EQ(Volumes[0]["name"], "boot");
  Volumes.erase(0);
  EXPECT_EQ(MegaRaidState(), Expected);
}

// 252:1 is printed with 252:0's device id. Ticking 252:0 would name that
// id, and the new array would take 252:1 as well; neither is offered.
TEST_F(HostileOutputTest, DrivesSharingADeviceIdAreNotOfferedOnPage7) {
  EditAnswers({{"storcli.efi /c0 show mronly nolog", {{{"252:1"}, 1, "0"}}}});
  StartScenario("megaraid-six-sas.json");
  const nlohmann::json Before = MegaRaidState();
  NewArrayPage(u"RAID 0");
  const std::vector<std::string> Rows = Offered();
  EXPECT_EQ(Rows, (std::vector<std::string>{"252:2", "252:3", "252:4", "252:5"}));
  ASSERT_FALSE(Rows.empty());
  Tick({Rows.front()});
  PlanAndCreate();
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  // The new array holds the drive ticked and no other.
  const nlohmann::json After = MegaRaidState();
  ASSERT_EQ(After[0]["driveGroups"].size(), 1u);
  EXPECT_EQ(After[0]["driveGroups"][0]["members"], nlohmann::json{Rows.front()});
  for (size_t Index = 0; Index < After[0]["drives"].size(); Index++) {
    if (After[0]["drives"][Index]["address"] != Rows.front()) {
      EXPECT_EQ(After[0]["drives"][Index], Before[0]["drives"][Index]);
    }
  }
}

// 172 drives 2:10000 to 2:10171 and 2:1. The drive list of the 172 does
// not fit its 1024 characters; cut, it would end in "...,10169,1", naming
// 2:1, which is not ticked, and dropping the last two that are.
TEST_F(HostileOutputTest, ADriveListPastItsBufferFailsWithNothingRun) {
  nlohmann::json Drives = nlohmann::json::array();
  std::vector<std::string> Ticked;
  for (unsigned Index = 0; Index < 172; Index++) {
    Ticked.push_back("2:" + std::to_string(10000 + Index));
    Drives.push_back({{"address", Ticked.back()}, {"sizeMb", 953344}});
  }
  Drives.push_back({{"address", "2:1"}, {"sizeMb", 953344}});
  nlohmann::json Server = SixSasServer();
  Server["adapters"][0]["drives"] = Drives;
  Server["adapters"][0]["limits"] = {{"maxDrivesPerSpan", 256}};
  Start(ScenarioFrom(Server));
  const nlohmann::json Before = MegaRaidState();
  NewArrayPage(u"RAID 10");
  Tick(Ticked);
  PlanAndCreate();
  EXPECT_NE(Driver_.Dump().find("Failure (00200005)"), std::string::npos) << Driver_.Dump();
  EXPECT_TRUE(TraceHas("[LsiCreateVolume]Drive list does not fit in 1024 characters; "
                       "nothing is run"));
  EXPECT_EQ(Events(), std::vector<UINT32>{kFailed});
  NextTo(RAID_PAGE_CONTROLLER_SELECTION);
  EXPECT_TRUE(Run(" add ").empty());
  EXPECT_EQ(MegaRaidState(), Before);
}

}  // namespace
}  // namespace wizard_test
