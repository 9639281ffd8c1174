// InitializeRaid as a whole: card numbering per family, profiles, failures,
// and what every allocation failure leaves behind.
#include "CoreWorld.h"

namespace core_test {
namespace {

constexpr UINT16 kIntel = 0x8086;
constexpr UINT16 kMarvell = 0x1B4B;
constexpr UINT16 kMicrochip = 0x9005;

class StartupTest : public CoreWorld {
 public:
  // Two Microchip, two Marvell M.2 and one Intel adapter, each family named
  // in both files.
  VOID BuildMixedServer(bool WithIntelProfile = true) {
    AddFunction({1, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x04});
    AddFunction({2, 0, 0, kMarvell, 0x9230, 0x1028, 0x2113, 0x06, 0x01});
    AddFunction({3, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x04});
    AddFunction({4, 0, 0, kMarvell, 0x9230, 0x1028, 0x2113, 0x06, 0x01});
    AddFunction({5, 0, 0, kIntel, 0x2826, kIntel, 0x0001});
    WriteFile("pcidb.xml",
              PcidbXml({StorageElement("MCHP", kMicrochip, 0x028F, kMicrochip,
                                       0x0800, "SmartRAID 3154-8i"),
                        StorageElement("M.2", kMarvell, 0x9230, 0x1028, 0x2113,
                                       "M.2 Boot Adapter"),
                        StorageElement("RSTe", kIntel, 0x2826, kIntel, 0x0001,
                                       "Intel RSTe SATA")}));
    std::vector<std::string> Blocks = {
        ControllerBlock("MCHP", "arcconf.efi"),
        ControllerBlock("M.2", "mvsetup.efi")};
    if (WithIntelProfile) {
      Blocks.push_back(ControllerBlock("RSTe", "RCfgSata.efi"));
    }
    WriteFile("raid.xml", RaidXml(Blocks));
  }
};

TEST_F(StartupTest, CardsAreNumberedPerFamilyInTheirToolsNumbering) {
  BuildMixedServer();
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  struct Expected {
    UINT32 CardId;
    UINT32 ToolType;
    const char *Signature;
  };
  const Expected Table[] = {{1, 3, "$arc"}, {0, 1, "$m.2"}, {2, 3, "$arc"},
                            {1, 1, "$m.2"}, {0, 2, "rste"}};
  std::vector<RAID_CONTROLLER *> List = Controllers();
  ASSERT_EQ(List.size(), 5u);
  for (size_t Index = 0; Index < List.size(); Index++) {
    SCOPED_TRACE(Index);
    EXPECT_EQ(List[Index]->Private->CardId, Table[Index].CardId);
    EXPECT_EQ(List[Index]->ToolType, Table[Index].ToolType);
    EXPECT_STREQ(List[Index]->Private->Operations.Signature,
                 Table[Index].Signature);
    ASSERT_NE(List[Index]->Capability, nullptr);
  }
  // Equal profiles, but each controller owns its own copy.
  EXPECT_NE(List[0]->Capability, List[2]->Capability);
  Finalize();
}

TEST_F(StartupTest, FamilyWithoutProfileKeepsNoCapabilityAndIsRefused) {
  BuildMixedServer(/*WithIntelProfile=*/false);
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  RAID_CONTROLLER *Intel = Controllers().back();
  EXPECT_EQ(Intel->Capability, nullptr);
  EXPECT_EQ(Intel->Private->CardId, 0xFFFFFFFFu);
  EXPECT_EQ(Intel->ToolType, 1u);  // matched, never bound

  RAID_CONTROLLER *Out = Intel;
  ErrorCode = 0;
  EXPECT_EQ(GetControllerInfo(Intel, &Out, &ErrorCode), EFI_ABORTED);
  EXPECT_EQ(ErrorCode, 0x00200021u);
  EXPECT_TRUE(TraceHas(
      "[GetControllerInfo]Controller/Controller->Private/Controller->Capability "
      "is NULL."));
  Finalize();
}

TEST_F(StartupTest, MissingProfileFileIsNoError) {
  BuildMixedServer();
  std::filesystem::remove(Directory_ / "raid.xml");
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  for (RAID_CONTROLLER *Controller : Controllers()) {
    EXPECT_EQ(Controller->Capability, nullptr);
  }
  EXPECT_TRUE(TraceHas("[RaidLibParseXml]ERROR: Failed to open file raid.xml"));
  Finalize();
}

TEST_F(StartupTest, MissingXmlParserIsNotFound) {
  BuildMixedServer();
  Xml_.reset();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  EXPECT_TRUE(TraceHas(
      "[RaidLibParseXml]LocateProtocol(EFI_TARNXML_PROTOCOL): Not Found."));
  // An unread database matches no device.
  EXPECT_TRUE(TraceHas("[InitializeRaid]Error: No supported card found."));
  Finalize();
}

TEST_F(StartupTest, ParserThatCannotBeCreatedIsNotFound) {
  BuildMixedServer();
  Xml_->SetFailParserCreate(true);
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_NOT_FOUND);
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  EXPECT_TRUE(
      TraceHas("[RaidLibParseXml]Create Xml Parser Error: TarnParse == NULL"));
  EXPECT_TRUE(TraceHas("[InitializeRaid]Error: No supported card found."));
  Finalize();
}

// A file the parser could not be given whole, at whichever chunk of
// whichever file its buffer failed, fails the start-up for memory: a
// profile read short would offer other levels and policies than the
// file's, a database read short would miss adapters.
TEST_F(StartupTest, FileReadShortForMemoryFailsTheStartUp) {
  BuildMixedServer();
  // A profile of two chunks: the Microchip block in the first, the rest in
  // the second.
  WriteFile("raid.xml",
            RaidXml({ControllerBlock("MCHP", "arcconf.efi"),
                     "<!--" + std::string(9000, '-') + "-->\n",
                     ControllerBlock("M.2", "mvsetup.efi"),
                     ControllerBlock("RSTe", "RCfgSata.efi")}));
  UINT32 ErrorCode = 0;
  const UINTN Before = Xml_->BufferCalls();
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  const UINTN Calls = Xml_->BufferCalls() - Before;
  FinalizeRaid(&ErrorCode);
  ASSERT_EQ(Calls, 5u);  // pcidb.xml: data, end; raid.xml: two chunks, end

  for (UINTN Nth = 1; Nth <= Calls; Nth++) {
    SCOPED_TRACE("buffer " + std::to_string(Nth));
    Xml_->FailNthGetBuffer(Nth);
    ErrorCode = 0;
    EXPECT_EQ(Initialize(&ErrorCode), EFI_OUT_OF_RESOURCES);
    EXPECT_EQ(ErrorCode, 0x00200009u);
    Xml_->FailNthGetBuffer(0);
    FinalizeRaid(&ErrorCode);
    EXPECT_EQ(Xml_->LiveParsers(), 0u);
    EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  }
  Finalized_ = true;
}

TEST_F(StartupTest, WithoutSetupProtocolNothingIsTracedAndStartupWorks) {
  BuildMixedServer();
  Setup_.reset();
  UINT32 ErrorCode = 0;
  EXPECT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  // The failed lookup of the setup protocol is reported in the error code.
  EXPECT_EQ(ErrorCode, 0x0020000Eu);
  EXPECT_EQ(Controllers().size(), 5u);
  Finalize();
}

TEST_F(StartupTest, TraceOfAStartUpNamesEveryStepInOrder) {
  BuildMixedServer();
  UINT32 ErrorCode = 0;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  const std::vector<std::string> Expected = {
      "RAID library version: 0.34.0",
      "[RaidLibScanPciBus]Start to scan pci bus:",
      "[RaidLibScanPciBus]Pci bus(RAID): 0x1, Dev: 0x0, Func: 0x0",
      "[RaidLibScanPciBus]Pci bus(SATA): 0x2, Dev: 0x0, Func: 0x0",
      "[RaidLibScanPciBus]Pci bus(RAID): 0x3, Dev: 0x0, Func: 0x0",
      "[RaidLibScanPciBus]Pci bus(SATA): 0x4, Dev: 0x0, Func: 0x0",
      "[RaidLibScanPciBus]Pci bus(RAID): 0x5, Dev: 0x0, Func: 0x0",
      "[ReleasePciBusDeviceList] start",
      "[ReleasePciBusDeviceList] end",
      "[ReleasePciBusDeviceList] start",
      "[ReleasePciBusDeviceList] end",
      "[ReleasePcidbList] start",
      "[ReleasePcidbList] Done",
      "[InitializeRaid]INFO: all found controllers:",
      "[InitializeRaid]INFO: Controller id: 0 name: SmartRAID 3154-8i",
      "[InitializeRaid]INFO: Controller id: 1 name: M.2 Boot Adapter",
      "[InitializeRaid]INFO: Controller id: 2 name: SmartRAID 3154-8i",
      "[InitializeRaid]INFO: Controller id: 3 name: M.2 Boot Adapter",
      "[InitializeRaid]INFO: Controller id: 4 name: Intel RSTe SATA",
      "[InitializeRaid]Controller Id: 0, Bus: 0x1, Dev: 0x0, Func: 0x0",
      // No arcconf answers on this server: the card search finds no adapter
      // and the counted card number stays.
      "[MchpGetCardId]Command: arcconf.efi list",
      "[ParseControllerShowCtrlCount]Controller Count: 0",
      "[MchpGetCardId]Error: Card Count 0",
      "[InitializeRaid]Controller Id: 1, Bus: 0x2, Dev: 0x0, Func: 0x0",
      "[InitializeRaid]Controller Id: 2, Bus: 0x3, Dev: 0x0, Func: 0x0",
      // No arcconf answers on this server: the card search finds no adapter
      // and the counted card number stays.
      "[MchpGetCardId]Command: arcconf.efi list",
      "[ParseControllerShowCtrlCount]Controller Count: 0",
      "[MchpGetCardId]Error: Card Count 0",
      "[InitializeRaid]Controller Id: 3, Bus: 0x4, Dev: 0x0, Func: 0x0",
      "[InitializeRaid]Controller Id: 4, Bus: 0x5, Dev: 0x0, Func: 0x0",
  };
  EXPECT_EQ(Trace(), Expected);
  Finalize();
}

// Every allocation InitializeRaid makes fails once, in turn. Each run ends
// with the status and error code of the step that could not allocate (a
// profile entry or copy too: a profile missing one never reaches the
// wizard), and FinalizeRaid leaves nothing behind.
TEST_F(StartupTest, EveryAllocationFailureEndsCleanly) {
  BuildMixedServer();
  UINT32 ErrorCode = 0;
  const UINT64 Before = Firmware_->Memory().Counters().Requests;
  ASSERT_EQ(Initialize(&ErrorCode), EFI_SUCCESS);
  const UINT64 Allocations = Firmware_->Memory().Counters().Requests - Before;
  FinalizeRaid(&ErrorCode);
  ASSERT_EQ(Firmware_->Memory().LeakReport(), "");
  ASSERT_GT(Allocations, 20u);

  for (UINT64 Nth = 1; Nth <= Allocations; Nth++) {
    SCOPED_TRACE("allocation " + std::to_string(Nth));
    Firmware_->Memory().FailNthAllocation(Nth);
    ErrorCode = 0;
    EFI_STATUS Status = Initialize(&ErrorCode);
    const bool OutOfResources =
        Status == EFI_OUT_OF_RESOURCES && ErrorCode == 0x00200009u;
    const bool ScanFailed = Status == EFI_NOT_FOUND && ErrorCode == 0x0020000Eu;
    EXPECT_TRUE(OutOfResources || ScanFailed)
        << "status " << Status << " error code " << ErrorCode;
    EXPECT_EQ(Firmware_->Memory().EventsOf(emu::PoolEventKind::kInjectedFailure)
                  .size(),
              1u);
    Firmware_->Memory().ClearEvents();
    Firmware_->Memory().ClearFaults();
    FinalizeRaid(&ErrorCode);
    EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
    EXPECT_EQ(Firmware_->Memory().EventReport(), "");
  }
  Finalized_ = true;
}

}  // namespace
}  // namespace core_test
