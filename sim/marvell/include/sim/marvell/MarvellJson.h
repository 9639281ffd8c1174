// JSON form of a virtual M.2 adapter's state (docs/scenario.md, "Marvell
// M.2 adapters"): loading for scenarios, dumping for tests and for the
// final state printed after a scripted run.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "sim/marvell/MarvellAdapter.h"

namespace sim::marvell {

// Builds an adapter from its JSON object. Throws common::ScenarioError
// naming the place of a malformed field ("volumes[0].drives[1]: no drive
// 7"), or saying what the adapter could not hold.
Adapter AdapterFromJson(const nlohmann::json &Object);

// Every field explicit, so that loading the dump gives the same state.
nlohmann::json AdapterToJson(const Adapter &State);

}  // namespace sim::marvell
