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
} RAID_LINE_CURSOR;

// Starts a walk over an output of at most OutputChars characters (NULL: a
// walk over nothing).
VOID RaidLibLinesStart(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                       UINTN OutputChars);
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
// The line last returned is returned again by the next RaidLibNextLine: a
// section reader that met the next section's first line hands it back.
VOID RaidLibStepBack(RAID_LINE_CURSOR *Lines);
// The next line while *Budget lasts (each line returned costs one): the
// bounded look-ahead of a block of known greatest length. NULL when the
// budget or the output is used up.
[[nodiscard]] CHAR16 *RaidLibNextLineWithin(RAID_LINE_CURSOR *Lines,
                                            UINTN *Budget);

// Traces every line of the output between Output and End as
// "[<Caller>]<line>"; terminates the lines it meets.
VOID RaidLibTraceAllLines(const CHAR8 *Caller, CHAR16 *Output, CHAR16 *End);
