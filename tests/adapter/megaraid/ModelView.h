// The model the storcli backend must build from a virtual adapter's state,
// derived from the adapter's records (not from the tool's text), so that it
// can be compared field by field with the module's model.
#pragma once

#include <nlohmann/json.hpp>

#include "ControllerJson.h"
#include "RaidLib.h"
#include "sim/megaraid/MegaRaidAdapter.h"

namespace megaraid_test {

using core_test::DriveJson;
using core_test::ModelJson;

// What the backend reads from this adapter's storcli reports.
nlohmann::json ExpectedModel(const sim::megaraid::Adapter &State);

}  // namespace megaraid_test
