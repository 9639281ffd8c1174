// An emulated server whose Microchip functions are backed by virtual
// adapters behind one arcconf; the module's core is started on it and every
// arcconf command line it runs is recorded.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CoreWorld.h"
#include "sim/microchip/Arcconf.h"

namespace microchip_test {

using core_test::PciFunction;

constexpr UINT16 kMicrochip = 0x9005;

class MicrochipWorld : public core_test::CoreWorld {
 public:
  ~MicrochipWorld() override;

  // A SmartRAID function at Bus in SMBIOS slot Slot whose virtual adapter
  // holds Content (the docs/scenario.md adapter object).
  VOID AddAdapter(UINT8 Bus, UINT16 Slot, const nlohmann::json &Content);
  // Writes pcidb.xml and raid.xml, installs the recording arcconf and runs
  // InitializeRaid; fails the test when the core does not start.
  VOID Start();

  RAID_CONTROLLER *ControllerAt(UINT8 Bus);
  const sim::microchip::Adapter &AdapterAt(UINT8 Bus) const;
  nlohmann::json StateAt(UINT8 Bus) const;
  // RefreshControllerInfo through the dispatch; expects success.
  RAID_CONTROLLER *Refresh(RAID_CONTROLLER *Controller);
  // Refreshes and compares the model with what the adapter's state implies.
  VOID ExpectModelMatches(UINT8 Bus);

  std::vector<std::string> Commands_;
  // Answers a command line instead of the adapter when it returns text.
  std::function<std::optional<std::string>(const std::string &)> Fault_;
  sim::microchip::Arcconf Arcconf_;

 private:
  std::vector<emu::SmbiosSlot> Slots_;
  std::vector<nlohmann::json> Adapters_;
};

// The model's arrays, volumes and drives as comparable JSON, and the same
// as the adapter's state implies it.
nlohmann::json ModelSummary(const RAID_CONTROLLER *Controller);
nlohmann::json ExpectedSummary(const sim::microchip::Adapter &State);

RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id);
RAID_VOLUME *VolumeWithId(RAID_ARRAY *Array, UINT32 Id);
RAID_PHYSICAL_DRIVE *DriveWithSlot(RAID_CONTROLLER *Controller, UINT32 Slot);

}  // namespace microchip_test
