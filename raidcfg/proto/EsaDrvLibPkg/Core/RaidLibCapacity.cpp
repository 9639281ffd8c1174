// Usable capacity of a new array by RAID level.
#include "EsaDrvMgr.h"

// Every level stripes over equal shares, so the smallest drive decides. The
// products wrap as unsigned 64-bit values; callers stay within the level's
// drive-count limits.
UINT64 RaidLibGetCapacityByLevel(UINT8 Level, const UINT64 *DriveSizes,
                                 UINT32 Count) {
  RaidLibTraceVersion();
  UINT64 Smallest = 0;
  for (UINT32 Index = 0; Index < Count && DriveSizes != nullptr; Index++) {
    if (Index == 0 || DriveSizes[Index] < Smallest) {
      Smallest = DriveSizes[Index];
    }
  }
  const UINT64 N = Count;
  switch (Level) {
    case 0:
      return Smallest * N;
    case 1:
    case 10:
      return (Smallest * N) >> 1;
    case 5:
      return Smallest * (N - 1);
    case 6:
    case 50:
      return Smallest * (N - 2);
    case 60:
      return Smallest * (N - 4);
    default:
      return 0;
  }
}
