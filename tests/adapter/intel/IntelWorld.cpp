// The emulated server with virtual Intel engines behind RCfgSata.efi.
#include "IntelWorld.h"

#include "EsaDrvMgr.h"
#include "RaidBackends.h"
#include "native/VirtualAdapters.h"
#include "sim/intel/IntelFamily.h"

namespace intel_test {

using nlohmann::json;

namespace {

// raid.xml's Intel profile: the levels of the engine.
std::string IntelProfile() {
  return "  <CONTROLLER ID=\"RSTe\">\n    <TOOL ID=\"RCfgSata.efi\"/>\n"
         "    <LEVEL ID=\"0\" DEFAULT=\"0\"/>\n    <LEVEL ID=\"1\" DEFAULT=\"1\"/>\n"
         "    <LEVEL ID=\"5\" DEFAULT=\"0\"/>\n    <LEVEL ID=\"10\" DEFAULT=\"0\"/>\n"
         "    <MaxVolumeNameStingLength ID=\"16\"/>\n  </CONTROLLER>\n";
}

}  // namespace

IntelWorld::IntelWorld() : Family_(sim::intel::MakeFamily()) {
  rste::RsteResetState();
}

IntelWorld::~IntelWorld() {
  if (!Finalized_) {
    Finalize();
  }
}

VOID IntelWorld::AddEngine(const json &Content, UINT8 Device, UINT16 DeviceId) {
  PciFunction Function{0, Device, 0, 0x8086, DeviceId, 0x8086, DeviceId};
  AddFunction(Function);
  json Engine = Content;
  Engine["pci"] = {{"bus", 0},          {"device", Device},
                   {"function", 0},     {"vendorId", 0x8086},
                   {"deviceId", DeviceId}, {"subVendorId", 0x8086},
                   {"subDeviceId", DeviceId}};
  Family_->AddAdapter(Engine);
}

VOID IntelWorld::Start() {
  WriteFile("pcidb.xml",
            core_test::PcidbXml(
                {core_test::StorageElement("RSTe", 0x8086, 0x2826, 0x8086, 0x2826,
                                           "Intel RSTe SATA RAID Controller"),
                 core_test::StorageElement("RSTe", 0x8086, 0x2822, 0x8086, 0x2822,
                                           "Intel RSTe sSATA RAID Controller")}));
  WriteFile("raid.xml", core_test::RaidXml({IntelProfile()}));
  Shell_->SetHandler([this](const std::string &CommandLine) -> std::string {
    Commands_.push_back(CommandLine);
    AllCommands_.push_back(CommandLine);
    if (Fault_) {
      if (auto Answer = Fault_(CommandLine)) {
        return *Answer;
      }
    }
    const std::string Tool = host::ToolNameOf(CommandLine);
    for (const std::string &Name : Family_->ToolNames()) {
      if (Name == Tool) {
        return Family_->Run(Tool, CommandLine).Output;
      }
    }
    return "";
  });
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(InitializeRaid(&ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, 0u);
  ASSERT_FALSE(Controllers().empty());
  Controller = Controllers().front();
  Refresh();
  Before = State();
  ClearCommands();
}

RAID_CONTROLLER *IntelWorld::Refresh() {
  RAID_CONTROLLER *Out = nullptr;
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(RefreshControllerInfo(Controller, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  return Controller;
}

RAID_VOLUME *VolumeNamed(RAID_CONTROLLER *Controller, const std::string &Name) {
  for (RAID_ARRAY *Array : uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_VOLUME *Volume : uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume == 1 && Narrow(Volume->Name) == Name) {
        return Volume;
      }
    }
  }
  return nullptr;
}

RAID_PHYSICAL_DRIVE *DiskWithId(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (UINT32 I = 0; Controller->DriveTable[I] != nullptr; I++) {
    if (Controller->DriveTable[I]->Id == Id) {
      return Controller->DriveTable[I];
    }
  }
  return nullptr;
}

json DiskJson(uint32_t Number, const std::string &State, uint64_t Blocks) {
  return {{"number", Number}, {"state", State}, {"blocks", Blocks}};
}

}  // namespace intel_test
