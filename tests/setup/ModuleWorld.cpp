#include "ModuleWorld.h"

#include <setup/ModuleEntry.h>

#include <fstream>

namespace setup_test {

namespace {

std::string WithoutLineEnd(std::string Text) {
  while (!Text.empty() && (Text.back() == '\n' || Text.back() == '\r')) {
    Text.pop_back();
  }
  return Text;
}

}  // namespace

std::string Narrow(const std::u16string &Text) {
  std::string Out;
  for (char16_t Char : Text) {
    Out += Char < 0x80 ? static_cast<char>(Char) : '?';
  }
  return Out;
}

ModuleWorld::ModuleWorld(HostOffer Offer)
    : Firmware_(std::make_unique<emu::Firmware>()) {
  char Template[] = "/tmp/raidcfg-setup-XXXXXX";
  Directory_ = mkdtemp(Template);
  // Test code allocates from the pool before the image entry runs.
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  gRT = gST->RuntimeServices;
  if (Offer.Setup) {
    Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  }
  if (Offer.Gui) {
    Gui_ = std::make_unique<emu::GuiDriver>(*Firmware_);
  }
  if (Offer.Qol) {
    Qol_ = std::make_unique<emu::QolCommands>(*Firmware_);
  }
  Xml_ = std::make_unique<emu::XmlParser>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  Volume_ = std::make_unique<emu::HostVolume>(*Firmware_, Directory_);
  Image_ = Firmware_->CreateImageHandle(Volume_->Handle());
}

ModuleWorld::~ModuleWorld() {
  if (Loaded_) {
    Unload();
  }
  Devices_.clear();
  Volume_.reset();
  Shell_.reset();
  Xml_.reset();
  Qol_.reset();
  Gui_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
  gRT = nullptr;
  gImageHandle = nullptr;
  std::filesystem::remove_all(Directory_);
}

VOID ModuleWorld::AddFunction(const PciFunction &Function) {
  emu::PciLocation Location;
  Location.Bus = Function.Bus;
  Location.Device = Function.Device;
  Location.Function = Function.Function;
  emu::PciIdentity Identity;
  Identity.VendorId = Function.VendorId;
  Identity.DeviceId = Function.DeviceId;
  Identity.SubVendorId = Function.SubVendorId;
  Identity.SubDeviceId = Function.SubDeviceId;
  Identity.BaseClass = Function.BaseClass;
  Identity.SubClass = Function.SubClass;
  Identity.ProgInterface = Function.ProgIf;
  Devices_.push_back(
      std::make_unique<emu::PciDevice>(*Firmware_, Location, Identity));
}

VOID ModuleWorld::WriteFile(const std::string &Name, const std::string &Text) {
  std::ofstream(Directory_ / Name, std::ios::binary) << Text;
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

std::vector<std::string> ModuleWorld::Trace() const {
  std::vector<std::string> Lines;
  if (Setup_ == nullptr) {
    return Lines;
  }
  for (const std::string &Text : Setup_->TraceTexts()) {
    Lines.push_back(WithoutLineEnd(Text));
  }
  return Lines;
}

bool ModuleWorld::TraceHas(const std::string &Line) const {
  for (const std::string &Text : Trace()) {
    if (Text == Line) {
      return true;
    }
  }
  return false;
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
