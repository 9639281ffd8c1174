// An Intel engine in the scenario's JSON and back (docs/scenario.md, "Intel
// RAID engines").
#pragma once

#include <nlohmann/json.hpp>

#include "sim/intel/IntelEngine.h"

namespace sim::intel {

// Throws common::ScenarioError naming the place of what it refuses.
Engine EngineFromJson(const nlohmann::json &Description);
nlohmann::json EngineToJson(const Engine &State);

}  // namespace sim::intel
