// ASCII and UTF-8 text to CHAR16, for hosts that hand tool output and file
// contents to the module.
#include <Library/BaseLib.h>

namespace {

constexpr CHAR16 kReplacementCharacter = 0xFFFD;

// Decodes one UTF-8 sequence starting at Source[0] with Available bytes left.
// Stores the code point (U+FFFD for a malformed start) and returns the bytes
// consumed (at least 1).
[[nodiscard]] UINTN DecodeUtf8(const UINT8 *Source, UINTN Available,
                               UINT32 *CodePoint) {
  UINT8 Lead = Source[0];
  if (Lead < 0x80) {
    *CodePoint = Lead;
    return 1;
  }
  UINTN Length;
  UINT32 Value;
  UINT32 Minimum;
  if ((Lead & 0xE0) == 0xC0) {
    Length = 2, Value = Lead & 0x1F, Minimum = 0x80;
  } else if ((Lead & 0xF0) == 0xE0) {
    Length = 3, Value = Lead & 0x0F, Minimum = 0x800;
  } else if ((Lead & 0xF8) == 0xF0) {
    Length = 4, Value = Lead & 0x07, Minimum = 0x10000;
  } else {
    *CodePoint = kReplacementCharacter;
    return 1;
  }
  if (Length > Available) {
    *CodePoint = kReplacementCharacter;
    return 1;
  }
  for (UINTN Index = 1; Index < Length; Index++) {
    if ((Source[Index] & 0xC0) != 0x80) {
      *CodePoint = kReplacementCharacter;
      return 1;
    }
    Value = (Value << 6) | (Source[Index] & 0x3F);
  }
  bool Surrogate = Value >= 0xD800 && Value <= 0xDFFF;
  if (Value < Minimum || Value > 0x10FFFF || Surrogate) {
    *CodePoint = kReplacementCharacter;
    return 1;
  }
  *CodePoint = Value;
  return Length;
}

// Bytes of Source before a NUL, at most SourceLength.
[[nodiscard]] UINTN BoundedLength(const CHAR8 *Source, UINTN SourceLength) {
  UINTN Length = 0;
  while (Length < SourceLength && Source[Length] != 0) {
    Length++;
  }
  return Length;
}

// Walks the UTF-8 text and writes its UTF-16 form to Destination when it is
// not NULL. Returns the CHAR16 count.
UINTN ConvertUtf8(const CHAR8 *Source, UINTN SourceLength,
                  CHAR16 *Destination) {
  const UINT8 *Bytes = reinterpret_cast<const UINT8 *>(Source);
  UINTN Length = BoundedLength(Source, SourceLength);
  UINTN Count = 0;
  for (UINTN Offset = 0; Offset < Length;) {
    UINT32 CodePoint;
    Offset += DecodeUtf8(Bytes + Offset, Length - Offset, &CodePoint);
    if (CodePoint >= 0x10000) {
      CodePoint -= 0x10000;
      if (Destination != nullptr) {
        Destination[Count] = static_cast<CHAR16>(0xD800 + (CodePoint >> 10));
        Destination[Count + 1] =
            static_cast<CHAR16>(0xDC00 + (CodePoint & 0x3FF));
      }
      Count += 2;
    } else {
      if (Destination != nullptr) {
        Destination[Count] = static_cast<CHAR16>(CodePoint);
      }
      Count++;
    }
  }
  return Count;
}

}  // namespace

// Widens an ASCII (Latin-1) string into Destination.
EFI_STATUS AsciiStrToUnicodeStrS(const CHAR8 *Source, CHAR16 *Destination,
                                 UINTN DestMax) {
  if (Source == nullptr || Destination == nullptr || DestMax == 0) {
    return EFI_INVALID_PARAMETER;
  }
  UINTN Length = BoundedLength(Source, DestMax);
  if (Length >= DestMax) {
    return EFI_BUFFER_TOO_SMALL;
  }
  const CHAR8 *SourceEnd = Source + Length + 1;
  const CHAR8 *DestStart = reinterpret_cast<const CHAR8 *>(Destination);
  const CHAR8 *DestEnd = reinterpret_cast<const CHAR8 *>(Destination + DestMax);
  if (Source < DestEnd && DestStart < SourceEnd) {
    return EFI_ACCESS_DENIED;
  }
  for (UINTN Index = 0; Index < Length; Index++) {
    Destination[Index] = static_cast<UINT8>(Source[Index]);
  }
  Destination[Length] = 0;
  return EFI_SUCCESS;
}

// CHAR16 characters the UTF-8 text converts to.
UINTN Utf8StrToUnicodeLength(const CHAR8 *Source, UINTN SourceLength) {
  if (Source == nullptr) {
    return 0;
  }
  return ConvertUtf8(Source, SourceLength, nullptr);
}

// Converts UTF-8 text into UTF-16 in Destination.
EFI_STATUS Utf8StrToUnicodeStrS(const CHAR8 *Source, UINTN SourceLength,
                                CHAR16 *Destination, UINTN DestMax) {
  if (Source == nullptr || Destination == nullptr || DestMax == 0) {
    return EFI_INVALID_PARAMETER;
  }
  UINTN Needed = ConvertUtf8(Source, SourceLength, nullptr);
  if (Needed >= DestMax) {
    return EFI_BUFFER_TOO_SMALL;
  }
  const CHAR8 *SourceEnd = Source + BoundedLength(Source, SourceLength);
  const CHAR8 *DestStart = reinterpret_cast<const CHAR8 *>(Destination);
  const CHAR8 *DestEnd = reinterpret_cast<const CHAR8 *>(Destination + DestMax);
  if (Source < DestEnd && DestStart < SourceEnd + 1) {
    return EFI_ACCESS_DENIED;
  }
  ConvertUtf8(Source, SourceLength, Destination);
  Destination[Needed] = 0;
  return EFI_SUCCESS;
}
