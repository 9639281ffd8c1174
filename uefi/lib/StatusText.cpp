// The names firmware prints for status codes (PrintLib's %r).
#include <Library/PrintLib.h>

namespace {

// Error codes 1.. in order (the error bit cleared).
constexpr const CHAR8 *kErrorTexts[] = {
    "Load Error",           "Invalid Parameter",  "Unsupported",
    "Bad Buffer Size",      "Buffer Too Small",   "Not Ready",
    "Device Error",         "Write Protected",    "Out of Resources",
    "Volume Corrupt",       "Volume Full",        "No Media",
    "Media changed",        "Not Found",          "Access Denied",
    "No Response",          "No mapping",         "Time out",
    "Not started",          "Already started",    "Aborted",
    "ICMP Error",           "TFTP Error",         "Protocol Error",
    "Incompatible Version", "Security Violation", "CRC Error",
    "End of Media",         "Reserved (29)",      "Reserved (30)",
    "End of File",          "Invalid Language",   "Compromised Data",
    "IP Address Conflict",  "HTTP Error",
};

// Success and the warning codes 1.. in order.
constexpr const CHAR8 *kWarningTexts[] = {
    "Success",
    "Warning Unknown Glyph",
    "Warning Delete Failure",
    "Warning Write Failure",
    "Warning Buffer Too Small",
    "Warning Stale Data",
    "Warning File System",
    "Warning Reset Required",
};

}  // namespace

// The firmware's text for Status, or NULL when the code has no name (the
// formatter then prints the number).
const CHAR8 *StatusText(EFI_STATUS Status) {
  if (EFI_ERROR(Status)) {
    UINTN Code = Status & ~MAX_BIT;
    if (Code >= 1 && Code <= ARRAY_SIZE(kErrorTexts)) {
      return kErrorTexts[Code - 1];
    }
    return nullptr;
  }
  if (Status < ARRAY_SIZE(kWarningTexts)) {
    return kWarningTexts[Status];
  }
  return nullptr;
}
