// What raidhost.efi measures of the firmware it runs on: the processor's
// time-stamp counter and its rate.
#pragma once

#include <Uefi.h>

// The time-stamp counter now; it counts from the processor's reset.
UINT64 HostTimeStamp(VOID);

// Counter ticks per millisecond, measured once against the firmware's
// Stall (50 ms); 0 when the counter did not move.
UINT64 HostTicksPerMillisecond(VOID);
