// Tool words to model codes as data: one table type for every state,
// policy and keyword table of the backends.
#pragma once

#include <Uefi.h>

// How a table's words are matched against the tool's text.
typedef enum {
  RaidMatchExact,     // the whole text, case included
  RaidMatchPrefix,    // the text begins with the word
  RaidMatchContains,  // the word occurs anywhere in the text
} RAID_WORD_MATCH;

// One word and what it stands for; Detail is a second value some tables
// carry (a drive's role beside its state).
struct RAID_WORD_CODE {
  const CHAR16 *Word;
  UINT32 Code;
  UINT32 Detail = 0;
};

typedef struct {
  const RAID_WORD_CODE *Entries;
  UINTN Count;
  RAID_WORD_MATCH Match;
  RAID_WORD_CODE Default;  // what a word of no entry stands for
} RAID_WORD_TABLE;

// A table over a constant array of entries.
template <UINTN N>
[[nodiscard]] constexpr RAID_WORD_TABLE RaidLibWordTable(
    const RAID_WORD_CODE (&Entries)[N], RAID_WORD_MATCH Match,
    UINT32 DefaultCode, UINT32 DefaultDetail = 0) {
  return {Entries, N, Match, {nullptr, DefaultCode, DefaultDetail}};
}

// The first entry, in table order, whose word matches Text; NULL for none
// (and for NULL text).
[[nodiscard]] const RAID_WORD_CODE *RaidLibFindWord(
    const RAID_WORD_TABLE &Table, const CHAR16 *Text);
// The matching entry, or the table's default.
[[nodiscard]] const RAID_WORD_CODE &RaidLibClassifyWord(
    const RAID_WORD_TABLE &Table, const CHAR16 *Text);
// The code of the matching entry, or the default's code.
[[nodiscard]] UINT32 RaidLibCodeOfWord(const RAID_WORD_TABLE &Table,
                                       const CHAR16 *Text);
