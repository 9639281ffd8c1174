// Text helpers the vendor backends use on their tools' output.
#include "RaidLibText.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibRow.h"
#include "RaidLibTrace.h"

namespace {

constexpr UINT64 kMaxUint64 = ~static_cast<UINT64>(0);
// The decimal digits that can never make more than 64 bits.
constexpr UINTN kUncheckedDigits = 19;

// TRUE when Char is one of the NUL-terminated Delimiters.
[[nodiscard]] bool IsDelimiter(CHAR16 Char, const CHAR16 *Delimiters) {
  if (Delimiters == nullptr) {
    return false;
  }
  for (const CHAR16 *Cursor = Delimiters; *Cursor != 0; Cursor++) {
    if (*Cursor == Char) {
      return true;
    }
  }
  return false;
}

// Skips the blanks and tabs that may precede a number.
[[nodiscard]] const CHAR16 *SkipBlanks(const CHAR16 *Text) {
  while (*Text == u' ' || *Text == u'\t') {
    Text++;
  }
  return Text;
}

[[nodiscard]] bool IsDecimalDigit(CHAR16 Char) {
  return Char >= u'0' && Char <= u'9';
}

// Value of a hexadecimal digit, or -1.
INT32 HexDigitValue(CHAR16 Char) {
  if (IsDecimalDigit(Char)) {
    return Char - u'0';
  }
  if (Char >= u'a' && Char <= u'f') {
    return Char - u'a' + 10;
  }
  if (Char >= u'A' && Char <= u'F') {
    return Char - u'A' + 10;
  }
  return -1;
}

// Value * Radix + Digit, or the largest value when that overflows.
[[nodiscard]] UINT64 AppendDigit(UINT64 Value, UINT32 Radix, UINT32 Digit) {
  if (Value > (kMaxUint64 - Digit) / Radix) {
    return kMaxUint64;
  }
  return Value * Radix + Digit;
}

// Reads the run of decimal digits at *Text, moving *Text past it. Counts
// the digits in *DigitCount when it is not NULL.
[[nodiscard]] UINT64 ReadDigits(const CHAR16 **Text, UINTN *DigitCount) {
  UINT64 Value = 0;
  UINTN Count = 0;
  for (; IsDecimalDigit(**Text); (*Text)++) {
    const UINT32 Digit = static_cast<UINT32>(**Text - u'0');
    // Nineteen digits always fit 64 bits; only a longer run is checked.
    Value = Count < kUncheckedDigits ? Value * 10 + Digit
                                     : AppendDigit(Value, 10, Digit);
    Count++;
  }
  if (DigitCount != nullptr) {
    *DigitCount = Count;
  }
  return Value;
}

// TRUE when the two strings are equal; NULL equals nothing.
[[nodiscard]] bool Equals(const CHAR16 *Text, const CHAR16 *Word) {
  return RaidLibWordIs(Text, Word) != FALSE;
}

}  // namespace

// TRUE when Needle occurs in Line: the needle's first character is looked
// for, and the rest compared only there.
BOOLEAN RaidLibContains(const CHAR16 *Line, const CHAR16 *Needle) {
  if (Line == nullptr || Needle == nullptr) {
    return FALSE;
  }
  const CHAR16 First = Needle[0];
  if (First == 0) {
    return TRUE;
  }
  for (const CHAR16 *Start = Line; *Start != 0; Start++) {
    if (*Start != First) {
      continue;
    }
    UINTN Index = 1;
    while (Needle[Index] != 0 && Start[Index] == Needle[Index]) {
      Index++;
    }
    if (Needle[Index] == 0) {
      return TRUE;
    }
  }
  return FALSE;
}

namespace {

// The needles of Set not yet in Found that occur at At with their anchor,
// At lying Before characters into its line.
[[nodiscard]] UINT32 NeedlesAnchoredAt(const CHAR16 *At, UINTN Before,
                                       const RAID_NEEDLES &Set, UINT32 Found) {
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    const UINTN Anchor = Set.AnchorAt[Index];
    if (*At == Set.Anchor[Index] && (Found & (1U << Index)) == 0 &&
        Anchor <= Before &&
        RaidLibStartsWith(At - Anchor, Set.Needles[Index])) {
      Found |= 1U << Index;
    }
  }
  return Found;
}

[[nodiscard]] UINT32 AllNeedles(const RAID_NEEDLES &Set) {
  return Set.Count >= 32 ? ~0U : (1U << Set.Count) - 1;
}

}  // namespace

// The terminator's bit joins the anchors', so that the loop over the
// characters that anchor nothing makes one test per character.
UINT32 RaidLibContainsEach(const CHAR16 *Line, const RAID_NEEDLES &Set) {
  if (Line == nullptr) {
    return 0;
  }
  const UINT32 All = AllNeedles(Set);
  const UINT64 Stops = Set.Anchors | 1;
  UINT32 Found = 0;
  for (const CHAR16 *At = Line;; At++) {
    if (((Stops >> (*At & 63)) & 1) == 0) {
      continue;
    }
    if (*At == 0) {
      break;
    }
    Found = NeedlesAnchoredAt(At, static_cast<UINTN>(At - Line), Set, Found);
    if (Found == All) {
      break;
    }
  }
  return Found;
}

UINT32 RaidLibContainsEachIn(const CHAR16 *Line, UINTN Chars,
                             const RAID_NEEDLES &Set) {
  if (Line == nullptr) {
    return 0;
  }
  const UINT32 All = AllNeedles(Set);
  const UINT64 Stops = Set.Anchors | 1;
  // When no anchor's low six bits reach 32 (capitals, as keys begin), a
  // character with bit 5 (blanks, digits, small letters: most of a line)
  // anchors nothing, and four such are passed with one test.
  constexpr UINT64 kBit5 = 0x0020002000200020ULL;
  const bool Bit5Passes = (Stops >> 32) == 0;
  const CHAR16 *End = Line + Chars;
  UINT32 Found = 0;
  for (const CHAR16 *At = Line; At < End;) {
    if (End - At >= 4) {
      UINT64 Word;
      __builtin_memcpy(&Word, At, sizeof(Word));
      if ((Bit5Passes && (Word & kBit5) == kBit5) ||
          (((Stops >> (At[0] & 63)) | (Stops >> (At[1] & 63)) |
            (Stops >> (At[2] & 63)) | (Stops >> (At[3] & 63))) &
           1) == 0) {
        At += 4;
        continue;
      }
    }
    const CHAR16 *Stop = End - At >= 4 ? At + 4 : End;
    for (; At < Stop; At++) {
      if (((Stops >> (*At & 63)) & 1) == 0) {
        continue;
      }
      if (*At == 0) {
        return Found;
      }
      Found = NeedlesAnchoredAt(At, static_cast<UINTN>(At - Line), Set, Found);
      if (Found == All) {
        return Found;
      }
    }
  }
  return Found;
}

// Strips white space from both ends of Line in place.
CHAR16 *RaidLibTrim(CHAR16 *Line) {
  if (Line == nullptr) {
    return nullptr;
  }
  UINTN Start = 0;
  while (Line[Start] != 0 && RaidLibIsSpace(Line[Start])) {
    Start++;
  }
  UINTN End = Start + StrLen(Line + Start);
  while (End > Start && RaidLibIsSpace(Line[End - 1])) {
    End--;
  }
  UINTN Length = End - Start;
  if (Start != 0) {
    CopyMem(Line, Line + Start, Length * sizeof(CHAR16));
  }
  Line[Length] = 0;
  return Line;
}

// Returns the next token of Line (or of the text behind *SavePtr).
CHAR16 *RaidLibTokenize(CHAR16 *Line, const CHAR16 *Delimiters,
                        CHAR16 **SavePtr) {
  if (SavePtr == nullptr) {
    return nullptr;
  }
  CHAR16 *Cursor = Line != nullptr ? Line : *SavePtr;
  if (Cursor == nullptr) {
    return nullptr;
  }
  while (*Cursor != 0 && IsDelimiter(*Cursor, Delimiters)) {
    Cursor++;
  }
  if (*Cursor == 0) {
    *SavePtr = Cursor;
    return nullptr;
  }
  CHAR16 *Token = Cursor;
  while (*Cursor != 0 && !IsDelimiter(*Cursor, Delimiters)) {
    Cursor++;
  }
  if (*Cursor != 0) {
    *Cursor++ = 0;
  }
  *SavePtr = Cursor;
  return Token;
}

// The tokens of Line in a NULL-terminated pool array.
CHAR16 **RaidLibSplit(CHAR16 *Line, const CHAR16 *Delimiters) {
  CHAR16 **Tokens = static_cast<CHAR16 **>(AllocateZeroPool(sizeof(CHAR16 *)));
  if (Tokens == nullptr) {
    return nullptr;
  }
  UINTN Count = 0;
  CHAR16 *Position = nullptr;
  for (CHAR16 *Token = RaidLibTokenize(Line, Delimiters, &Position);
       Token != nullptr; Token = RaidLibTokenize(nullptr, Delimiters, &Position)) {
    CHAR16 **Grown =
        static_cast<CHAR16 **>(AllocatePool((Count + 2) * sizeof(CHAR16 *)));
    if (Grown == nullptr) {
      FreePool(Tokens);
      return nullptr;
    }
    CopyMem(Grown, Tokens, Count * sizeof(CHAR16 *));
    Grown[Count++] = Token;
    Grown[Count] = nullptr;
    FreePool(Tokens);
    Tokens = Grown;
  }
  return Tokens;
}

// Releases a RaidLibSplit array.
VOID RaidLibFreeSplit(CHAR16 **Tokens) { FreePool(Tokens); }

// Reads "whole.fraction" as thousandths.
UINT64 RaidLibReadThousandths(const CHAR16 *Text) {
  if (Text == nullptr) {
    return 0;
  }
  const CHAR16 *Cursor = SkipBlanks(Text);
  UINT64 Whole = ReadDigits(&Cursor, nullptr);
  UINT64 Fraction = 0;
  if (*Cursor == u'.') {
    Cursor++;
    UINTN Digits = 0;
    Fraction = ReadDigits(&Cursor, &Digits);
    if (Digits > 3) {
      return 0;
    }
    for (; Digits < 3; Digits++) {
      Fraction *= 10;
    }
  }
  // A fraction is below 1000, so only a whole part this large may overflow.
  if (Whole > (kMaxUint64 - 999) / 1000 &&
      Whole > (kMaxUint64 - Fraction) / 1000) {
    return kMaxUint64;
  }
  return Whole * 1000 + Fraction;
}

// "MB" 0, "GB" 1, "TB" 2, else 3.
UINT32 RaidLibUnitCode(const CHAR16 *Unit) {
  if (Equals(Unit, u"MB")) {
    return 0;
  }
  if (Equals(Unit, u"GB")) {
    return 1;
  }
  if (Equals(Unit, u"TB")) {
    return 2;
  }
  return 3;
}

// Media type code of an interface and medium pair.
UINT32 RaidLibMediaCode(const CHAR16 *Interface, const CHAR16 *Medium) {
  bool Hdd = Equals(Medium, u"HDD");
  bool Ssd = Equals(Medium, u"SSD");
  if (Equals(Interface, u"SATA")) {
    return Hdd ? 0 : Ssd ? 1 : 5;
  }
  if (Equals(Interface, u"SAS")) {
    return Hdd ? 2 : Ssd ? 3 : 5;
  }
  if (Equals(Interface, u"PCIe") || Equals(Interface, u"NVMe")) {
    return Ssd ? 4 : 5;
  }
  return 5;
}

// Reads leading decimal digits.
UINT64 RaidLibReadDecimal(const CHAR16 *Text) {
  if (Text == nullptr) {
    return 0;
  }
  const CHAR16 *Cursor = SkipBlanks(Text);
  return ReadDigits(&Cursor, nullptr);
}

namespace {

constexpr UINT64 kMaxUint32 = 0xFFFFFFFFU;

// Reads the text at Text up to the first Stop or terminator as an id, in
// one pass (no length is taken first); *End is where it stopped. FALSE for
// no digits, any other character, or a value past 32 bits.
[[nodiscard]] bool ReadIdUpTo(const CHAR16 *Text, CHAR16 Stop, UINT32 *Id,
                              const CHAR16 **End) {
  UINT64 Value = 0;
  const CHAR16 *At = Text;
  for (; *At != 0 && *At != Stop; At++) {
    if (!IsDecimalDigit(*At)) {
      return false;
    }
    Value = Value * 10 + static_cast<UINT64>(*At - u'0');
    if (Value > kMaxUint32) {
      return false;
    }
  }
  *End = At;
  if (At == Text) {
    return false;
  }
  *Id = static_cast<UINT32>(Value);
  return true;
}

}  // namespace

// An exact 32-bit id, or nothing.
BOOLEAN RaidLibReadId(const CHAR16 *Word, UINT32 *Id) {
  const CHAR16 *End = nullptr;
  return (Word != nullptr && ReadIdUpTo(Word, 0, Id, &End)) ? TRUE : FALSE;
}

// Two exact ids around the first Separator.
BOOLEAN RaidLibReadIdPair(const CHAR16 *Word, CHAR16 Separator, UINT32 *First,
                          UINT32 *Second) {
  if (Word == nullptr) {
    return FALSE;
  }
  // The first part stops at the first Separator; the second runs to the
  // word's end, where a further Separator is read as any other character.
  UINT32 Left = 0;
  UINT32 Right = 0;
  const CHAR16 *Split = nullptr;
  const CHAR16 *End = nullptr;
  if (!ReadIdUpTo(Word, Separator, &Left, &Split) || *Split == 0 ||
      !ReadIdUpTo(Split + 1, 0, &Right, &End)) {
    return FALSE;
  }
  *First = Left;
  *Second = Right;
  return TRUE;
}

// Formats, and tells whether the text was cut.
BOOLEAN RaidLibVFormat(CHAR16 *Buffer, UINTN BufferChars, const CHAR16 *Format,
                       VA_LIST Marker) {
  VA_LIST Counted;
  VA_COPY(Counted, Marker);
  UINTN Length = SPrintLength(Format, Counted);
  VA_END(Counted);
  if (Buffer == nullptr || BufferChars == 0) {
    return FALSE;
  }
  UnicodeVSPrint(Buffer, BufferChars * sizeof(CHAR16), Format, Marker);
  return Length < BufferChars ? TRUE : FALSE;
}

BOOLEAN EFIAPI RaidLibFormat(CHAR16 *Buffer, UINTN BufferChars,
                             const CHAR16 *Format, ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  BOOLEAN Whole = RaidLibVFormat(Buffer, BufferChars, Format, Marker);
  VA_END(Marker);
  return Whole;
}

// Reads a hexadecimal number with an optional "0x".
UINT64 RaidLibReadHex(const CHAR16 *Text) {
  if (Text == nullptr) {
    return 0;
  }
  const CHAR16 *Cursor = SkipBlanks(Text);
  bool SawZero = false;
  while (*Cursor == u'0') {
    Cursor++;
    SawZero = true;
  }
  if (SawZero && (*Cursor == u'x' || *Cursor == u'X')) {
    Cursor++;
  }
  UINT64 Value = 0;
  for (; HexDigitValue(*Cursor) >= 0; Cursor++) {
    Value = AppendDigit(Value, 16, static_cast<UINT32>(HexDigitValue(*Cursor)));
  }
  return Value;
}

// A pool copy of Source.
CHAR16 *AllocDestStr(const CHAR16 *Source) {
  if (Source == nullptr) {
    return nullptr;
  }
  CHAR16 *Copy =
      static_cast<CHAR16 *>(AllocateCopyPool(StrSize(Source), Source));
  if (Copy == nullptr) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Out of resource\n");
  }
  return Copy;
}

// A pool copy of an optional text into *Copy.
BOOLEAN RaidLibCopyText(const CHAR16 *Text, CHAR16 **Copy) {
  *Copy = AllocDestStr(Text);
  return Text == nullptr || *Copy != nullptr;
}
