// CHAR16 string functions. NULL strings read as empty ones.
#include <Library/BaseLib.h>

namespace {

// True when the CHAR16 ranges [A, A + ACount) and [B, B + BCount) share
// memory.
bool Overlaps(const CHAR16 *A, UINTN ACount, const CHAR16 *B, UINTN BCount) {
  return (A <= B && B < A + ACount) || (B <= A && A < B + BCount);
}

}  // namespace

// Characters before the terminator; 0 for NULL.
UINTN StrLen(const CHAR16 *String) {
  if (String == nullptr) {
    return 0;
  }
  UINTN Length = 0;
  while (String[Length] != 0) {
    Length++;
  }
  return Length;
}

// Characters before the terminator, at most MaxSize.
UINTN StrnLenS(const CHAR16 *String, UINTN MaxSize) {
  if (String == nullptr) {
    return 0;
  }
  UINTN Length = 0;
  while (Length < MaxSize && String[Length] != 0) {
    Length++;
  }
  return Length;
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
  const CHAR16 *Left = First != nullptr ? First : u"";
  const CHAR16 *Right = Second != nullptr ? Second : u"";
  for (UINTN Index = 0; Index < Length; Index++) {
    if (Left[Index] != Right[Index] || Left[Index] == 0) {
      return static_cast<INTN>(Left[Index]) - static_cast<INTN>(Right[Index]);
    }
  }
  return 0;
}

// First occurrence of SearchString inside String, or NULL.
CHAR16 *StrStr(const CHAR16 *String, const CHAR16 *SearchString) {
  if (String == nullptr || SearchString == nullptr) {
    return nullptr;
  }
  UINTN SearchLength = StrLen(SearchString);
  for (const CHAR16 *Start = String;; Start++) {
    if (StrnCmp(Start, SearchString, SearchLength) == 0) {
      return const_cast<CHAR16 *>(Start);
    }
    if (*Start == 0) {
      return nullptr;
    }
  }
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
CHAR16 CharToUpper(CHAR16 Char) {
  if (Char >= u'a' && Char <= u'z') {
    return static_cast<CHAR16>(Char - (u'a' - u'A'));
  }
  return Char;
}
