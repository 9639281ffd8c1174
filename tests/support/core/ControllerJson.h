// A controller of the module's model as JSON, so that a test can compare
// it field by field with the model a virtual adapter's state implies.
#pragma once

#include <nlohmann/json.hpp>

#include "RaidLib.h"

namespace core_test {

// The controller's names, counters, drive table, lists and arrays. A drive
// names its owner as "controller" or "Array<n>"; an array's segments come
// in SegmentList order; a free segment's settings are left out.
nlohmann::json ModelJson(const RAID_CONTROLLER *Controller);
// One drive as ModelJson writes it.
nlohmann::json DriveJson(const RAID_CONTROLLER *Controller,
                         const RAID_PHYSICAL_DRIVE *Drive);

}  // namespace core_test
