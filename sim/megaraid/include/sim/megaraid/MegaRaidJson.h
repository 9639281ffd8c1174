// JSON form of a virtual MegaRAID adapter's state (docs/scenario.md,
// "MegaRAID adapters"): loading for scenarios, dumping for tests and for
// the final state printed after a scripted run.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "sim/megaraid/MegaRaidAdapter.h"

namespace sim::megaraid {

// Builds an adapter from its JSON object. Throws common::ScenarioError
// naming the place of a malformed field ("driveGroups[0].members[1]: no
// drive 252:9"), or saying what is wrong with a state the firmware could
// not hold.
Adapter AdapterFromJson(const nlohmann::json &Object);
std::vector<Adapter> AdaptersFromJson(const nlohmann::json &Array);

// Every field explicit, so that loading the dump gives the same state.
nlohmann::json AdapterToJson(const Adapter &State);

// The dump as indented text with sorted keys: equal states give equal text.
std::string CanonicalState(const Adapter &State);

}  // namespace sim::megaraid
