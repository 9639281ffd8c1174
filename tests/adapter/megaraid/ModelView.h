// The module's model of a MegaRAID controller as JSON, and the model the
// storcli backend must build from a virtual adapter's state, derived from
// the adapter's records (not from the tool's text), so the two can be
// compared field by field.
#pragma once

#include <nlohmann/json.hpp>

#include "RaidLib.h"
#include "sim/megaraid/MegaRaidAdapter.h"

namespace megaraid_test {

// The controller's names, counters, drive table, lists and arrays. A drive
// names its owner as "controller" or "Array<n>"; an array's segments come
// in SegmentList order.
nlohmann::json ModelJson(const RAID_CONTROLLER *Controller);
// One drive as ModelJson writes it.
nlohmann::json DriveJson(const RAID_CONTROLLER *Controller,
                         const RAID_PHYSICAL_DRIVE *Drive);

// What the backend reads from this adapter's storcli reports.
nlohmann::json ExpectedModel(const sim::megaraid::Adapter &State);

}  // namespace megaraid_test
