// Rows and "key = value" pieces of tool output.
#include "RaidLibRow.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLib.h"
#include "RaidLibText.h"

namespace {

// Copies Line into Row->Text, cut to fit, and clears the pieces.
VOID CopyRow(const CHAR16 *Line, RAID_ROW *Row) {
  UINTN Length = 0;
  if (Line != nullptr) {
    while (Length + 1 < RAID_ROW_CHARS && Line[Length] != 0) {
      Row->Text[Length] = Line[Length];
      Length++;
    }
  }
  Row->Text[Length] = 0;
  for (UINTN Index = 0; Index < RAID_ROW_MAX_WORDS; Index++) {
    Row->Words[Index] = nullptr;
  }
  Row->Count = 0;
}

}  // namespace

UINTN RaidLibSplitRowOn(const CHAR16 *Line, const CHAR16 *Delimiters,
                        RAID_ROW *Row) {
  CopyRow(Line, Row);
  CHAR16 *Position = nullptr;
  for (CHAR16 *Word = RaidLibTokenize(Row->Text, Delimiters, &Position);
       Word != nullptr && Row->Count < RAID_ROW_MAX_WORDS;
       Word = RaidLibTokenize(nullptr, Delimiters, &Position)) {
    Row->Words[Row->Count++] = Word;
  }
  return Row->Count;
}

UINTN RaidLibSplitRow(const CHAR16 *Line, RAID_ROW *Row) {
  return RaidLibSplitRowOn(Line, u" ", Row);
}

const CHAR16 *RaidLibValueAfter(const CHAR16 *Line, CHAR16 Separator) {
  if (Line == nullptr) {
    return nullptr;
  }
  for (const CHAR16 *Cursor = Line; *Cursor != 0; Cursor++) {
    if (*Cursor == Separator) {
      return Cursor + 1;
    }
  }
  return nullptr;
}

UINT64 RaidLibNumberAfter(const CHAR16 *Line, CHAR16 Separator) {
  return RaidLibReadDecimal(RaidLibValueAfter(Line, Separator));
}

CHAR16 *RaidLibSecondPiece(const CHAR16 *Line, const CHAR16 *Separators,
                           RAID_ROW *Scratch) {
  RaidLibSplitRowOn(Line, Separators, Scratch);
  return Scratch->Words[1];
}

CHAR16 *RaidLibTrimmedValue(const CHAR16 *Line, const CHAR16 *Separators,
                            RAID_ROW *Scratch) {
  return RaidLibTrim(RaidLibSecondPiece(Line, Separators, Scratch));
}

BOOLEAN RaidLibWordIs(const CHAR16 *Word, const CHAR16 *Text) {
  return (Word != nullptr && StrCmp(Word, Text) == 0) ? TRUE : FALSE;
}

UINT32 RaidLibUnitCodeOfWord(const CHAR16 *Word) {
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

CHAR16 *RaidLibCopyStripped(const CHAR16 *Text, UINTN MaxChars) {
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
