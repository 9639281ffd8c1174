#include "ModuleWorld.h"

#include <setup/ModuleEntry.h>

#include <filesystem>

namespace setup_test {

std::string Narrow(const std::u16string &Text) {
  std::string Out;
  for (char16_t Char : Text) {
    Out += Char < 0x80 ? static_cast<char>(Char) : '?';
  }
  return Out;
}

ModuleWorld::ModuleWorld(HostOffer Offer)
    : EmulatedServer("raidcfg-setup", Offer.Setup) {
  if (Offer.Gui) {
    Gui_ = std::make_unique<emu::GuiDriver>(*Firmware_);
  }
  if (Offer.Qol) {
    Qol_ = std::make_unique<emu::QolCommands>(*Firmware_);
  }
  Image_ = Firmware_->CreateImageHandle(Volume_->Handle());
}

// The module goes first; the server's parts follow in reverse.
ModuleWorld::~ModuleWorld() {
  if (Loaded_) {
    Unload();
  }
  Qol_.reset();
  Gui_.reset();
}

VOID ModuleWorld::RemoveFile(const std::string &Name) {
  std::filesystem::remove(Directory_ / Name);
}

VOID ModuleWorld::BuildSmallServer() {
  AddFunction({1, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x04});
  AddFunction({3, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x04});
  WriteFile("pcidb.xml", PcidbXml({StorageElement("MCHP", kMicrochip, 0x028F,
                                                  kMicrochip, 0x0800,
                                                  "SmartRAID 3154-8i")}));
  WriteFile("raid.xml", RaidXml({ControllerBlock("MCHP", "arcconf.efi")}));
}

VOID ModuleWorld::BuildUnsupportedServer() {
  AddFunction({1, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x04});
  WriteFile("pcidb.xml", PcidbXml({StorageElement("OTHER", 0x1234, 0x5678,
                                                  0x1234, 0x0001, "Other")}));
  WriteFile("raid.xml", RaidXml({ControllerBlock("MCHP", "arcconf.efi")}));
}

VOID ModuleWorld::SetErrorBoxStrings() {
  Setup_->SetString(817,
                    u"The operation failed!\r\nError code: 0x%08x\r\nError "
                    u"message: %s");
  Setup_->SetString(818, u"Error");
  Setup_->SetString(1015, u"Invalid command");
  Setup_->SetString(1028, u"Failed to read the adapter's data");
  Setup_->SetString(1047, u"Error writing MFC data to SEEPROM");
  Setup_->SetString(1055, u"Unknown Error");
}

EFI_STATUS ModuleWorld::Load() {
  // UnloadImage retired the last image; a load brings a fresh one.
  if (Firmware_->LoadedImage(Image_) == nullptr) {
    Image_ = Firmware_->CreateImageHandle(Volume_->Handle());
  }
  EFI_STATUS Status = _ModuleEntryPoint(Image_, Firmware_->SystemTable());
  Loaded_ = !EFI_ERROR(Status);
  return Status;
}

EFI_STATUS ModuleWorld::Unload() {
  EFI_STATUS Status = Firmware_->UnloadImage(Image_);
  Loaded_ = false;
  // The image entry's constructors replaced these; tests go on using them.
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  gRT = gST->RuntimeServices;
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  EXPECT_EQ(Firmware_->Memory().EventReport(), "");
  return Status;
}

std::vector<std::string> ModuleWorld::ModuleTrace() const {
  std::vector<std::string> Lines;
  for (const std::string &Text : Trace()) {
    if (Text.rfind("RAID: [", 0) == 0 || Text.find("]<err>") != std::string::npos) {
      Lines.push_back(emu::MaskTimeStamps(Text));
    }
  }
  return Lines;
}

}  // namespace setup_test
