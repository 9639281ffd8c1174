// Virtual time and the time-stamp mask for trace lines.
#include "emu/VirtualClock.h"

#include <cctype>

namespace emu {

UINT32 VirtualClock::NextHighMonotonicCount() {
  MonotonicCount_ += UINT64{1} << 32;
  return static_cast<UINT32>(MonotonicCount_ >> 32);
}

std::string MaskTimeStamps(const std::string &Text) {
  static const std::string kLabel = "TimeStamp: ";
  std::string Out;
  size_t Position = 0;
  while (true) {
    const size_t Found = Text.find(kLabel, Position);
    if (Found == std::string::npos) {
      Out.append(Text, Position, std::string::npos);
      return Out;
    }
    size_t End = Found + kLabel.size();
    Out.append(Text, Position, End - Position);
    const size_t DigitsStart = End;
    while (End < Text.size() &&
           std::isxdigit(static_cast<unsigned char>(Text[End]))) {
      End++;
    }
    if (End > DigitsStart) {
      Out += "<tsc>";
    }
    Position = End;
  }
}

}  // namespace emu
