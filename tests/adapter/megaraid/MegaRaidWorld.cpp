// The emulated server with virtual MegaRAID adapters behind storcli.
#include "MegaRaidWorld.h"

#include "EsaDrvMgr.h"
#include "sim/megaraid/MegaRaidJson.h"
#include "sim/megaraid/StorcliReport.h"

namespace megaraid_test {

using nlohmann::json;

PciFunction MegaRaidAt(UINT8 Bus, UINT8 Device, UINT8 Function) {
  return {Bus, Device, Function, kLsi, 0x005D, kLsi, 0x9361};
}

MegaRaidWorld::~MegaRaidWorld() {
  if (!Finalized_) {
    Finalize();
  }
}

VOID MegaRaidWorld::AddAdapter(const PciFunction &Function,
                               const json &Content) {
  AddFunction(Function);
  json &Adapter = MegaRaidAdapters_.back();
  const json Pci = Adapter["pci"];
  Adapter.update(Content);
  Adapter["pci"] = Pci;
  Buses_.push_back(Function.Bus);
}

VOID MegaRaidWorld::Start(UINT32 ExpectedErrorCode) {
  WriteFile("pcidb.xml",
            core_test::PcidbXml({core_test::StorageElement(
                "LSI", kLsi, 0x005D, kLsi, 0x9361, "MegaRAID 9361-8i")}));
  WriteFile("raid.xml", core_test::RaidXml({core_test::ControllerBlock(
                            "LSI", "storcli.efi")}));
  BindStorcli();
  Shell_->SetHandler([this](const std::string &CommandLine) {
    Commands_.push_back(CommandLine);
    if (Fault_) {
      if (auto Answer = Fault_(CommandLine)) {
        return *Answer;
      }
    }
    return Storcli_->Run(CommandLine);
  });
  UINT32 ErrorCode = 0xFFFFFFFF;
  ASSERT_EQ(InitializeRaid(&ErrorCode), EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, ExpectedErrorCode);
}

RAID_CONTROLLER *MegaRaidWorld::ControllerAt(UINT8 Bus) {
  for (RAID_CONTROLLER *Controller : Controllers()) {
    if (Controller->Private != nullptr && Controller->Private->Bus == Bus) {
      return Controller;
    }
  }
  ADD_FAILURE() << "no controller at bus " << int(Bus);
  return nullptr;
}

uint32_t MegaRaidWorld::CardOf(UINT8 Bus) const {
  const auto &Adapters = Storcli_->Adapters();
  for (uint32_t Card = 0; Card < Adapters.size(); ++Card) {
    if (Adapters[Card].Identity().Bus == Bus) {
      return Card;
    }
  }
  ADD_FAILURE() << "no adapter at bus " << int(Bus);
  return 0;
}

const sim::megaraid::Adapter &MegaRaidWorld::AdapterAt(UINT8 Bus) const {
  return Storcli_->Adapters().at(CardOf(Bus));
}

json MegaRaidWorld::StateAt(UINT8 Bus) const {
  return sim::megaraid::AdapterToJson(AdapterAt(Bus));
}

VOID OneAdapterWorld::StartWith(UINT8 Bus, const nlohmann::json &Content) {
  AddAdapter(MegaRaidAt(Bus), Content);
  Start();
  Controller = Refresh(ControllerAt(Bus));
  Before = StateAt(Bus);
  ClearCommands();
}

VOID MegaRaidWorld::ExpectModelMatches(UINT8 Bus) {
  RAID_CONTROLLER *Controller = ControllerAt(Bus);
  ASSERT_NE(Controller, nullptr);
  Refresh(Controller);
  EXPECT_EQ(ModelJson(Controller).dump(1), ExpectedModel(AdapterAt(Bus)).dump(1));
}

std::string MegaRaidWorld::FailureOutput(uint32_t Controller,
                                         uint32_t FirmwareStatus,
                                         const std::string &Description) const {
  sim::megaraid::Report Out(Storcli_->Tool());
  Out.Failure(Controller, sim::megaraid::Result::Refused(Description, FirmwareStatus),
              Description);
  return Out.Text();
}

RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array : uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

RAID_VOLUME *VolumeWithId(RAID_ARRAY *Array, UINT32 Id) {
  for (RAID_VOLUME *Volume : uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Volume->IsVolume == 1 && Volume->Id == Id) {
      return Volume;
    }
  }
  return nullptr;
}

RAID_VOLUME *FreeSegmentAfter(RAID_ARRAY *Array, UINT32 AfterVd) {
  for (RAID_VOLUME *Segment : uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Segment->IsVolume == 0 && Segment->State == AfterVd) {
      return Segment;
    }
  }
  return nullptr;
}

RAID_PHYSICAL_DRIVE *DriveAt(RAID_CONTROLLER *Controller,
                             const std::string &Location) {
  for (UINT32 Index = 0; Controller->DriveTable[Index] != nullptr; ++Index) {
    RAID_PHYSICAL_DRIVE *Drive = Controller->DriveTable[Index];
    std::string Text;
    for (const CHAR16 *C = Drive->Location; C != nullptr && *C != 0; ++C) {
      Text += static_cast<char>(*C);
    }
    if (Text == Location) {
      return Drive;
    }
  }
  return nullptr;
}

json &JsonDrive(json &State, const std::string &Address) {
  for (json &Drive : State["drives"]) {
    if (Drive["address"] == Address) {
      return Drive;
    }
  }
  throw std::runtime_error("no drive " + Address);
}

}  // namespace megaraid_test
