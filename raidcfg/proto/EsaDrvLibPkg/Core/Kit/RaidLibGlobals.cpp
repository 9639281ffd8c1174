// The RAID service core's module-wide model state.
#include "RaidLib.h"

// Self-linked from load on, so IsListEmpty holds before InitializeRaid runs
// and a release walk over a never-filled list does nothing.
constinit LIST_ENTRY gControllerList = {&gControllerList, &gControllerList};

constinit RAID_CAPABILITY *gCapability = nullptr;

constinit UINT32 greconnect = 1;
constinit UINT32 gMchpCtrlCount = 0;
