// Which PCI functions become controllers, in which order, with which slot.
#include "CoreWorld.h"

namespace core_test {
namespace {

constexpr UINT16 kLsi = 0x1000;
constexpr UINT16 kIntel = 0x8086;
constexpr UINT16 kMarvell = 0x1B4B;
constexpr UINT16 kMicrochip = 0x9005;

class DiscoveryTest : public CoreWorld {
 public:
  // A database naming every function the tests add, so that only the PCI
  // filters decide.
  VOID WriteDatabaseFor(const std::vector<PciFunction> &Functions) {
    std::vector<std::string> Elements;
    for (const PciFunction &F : Functions) {
      Elements.push_back(StorageElement("LSI", F.VendorId, F.DeviceId,
                                        F.SubVendorId, F.SubDeviceId,
                                        "Adapter " + std::to_string(F.Bus)));
    }
    WriteFile("pcidb.xml", PcidbXml(Elements));
    WriteFile("raid.xml", RaidXml({ControllerBlock("LSI", "storcli.efi")}));
  }

  std::vector<UINT8> BusesOfControllers() {
    std::vector<UINT8> Buses;
    for (RAID_CONTROLLER *Controller : Controllers()) {
      Buses.push_back(Controller->Private->Bus);
    }
    return Buses;
  }
};

struct FilterCase {
  const char *Name;
  PciFunction Function;
  bool Listed;
};

TEST_F(DiscoveryTest, OnlyRaidSasAndMarvellAhciFunctionsBecomeControllers) {
  const FilterCase Cases[] = {
      {"MegaRAID", {1, 0, 0, kLsi, 0x0016, kLsi, 0x9460}, true},
      {"SAS sub-class", {2, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x07}, true},
      {"Marvell AHCI", {3, 0, 0, kMarvell, 0x9230, 0x1028, 0x2113, 0x06, 0x01}, true},
      {"Intel AHCI", {4, 0, 0, kIntel, 0xA182, kIntel, 0x7270, 0x06, 0x01}, false},
      {"Intel 2827", {5, 0, 0, kIntel, 0x2827, kIntel, 0x0000}, false},
      {"Intel 201D", {6, 0, 0, kIntel, 0x201D, kIntel, 0x0000}, false},
      {"LSI 00AC", {7, 0, 0, kLsi, 0x00AC, kLsi, 0x0000}, false},
      {"LSI 00E6", {8, 0, 0, kLsi, 0x00E6, kLsi, 0x0000}, false},
      {"NVMe class", {9, 0, 0, kLsi, 0x0016, kLsi, 0x9460, 0x08, 0x02}, false},
      {"Network class", {10, 0, 0, kLsi, 0x0016, kLsi, 0x9460, 0x00, 0x00, 0x02}, false},
      {"SATA non-AHCI", {11, 0, 0, kMarvell, 0x9230, kMarvell, 0x9230, 0x06, 0x00}, false},
  };
  std::vector<PciFunction> Functions;
  std::vector<UINT8> Expected;
  for (const FilterCase &Case : Cases) {
    AddFunction(Case.Function);
    Functions.push_back(Case.Function);
    if (Case.Listed) {
      Expected.push_back(Case.Function.Bus);
    }
  }
  WriteDatabaseFor(Functions);
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(BusesOfControllers(), Expected);
  EXPECT_TRUE(TraceHas("[RaidLibScanPciBus]Pci bus(SATA): 0x4, Dev: 0x0, Func: 0x0"));
  Finalize();
}

TEST_F(DiscoveryTest, ControllerIdsCountUnmatchedDevicesToo) {
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({2, 0, 0, kLsi, 0x0017, kLsi, 0x1111});  // not in the database
  AddFunction({3, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  WriteDatabaseFor({{1, 0, 0, kLsi, 0x0016, kLsi, 0x9460}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  std::vector<UINT32> Ids;
  for (RAID_CONTROLLER *Controller : Controllers()) {
    Ids.push_back(Controller->Id);
    // storcli numbers all three MegaRAID functions, matched or not.
    EXPECT_EQ(Controller->Private->CardId, Controller->Id);
  }
  EXPECT_EQ(Ids, (std::vector<UINT32>{0, 2}));
  EXPECT_TRUE(TraceHas("[InitializeRaid]INFO: Controller id: 2 name: Adapter 1"));
  Finalize();
}

TEST_F(DiscoveryTest, FunctionsBehindOneBusShareTheFirstMatchingSlot) {
  AddFunction({4, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({4, 0, 1, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({5, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  SetSlots({{"Slot 7", 7, 0, 4, 0}, {"Slot 8", 8, 0, 4, 1}, {"Slot 2", 2, 0, 9, 0}});
  WriteDatabaseFor({{4, 0, 0, kLsi, 0x0016, kLsi, 0x9460}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  std::vector<UINT16> Slots;
  for (RAID_CONTROLLER *Controller : Controllers()) {
    Slots.push_back(Controller->SlotNumber);
  }
  EXPECT_EQ(Slots, (std::vector<UINT16>{7, 7, 0xFFFF}));
  Finalize();
}

TEST_F(DiscoveryTest, CorruptSmbiosAnchorGivesNoSlot) {
  AddFunction({4, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  emu::SmbiosDescription Description;
  Description.Slots = {{"Slot 7", 7, 0, 4, 0}};
  Description.CorruptAnchor = true;
  Smbios_ = std::make_unique<emu::SmbiosTable>(*Firmware_, Description);
  WriteDatabaseFor({{4, 0, 0, kLsi, 0x0016, kLsi, 0x9460}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(Controllers().size(), 1u);
  EXPECT_EQ(Controllers()[0]->SlotNumber, 0xFFFF);
  Finalize();
}

TEST_F(DiscoveryTest, SlotInventoryPutsAdaptersInItsOrder) {
  // Scan order: bus 1 (slot 12), bus 2 (slot 1), bus 3 (on-board RSTe).
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({2, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({3, 0, 0, kIntel, 0x2826, kIntel, 0x0001});
  SetSlots({{"", 12, 0, 1, 0}, {"", 1, 0, 2, 0}});
  WriteDatabaseFor({{1, 0, 0, kLsi, 0x0016, kLsi, 0x9460},
                    {3, 0, 0, kIntel, 0x2826, kIntel, 0x0001}});
  SetSlotInventory({{std::nullopt, u"Intel RSTe SATA"},
                    {u"PCIe Slot 12", u"MegaRAID"},
                    {u"PCIe Slot 1", u"MegaRAID"}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(BusesOfControllers(), (std::vector<UINT8>{3, 1, 2}));
  Finalize();
}

TEST_F(DiscoveryTest, SlotOneIsFoundInsideSlotTwelve) {
  // Scan order: bus 2 (slot 1), then bus 1 (slot 12). The only inventory
  // entry names slot 12, but "Slot 1" occurs inside "PCIe Slot 12", and the
  // search from the head of the scan list meets the slot-1 adapter first.
  AddFunction({2, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  SetSlots({{"", 12, 0, 1, 0}, {"", 1, 0, 2, 0}});
  WriteDatabaseFor({{1, 0, 0, kLsi, 0x0016, kLsi, 0x9460}});
  SetSlotInventory({{u"PCIe Slot 12", u"A"}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(BusesOfControllers(), (std::vector<UINT8>{2, 1}));
  Finalize();
}

// Scan order bus 2 (slot 3), bus 1 (slot 5); the inventory names slot 5.
std::vector<UINT8> OrderWithInventory(DiscoveryTest &World, bool Fail) {
  World.AddFunction({2, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  World.AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  World.SetSlots({{"", 5, 0, 1, 0}, {"", 3, 0, 2, 0}});
  World.WriteDatabaseFor({{1, 0, 0, kLsi, 0x0016, kLsi, 0x9460}});
  World.SetSlotInventory({{u"PCIe Slot 5", u"A"}});
  if (Fail) {
    World.Inventory_->SetFailure(EFI_DEVICE_ERROR);
  }
  UINT32 ErrorCode = 0;
  EXPECT_EQ(World.Initialize(&ErrorCode), EFI_SUCCESS);
  std::vector<UINT8> Buses = World.BusesOfControllers();
  World.Finalize();
  return Buses;
}

TEST_F(DiscoveryTest, InventoryMovesTheAdapterItNamesFirst) {
  EXPECT_EQ(OrderWithInventory(*this, false), (std::vector<UINT8>{1, 2}));
}

TEST_F(DiscoveryTest, FailedInventoryKeepsScanOrder) {
  EXPECT_EQ(OrderWithInventory(*this, true), (std::vector<UINT8>{2, 1}));
}

TEST_F(DiscoveryTest, StorageAttributesOutOfPlaceMatchNothing) {
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  WriteFile("pcidb.xml",
            PcidbXml({"  <storage vendorid=\"1000\" id=\"LSI\" deviceid=\"0016\" "
                      "subvendor=\"1000\" subdevice=\"9460\" devname=\"X\"/>\n"}));
  WriteFile("raid.xml", RaidXml({ControllerBlock("LSI", "storcli.efi")}));
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  EXPECT_TRUE(TraceHas("[InitializeRaid]Error: No supported card found."));
  EXPECT_TRUE(Controllers().empty());
  Finalize();
}

TEST_F(DiscoveryTest, MissingDatabaseLeavesEveryDeviceUnmatched) {
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  EXPECT_TRUE(TraceHas("[RaidLibParseXml]ERROR: Failed to open file pcidb.xml"));
  Finalize();
}

TEST_F(DiscoveryTest, NoStorageFunctionIsNoError) {
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460, 0x00, 0x00, 0x02});
  UINT32 ErrorCode = 0xFFFF;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_TRUE(TraceHas("[InitializeRaid]No raid card is found on system."));
  Finalize();
}

TEST_F(DiscoveryTest, NoPciHandlesAtAllIsNotFound) {
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  Finalize();
}

TEST_F(DiscoveryTest, MarvellAhciOfTheSystemMakerIsListedFirst) {
  AddFunction({1, 0, 0, kLsi, 0x0016, kLsi, 0x9460});
  AddFunction({2, 0, 0, kMarvell, 0x9230, 0x1028, 0x2113, 0x06, 0x01});
  AddFunction({3, 0, 0, kMarvell, 0x9230, 0xFFFE, 0x0001, 0x06, 0x01});
  WriteDatabaseFor({{1, 0, 0, kLsi, 0x0016, kLsi, 0x9460},
                    {2, 0, 0, kMarvell, 0x9230, 0x1028, 0x2113},
                    {3, 0, 0, kMarvell, 0x9230, 0xFFFE, 0x0001}});
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(BusesOfControllers(), (std::vector<UINT8>{3, 1, 2}));
  Finalize();
}

}  // namespace
}  // namespace core_test
