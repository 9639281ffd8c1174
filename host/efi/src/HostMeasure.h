// What raidhost.efi measures of the firmware it runs on: the free memory in
// its memory map and the rate of the processor's time-stamp counter.
#pragma once

#include <Uefi.h>

// Pages of EfiConventionalMemory in the firmware's memory map (read into a
// buffer of the image's own, so that reading it allocates nothing); 0 when
// the map cannot be read.
UINT64 HostFreeMemoryPages(VOID);

// The time-stamp counter now; it counts from the processor's reset.
UINT64 HostTimeStamp(VOID);

// Counter ticks per millisecond, measured once against the firmware's
// Stall (50 ms); 0 when the counter did not move.
UINT64 HostTicksPerMillisecond(VOID);
