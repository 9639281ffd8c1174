// The core's handle on the host setup protocol, for tracing.
#include "RaidLibTrace.h"

#include "RaidLibController.h"

constinit TARN_SETUP_PROTOCOL *gRaidLibSetupProtocol = nullptr;

VOID RaidLibTraceVersion() {
  if (gRaidLibSetupProtocol != nullptr) {
    gRaidLibSetupProtocol->DebugPrint(
        TARN_DEBUG_INFO, "RAID library version: %d.%d.%d\n",
        RAID_LIB_VERSION_MAJOR, RAID_LIB_VERSION_MINOR, RAID_LIB_VERSION_PATCH);
  }
}
