// Tracing of the RAID service core and its backends through the host setup
// protocol's print service. Lines name their function through the format's
// leading "%a". Without the protocol nothing is printed.
#pragma once

#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

// The host setup protocol as the core located it; NULL until then.
extern TARN_SETUP_PROTOCOL *gRaidLibSetupProtocol;

// RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Command: %S\n", CommandLine) prints
// "[<function>]Command: ..." when the core has a setup protocol.
#define RAID_LIB_TRACE(Level, Format, ...)                                   \
  do {                                                                       \
    if (gRaidLibSetupProtocol != nullptr &&                                  \
        gRaidLibSetupProtocol->DebugPrint != nullptr) {                      \
      gRaidLibSetupProtocol->DebugPrint((Level), (Format),                   \
                                        __func__ __VA_OPT__(, ) __VA_ARGS__); \
    }                                                                        \
  } while (0)

// The same for a helper that traces on behalf of the function named
// Function, so the line carries the name the log reader knows.
#define RAID_LIB_TRACE_AS(Function, Level, Format, ...)                      \
  do {                                                                       \
    if (gRaidLibSetupProtocol != nullptr &&                                  \
        gRaidLibSetupProtocol->DebugPrint != nullptr) {                      \
      gRaidLibSetupProtocol->DebugPrint((Level), (Format),                   \
                                        (Function)__VA_OPT__(, ) __VA_ARGS__); \
    }                                                                        \
  } while (0)
