// Reading storcli output: lines, "key = value" pairs, the words of table
// rows, and the trace of a whole output.
#pragma once

#include <Uefi.h>

#include "RaidLibTrace.h"

namespace lsi {

// RAID_LIB_TRACE under a given function's name, for helpers that trace on
// behalf of the parser or operation they serve.
#define LSI_TRACE_AS(Caller, Level, Format, ...)                            \
  do {                                                                      \
    if (gRaidLibSetupProtocol != nullptr &&                                 \
        gRaidLibSetupProtocol->DebugPrint != nullptr) {                     \
      gRaidLibSetupProtocol->DebugPrint((Level), (Format),                  \
                                        (Caller)__VA_OPT__(, ) __VA_ARGS__); \
    }                                                                       \
  } while (0)

// A forward walk over the lines of one output. Lines are separated by line
// feeds; empty lines are skipped, so a blank line of CR LF output is a line
// holding only "\r" and counts. Each line returned is terminated in place.
// The walk never reads past End, the output's end found when it started.
typedef struct {
  CHAR16 *Next;
  CHAR16 *End;
} LSI_LINES;

// Starts a walk over Output (NULL: a walk over nothing).
VOID LsiLinesStart(LSI_LINES *Lines, CHAR16 *Output);
// The next line, or NULL at the end of the output.
CHAR16 *LsiNextLine(LSI_LINES *Lines);
// Moves Count lines on and returns the last of them ("the line Count
// further on"), or NULL when the output ends first.
CHAR16 *LsiSkipLines(LSI_LINES *Lines, UINTN Count);

// The text behind the first "=" of Line, untouched (leading blank and
// trailing CR included); NULL without "=".
const CHAR16 *LsiValueAfterEquals(const CHAR16 *Line);
// The number behind "=" on Line; 0 without one.
UINT64 LsiNumberAfterEquals(const CHAR16 *Line);

// The most words a table row is split into, and the longest row read; a
// longer row is cut (no word needed lies that far out).
#define LSI_MAX_WORDS 16
#define LSI_ROW_CHARS 512

// A line copied out of the output and cut into pieces, so that the output
// itself keeps its lines whole for a later look.
typedef struct {
  CHAR16 Text[LSI_ROW_CHARS];
  CHAR16 *Words[LSI_MAX_WORDS];  // NULL past the last piece
  UINTN Count;
} LSI_ROW;

// Splits a copy of Line into blank-separated words (runs of blanks are one
// separator); a row's last word keeps the line's CR. Returns Row->Count.
UINTN LsiSplitRow(const CHAR16 *Line, LSI_ROW *Row);
// The second "="-separated piece of Line (runs of "=" are one separator),
// as it stands; NULL when there is none. Points into Scratch.
CHAR16 *LsiSecondPiece(const CHAR16 *Line, LSI_ROW *Scratch);
// The same piece with white space stripped at both ends.
CHAR16 *LsiTrimmedValue(const CHAR16 *Line, LSI_ROW *Scratch);

// Unit code of a table's unit word, ignoring the line end that sticks to a
// row's last word.
UINT32 LsiUnitCode(const CHAR16 *Word);
// TRUE when Word equals Text exactly.
BOOLEAN LsiWordIs(const CHAR16 *Word, const CHAR16 *Text);
// A pool copy of Text with white space stripped at both ends, at most
// MaxChars characters (0: no limit but the text's own end); NULL for NULL
// or when the pool is exhausted.
CHAR16 *LsiCopyStripped(const CHAR16 *Text, UINTN MaxChars);

// Traces every line of the output between Output and End as
// "[<Caller>]<line>"; terminates the lines it meets.
VOID LsiTraceAllLines(const CHAR8 *Caller, CHAR16 *Output, CHAR16 *End);

}  // namespace lsi
