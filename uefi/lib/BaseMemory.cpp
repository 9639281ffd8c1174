// Memory copy, fill and compare. The builtins become calls to the C runtime
// natively and to CompilerRuntime.cpp in the EFI image.
#include <Library/BaseMemoryLib.h>

// Copies Length bytes; the areas may overlap. Returns Destination.
VOID *CopyMem(VOID *Destination, const VOID *Source, UINTN Length) {
  if (Length == 0 || Destination == Source) {
    return Destination;
  }
  return __builtin_memmove(Destination, Source, Length);
}

// Fills Length bytes with Value. Returns Buffer.
VOID *SetMem(VOID *Buffer, UINTN Length, UINT8 Value) {
  if (Length == 0) {
    return Buffer;
  }
  return __builtin_memset(Buffer, Value, Length);
}

// Fills Length bytes with zeros. Returns Buffer.
VOID *ZeroMem(VOID *Buffer, UINTN Length) { return SetMem(Buffer, Length, 0); }

// Difference of the first differing bytes (as unsigned values); 0 when the
// Length bytes are equal.
INTN CompareMem(const VOID *A, const VOID *B, UINTN Length) {
  const UINT8 *Left = static_cast<const UINT8 *>(A);
  const UINT8 *Right = static_cast<const UINT8 *>(B);
  for (UINTN Index = 0; Index < Length; Index++) {
    if (Left[Index] != Right[Index]) {
      return static_cast<INTN>(Left[Index]) - static_cast<INTN>(Right[Index]);
    }
  }
  return 0;
}
