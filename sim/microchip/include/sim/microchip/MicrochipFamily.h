// The scenario family "microchip": every virtual Microchip adapter of the
// server behind one arcconf.efi, as on a real server.
#pragma once

#include <memory>

#include "sim/common/VirtualFamily.h"

namespace sim::microchip {

// A common::FamilyMaker.
std::unique_ptr<common::VirtualFamily> MakeFamily();

}  // namespace sim::microchip
