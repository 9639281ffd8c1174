// Size arithmetic of a MegaRAID adapter.
#include "sim/megaraid/Capacity.h"

#include <cctype>
#include <cstdio>

namespace sim::megaraid {

uint64_t GroupCapacityMb(uint32_t RaidLevel, uint32_t DriveCount,
                         uint32_t Spans, uint64_t SmallestMb) {
  const uint64_t N = DriveCount;
  const uint64_t S = Spans == 0 ? 1 : Spans;
  uint64_t DataDrives = 0;
  switch (RaidLevel) {
    case 0: DataDrives = N; break;
    case 1:
    case 10: return N * SmallestMb / 2;
    case 5: DataDrives = N >= 1 ? N - 1 : 0; break;
    case 6: DataDrives = N >= 2 ? N - 2 : 0; break;
    case 50: DataDrives = N >= S ? N - S : 0; break;
    case 60: DataDrives = N >= 2 * S ? N - 2 * S : 0; break;
    default: return 0;
  }
  return DataDrives * SmallestMb;
}

std::string FormatSize(uint64_t SizeMb) {
  uint64_t Unit = 1;
  const char *UnitText = "MB";
  if (SizeMb >= kMbPerTb) {
    Unit = kMbPerTb;
    UnitText = "TB";
  } else if (SizeMb >= kMbPerGb) {
    Unit = kMbPerGb;
    UnitText = "GB";
  }
  const uint64_t Whole = SizeMb / Unit;
  // Thousandths of the unit, cut: (remainder * 1000) / unit.
  const uint64_t Thousandths = (SizeMb % Unit) * 1000 / Unit;
  char Text[64];
  std::snprintf(Text, sizeof(Text), "%llu.%03llu %s",
                static_cast<unsigned long long>(Whole),
                static_cast<unsigned long long>(Thousandths), UnitText);
  return Text;
}

std::optional<uint64_t> ParseSize(const std::string &Text) {
  size_t Pos = 0;
  uint64_t Whole = 0;
  size_t Digits = 0;
  while (Pos < Text.size() && std::isdigit(static_cast<unsigned char>(Text[Pos]))) {
    if (Whole > (UINT64_MAX / 10) / kMbPerTb) {
      return std::nullopt;  // far beyond any adapter
    }
    Whole = Whole * 10 + static_cast<uint64_t>(Text[Pos] - '0');
    ++Pos;
    ++Digits;
  }
  uint64_t Fraction = 0;  // thousandths; further digits are cut
  if (Pos < Text.size() && Text[Pos] == '.') {
    ++Pos;
    uint64_t Scale = 100;
    while (Pos < Text.size() && std::isdigit(static_cast<unsigned char>(Text[Pos]))) {
      Fraction += static_cast<uint64_t>(Text[Pos] - '0') * Scale;
      Scale /= 10;
      ++Pos;
      ++Digits;
    }
  }
  if (Digits == 0) {
    return std::nullopt;
  }
  while (Pos < Text.size() && Text[Pos] == ' ') {
    ++Pos;
  }
  std::string Unit;
  for (; Pos < Text.size(); ++Pos) {
    Unit += static_cast<char>(std::toupper(static_cast<unsigned char>(Text[Pos])));
  }
  uint64_t Factor = 0;
  if (Unit == "MB") {
    Factor = 1;
  } else if (Unit == "GB") {
    Factor = kMbPerGb;
  } else if (Unit == "TB") {
    Factor = kMbPerTb;
  } else {
    return std::nullopt;
  }
  return (Whole * 1000 + Fraction) * Factor / 1000;
}

}  // namespace sim::megaraid
