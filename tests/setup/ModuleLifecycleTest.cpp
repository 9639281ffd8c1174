// The module's life in its host: what start-up registers with each host
// protocol present or missing, what unload takes back, and that loading and
// unloading leave nothing behind.
#include <Protocol/Host/RaidSetupDataSource.h>

#include <algorithm>
#include <cstring>

#include "ModuleWorld.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

namespace setup_test {
namespace {

RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSourceOn(EFI_HANDLE Image) {
  VOID *Interface = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(Image, &gRaidSetupDataSourceProtocolGuid,
                                    &Interface))) {
    return nullptr;
  }
  return static_cast<RAID_SETUP_DATA_SOURCE_PROTOCOL *>(Interface);
}

TEST_F(ModuleWorld, StartUpConnectsToEveryHostProtocolAndRunsDiscovery) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);

  ASSERT_EQ(Gui_->Initializations().size(), 1u);
  const ESA_GUI_CONTEXT &Context = Gui_->Initializations()[0];
  EXPECT_EQ(Context.ImageHandle, Image_);
  EXPECT_EQ(Context.SystemTable, Firmware_->SystemTable());
  EXPECT_EQ(Context.Reserved0, 0u);
  EXPECT_EQ(Context.Reserved1, 0u);

  RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource = DataSourceOn(Image_);
  ASSERT_NE(DataSource, nullptr);
  const EFI_GUID Identity = RAID_SETUP_DATA_SOURCE_GUID;
  EXPECT_EQ(std::memcmp(&DataSource->DataSourceId, &Identity, sizeof(Identity)),
            0);
  EXPECT_EQ(DataSource->Reserved, 0u);
  EXPECT_EQ(DataSource->GetValue(nullptr, nullptr), EFI_INVALID_PARAMETER);
  EXPECT_EQ(DataSource->SetTableCell(nullptr, nullptr), EFI_INVALID_PARAMETER);

  // The loading box, then progress 10 and 30 around InitializeRaid, and on
  // after each adapter's information was read (30 + 70 / 2, then 100).
  ASSERT_EQ(Setup_->MessageBoxes().size(), 1u);
  EXPECT_EQ(Setup_->MessageBoxes()[0].Style, 9);
  EXPECT_EQ(Setup_->MessageBoxes()[0].TitleId, 865);
  EXPECT_EQ(Setup_->MessageBoxes()[0].TextId, 707);
  EXPECT_EQ(Setup_->Progress(), (std::vector<UINT8>{10, 30, 65, 100}));
  EXPECT_EQ(gRaidControllerCount, 2u);
  EXPECT_EQ(gRaidCurrentPage, 1u);
  for (UINT8 Flag : gRaidReInitFlags) {
    EXPECT_EQ(Flag, 1);
  }
  EXPECT_EQ(gRaidErrMsgArray[0], 1015);
  EXPECT_EQ(gRaidErrMsgArray[112], 1127);
  EXPECT_TRUE(TraceHas("RAID: [InitRaidControllerSelectionPage] Controller "
                       "Count = 2"));

  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_EQ(DataSourceOn(Image_), nullptr);
  EXPECT_EQ(Gui_->UnInitializations(), std::vector<EFI_HANDLE>{Image_});
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] UnInit Esa GUI Driver: "
                       "Success"));
}

TEST_F(NoSetupWorld, StartUpWithoutSetupProtocolIsSilentAndSucceeds) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  EXPECT_EQ(TarnSetupProtocol, nullptr);
  // Discovery ran all the same, and the host connections were made.
  EXPECT_EQ(gRaidControllerCount, 2u);
  EXPECT_EQ(Gui_->Initializations().size(), 1u);
  EXPECT_NE(DataSourceOn(Image_), nullptr);
  EXPECT_EQ(Firmware_->ConsoleOut().Text(), "");
  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_EQ(DataSourceOn(Image_), nullptr);
}

TEST_F(NoSetupWorld, FailedDiscoveryWithoutSetupProtocolShowsNothing) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  EXPECT_EQ(gRaidControllerCount, 0u);
  EXPECT_EQ(gRaidInitializeErrorCode, 0x0020000Eu);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

TEST_F(NoGuiWorld, StartUpWithoutGuiDriverStillSucceeds) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  EXPECT_NE(DataSourceOn(Image_), nullptr);
  EXPECT_EQ(gRaidControllerCount, 2u);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] UnInit Esa GUI Driver: "
                       "Not started"));
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] end"));
}

TEST_F(ModuleWorld, GuiDriverRefusalDoesNotStopStartUp) {
  BuildSmallServer();
  Gui_->SetInitializeResult(EFI_DEVICE_ERROR);
  ASSERT_EQ(Load(), EFI_SUCCESS);
  EXPECT_EQ(gRaidControllerCount, 2u);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

TEST_F(ModuleWorld, UnloadWithoutDataSourceReportsItAndGoesOn) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource = DataSourceOn(Image_);
  ASSERT_EQ(gBS->UninstallMultipleProtocolInterfaces(
                Image_, &gRaidSetupDataSourceProtocolGuid, DataSource, nullptr),
            EFI_SUCCESS);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] Uninstall RAID Setup "
                       "data source protocol: Unsupported"));
  EXPECT_EQ(Gui_->UnInitializations().size(), 1u);
}

TEST_F(ModuleWorld, HundredLoadUnloadCyclesLeaveNothingBehind) {
  BuildSmallServer();
  for (int Cycle = 0; Cycle < 100; Cycle++) {
    SCOPED_TRACE(Cycle);
    ASSERT_EQ(Load(), EFI_SUCCESS);
    ASSERT_EQ(gRaidControllerCount, 2u);
    ASSERT_EQ(Unload(), EFI_SUCCESS);
    ASSERT_TRUE(Firmware_->Memory().Outstanding().empty());
    ASSERT_EQ(DataSourceOn(Image_), nullptr);
    // A fresh image starts from zeroed globals, as firmware would load it.
    ASSERT_EQ(TarnSetupProtocol, nullptr);
    ASSERT_EQ(gRaidPageRoots[RAID_PAGE_CONTROLLER_SELECTION], nullptr);
  }
  EXPECT_EQ(Gui_->Initializations().size(), 100u);
  EXPECT_EQ(Gui_->UnInitializations().size(), 100u);
  EXPECT_EQ(Setup_->MessageBoxes().size(), 100u);
}

TEST_F(ModuleWorld, FirstPageIsBuiltOncePerModuleLife) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  const size_t Boxes = Setup_->MessageBoxes().size();
  Setup_->ClearTrace();
  InitRaidControllerSelectionPage();
  EXPECT_EQ(Setup_->MessageBoxes().size(), Boxes);
  EXPECT_TRUE(Trace().empty());
  EXPECT_EQ(gRaidCurrentPage, 1u);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

// Start-up and shutdown on a two-adapter server, as the module traces them.
TEST_F(ModuleWorld, GoldenTraceOfStartUpAndShutdown) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
  std::vector<std::string> Lines = ModuleTrace();
  ASSERT_FALSE(Lines.empty());
  // The setup protocol's address varies from run to run.
  const std::string Prefix = "RAID: [GetTARNSetupProtocol] TarnSetupProtocol = ";
  ASSERT_EQ(Lines[0].rfind(Prefix, 0), 0u);
  Lines[0] = Prefix + "<address>";
  // The adapter page's own lines (labels, configuration) are the wizard
  // tests'; here only the start-up and shutdown around them.
  auto Count = std::find(Lines.begin(), Lines.end(),
                         "RAID: [InitRaidControllerSelectionPage] Controller "
                         "Count = 2");
  auto Return = std::find_if(Lines.begin(), Lines.end(), [](const auto &Line) {
    return Line.find("A InitializeRaidSetupWizards B return") !=
           std::string::npos;
  });
  ASSERT_TRUE(Count != Lines.end() && Return != Lines.end() && Count < Return);
  Lines.erase(Count + 1, Return);
  const std::vector<std::string> Expected = {
      "RAID: [GetTARNSetupProtocol] TarnSetupProtocol = <address>",
      "RAID: [RaidcfgSetupEntryPoint] A GetTARNSetupProtocol B prepare: "
      "TimeStamp: <tsc>",
      "RAID: [RaidcfgSetupEntryPoint] A prepare B RaidcfgApplicationInit: "
      "TimeStamp: <tsc>",
      "RAID: [RaidcfgApplicationInit] start",
      "RAID: [RaidcfgSetupEntryPoint] A RaidcfgApplicationInit B "
      "InitRaidSetupDSProtocol: TimeStamp: <tsc>",
      "RAID: [RaidcfgSetupEntryPoint] Initialize data source protocol",
      "RAID: [InitRaidSetupDSProtocol] Return status of install data source "
      "protocol: Success",
      "RAID: [RaidcfgSetupEntryPoint] A InitRaidSetupDSProtocol B "
      "init_Raid_Err_Array: TimeStamp: <tsc>",
      "RAID: [RaidcfgSetupEntryPoint] A init_Raid_Err_Array B "
      "InitializeRaidSetupWizards: TimeStamp: <tsc>",
      "RAID: [RaidcfgSetupEntryPoint] Initialie RAID Setup wizard",
      "RAID: [InitializeRaidSetupWizards] Start ",
      "RAID: [InitRaidControllerSelectionPage] Construct the RAID controller "
      "select page",
      "RAID: [InitRaidControllerSelectionPage] Return status of Initialize "
      "Raid = Success",
      "RAID: [InitRaidControllerSelectionPage] Controller Count = 2",
      "RAID: [RaidcfgSetupEntryPoint] A InitializeRaidSetupWizards B return: "
      "TimeStamp: <tsc>",
      "RAID: [RaidcfgSetupExitPoint] start",
      "RAID: [RaidcfgSetupExitPoint] Release RAID lib memory done 00000000",
      "RAID: [RaidcfgSetupExitPoint] Clean RAID volumes and tables done",
      "RAID: [RaidcfgSetupExitPoint] Free dynamic node memory done",
      "RAID: [RaidcfgSetupExitPoint] Free pages' node done",
      "RAID: [UnInitRaidSetupDSProtocol] Return status of uninstall data "
      "source protocol: Success",
      "RAID: [RaidcfgSetupExitPoint] Uninstall RAID Setup data source "
      "protocol: Success",
      "RAID: [RaidcfgSetupExitPoint] UnInit Esa GUI Driver: Success",
      "RAID: [RaidcfgSetupExitPoint] end",
  };
  EXPECT_EQ(Lines, Expected);
}

}  // namespace
}  // namespace setup_test
