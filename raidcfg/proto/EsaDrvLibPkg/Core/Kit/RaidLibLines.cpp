// The line walk over a tool's output.
#include "RaidLibLines.h"

#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace {

// Line feeds separate lines; so do terminators written by earlier walks.
[[nodiscard]] bool IsLineBreak(CHAR16 Char) {
  return Char == u'\n' || Char == 0;
}

// Four characters at a time: a lane of a 64-bit word is zero when the
// word minus one in every lane borrows into that lane's top bit.
constexpr UINT64 kLaneOnes = 0x0001000100010001ULL;
constexpr UINT64 kLaneTops = 0x8000800080008000ULL;
constexpr UINT64 kLineFeeds = kLaneOnes * u'\n';
constexpr UINTN kLanes = sizeof(UINT64) / sizeof(CHAR16);

[[nodiscard]] bool HasZeroLane(UINT64 Word) {
  return ((Word - kLaneOnes) & ~Word & kLaneTops) != 0;
}

[[nodiscard]] UINT64 LoadLanes(const CHAR16 *Text) {
  UINT64 Word;
  __builtin_memcpy(&Word, Text, sizeof(Word));
  return Word;
}

// The first terminator from Cursor on, or End. Read one character at a
// time: a caller's buffer may end right behind its terminator.
[[nodiscard]] CHAR16 *FindTerminator(CHAR16 *Cursor, CHAR16 *End) {
  while (Cursor < End && *Cursor != 0) {
    Cursor++;
  }
  return Cursor;
}

// The end of an output in the shared buffer, whose size the shell service
// gave with the terminator it wrote behind the text: every character
// before that terminator is the buffer's, so whole words of them are read.
// NULL when the size word does not describe this output (a terminator
// elsewhere is still found, one character at a time, by the caller).
[[nodiscard]] CHAR16 *SharedOutputEnd(CHAR16 *Output, UINTN OutputChars) {
  const UINTN Written = gRaidToolOutputSize / sizeof(CHAR16);
  if (Output != gRaidToolOutput || Written >= OutputChars ||
      Written >= RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) ||
      Output[Written] != 0) {
    return nullptr;
  }
  CHAR16 *Cursor = Output;
  CHAR16 *End = Output + Written;
  while (End - Cursor >= static_cast<INTN>(kLanes) &&
         !HasZeroLane(LoadLanes(Cursor))) {
    Cursor += kLanes;
  }
  return FindTerminator(Cursor, End);
}

// The first line break from Cursor on, or End; every character before End
// is the output's, so whole words of it are read while four remain.
[[nodiscard]] CHAR16 *FindLineBreak(CHAR16 *Cursor, CHAR16 *End) {
  while (End - Cursor >= static_cast<INTN>(kLanes)) {
    const UINT64 Word = LoadLanes(Cursor);
    if (HasZeroLane(Word) || HasZeroLane(Word ^ kLineFeeds)) {
      break;
    }
    Cursor += kLanes;
  }
  while (Cursor < End && !IsLineBreak(*Cursor)) {
    Cursor++;
  }
  return Cursor;
}

}  // namespace

VOID RaidLibLinesStart(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                       UINTN OutputChars) {
  Lines->Next = Output;
  Lines->Current = nullptr;
  if (Output == nullptr) {
    Lines->End = nullptr;
    return;
  }
  CHAR16 *End = SharedOutputEnd(Output, OutputChars);
  Lines->End =
      End != nullptr ? End : FindTerminator(Output, Output + OutputChars);
}

CHAR16 *RaidLibNextLine(RAID_LINE_CURSOR *Lines) {
  CHAR16 *Cursor = Lines->Next;
  if (Cursor == nullptr) {
    return nullptr;
  }
  while (Cursor < Lines->End && IsLineBreak(*Cursor)) {
    Cursor++;
  }
  if (Cursor >= Lines->End) {
    Lines->Next = Lines->End;
    return nullptr;
  }
  CHAR16 *Line = Cursor;
  Cursor = FindLineBreak(Cursor, Lines->End);
  if (Cursor < Lines->End) {
    *Cursor++ = 0;
  }
  Lines->Next = Cursor;
  Lines->Current = Line;
  return Line;
}

CHAR16 *RaidLibPeekLine(const RAID_LINE_CURSOR *Lines) {
  RAID_LINE_CURSOR Ahead = *Lines;
  return RaidLibNextLine(&Ahead);
}

CHAR16 *RaidLibSkipLines(RAID_LINE_CURSOR *Lines, UINTN Count) {
  CHAR16 *Line = nullptr;
  for (UINTN Index = 0; Index < Count; Index++) {
    Line = RaidLibNextLine(Lines);
    if (Line == nullptr) {
      return nullptr;
    }
  }
  return Line;
}

CHAR16 *RaidLibLineAhead(const RAID_LINE_CURSOR *Lines, UINTN Count) {
  RAID_LINE_CURSOR Ahead = *Lines;
  return RaidLibSkipLines(&Ahead, Count);
}

VOID RaidLibLinesAhead(const RAID_LINE_CURSOR *Lines, CHAR16 **Ahead,
                       UINTN Count) {
  // Past the end, every further line is NULL.
  RAID_LINE_CURSOR Walk = *Lines;
  for (UINTN Index = 0; Index < Count; Index++) {
    Ahead[Index] = RaidLibNextLine(&Walk);
  }
}

VOID RaidLibStepBack(RAID_LINE_CURSOR *Lines) {
  if (Lines->Current != nullptr) {
    Lines->Next = Lines->Current;
    Lines->Current = nullptr;
  }
}

CHAR16 *RaidLibNextLineWithin(RAID_LINE_CURSOR *Lines, UINTN *Budget) {
  if (*Budget == 0) {
    return nullptr;
  }
  CHAR16 *Line = RaidLibNextLine(Lines);
  if (Line != nullptr) {
    (*Budget)--;
  }
  return Line;
}

VOID RaidLibTraceAllLines(const CHAR8 *Caller, CHAR16 *Output, CHAR16 *End) {
  if (Output == nullptr || End == nullptr) {
    return;
  }
  for (CHAR16 *Cursor = Output; Cursor < End; Cursor++) {
    if (*Cursor == u'\n') {
      *Cursor = 0;
    }
  }
  for (CHAR16 *Cursor = Output; Cursor < End;) {
    if (*Cursor == 0) {
      Cursor++;
      continue;
    }
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]%S\n", Cursor);
    while (Cursor < End && *Cursor != 0) {
      Cursor++;
    }
  }
}
