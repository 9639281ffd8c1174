// The line walk over a tool's output.
#include "RaidLibLines.h"

#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibTrace.h"

namespace {

// Line feeds separate lines; so do terminators written by earlier walks.
[[nodiscard]] bool IsLineBreak(CHAR16 Char) {
  return Char == u'\n' || Char == 0;
}

}  // namespace

VOID RaidLibLinesStart(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                       UINTN OutputChars) {
  Lines->Next = Output;
  Lines->Current = nullptr;
  Lines->End =
      Output == nullptr ? nullptr : Output + StrnLenS(Output, OutputChars);
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
  while (Cursor < Lines->End && !IsLineBreak(*Cursor)) {
    Cursor++;
  }
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
