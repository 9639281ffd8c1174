// Text whose end is already known: a walk over it that does not look for
// the end again, and the skip search for a set of phrases in it.
#include "RaidLibLines.h"

namespace {

// TRUE when the Length characters at Text are Phrase's.
[[nodiscard]] bool PhraseAt(const CHAR16 *Text, const CHAR16 *Phrase,
                            UINT32 Length) {
  for (UINT32 Index = 0; Index < Length; Index++) {
    if (Text[Index] != Phrase[Index]) {
      return false;
    }
  }
  return true;
}

// The phrases of Set that end on Text[Last], bit k for phrase k.
[[nodiscard]] UINT32 PhrasesEndingAt(const CHAR16 *Text, UINTN Last,
                                     const RAID_PHRASES &Set) {
  UINT32 Which = 0;
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    const UINT32 Length = Set.Lengths[Index];
    if (Last + 1 >= Length &&
        PhraseAt(Text + Last + 1 - Length, Set.Phrases[Index], Length)) {
      Which |= 1U << Index;
    }
  }
  return Which;
}

}  // namespace

VOID RaidLibLinesOver(RAID_LINE_CURSOR *Lines, CHAR16 *Text, UINTN TextChars) {
  Lines->Next = Text;
  Lines->Current = nullptr;
  Lines->End = Text != nullptr ? Text + TextChars : nullptr;
}

UINTN RaidLibNextPhraseEnd(const CHAR16 *Text, UINTN Chars, UINTN From,
                           const RAID_PHRASES &Set, UINT32 *Which) {
  *Which = 0;
  // No phrase ends before the shortest one could.
  UINTN Last = From < Set.Shortest - 1 ? Set.Shortest - 1 : From;
  if (Last == 0 && Last < Chars) {
    *Which = PhrasesEndingAt(Text, 0, Set);
    if (*Which != 0) {
      return 0;
    }
    Last = 1;
  }
  // The pair of characters that ends the window (as long as the shortest
  // phrase) says how far it may move on; where a phrase may end, every
  // phrase is compared.
  while (Last < Chars) {
    const UINT8 Shift = Set.Shift[RaidLibPairEntry(Text[Last - 1], Text[Last])];
    if (Shift != 0) {
      Last += Shift;
      continue;
    }
    *Which = PhrasesEndingAt(Text, Last, Set);
    if (*Which != 0) {
      return Last;
    }
    Last++;
  }
  return Chars;
}
