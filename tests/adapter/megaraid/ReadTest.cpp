// Reading adapters: the model the backend builds from a rich configuration
// equals the adapter's state, and each MegaRAID function finds its own
// storcli controller number among several.
#include <algorithm>

#include "MegaRaidWorld.h"

namespace megaraid_test {
namespace {

using nlohmann::json;

// Two drive groups with three volumes between free segments; every drive
// state the adapter holds: members online, rebuilding, offline and missing,
// a dedicated and a global hot spare, JBOD, foreign good and bad, plain
// good and bad; sizes printed in MB, GB and TB; strips from 8 KB to 2 MB.
const json kRichAdapter = json::parse(R"({
  "serialNumber": "SK72938411",
  "fwPackageBuild": "24.21.0-0148",
  "productName": "AVAGO MegaRAID SAS 9361-8i",
  "limits": {"stripSizesKb": [8, 16, 32, 64, 128, 256, 512, 1024, 2048]},
  "drives": [
    {"address": "252:0", "did": 0, "model": "ST2000NM0023", "sizeMb": 1906394},
    {"address": "252:1", "did": 1, "model": "ST2000NM0023", "sizeMb": 1906394},
    {"address": "252:2", "did": 2, "model": "ST2000NM0023", "sizeMb": 1906394, "state": "Rbld"},
    {"address": "252:3", "did": 3, "model": "ST2000NM0023", "sizeMb": 1906394, "state": "Offln"},
    {"address": "252:4", "did": 4, "model": "ST2000NM0023", "sizeMb": 1906394},
    {"address": "252:5", "did": 5, "model": "ST2000NM0023", "sizeMb": 1906394},
    {"address": "253:0", "did": 8, "model": "MZ7LH480HAHQ", "interface": "SATA",
     "medium": "SSD", "size": "447.130 GB"},
    {"address": "253:1", "did": 9, "model": "MZ7LH480HAHQ", "interface": "SATA",
     "medium": "SSD", "size": "447.130 GB", "state": "Msng"},
    {"address": "253:2", "did": 10, "model": "ST1000NM0023", "sizeMb": 953344, "state": "GHS"},
    {"address": "253:3", "did": 11, "model": "PM1733 NVMe", "interface": "NVMe",
     "medium": "SSD", "sizeMb": 3662830, "state": "JBOD"},
    {"address": "253:4", "did": 12, "model": "ST1000NM0023", "sizeMb": 953344, "foreign": true},
    {"address": "253:5", "did": 13, "model": "ST1000NM0023", "sizeMb": 953344,
     "state": "UBad", "foreign": true},
    {"address": "253:6", "did": 14, "model": "ST1000NM0023", "sizeMb": 953344, "state": "UBad"},
    {"address": "253:7", "did": 15, "model": "TINY", "sizeMb": 900},
    {"address": "253:8", "did": 16, "model": "NVMEHDD", "interface": "NVMe", "sizeMb": 953344}
  ],
  "driveGroups": [
    {"raidLevel": 6, "members": ["252:0", "252:1", "252:2", "252:3", "252:4"],
     "dedicatedSpares": ["252:5"],
     "virtualDrives": [
       {"number": 0, "name": "boot", "sizeMb": 512, "stripKb": 8,
        "readPolicy": "nora", "writePolicy": "wt", "ioPolicy": "cached", "diskCache": "off"},
       {"number": 2, "name": "data", "offsetMb": 1024, "sizeMb": 2097152, "stripKb": 1024,
        "writePolicy": "awb", "diskCache": "on"}
     ]},
    {"raidLevel": 1, "members": ["253:0", "253:1"],
     "virtualDrives": [
       {"number": 1, "name": "db store", "offsetMb": 102400, "sizeMb": 204800, "stripKb": 2048}
     ]}
  ]
})");

class RichReadTest : public MegaRaidWorld {};

TEST_F(RichReadTest, ModelEqualsTheAdapterFieldByField) {
  AddAdapter(MegaRaidAt(3), kRichAdapter);
  Start();
  RAID_CONTROLLER *Controller = ControllerAt(3);
  ASSERT_NE(Controller, nullptr);
  RAID_CONTROLLER *Out = nullptr;
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(GetControllerInfo(Controller, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(3)).dump(1));
}

// The derivation above is the adapter's; a few values written out by hand
// pin it to what the operator sees.
TEST_F(RichReadTest, HandWrittenValues) {
  AddAdapter(MegaRaidAt(3), kRichAdapter);
  Start();
  RAID_CONTROLLER *Controller = Refresh(ControllerAt(3));
  const json Model = ModelJson(Controller);
  EXPECT_EQ(Model["DiskDriveCount"], 15);
  EXPECT_EQ(Model["UnconfiguredDriveCount"], 6);
  EXPECT_EQ(Model["GlobalSpareCount"], 1);
  EXPECT_EQ(Model["SpareDrives"], json({10}));
  EXPECT_EQ(Model["PhysicalDrives"], json({11, 12, 13, 14, 15, 16}));
  const json &Dg0 = Model["Arrays"][0];
  EXPECT_EQ(Dg0["RaidLevel"], 6);
  EXPECT_EQ(Dg0["SizeUnit"], 2);  // TB
  EXPECT_EQ(Dg0["Drives"], json({0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(Dg0["MemberDriveCount"], 5);
  EXPECT_EQ(Dg0["DedicatedSpareCount"], 1);
  // Free segments go ahead of the volume they follow, as the wizard lists.
  std::vector<std::string> Order;
  for (const json &Segment : Dg0["Segments"]) {
    Order.push_back(Segment["Name"].get<std::string>());
  }
  EXPECT_EQ(Order, (std::vector<std::string>{"FreeCapacity0", "boot",
                                             "FreeCapacity1", "data"}));
  EXPECT_EQ(Dg0["Segments"][0]["State"], 0);  // after VD 0
  EXPECT_EQ(Dg0["Segments"][1]["SizeUnit"], 0);  // 512 MB
  EXPECT_EQ(Dg0["Segments"][1]["State"], 4);  // two members down: Dgrd
  EXPECT_EQ(Dg0["Segments"][3]["StripeSize"], 1024);
  const json &Dg1 = Model["Arrays"][1];
  EXPECT_EQ(Dg1["Segments"][0]["State"], 0xFFFFFFFFu);  // before every volume
  EXPECT_EQ(Dg1["Segments"][2]["Name"], "db");
  EXPECT_EQ(Dg1["Segments"][2]["StripeSize"], 2048);
  auto StateOf = [&](int Id) {
    for (const json &Drive : Model["DriveTable"]) {
      if (Drive["Id"] == Id) return std::make_pair(Drive["State"].get<int>(), Drive["Role"].get<int>());
    }
    return std::make_pair(-1, -1);
  };
  EXPECT_EQ(StateOf(2), std::make_pair(0, 1));    // Rbld
  EXPECT_EQ(StateOf(3), std::make_pair(15, 1));   // Offln
  EXPECT_EQ(StateOf(5), std::make_pair(12, 2));   // DHS
  EXPECT_EQ(StateOf(9), std::make_pair(58, 4));   // Msng member
  EXPECT_EQ(StateOf(10), std::make_pair(13, 2));  // GHS
  EXPECT_EQ(StateOf(11), std::make_pair(11, 0));  // JBOD
  EXPECT_EQ(StateOf(12), std::make_pair(7, 0));   // foreign UGood
  EXPECT_EQ(StateOf(13), std::make_pair(9, 0));   // foreign UBad
  EXPECT_EQ(StateOf(14), std::make_pair(8, 0));   // UBad
}

json SmallAdapter(const std::string &Serial, uint32_t Drives) {
  json Adapter = {{"serialNumber", Serial}, {"drives", json::array()}};
  for (uint32_t Slot = 0; Slot < Drives; ++Slot) {
    Adapter["drives"].push_back(
        {{"address", "252:" + std::to_string(Slot)}, {"sizeMb", 953344}});
  }
  return Adapter;
}

size_t CountOf(const std::vector<std::string> &Commands, const std::string &Line) {
  return static_cast<size_t>(std::count(Commands.begin(), Commands.end(), Line));
}

struct CardCase {
  const char *Name;
  std::vector<UINT8> Buses;  // in the order the functions are added
  // InitializeRaid's code: the last card search's. A search of three or
  // more that matches after a mismatch keeps the mismatch's code (only the
  // two-controller shortcut clears it); the status is success all the same.
  UINT32 ErrorCode;
};

class CardIdTest : public MegaRaidWorld,
                   public ::testing::WithParamInterface<CardCase> {};

// Every controller gets the storcli number of the adapter at its PCI
// location, and reads that adapter, not another.
TEST_P(CardIdTest, EachControllerReadsItsOwnAdapter) {
  uint32_t Drives = 1;
  for (UINT8 Bus : GetParam().Buses) {
    AddAdapter(MegaRaidAt(Bus), SmallAdapter("SK-BUS-" + std::to_string(Bus), Drives++));
  }
  Start(GetParam().ErrorCode);
  ASSERT_EQ(Controllers().size(), GetParam().Buses.size());
  for (UINT8 Bus : GetParam().Buses) {
    RAID_CONTROLLER *Controller = ControllerAt(Bus);
    ASSERT_NE(Controller, nullptr);
    EXPECT_EQ(Controller->Private->CardId, CardOf(Bus)) << "bus " << int(Bus);
    ExpectModelMatches(Bus);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Adapters, CardIdTest,
    ::testing::Values(CardCase{"TwoInOrder", {3, 5}, 0},
                      CardCase{"TwoReversed", {0x81, 0x04}, 0},
                      CardCase{"Three", {0x81, 0x03, 0x41}, 0}),
    [](const auto &Info) { return std::string(Info.param.Name); });

// With two controllers the one that is not card 0 takes card 1 without
// asking the tool about it.
TEST_F(CardIdTest, TwoControllersNeverAskForCardOne) {
  AddAdapter(MegaRaidAt(0x81), SmallAdapter("B", 1));
  AddAdapter(MegaRaidAt(0x04), SmallAdapter("A", 1));
  Start();
  EXPECT_EQ(CountOf(Commands_, "storcli.efi show ctrlcount mronly nolog"), 2u);
  EXPECT_EQ(CountOf(Commands_, "storcli.efi /c0 show mronly nolog"), 2u);
  EXPECT_EQ(CountOf(Commands_, "storcli.efi /c1 show mronly nolog"), 0u);
  EXPECT_EQ(ControllerAt(0x81)->Private->CardId, 1u);
  EXPECT_EQ(ControllerAt(0x04)->Private->CardId, 0u);
}

// With three, the search asks card by card until the location matches.
TEST_F(CardIdTest, ThreeControllersAskUntilTheLocationMatches) {
  AddAdapter(MegaRaidAt(0x81), SmallAdapter("C", 1));
  AddAdapter(MegaRaidAt(0x03), SmallAdapter("A", 1));
  AddAdapter(MegaRaidAt(0x41), SmallAdapter("B", 1));
  Start();
  EXPECT_EQ(CountOf(Commands_, "storcli.efi /c0 show mronly nolog"), 3u);
  EXPECT_EQ(CountOf(Commands_, "storcli.efi /c1 show mronly nolog"), 2u);
  EXPECT_EQ(CountOf(Commands_, "storcli.efi /c2 show mronly nolog"), 1u);
}

}  // namespace
}  // namespace megaraid_test
