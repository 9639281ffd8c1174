#include "CoreWorld.h"

#include <Protocol/Smbios.h>

#include "sim/megaraid/MegaRaidJson.h"

#include <cstdio>
#include <fstream>

namespace core_test {

namespace {

std::string Hex4(UINT16 Value) {
  char Text[8];
  std::snprintf(Text, sizeof(Text), "%04X", Value);
  return Text;
}

// The firmware's line end is CR LF; the tests compare lines without it.
std::string WithoutLineEnd(std::string Text) {
  while (!Text.empty() && (Text.back() == '\n' || Text.back() == '\r')) {
    Text.pop_back();
  }
  return Text;
}

}  // namespace

std::string StorageElement(const std::string &Id, UINT16 Vendor,
                           UINT16 Device, UINT16 SubVendor, UINT16 SubDevice,
                           const std::string &Name) {
  return "  <storage id=\"" + Id + "\" vendorid=\"" + Hex4(Vendor) +
         "\" deviceid=\"" + Hex4(Device) + "\" subvendor=\"" +
         Hex4(SubVendor) + "\" subdevice=\"" + Hex4(SubDevice) +
         "\" devname=\"" + Name + "\"/>\n";
}

std::string PcidbXml(const std::vector<std::string> &Elements) {
  std::string Text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<pcidb>\n";
  for (const std::string &Element : Elements) {
    Text += Element;
  }
  return Text + "</pcidb>\n";
}

std::string ControllerBlock(const std::string &Id, const std::string &Tool) {
  return "  <CONTROLLER ID=\"" + Id + "\">\n    <TOOL ID=\"" + Tool +
         "\"/>\n    <LEVEL ID=\"1\" DEFAULT=\"1\"/>\n  </CONTROLLER>\n";
}

std::string RaidXml(const std::vector<std::string> &Blocks) {
  std::string Text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RAID>\n";
  for (const std::string &Block : Blocks) {
    Text += Block;
  }
  return Text + "</RAID>\n";
}

CoreWorld::CoreWorld() : Firmware_(std::make_unique<emu::Firmware>()) {
  char Template[] = "/tmp/raidcfg-core-XXXXXX";
  Directory_ = mkdtemp(Template);
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  gRT = gST->RuntimeServices;
  Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  Xml_ = std::make_unique<emu::XmlParser>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  Volume_ = std::make_unique<emu::HostVolume>(*Firmware_, Directory_);
  gImageHandle = Firmware_->CreateImageHandle(Volume_->Handle());
}

CoreWorld::~CoreWorld() {
  if (!Finalized_) {
    UINT32 ErrorCode = 0;
    FinalizeRaid(&ErrorCode);
  }
  Devices_.clear();
  Smbios_.reset();
  Inventory_.reset();
  Volume_.reset();
  Shell_.reset();
  Xml_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
  gRT = nullptr;
  gImageHandle = nullptr;
  std::filesystem::remove_all(Directory_);
}

VOID CoreWorld::AddFunction(const PciFunction &Function) {
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
  if (Function.VendorId == 0x1000) {
    MegaRaidAdapters_.push_back(
        {{"pci",
          {{"bus", Function.Bus},
           {"device", Function.Device},
           {"function", Function.Function},
           {"vendorId", Function.VendorId},
           {"deviceId", Function.DeviceId},
           {"subVendorId", Function.SubVendorId},
           {"subDeviceId", Function.SubDeviceId}}}});
  }
}

VOID CoreWorld::BindStorcli() {
  Storcli_ = std::make_unique<sim::megaraid::Storcli>(
      sim::megaraid::AdaptersFromJson(nlohmann::json(MegaRaidAdapters_)));
  Shell_->SetHandler([this](const std::string &CommandLine) {
    return Storcli_->Run(CommandLine);
  });
}

VOID CoreWorld::SetSlots(const std::vector<emu::SmbiosSlot> &Slots) {
  emu::SmbiosDescription Description;
  Description.Slots = Slots;
  Smbios_.reset();
  Smbios_ = std::make_unique<emu::SmbiosTable>(*Firmware_, Description);
}

VOID CoreWorld::SetSlotInventory(std::vector<emu::SlotInventoryEntry> Entries) {
  Inventory_ =
      std::make_unique<emu::SlotInventory>(*Firmware_, std::move(Entries));
}

VOID CoreWorld::WriteFile(const std::string &Name, const std::string &Text) {
  std::ofstream(Directory_ / Name, std::ios::binary) << Text;
}

EFI_STATUS CoreWorld::Initialize(UINT32 *ErrorCode) {
  BindStorcli();
  return InitializeRaid(ErrorCode);
}

VOID CoreWorld::Finalize() {
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(FinalizeRaid(&ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  Finalized_ = true;
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  EXPECT_EQ(Firmware_->Memory().EventReport(), "");
}

std::vector<RAID_CONTROLLER *> CoreWorld::Controllers() {
  std::vector<RAID_CONTROLLER *> Result;
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    Result.push_back(Controller);
  }
  return Result;
}

std::vector<std::string> CoreWorld::Trace() const {
  std::vector<std::string> Lines;
  for (const std::string &Text : Setup_->TraceTexts()) {
    Lines.push_back(WithoutLineEnd(Text));
  }
  return Lines;
}

bool CoreWorld::TraceHas(const std::string &Line) const {
  for (const std::string &Text : Trace()) {
    if (Text == Line) {
      return true;
    }
  }
  return false;
}

}  // namespace core_test
