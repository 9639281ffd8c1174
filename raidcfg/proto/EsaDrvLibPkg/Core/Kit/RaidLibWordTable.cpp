// Looking a tool word up in a word table.
#include "RaidLibWordTable.h"

#include <Library/BaseLib.h>

#include "RaidLibText.h"

namespace {

[[nodiscard]] bool Matches(RAID_WORD_MATCH Match, const CHAR16 *Text,
                           const CHAR16 *Word) {
  switch (Match) {
    case RaidMatchPrefix:
      return RaidLibStartsWith(Text, Word) != FALSE;
    case RaidMatchContains:
      return RaidLibContains(Text, Word) != FALSE;
    case RaidMatchExact:
    default:
      return StrCmp(Text, Word) == 0;
  }
}

}  // namespace

const RAID_WORD_CODE *RaidLibFindWord(const RAID_WORD_TABLE &Table,
                                      const CHAR16 *Text) {
  if (Text == nullptr) {
    return nullptr;
  }
  for (UINTN Index = 0; Index < Table.Count; Index++) {
    if (Matches(Table.Match, Text, Table.Entries[Index].Word)) {
      return &Table.Entries[Index];
    }
  }
  return nullptr;
}

const RAID_WORD_CODE &RaidLibClassifyWord(const RAID_WORD_TABLE &Table,
                                          const CHAR16 *Text) {
  const RAID_WORD_CODE *Entry = RaidLibFindWord(Table, Text);
  return Entry != nullptr ? *Entry : Table.Default;
}

UINT32 RaidLibCodeOfWord(const RAID_WORD_TABLE &Table, const CHAR16 *Text) {
  return RaidLibClassifyWord(Table, Text).Code;
}
