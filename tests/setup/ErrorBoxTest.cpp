// The error box: which message an error code shows and how the text is
// formatted.
#include "ModuleWorld.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

namespace setup_test {
namespace {

class ErrorBoxTest : public ModuleWorld {
 public:
  ErrorBoxTest() {
    SetErrorBoxStrings();
    EXPECT_EQ(GetTARNSetupProtocol(), EFI_SUCCESS);
    init_Raid_Err_Array();
    Setup_->ClearTrace();
  }
  ~ErrorBoxTest() override { RaidcfgSetupResetGlobals(); }
};

struct ErrorBoxCase {
  UINT32 ErrorCode;
  const char *Text;
};

TEST_F(ErrorBoxTest, MessageIsChosenByTheCodesLowTwelveBits) {
  const ErrorBoxCase Cases[] = {
      {0x00000001,
       "The operation failed!\r\nError code: 0x00000001\r\nError message: "
       "Invalid command"},
      {0x00000021,
       "The operation failed!\r\nError code: 0x00000021\r\nError message: "
       "Error writing MFC data to SEEPROM"},
      {0x00200021,
       "The operation failed!\r\nError code: 0x00200021\r\nError message: "
       "Error writing MFC data to SEEPROM"},
      {0x00200071,
       "The operation failed!\r\nError code: 0x00200071\r\nError message: "
       "Unknown Error"},
      {0x00200FFF,
       "The operation failed!\r\nError code: 0x00200FFF\r\nError message: "
       "Unknown Error"},
  };
  for (const ErrorBoxCase &Case : Cases) {
    SCOPED_TRACE(Case.ErrorCode);
    ShowRaidErrorBox(Case.ErrorCode);
    const emu::MessageBoxCall &Box = Setup_->MessageBoxes().back();
    EXPECT_EQ(Box.Style, 0);
    EXPECT_EQ(Box.TitleId, 818);
    ASSERT_TRUE(Box.Text.has_value());
    EXPECT_EQ(Narrow(*Box.Text), Case.Text);
  }
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
}

TEST_F(ErrorBoxTest, MissingTextsGiveAShortBoxWithoutOverrun) {
  // 1040 and 1014 have no text here; the code's message comes back NULL.
  ShowRaidErrorBox(0x0020001A);
  ShowRaidErrorBox(0x00200000);
  ASSERT_EQ(Setup_->MessageBoxes().size(), 2u);
  EXPECT_EQ(Narrow(*Setup_->MessageBoxes()[0].Text),
            "The operation failed!\r\nError code: 0x0020001A\r\nError "
            "message: ");
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
}

TEST_F(ErrorBoxTest, FormatWithoutTextShowsAnEmptyBox) {
  Setup_->SetString(817, u"");
  ShowRaidErrorBox(0x00200021);
  ASSERT_EQ(Setup_->MessageBoxes().size(), 1u);
  EXPECT_EQ(Narrow(*Setup_->MessageBoxes()[0].Text), "");
}

TEST_F(ErrorBoxTest, AllocationFailureShowsNothing) {
  Firmware_->Memory().FailNthAllocation(1);
  ShowRaidErrorBox(0x00200021);
  EXPECT_TRUE(Setup_->MessageBoxes().empty());
  Firmware_->Memory().ClearEvents();
}

TEST_F(NoSetupWorld, ErrorBoxWithoutSetupProtocolDoesNothing) {
  init_Raid_Err_Array();
  const UINT64 Requests = Firmware_->Memory().Counters().Requests;
  ShowRaidErrorBox(0x00200021);
  EXPECT_EQ(Firmware_->Memory().Counters().Requests, Requests);
}

}  // namespace
}  // namespace setup_test
