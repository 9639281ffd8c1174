// Reading virtual M.2 adapters through the core: the module's model equals
// what the adapter's state implies, whichever tool the profile names.
#include "ControllerJson.h"
#include "MarvellWorld.h"

namespace marvell_test {
namespace {

using nlohmann::json;
using ReadTest = MarvellWorld;

TEST_F(ReadTest, AdaptersOfBothToolsReadAsTheirStatesSay) {
  json Failed = TwoReadyDrives();
  Failed["drives"][1]["status"] = "failed";
  json Four = Mirrored();
  Four["maxDisks"] = 4;
  Four["drives"].push_back({{"id", 2}, {"type", "NVMe"}, {"size", "1 T"}});
  Four["drives"].push_back({{"id", 3}, {"size", "500 G"}, {"status", "ready"}});
  AddAdapter(0x02, TwoReadyDrives());
  AddAdapter(0x03, Mirrored(), "mnv_cli.efi");
  AddAdapter(0x04, Failed);
  AddAdapter(0x05, Four, "mnv_cli.efi");
  Start();
  for (UINT8 Bus : {0x02, 0x03, 0x04, 0x05}) {
    SCOPED_TRACE(Bus);
    RAID_CONTROLLER *Controller = ControllerAt(Bus);
    ASSERT_NE(Controller, nullptr);
    // The adapter report names no adapter: every controller reads the
    // last adapter's serial number.
    Refresh(Controller);
    json Expected = ExpectedModel(StateAt(Bus));
    Expected["SerialNumber"] = "M2SN4C1A07";
    EXPECT_EQ(core_test::ModelJson(Controller).dump(1), Expected.dump(1));
  }
  EXPECT_EQ(ControllerAt(0x03)->Private->CardId, 1u);
  EXPECT_EQ(ControllerAt(0x03)->ToolType, (UINT32)RAID_TOOL_TYPE_MARVELL);
  EXPECT_NE(std::find(Commands_.begin(), Commands_.end(),
                      "mnv_cli.efi 3 info -o pd"),
            Commands_.end());
}

// No volume: no array, the ready drives unconfigured; the read ran the
// three reports and changed nothing.
TEST_F(ReadTest, AdapterWithoutAVolumeShowsNoArray) {
  AddAdapter(0x02, TwoReadyDrives());
  Start();
  json Before = StateAt(0x02);
  ClearCommands();
  ExpectModelMatches(0x02);
  RAID_CONTROLLER *Controller = ControllerAt(0x02);
  EXPECT_EQ(CountListEntries(&Controller->ArrayList), 0u);
  EXPECT_EQ(Controller->UnconfiguredDriveCount, 2u);
  EXPECT_EQ(Commands_, (std::vector<std::string>{"mvsetup.efi info -o hba",
                                                 "mvsetup.efi 0 info -o vd",
                                                 "mvsetup.efi 0 info -o pd"}));
  EXPECT_EQ(StateAt(0x02), Before);
}

TEST_F(ReadTest, EmptyMaximumSupportedDiskStillTablesTwoDrives) {
  json Adapter = Mirrored();
  Adapter["maxDisks"] = nullptr;
  AddAdapter(0x02, Adapter);
  Start();
  ExpectModelMatches(0x02);
  EXPECT_EQ(ControllerAt(0x02)->DiskDriveCount, 2u);
}

}  // namespace
}  // namespace marvell_test
