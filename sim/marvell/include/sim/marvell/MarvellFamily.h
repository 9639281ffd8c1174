// The scenario family "marvell": every virtual M.2 adapter of the server
// behind the two M.2 tools, mvsetup.efi and mnv_cli.efi.
#pragma once

#include <memory>

#include "sim/common/VirtualFamily.h"

namespace sim::marvell {

// A common::FamilyMaker.
std::unique_ptr<common::VirtualFamily> MakeFamily();

}  // namespace sim::marvell
