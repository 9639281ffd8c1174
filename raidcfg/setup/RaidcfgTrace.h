// Tracing of the module's own start-up, shutdown, service layer and wizard
// through the host setup protocol's print service. Lines begin with
// "RAID: [%a] " where "%a" takes the calling function's name. Without the
// host setup protocol nothing is printed and nothing else changes.
#pragma once

#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

// The host setup protocol located by GetTARNSetupProtocol; NULL when the
// host does not offer it (or before start-up located it).
extern TARN_SETUP_PROTOCOL *TarnSetupProtocol;

// RAID_TRACE(TARN_DEBUG_INFO, "RAID: [%a] Entry\n") prints
// "RAID: [<function>] Entry".
#define RAID_TRACE(Level, Format, ...)                                      \
  do {                                                                      \
    if (TarnSetupProtocol != nullptr &&                                     \
        TarnSetupProtocol->DebugPrint != nullptr) {                         \
      TarnSetupProtocol->DebugPrint((Level), (Format),                      \
                                    __func__ __VA_OPT__(, ) __VA_ARGS__);   \
    }                                                                       \
  } while (0)

// The same for a helper that traces on behalf of the function named
// Function, so the line carries the public function's name.
#define RAID_TRACE_AS(Function, Level, Format, ...)                         \
  do {                                                                      \
    if (TarnSetupProtocol != nullptr &&                                     \
        TarnSetupProtocol->DebugPrint != nullptr) {                         \
      TarnSetupProtocol->DebugPrint((Level), (Format),                      \
                                    (Function)__VA_OPT__(, ) __VA_ARGS__);  \
    }                                                                       \
  } while (0)

// The time-stamp counter the start-up trace lines carry.
[[nodiscard]] inline UINT64 RaidReadTimeStamp() {
  return __builtin_ia32_rdtsc();
}
