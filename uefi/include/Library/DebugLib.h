// ASSERT(Expression): an invariant the code relies on, checked in debug
// builds (the native test build) and compiled out of release images. It is
// for what the module's own code guarantees, never for what a tool, a file
// or the operator may send: those are checked and handled.
#pragma once

#include <Uefi.h>

// Stops at a broken invariant: the native build traps, so the test run and
// the sanitizers name the place.
[[noreturn]] VOID DebugAssert(const CHAR8 *FileName, UINTN LineNumber,
                              const CHAR8 *Description);

#if defined(NDEBUG)
// Not evaluated, but still compiled: a value kept only for the check is not
// an unused variable in a release image.
#define ASSERT(Expression) ((VOID)sizeof(!(Expression)))
#else
#define ASSERT(Expression)                            \
  do {                                                \
    if (!(Expression)) {                              \
      DebugAssert(__FILE__, __LINE__, #Expression);   \
    }                                                 \
  } while (0)
#endif
