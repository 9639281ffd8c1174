// The core's handle on the host setup protocol, for tracing.
#include "RaidLibTrace.h"

constinit TARN_SETUP_PROTOCOL *gRaidLibSetupProtocol = nullptr;
