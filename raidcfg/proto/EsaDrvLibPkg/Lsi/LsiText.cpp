// Reading storcli output: lines, "key = value" pairs and table words.
#include "LsiText.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "LsiBackend.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

namespace {

// Line feeds separate lines; so do terminators written by earlier walks.
bool IsLineBreak(CHAR16 Char) { return Char == u'\n' || Char == 0; }

}  // namespace

// Starts a walk; the end is the output's terminator within the shared
// buffer's size.
VOID LsiLinesStart(LSI_LINES *Lines, CHAR16 *Output) {
  Lines->Next = Output;
  Lines->End = Output == nullptr ? nullptr
                                 : Output + StrnLenS(Output, LSI_OUTPUT_CHARS);
}

// The next non-empty line, terminated in place.
CHAR16 *LsiNextLine(LSI_LINES *Lines) {
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
  return Line;
}

// The line Count further on (Count 0 gives NULL).
CHAR16 *LsiSkipLines(LSI_LINES *Lines, UINTN Count) {
  CHAR16 *Line = nullptr;
  for (UINTN Index = 0; Index < Count; Index++) {
    Line = LsiNextLine(Lines);
    if (Line == nullptr) {
      return nullptr;
    }
  }
  return Line;
}

// The raw text behind the first "=".
const CHAR16 *LsiValueAfterEquals(const CHAR16 *Line) {
  if (Line == nullptr) {
    return nullptr;
  }
  for (const CHAR16 *Cursor = Line; *Cursor != 0; Cursor++) {
    if (*Cursor == u'=') {
      return Cursor + 1;
    }
  }
  return nullptr;
}

// The decimal number behind "=".
UINT64 LsiNumberAfterEquals(const CHAR16 *Line) {
  return RaidLibReadDecimal(LsiValueAfterEquals(Line));
}

namespace {

// Copies Line into Row->Text, cut to fit, and clears the pieces.
VOID CopyRow(const CHAR16 *Line, LSI_ROW *Row) {
  UINTN Length = 0;
  if (Line != nullptr) {
    while (Length + 1 < LSI_ROW_CHARS && Line[Length] != 0) {
      Row->Text[Length] = Line[Length];
      Length++;
    }
  }
  Row->Text[Length] = 0;
  for (UINTN Index = 0; Index < LSI_MAX_WORDS; Index++) {
    Row->Words[Index] = nullptr;
  }
  Row->Count = 0;
}

// Cuts Row->Text into pieces at any of Delimiters.
UINTN SplitCopy(LSI_ROW *Row, const CHAR16 *Delimiters) {
  CHAR16 *Position = nullptr;
  for (CHAR16 *Word = RaidLibTokenize(Row->Text, Delimiters, &Position);
       Word != nullptr && Row->Count < LSI_MAX_WORDS;
       Word = RaidLibTokenize(nullptr, Delimiters, &Position)) {
    Row->Words[Row->Count++] = Word;
  }
  return Row->Count;
}

}  // namespace

UINTN LsiSplitRow(const CHAR16 *Line, LSI_ROW *Row) {
  CopyRow(Line, Row);
  return SplitCopy(Row, u" ");
}

CHAR16 *LsiSecondPiece(const CHAR16 *Line, LSI_ROW *Scratch) {
  CopyRow(Line, Scratch);
  SplitCopy(Scratch, u"=");
  return Scratch->Words[1];
}

CHAR16 *LsiTrimmedValue(const CHAR16 *Line, LSI_ROW *Scratch) {
  return RaidLibTrim(LsiSecondPiece(Line, Scratch));
}

// The unit code of a word, with any trailing line end ignored.
UINT32 LsiUnitCode(const CHAR16 *Word) {
  if (Word == nullptr) {
    return RaidLibUnitCode(nullptr);
  }
  CHAR16 Unit[4] = {};
  UINTN Length = 0;
  while (Word[Length] != 0 && !RaidLibIsSpace(Word[Length])) {
    if (Length == 3) {
      return RAID_UNIT_OTHER;  // longer than any unit word
    }
    Unit[Length] = Word[Length];
    Length++;
  }
  if (Word[Length] != 0 && Word[Length] != u'\r') {
    return RAID_UNIT_OTHER;
  }
  return RaidLibUnitCode(Unit);
}

BOOLEAN LsiWordIs(const CHAR16 *Word, const CHAR16 *Text) {
  return (Word != nullptr && StrCmp(Word, Text) == 0) ? TRUE : FALSE;
}

// A stripped, bounded copy of Text.
CHAR16 *LsiCopyStripped(const CHAR16 *Text, UINTN MaxChars) {
  if (Text == nullptr) {
    return nullptr;
  }
  while (*Text != 0 && RaidLibIsSpace(*Text)) {
    Text++;
  }
  UINTN Length = StrLen(Text);
  while (Length > 0 && RaidLibIsSpace(Text[Length - 1])) {
    Length--;
  }
  if (MaxChars != 0 && Length > MaxChars) {
    Length = MaxChars;
  }
  CHAR16 *Copy =
      static_cast<CHAR16 *>(AllocatePool((Length + 1) * sizeof(CHAR16)));
  if (Copy == nullptr) {
    return nullptr;
  }
  CopyMem(Copy, Text, Length * sizeof(CHAR16));
  Copy[Length] = 0;
  return Copy;
}

// Traces each line of [Output, End) under the caller's name.
VOID LsiTraceAllLines(const CHAR8 *Caller, CHAR16 *Output, CHAR16 *End) {
  if (Output == nullptr || End == nullptr) {
    return;
  }
  for (CHAR16 *Cursor = Output; Cursor < End; Cursor++) {
    if (*Cursor == u'\n') {
      *Cursor = 0;
    }
  }
  if (gRaidLibSetupProtocol == nullptr ||
      gRaidLibSetupProtocol->DebugPrint == nullptr) {
    return;
  }
  for (CHAR16 *Cursor = Output; Cursor < End;) {
    if (*Cursor == 0) {
      Cursor++;
      continue;
    }
    gRaidLibSetupProtocol->DebugPrint(TARN_DEBUG_INFO, "[%a]%S\n", Caller,
                                      Cursor);
    while (Cursor < End && *Cursor != 0) {
      Cursor++;
    }
  }
}

}  // namespace lsi
