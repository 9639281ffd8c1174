// CHAR16/ASCII text functions, conversions to CHAR16, memory and pool.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <gtest/gtest.h>

#include <string>

#include "TestPool.h"

namespace {

TEST(BaseLib, LengthsAreBoundedAndNullIsEmpty) {
  EXPECT_EQ(StrLen(u"disk"), 4u);
  EXPECT_EQ(StrLen(nullptr), 0u);
  EXPECT_EQ(StrSize(u"disk"), 10u);
  EXPECT_EQ(StrSize(nullptr), 0u);
  const CHAR16 Unterminated[3] = {u'a', u'b', u'c'};
  EXPECT_EQ(StrnLenS(Unterminated, 3), 3u);
  EXPECT_EQ(StrnLenS(u"ab", 10), 2u);
  EXPECT_EQ(AsciiStrLen("abc"), 3u);
}

TEST(BaseLib, Comparisons) {
  EXPECT_EQ(StrCmp(u"RAID", u"RAID"), 0);
  EXPECT_LT(StrCmp(u"RAID", u"RAIE"), 0);
  EXPECT_GT(StrCmp(u"RAID5", u"RAID"), 0);
  EXPECT_EQ(StrnCmp(u"RAID5", u"RAID1", 4), 0);
  EXPECT_EQ(StrCmp(nullptr, u""), 0);
  // Characters compare as unsigned values.
  EXPECT_GT(StrCmp(u"\uffff", u"a"), 0);
  EXPECT_GT(AsciiStrCmp("\xff", "a"), 0);
  EXPECT_EQ(AsciiStrnCmp("storage", "store", 4), 0);
  EXPECT_EQ(CharToUpper(u'q'), u'Q');
  EXPECT_EQ(CharToUpper(u'5'), u'5');
  EXPECT_EQ(AsciiCharToUpper('z'), 'Z');
}

TEST(BaseLib, Search) {
  const CHAR16 *Line = u"Slot 12 RSTe";
  EXPECT_EQ(StrStr(Line, u"12"), Line + 5);
  EXPECT_EQ(StrStr(Line, u""), Line);
  EXPECT_EQ(StrStr(Line, u"RSTe!"), nullptr);
  EXPECT_EQ(StrStr(nullptr, u"a"), nullptr);
  const CHAR8 *Narrow = "abcabd";
  EXPECT_EQ(AsciiStrStr(Narrow, "abd"), Narrow + 3);
  EXPECT_EQ(AsciiStrStr(Narrow, "abe"), nullptr);
}

TEST(BaseLib, SafeCopyAndAppend) {
  CHAR16 Buffer[6] = u"xxxxx";
  EXPECT_EQ(StrCpyS(Buffer, 6, u"toolong"), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(std::u16string(Buffer), u"xxxxx");  // Unmodified on error.
  EXPECT_EQ(StrCpyS(Buffer, 6, u"abcde"), EFI_SUCCESS);
  EXPECT_EQ(std::u16string(Buffer), u"abcde");
  EXPECT_EQ(StrCpyS(Buffer, 6, u"ab"), EFI_SUCCESS);
  EXPECT_EQ(StrCatS(Buffer, 6, u"cde"), EFI_SUCCESS);
  EXPECT_EQ(std::u16string(Buffer), u"abcde");
  EXPECT_EQ(StrCatS(Buffer, 6, u"f"), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(std::u16string(Buffer), u"abcde");
  EXPECT_EQ(StrCpyS(Buffer, 0, u""), EFI_INVALID_PARAMETER);
  EXPECT_EQ(StrCpyS(nullptr, 6, u""), EFI_INVALID_PARAMETER);
  EXPECT_EQ(StrCpyS(Buffer, 6, u"ab"), EFI_SUCCESS);
  EXPECT_EQ(StrCpyS(Buffer + 1, 5, Buffer), EFI_ACCESS_DENIED);
  CHAR16 Full[3] = {u'a', u'b', u'c'};
  EXPECT_EQ(StrCatS(Full, 3, u""), EFI_BAD_BUFFER_SIZE);
}

TEST(BaseLib, AsciiToChar16) {
  CHAR16 Buffer[8];
  EXPECT_EQ(AsciiStrToUnicodeStrS("Disk\xe9", Buffer, 8), EFI_SUCCESS);
  EXPECT_EQ(std::u16string(Buffer), u"Disk\u00e9");
  EXPECT_EQ(AsciiStrToUnicodeStrS("12345678", Buffer, 8), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(AsciiStrToUnicodeStrS(nullptr, Buffer, 8), EFI_INVALID_PARAMETER);
}

TEST(BaseLib, Utf8ToChar16) {
  struct Case {
    std::string Utf8;
    std::u16string Expected;
  } Cases[] = {
      {"plain\r\n", u"plain\r\n"},
      {"caf\xc3\xa9", u"caf\u00e9"},
      {"\xe4\xb8\xad\xe6\x96\x87", u"\u4e2d\u6587"},
      {"\xf0\x9f\x98\x80", u"\U0001F600"},          // surrogate pair
      {"a\x80z", u"a\ufffdz"},                       // stray continuation
      {"\xc0\xaf", u"\ufffd\ufffd"},                 // overlong
      {"\xed\xa0\x80", u"\ufffd\ufffd\ufffd"},       // encoded surrogate
      {"\xe4\xb8", u"\ufffd\ufffd"},                 // truncated
      {"\xf4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},  // beyond U+10FFFF
  };
  for (const Case &Row : Cases) {
    CHAR16 Buffer[16];
    UINTN Length = Utf8StrToUnicodeLength(Row.Utf8.data(), Row.Utf8.size());
    EXPECT_EQ(Length, Row.Expected.size()) << Row.Utf8;
    ASSERT_EQ(Utf8StrToUnicodeStrS(Row.Utf8.data(), Row.Utf8.size(), Buffer, 16),
              EFI_SUCCESS);
    EXPECT_EQ(std::u16string(Buffer), Row.Expected) << Row.Utf8;
  }
}

TEST(BaseLib, Utf8StopsAtLengthOrNulAndChecksRoom) {
  CHAR16 Buffer[4] = {u'x', u'x', u'x', u'x'};
  const CHAR8 Text[] = "abc\0def";
  EXPECT_EQ(Utf8StrToUnicodeLength(Text, sizeof(Text)), 3u);
  EXPECT_EQ(Utf8StrToUnicodeLength(Text, 2), 2u);
  EXPECT_EQ(Utf8StrToUnicodeStrS("abcd", 4, Buffer, 4), EFI_BUFFER_TOO_SMALL);
  EXPECT_EQ(Buffer[0], u'x');
  EXPECT_EQ(Utf8StrToUnicodeStrS("abcd", 3, Buffer, 4), EFI_SUCCESS);
  EXPECT_EQ(std::u16string(Buffer), u"abc");
}

TEST(BaseMemoryLib, CopyHandlesOverlapAndCompareOrders) {
  UINT8 Bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  CopyMem(Bytes + 2, Bytes, 5);
  const UINT8 Expected[8] = {1, 2, 1, 2, 3, 4, 5, 8};
  EXPECT_EQ(CompareMem(Bytes, Expected, 8), 0);
  SetMem(Bytes, 3, 0xFF);
  EXPECT_GT(CompareMem(Bytes, Expected, 8), 0);
  ZeroMem(Bytes, 8);
  EXPECT_LT(CompareMem(Bytes, Expected, 8), 0);
}

TEST(MemoryAllocationLib, FailsCleanlyWithoutBootServices) {
  EFI_BOOT_SERVICES *Saved = gBS;
  gBS = nullptr;
  EXPECT_EQ(AllocatePool(16), nullptr);
  EXPECT_EQ(AllocateZeroPool(16), nullptr);
  FreePool(nullptr);
  gBS = Saved;
}

TEST(MemoryAllocationLib, AllocatesThroughBootServices) {
  test::ScopedTestPool Pool;
  UINT8 *Zeroed = static_cast<UINT8 *>(AllocateZeroPool(32));
  ASSERT_NE(Zeroed, nullptr);
  for (int Index = 0; Index < 32; Index++) {
    EXPECT_EQ(Zeroed[Index], 0);
  }
  CHAR16 *Copy = static_cast<CHAR16 *>(AllocateCopyPool(StrSize(u"abc"), u"abc"));
  ASSERT_NE(Copy, nullptr);
  EXPECT_EQ(std::u16string(Copy), u"abc");
  EXPECT_EQ(Pool.Outstanding(), 2u);
  FreePool(Zeroed);
  FreePool(Copy);
  EXPECT_EQ(Pool.Outstanding(), 0u);
  Pool.FailAfter(0);
  EXPECT_EQ(AllocateZeroPool(8), nullptr);
  {
    uefi::PoolPtr<UINT32> Owned(uefi::AllocateRecord<UINT32>());
    EXPECT_FALSE(Owned);
  }
  Pool.FailAfter(-1);
  {
    uefi::PoolPtr<UINT32> Owned(uefi::AllocateRecord<UINT32>());
    EXPECT_TRUE(Owned);
  }
  EXPECT_EQ(Pool.Outstanding(), 0u);
}

}  // namespace
