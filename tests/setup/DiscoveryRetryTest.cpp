// A discovery that fails at start-up: the error box, page 0 armed with the
// retry, the retry itself, and unloading afterwards.
#include "ModuleWorld.h"
#include "setup/RaidServiceLayer.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

namespace setup_test {
namespace {

class DiscoveryRetryTest : public ModuleWorld {
 public:
  DiscoveryRetryTest() { SetErrorBoxStrings(); }

  // Makes the unsupported server's adapter known to pcidb.xml.
  VOID SupportTheAdapter() {
    WriteFile("pcidb.xml", PcidbXml({StorageElement("MCHP", kMicrochip, 0x028F,
                                                    kMicrochip, 0x0800,
                                                    "SmartRAID 3154-8i")}));
  }
};

TEST_F(DiscoveryRetryTest, FailureShowsErrorBoxAndArmsRetryOnPageZero) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);

  EXPECT_TRUE(TraceHas("[InitRaidControllerSelectionPage]<err> Failed to "
                       "initialize RAID info, Status Not Found, Errorcode "
                       "20000E"));
  EXPECT_EQ(Setup_->Progress(), (std::vector<UINT8>{10, 100}));
  ASSERT_EQ(Setup_->MessageBoxes().size(), 2u);
  const emu::MessageBoxCall &Box = Setup_->MessageBoxes()[1];
  EXPECT_EQ(Box.Style, 0);
  EXPECT_EQ(Box.TitleId, 818);
  ASSERT_TRUE(Box.Text.has_value());
  EXPECT_EQ(Narrow(*Box.Text),
            "The operation failed!\r\nError code: 0x0020000E\r\nError "
            "message: Failed to read the adapter's data");

  std::vector<emu::FrameworkCall> Registrations;
  for (const emu::FrameworkCall &Call : Setup_->FrameworkCalls()) {
    if (Call.Name == "RegisterPage") {
      Registrations.push_back(Call);
    }
  }
  // Page 1 when it was built, then page 0 for the retry.
  ASSERT_EQ(Registrations.size(), 2u);
  EXPECT_EQ(Registrations[0].Arguments[2], 1u);
  const std::vector<UINT64> &Arguments = Registrations[1].Arguments;
  EXPECT_EQ(Arguments[0], reinterpret_cast<UINTN>(Image_));
  EXPECT_EQ(Arguments[1], reinterpret_cast<UINTN>(gHiiHandle));
  EXPECT_EQ(Arguments[2], 0u);
  EXPECT_EQ(Arguments[3], reinterpret_cast<UINTN>(&Init_Raid));
  EXPECT_EQ(Arguments[4], 0u);
  EXPECT_EQ(Arguments[5], reinterpret_cast<UINTN>(&RaidSetupLangCallBack));
  EXPECT_EQ(gRaidControllerCount, 0u);
  EXPECT_FALSE(TraceHas("RAID: [InitRaidControllerSelectionPage] Controller "
                        "Count = 0"));
}

TEST_F(DiscoveryRetryTest, UnloadAfterFailedDiscoveryFreesNothingTwice) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_TRUE(TraceHas("[FinalizeRaid] start"));
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] Release RAID lib memory "
                       "done 00000000"));
  EXPECT_TRUE(TraceHas("RAID: [RaidcfgSetupExitPoint] end"));
}

TEST_F(DiscoveryRetryTest, RetryThatFailsAgainShowsTheBoxAgain) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  Setup_->ClearTrace();
  EXPECT_EQ(Init_Raid(), 0u);
  std::vector<std::string> Lines = ModuleTrace();
  ASSERT_EQ(Lines.size(), 2u);
  EXPECT_EQ(Lines[0], "RAID: [Init_Raid] B TimeStamp: <tsc>");
  EXPECT_EQ(Lines[1], "RAID: [Init_Raid] A TimeStamp: <tsc>");
  EXPECT_EQ(Setup_->MessageBoxes().size(), 3u);
  EXPECT_EQ(Setup_->MessageBoxes().back().Style, 0);
  EXPECT_EQ(gRaidControllerCount, 0u);
}

TEST_F(DiscoveryRetryTest, RetryAfterTheFaultIsFixedLoadsTheAdapters) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  SupportTheAdapter();
  Setup_->ClearTrace();
  EXPECT_EQ(Init_Raid(), 0u);
  EXPECT_EQ(gRaidInitializeStatus, EFI_SUCCESS);
  EXPECT_EQ(gRaidControllerCount, 1u);
  EXPECT_EQ(Setup_->MessageBoxes().size(), 3u);  // loading, no error box
  EXPECT_EQ(Setup_->MessageBoxes().back().Style, HOST_MSGBOX_PROGRESS);
  // Page 1 is built again and lists the adapter found, selected.
  EXPECT_TRUE(TraceHas("RAID: [InitializeRaidSetupWizards] Start "));
  EXPECT_TRUE(TraceHas("RAID: [InitRaidControllerSelectionPage] Construct the "
                       "RAID controller select page"));
  EXPECT_TRUE(TraceHas("RAID: [InitRaidControllerSelectionPage] Controller "
                       "Count = 1"));
  EXPECT_NE(gCurrentRaidController, nullptr);
  EXPECT_EQ(gRaidCurrentPage,
            static_cast<UINT32>(RAID_PAGE_CONTROLLER_SELECTION));
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

// A MegaRAID adapter whose tool cannot run: InitializeRaid fails in the
// card numbering, after it built the controllers. A retry must release them
// before discovering again.
TEST_F(DiscoveryRetryTest, RetryAfterFailureThatLeftControllersDoesNotLeak) {
  AddFunction({2, 0, 0, 0x1000, 0x0079, 0x1000, 0x9261, 0x04});
  WriteFile("pcidb.xml", PcidbXml({StorageElement("LSI", 0x1000, 0x0079,
                                                  0x1000, 0x9261,
                                                  "MegaRAID 9261")}));
  WriteFile("raid.xml", RaidXml({ControllerBlock("LSI", "storcli.efi")}));
  ASSERT_EQ(Load(), EFI_SUCCESS);
  ASSERT_TRUE(EFI_ERROR(gRaidInitializeStatus));
  ASSERT_FALSE(IsListEmpty(&gControllerList));
  // The tool's failure carries error code 0: not a failure to the page.
  EXPECT_EQ(gRaidInitializeErrorCode, 0u);
  EXPECT_TRUE(TraceHas("RAID: [InitRaidControllerSelectionPage] Controller "
                       "Count = 1"));
  EXPECT_EQ(Init_Raid(), 0u);
  EXPECT_EQ(Init_Raid(), 0u);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

}  // namespace
}  // namespace setup_test
