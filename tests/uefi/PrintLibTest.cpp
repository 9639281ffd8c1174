// The formatter: conversions, padding, EDK2's quirks, and bounds.
#include <Library/PrintLib.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

constexpr EFI_GUID kSetupGuid = {
    0xEB726CDD, 0xB12F, 0x468D, {0x9C, 0xB0, 0x15, 0xCD, 0x74, 0x17, 0x14, 0xF6}};

// The ASCII output of an ASCII format.
std::string EFIAPI Ascii(const CHAR8 *Format, ...) {
  CHAR8 Buffer[256];
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = AsciiVSPrint(Buffer, sizeof(Buffer), Format, Marker);
  VA_END(Marker);
  EXPECT_EQ(Count, std::strlen(Buffer));
  return Buffer;
}

// The CHAR16 output of a CHAR16 format.
std::u16string EFIAPI Wide(const CHAR16 *Format, ...) {
  CHAR16 Buffer[256];
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = UnicodeVSPrint(Buffer, sizeof(Buffer), Format, Marker);
  VA_END(Marker);
  std::u16string Result(Buffer);
  EXPECT_EQ(Count, Result.size());
  return Result;
}

// The CHAR16 output of an ASCII format.
std::u16string EFIAPI WideFromAscii(const CHAR8 *Format, ...) {
  CHAR16 Buffer[256];
  VA_LIST Marker;
  VA_START(Marker, Format);
  UnicodeVSPrintAsciiFormat(Buffer, sizeof(Buffer), Format, Marker);
  VA_END(Marker);
  return Buffer;
}

TEST(PrintLib, DecimalConversionsTakeIntUnlessLong) {
  EXPECT_EQ(Ascii("%d|%i|%d", 42, -7, 0), "42|-7|0");
  EXPECT_EQ(Ascii("%u", -1), "4294967295");
  EXPECT_EQ(Ascii("%ld", (INT64)-9223372036854775807LL - 1),
            "-9223372036854775808");
  EXPECT_EQ(Ascii("%lld|%lu", (INT64)1 << 40, ~(UINT64)0),
            "1099511627776|18446744073709551615");
  EXPECT_EQ(Ascii("%Ld", (INT64)-5), "-5");
  EXPECT_EQ(Ascii("%+d|% d|%+d", 5, 5, -5), "+5| 5|-5");
}

TEST(PrintLib, HexIsUpperCaseAndXImpliesZeroPadding) {
  EXPECT_EQ(Ascii("%x|%X", 0xab, 0xab), "AB|AB");
  EXPECT_EQ(Ascii("%8x|%8X", 0xab, 0xab), "      AB|000000AB");
  EXPECT_EQ(Ascii("%08x", 0x20000E), "0020000E");
  EXPECT_EQ(Ascii("%x", -1), "FFFFFFFF");
  EXPECT_EQ(Ascii("%lx", (UINT64)0x123456789AULL), "123456789A");
  EXPECT_EQ(Ascii("%016lx|%016llx", (UINT64)0xDEADBEEF, (UINT64)1),
            "00000000DEADBEEF|0000000000000001");
  EXPECT_EQ(Ascii("%p", (VOID *)0x1234), "1234");
  EXPECT_EQ(Ascii("%p", (VOID *)0xFFFF800012345678ULL), "FFFF800012345678");
}

TEST(PrintLib, WidthZeroPaddingAndLeftAlignment) {
  EXPECT_EQ(Ascii("[%5d]", 42), "[   42]");
  EXPECT_EQ(Ascii("[%-5d]", 42), "[42   ]");
  EXPECT_EQ(Ascii("[%05d]", -42), "[-0042]");
  EXPECT_EQ(Ascii("[%-05d]", 42), "[42   ]");
  EXPECT_EQ(Ascii("[%*d]", 6, 42), "[    42]");
  EXPECT_EQ(Ascii("[%-*a]", 4, "ab"), "[ab  ]");
  EXPECT_EQ(Ascii("[%.3d]", 7), "[007]");
  EXPECT_EQ(Ascii("[%2d]", 12345), "[12345]");
  EXPECT_EQ(Ascii("[%-10s]", u"disk"), "[disk      ]");
  EXPECT_EQ(Ascii("[%6a]", "abc"), "[   abc]");
  EXPECT_EQ(Ascii("[%.2a|%.*s]", "abcdef", 3, u"uvwxyz"), "[ab|uvw]");
}

TEST(PrintLib, StringConversionsFollowEdk2) {
  // %a is ASCII, %s and %S are CHAR16 in either kind of format.
  EXPECT_EQ(Ascii("%a-%s-%S", "one", u"two", u"three"), "one-two-three");
  EXPECT_EQ(Wide(u"%a-%s-%S", "one", u"two", u"three"), u"one-two-three");
  EXPECT_EQ(WideFromAscii("%s/%a", u"SATA", "HDD"), u"SATA/HDD");
  EXPECT_EQ(Ascii("%a|%s", (const CHAR8 *)nullptr, (const CHAR16 *)nullptr),
            "<null string>|<null string>");
  EXPECT_EQ(Wide(u"%s", (const CHAR16 *)nullptr), u"<null string>");
  EXPECT_EQ(Wide(u"%s", u"\u00e9\u4e2d"), u"\u00e9\u4e2d");
  // Beyond Latin-1 an ASCII buffer cannot hold the character.
  EXPECT_EQ(Ascii("%s", u"a\u00e9\u4e2db"), "a\xe9?b");
  EXPECT_EQ(Ascii("%c%c", 'A', u'z'), "Az");
  EXPECT_EQ(Wide(u"%c|%3c", u'\u4e2d', 'x'), u"\u4e2d|  x");
}

TEST(PrintLib, StatusNames) {
  struct Case {
    EFI_STATUS Status;
    const char *Text;
  } Cases[] = {
      {EFI_SUCCESS, "Success"},
      {EFI_LOAD_ERROR, "Load Error"},
      {EFI_NOT_FOUND, "Not Found"},
      {EFI_OUT_OF_RESOURCES, "Out of Resources"},
      {EFI_MEDIA_CHANGED, "Media changed"},
      {EFI_ABORTED, "Aborted"},
      {EFI_END_OF_MEDIA, "End of Media"},
      {EFI_END_OF_FILE, "End of File"},
      {EFI_COMPROMISED_DATA, "Compromised Data"},
      {EFI_WARN_UNKNOWN_GLYPH, "Warning Unknown Glyph"},
      {EFI_WARN_BUFFER_TOO_SMALL, "Warning Buffer Too Small"},
      // No name: the low 32 bits as %08X.
      {ENCODE_ERROR(100), "00000064"},
      {ENCODE_WARNING(0x99), "00000099"},
  };
  for (const Case &Row : Cases) {
    EXPECT_EQ(Ascii("%r", Row.Status), Row.Text) << Row.Status;
  }
  EXPECT_EQ(Wide(u"[%-12r]", EFI_ABORTED), u"[Aborted     ]");
  EXPECT_EQ(StatusText(ENCODE_ERROR(100)), nullptr);
}

TEST(PrintLib, GuidIsUpperCase8_4_4_4_12) {
  EXPECT_EQ(Ascii("%g", &kSetupGuid), "EB726CDD-B12F-468D-9CB0-15CD741714F6");
  EXPECT_EQ(Wide(u"{%g}", &kSetupGuid),
            u"{EB726CDD-B12F-468D-9CB0-15CD741714F6}");
  EXPECT_EQ(Ascii("%g", (const EFI_GUID *)nullptr), "<null guid>");
}

TEST(PrintLib, LineEndsBecomeCrLf) {
  EXPECT_EQ(Ascii("a\nb"), "a\r\nb");
  EXPECT_EQ(Ascii("a\r\nb\n\rc\rd"), "a\r\nb\r\nc\rd");
  EXPECT_EQ(Wide(u"[%a]Command: %S\n", "Run", u"storcli.efi show"),
            u"[Run]Command: storcli.efi show\r\n");
}

TEST(PrintLib, PercentAndUnknownConversionsPrintTheCharacter) {
  EXPECT_EQ(Ascii("100%%"), "100%");
  EXPECT_EQ(Ascii("%q%d", 3), "q3");
  EXPECT_EQ(Ascii("end%"), "end");
  EXPECT_EQ(Ascii("end%-08"), "end");
}

// Output into a buffer followed by a guard region that must stay intact.
class PrintBounds : public ::testing::Test {
 protected:
  static constexpr UINTN kGuard = 32;
  static constexpr UINT8 kFill = 0xA5;

  void SetUp() override { Refill(); }
  void Refill() { std::memset(Storage_, kFill, sizeof(Storage_)); }

  // TRUE when no byte from Offset on was touched.
  bool GuardIntact(UINTN Offset) const {
    for (UINTN Index = Offset; Index < sizeof(Storage_); Index++) {
      if (Storage_[Index] != kFill) {
        return false;
      }
    }
    return true;
  }

  CHAR8 *Narrow() { return reinterpret_cast<CHAR8 *>(Storage_); }
  CHAR16 *Wide() { return reinterpret_cast<CHAR16 *>(Storage_); }

  alignas(8) UINT8 Storage_[64 + kGuard];
};

TEST_F(PrintBounds, AsciiOutputStopsAtTheBufferEnd) {
  EXPECT_EQ(AsciiSPrint(Narrow(), 8, "0123456789"), 7u);
  EXPECT_STREQ(Narrow(), "0123456");
  EXPECT_TRUE(GuardIntact(8));
}

TEST_F(PrintBounds, TruncationInsideConversions) {
  EXPECT_EQ(AsciiSPrint(Narrow(), 6, "%08x", 0x1234), 5u);
  EXPECT_STREQ(Narrow(), "00001");
  EXPECT_TRUE(GuardIntact(6));
  Refill();
  EXPECT_EQ(AsciiSPrint(Narrow(), 10, "%*d", 100000, 5), 9u);
  EXPECT_STREQ(Narrow(), "         ");
  EXPECT_TRUE(GuardIntact(10));
  Refill();
  EXPECT_EQ(AsciiSPrint(Narrow(), 4, "%g", &kSetupGuid), 3u);
  EXPECT_STREQ(Narrow(), "EB7");
  EXPECT_TRUE(GuardIntact(4));
  Refill();
  // A line end cut between its two characters.
  EXPECT_EQ(AsciiSPrint(Narrow(), 3, "a\n"), 2u);
  EXPECT_STREQ(Narrow(), "a\r");
  EXPECT_TRUE(GuardIntact(3));
}

TEST_F(PrintBounds, Char16OutputCountsWholeCharacters) {
  // 9 bytes hold four CHAR16 characters: three and the terminator.
  EXPECT_EQ(UnicodeSPrint(Wide(), 9, u"%s", u"abcdef"), 3u);
  EXPECT_EQ(std::u16string(Wide()), u"abc");
  EXPECT_TRUE(GuardIntact(8));
  Refill();
  EXPECT_EQ(UnicodeSPrintAsciiFormat(Wide(), 2, "%d", 12345), 0u);
  EXPECT_EQ(Wide()[0], 0);
  EXPECT_TRUE(GuardIntact(2));
}

// The length whatever buffer would receive the text.
UINTN EFIAPI Length(const CHAR16 *Format, ...) {
  VA_LIST Marker;
  VA_START(Marker, Format);
  UINTN Count = SPrintLength(Format, Marker);
  VA_END(Marker);
  return Count;
}

TEST(PrintLib, LengthCountsWhatABufferWouldReceive) {
  EXPECT_EQ(Length(u"abc"), 3u);
  EXPECT_EQ(Length(u"a\n"), 3u);  // CR LF
  EXPECT_EQ(Length(u"%08x", 0x1234), 8u);
  EXPECT_EQ(Length(u"%u", 4294967295u), 10u);
  EXPECT_EQ(Length(u"%d", -1), 2u);
  EXPECT_EQ(Length(u"%*d", 100000, 5), 100000u);
  EXPECT_EQ(Length(u"%s:%d", u"storcli.efi", 252), 15u);
  EXPECT_EQ(Length(nullptr), 0u);
  // The same count the formatter returns when the text fits.
  CHAR16 Buffer[64];
  EXPECT_EQ(UnicodeSPrint(Buffer, sizeof(Buffer), u"/c%u/v%u del", 1u, 12u),
            Length(u"/c%u/v%u del", 1u, 12u));
}

TEST_F(PrintBounds, EmptyAndMissingBuffers) {
  EXPECT_EQ(AsciiSPrint(Narrow(), 0, "abc"), 0u);
  EXPECT_TRUE(GuardIntact(0));
  // One byte cannot hold a CHAR16 terminator: nothing is written.
  EXPECT_EQ(UnicodeSPrint(Wide(), 1, u"abc"), 0u);
  EXPECT_TRUE(GuardIntact(0));
  EXPECT_EQ(AsciiSPrint(nullptr, 100, "abc"), 0u);
  EXPECT_EQ(AsciiSPrint(Narrow(), 1, "abc"), 0u);
  EXPECT_EQ(Narrow()[0], 0);
  EXPECT_TRUE(GuardIntact(1));
  EXPECT_EQ(AsciiSPrint(Narrow(), 8, nullptr), 0u);
  EXPECT_EQ(Narrow()[0], 0);
}

}  // namespace
