// An emulated server whose Intel 8086:2826 function is backed by virtual
// Intel RAID engines; the module's core is started on it and every command
// line it runs is recorded, with a hook through which a test can answer a
// command in the engine's place.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "CoreWorld.h"
#include "ScriptedTool.h"
#include "ScriptedToolWorld.h"
#include "sim/common/VirtualFamily.h"
#include "sim/intel/IntelFamily.h"

namespace intel_test {

using core_test::PciFunction;

// Disks of 1000 GiB and the blocks of one MiB, in 512-byte blocks.
constexpr uint64_t kBlocksPerMib = 2048;
constexpr uint64_t kThousandGib = 1000ULL * 1024 * kBlocksPerMib;

class IntelWorld : public core_test::CoreWorld {
 public:
  IntelWorld();
  ~IntelWorld() override;

  // An engine on 8086:2826 at 00:17.0 holding Content (docs/scenario.md).
  VOID AddEngine(const nlohmann::json &Content, UINT8 Device = 0x17,
                 UINT16 DeviceId = 0x2826);
  // Writes pcidb.xml and raid.xml, runs InitializeRaid and reads the first
  // engine's controller.
  VOID Start();

  RAID_CONTROLLER *Refresh();
  // The engines' state (the family's scenario JSON).
  nlohmann::json State() const { return Family_->State(); }

  // Command lines since the last ClearCommands, and all of them.
  std::vector<std::string> Commands_;
  std::vector<std::string> AllCommands_;
  VOID ClearCommands() { Commands_.clear(); }
  std::function<std::optional<std::string>(const std::string &)> Fault_;

  RAID_CONTROLLER *Controller = nullptr;
  nlohmann::json Before;
  std::unique_ptr<sim::common::VirtualFamily> Family_;
};

// Lookups in the model.
using backend_test::ArrayWithId;
using backend_test::Narrow;
using backend_test::SegmentNames;
RAID_VOLUME *VolumeNamed(RAID_CONTROLLER *Controller, const std::string &Name);
RAID_PHYSICAL_DRIVE *DiskWithId(RAID_CONTROLLER *Controller, UINT32 Id);

// A disk of the scenario JSON.
nlohmann::json DiskJson(uint32_t Number, const std::string &State,
                        uint64_t Blocks = kThousandGib);

}  // namespace intel_test
