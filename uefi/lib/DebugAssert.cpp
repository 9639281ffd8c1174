// The end of a broken invariant in a debug build.
#include <Library/DebugLib.h>

VOID DebugAssert(const CHAR8 *FileName, UINTN LineNumber,
                 const CHAR8 *Description) {
  // A freestanding image has nothing to print with before the host's
  // protocols are found; the trap's address names the place to a debugger.
  (VOID)FileName;
  (VOID)LineNumber;
  (VOID)Description;
  __builtin_trap();
}
