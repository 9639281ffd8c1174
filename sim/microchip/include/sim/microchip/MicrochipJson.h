// JSON form of a virtual Microchip adapter's state (docs/scenario.md,
// "Microchip adapters"): loading for scenarios, dumping for tests and for
// the final state printed after a scripted run.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "sim/microchip/MicrochipAdapter.h"

namespace sim::microchip {

// Builds an adapter from its JSON object. Throws common::ScenarioError
// naming the place of a malformed field ("arrays[0].members[1]: no device
// 0:9") or what is wrong with a state the firmware could not hold.
Adapter AdapterFromJson(const nlohmann::json &Object);

// Every field explicit, so that loading the dump gives the same state.
nlohmann::json AdapterToJson(const Adapter &State);

// The dump as indented text with sorted keys: equal states give equal text.
std::string CanonicalState(const Adapter &State);

}  // namespace sim::microchip
