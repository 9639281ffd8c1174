// The reports of storcli's show commands for a virtual MegaRAID adapter:
// "show ctrlcount", "/cN show", "/cN show freespace", "/cN/vN show all".
#pragma once

#include <cstdint>
#include <string>

#include "sim/megaraid/MegaRaidAdapter.h"
#include "sim/megaraid/StorcliReport.h"

namespace sim::megaraid {

std::string ShowControllerCount(const ToolInfo &Tool, size_t Count);
std::string ShowController(const ToolInfo &Tool, uint32_t Controller,
                           const Adapter &State);
std::string ShowFreeSpace(const ToolInfo &Tool, uint32_t Controller,
                          const Adapter &State);
// Fails with "VD n doesn't exist" for an unknown volume.
std::string ShowVolume(const ToolInfo &Tool, uint32_t Controller,
                       const Adapter &State, uint32_t Volume);

// "Strip Size" value text: "256 KB", "1.0 MB", "2.000 MB".
std::string StripSizeText(uint32_t StripKb);
// The Cache column word: read, write and I/O letters ("RWBD", "NRWTC").
std::string CacheWord(const VirtualDrive &Volume);

}  // namespace sim::megaraid
