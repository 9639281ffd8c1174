// The scenario family "intel": every virtual Intel RAID engine of the
// server behind the one SATA RAID configuration tool the scenario installs.
#pragma once

#include <memory>

#include "sim/common/VirtualFamily.h"

namespace sim::intel {

// A common::FamilyMaker.
std::unique_ptr<common::VirtualFamily> MakeFamily();

}  // namespace sim::intel
