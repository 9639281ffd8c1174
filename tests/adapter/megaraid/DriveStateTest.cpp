// Changing drive states through the dispatch, row by row of the backend's
// table: the commands run, the adapter's change, the model the operation
// edits in place, and the model after a refresh.
#include "MegaRaidWorld.h"
#include "EsaDrvMgr.h"

namespace megaraid_test {
namespace {

using nlohmann::json;

constexpr UINT8 kBus = 3;

// A RAID 6 with three members online and one offline; an unconfigured good
// drive, a JBOD, a global spare, foreign good and bad drives, a bad drive.
const json kAdapter = json::parse(R"({
  "drives": [
    {"address": "252:0", "did": 0, "sizeMb": 953344},
    {"address": "252:1", "did": 1, "sizeMb": 953344},
    {"address": "252:2", "did": 2, "sizeMb": 953344},
    {"address": "252:4", "did": 4, "sizeMb": 953344},
    {"address": "252:5", "did": 5, "sizeMb": 953344, "state": "JBOD"},
    {"address": "252:6", "did": 6, "sizeMb": 953344, "state": "GHS"},
    {"address": "252:7", "did": 7, "sizeMb": 953344, "foreign": true},
    {"address": "253:0", "did": 20, "sizeMb": 953344, "state": "UBad", "foreign": true},
    {"address": "253:1", "did": 21, "sizeMb": 953344, "state": "UBad"},
    {"address": "253:2", "did": 22, "sizeMb": 953344, "state": "Offln"}
  ],
  "driveGroups": [
    {"raidLevel": 6, "members": ["252:0", "252:1", "252:2", "253:2"],
     "virtualDrives": [{"number": 0, "name": "v", "sizeMb": 102400}]}
  ]
})");

enum class List { Physical, Spare, Array };

struct StateCase {
  const char *Name;
  const char *Address;
  UINT32 Target;
  std::vector<std::string> Actions;  // the drive commands, in order
  std::vector<std::pair<const char *, const char *>> Changes;  // address, state
  bool ForeignCleared;  // "/fall delete" took every foreign flag away
  UINT32 ErrorCode;
  UINT32 ModelState;  // the drive's model after the operation
  UINT32 ModelRole;
  List ModelList;
};

class DriveStateTest : public OneAdapterWorld,
                       public ::testing::WithParamInterface<StateCase> {};

bool InList(const LIST_ENTRY &Head, const RAID_PHYSICAL_DRIVE *Drive) {
  for (const LIST_ENTRY *Entry = Head.ForwardLink; Entry != &Head;
       Entry = Entry->ForwardLink) {
    if (Entry == &Drive->Link) return true;
  }
  return false;
}

TEST_P(DriveStateTest, ChangesTheAdapterAndTheModel) {
  const StateCase &Case = GetParam();
  StartWith(kBus, kAdapter);
  RAID_PHYSICAL_DRIVE *Drive = DriveAt(Controller, Case.Address);
  ASSERT_NE(Drive, nullptr);
  const UINT32 Unconfigured = Controller->UnconfiguredDriveCount;
  const UINT32 Spares = Controller->GlobalSpareCount;
  UINT32 ErrorCode = 0xFFFFFFFF;
  const EFI_STATUS Status =
      SetPhysicalDriveState(Controller, Drive, Case.Target, &ErrorCode);
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  // A failure comes back as the code's low byte, without the error bit.
  EXPECT_EQ(Status, static_cast<EFI_STATUS>(Case.ErrorCode & 0xFF));

  std::vector<std::string> Expected;
  for (const auto &Action : Case.Actions) {
    Expected.push_back("storcli.efi /c0" + Action + " mronly nolog");
  }
  EXPECT_EQ(Commands_, Expected);

  json State = Before;
  for (const auto &[Address, Word] : Case.Changes) JsonDrive(State, Address)["state"] = Word;
  if (Case.ForeignCleared) {
    for (json &Item : State["drives"]) Item["foreign"] = false;
  }
  EXPECT_EQ(StateAt(kBus).dump(1), State.dump(1));

  // The operation edits the model in place, without a re-read.
  EXPECT_EQ(Drive->State, Case.ModelState);
  EXPECT_EQ(Drive->Role, Case.ModelRole);
  const bool Physical = InList(Controller->PhysicalDriveList, Drive);
  const bool Spare = InList(Controller->SpareDriveList, Drive);
  EXPECT_EQ(Physical, Case.ModelList == List::Physical);
  EXPECT_EQ(Spare, Case.ModelList == List::Spare);
  // A drive that leaves or joins the spares moves between the counters.
  const bool WasSpare = JsonDrive(Before, Case.Address)["state"] == "GHS";
  const int Delta = WasSpare && !Spare ? 1 : !WasSpare && Spare ? -1 : 0;
  EXPECT_EQ(static_cast<int>(Controller->UnconfiguredDriveCount),
            static_cast<int>(Unconfigured) + Delta);
  EXPECT_EQ(static_cast<int>(Controller->GlobalSpareCount), static_cast<int>(Spares) - Delta);
  ExpectModelMatches(kBus);
}

const StateCase kRows[] = {
    // To unconfigured good.
    {"UGoodFromGlobalSpare", "252:6", 6, {"/e252/s6 delete hotsparedrive"},
     {{"252:6", "UGood"}}, false, 0, 6, 0, List::Physical},
    {"UGoodFromForeignGood", "252:7", 6, {"/fall delete"}, {}, true, 0, 6, 0, List::Physical},
    {"UGoodFromForeignBad", "253:0", 6, {"/e253/s0 del jbod force"}, {}, false, 0x0020002C, 9,
     0, List::Physical},
    {"UGoodFromJbod", "252:5", 6, {"/e252/s5 del jbod force"}, {{"252:5", "UGood"}}, false, 0,
     6, 0, List::Physical},
    {"UGoodFromBad", "253:1", 6, {"/e253/s1 del jbod force"}, {}, false, 0x0020002C, 8, 0,
     List::Physical},
    {"UGoodFromUGood", "252:4", 6, {"/e252/s4 del jbod force"}, {}, false, 0, 6, 0,
     List::Physical},
    // Missing, online, offline: members only; a refusal is not reported.
    {"MissingFromOnline", "252:0", 10, {"/e252/s0 set missing"}, {{"252:0", "Msng"}}, false, 0,
     10, 1, List::Array},
    {"MissingRefused", "252:4", 10, {"/e252/s4 set missing"}, {}, false, 0, 6, 0,
     List::Physical},
    {"OnlineFromOffline", "253:2", 14, {"/e253/s2 set online"}, {{"253:2", "Onln"}}, false, 0,
     14, 1, List::Array},
    {"OnlineRefused", "252:4", 14, {"/e252/s4 set online"}, {}, false, 0, 6, 0, List::Physical},
    {"OfflineFromOnline", "252:1", 15, {"/e252/s1 set offline"}, {{"252:1", "Offln"}}, false,
     0, 15, 1, List::Array},
    // To JBOD.
    {"JbodFromUGood", "252:4", 11, {"/e252/s4 set jbod"}, {{"252:4", "JBOD"}}, false, 0, 11, 0,
     List::Physical},
    {"JbodFromGlobalSpare", "252:6", 11, {"/e252/s6 delete hotsparedrive", "/e252/s6 set jbod"},
     {{"252:6", "JBOD"}}, false, 0, 11, 0, List::Physical},
    // "set jbod" is not judged: the model says JBOD until the next read.
    {"JbodFromForeignIsNotJudged", "252:7", 11, {"/e252/s7 set jbod"}, {}, false, 0, 11, 0,
     List::Physical},
    // To global hot spare.
    {"SpareFromUGood", "252:4", 13, {"/e252/s4 add hotsparedrive"}, {{"252:4", "GHS"}}, false,
     0, 13, 2, List::Spare},
    {"SpareFromJbod", "252:5", 13, {"/e252/s5 del jbod force", "/e252/s5 add hotsparedrive"},
     {{"252:5", "GHS"}}, false, 0, 13, 2, List::Spare},
    {"SpareFromForeign", "252:7", 13, {"/e252/s7 add hotsparedrive"}, {}, false, 0x0020002D, 7,
     0, List::Physical},
    {"SpareFromBad", "253:1", 13, {"/e253/s1 add hotsparedrive"}, {}, false, 0x0020002D, 8, 0,
     List::Physical},
    // A state the operation does not set.
    {"DedicatedSpareIsNoTarget", "252:4", 12, {}, {}, false, 0x00200024, 6, 0, List::Physical},
};

INSTANTIATE_TEST_SUITE_P(Rows, DriveStateTest, ::testing::ValuesIn(kRows),
                         [](const auto &Info) { return std::string(Info.param.Name); });

// ---- Every drive at once -------------------------------------------------------

struct AllCase {
  const char *Name;
  UINT32 Target;
  const char *Command;  // empty: none
  std::vector<std::pair<const char *, const char *>> Changes;
  UINT32 ErrorCode;
};

class SetAllTest : public MegaRaidWorld, public ::testing::WithParamInterface<AllCase> {};

// The tool acts on every drive it can change and refuses the others; the
// output is not judged and the model is re-read.
TEST_P(SetAllTest, ChangesEveryEligibleDrive) {
  const AllCase &Case = GetParam();
  AddAdapter(MegaRaidAt(kBus), kAdapter);
  Start();
  RAID_CONTROLLER *Controller = Refresh(ControllerAt(kBus));
  json Expected = StateAt(kBus);
  ClearCommands();
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(SetAllPhysicalDriveState(Controller, Case.Target, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, Case.ErrorCode);
  ASSERT_FALSE(Commands_.empty());  // the refresh runs in every case
  if (Case.Command[0] != 0) {
    EXPECT_EQ(Commands_.front(), std::string("storcli.efi /c0") + Case.Command + " mronly nolog");
  } else {
    EXPECT_EQ(Commands_.front(), "storcli.efi /c0 show mronly nolog");
  }
  for (const auto &[Address, Word] : Case.Changes) JsonDrive(Expected, Address)["state"] = Word;
  EXPECT_EQ(StateAt(kBus).dump(1), Expected.dump(1));
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(kBus)).dump(1));
  ExpectModelMatches(kBus);
}

INSTANTIATE_TEST_SUITE_P(
    Targets, SetAllTest,
    ::testing::Values(AllCase{"UGood", 6, "/eall/sall del jbod force", {{"252:5", "UGood"}}, 0},
                      AllCase{"Jbod", 11, "/eall/sall set jbod", {{"252:4", "JBOD"}}, 0},
                      AllCase{"GlobalSpareIsNoTarget", 13, "", {}, 0x00200024}),
    [](const auto &Info) { return std::string(Info.param.Name); });

}  // namespace
}  // namespace megaraid_test
