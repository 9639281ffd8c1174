// A forward walk over the lines of one tool output, for every backend.
//
// Lines are separated by line feeds and empty lines are skipped, so the
// blank line of CR LF output is a line holding only "\r" and counts. Each
// line returned is terminated in place; terminators written by one walk
// still separate lines for the next, so several walks may share an output.
// A walk never reads past the end fixed when it started: the output's
// terminator within the buffer's size, or the size itself.
#pragma once

#include <Uefi.h>

typedef struct {
  CHAR16 *Next;     // where the next line starts
  CHAR16 *End;      // one past the output's last character
  CHAR16 *Current;  // the line last returned, for RaidLibStepBack
  CHAR16 *CurrentEnd;  // where that line ends (its terminator, or End)
} RAID_LINE_CURSOR;

// Starts a walk over an output of at most OutputChars characters (NULL: a
// walk over nothing).
VOID RaidLibLinesStart(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                       UINTN OutputChars);
// As RaidLibLinesStart, for an output in a buffer of which every one of
// BufferChars characters is readable (not merely a bound on where its
// terminator lies): the end is found four characters at a time.
VOID RaidLibLinesStartInBuffer(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                               UINTN BufferChars);
// The characters before the first terminator of such a buffer, or
// BufferChars when it holds none (0 for NULL).
[[nodiscard]] UINTN RaidLibBufferTextChars(CHAR16 *Text, UINTN BufferChars);
// Starts a walk over the TextChars characters at Text, an output whose end
// was found before (none of them is a terminator): the end is not looked
// for again.
VOID RaidLibLinesOver(RAID_LINE_CURSOR *Lines, CHAR16 *Text, UINTN TextChars);
// The next line, or NULL at the end of the output.
[[nodiscard]] CHAR16 *RaidLibNextLine(RAID_LINE_CURSOR *Lines);
// The next line without moving on, or NULL.
[[nodiscard]] CHAR16 *RaidLibPeekLine(const RAID_LINE_CURSOR *Lines);
// Moves Count lines on and returns the last of them ("the line Count
// further on"), or NULL when the output ends first (Count 0 gives NULL).
[[nodiscard]] CHAR16 *RaidLibSkipLines(RAID_LINE_CURSOR *Lines, UINTN Count);
// The line Count further on, without moving.
[[nodiscard]] CHAR16 *RaidLibLineAhead(const RAID_LINE_CURSOR *Lines,
                                       UINTN Count);
// The next Count lines without moving, in one walk: Ahead[k - 1] is the
// line k further on (as RaidLibLineAhead gives it), NULL past the output's
// end.
VOID RaidLibLinesAhead(const RAID_LINE_CURSOR *Lines, CHAR16 **Ahead,
                       UINTN Count);
// The same, with each line's characters in AheadChars[k - 1] (0 past the
// end).
VOID RaidLibLinesAheadSized(const RAID_LINE_CURSOR *Lines, CHAR16 **Ahead,
                            UINTN *AheadChars, UINTN Count);
// The characters of the line last returned (0 when there is none).
[[nodiscard]] inline UINTN RaidLibCurrentLineChars(
    const RAID_LINE_CURSOR *Lines) {
  return Lines->Current != nullptr
             ? static_cast<UINTN>(Lines->CurrentEnd - Lines->Current)
             : 0;
}
// The line last returned is returned again by the next RaidLibNextLine: a
// section reader that met the next section's first line hands it back.
VOID RaidLibStepBack(RAID_LINE_CURSOR *Lines);
// The next line while *Budget lasts (each line returned costs one): the
// bounded look-ahead of a block of known greatest length. NULL when the
// budget or the output is used up.
[[nodiscard]] CHAR16 *RaidLibNextLineWithin(RAID_LINE_CURSOR *Lines,
                                            UINTN *Budget);

// Up to eight prefixes (none empty, none holding a line break) to find
// lines by, with a filter on the first two characters of a line: bit
// RaidLibPairBit of each prefix's pair is set (every bit when a prefix
// has a single character), so most other lines are passed over on one
// test.
typedef struct {
  const CHAR16 *const *Prefixes;
  UINT32 Count;
  UINT64 Pairs;
  // Each prefix's first eight characters as two words of four (the
  // characters past a shorter prefix's end masked off), compared with a
  // line's first eight at once.
  UINT64 Heads[8][2];
  UINT64 HeadMasks[8][2];
} RAID_LINE_PREFIXES;

// The filter's bit for a line beginning with First and Second.
[[nodiscard]] constexpr UINT32 RaidLibPairBit(CHAR16 First, CHAR16 Second) {
  return (static_cast<UINT32>(First) * 31U + Second) & 63U;
}

// The set over a constant array of prefixes.
template <UINTN N>
[[nodiscard]] constexpr RAID_LINE_PREFIXES RaidLibLinePrefixes(
    const CHAR16 *const (&Prefixes)[N]) {
  static_assert(N >= 1 && N <= 8, "one to eight prefixes");
  RAID_LINE_PREFIXES Set = {Prefixes, static_cast<UINT32>(N), 0, {}, {}};
  for (UINTN Index = 0; Index < N; Index++) {
    const CHAR16 First = Prefixes[Index][0];
    const CHAR16 Second = First != 0 ? Prefixes[Index][1] : 0;
    Set.Pairs |= Second == 0 ? ~0ULL : 1ULL << RaidLibPairBit(First, Second);
    for (UINTN Char = 0; Char < 8 && Prefixes[Index][Char] != 0; Char++) {
      const UINT32 Shift = static_cast<UINT32>(16 * (Char % 4));
      Set.Heads[Index][Char / 4] |=
          static_cast<UINT64>(Prefixes[Index][Char]) << Shift;
      Set.HeadMasks[Index][Char / 4] |= 0xFFFFULL << Shift;
    }
  }
  return Set;
}

// The next line that begins with one of Set's prefixes, as a walk with
// RaidLibNextLine and RaidLibStartsWith would find it, cut in place; the
// walk moves on behind it. The lines passed over are not cut (a later walk
// finds them all the same). NULL at the end of the output.
[[nodiscard]] CHAR16 *RaidLibNextLineStartingWith(
    RAID_LINE_CURSOR *Lines, const RAID_LINE_PREFIXES &Set);

// The starts of the lines that begin with one of a set's prefixes, found
// in one search and kept as offsets from Base, in order: passes that each
// want some of those lines go from one to the next instead of searching
// the whole output again. Offsets NULL: no marks (the passes search).
typedef struct {
  CHAR16 *Base;
  const UINT32 *Offsets;
  UINT32 Count;
  UINT32 Index;  // the next mark to look at
} RAID_LINE_MARKS;

// Marks the lines from Lines on that begin with one of Set's prefixes into
// Offsets; Marks->Offsets is NULL when there are more than Capacity.
VOID RaidLibMarkLines(const RAID_LINE_CURSOR *Lines,
                      const RAID_LINE_PREFIXES &Set, UINT32 *Offsets,
                      UINT32 Capacity, RAID_LINE_MARKS *Marks);
// RaidLibNextLineStartingWith for a walk over lines marked with a set that
// holds all of Set's prefixes: the same line, taken from the marks.
[[nodiscard]] CHAR16 *RaidLibNextMarkedLine(RAID_LINE_CURSOR *Lines,
                                            RAID_LINE_MARKS *Marks,
                                            const RAID_LINE_PREFIXES &Set);

// Up to eight phrases (none empty, none holding a line feed) to count
// lines by, with what a skip search over the text needs: the shortest
// phrase's length and, for each pair of characters (by the low five bits
// of each), how far the search may move on when the pair ends its window.
typedef struct {
  const CHAR16 *const *Phrases;
  UINT32 Count;
  UINT32 Lengths[8];
  UINT32 Shortest;
  UINT8 Shift[1024];
} RAID_PHRASES;

// The shift table's entry for the pair First, Second.
[[nodiscard]] constexpr UINTN RaidLibPairEntry(CHAR16 First, CHAR16 Second) {
  return ((First & 31U) << 5) | (Second & 31U);
}

// The set over a constant array of phrases.
template <UINTN N>
[[nodiscard]] constexpr RAID_PHRASES RaidLibPhrases(
    const CHAR16 *const (&Phrases)[N]) {
  static_assert(N >= 1 && N <= 8, "one to eight phrases");
  RAID_PHRASES Set = {Phrases, static_cast<UINT32>(N), {}, ~0U, {}};
  for (UINTN Index = 0; Index < N; Index++) {
    UINT32 Length = 0;
    while (Phrases[Index][Length] != 0) {
      Length++;
    }
    Set.Lengths[Index] = Length;
    Set.Shortest = Length < Set.Shortest ? Length : Set.Shortest;
  }
  const UINT32 Longest = Set.Shortest - 1 < 255 ? Set.Shortest - 1 : 255;
  for (UINT8 &Shift : Set.Shift) {
    Shift = static_cast<UINT8>(Longest);
  }
  // A pair Distance before a phrase's end lets the window (as long as the
  // shortest phrase) move on by at most Distance; 0 marks a phrase's end.
  for (UINTN Index = 0; Index < N; Index++) {
    const CHAR16 *Phrase = Phrases[Index];
    const UINT32 Length = Set.Lengths[Index];
    for (UINT32 Distance = 0; Distance + 1 < Set.Shortest; Distance++) {
      UINT8 &Shift = Set.Shift[RaidLibPairEntry(
          Phrase[Length - 2 - Distance], Phrase[Length - 1 - Distance])];
      Shift = static_cast<UINT8>(Distance < Shift ? Distance : Shift);
    }
  }
  return Set;
}

// The skip search of Set over the Chars characters at Text: the place of
// the first character, at From or behind it, on which one of the phrases
// ends (the phrase wholly within the text), or Chars when none does.
// *Which receives the phrases ending there, bit k for Set.Phrases[k].
[[nodiscard]] UINTN RaidLibNextPhraseEnd(const CHAR16 *Text, UINTN Chars,
                                         UINTN From, const RAID_PHRASES &Set,
                                         UINT32 *Which);

// Counts in LinesWith[k] the lines among the Chars characters at Text
// that hold Set.Phrases[k] (each line once; line feeds and terminators
// separate lines).
VOID RaidLibCountPhraseLines(const CHAR16 *Text, UINTN Chars,
                             const RAID_PHRASES &Set, UINT32 *LinesWith);

// Counts the lines a walk from Lines on would return, without cutting
// them, and in LinesWith[k] those among them that hold Set.Phrases[k]
// (each line once). Returns the line count.
[[nodiscard]] UINT32 RaidLibCountLines(const RAID_LINE_CURSOR *Lines,
                                       const RAID_PHRASES &Set,
                                       UINT32 *LinesWith);

// The same over the text at Text in a buffer of which every one of
// BufferChars characters is readable, as a walk started there by
// RaidLibLinesStartInBuffer would see it: its end, the first terminator
// (or the buffer's end), is found in the same pass, and *TextChars
// receives the text's length.
[[nodiscard]] UINT32 RaidLibCountBufferLines(const CHAR16 *Text,
                                             UINTN BufferChars,
                                             const RAID_PHRASES &Set,
                                             UINT32 *LinesWith,
                                             UINTN *TextChars);

// Traces every line of the output between Output and End as
// "[<Caller>]<line>"; terminates the lines it meets.
VOID RaidLibTraceAllLines(const CHAR8 *Caller, CHAR16 *Output, CHAR16 *End);
