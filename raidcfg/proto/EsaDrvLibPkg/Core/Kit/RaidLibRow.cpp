// Rows and "key = value" pieces of tool output.
#include "RaidLibRow.h"

#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "RaidLib.h"
#include "RaidLibLanes.h"
#include "RaidLibText.h"

namespace {

// TRUE when Char is one of the NUL-terminated Delimiters.
[[nodiscard]] bool IsDelimiter(CHAR16 Char, const CHAR16 *Delimiters) {
  for (const CHAR16 *Cursor = Delimiters; *Cursor != 0; Cursor++) {
    if (*Cursor == Char) {
      return true;
    }
  }
  return false;
}

// Copies Line into Row->Text, cut to fit, and cuts the copy into words in
// the same pass: runs of delimiters separate, a word ends at the next
// delimiter, and words past the last slot are not kept (the one behind the
// last slot still gets its end, as a token walk would have cut it before
// stopping). Single is the one
// delimiter of the common case (blanks); Delimiters the whole set.
template <bool OneDelimiter>
UINTN CopyAndSplit(const CHAR16 *Line, CHAR16 Single, const CHAR16 *Delimiters,
                   RAID_ROW *Row) {
  for (UINTN Index = 0; Index < RAID_ROW_MAX_WORDS; Index++) {
    Row->Words[Index] = nullptr;
  }
  Row->Count = 0;
  UINTN Length = 0;
  UINTN Seen = 0;
  bool InWord = false;
  if (Line != nullptr) {
    for (; Length + 1 < RAID_ROW_CHARS && Line[Length] != 0; Length++) {
      const CHAR16 Char = Line[Length];
      const bool Separates =
          OneDelimiter ? Char == Single : IsDelimiter(Char, Delimiters);
      if (Separates) {
        Row->Text[Length] =
            (InWord && Seen <= RAID_ROW_MAX_WORDS + 1) ? 0 : Char;
        InWord = false;
        continue;
      }
      Row->Text[Length] = Char;
      if (!InWord) {
        Seen++;
        if (Row->Count < RAID_ROW_MAX_WORDS) {
          Row->Words[Row->Count++] = &Row->Text[Length];
        }
      }
      InWord = true;
    }
  }
  Row->Text[Length] = 0;
  return Row->Count;
}

// A row's blanks as bits, 64 characters to a mask.
constexpr UINTN kMaskChars = 64;

// The words of a row as the split cuts them, built 64 characters at a
// time: a word is a run of characters that are no blank; a word's end is
// cut for the first RAID_ROW_MAX_WORDS + 1 words and only the first
// RAID_ROW_MAX_WORDS are kept.
struct RowCut {
  RAID_ROW *Row;
  UINTN Count;    // words kept
  UINTN Ended;    // word ends met
  UINT64 InWord;  // 1 when the character before the next piece is a word's

  // Cuts the Chars characters copied at Row->Text + Base, of which Blanks
  // has bit k set for each blank at Base + k (bits past Chars are ignored).
  VOID Cut(UINTN Base, UINTN Chars, UINT64 Blanks) {
    const UINT64 Within = Chars >= kMaskChars ? ~0ULL : (1ULL << Chars) - 1;
    const UINT64 WordChars = ~Blanks & Within;
    const UINT64 AfterWordChar = (WordChars << 1) | InWord;
    for (UINT64 Starts = WordChars & ~AfterWordChar;
         Starts != 0 && Count < RAID_ROW_MAX_WORDS; Starts &= Starts - 1) {
      Row->Words[Count++] = &Row->Text[Base + __builtin_ctzll(Starts)];
    }
    for (UINT64 Ends = Blanks & Within & AfterWordChar;
         Ends != 0 && Ended <= RAID_ROW_MAX_WORDS; Ends &= Ends - 1) {
      Row->Text[Base + __builtin_ctzll(Ends)] = 0;
      Ended++;
    }
    InWord = (WordChars >> (kMaskChars - 1)) & 1;
  }
};

// Sixteen characters at a time (a piece is four times that).
constexpr UINTN kVectorChars = 2 * raidlib_lanes::kLanes;

// Copies the next (at most 64) characters of Line from *Length on into
// Row->Text, stopping at the terminator or Limit; *Blanks gets bit k for a
// blank at the piece's start plus k (and maybe bits past the copy). TRUE
// when the line ended within. Whole vectors are read while sixteen
// characters remain before the piece's stop.
[[nodiscard]] bool CopyRowPiece(const CHAR16 *Line, UINTN Limit, RAID_ROW *Row,
                                UINTN *Length, UINT64 *Blanks) {
  const UINTN Base = *Length;
  const UINTN Stop = Limit - Base > kMaskChars ? Base + kMaskChars : Limit;
  UINTN At = Base;
  UINT64 Bits = 0;
  using namespace raidlib_lanes;
  for (; Stop - At >= kVectorChars; At += kVectorChars) {
    const CharLanes Low = Load(Line + At);
    const CharLanes High = Load(Line + At + kLanes);
    Store(Row->Text + At, Low);
    Store(Row->Text + At + kLanes, High);
    Bits |= static_cast<UINT64>(EqualBits16(Low, High, u' ')) << (At - Base);
    if (const UINT32 Zeros = EqualBits16(Low, High, 0); Zeros != 0) {
      *Length = At + static_cast<UINTN>(__builtin_ctz(Zeros));
      *Blanks = Bits;
      return true;
    }
  }
  for (; At < Stop && Line[At] != 0; At++) {
    Row->Text[At] = Line[At];
    Bits |= static_cast<UINT64>(Line[At] == u' ') << (At - Base);
  }
  *Length = At;
  *Blanks = Bits;
  return At < Stop || At == Limit;
}

}  // namespace

UINTN RaidLibSplitRowBefore(const CHAR16 *Line, const CHAR16 *End,
                            RAID_ROW *Row) {
  for (UINTN Index = 0; Index < RAID_ROW_MAX_WORDS; Index++) {
    Row->Words[Index] = nullptr;
  }
  UINTN Length = 0;
  RowCut Cut = {Row, 0, 0, 0};
  if (Line != nullptr && End != nullptr && End > Line) {
    const UINTN Readable = static_cast<UINTN>(End - Line);
    const UINTN Limit =
        Readable < RAID_ROW_CHARS - 1 ? Readable : RAID_ROW_CHARS - 1;
    for (bool Ended = false; !Ended;) {
      const UINTN Base = Length;
      UINT64 Blanks = 0;
      Ended = CopyRowPiece(Line, Limit, Row, &Length, &Blanks);
      Cut.Cut(Base, Length - Base, Blanks);
    }
  }
  Row->Text[Length] = 0;
  Row->Count = Cut.Count;
  return Row->Count;
}

UINTN RaidLibSplitRowOn(const CHAR16 *Line, const CHAR16 *Delimiters,
                        RAID_ROW *Row) {
  if (Delimiters != nullptr && Delimiters[0] != 0 && Delimiters[1] == 0) {
    return CopyAndSplit<true>(Line, Delimiters[0], Delimiters, Row);
  }
  return CopyAndSplit<false>(Line, 0, Delimiters != nullptr ? Delimiters : u"",
                             Row);
}

UINTN RaidLibSplitRow(const CHAR16 *Line, RAID_ROW *Row) {
  return RaidLibSplitRowOn(Line, u" ", Row);
}

namespace {

// Where the Index-th Separator-word of the first Limit characters of Text
// lies (runs of Separator are one): [*Start, *End). FALSE without one.
[[nodiscard]] bool FindWord(const CHAR16 *Text, UINTN Limit, CHAR16 Separator,
                            UINTN Index, UINTN *Start, UINTN *End) {
  UINTN At = 0;
  for (UINTN Word = 0;; Word++) {
    while (At < Limit && Text[At] == Separator) {
      At++;
    }
    if (At >= Limit || Text[At] == 0) {
      return false;
    }
    *Start = At;
    while (At < Limit && Text[At] != 0 && Text[At] != Separator) {
      At++;
    }
    if (Word == Index) {
      *End = At;
      return true;
    }
  }
}

// FindWord for a text of Count characters, none of them a terminator: eight
// characters are looked at at once.
[[nodiscard]] bool FindWordIn(const CHAR16 *Text, UINTN Count,
                              CHAR16 Separator, UINTN Index, UINTN *Start,
                              UINTN *End) {
  using namespace raidlib_lanes;
  UINTN At = 0;
  for (UINTN Word = 0;; Word++) {
    At = SkipIn(Text, At, Count, Separator);
    if (At >= Count) {
      return false;
    }
    *Start = At;
    At = FindIn(Text, At, Count, Separator);
    if (Word == Index) {
      *End = At;
      return true;
    }
  }
}

// Row emptied, then holding the Length characters at Text as its only word.
CHAR16 *CopyAlone(const CHAR16 *Text, UINTN Length, RAID_ROW *Row) {
  CopyMem(Row->Text, Text, Length * sizeof(CHAR16));
  Row->Text[Length] = 0;
  Row->Words[0] = Row->Text;
  Row->Count = 1;
  return Row->Text;
}

VOID EmptyRow(RAID_ROW *Row) {
  for (UINTN Slot = 0; Slot < RAID_ROW_MAX_WORDS; Slot++) {
    Row->Words[Slot] = nullptr;
  }
  Row->Count = 0;
  Row->Text[0] = 0;
}

// Within the part of a line a row holds, as the split sees it.
constexpr UINTN kRowLimit = RAID_ROW_CHARS - 1;

}  // namespace

CHAR16 *RaidLibRowWordOn(const CHAR16 *Line, CHAR16 Separator, UINTN Index,
                         RAID_ROW *Row) {
  EmptyRow(Row);
  UINTN Start = 0;
  UINTN End = 0;
  if (Line == nullptr || Index >= RAID_ROW_MAX_WORDS ||
      !FindWord(Line, kRowLimit, Separator, Index, &Start, &End)) {
    return nullptr;
  }
  return CopyAlone(Line + Start, End - Start, Row);
}

CHAR16 *RaidLibLineWord(const CHAR16 *Line, UINTN LineChars,
                        CHAR16 Separator, UINTN Index, RAID_ROW *Row) {
  EmptyRow(Row);
  UINTN Start = 0;
  UINTN End = 0;
  const UINTN Count = LineChars < kRowLimit ? LineChars : kRowLimit;
  if (Line == nullptr || Index >= RAID_ROW_MAX_WORDS ||
      !FindWordIn(Line, Count, Separator, Index, &Start, &End)) {
    return nullptr;
  }
  return CopyAlone(Line + Start, End - Start, Row);
}

CHAR16 *RaidLibRowWord(const CHAR16 *Line, UINTN Index, RAID_ROW *Row) {
  return RaidLibRowWordOn(Line, u' ', Index, Row);
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
  // One separator, the common case: only the piece is copied.
  if (Separators != nullptr && Separators[0] != 0 && Separators[1] == 0) {
    return RaidLibRowWordOn(Line, Separators[0], 1, Scratch);
  }
  RaidLibSplitRowOn(Line, Separators, Scratch);
  return Scratch->Words[1];
}

namespace {

// A piece of a scratch row, stripped where it stands rather than moved to
// the row's start.
[[nodiscard]] CHAR16 *StripInPlace(CHAR16 *Piece) {
  if (Piece == nullptr) {
    return nullptr;
  }
  const CHAR16 *Start = Piece;
  const UINTN Length = RaidLibStrippedLength(&Start);
  Piece += Start - Piece;
  Piece[Length] = 0;
  return Piece;
}

}  // namespace

CHAR16 *RaidLibTrimmedValue(const CHAR16 *Line, const CHAR16 *Separators,
                            RAID_ROW *Scratch) {
  return StripInPlace(RaidLibSecondPiece(Line, Separators, Scratch));
}

CHAR16 *RaidLibLineTrimmedValue(const CHAR16 *Line, UINTN LineChars,
                                CHAR16 Separator, RAID_ROW *Scratch) {
  return StripInPlace(RaidLibLineWord(Line, LineChars, Separator, 1, Scratch));
}

UINTN RaidLibStrippedLength(const CHAR16 **Text) {
  while (**Text != 0 && RaidLibIsSpace(**Text)) {
    (*Text)++;
  }
  UINTN Length = 0;
  while ((*Text)[Length] != 0) {
    Length++;
  }
  while (Length > 0 && RaidLibIsSpace((*Text)[Length - 1])) {
    Length--;
  }
  return Length;
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
  UINTN Length = RaidLibStrippedLength(&Text);
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
