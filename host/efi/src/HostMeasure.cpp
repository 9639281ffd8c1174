// The time-stamp counter and its rate under the firmware.
#include "HostMeasure.h"

#include <Library/UefiBootServicesTableLib.h>

namespace {

constexpr UINTN kCalibrationMicroseconds = 50000;

constinit UINT64 gTicksPerMillisecond = 0;

}  // namespace

UINT64 HostTimeStamp(VOID) { return __builtin_ia32_rdtsc(); }

UINT64 HostTicksPerMillisecond(VOID) {
  if (gTicksPerMillisecond == 0) {
    const UINT64 Start = HostTimeStamp();
    gBS->Stall(kCalibrationMicroseconds);
    gTicksPerMillisecond = (HostTimeStamp() - Start) / (kCalibrationMicroseconds / 1000);
  }
  return gTicksPerMillisecond;
}
