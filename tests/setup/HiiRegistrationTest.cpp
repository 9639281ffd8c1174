// The module's package list in the HII database: registered at start-up
// from the image's package list protocol, removed at unload, and the source
// of the error box's texts.
#include <strings/RaidcfgPackageList.h>

#include "ModuleWorld.h"
#include "emu/Hii.h"
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidWizard.h"

namespace setup_test {
namespace {

class HiiRegistrationTest : public ModuleWorld {
 public:
  HiiRegistrationTest() {
    Hii_ = std::make_unique<emu::HiiDatabase>(*Firmware_);
    Hii_->SetCurrentLanguage("en-US");
    emu::ConnectSetupStrings(*Setup_, *Hii_);
    EXPECT_EQ(emu::InstallImagePackageList(*Firmware_, Image_,
                                           raidcfg_strings::kPackageList),
              EFI_SUCCESS);
  }
  ~HiiRegistrationTest() override {
    if (Loaded_) {
      Unload();
    }
    Hii_.reset();
  }

  std::unique_ptr<emu::HiiDatabase> Hii_;
};

TEST_F(HiiRegistrationTest, PackageListLivesAsLongAsTheModule) {
  BuildUnsupportedServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  ASSERT_NE(gHiiHandle, nullptr);
  EXPECT_EQ(Hii_->Handles(), std::vector<EFI_HII_HANDLE>{gHiiHandle});
  ASSERT_EQ(Gui_->Initializations().size(), 1u);
  EXPECT_EQ(Gui_->Initializations()[0].HiiHandle, gHiiHandle);

  // The failed discovery's box, in English from the module's own strings.
  const emu::MessageBoxCall &Box = Setup_->MessageBoxes().back();
  ASSERT_TRUE(Box.Text.has_value());
  const std::string Text = Narrow(*Box.Text);
  EXPECT_EQ(Text.rfind("The operation failed!\r\nError code: 0x0020000E\r\n"
                       "Error message: ",
                       0),
            0u)
      << Text;

  ShowRaidErrorBox(0x00200021);
  EXPECT_EQ(Narrow(*Setup_->MessageBoxes().back().Text),
            "The operation failed!\r\nError code: 0x00200021\r\nError "
            "message: Error writing MFC data to SEEPROM");
  ShowRaidErrorBox(0x00200071);
  EXPECT_EQ(Narrow(*Setup_->MessageBoxes().back().Text),
            "The operation failed!\r\nError code: 0x00200071\r\nError "
            "message: Unknown Error");

  ASSERT_EQ(Unload(), EFI_SUCCESS);
  EXPECT_TRUE(Hii_->Handles().empty());
}

TEST_F(ModuleWorld, WithoutHiiTheModuleRunsWithAnEmptyHandle) {
  BuildSmallServer();
  ASSERT_EQ(Load(), EFI_SUCCESS);
  EXPECT_EQ(gHiiHandle, nullptr);
  EXPECT_EQ(Gui_->Initializations()[0].HiiHandle, nullptr);
  ASSERT_EQ(Unload(), EFI_SUCCESS);
}

}  // namespace
}  // namespace setup_test
