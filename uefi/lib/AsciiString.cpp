// ASCII string functions. NULL strings read as empty ones; bytes compare as
// unsigned values.
#include <Library/BaseLib.h>

// Bytes before the terminator; 0 for NULL.
UINTN AsciiStrLen(const CHAR8 *String) {
  if (String == nullptr) {
    return 0;
  }
  UINTN Length = 0;
  while (String[Length] != 0) {
    Length++;
  }
  return Length;
}

// Compares two strings byte by byte.
INTN AsciiStrCmp(const CHAR8 *First, const CHAR8 *Second) {
  return AsciiStrnCmp(First, Second, ~static_cast<UINTN>(0));
}

// Compares at most Length bytes of two strings.
INTN AsciiStrnCmp(const CHAR8 *First, const CHAR8 *Second, UINTN Length) {
  const UINT8 *Left =
      reinterpret_cast<const UINT8 *>(First != nullptr ? First : "");
  const UINT8 *Right =
      reinterpret_cast<const UINT8 *>(Second != nullptr ? Second : "");
  for (UINTN Index = 0; Index < Length; Index++) {
    if (Left[Index] != Right[Index] || Left[Index] == 0) {
      return static_cast<INTN>(Left[Index]) - static_cast<INTN>(Right[Index]);
    }
  }
  return 0;
}

// First occurrence of SearchString inside String, or NULL.
CHAR8 *AsciiStrStr(const CHAR8 *String, const CHAR8 *SearchString) {
  if (String == nullptr || SearchString == nullptr) {
    return nullptr;
  }
  UINTN SearchLength = AsciiStrLen(SearchString);
  for (const CHAR8 *Start = String;; Start++) {
    if (AsciiStrnCmp(Start, SearchString, SearchLength) == 0) {
      return const_cast<CHAR8 *>(Start);
    }
    if (*Start == 0) {
      return nullptr;
    }
  }
}

// Upper case of 'a'..'z'.
CHAR8 AsciiCharToUpper(CHAR8 Char) {
  if (Char >= 'a' && Char <= 'z') {
    return static_cast<CHAR8>(Char - ('a' - 'A'));
  }
  return Char;
}
