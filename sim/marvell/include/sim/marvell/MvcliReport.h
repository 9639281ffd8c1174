// The reports of the M.2 tools in their "Key:" column layout: the adapter
// report ("info -o hba"), the volume report ("info -o vd") and the drive
// report ("info -o pd"), CRLF line ends.
#pragma once

#include <string>
#include <vector>

#include "sim/marvell/MarvellAdapter.h"

namespace sim::marvell {

// Every adapter's block, in the tool's numbering order.
std::string HbaReport(const std::vector<Adapter> &Adapters);
std::string VolumeReport(const Adapter &State);
// Number: the adapter's number in the tools' numbering.
std::string DriveReport(const Adapter &State, size_t Number);

}  // namespace sim::marvell
