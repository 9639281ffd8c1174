// An emulated server whose MegaRAID functions are backed by virtual
// adapters with drives, drive groups and volumes; the module's core is
// started on it and every storcli command line it runs is recorded, with a
// hook through which a test can have the adapter refuse one command.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CoreWorld.h"
#include "ModelView.h"

namespace megaraid_test {

using core_test::PciFunction;

constexpr UINT16 kLsi = 0x1000;

// A MegaRAID 9361-8i at Bus:Device.Function.
PciFunction MegaRaidAt(UINT8 Bus, UINT8 Device = 0, UINT8 Function = 0);

class MegaRaidWorld : public core_test::CoreWorld {
 public:
  ~MegaRaidWorld() override;

  // A MegaRAID function whose virtual adapter holds Content (the
  // docs/scenario.md adapter object; "pci" is filled from Function).
  VOID AddAdapter(const PciFunction &Function, const nlohmann::json &Content);
  // Writes pcidb.xml and raid.xml, runs InitializeRaid and installs the
  // recording shell handler. Fails the test when the core does not start
  // or reports another error code.
  VOID Start(UINT32 ExpectedErrorCode = 0);

  // The module's controller of the function at Bus.
  RAID_CONTROLLER *ControllerAt(UINT8 Bus);
  // The virtual adapter at Bus and its storcli number.
  const sim::megaraid::Adapter &AdapterAt(UINT8 Bus) const;
  uint32_t CardOf(UINT8 Bus) const;
  nlohmann::json StateAt(UINT8 Bus) const;

  // Refreshes and compares the module's model with the adapter's state.
  VOID ExpectModelMatches(UINT8 Bus);

  // Command lines run since the last ClearCommands, in order.
  std::vector<std::string> Commands_;
  VOID ClearCommands() { Commands_.clear(); }
  // Answers a command line instead of the adapter when it returns text.
  std::function<std::optional<std::string>(const std::string &)> Fault_;

  // A failure report as storcli prints it for a refused command.
  std::string FailureOutput(uint32_t Controller, uint32_t FirmwareStatus,
                            const std::string &Description) const;

 private:
  std::vector<UINT8> Buses_;
};

// One adapter whose changes a test follows: the core started on it, its
// refreshed controller and the adapter's state before the change.
class OneAdapterWorld : public MegaRaidWorld {
 public:
  // Starts the core on a MegaRAID function at Bus holding Content, keeps
  // the refreshed controller and the adapter's state, and forgets the
  // commands run so far.
  VOID StartWith(UINT8 Bus, const nlohmann::json &Content);

  RAID_CONTROLLER *Controller = nullptr;
  nlohmann::json Before;
};

// The first array, volume or drive of the model that satisfies a test.
RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id);
RAID_VOLUME *VolumeWithId(RAID_ARRAY *Array, UINT32 Id);
RAID_VOLUME *FreeSegmentAfter(RAID_ARRAY *Array, UINT32 AfterVd);
RAID_PHYSICAL_DRIVE *DriveAt(RAID_CONTROLLER *Controller,
                             const std::string &Location);

// Index of the drive with this address in an adapter's JSON "drives".
nlohmann::json &JsonDrive(nlohmann::json &State, const std::string &Address);

}  // namespace megaraid_test
