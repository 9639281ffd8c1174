// Tool runs of start-up and of page 1's rebuilds for servers of 1, 2, 3
// and 8 adapters of one family. Every run goes through the shell-command
// service, which records its command line; a read served from the cached
// model ("Info is up to date") runs nothing.
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "WizardWorld.h"
#include "wizard/RaidPageNodes.h"

namespace wizard_test {
namespace {

using nlohmann::json;

// The runs each step may take, as functions of the adapter count N.
struct Pinned {
  UINTN (*StartUp)(UINTN N);   // InitializeRaid and page 1 shown
  UINTN (*Refresh)(UINTN N);   // Refresh on page 1
  UINTN (*Return)(UINTN N);    // page 11 and Back to page 1
  UINTN (*Change)(UINTN N);    // one virtual disk (M.2: the array) deleted
};

struct Family {
  const char *Name;
  const char16_t *DeletedRow;  // the first adapter's row that is deleted
  const char *Changeable[2];   // what the delete may change on it
  Pinned Runs;
};

// storcli's card search at start-up: one "show ctrlcount" per adapter;
// with two cards the first probes /c0 and the second takes /c1 unprobed;
// with more, adapter k probes /c0 ... /ck.
UINTN StorcliCardSearch(UINTN N) {
  if (N == 1) return 1;
  if (N == 2) return N + 2;
  return N + N * (N + 1) / 2;
}

// Each MegaRAID adapter holds the demo's three virtual disks.
constexpr UINTN kMegaRaidVds = 3;
// A Microchip read runs "list" first when there are two adapters or more.
UINTN MchpRead(UINTN N) { return (N >= 2 ? 1 : 0) + 1; }

const Family kFamilies[] = {
    {"megaraid", u"VD1: logs",
     {"/megaraid/0/driveGroups", "/megaraid/0/drives/*/state"},
     {// card search + per adapter: summary + free space + one per virtual disk
      [](UINTN N) { return StorcliCardSearch(N) + N * (2 + kMegaRaidVds); },
      // the selected adapter: summary + free space + one per virtual disk
      [](UINTN) { return 2 + kMegaRaidVds; },
      // every read cached
      [](UINTN) -> UINTN { return 0; },
      // delete + re-read: summary + free space + one per remaining disk
      [](UINTN) { return 1 + 2 + (kMegaRaidVds - 1); }}},
    {"microchip", u"VD0: os",
     {"/microchip/0/arrays", "/microchip/0/devices/*/state"},
     {// "list" per adapter + per adapter: ["list" when N > 1] + getconfig
      [](UINTN N) { return N + N * MchpRead(N); },
      // the selected adapter: ["list" when N > 1] + getconfig
      [](UINTN N) { return MchpRead(N); },
      // every read cached
      [](UINTN) -> UINTN { return 0; },
      // DELETE + re-read: ["list" when N > 1] + getconfig
      [](UINTN N) { return 1 + MchpRead(N); }}},
    {"intel", u"VD0: OS_Mirror",
     {"/intel/0/arrays", "/intel/0/disks/*/state"},
     {// tool search "/V" once + per engine: /V + /I + /ST
      [](UINTN N) { return 1 + N * 3; },
      // the selected engine: /V + /I + /ST
      [](UINTN) -> UINTN { return 3; },
      // every read cached
      [](UINTN) -> UINTN { return 0; },
      // /Y /D + re-read: /V + /I + /ST
      [](UINTN) -> UINTN { return 1 + 3; }}},
    {"marvell", u"Array 0",
     {"/marvell/0/volumes", "/marvell/0/drives/*/status"},
     {// per adapter: info -o hba + info -o vd + info -o pd
      [](UINTN N) { return N * 3; },
      // the selected adapter: hba + vd + pd
      [](UINTN) -> UINTN { return 3; },
      // every read cached
      [](UINTN) -> UINTN { return 0; },
      // delete + re-read: hba + vd + pd
      [](UINTN) -> UINTN { return 1 + 3; }}},
};

// The demo's PCI function and adapter of Family, copied Count times onto
// buses 0x20, 0x21, ... with a slot of their own.
json ServerOf(const std::string &Family, UINTN Count) {
  json Demo = DemoScenarioJson();
  json Adapter = AdapterOfFamily(Demo, Family);
  for (const json &A : Demo["adapters"]) {
    // The configured MegaRAID adapter, not the demo's first (empty) one.
    if (Family == "megaraid" && A["pciFunction"] == "megaraid-configured") {
      Adapter = A;
    }
  }
  json Function;
  for (const json &F : Demo["pciFunctions"]) {
    if (F["name"] == Adapter["pciFunction"]) Function = F;
  }
  if (Family == "marvell") {
    // A volume to delete: the two ready drives mirrored.
    for (json &Drive : Adapter["drives"]) Drive["status"] = "online";
    Adapter["volumes"] = json::array(
        {{{"id", 0}, {"name", "Boot"}, {"level", 1}, {"stripeSize", 64},
          {"size", "228900 M"}, {"drives", {0, 1}}}});
  }
  json Server = {{"name", Family + " x" + std::to_string(Count)},
                 {"pciFunctions", json::array()},
                 {"smbios", {{"slots", json::array()}}},
                 {"adapters", json::array()}};
  for (UINTN I = 0; I < Count; ++I) {
    char Bus[3];
    std::snprintf(Bus, sizeof Bus, "%02x", static_cast<unsigned>(0x20 + I));
    json F = Function;
    F["name"] = "a" + std::to_string(I);
    F["location"] = std::string(Bus) + ":00.0";
    Server["pciFunctions"].push_back(F);
    Server["smbios"]["slots"].push_back(
        {{"slotId", 10 + I}, {"bus", Bus}});
    json A = Adapter;
    A["pciFunction"] = F["name"];
    if (Family == "microchip") A["slot"] = 10 + I;
    if (Family == "intel") {
      // Disk numbers are unique across all engines of the server.
      const UINTN Base = I * A["disks"].size();
      for (json &Disk : A["disks"]) {
        Disk["number"] = Base + Disk["number"].get<UINTN>();
      }
      for (json &Array : A["arrays"]) {
        for (json &Disk : Array["disks"]) Disk = Base + Disk.get<UINTN>();
        for (json &Volume : Array["volumes"]) {
          Volume["name"] = Volume["name"].get<std::string>() +
                           (I == 0 ? "" : std::to_string(I));
        }
      }
    }
    Server["adapters"].push_back(A);
  }
  return Server;
}

struct Case {
  const Family *Of;
  UINTN Count;
};
// Names the case in test listings (gtest would print its bytes).
void PrintTo(const Case &C, std::ostream *Out) {
  *Out << C.Of->Name << " x" << C.Count;
}

class ToolRunTest : public WizardWorld,
                    public ::testing::WithParamInterface<Case> {
 protected:
  // Command lines run since the last call, for the failure message.
  std::vector<std::string> Since() {
    const std::vector<std::string> &All = Server_->Shell()->CommandLines();
    std::vector<std::string> New(All.begin() + Seen_, All.end());
    Seen_ = All.size();
    return New;
  }
  static std::string Listed(const std::vector<std::string> &Lines) {
    std::string Text;
    for (const std::string &Line : Lines) Text += "\n  " + Line;
    return Text;
  }
  void ExpectRuns(const char *Step, UINTN Pinned) {
    const std::vector<std::string> Runs = Since();
    EXPECT_EQ(Runs.size(), Pinned) << Step << " ran:" << Listed(Runs);
  }
  size_t Seen_ = 0;
};

TEST_P(ToolRunTest, StartUpAndPageOneRebuildsRunWhatTheRulesPrescribe) {
  const Family &F = *GetParam().Of;
  const UINTN N = GetParam().Count;
  Start(ServerOf(F.Name, N));
  ASSERT_EQ(Driver_.Options(Node(RAID_NODE_ADAPTER_RADIO)).size(), N);
  ExpectRuns("start-up", F.Runs.StartUp(N));

  ASSERT_EQ(Press(RAID_NODE_REFRESH), EFI_SUCCESS);
  ExpectRuns("refresh", F.Runs.Refresh(N));

  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  ExpectRuns("return to page 1", F.Runs.Return(N));

  // Choosing an adapter rebuilds every label and the chosen adapter's
  // table from the cache, in every family.
  ASSERT_EQ(ChooseAdapter(N - 1), EFI_SUCCESS);
  ASSERT_EQ(ChooseAdapter(0), EFI_SUCCESS);
  ExpectRuns("adapter chosen", 0);

  ASSERT_EQ(Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), F.DeletedRow),
            EFI_SUCCESS);
  Driver_.QueueAnswer(TRUE);
  ASSERT_EQ(Press(RAID_NODE_DELETE), EFI_SUCCESS);
  ExpectRuns("delete and re-read", F.Runs.Change(N));
  EXPECT_NE(ExpectChangedOnly({F.Changeable[0], F.Changeable[1]}), Started_)
      << "nothing was deleted";
}

std::vector<Case> AllCases() {
  std::vector<Case> Cases;
  for (const Family &F : kFamilies) {
    for (UINTN N : {1u, 2u, 3u, 8u}) Cases.push_back({&F, N});
  }
  return Cases;
}

INSTANTIATE_TEST_SUITE_P(
    FamilyByCount, ToolRunTest, ::testing::ValuesIn(AllCases()),
    [](const ::testing::TestParamInfo<Case> &Info) {
      return std::string(Info.param.Of->Name) + "_" +
             std::to_string(Info.param.Count);
    });

}  // namespace
}  // namespace wizard_test
