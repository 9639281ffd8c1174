#include "CoreWorld.h"

#include <Protocol/Smbios.h>

#include "sim/megaraid/MegaRaidJson.h"

#include <cstdio>

namespace core_test {

namespace {

std::string Hex4(UINT16 Value) {
  char Text[8];
  std::snprintf(Text, sizeof(Text), "%04X", Value);
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

CoreWorld::CoreWorld() : EmulatedServer("raidcfg-core", true) {
  gImageHandle = Firmware_->CreateImageHandle(Volume_->Handle());
}

// The core's model goes first; the server's parts follow in reverse.
CoreWorld::~CoreWorld() {
  if (!Finalized_) {
    UINT32 ErrorCode = 0;
    FinalizeRaid(&ErrorCode);
  }
  Smbios_.reset();
  Inventory_.reset();
}

VOID CoreWorld::AddFunction(const PciFunction &Function) {
  EmulatedServer::AddFunction(Function);
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

RAID_CONTROLLER *CoreWorld::Refresh(RAID_CONTROLLER *Controller) {
  RAID_CONTROLLER *Out = nullptr;
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(RefreshControllerInfo(Controller, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Out, Controller);
  return Controller;
}

}  // namespace core_test
