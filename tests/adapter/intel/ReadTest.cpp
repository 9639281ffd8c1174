// Reading virtual Intel engines through the dispatch: the tool search, the
// RSTe and VROC layouts, the size rules and a missing disk.
#include "EsaDrvMgr.h"
#include "IntelWorld.h"

namespace intel_test {
namespace {

using nlohmann::json;

class IntelReadTest : public IntelWorld {};

TEST_F(IntelReadTest, NoToolAnsweringLeavesTheFirstCandidate) {
  AddEngine({{"tool", "RCfgOther.efi"}, {"disks", {DiskJson(0, "non-raid")}}});
  Start();
  EXPECT_EQ(AllCommands_,
            (std::vector<std::string>{
                "RCfgSata.efi /V", "RCfgSata_V55.efi /V", "RCfgSata_V53.efi /V",
                "RCfgSata_V52.efi /V", "RCfgSata_V50.efi /V", "RCfgSata.efi /V",
                "RCfgSata.efi /I", "RCfgSata.efi /ST"}));
  EXPECT_EQ(Controller->DiskDriveCount, 0u);
}

TEST_F(IntelReadTest, TheInstalledBuildIsFoundAndUsed) {
  AddEngine({{"tool", "RCfgSata_V52.efi"}, {"disks", {DiskJson(0, "non-raid")}}});
  Start();
  EXPECT_EQ(AllCommands_,
            (std::vector<std::string>{
                "RCfgSata.efi /V", "RCfgSata_V55.efi /V", "RCfgSata_V53.efi /V",
                "RCfgSata_V52.efi /V", "RCfgSata_V52.efi /V",
                "RCfgSata_V52.efi /I", "RCfgSata_V52.efi /ST"}));
  EXPECT_EQ(Controller->DiskDriveCount, 1u);
}

TEST_F(IntelReadTest, RsteEngineWithAMirrorAndFreeDisks) {
  AddEngine({{"disks", {DiskJson(0, "member"), DiskJson(1, "member"),
                        DiskJson(2, "non-raid"), DiskJson(3, "spare")}},
             {"arrays", {{{"disks", {0, 1}},
                          {"volumes", {{{"name", "OS"}, {"level", 1},
                                        {"blocks", kThousandGib / 2}}}}}}}});
  Start();
  EXPECT_EQ(Narrow(Controller->FirmwareVersion), " (5.5.0.1028)");
  RAID_ARRAY *Array = ArrayWithId(Controller, 0);
  ASSERT_NE(Array, nullptr);
  EXPECT_EQ(Array->RaidLevel, 1);
  EXPECT_EQ(Array->SizeFigure, 1000000u);
  EXPECT_EQ(Array->FreeCapacity, 500000u);
  EXPECT_EQ(SegmentNames(Array), (std::vector<std::string>{"FreeCapacity0", "OS"}));
  RAID_VOLUME *Volume = VolumeNamed(Controller, "OS");
  EXPECT_EQ(Volume->SizeFigure, 500000u);
  EXPECT_EQ(Volume->State, static_cast<UINT32>(RAID_STATE4_ONLINE));
  EXPECT_EQ(Volume->StripeSize, static_cast<UINT32>(RAID_STRIPE_SIZE_OTHER));
  EXPECT_EQ(Controller->UnconfiguredDriveCount, 1u);
  EXPECT_EQ(Controller->GlobalSpareCount, 1u);
  EXPECT_EQ(Array->MemberDriveCount, 2u);
  EXPECT_EQ(DiskWithId(Controller, 2)->SizeFigure, 1000000u);
  EXPECT_EQ(Narrow(DiskWithId(Controller, 2)->Location), "Disk2");
}

TEST_F(IntelReadTest, VrocEnginesShowTheirStatesAndGbSizes) {
  AddEngine({{"variant", "vroc-sata"},
             {"disks", {DiskJson(0, "member"), DiskJson(1, "member"),
                        DiskJson(2, "member")}},
             {"arrays", {{{"disks", {0, 1, 2}},
                          {"volumes", {{{"name", "R5"}, {"level", 5},
                                        {"stripeKb", 128},
                                        {"blocks", kThousandGib},
                                        {"status", "Degraded"}}}}}}}});
  AddEngine({{"variant", "vroc-ssata"}, {"disks", {DiskJson(7, "non-raid")}}},
            0x11, 0x2822);
  Start();
  EXPECT_EQ(Narrow(Controller->FirmwareVersion), " (6.3.0.1005)");
  RAID_ARRAY *Array = ArrayWithId(Controller, 0);
  ASSERT_NE(Array, nullptr);
  // Three raw 1000 GB disks in RAID 5 show 2000 GB, half of it free.
  EXPECT_EQ(Array->SizeFigure, 2000000u);
  EXPECT_EQ(Array->FreeCapacity, 1000000u);
  EXPECT_EQ(VolumeNamed(Controller, "R5")->State,
            static_cast<UINT32>(RAID_STATE4_DEGRADED));
  EXPECT_EQ(VolumeNamed(Controller, "R5")->StripeSize, 128u);
  // One tool sees both engines.
  EXPECT_EQ(Controller->DiskDriveCount, 4u);
  EXPECT_NE(DiskWithId(Controller, 7), nullptr);
  // Intel engines are numbered from 0 and bound as the Intel family.
  ASSERT_EQ(Controllers().size(), 2u);
  for (UINT32 Card = 0; Card < 2; Card++) {
    EXPECT_EQ(Controllers()[Card]->Private->CardId, Card);
    EXPECT_EQ(Controllers()[Card]->ToolType, static_cast<UINT32>(RAID_TOOL_TYPE_INTEL));
  }
}

TEST_F(IntelReadTest, AThousandMbFreeIsNoSegmentAndAThousandAndOneIs) {
  const uint64_t Disk = 10000 * kBlocksPerMib;
  auto Engine = [&](uint64_t FreePerDiskBlocks) {
    return json{{"disks", {DiskJson(0, "member", Disk), DiskJson(1, "member", Disk)}},
                {"arrays", {{{"disks", {0, 1}},
                             {"volumes", {{{"name", "V"}, {"level", 0},
                                           {"blocks", 2 * (Disk - FreePerDiskBlocks)}}}}}}}};
  };
  AddEngine(Engine(500 * kBlocksPerMib));
  Start();
  EXPECT_EQ(ArrayWithId(Controller, 0)->FreeSegmentCount, 0u);
  Family_ = sim::intel::MakeFamily();
  Family_->AddAdapter(Engine(500 * kBlocksPerMib + kBlocksPerMib / 2));
  Refresh();
  EXPECT_EQ(ArrayWithId(Controller, 0)->FreeSegmentCount, 1u);
  EXPECT_EQ(SegmentNames(ArrayWithId(Controller, 0)),
            (std::vector<std::string>{"FreeCapacity0", "V"}));
}

TEST_F(IntelReadTest, AMissingMemberIsShownAsMissingDisk) {
  AddEngine({{"disks", {DiskJson(0, "member"), DiskJson(1, "missing")}},
             {"arrays", {{{"disks", {0, 1}},
                          {"volumes", {{{"name", "M"}, {"level", 1},
                                        {"status", "Degraded"}}}}}}}});
  Start();
  EXPECT_EQ(Controller->DiskDriveCount, 2u);
  RAID_PHYSICAL_DRIVE *Missing = DiskWithId(Controller, 0xFFFFFFFF);
  ASSERT_NE(Missing, nullptr);
  EXPECT_EQ(Narrow(Missing->Location), "Missing Disk");
  EXPECT_EQ(Missing->State, static_cast<UINT32>(RAID_STATE4_MISSING));
  EXPECT_EQ(Missing->Owner, ArrayWithId(Controller, 0));
}

}  // namespace
}  // namespace intel_test
