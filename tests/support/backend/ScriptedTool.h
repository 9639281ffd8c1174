// What every backend's tests, fuzz targets and benchmarks share when they
// feed a vendor tool's text to the module: the tool's CR LF line ends, the
// text loaded into the shared output buffer, CHAR16 text read back, and a
// controller record a backend can run its tool for.
#pragma once

#include <Uefi.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "RaidLib.h"

namespace backend_test {

// "\n" line ends become the "\r\n" that the UEFI tools print.
std::string Crlf(const std::string &Text);
// Text as it stands (one byte per character) in the shared output buffer,
// cut to the buffer; returns the buffer.
CHAR16 *LoadToolBytes(const std::uint8_t *Data, std::size_t Size);
CHAR16 *LoadToolText(const std::string &Text);
// The same with CR LF line ends added.
CHAR16 *LoadToolOutput(const std::string &Text);
// Text of a CHAR16 string (ASCII), "<null>" for NULL.
std::string Narrow(const CHAR16 *Text);

// A controller record from the pool with its private record and a
// capability naming Tool, every list initialised, and its operations
// bound by Bind (none for NULL). Release with RaidLibFreeController.
RAID_CONTROLLER *NewToolController(const char16_t *Tool, const char16_t *Name,
                                   RAID_BIND_BACKEND Bind);

}  // namespace backend_test
