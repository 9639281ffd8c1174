// Reading a getconfig report into the model: sections, keys, the state
// tables, free segments, and layouts of other tool builds.
#include "MchpOutputs.h"
#include "MchpWorld.h"

namespace mchp_test {
namespace {

DriveLines Member(uint32_t Device, int Array, uint32_t Slot) {
  DriveLines Drive;
  Drive.Device = Device;
  Drive.State = "Online";
  Drive.Array = Array;
  Drive.Location = "Enclosure 0, Slot " + std::to_string(Slot) +
                   "(Connector 0:CN0)";
  Drive.Configuration = {"Data"};
  return Drive;
}

DriveLines Loose(uint32_t Device, const std::string &State,
                 const std::string &Configuration) {
  DriveLines Drive;
  Drive.Device = Device;
  Drive.State = State;
  Drive.Location = "Enclosure 1, Slot " + std::to_string(Device) +
                   "(Connector 1:CN1)";
  Drive.Configuration = {Configuration};
  return Drive;
}

std::string RichReport() {
  DriveLines Ssd = Member(4, 1, 4);
  Ssd.Interface = "SATA 6.0 Gb/s";
  Ssd.Ssd = true;
  Ssd.Model = "MZ7KH960HAJR";
  Ssd.Size = "915715 MB";
  DriveLines Ssd2 = Ssd;
  Ssd2.Device = 5;
  Ssd2.Location = "Enclosure 0, Slot 5(Connector 1:CN1)";
  return Getconfig(
      ArrayBlock(0, "3430365 MB", "1587165 MB", 5) +
          ArrayBlock(1, "1831430 MB", "0 MB", 1),
      VolumeBlock(0, 0, "Optimal", "204800 MB", "os") +
          VolumeBlock(1, 0, "Optimal (Background Parity Initialization)",
                      "1024000 MB", "data") +
          VolumeBlock(2, 1, "Optimal", "915715 MB", "mirror"),
      Channel(0) + DriveBlock(Member(0, 0, 0)) + DriveBlock(Member(1, 0, 1)) +
          DriveBlock(Member(2, 0, 2)) +
          DriveBlock(Loose(3, "Dedicated Hot-Spare", "Unassigned")) +
          Channel(1) + DriveBlock(Ssd) + DriveBlock(Ssd2) +
          DriveBlock(Loose(6, "Ready", "Unassigned")) +
          DriveBlock(Loose(7, "Exposed to OS", "HBA")));
}

TEST_F(MchpWorld, ARichConfigurationReadsIntoTheModel) {
  ReadModel(RichReport());
  EXPECT_EQ(Commands(), std::vector<std::string>{"arcconf.efi getconfig 1"});
  EXPECT_EQ(Narrow(Controller_->Private->ProductName),
            "Adaptec SmartRAID 3154-8i");
  EXPECT_EQ(Narrow(Controller_->SerialNumber), "7A4620EC0F2");
  EXPECT_EQ(Narrow(Controller_->FirmwareVersion), "4.11[0]");
  EXPECT_EQ(Narrow(Controller_->Name), "SmartRAID 3154-8i");
  const std::string Report = RichReport();
  TraceHas("[ParseControllerShow] : 2 LineCount:" +
           std::to_string(std::count(Report.begin(), Report.end(), '\n')) +
           " pds/lds/ars:8/3/2");

  RAID_ARRAY *Five = Array(0);
  ASSERT_NE(Five, nullptr);
  EXPECT_EQ(Narrow(Five->Name), "Array0");
  EXPECT_EQ(Five->RaidLevel, 5);
  EXPECT_EQ(Five->SizeFigure, 3430365000u);
  EXPECT_EQ(Five->SizeUnit, RAID_UNIT_MB);
  EXPECT_EQ(Five->FreeCapacity, 1587165000u);
  EXPECT_EQ(Five->MemberDriveCount, 3u);
  EXPECT_EQ(Five->VolumeCount, 2u);
  EXPECT_EQ(Five->FreeSegmentCount, 1u);
  std::vector<std::string> Segments;
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Five->SegmentList)) {
    Segments.push_back(Narrow(Segment->Name));
  }
  EXPECT_EQ(Segments,
            (std::vector<std::string>{"os", "data", "FreeCapacity0"}));
  RAID_VOLUME *Data = Volume(0, 1);
  ASSERT_NE(Data, nullptr);
  EXPECT_EQ(Data->State, RAID_STATE_INVALID);  // parity initialisation
  EXPECT_EQ(Data->SizeFigure, 1024000000u);
  EXPECT_EQ(Data->StripeSize, 256u);
  EXPECT_EQ(Volume(0, 0)->State, RAID_STATE2_OPTIMAL);

  RAID_ARRAY *Mirror = Array(1);
  ASSERT_NE(Mirror, nullptr);
  EXPECT_EQ(Mirror->RaidLevel, 1);
  EXPECT_EQ(Mirror->FreeSegmentCount, 0u);
  EXPECT_EQ(Mirror->MemberDriveCount, 2u);

  EXPECT_EQ(Controller_->DiskDriveCount, 8u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 2u);
  EXPECT_EQ(Controller_->GlobalSpareCount, 1u);
  for (UINT32 Index = 0; Index < 8; Index++) {
    ASSERT_NE(Controller_->DriveTable[Index], nullptr);
  }
  EXPECT_EQ(Controller_->DriveTable[8], nullptr);

  RAID_PHYSICAL_DRIVE *Ssd = Drive(4);
  ASSERT_NE(Ssd, nullptr);
  EXPECT_EQ(Ssd->Owner, Mirror);
  EXPECT_EQ(Ssd->State, RAID_STATE2_ONLINE);
  EXPECT_EQ(Ssd->MediaType, RAID_MEDIA_SATA_SSD);
  EXPECT_EQ(Narrow(Ssd->Model), "MZ7KH960HAJR");
  EXPECT_EQ(Narrow(Ssd->Location), "0:4");
  EXPECT_EQ(std::vector<UINT32>(Ssd->Position->Values,
                                Ssd->Position->Values + 5),
            (std::vector<UINT32>{1, 4, 0, 1, 4}));
  EXPECT_EQ(Drive(0)->MediaType, RAID_MEDIA_SAS_HDD);
  EXPECT_EQ(Drive(3)->State, RAID_STATE2_DEDICATED);
  EXPECT_EQ(Drive(3)->Role, RAID_ROLE_HOT_SPARE);
  EXPECT_EQ(Drive(6)->State, RAID_STATE2_UGOOD);
  EXPECT_EQ(Drive(7)->State, RAID_STATE2_HBA);
  EXPECT_EQ(Drive(7)->Owner, Controller_);
}

struct DriveStateCase {
  const char *State;
  std::vector<std::string> Configuration;
  UINT32 Code;
  UINT32 Role;
  bool InArray;
  bool Spare;
};

class DriveStateTest : public MchpWorld,
                       public ::testing::WithParamInterface<DriveStateCase> {};

TEST_P(DriveStateTest, TheStateAndConfigurationTypePlaceTheDrive) {
  DriveLines Drive = Member(0, 0, 0);
  Drive.State = GetParam().State;
  Drive.Configuration = GetParam().Configuration;
  ReadModel(Getconfig(ArrayBlock(0, "1000 MB", "0 MB", 0),
                      VolumeBlock(0, 0, "Optimal", "1000 MB", "v"),
                      Channel(0) + DriveBlock(Drive)));
  RAID_PHYSICAL_DRIVE *Read = this->Drive(0);
  ASSERT_NE(Read, nullptr);
  EXPECT_EQ(Read->State, GetParam().Code);
  EXPECT_EQ(Read->Role, GetParam().Role);
  EXPECT_EQ(Read->Owner, GetParam().InArray ? static_cast<VOID *>(Array(0))
                                            : Controller_);
  EXPECT_EQ(Array(0)->MemberDriveCount, GetParam().InArray ? 1u : 0u);
  EXPECT_EQ(Controller_->GlobalSpareCount, GetParam().Spare ? 1u : 0u);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount,
            GetParam().InArray || GetParam().Spare ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DriveStateTest,
    ::testing::Values(
        DriveStateCase{"Ready", {"Data"}, 22, 0, false, false},
        DriveStateCase{"Online", {"Data"}, 31, 1, true, false},
        DriveStateCase{"Online", {"Cache"}, 33, 3, false, false},
        DriveStateCase{"Offline", {"Unassigned"}, 32, 1, true, false},
        DriveStateCase{"Dedicated Hot-Spare", {"Data"}, 30, 2, false, true},
        DriveStateCase{"Auto Replace Hot-Spare", {"Data"}, 29, 2, false, true},
        DriveStateCase{"Exposed to OS", {"HBA"}, 28, 0, false, false},
        DriveStateCase{"Exposed to OS", {"Unassigned"}, 22, 0, false, false},
        DriveStateCase{"Raw", {"HBA"}, 28, 0, false, false},
        DriveStateCase{"Failed", {"Unassigned"}, 58, 4, false, false},
        // No configuration type: nothing to classify by.
        DriveStateCase{"Online", {}, RAID_STATE_INVALID, 0, false, false}));

TEST_F(MchpWorld, TwoConfigurationLinesCountTwiceButTheTableStaysInBounds) {
  DriveLines Twice = Member(0, 0, 0);
  Twice.Configuration = {"Data", "Data"};
  ReadModel(Getconfig(ArrayBlock(0, "1000 MB", "0 MB", 0),
                      VolumeBlock(0, 0, "Optimal", "1000 MB", "v"),
                      Channel(0) + DriveBlock(Twice)));
  EXPECT_EQ(Array(0)->MemberDriveCount, 2u);  // counted per line, deliberately
  EXPECT_EQ(Controller_->DiskDriveCount, 1u);
  EXPECT_NE(Controller_->DriveTable[0], nullptr);
  EXPECT_EQ(Controller_->DriveTable[1], nullptr);
}

struct VolumeStateCase {
  const char *Status;
  UINT32 Code;
};

class VolumeStateTest : public MchpWorld,
                        public ::testing::WithParamInterface<VolumeStateCase> {
};

TEST_P(VolumeStateTest, TheStatusTextGivesTheCode) {
  ReadModel(Getconfig(ArrayBlock(0, "1000 MB", "0 MB", 0),
                      VolumeBlock(0, 0, GetParam().Status, "1000 MB", "v"), ""));
  ASSERT_NE(Volume(0, 0), nullptr);
  EXPECT_EQ(Volume(0, 0)->State, GetParam().Code);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VolumeStateTest,
    ::testing::Values(
        VolumeStateCase{"Optimal", 21}, VolumeStateCase{"Failed", 34},
        VolumeStateCase{"Interim Recovery", 20},
        VolumeStateCase{"Recovering", 16}, VolumeStateCase{"Dgrd", 20},
        VolumeStateCase{"Pdgd", 19}, VolumeStateCase{"Offline", 32},
        VolumeStateCase{"rebuilding", 16}, VolumeStateCase{"Rebuilding", 16},
        VolumeStateCase{"Impacted", 21},
        VolumeStateCase{"Optimal (Background Parity Initialization)", 58},
        VolumeStateCase{"(Background Parity Initialization)", 21}));

struct UnusedCase {
  const char *Unused;
  bool Segment;
};

class FreeSegmentTest : public MchpWorld,
                        public ::testing::WithParamInterface<UnusedCase> {};

TEST_P(FreeSegmentTest, OnlyMoreThanATenthOfAMegabyteMakesASegment) {
  ReadModel(Getconfig(ArrayBlock(0, "1000 MB", GetParam().Unused, 0),
                      VolumeBlock(0, 0, "Optimal", "1 MB", "v"), ""));
  ASSERT_NE(Array(0), nullptr);
  EXPECT_EQ(Array(0)->FreeSegmentCount, GetParam().Segment ? 1u : 0u);
  // Every array's unused-size unit is reset after the scan.
  EXPECT_EQ(Array(0)->FreeCapacityUnit, RAID_UNIT_MB);
}

INSTANTIATE_TEST_SUITE_P(
    Thresholds, FreeSegmentTest,
    ::testing::Values(UnusedCase{"0.001 GB", false},
                      UnusedCase{"0.002 GB", true},
                      UnusedCase{"0.100 MB", false},
                      UnusedCase{"0.101 MB", true},
                      UnusedCase{"0.002 PB", true}, UnusedCase{"0 GB", false},
                      UnusedCase{"0 MB", false}));

TEST_F(MchpWorld, TheFreeSegmentKeepsItsUnitAndFollowsTheVolumes) {
  ReadModel(Getconfig(ArrayBlock(0, "2 TB", "1.5 TB", 0),
                      VolumeBlock(0, 0, "Optimal", "500 GB", "v"), ""));
  RAID_VOLUME *Segment =
      BASE_CR(Array(0)->SegmentList.BackLink, RAID_VOLUME, Link);
  EXPECT_EQ(Narrow(Segment->Name), "FreeCapacity0");
  EXPECT_EQ(Segment->IsVolume, 0);
  EXPECT_EQ(Segment->SizeFigure, 1500u);
  EXPECT_EQ(Segment->SizeUnit, RAID_UNIT_TB);
}

TEST_F(MchpWorld, LocationsSizesAndFirmwareAreReadAsTheToolPrintsThem) {
  DriveLines Connector = Loose(5, "Ready", "Unassigned");
  Connector.Location = "Enclosure 0, Slot 3(Connector 1:CN1)";
  Connector.Size = "1.2345 TB";
  DriveLines Direct = Loose(6, "Ready", "Unassigned");
  Direct.Location = "Direct";
  std::string Report =
      Getconfig("", "", Channel(0) + Channel(1) + DriveBlock(Connector) +
                            DriveBlock(Direct));
  const std::string Firmware = "4.11[0]";
  Report.replace(Report.find(Firmware), Firmware.size(), "4.11:B0");
  ReadModel(Report);
  EXPECT_EQ(Narrow(Controller_->FirmwareVersion), "4.11");
  RAID_PHYSICAL_DRIVE *Slot3 = Drive(3);
  ASSERT_NE(Slot3, nullptr);
  EXPECT_EQ(Narrow(Slot3->Location), "0:3");
  EXPECT_EQ(Slot3->Position->Values[MCHP_POSITION_CHANNEL], 1u);
  EXPECT_EQ(Slot3->Position->Values[MCHP_POSITION_DEVICE], 5u);
  EXPECT_EQ(Slot3->SizeFigure, 0u);  // four fraction digits
  EXPECT_EQ(Slot3->SizeUnit, RAID_UNIT_TB);
  // Without a slot in the location: channel and device number.
  RAID_PHYSICAL_DRIVE *Unplaced = Drive(0);
  ASSERT_NE(Unplaced, nullptr);
  EXPECT_EQ(Narrow(Unplaced->Location), "1:6");
}

TEST_F(MchpWorld, AVolumeWithoutAnArrayLineJoinsTheArrayReadLast) {
  ReadModel(Getconfig(ArrayBlock(0, "1000 MB", "0 MB", 0) +
                          ArrayBlock(1, "1000 MB", "0 MB", 1),
                      VolumeBlock(4, -1, "Optimal", "10 MB", "stray"), ""));
  EXPECT_EQ(Array(0)->VolumeCount, 0u);
  ASSERT_NE(Volume(1, 4), nullptr);
  EXPECT_EQ(Narrow(Volume(1, 4)->Name), "stray");
}

TEST_F(MchpWorld, AVolumeBeforeAnyArrayIsLeftOut) {
  // An older tool prints no "Array Information" section at all.
  ReadModel(ControllerSection("M", "S", "F") + VolumeHeading() +
            VolumeBlock(0, -1, "Optimal", "10 MB", "lost") +
            VolumeBlock(1, 0, "Optimal", "10 MB", "lost too") +
            PhysicalHeading() + Channel(0) +
            DriveBlock(Loose(0, "Ready", "Unassigned")) + Ending());
  EXPECT_TRUE(IsListEmpty(&Controller_->ArrayList));
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 1u);
}

TEST_F(MchpWorld, LowerCaseKeysAndCompactBlocksGiveAPartialModel) {
  std::string Report =
      "Controllers found: 1\ncontroller information\n"
      "   controller model : x\narray information\narray number 0\n"
      "logical device information\nlogical device number 0\n"
      "physical device information\n   channel #0:\n      device #0\n"
      "         device is a harddrive\n         state : online\n"
      "Physical Device information\n      Device #1\n"
      "         Device is a HardDrive\n         State : Online\n"
      "         Drive Configuration Type : Data\n"
      "         Drive Configuration Type : Data\n"
      "         Drive Configuration Type : Data\n";
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Parse(Report, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(IsListEmpty(&Controller_->ArrayList));
  // Three classifications of one drive: the table holds one entry.
  EXPECT_EQ(Controller_->DiskDriveCount, 1u);
  EXPECT_EQ(Controller_->DriveTable[1], nullptr);
  EXPECT_EQ(Controller_->UnconfiguredDriveCount, 3u);
}

TEST_F(MchpWorld, AnEmptyReportGivesAnEmptyModel) {
  ReadModel("");
  EXPECT_TRUE(IsListEmpty(&Controller_->ArrayList));
  EXPECT_TRUE(IsListEmpty(&Controller_->PhysicalDriveList));
  EXPECT_EQ(Controller_->DiskDriveCount, 0u);
}

}  // namespace
}  // namespace mchp_test

namespace mchp_test {
namespace {

// A report cut anywhere (a tool that stopped printing, a buffer that
// filled) reads into a partial model that holds together: every drive in
// the table within its count, every volume in an array, nothing leaked.
TEST_F(MchpWorld, AReportCutAnywhereGivesAPartialModel) {
  const std::string Whole = Crlf(RichReport());
  for (size_t Cut = 0; Cut <= Whole.size(); Cut += 97) {
    SCOPED_TRACE(Cut);
    UINT32 ErrorCode = 0;
    EXPECT_EQ(Parse(Whole.substr(0, Cut), &ErrorCode), EFI_SUCCESS);
    EXPECT_EQ(ErrorCode, 0u);
    for (UINT32 Index = 0; Index < Controller_->DiskDriveCount; Index++) {
      ASSERT_NE(Controller_->DriveTable[Index], nullptr);
    }
    EXPECT_EQ(Controller_->DriveTable[Controller_->DiskDriveCount], nullptr);
    EXPECT_LE(AllDrives().size(), 8u);
    for (RAID_ARRAY *Owner :
         uefi::ListOf<&RAID_ARRAY::Link>(Controller_->ArrayList)) {
      for (RAID_VOLUME *Segment :
           uefi::ListOf<&RAID_VOLUME::Link>(Owner->SegmentList)) {
        EXPECT_EQ(Segment->Array, Owner);
      }
    }
  }
}

}  // namespace
}  // namespace mchp_test
