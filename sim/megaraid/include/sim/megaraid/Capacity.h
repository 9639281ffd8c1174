// Size arithmetic of a MegaRAID adapter: usable capacity per RAID level, and
// sizes as the tool prints and reads them ("558.406 GB", "size=100.000GB").
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim::megaraid {

inline constexpr uint64_t kMbPerGb = 1024;
inline constexpr uint64_t kMbPerTb = 1024 * 1024;

// Usable capacity of a group of DriveCount drives in Spans spans, each drive
// counting as SmallestMb. Zero when the level is not one the adapter knows.
uint64_t GroupCapacityMb(uint32_t RaidLevel, uint32_t DriveCount,
                         uint32_t Spans, uint64_t SmallestMb);

// A size as the tool prints it: three decimals, cut (not rounded) so the
// printed figure never exceeds the real size; unit MB, GB or TB.
std::string FormatSize(uint64_t SizeMb);

// Reads a size word's value such as "100.000GB", "2TB" or "512.5 MB"
// (unit case-insensitive). Rounds down to whole MB. Empty when malformed.
std::optional<uint64_t> ParseSize(const std::string &Text);

}  // namespace sim::megaraid
