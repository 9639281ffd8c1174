// The string operations the CHAR16 and ASCII families share, written once
// over the character type. Private to the base library: BaseLib.h declares
// the public functions, which are thin wrappers over these.
#pragma once

#include <Uefi.h>

namespace uefi::detail {

// The code unit of a character type as an unsigned value: ASCII bytes
// compare as 00h-FFh whatever the sign of CHAR8.
template <typename CharType>
struct CodeUnit;
template <>
struct CodeUnit<CHAR8> {
  using Type = UINT8;
};
template <>
struct CodeUnit<CHAR16> {
  using Type = CHAR16;
};

// An empty string of the character type, read in place of NULL.
template <typename CharType>
inline constexpr CharType kEmptyString[1] = {0};

// Characters before the terminator, at most MaxLength; 0 for NULL.
template <typename CharType>
[[nodiscard]] UINTN StringLength(const CharType *String, UINTN MaxLength) {
  if (String == nullptr) {
    return 0;
  }
  UINTN Length = 0;
  while (Length < MaxLength && String[Length] != 0) {
    Length++;
  }
  return Length;
}

// Difference of the first code units that differ within Length characters.
template <typename CharType>
[[nodiscard]] INTN CompareStrings(const CharType *First, const CharType *Second,
                                  UINTN Length) {
  using Unit = typename CodeUnit<CharType>::Type;
  const Unit *Left = reinterpret_cast<const Unit *>(
      First != nullptr ? First : kEmptyString<CharType>);
  const Unit *Right = reinterpret_cast<const Unit *>(
      Second != nullptr ? Second : kEmptyString<CharType>);
  for (UINTN Index = 0; Index < Length; Index++) {
    if (Left[Index] != Right[Index] || Left[Index] == 0) {
      return static_cast<INTN>(Left[Index]) - static_cast<INTN>(Right[Index]);
    }
  }
  return 0;
}

// First occurrence of SearchString inside String, or NULL.
template <typename CharType>
[[nodiscard]] CharType *FindString(const CharType *String,
                                   const CharType *SearchString) {
  if (String == nullptr || SearchString == nullptr) {
    return nullptr;
  }
  UINTN SearchLength = StringLength(SearchString, ~static_cast<UINTN>(0));
  for (const CharType *Start = String;; Start++) {
    if (CompareStrings(Start, SearchString, SearchLength) == 0) {
      return const_cast<CharType *>(Start);
    }
    if (*Start == 0) {
      return nullptr;
    }
  }
}

// Upper case of 'a'..'z'.
template <typename CharType>
[[nodiscard]] CharType ToUpper(CharType Char) {
  if (Char >= CharType('a') && Char <= CharType('z')) {
    return static_cast<CharType>(Char - (CharType('a') - CharType('A')));
  }
  return Char;
}

}  // namespace uefi::detail
