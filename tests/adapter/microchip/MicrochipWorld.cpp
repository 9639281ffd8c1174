#include "MicrochipWorld.h"

#include <algorithm>

#include "EsaDrvMgr.h"
#include "sim/microchip/MicrochipJson.h"

namespace microchip_test {

using nlohmann::json;
using namespace sim::microchip;

namespace {

// The full profile of the family, as the product's raid.xml gives it.
constexpr const char *kProfile =
    "  <CONTROLLER ID=\"MCHP\">\n    <TOOL ID=\"arcconf.efi\"/>\n"
    "    <LEVEL ID=\"0\" DEFAULT=\"0\"/>\n    <LEVEL ID=\"1\" DEFAULT=\"0\"/>\n"
    "    <LEVEL ID=\"5\" DEFAULT=\"1\"/>\n  </CONTROLLER>\n";

std::vector<RAID_PHYSICAL_DRIVE *> DrivesOf(const LIST_ENTRY &Head) {
  std::vector<RAID_PHYSICAL_DRIVE *> Drives;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(const_cast<LIST_ENTRY &>(Head))) {
    Drives.push_back(Drive);
  }
  return Drives;
}

json SortedSlots(std::vector<uint32_t> Slots) {
  std::sort(Slots.begin(), Slots.end());
  return Slots;
}

}  // namespace

MicrochipWorld::~MicrochipWorld() {
  if (!Finalized_) {
    Finalize();
  }
}

VOID MicrochipWorld::AddAdapter(UINT8 Bus, UINT16 Slot, const json &Content) {
  AddFunction({Bus, 0, 0, kMicrochip, 0x028F, kMicrochip, 0x0800, 0x07});
  Slots_.push_back({"PCIe Slot " + std::to_string(Slot), Slot, 0, Bus, 0});
  json Adapter = Content;
  Adapter["slot"] = Slot;
  Adapter["pci"] = {{"bus", Bus},          {"device", 0},
                    {"function", 0},       {"vendorId", kMicrochip},
                    {"deviceId", 0x028F},  {"subVendorId", kMicrochip},
                    {"subDeviceId", 0x0800}};
  Adapters_.push_back(Adapter);
}

VOID MicrochipWorld::Start() {
  SetSlots(Slots_);
  WriteFile("pcidb.xml",
            core_test::PcidbXml({core_test::StorageElement(
                "MCHP", kMicrochip, 0x028F, kMicrochip, 0x0800,
                "SmartRAID 3154-8i")}));
  WriteFile("raid.xml", core_test::RaidXml({kProfile}));
  for (const json &Adapter : Adapters_) {
    Arcconf_.AddAdapter(AdapterFromJson(Adapter));
  }
  Shell_->SetHandler([this](const std::string &CommandLine) {
    Commands_.push_back(CommandLine);
    if (Fault_) {
      if (auto Answer = Fault_(CommandLine)) {
        return *Answer;
      }
    }
    return CommandLine.rfind("arcconf.efi", 0) == 0 ? Arcconf_.Run(CommandLine)
                                                    : std::string();
  });
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(InitializeRaid(&ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, 0u);
}

RAID_CONTROLLER *MicrochipWorld::ControllerAt(UINT8 Bus) {
  for (RAID_CONTROLLER *Controller : Controllers()) {
    if (Controller->Private != nullptr && Controller->Private->Bus == Bus) {
      return Controller;
    }
  }
  ADD_FAILURE() << "no controller at bus " << int(Bus);
  return nullptr;
}

const Adapter &MicrochipWorld::AdapterAt(UINT8 Bus) const {
  for (const Adapter &State : Arcconf_.Adapters()) {
    if (State.Pci.Bus == Bus) {
      return State;
    }
  }
  ADD_FAILURE() << "no adapter at bus " << int(Bus);
  return Arcconf_.Adapters().front();
}

json MicrochipWorld::StateAt(UINT8 Bus) const {
  return AdapterToJson(AdapterAt(Bus));
}

RAID_CONTROLLER *MicrochipWorld::Refresh(RAID_CONTROLLER *Controller) {
  RAID_CONTROLLER *Out = nullptr;
  UINT32 ErrorCode = 0xFFFFFFFF;
  EXPECT_EQ(RefreshControllerInfo(Controller, &Out, &ErrorCode), EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
  EXPECT_EQ(Out, Controller);
  return Controller;
}

VOID MicrochipWorld::ExpectModelMatches(UINT8 Bus) {
  RAID_CONTROLLER *Controller = ControllerAt(Bus);
  ASSERT_NE(Controller, nullptr);
  Refresh(Controller);
  EXPECT_EQ(ModelSummary(Controller).dump(1),
            ExpectedSummary(AdapterAt(Bus)).dump(1));
}

json ModelSummary(const RAID_CONTROLLER *Controller) {
  json Arrays = json::array();
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(
           const_cast<LIST_ENTRY &>(Controller->ArrayList))) {
    json Volumes = json::array();
    uint64_t FreeMb = 0;
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      std::string Name;
      for (const CHAR16 *C = Volume->Name; *C != 0; C++) {
        Name += static_cast<char>(*C);
      }
      if (Volume->IsVolume == 1) {
        Volumes.push_back({Volume->Id, Name, Volume->SizeFigure / 1000,
                           Volume->State});
      } else {
        FreeMb = Volume->SizeFigure / 1000;
      }
    }
    std::vector<uint32_t> Members;
    for (RAID_PHYSICAL_DRIVE *Drive : DrivesOf(Array->DriveList)) {
      Members.push_back(Drive->Id);
    }
    Arrays.push_back({{"id", Array->Id},
                      {"level", Array->RaidLevel},
                      {"members", SortedSlots(Members)},
                      {"volumes", Volumes},
                      {"freeMb", FreeMb}});
  }
  std::vector<uint32_t> Unconfigured;
  for (RAID_PHYSICAL_DRIVE *Drive : DrivesOf(Controller->PhysicalDriveList)) {
    Unconfigured.push_back(Drive->Id);
  }
  std::vector<uint32_t> Spares;
  for (RAID_PHYSICAL_DRIVE *Drive : DrivesOf(Controller->SpareDriveList)) {
    Spares.push_back(Drive->Id);
  }
  return {{"arrays", Arrays},
          {"unconfigured", SortedSlots(Unconfigured)},
          {"spares", SortedSlots(Spares)},
          {"counts",
           {Controller->DiskDriveCount, Controller->UnconfiguredDriveCount,
            Controller->GlobalSpareCount}}};
}

json ExpectedSummary(const Adapter &State) {
  json Arrays = json::array();
  for (size_t Index = 0; Index < State.Arrays.size(); Index++) {
    const Array &Target = State.Arrays[Index];
    json Volumes = json::array();
    for (const LogicalDrive &Drive : Target.LogicalDrives) {
      Volumes.push_back({Drive.Number, Drive.Name, Drive.SizeMb, 21});
    }
    std::vector<uint32_t> Members;
    for (const DeviceAddress &Member : Target.Members) {
      Members.push_back(State.FindDevice(Member)->Slot);
    }
    const uint64_t Unused = State.UnusedMb(Target);
    Arrays.push_back({{"id", Index},
                      {"level", Target.RaidLevel},
                      {"members", SortedSlots(Members)},
                      {"volumes", Volumes},
                      {"freeMb", Unused}});
  }
  std::vector<uint32_t> Unconfigured;
  std::vector<uint32_t> Spares;
  for (const Device &Drive : State.Devices) {
    if (Drive.State == DeviceState::Ready || Drive.State == DeviceState::Raw) {
      Unconfigured.push_back(Drive.Slot);
    } else if (Drive.State != DeviceState::Online) {
      Spares.push_back(Drive.Slot);
    }
  }
  return {{"arrays", Arrays},
          {"unconfigured", SortedSlots(Unconfigured)},
          {"spares", SortedSlots(Spares)},
          {"counts",
           {State.Devices.size(), Unconfigured.size(), Spares.size()}}};
}

RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

RAID_VOLUME *VolumeWithId(RAID_ARRAY *Array, UINT32 Id) {
  for (RAID_VOLUME *Volume :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume == 1 && Volume->Id == Id) {
      return Volume;
    }
  }
  return nullptr;
}

RAID_PHYSICAL_DRIVE *DriveWithSlot(RAID_CONTROLLER *Controller, UINT32 Slot) {
  std::vector<RAID_PHYSICAL_DRIVE *> All = DrivesOf(Controller->PhysicalDriveList);
  for (RAID_PHYSICAL_DRIVE *Drive : DrivesOf(Controller->SpareDriveList)) {
    All.push_back(Drive);
  }
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_PHYSICAL_DRIVE *Drive : DrivesOf(Array->DriveList)) {
      All.push_back(Drive);
    }
  }
  for (RAID_PHYSICAL_DRIVE *Drive : All) {
    if (Drive->Id == Slot) {
      return Drive;
    }
  }
  return nullptr;
}

}  // namespace microchip_test
