// Reading virtual Microchip adapters through the dispatch: the model holds
// what the adapter holds.
#include "EsaDrvMgr.h"
#include "MicrochipWorld.h"

namespace microchip_test {
namespace {

using nlohmann::json;

// RAID 5 with two logical drives and free space, a dedicated spare, a RAID 1
// of SATA SSDs, a ready drive and one exposed to the OS.
const json kRich = json::parse(R"({
  "model": "Adaptec SmartRAID 3154-16i", "serialNumber": "1A17G3003F8",
  "firmware": "4.11[0]",
  "devices": [
    {"address": "0:0", "sizeMb": 1143455}, {"address": "0:1", "sizeMb": 1143455},
    {"address": "0:2", "sizeMb": 1143455}, {"address": "0:3", "sizeMb": 1143455},
    {"address": "1:4", "sizeMb": 228936, "interface": "SATA", "medium": "SSD"},
    {"address": "1:5", "sizeMb": 228936, "interface": "SATA", "medium": "SSD"},
    {"address": "2:8", "slot": 12, "enclosure": 1, "sizeMb": 953344},
    {"address": "2:9", "slot": 13, "enclosure": 1, "sizeMb": 953344, "state": "Raw"}
  ],
  "arrays": [
    {"raidLevel": 5, "members": ["0:0", "0:1", "0:2"], "spares": ["0:3"],
     "logicalDrives": [{"number": 0, "name": "os", "sizeMb": 204800},
                       {"number": 3, "name": "data", "sizeMb": 1024000}]},
    {"raidLevel": 1, "members": ["1:4", "1:5"],
     "logicalDrives": [{"number": 1, "name": "mirror"}]}
  ]
})");

class ReadTest : public MicrochipWorld {};

TEST_F(ReadTest, ARichConfigurationIsReadWhole) {
  AddAdapter(0xAF, 6, kRich);
  Start();
  ExpectModelMatches(0xAF);
  RAID_CONTROLLER *Controller = ControllerAt(0xAF);
  EXPECT_EQ(Controller->ToolType, RAID_TOOL_TYPE_ARCCONF);
  EXPECT_EQ(Controller->Private->CardId, 1u);
  RAID_PHYSICAL_DRIVE *Far = DriveWithSlot(Controller, 12);
  ASSERT_NE(Far, nullptr);
  EXPECT_EQ(Far->Position->Values[0], 2u);  // channel
  EXPECT_EQ(Far->Position->Values[4], 8u);  // device
  RAID_PHYSICAL_DRIVE *Ssd = DriveWithSlot(Controller, 4);
  ASSERT_NE(Ssd, nullptr);
  EXPECT_EQ(Ssd->MediaType, RAID_MEDIA_SATA_SSD);
  EXPECT_EQ(DriveWithSlot(Controller, 13)->State, RAID_STATE2_HBA);
  EXPECT_EQ(DriveWithSlot(Controller, 3)->State, RAID_STATE2_DEDICATED);
  RAID_ARRAY *Mirror = ArrayWithId(Controller, 1);
  ASSERT_NE(Mirror, nullptr);
  EXPECT_EQ(Mirror->FreeSegmentCount, 0u);
  EXPECT_EQ(VolumeWithId(Mirror, 1)->SizeFigure, 228936000u);
}

TEST_F(ReadTest, AnAdapterWithoutDrivesReadsEmpty) {
  AddAdapter(0xAF, 6, json::object());
  Start();
  ExpectModelMatches(0xAF);
  EXPECT_TRUE(IsListEmpty(&ControllerAt(0xAF)->PhysicalDriveList));
}

}  // namespace
}  // namespace microchip_test
