// Time inside the emulator: Stall advances a counter instead of sleeping,
// the monotonic count counts, and a time-stamp-counter stand-in gives
// deterministic ticks.
//
// The module itself reads the processor's counter with __rdtsc() in both
// builds, so its trace time stamps are real and vary from run to run; tests
// compare trace lines after MaskTimeStamps(). A host or test that wants
// reproducible ticks of its own reads TimeStampCounter() instead.
#pragma once

#include <Uefi.h>

#include <string>

namespace emu {

class VirtualClock {
 public:
  // Nominal counter rate of the stand-in: 2 GHz.
  static constexpr UINT64 kTicksPerMicrosecond = 2000;

  VOID Stall(UINTN Microseconds) { Microseconds_ += Microseconds; }
  UINT64 Microseconds() const { return Microseconds_; }
  UINT64 StallCalls() const { return StallCalls_; }
  VOID CountStall() { StallCalls_++; }

  // GetNextMonotonicCount: 1, 2, 3, ...
  UINT64 NextMonotonicCount() { return ++MonotonicCount_; }
  // The high 32 bits advanced by GetNextHighMonotonicCount.
  UINT32 NextHighMonotonicCount();

  // Ticks of the virtual time, strictly increasing from read to read.
  UINT64 TimeStampCounter() {
    return Microseconds_ * kTicksPerMicrosecond + ++TscReads_;
  }

 private:
  UINT64 Microseconds_ = 0;
  UINT64 StallCalls_ = 0;
  UINT64 MonotonicCount_ = 0;
  UINT64 TscReads_ = 0;
};

// Replaces the hexadecimal digits after every "TimeStamp: " with "<tsc>",
// so trace lines can be compared exactly.
std::string MaskTimeStamps(const std::string &Text);

}  // namespace emu
