// Feeds arbitrary bytes, taken as CHAR16 text, through the text helpers the
// backends apply to tool output. The first byte chooses a delimiter set.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include "RaidLibText.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "TestPool.h"

namespace {

const CHAR16 *const kDelimiterSets[] = {u" ", u"\n", u" \r\n", u":\t=", u""};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  const CHAR16 *Delimiters =
      kDelimiterSets[Data[0] % (sizeof(kDelimiterSets) / sizeof(CHAR16 *))];
  Data++;
  Size--;
  // The text, exactly as long as the input, then its terminator.
  std::vector<CHAR16> Text(Size / sizeof(CHAR16) + 1, 0);
  std::memcpy(Text.data(), Data, (Size / sizeof(CHAR16)) * sizeof(CHAR16));

  test::ScopedTestPool Pool;
  (void)RaidLibReadThousandths(Text.data());
  (void)RaidLibReadDecimal(Text.data());
  (void)RaidLibReadHex(Text.data());
  (void)RaidLibUnitCode(Text.data());
  // An id is read exactly or not at all: whatever was read prints back as
  // the same digits, leading zeros aside.
  UINT32 Id = 0;
  if (RaidLibReadId(Text.data(), &Id) &&
      RaidLibReadDecimal(Text.data()) != Id) {
    __builtin_trap();
  }
  UINT32 Second = 0;
  (void)RaidLibReadIdPair(Text.data(), u':', &Id, &Second);
  CHAR16 Formatted[16];
  if (RaidLibFormat(Formatted, 16, u"%s", Text.data()) &&
      StrCmp(Formatted, Text.data()) != 0) {
    __builtin_trap();  // A text reported whole came out cut.
  }

  std::vector<CHAR16> Line = Text;
  CHAR16 **Tokens = RaidLibSplit(Line.data(), Delimiters);
  if (Tokens != nullptr) {
    for (CHAR16 **Cursor = Tokens; *Cursor != nullptr; Cursor++) {
      RaidLibTrim(*Cursor);
      (void)RaidLibMediaCode(*Cursor, Cursor[1] != nullptr ? Cursor[1] : u"");
      (void)RaidLibReadThousandths(*Cursor);
    }
    RaidLibFreeSplit(Tokens);
  }

  Line = Text;
  CHAR16 *Position = nullptr;
  for (CHAR16 *Token = RaidLibTokenize(Line.data(), Delimiters, &Position);
       Token != nullptr; Token = RaidLibTokenize(nullptr, Delimiters, &Position)) {
    (void)RaidLibStartsWith(Token, u"Bus Number");
    (void)RaidLibContains(Token, u"RSTe");
  }

  Line = Text;
  RaidLibTrim(Line.data());
  if (StrLen(Line.data()) > Text.size()) {
    __builtin_trap();  // Trimming can only shorten the text.
  }
  CHAR16 *Copy = AllocDestStr(Line.data());
  if (Copy != nullptr && StrCmp(Copy, Line.data()) != 0) {
    __builtin_trap();
  }
  FreePool(Copy);
  if (Pool.Outstanding() != 0) {
    __builtin_trap();  // Leaked pool memory.
  }
  return 0;
}
