// The scenario family "megaraid": every virtual MegaRAID adapter of the
// server behind one storcli.efi, as on a real server.
#pragma once

#include <memory>

#include "sim/common/VirtualFamily.h"

namespace sim::megaraid {

// A common::FamilyMaker.
std::unique_ptr<common::VirtualFamily> MakeFamily();

}  // namespace sim::megaraid
