// Running storcli with command lines longer than the core runner's 100
// characters (a create command names every drive of the new array).
#include "LsiBackend.h"
#include "RaidLibToolRunner.h"

namespace lsi {

// Formats the command into a buffer of BufferChars characters (at most the
// create command's), traces it and runs it into the shared output buffer.
EFI_STATUS EFIAPI LsiRunToolInto(const CHAR8 *Caller, UINTN BufferChars,
                                 UINT32 *ErrorCode, const CHAR16 *Format,
                                 ...) {
  if (BufferChars > LSI_CREATE_COMMAND_CHARS) {
    BufferChars = LSI_CREATE_COMMAND_CHARS;
  }
  VA_LIST Marker;
  VA_START(Marker, Format);
  EFI_STATUS Status =
      RaidLibRunToolWithLength(Caller, BufferChars, ErrorCode, Format, Marker);
  VA_END(Marker);
  return Status;
}

}  // namespace lsi
