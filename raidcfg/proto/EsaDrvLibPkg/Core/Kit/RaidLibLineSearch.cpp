// Finding the next line that begins with one of a few prefixes without
// cutting every line on the way: the reports are long and a pass often
// wants a handful of their lines.
#include "RaidLibLanes.h"
#include "RaidLibLines.h"
#include "RaidLibText.h"

namespace {

[[nodiscard]] bool IsLineBreak(CHAR16 Char) {
  return Char == u'\n' || Char == 0;
}

[[nodiscard]] bool StartsWithOne(const CHAR16 *Line,
                                 const RAID_LINE_PREFIXES &Set) {
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    if (RaidLibStartsWith(Line, Set.Prefixes[Index])) {
      return true;
    }
  }
  return false;
}

// The line starting at Line, cut, with the walk moved on behind it.
[[nodiscard]] CHAR16 *TakeLine(RAID_LINE_CURSOR *Lines, CHAR16 *Line) {
  Lines->Next = Line;
  return RaidLibNextLine(Lines);
}

// StartsWithOne for a line whose first eight characters are readable:
// those are compared with every prefix's at once, and only a prefix that
// agrees and is longer is compared on.
[[nodiscard]] bool StartsWithOneOfEight(const CHAR16 *Line,
                                        const RAID_LINE_PREFIXES &Set) {
  UINT64 Words[2];
  __builtin_memcpy(Words, Line, sizeof(Words));
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    if ((Words[0] & Set.HeadMasks[Index][0]) == Set.Heads[Index][0] &&
        (Words[1] & Set.HeadMasks[Index][1]) == Set.Heads[Index][1] &&
        (Set.HeadMasks[Index][1] >> 48 == 0 ||
         RaidLibStartsWith(Line + 8, Set.Prefixes[Index] + 8))) {
      return true;
    }
  }
  return false;
}

// TRUE when a line beginning with First and Second may begin with one of
// Set's prefixes.
[[nodiscard]] bool MayStartOne(CHAR16 First, CHAR16 Second,
                               const RAID_LINE_PREFIXES &Set) {
  return ((Set.Pairs >> RaidLibPairBit(First, Second)) & 1) != 0;
}

// Hands each line from Cursor to End that begins with one of Set's
// prefixes to Visit, in order, until Visit says stop (TRUE): the line that
// stopped it, or NULL. A line starts behind each break that no break
// follows, and at Cursor unless it is a break. Sixteen characters are
// looked at for breaks at once, and each line behind one is passed over on
// its first two characters unless they may begin a prefix. Reads stay
// before End.
template <typename Visitor>
[[nodiscard]] CHAR16 *VisitLineStarts(CHAR16 *Cursor, CHAR16 *End,
                                      const RAID_LINE_PREFIXES &Set,
                                      Visitor &&Visit) {
  if (!IsLineBreak(*Cursor) && StartsWithOne(Cursor, Set) && Visit(Cursor)) {
    return Cursor;
  }
  // A line behind a break of a block starts at most sixteen characters on,
  // and its first eight are read: the blocks stop 24 characters before End.
  constexpr INTN kBlock = 2 * raidlib_lanes::kLanes;
  for (; End - Cursor >= kBlock + 8; Cursor += kBlock) {
    for (UINT32 Found = raidlib_lanes::BreakBits16(Cursor); Found != 0;
         Found &= Found - 1) {
      CHAR16 *Line = Cursor + 1 + __builtin_ctz(Found);
      if (MayStartOne(Line[0], Line[1], Set) && !IsLineBreak(Line[0]) &&
          StartsWithOneOfEight(Line, Set) && Visit(Line)) {
        return Line;
      }
    }
  }
  // The last few characters one at a time.
  for (; Cursor + 1 < End; Cursor++) {
    if (IsLineBreak(*Cursor) && !IsLineBreak(Cursor[1]) &&
        StartsWithOne(Cursor + 1, Set) && Visit(Cursor + 1)) {
      return Cursor + 1;
    }
  }
  return nullptr;
}

}  // namespace

CHAR16 *RaidLibNextLineStartingWith(RAID_LINE_CURSOR *Lines,
                                    const RAID_LINE_PREFIXES &Set) {
  CHAR16 *Cursor = Lines->Next;
  CHAR16 *End = Lines->End;
  if (Cursor == nullptr || End == nullptr || Cursor >= End) {
    return RaidLibNextLine(Lines);
  }
  CHAR16 *Line =
      VisitLineStarts(Cursor, End, Set, [](CHAR16 *) { return true; });
  if (Line == nullptr) {
    Lines->Next = End;
    return nullptr;
  }
  return TakeLine(Lines, Line);
}

VOID RaidLibMarkLines(const RAID_LINE_CURSOR *Lines,
                      const RAID_LINE_PREFIXES &Set, UINT32 *Offsets,
                      UINT32 Capacity, RAID_LINE_MARKS *Marks) {
  *Marks = {Lines->Next, nullptr, 0, 0};
  CHAR16 *Cursor = Lines->Next;
  if (Cursor == nullptr || Lines->End == nullptr || Cursor >= Lines->End) {
    Marks->Offsets = Offsets;  // nothing to mark
    return;
  }
  UINT32 Count = 0;
  bool Full = false;
  (VOID)VisitLineStarts(Cursor, Lines->End, Set, [&](CHAR16 *Line) {
    Full = Count == Capacity;
    if (!Full) {
      Offsets[Count++] = static_cast<UINT32>(Line - Cursor);
    }
    return Full;
  });
  if (!Full) {
    Marks->Offsets = Offsets;
    Marks->Count = Count;
  }
}

CHAR16 *RaidLibNextMarkedLine(RAID_LINE_CURSOR *Lines, RAID_LINE_MARKS *Marks,
                              const RAID_LINE_PREFIXES &Set) {
  if (Marks->Offsets == nullptr) {
    return RaidLibNextLineStartingWith(Lines, Set);
  }
  // Marks behind the walk (passed over by a look-ahead it took) are not
  // its lines any more.
  for (; Marks->Index < Marks->Count; Marks->Index++) {
    CHAR16 *Line = Marks->Base + Marks->Offsets[Marks->Index];
    if (Lines->Next == nullptr || Line < Lines->Next) {
      continue;
    }
    const bool Wanted = Lines->End - Line >= 8 ? StartsWithOneOfEight(Line, Set)
                                               : StartsWithOne(Line, Set);
    if (!Wanted) {
      continue;
    }
    Marks->Index++;
    return TakeLine(Lines, Line);
  }
  Lines->Next = Lines->End;
  return nullptr;
}
