// Cutting one line of tool output into words, and the value of a
// "key = value" or "key : value" line, without touching the output itself.
#pragma once

#include <Uefi.h>

// The most words a row is split into, and the longest row read; a longer
// row is cut (no family reads a word that far out).
#define RAID_ROW_MAX_WORDS 16
#define RAID_ROW_CHARS 512

// A line copied out of the output and cut into pieces, so that the output
// keeps its lines whole for a later look.
typedef struct {
  CHAR16 Text[RAID_ROW_CHARS];
  CHAR16 *Words[RAID_ROW_MAX_WORDS];  // NULL past the last piece
  UINTN Count;
} RAID_ROW;

// Splits a copy of Line at any of Delimiters (runs of them are one
// separator); a row's last word keeps the line's CR. Returns Row->Count.
UINTN RaidLibSplitRowOn(const CHAR16 *Line, const CHAR16 *Delimiters,
                        RAID_ROW *Row);
// The same at blanks: the words of a table row.
UINTN RaidLibSplitRow(const CHAR16 *Line, RAID_ROW *Row);
// RaidLibSplitRow for a line of which every character before End is
// readable (a line of a walk, End the walk's end): the line is copied and
// its blanks found sixteen characters at a time (RaidLibLanes.h), and
// nothing at or past End is read. The words and text are
// RaidLibSplitRow's for a line that ends before End; a line that does not
// is cut at End.
UINTN RaidLibSplitRowBefore(const CHAR16 *Line, const CHAR16 *End,
                            RAID_ROW *Row);

// The Index-th word of Line (from 0) as RaidLibSplitRow cuts it, copied
// alone into Row (its only word); NULL when the row has no such word.
[[nodiscard]] CHAR16 *RaidLibRowWord(const CHAR16 *Line, UINTN Index,
                                     RAID_ROW *Row);
// The same for words separated by Separator (runs of it are one).
[[nodiscard]] CHAR16 *RaidLibRowWordOn(const CHAR16 *Line, CHAR16 Separator,
                                       UINTN Index, RAID_ROW *Row);
// RaidLibRowWordOn for a walk's line of LineChars characters (no
// terminator among them; RaidLibCurrentLineChars), read eight characters
// at a time.
[[nodiscard]] CHAR16 *RaidLibLineWord(const CHAR16 *Line, UINTN LineChars,
                                      CHAR16 Separator, UINTN Index,
                                      RAID_ROW *Row);

// The text behind the first Separator of Line, untouched (leading blank and
// trailing CR included); NULL without one.
[[nodiscard]] const CHAR16 *RaidLibValueAfter(const CHAR16 *Line,
                                              CHAR16 Separator);
// The decimal number behind the first Separator; 0 without one.
[[nodiscard]] UINT64 RaidLibNumberAfter(const CHAR16 *Line, CHAR16 Separator);
// The second piece of Line cut at Separators (runs count as one), as it
// stands; NULL when there is none. Points into Scratch, whose other words
// are not kept.
[[nodiscard]] CHAR16 *RaidLibSecondPiece(const CHAR16 *Line,
                                         const CHAR16 *Separators,
                                         RAID_ROW *Scratch);
// The same piece with white space stripped at both ends.
[[nodiscard]] CHAR16 *RaidLibTrimmedValue(const CHAR16 *Line,
                                          const CHAR16 *Separators,
                                          RAID_ROW *Scratch);
// The same for a walk's line of LineChars characters cut at one Separator.
[[nodiscard]] CHAR16 *RaidLibLineTrimmedValue(const CHAR16 *Line,
                                              UINTN LineChars,
                                              CHAR16 Separator,
                                              RAID_ROW *Scratch);

// TRUE when Word equals Text exactly (NULL never does; a NULL Text is
// empty). Inline: the parsers ask it of a row's words, mostly against a
// short literal, and most words differ in the first character.
[[nodiscard]] inline BOOLEAN RaidLibWordIs(const CHAR16 *Word,
                                           const CHAR16 *Text) {
  if (Word == nullptr) {
    return FALSE;
  }
  if (Text == nullptr) {
    Text = u"";
  }
  for (UINTN Index = 0; Word[Index] == Text[Index]; Index++) {
    if (Word[Index] == 0) {
      return TRUE;
    }
  }
  return FALSE;
}
// Unit code of a row's unit word, ignoring the CR that sticks to a row's
// last word.
[[nodiscard]] UINT32 RaidLibUnitCodeOfWord(const CHAR16 *Word);
// The length of Text without white space at its ends; *Text is moved past
// the leading white space.
[[nodiscard]] UINTN RaidLibStrippedLength(const CHAR16 **Text);
// A pool copy of Text with white space stripped at both ends, at most
// MaxChars characters (0: no limit but the text's own end); NULL for NULL
// or when the pool is exhausted.
[[nodiscard]] CHAR16 *RaidLibCopyStripped(const CHAR16 *Text, UINTN MaxChars);
