// Page 1: the adapter labels, the status and configuration of the selected
// adapter, Next and Start, deletes of arrays and virtual disks with the
// virtual adapter's state checked after each, refresh and language change.
#include <fstream>
#include <sstream>

#include "MegaRaidWizard.h"
#include "setup/RaidServiceLayer.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardPages.h"

namespace wizard_test {
namespace {

std::string ProductRaidXml() {
  std::ifstream File(std::string(RAIDCFG_SOURCE_DIR) + "/raidcfg/data/raid.xml");
  std::ostringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

nlohmann::json Drives(int Count, const char *State = "UGood") {
  nlohmann::json List = nlohmann::json::array();
  for (int Index = 0; Index < Count; Index++) {
    List.push_back(
        nlohmann::json::object({{"address", "252:" + std::to_string(Index)},
                                {"sizeMb", 1143455},
                                {"state", State}}));
  }
  return List;
}

// One MegaRAID 9460-8i in SMBIOS slot SlotId (none for -1) with the given
// drives and drive groups; Supported false leaves its family out of the
// capability profile.
nlohmann::json OneAdapterServer(int SlotId, nlohmann::json DriveList,
                                nlohmann::json Groups, bool Supported = true) {
  nlohmann::json Slots = nlohmann::json::array();
  if (SlotId >= 0) {
    Slots.push_back(nlohmann::json::object(
        {{"slotId", static_cast<unsigned>(SlotId)}, {"bus", "3b"}, {"designation", "PCIe Slot X"}}));
  }
  nlohmann::json Server = {
      {"pciFunctions",
       {{{"name", "mr"},
         {"location", "3b:00.0"},
         {"vendorId", "1000"},
         {"deviceId", "0016"},
         {"subVendorId", "1000"},
         {"subDeviceId", "9460"}}}},
      {"smbios", {{"slots", Slots}}},
      {"adapters",
       {{{"family", "megaraid"},
         {"pciFunction", "mr"},
         {"drives", DriveList},
         {"driveGroups", Groups}}}}};
  if (!Supported) {
    std::string Xml = ProductRaidXml();
    Xml.replace(Xml.find("CONTROLLER ID=\"LSI\""), 19, "CONTROLLER ID=\"XXX\"");
    Server["volumeFiles"] = {{"raid.xml", {{"text", Xml}}}};
  }
  return Server;
}

nlohmann::json Group(int Level, std::vector<std::string> Members,
                     std::vector<int> VolumeSizesMb) {
  nlohmann::json Volumes = nlohmann::json::array();
  for (size_t Index = 0; Index < VolumeSizesMb.size(); Index++) {
    Volumes.push_back(nlohmann::json::object(
        {{"name", "vd" + std::to_string(Index)},
         {"sizeMb", VolumeSizesMb[Index]}}));
  }
  return nlohmann::json::object(
      {{"raidLevel", Level}, {"members", Members}, {"virtualDrives", Volumes}});
}

class AdapterSelectionTest : public MegaRaidWizardWorld {
 protected:
  std::vector<std::u16string> Labels() {
    return Driver_.Options(Node(RAID_NODE_ADAPTER_RADIO));
  }
};

struct LabelCase {
  const char *Name;
  int SlotId;
  int VolumeCount;
  bool Supported;
  std::u16string Label;
};

class AdapterLabelTest : public AdapterSelectionTest,
                         public ::testing::WithParamInterface<LabelCase> {};

TEST_P(AdapterLabelTest, LabelFollowsSupportSlotAndVolumeCount) {
  const LabelCase &Case = GetParam();
  std::vector<int> Sizes(Case.VolumeCount, 100000);
  nlohmann::json Groups = nlohmann::json::array();
  if (Case.VolumeCount != 0) {
    Groups.push_back(Group(1, {"252:0", "252:1"}, Sizes));
  }
  Start(ScenarioFrom(
      OneAdapterServer(Case.SlotId, Drives(4), Groups, Case.Supported)));
  EXPECT_EQ(Labels(), std::vector<std::u16string>{Case.Label});
  // Only an unsupported adapter is reported to the management controller.
  EXPECT_EQ(Events(), Case.Supported ? std::vector<UINT32>{}
                                     : std::vector<UINT32>{0xFE01});
}

INSTANTIATE_TEST_SUITE_P(
    Forms, AdapterLabelTest,
    ::testing::Values(
        LabelCase{"NoVolumes", 2, 0, true,
                  u"MegaRAID 9460-8i     PCI slot 2  (No virtual disks created)"},
        LabelCase{"OneVolume", 2, 1, true,
                  u"MegaRAID 9460-8i     PCI slot 2  (1 virtual disk created)"},
        LabelCase{"TwoVolumes", 2, 2, true,
                  u"MegaRAID 9460-8i     PCI slot 2  (2 virtual disks created)"},
        LabelCase{"SupportedSlot64", 64, 0, true,
                  u"MegaRAID 9460-8i     (No virtual disks created)    "},
        LabelCase{"SupportedSlot64Volumes", 64, 2, true,
                  u"MegaRAID 9460-8i     (2 virtual disks created)"},
        LabelCase{"SupportedOnBoard", -1, 0, true,
                  u"MegaRAID 9460-8i     (No virtual disks created)    "},
        LabelCase{"UnsupportedSlot64", 64, 0, false,
                  u"MegaRAID 9460-8i     PCI slot 64"},
        LabelCase{"UnsupportedOnBoard", -1, 0, false, u"MegaRAID 9460-8i     "}),
    [](const auto &Info) { return std::string(Info.param.Name); });

TEST_F(AdapterSelectionTest, UnsupportedAdapterShowsOnlyItsMessage) {
  Start(ScenarioFrom(OneAdapterServer(3, Drives(4), nlohmann::json::array(),
                                      false)));
  EXPECT_EQ(gRaidAdapterKind, RAID_ADAPTER_KIND_UNSUPPORTED);
  for (UINT32 Hidden : {RAID_NODE_CONFIG_TABLE, RAID_NODE_STATUS_HEADING,
                        RAID_NODE_REFRESH, RAID_NODE_FIRMWARE_LABEL,
                        RAID_NODE_MANAGE_DRIVES, RAID_NODE_DELETE,
                        RAID_NODE_START, RAID_NODE_EMPTY_CONFIG}) {
    EXPECT_EQ(State(Hidden), HOST_DISPLAY_HIDDEN) << Hidden;
  }
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(State(RAID_NODE_ADAPTER_MESSAGE), HOST_DISPLAY_SHOWN);
}

TEST_F(AdapterSelectionTest, AdapterWithoutDrivesCannotStartTheWizard) {
  Start(ScenarioFrom(
      OneAdapterServer(2, nlohmann::json::array(), nlohmann::json::array())));
  EXPECT_EQ(Text(RAID_NODE_DRIVES_LABEL), u"Disk Drives: 0");
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(State(RAID_NODE_START), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(State(RAID_NODE_CONFIG_TABLE), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(State(RAID_NODE_DELETE), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(Press(RAID_NODE_NEXT), EFI_ACCESS_DENIED);
}

TEST_F(AdapterSelectionTest, FreeCapacityAloneKeepsNextEnabled) {
  // Every drive is a member, but the array has room left.
  Start(ScenarioFrom(OneAdapterServer(
      2, Drives(2), nlohmann::json::array({Group(1, {"252:0", "252:1"}, {100000})}))));
  ASSERT_NE(gCurrentRaidController, nullptr);
  EXPECT_EQ(gCurrentRaidController->UnconfiguredDriveCount, 0u);
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(State(RAID_NODE_START), HOST_DISPLAY_SHOWN);
  EXPECT_TRUE(TraceHas("There are free capacity"));
  // A full array and no free drive: nothing to create.
  Stop();
  Start(ScenarioFrom(OneAdapterServer(
      2, Drives(2), nlohmann::json::array({Group(1, {"252:0", "252:1"}, {1143455})}))));
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_GRAYED);
  EXPECT_EQ(State(RAID_NODE_START), HOST_DISPLAY_HIDDEN);
}

TEST_F(AdapterSelectionTest, StatusAndConfigurationOfTheSelectedAdapter) {
  StartDemo();
  EXPECT_EQ(Text(RAID_NODE_FIRMWARE_LABEL),
            u"Firmware Package Version: 51.16.0-4076");
  EXPECT_EQ(Text(RAID_NODE_SERIAL_LABEL), u"Serial Number: SKA1234567");
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(State(RAID_NODE_DELETE), HOST_DISPLAY_HIDDEN);

  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  EXPECT_EQ(Text(RAID_NODE_SERIAL_LABEL), u"Serial Number: SKB7654321");
  EXPECT_EQ(Text(RAID_NODE_DRIVES_LABEL), u"Disk Drives: 9");
  HOST_PAGE_NODE *Table = Node(RAID_NODE_CONFIG_TABLE);
  const std::vector<std::vector<std::u16string>> Expected = {
      {u"", u"Name", u"Virtual Disk State", u"Capacity"},
      {u"", u"Array0", u"RAID 1", u"893 GB (592 GB free)"},
      {u"", u"     VD0: boot", u"     Optimal", u"     100 GB"},
      {u"", u"     VD1: logs", u"     Optimal", u"     200 GB"},
      {u"", u"Array1", u"RAID 5", u"2232 GB (1208 GB free)"},
      {u"", u"     VD2: archive", u"     Optimal", u"     1024 GB"},
  };
  ASSERT_EQ(framework::TableRows(Table), Expected.size());
  for (UINT32 Row = 0; Row < Expected.size(); Row++) {
    for (UINT32 Column = 0; Column < 4; Column++) {
      EXPECT_EQ(Driver_.Cell(Table, Row, Column), Expected[Row][Column])
          << Row << "," << Column;
    }
  }
  EXPECT_EQ(Driver_.Value(Table), 1u);
  EXPECT_EQ(State(RAID_NODE_DELETE), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_HIDDEN);
}

// Kind 5 adapters report RAID 1 and 10 arrays at twice their size; the
// table halves them.
TEST_F(AdapterSelectionTest, MicrochipMirrorArraysAreShownAtHalfSize) {
  StartDemo();
  RAID_CAPABILITY Capability = {};
  Capability.ToolName = const_cast<CHAR16 *>(u"arcconf.efi");
  RAID_CONTROLLER Controller = {};
  InitializeListHead(&Controller.ArrayList);
  InitializeListHead(&Controller.PhysicalDriveList);
  InitializeListHead(&Controller.SpareDriveList);
  Controller.Capability = &Capability;
  Controller.DiskDriveCount = 2;
  RAID_ARRAY Mirror = {};
  Mirror.Name = const_cast<CHAR16 *>(u"Mirror");
  Mirror.RaidLevel = 1;
  Mirror.SizeFigure = 2000000;
  Mirror.SizeUnit = RAID_UNIT_GB;
  Mirror.FreeCapacity = 600000;
  Mirror.FreeCapacityUnit = RAID_UNIT_GB;
  InitializeListHead(&Mirror.DriveList);
  InitializeListHead(&Mirror.SegmentList);
  InsertTailList(&Controller.ArrayList, &Mirror.Link);
  RAID_CONTROLLER *Selected = gCurrentRaidController;
  gCurrentRaidController = &Controller;
  UpdateCurrentRaidControllerConfig();
  EXPECT_EQ(framework::RedrawScreen(), EFI_SUCCESS);
  EXPECT_EQ(gRaidAdapterKind, RAID_ADAPTER_KIND_ARCCONF);
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 1, 3), u"1000 GB (300 GB free)");
  gCurrentRaidController = Selected;
  UpdateCurrentRaidControllerConfig();
}

// Deletes: the state after each equals the state before with exactly the
// deleted group or virtual drive taken out.
class DeleteTest : public AdapterSelectionTest {
 protected:
  void SetUp() override {
    StartDemo();
    ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
    Before_ = MegaRaidState();
  }
  EFI_STATUS DeleteRow(const std::u16string &RowText) {
    EFI_STATUS Status =
        Driver_.SelectRow(Node(RAID_NODE_CONFIG_TABLE), RowText);
    if (EFI_ERROR(Status)) {
      return Status;
    }
    return Press(RAID_NODE_DELETE);
  }
  // The configured adapter's virtual drives in group Group.
  nlohmann::json &Volumes(nlohmann::json &State, int Group) {
    return State[1]["driveGroups"][Group]["virtualDrives"];
  }
  nlohmann::json Before_;
};

TEST_F(DeleteTest, DeletingAVirtualDiskRemovesOnlyIt) {
  ASSERT_EQ(DeleteRow(u"VD1: logs"), EFI_SUCCESS);
  nlohmann::json Expected = Before_;
  auto &List = Volumes(Expected, 0);
  List.erase(List.begin() + 1);
  EXPECT_EQ(MegaRaidState(), Expected);
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE32});
  EXPECT_EQ(Labels()[kConfiguredMegaRaid],
            u"MegaRAID 9560-8i     PCI slot 4  (2 virtual disks created)");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 2, 1), u"     VD0: boot");
  EXPECT_EQ(Cell(RAID_NODE_CONFIG_TABLE, 3, 1), u"Array1");
  EXPECT_EQ(gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_MANAGE_DRIVES)], 1);
}

TEST_F(DeleteTest, DeletingAnArrayRemovesItWithItsVirtualDisks) {
  ASSERT_EQ(DeleteRow(u"Array1"), EFI_SUCCESS);
  nlohmann::json Expected = Before_;
  auto &Groups = Expected[1]["driveGroups"];
  nlohmann::json Freed = Groups[1]["members"];
  for (const auto &Spare : Groups[1]["dedicatedSpares"]) {
    Freed.push_back(Spare);
  }
  Groups.erase(Groups.begin() + 1);
  // Its members and dedicated spares are unconfigured good again.
  for (auto &Drive : Expected[1]["drives"]) {
    for (const auto &Address : Freed) {
      if (Drive["address"] == Address) {
        Drive["state"] = "UGood";
      }
    }
  }
  EXPECT_EQ(MegaRaidState(), Expected);
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE32});
  EXPECT_EQ(framework::TableRows(Node(RAID_NODE_CONFIG_TABLE)), 4u);
  EXPECT_EQ(framework::FocusNode(), Node(RAID_NODE_DELETE));
}

TEST_F(DeleteTest, DeletingTheLastArrayEmptiesTheTable) {
  ASSERT_EQ(DeleteRow(u"Array1"), EFI_SUCCESS);
  ASSERT_EQ(DeleteRow(u"Array0"), EFI_SUCCESS);
  EXPECT_TRUE(MegaRaidState()[1]["driveGroups"].empty());
  EXPECT_EQ(State(RAID_NODE_DELETE), HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(State(RAID_NODE_EMPTY_CONFIG), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(State(RAID_NODE_NEXT), HOST_DISPLAY_SHOWN);
  EXPECT_EQ(Labels()[kConfiguredMegaRaid],
            u"MegaRAID 9560-8i     PCI slot 4  (No virtual disks created)");
}

TEST_F(DeleteTest, AnswerNoDeletesNothing) {
  Driver_.QueueAnswer(FALSE);
  ASSERT_EQ(DeleteRow(u"VD2: archive"), EFI_SUCCESS);
  EXPECT_EQ(MegaRaidState(), Before_);
  EXPECT_TRUE(Events().empty());
}

TEST_F(DeleteTest, TheOnlyVirtualDiskOfTheLastArrayGoesWithoutTouchingOthers) {
  // The row text is compared with "VD<n>: <name>" of each array's named
  // virtual disks in list order; the first that occurs in the row goes.
  ASSERT_EQ(DeleteRow(u"VD2: archive"), EFI_SUCCESS);
  EXPECT_EQ(MegaRaidState()[1]["driveGroups"][0], Before_[1]["driveGroups"][0]);
  EXPECT_EQ(MegaRaidState()[0], Before_[0]);
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE32});
}

TEST_F(DeleteTest, ARefusedArrayDeleteLeavesTheOtherArraysAlone) {
  // Page 11 read once, before anything changes.
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  ASSERT_EQ(Press(RAID_NODE_BACK), EFI_SUCCESS);
  // The array's only virtual disk goes behind the module's back, so the
  // tool refuses the module's delete of it and the adapter is read again.
  ASSERT_TRUE(Server_->Adapters().Run("storcli.efi /c1/v2 del force"));
  ASSERT_EQ(DeleteRow(u"Array1"), EFI_SUCCESS);
  EXPECT_EQ(Events(), std::vector<UINT32>{0xFE31});
  ASSERT_FALSE(Driver_.MessageBoxes().empty());
  EXPECT_EQ(Driver_.MessageBoxes().back().Title, u"Error");
  const nlohmann::json After = MegaRaidState();
  EXPECT_EQ(After[0], Before_[0]);
  EXPECT_EQ(After[1]["driveGroups"][0], Before_[1]["driveGroups"][0]);
  EXPECT_EQ(gRaidCurrentPage,
            static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  // Page 11 shows the drives as the adapter now has them: the members of
  // the array that went behind the module's back are no longer online.
  ASSERT_EQ(Press(RAID_NODE_MANAGE_DRIVES), EFI_SUCCESS);
  const nlohmann::json Freed = Before_[1]["driveGroups"][1]["members"];
  ASSERT_FALSE(Freed.empty());
  for (UINT32 Row = 1; Row < framework::TableRows(Node(RAID_NODE_DRIVE_TABLE));
       Row++) {
    const std::string Address =
        framework::ToUtf8(Cell(RAID_NODE_DRIVE_TABLE, Row, 0).c_str());
    for (const auto &Member : Freed) {
      if (Member == Address) {
        EXPECT_NE(Cell(RAID_NODE_DRIVE_TABLE, Row, 1), u"Online") << Address;
      }
    }
  }
}

TEST_F(AdapterSelectionTest, RefreshReadsTheAdapterAgainAndResetsThePlan) {
  StartDemo();
  gRaidConfigType = 1;
  gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_CONFIG_TYPE)] = 0;
  ASSERT_EQ(Press(RAID_NODE_REFRESH), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("Refresh the RAID controller info successfully"));
  EXPECT_EQ(gRaidConfigType, 0u);
  EXPECT_EQ(gRaidReInitFlags[RAID_REINIT_FLAG(RAID_PAGE_CONFIG_TYPE)], 1);
  EXPECT_EQ(Driver_.Title(), u"RAID Setup - Select RAID Adapter");
}

TEST_F(AdapterSelectionTest, LanguageChangeRebuildsTheFormattedTexts) {
  StartDemo();
  ASSERT_EQ(ChooseAdapter(kConfiguredMegaRaid), EFI_SUCCESS);
  ASSERT_EQ(Driver_.SwitchLanguage("fr-FR"), EFI_SUCCESS);
  EXPECT_EQ(Labels()[kConfiguredMegaRaid],
            u"MegaRAID 9560-8i     emplacement PCI 4  (3 disques virtuels "
            u"créés)");
  EXPECT_NE(Labels()[kEmptyMegaRaid].find(u"(aucun disque virtuel créé)"),
            std::u16string::npos);
  EXPECT_EQ(Text(RAID_NODE_FIRMWARE_LABEL),
            u"Version du package de firmware : 52.20.0-4341");
  // Russian counts of two to four take their own form.
  ASSERT_EQ(Driver_.SwitchLanguage("ru-RU"), EFI_SUCCESS);
  EXPECT_NE(Labels()[kConfiguredMegaRaid].find(u"(создано: 3 виртуальных диска)"),
            std::u16string::npos);
  for (UINT8 Flag : gRaidReInitFlags) {
    EXPECT_EQ(Flag, 1);
  }
}

}  // namespace
}  // namespace wizard_test
