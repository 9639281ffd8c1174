// What arcconf prints: the "list" of adapters, the "getconfig" report of
// one, and the endings of every command. Layout as the UEFI build prints
// it (docs/microchip.md): CR LF line ends, keys indented by three, six or
// nine blanks and padded so that their colons stand in one column.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "sim/microchip/MicrochipAdapter.h"

namespace sim::microchip {

// The adapters with their current numbers, in the tool's order.
using NumberedAdapters = std::vector<std::pair<uint32_t, const Adapter *>>;

std::string ListReport(const NumberedAdapters &Adapters);
std::string GetconfigReport(size_t AdapterCount, const Adapter &State);
// "Controllers found: N", Body, then the success or failure ending.
std::string Completed(size_t AdapterCount, const std::string &Body);
std::string Failed(size_t AdapterCount, const std::string &Message);

}  // namespace sim::microchip
