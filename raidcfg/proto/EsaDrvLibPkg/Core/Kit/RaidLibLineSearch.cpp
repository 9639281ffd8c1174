// Finding the next line that begins with one of a few prefixes without
// cutting every line on the way: the reports are long and a pass often
// wants a handful of their lines.
#include "RaidLibLanes.h"
#include "RaidLibLines.h"
#include "RaidLibText.h"

namespace {

using raidlib_lanes::CharLanes;

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

// Set's pairs of first characters, each spread over eight lanes.
struct PairLanes {
  explicit PairLanes(const RAID_LINE_PREFIXES &Set) : Count(Set.PairCount) {
    for (UINT32 Pair = 0; Pair < Count; Pair++) {
      First[Pair] = CharLanes{} + static_cast<UINT16>(Set.First[Pair]);
      Second[Pair] = CharLanes{} + static_cast<UINT16>(Set.Second[Pair]);
      AnySecond[Pair] = CharLanes{} + Set.AnySecond[Pair];
    }
  }

  // Lanes whose character (At) and the one behind it (Behind) are some
  // prefix's first two.
  [[nodiscard]] UINT32 Hits(CharLanes At, CharLanes Behind) const {
    CharLanes Hit = {};
    for (UINT32 Pair = 0; Pair < Count; Pair++) {
      Hit |= (CharLanes)(At == First[Pair]) &
             ((CharLanes)(Behind == Second[Pair]) | AnySecond[Pair]);
    }
    return raidlib_lanes::MaskOf(Hit);
  }

  UINT32 Count;
  CharLanes First[8];
  CharLanes Second[8];
  CharLanes AnySecond[8];
};

// The line starting at Line, cut, with the walk moved on behind it.
[[nodiscard]] CHAR16 *TakeLine(RAID_LINE_CURSOR *Lines, CHAR16 *Line) {
  Lines->Next = Line;
  return RaidLibNextLine(Lines);
}

}  // namespace

CHAR16 *RaidLibNextLineStartingWith(RAID_LINE_CURSOR *Lines,
                                    const RAID_LINE_PREFIXES &Set) {
  CHAR16 *Cursor = Lines->Next;
  CHAR16 *End = Lines->End;
  if (Cursor == nullptr || End == nullptr || Cursor >= End) {
    return RaidLibNextLine(Lines);
  }
  // The walk's first character starts a line unless it is a break.
  if (!IsLineBreak(*Cursor) && StartsWithOne(Cursor, Set)) {
    return TakeLine(Lines, Cursor);
  }
  // A line starts behind each break that no break follows (no prefix
  // begins with a break). Eight characters are looked at for breaks at
  // once, and where there is one, the two characters behind each break are
  // compared with the prefixes' first two; loads stay before End.
  using namespace raidlib_lanes;
  const PairLanes Pairs(Set);
  for (; End - Cursor >= static_cast<INTN>(raidlib_lanes::kLanes) + 2;
       Cursor += raidlib_lanes::kLanes) {
    UINT32 Found = Breaks(Load(Cursor));
    if (Found == 0) {
      continue;
    }
    // One bit per lane: the even ones.
    Found &= Pairs.Hits(Load(Cursor + 1), Load(Cursor + 2)) & 0x5555U;
    for (; Found != 0; Found &= Found - 1) {
      CHAR16 *Line = Cursor + 1 + FirstLane(Found);
      if (StartsWithOne(Line, Set)) {
        return TakeLine(Lines, Line);
      }
    }
  }
  // The last few characters one at a time.
  for (; Cursor + 1 < End; Cursor++) {
    if (IsLineBreak(*Cursor) && !IsLineBreak(Cursor[1]) &&
        StartsWithOne(Cursor + 1, Set)) {
      return TakeLine(Lines, Cursor + 1);
    }
  }
  Lines->Next = End;
  return nullptr;
}
