// The formatter behind PrintLib: one engine for CHAR16 and ASCII formats
// writing CHAR16 or ASCII output, with EDK2's conversions and quirks:
//   - %x and %X print upper-case digits; %X also implies zero padding to the
//     width, %p is %X of a 64-bit value (no width of its own);
//   - %s and %S both take CHAR16 strings, %a takes an ASCII string, in either
//     kind of format; a NULL string prints "<null string>", a NULL GUID
//     "<null guid>";
//   - %g prints a GUID as 8-4-4-4-12 upper-case hex digits;
//   - %r prints the status name, or the status's low 32 bits as %08X;
//   - "\n" in the format becomes "\r\n" (so does "\n\r"); "\r\n" stays;
//   - an unknown conversion character (and %%) prints the character itself.
// Characters beyond U+00FF written into ASCII output become '?'.
#include <Library/PrintLib.h>

namespace {

// Conversion flags.
constexpr UINT32 kLeftJustify = 1u << 0;
constexpr UINT32 kZeroPad = 1u << 1;
constexpr UINT32 kLong = 1u << 2;
constexpr UINT32 kPlusSign = 1u << 3;
constexpr UINT32 kBlankSign = 1u << 4;
constexpr UINT32 kHasWidth = 1u << 5;
constexpr UINT32 kHasPrecision = 1u << 6;

// Widths and precisions beyond this are taken as this (the output buffer
// ends long before).
constexpr UINTN kMaximumWidth = 0x7FFFFFFF;

constexpr CHAR8 kHexDigits[] = "0123456789ABCDEF";

[[nodiscard]] UINT32 CharCode(CHAR8 Char) { return static_cast<UINT8>(Char); }
UINT32 CharCode(CHAR16 Char) { return Char; }

// A bounded output buffer of OutChar characters that always keeps room for
// the terminator and silently drops what does not fit.
template <typename OutChar>
class Output {
 public:
  Output(OutChar *Buffer, UINTN BufferSize) : Buffer_(Buffer) {
    UINTN Capacity = Buffer == nullptr ? 0 : BufferSize / sizeof(OutChar);
    Limit_ = Capacity == 0 ? 0 : Capacity - 1;
    Terminate_ = Capacity != 0;
  }

  // An output without storage that only counts what would be written.
  [[nodiscard]] static Output Counter() {
    Output Out(nullptr, 0);
    Out.Limit_ = ~static_cast<UINTN>(0);
    return Out;
  }

  [[nodiscard]] bool Full() const { return Count_ >= Limit_; }

  void Put(UINT32 Char) {
    if (Count_ < Limit_) {
      if (Buffer_ != nullptr) {
        Buffer_[Count_] = Narrow(Char);
      }
      Count_++;
    }
  }

  void Repeat(UINT32 Char, UINTN Times) {
    if (Times > Limit_ - Count_) {
      Times = Limit_ - Count_;
    }
    if (Buffer_ == nullptr) {
      Count_ += Times;  // A counter need not write a width's blanks one by one.
      return;
    }
    for (UINTN Index = 0; Index < Times; Index++) {
      Put(Char);
    }
  }

  // Writes the terminator and returns the characters written before it.
  [[nodiscard]] UINTN Finish() {
    if (Terminate_) {
      Buffer_[Count_] = 0;
    }
    return Count_;
  }

 private:
  [[nodiscard]] static OutChar Narrow(UINT32 Char) {
    if (sizeof(OutChar) == 1 && Char > 0xFF) {
      return static_cast<OutChar>('?');
    }
    return static_cast<OutChar>(Char);
  }

  OutChar *Buffer_;
  UINTN Limit_ = 0;
  UINTN Count_ = 0;
  bool Terminate_ = false;
};

// One conversion's flags, width and precision.
struct Spec {
  UINT32 Flags = 0;
  UINTN Width = 0;
  UINTN Precision = 0;
};

// The characters a conversion produces: an ASCII or a CHAR16 run.
struct Text {
  const CHAR8 *Narrow = nullptr;
  const CHAR16 *Wide = nullptr;
  UINTN Length = 0;

  [[nodiscard]] UINT32 At(UINTN Index) const {
    return Wide != nullptr ? Wide[Index] : static_cast<UINT8>(Narrow[Index]);
  }
};

// Text of the NUL-terminated string, at most MaxLength characters long.
template <typename Char>
[[nodiscard]] UINTN BoundedLength(const Char *String, UINTN MaxLength) {
  UINTN Length = 0;
  while (Length < MaxLength && String[Length] != 0) {
    Length++;
  }
  return Length;
}

[[nodiscard]] Text NarrowText(const CHAR8 *String, const Spec &Conversion) {
  Text Result;
  Result.Narrow = String != nullptr ? String : "<null string>";
  UINTN Max = (Conversion.Flags & kHasPrecision) != 0 ? Conversion.Precision
                                                      : ~static_cast<UINTN>(0);
  Result.Length = BoundedLength(Result.Narrow, Max);
  return Result;
}

[[nodiscard]] Text WideText(const CHAR16 *String, const Spec &Conversion) {
  if (String == nullptr) {
    return NarrowText(nullptr, Conversion);
  }
  Text Result;
  Result.Wide = String;
  UINTN Max = (Conversion.Flags & kHasPrecision) != 0 ? Conversion.Precision
                                                      : ~static_cast<UINTN>(0);
  Result.Length = BoundedLength(String, Max);
  return Result;
}

// Writes Value as Digits upper-case hex digits into Buffer.
CHAR8 *PutHex(CHAR8 *Buffer, UINT64 Value, UINTN Digits) {
  for (UINTN Index = Digits; Index > 0; Index--) {
    Buffer[Index - 1] = kHexDigits[Value & 0xF];
    Value >>= 4;
  }
  return Buffer + Digits;
}

// "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX" into Buffer of 37 bytes.
VOID FormatGuid(const EFI_GUID &Guid, CHAR8 (&Buffer)[37]) {
  CHAR8 *Cursor = PutHex(Buffer, Guid.Data1, 8);
  *Cursor++ = '-';
  Cursor = PutHex(Cursor, Guid.Data2, 4);
  *Cursor++ = '-';
  Cursor = PutHex(Cursor, Guid.Data3, 4);
  *Cursor++ = '-';
  for (UINTN Index = 0; Index < 8; Index++) {
    if (Index == 2) {
      *Cursor++ = '-';
    }
    Cursor = PutHex(Cursor, Guid.Data4[Index], 2);
  }
  *Cursor = 0;
}

// Writes Body padded with blanks to the conversion's width.
template <typename OutChar>
VOID PutPadded(Output<OutChar> &Out, const Text &Body, const Spec &Conversion) {
  UINTN Pad = Conversion.Width > Body.Length ? Conversion.Width - Body.Length
                                             : 0;
  if ((Conversion.Flags & kLeftJustify) == 0) {
    Out.Repeat(' ', Pad);
  }
  for (UINTN Index = 0; Index < Body.Length && !Out.Full(); Index++) {
    Out.Put(Body.At(Index));
  }
  if ((Conversion.Flags & kLeftJustify) != 0) {
    Out.Repeat(' ', Pad);
  }
}

// Writes a number: sign, zeros up to the precision (or, with zero padding
// and no precision, up to the width), digits, blanks up to the width.
template <typename OutChar>
VOID PutNumber(Output<OutChar> &Out, UINT64 Magnitude, CHAR8 Sign, UINT32 Radix,
               Spec Conversion) {
  CHAR8 Digits[24];
  UINTN DigitCount = 0;
  for (UINT64 Rest = Magnitude; Rest != 0; Rest /= Radix) {
    Digits[DigitCount++] = kHexDigits[Rest % Radix];
  }
  UINTN MinimumDigits = 1;
  if ((Conversion.Flags & kHasPrecision) != 0) {
    MinimumDigits = Conversion.Precision;
  } else if ((Conversion.Flags & (kZeroPad | kLeftJustify | kHasWidth)) ==
             (kZeroPad | kHasWidth)) {
    MinimumDigits = Conversion.Width - (Sign != 0 ? 1 : 0);
  }
  UINTN Zeros = MinimumDigits > DigitCount ? MinimumDigits - DigitCount : 0;
  UINTN Length = (Sign != 0 ? 1 : 0) + Zeros + DigitCount;
  UINTN Pad = Conversion.Width > Length ? Conversion.Width - Length : 0;
  if ((Conversion.Flags & kLeftJustify) == 0) {
    Out.Repeat(' ', Pad);
  }
  if (Sign != 0) {
    Out.Put(static_cast<UINT8>(Sign));
  }
  Out.Repeat('0', Zeros);
  while (DigitCount > 0 && !Out.Full()) {
    Out.Put(static_cast<UINT8>(Digits[--DigitCount]));
  }
  if ((Conversion.Flags & kLeftJustify) != 0) {
    Out.Repeat(' ', Pad);
  }
}

// %d %i %u %x %X %p: reads the argument (int, or INT64 with 'l') and
// writes it.
template <typename OutChar>
VOID ConvertNumber(Output<OutChar> &Out, UINT32 Type, Spec Conversion,
                   VA_LIST &Marker) {
  if (Type == 'p') {
    Conversion.Flags &= ~(kPlusSign | kBlankSign | kZeroPad);
    Conversion.Flags |= kLong;
  }
  if (Type == 'p' || Type == 'X') {
    Conversion.Flags |= kZeroPad;
  }
  bool Long = (Conversion.Flags & kLong) != 0;
  INT64 Value = Long ? VA_ARG(Marker, INT64) : VA_ARG(Marker, int);
  bool Signed = Type == 'd' || Type == 'i';
  UINT64 Magnitude = static_cast<UINT64>(Value);
  if (!Long && !Signed) {
    Magnitude = static_cast<UINT32>(Value);
  }
  CHAR8 Sign = 0;
  if (Signed) {
    if (Value < 0) {
      Sign = '-';
      Magnitude = 0 - Magnitude;
    } else if ((Conversion.Flags & kPlusSign) != 0) {
      Sign = '+';
    } else if ((Conversion.Flags & kBlankSign) != 0) {
      Sign = ' ';
    }
  }
  UINT32 Radix = (Type == 'd' || Type == 'i' || Type == 'u') ? 10 : 16;
  PutNumber(Out, Magnitude, Sign, Radix, Conversion);
}

// Reads a '*' width or precision argument. EDK2 passes UINTN, callers often
// int; every variadic slot is 64 bits wide, so the low half serves both.
[[nodiscard]] UINTN StarArgument(VA_LIST &Marker) {
  UINT32 Value = VA_ARG(Marker, UINT32);
  return Value > kMaximumWidth ? kMaximumWidth : Value;
}

// Reads decimal digits of a width or precision, saturating.
template <typename FormatChar>
[[nodiscard]] UINTN ReadCount(const FormatChar *&Format) {
  UINTN Value = 0;
  while (CharCode(*Format) >= '0' && CharCode(*Format) <= '9') {
    Value = Value * 10 + (CharCode(*Format) - '0');
    if (Value > kMaximumWidth) {
      Value = kMaximumWidth;
    }
    Format++;
  }
  return Value;
}

// Parses the flags, width, precision and size of a conversion; Format
// points just past the '%' and is left on the conversion character.
template <typename FormatChar>
[[nodiscard]] Spec ParseSpec(const FormatChar *&Format, VA_LIST &Marker) {
  Spec Conversion;
  for (;;) {
    UINT32 Char = CharCode(*Format);
    if (Char == '-') {
      Conversion.Flags |= kLeftJustify;
    } else if (Char == '+') {
      Conversion.Flags |= kPlusSign;
    } else if (Char == ' ') {
      Conversion.Flags |= kBlankSign;
    } else if (Char == '0') {
      Conversion.Flags |= kZeroPad;
    } else if (Char == 'l' || Char == 'L') {
      Conversion.Flags |= kLong;
    } else if (Char == '*') {
      Conversion.Flags |= kHasWidth;
      Conversion.Width = StarArgument(Marker);
    } else if (Char >= '1' && Char <= '9') {
      Conversion.Flags |= kHasWidth;
      Conversion.Width = ReadCount(Format);
      continue;
    } else if (Char == '.') {
      Conversion.Flags |= kHasPrecision;
      Format++;
      if (CharCode(*Format) == '*') {
        Conversion.Precision = StarArgument(Marker);
        Format++;
      } else {
        Conversion.Precision = ReadCount(Format);
      }
      continue;
    } else {
      return Conversion;
    }
    Format++;
  }
}

// Handles one conversion; Format points just past the '%'. Returns the
// position after the conversion.
template <typename FormatChar, typename OutChar>
[[nodiscard]] const FormatChar *Convert(Output<OutChar> &Out,
                                        const FormatChar *Format,
                                        VA_LIST &Marker) {
  Spec Conversion = ParseSpec(Format, Marker);
  UINT32 Type = CharCode(*Format);
  if (Type == 0) {
    return Format;  // A format ending inside a conversion prints nothing.
  }
  Format++;
  switch (Type) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'p':
      ConvertNumber(Out, Type, Conversion, Marker);
      return Format;
    case 'a':
      PutPadded(Out, NarrowText(VA_ARG(Marker, const CHAR8 *), Conversion),
                Conversion);
      return Format;
    case 's':
    case 'S':
      PutPadded(Out, WideText(VA_ARG(Marker, const CHAR16 *), Conversion),
                Conversion);
      return Format;
    case 'c': {
      CHAR16 Char = static_cast<CHAR16>(VA_ARG(Marker, int) & 0xFFFF);
      Text Body;
      Body.Wide = &Char;
      Body.Length = 1;
      PutPadded(Out, Body, Conversion);
      return Format;
    }
    case 'g': {
      const EFI_GUID *Guid = VA_ARG(Marker, const EFI_GUID *);
      CHAR8 Buffer[37];
      Text Body;
      Body.Narrow = "<null guid>";
      if (Guid != nullptr) {
        FormatGuid(*Guid, Buffer);
        Body.Narrow = Buffer;
      }
      Body.Length = BoundedLength(Body.Narrow, 36);
      PutPadded(Out, Body, Conversion);
      return Format;
    }
    case 'r': {
      EFI_STATUS Status = VA_ARG(Marker, EFI_STATUS);
      CHAR8 Buffer[9];
      Text Body;
      Body.Narrow = StatusText(Status);
      if (Body.Narrow == nullptr) {
        PutHex(Buffer, static_cast<UINT32>(Status), 8);
        Buffer[8] = 0;
        Body.Narrow = Buffer;
      }
      Body.Length = BoundedLength(Body.Narrow, 64);
      PutPadded(Out, Body, Conversion);
      return Format;
    }
    default: {
      CHAR16 Char = static_cast<CHAR16>(Type);
      Text Body;
      Body.Wide = &Char;
      Body.Length = 1;
      PutPadded(Out, Body, Conversion);
      return Format;
    }
  }
}

// Formats Format with the arguments of Marker into Out. Returns the
// characters written, without the terminator.
template <typename FormatChar, typename OutChar>
[[nodiscard]] UINTN FormatTo(Output<OutChar> &Out, const FormatChar *Format,
                             VA_LIST &Marker) {
  if (Format == nullptr) {
    return Out.Finish();
  }
  while (*Format != 0 && !Out.Full()) {
    UINT32 Char = CharCode(*Format++);
    if (Char == '%') {
      Format = Convert(Out, Format, Marker);
    } else if (Char == '\n') {
      // Line ends go to the console as CR LF.
      Out.Put('\r');
      Out.Put('\n');
      if (CharCode(*Format) == '\r') {
        Format++;
      }
    } else if (Char == '\r' && CharCode(*Format) == '\n') {
      Out.Put('\r');
      Out.Put('\n');
      Format++;
    } else {
      Out.Put(Char);
    }
  }
  return Out.Finish();
}

// Formats Format with the arguments of Marker into Buffer of BufferSize
// bytes. Returns the characters written, without the terminator.
template <typename FormatChar, typename OutChar>
[[nodiscard]] UINTN FormatInto(OutChar *Buffer, UINTN BufferSize,
                               const FormatChar *Format, VA_LIST &Marker) {
  Output<OutChar> Out(Buffer, BufferSize);
  return FormatTo(Out, Format, Marker);
}

}  // namespace

UINTN EFIAPI SPrintLength(const CHAR16 *Format, VA_LIST Marker) {
  Output<CHAR16> Out = Output<CHAR16>::Counter();
  return FormatTo(Out, Format, Marker);
}

UINTN EFIAPI UnicodeVSPrint(CHAR16 *Buffer, UINTN BufferSize,
                            const CHAR16 *Format, VA_LIST Marker) {
  return FormatInto(Buffer, BufferSize, Format, Marker);
}

UINTN EFIAPI UnicodeSPrint(CHAR16 *Buffer, UINTN BufferSize,
                           const CHAR16 *Format, ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = FormatInto(Buffer, BufferSize, Format, Marker);
  VA_END(Marker);
  return Count;
}

UINTN EFIAPI UnicodeVSPrintAsciiFormat(CHAR16 *Buffer, UINTN BufferSize,
                                       const CHAR8 *Format, VA_LIST Marker) {
  return FormatInto(Buffer, BufferSize, Format, Marker);
}

UINTN EFIAPI UnicodeSPrintAsciiFormat(CHAR16 *Buffer, UINTN BufferSize,
                                      const CHAR8 *Format, ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = FormatInto(Buffer, BufferSize, Format, Marker);
  VA_END(Marker);
  return Count;
}

UINTN EFIAPI AsciiVSPrint(CHAR8 *Buffer, UINTN BufferSize, const CHAR8 *Format,
                          VA_LIST Marker) {
  return FormatInto(Buffer, BufferSize, Format, Marker);
}

UINTN EFIAPI AsciiSPrint(CHAR8 *Buffer, UINTN BufferSize, const CHAR8 *Format,
                         ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = FormatInto(Buffer, BufferSize, Format, Marker);
  VA_END(Marker);
  return Count;
}
