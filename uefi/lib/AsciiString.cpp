// ASCII string functions. NULL strings read as empty ones; bytes compare as
// unsigned values.
#include <Library/BaseLib.h>

#include "CharString.h"

namespace text = uefi::detail;

// Bytes before the terminator; 0 for NULL.
UINTN AsciiStrLen(const CHAR8 *String) {
  return text::StringLength(String, ~static_cast<UINTN>(0));
}

// Compares two strings byte by byte.
INTN AsciiStrCmp(const CHAR8 *First, const CHAR8 *Second) {
  return AsciiStrnCmp(First, Second, ~static_cast<UINTN>(0));
}

// Compares at most Length bytes of two strings.
INTN AsciiStrnCmp(const CHAR8 *First, const CHAR8 *Second, UINTN Length) {
  return text::CompareStrings(First, Second, Length);
}

// First occurrence of SearchString inside String, or NULL.
CHAR8 *AsciiStrStr(const CHAR8 *String, const CHAR8 *SearchString) {
  return text::FindString(String, SearchString);
}

// Upper case of 'a'..'z'.
CHAR8 AsciiCharToUpper(CHAR8 Char) { return text::ToUpper(Char); }
