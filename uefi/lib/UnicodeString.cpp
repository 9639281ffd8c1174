// CHAR16 string functions. NULL strings read as empty ones.
#include <Library/BaseLib.h>

#include "CharString.h"

namespace text = uefi::detail;

namespace {

// True when the CHAR16 ranges [A, A + ACount) and [B, B + BCount) share
// memory.
[[nodiscard]] bool Overlaps(const CHAR16 *A, UINTN ACount, const CHAR16 *B,
                            UINTN BCount) {
  return (A <= B && B < A + ACount) || (B <= A && A < B + BCount);
}

}  // namespace

// Characters before the terminator; 0 for NULL.
UINTN StrLen(const CHAR16 *String) {
  return text::StringLength(String, ~static_cast<UINTN>(0));
}

// Characters before the terminator, at most MaxSize.
UINTN StrnLenS(const CHAR16 *String, UINTN MaxSize) {
  return text::StringLength(String, MaxSize);
}

// Bytes of the string with its terminator; 0 for NULL.
UINTN StrSize(const CHAR16 *String) {
  if (String == nullptr) {
    return 0;
  }
  return (StrLen(String) + 1) * sizeof(CHAR16);
}

// Compares two strings character by character.
INTN StrCmp(const CHAR16 *First, const CHAR16 *Second) {
  return StrnCmp(First, Second, ~static_cast<UINTN>(0));
}

// Compares at most Length characters of two strings.
INTN StrnCmp(const CHAR16 *First, const CHAR16 *Second, UINTN Length) {
  return text::CompareStrings(First, Second, Length);
}

// First occurrence of SearchString inside String, or NULL.
CHAR16 *StrStr(const CHAR16 *String, const CHAR16 *SearchString) {
  return text::FindString(String, SearchString);
}

// Copies Source into Destination of DestMax characters.
EFI_STATUS StrCpyS(CHAR16 *Destination, UINTN DestMax, const CHAR16 *Source) {
  if (Destination == nullptr || Source == nullptr || DestMax == 0) {
    return EFI_INVALID_PARAMETER;
  }
  UINTN SourceLength = StrnLenS(Source, DestMax);
  if (SourceLength >= DestMax) {
    return EFI_BUFFER_TOO_SMALL;
  }
  if (Overlaps(Destination, DestMax, Source, SourceLength + 1)) {
    return EFI_ACCESS_DENIED;
  }
  for (UINTN Index = 0; Index < SourceLength; Index++) {
    Destination[Index] = Source[Index];
  }
  Destination[SourceLength] = 0;
  return EFI_SUCCESS;
}

// Appends Source to the string in Destination of DestMax characters.
EFI_STATUS StrCatS(CHAR16 *Destination, UINTN DestMax, const CHAR16 *Source) {
  if (Destination == nullptr || Source == nullptr || DestMax == 0) {
    return EFI_INVALID_PARAMETER;
  }
  UINTN DestLength = StrnLenS(Destination, DestMax);
  if (DestLength == DestMax) {
    return EFI_BAD_BUFFER_SIZE;
  }
  UINTN Room = DestMax - DestLength;
  UINTN SourceLength = StrnLenS(Source, Room);
  if (SourceLength >= Room) {
    return EFI_BUFFER_TOO_SMALL;
  }
  if (Overlaps(Destination, DestMax, Source, SourceLength + 1)) {
    return EFI_ACCESS_DENIED;
  }
  for (UINTN Index = 0; Index < SourceLength; Index++) {
    Destination[DestLength + Index] = Source[Index];
  }
  Destination[DestLength + SourceLength] = 0;
  return EFI_SUCCESS;
}

// Upper case of 'a'..'z'.
CHAR16 CharToUpper(CHAR16 Char) { return text::ToUpper(Char); }
