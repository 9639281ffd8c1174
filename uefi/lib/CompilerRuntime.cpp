// The few C runtime symbols the compiler emits calls to in a freestanding
// PE image (block copies, struct initialisation, comparisons), and the
// marker that floating point is in use. Built only into the EFI image; the
// native build takes them from the C library.
//
// no_builtin keeps the optimiser from turning these loops back into calls
// to themselves.
#include <Uefi.h>

extern "C" {

constinit int _fltused = 0;

__attribute__((no_builtin)) void *memcpy(void *Destination, const void *Source,
                                         size_t Length) {
  UINT8 *To = static_cast<UINT8 *>(Destination);
  const UINT8 *From = static_cast<const UINT8 *>(Source);
  for (size_t Index = 0; Index < Length; Index++) {
    To[Index] = From[Index];
  }
  return Destination;
}

__attribute__((no_builtin)) void *memmove(void *Destination, const void *Source,
                                          size_t Length) {
  UINT8 *To = static_cast<UINT8 *>(Destination);
  const UINT8 *From = static_cast<const UINT8 *>(Source);
  if (To < From) {
    for (size_t Index = 0; Index < Length; Index++) {
      To[Index] = From[Index];
    }
  } else if (To > From) {
    for (size_t Index = Length; Index > 0; Index--) {
      To[Index - 1] = From[Index - 1];
    }
  }
  return Destination;
}

__attribute__((no_builtin)) void *memset(void *Buffer, int Value,
                                         size_t Length) {
  UINT8 *To = static_cast<UINT8 *>(Buffer);
  for (size_t Index = 0; Index < Length; Index++) {
    To[Index] = static_cast<UINT8>(Value);
  }
  return Buffer;
}

__attribute__((no_builtin)) int memcmp(const void *A, const void *B,
                                       size_t Length) {
  const UINT8 *Left = static_cast<const UINT8 *>(A);
  const UINT8 *Right = static_cast<const UINT8 *>(B);
  for (size_t Index = 0; Index < Length; Index++) {
    if (Left[Index] != Right[Index]) {
      return static_cast<int>(Left[Index]) - static_cast<int>(Right[Index]);
    }
  }
  return 0;
}

}  // extern "C"
