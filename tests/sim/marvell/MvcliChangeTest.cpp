// The changing commands of the virtual M.2 tools: each one's whole effect
// on the adapter's state (the dump before, with the intended change
// applied, must equal the dump after), its printed verdict, and the
// refusals that leave the adapter as it was.
#include <gtest/gtest.h>

#include <functional>

#include "MarvellTestSupport.h"

namespace sim::marvell::test {
namespace {

using nlohmann::json;

struct ChangeCase {
  const char *Name;
  std::function<json()> Adapter;
  const char *Arguments;  // after "mvsetup.efi 0 "
  const char *Output;
  std::function<void(json &)> Change;  // on the dump of the state before
};

std::ostream &operator<<(std::ostream &Out, const ChangeCase &Case) {
  return Out << Case.Name;
}

void Unchanged(json &) {}

class MvcliChangeTest : public ::testing::TestWithParam<ChangeCase> {};

TEST_P(MvcliChangeTest, ChangesExactlyWhatItSays) {
  const ChangeCase &Case = GetParam();
  Mvcli Tool = ToolWith(Case.Adapter());
  json Expected = StateOf(Tool);
  Case.Change(Expected);
  EXPECT_EQ(Tool.Run(std::string("mvsetup.efi 0 ") + Case.Arguments),
            std::string(Case.Output) + "\r\n");
  EXPECT_EQ(StateOf(Tool).dump(2), Expected.dump(2));
}

void MirrorCreated(json &State) {
  State["drives"][0]["status"] = "online";
  State["drives"][1]["status"] = "online";
  // The smaller drive's capacity: 234431064 K is 228936 M.
  State["volumes"] = json::parse(R"([{"id": 0, "name": "Boot", "level": 1,
      "status": "optimal", "stripeSize": 64, "size": "228936 M",
      "drives": [0, 1]}])");
}

void StripeCreated(json &State) {
  MirrorCreated(State);
  State["volumes"][0]["level"] = 0;
  State["volumes"][0]["stripeSize"] = 32;
  State["volumes"][0]["size"] = "457873 M";
  State["volumes"][0]["name"] = "";
}

json TwoVolumes() {
  json Adapter = Mirrored();
  Adapter["volumes"].push_back(json::parse(
      R"({"id": 3, "name": "Data", "level": 0, "stripeSize": 32,
          "size": "1000 M", "drives": [0, 1]})"));
  return Adapter;
}

const ChangeCase kCases[] = {
    {"CreateRaid1", TwoReadyDrives,
     "create -o vd -r1 -d 0,1 -n Boot -b 64 --waiveconfirmation",
     "Create virtual disk successfully.", MirrorCreated},
    {"CreateRaid0WithoutAName", TwoReadyDrives,
     "create -o vd -r0 -d 0,1 -n  -b 32 --waiveconfirmation",
     "Create virtual disk successfully.", StripeCreated},
    {"RefuseLevel5", TwoReadyDrives,
     "create -o vd -r5 -d 0,1 -n Boot -b 64 --waiveconfirmation",
     "Error: RAID level 5 is not supported.", Unchanged},
    {"RefuseOneDriveMirror", TwoReadyDrives,
     "create -o vd -r1 -d 0 -n Boot -b 64 --waiveconfirmation",
     "Error: RAID1 cannot be created with 1 disk(s).", Unchanged},
    {"RefuseUnknownDrive", TwoReadyDrives,
     "create -o vd -r1 -d 0,7 -n Boot -b 64 --waiveconfirmation",
     "Error: PD 7 does not exist.", Unchanged},
    {"RefuseDriveInUse", Mirrored,
     "create -o vd -r1 -d 0,1 -n Boot -b 64 --waiveconfirmation",
     "Error: PD 0 is already in use.", Unchanged},
    {"RefuseSameDriveTwice", TwoReadyDrives,
     "create -o vd -r1 -d 1,1 -n Boot -b 64 --waiveconfirmation",
     "Error: PD 1 is already in use.", Unchanged},
    {"RefuseStripe", TwoReadyDrives,
     "create -o vd -r1 -d 0,1 -n Boot -b 2049 --waiveconfirmation",
     "Error: Stripe size 2049K is not supported.", Unchanged},
    {"DeleteTheOnlyVolume", Mirrored,
     "delete -o vd -i 0 -f --waiveconfirmation",
     "Delete virtual disk successfully.",
     [](json &State) {
       State["volumes"] = json::array();
       State["drives"][0]["status"] = "ready";
       State["drives"][1]["status"] = "ready";
     }},
    {"DeleteOneOfTwoKeepsTheDrivesInUse", TwoVolumes,
     "delete -o vd -i 3 -f --waiveconfirmation",
     "Delete virtual disk successfully.",
     [](json &State) { State["volumes"].erase(1); }},
    {"RefuseUnknownVolume", Mirrored,
     "delete -o vd -i 2 -f --waiveconfirmation",
     "Error: VD 2 does not exist.", Unchanged},
};

INSTANTIATE_TEST_SUITE_P(Commands, MvcliChangeTest, ::testing::ValuesIn(kCases),
                         [](const auto &Info) { return Info.param.Name; });

// A second array: the four-drive adapter with a mirror on two drives.
TEST(MvcliSecondArrayTest, IsRefused) {
  json Adapter = Mirrored();
  Adapter["drives"].push_back({{"id", 2}});
  Adapter["drives"].push_back({{"id", 3}});
  Mvcli Tool = ToolWith(Adapter);
  json Before = StateOf(Tool);
  EXPECT_EQ(Tool.Run("mvsetup.efi 0 create -o vd -r1 -d 2,3 -n Data -b 64 "
                     "--waiveconfirmation"),
            "Error: The adapter supports only one RAID array.\r\n");
  EXPECT_EQ(StateOf(Tool), Before);
}

}  // namespace
}  // namespace sim::marvell::test
