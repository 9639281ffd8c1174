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

// The window's last character, as long as the shortest phrase: the pair of
// characters that ends it says how far it may move on, and only where a
// phrase may end are the phrases compared. Shift 0 marks such a place;
// the first character has no pair and is always compared.
[[nodiscard]] UINT8 WindowShift(const CHAR16 *Text, UINTN Last,
                                const RAID_PHRASES &Set) {
  return Last == 0 ? 0
                   : Set.Shift[RaidLibPairEntry(Text[Last - 1], Text[Last])];
}

// Counts the phrases Which that end on Text[Last] in LinesWith. A find
// counts when a line break lies between it and that phrase's previous find
// (Found): each character is looked back at once per phrase at most,
// however long a line.
VOID CountFinds(const CHAR16 *Text, UINTN Last, UINT32 Which,
                const RAID_PHRASES &Set, const CHAR16 **Found,
                UINT32 *LinesWith) {
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    if ((Which & (1U << Index)) == 0) {
      continue;
    }
    const CHAR16 *Start = Text + Last + 1 - Set.Lengths[Index];
    const CHAR16 *Before = Found[Index];
    bool Another = Before == nullptr;
    for (const CHAR16 *At = Start; !Another && At > Before; At--) {
      Another = At[-1] == u'\n' || At[-1] == 0;
    }
    LinesWith[Index] += Another ? 1 : 0;
    Found[Index] = Start;
  }
}

// One skip search over a span that counts the lines holding each phrase.
typedef struct {
  const CHAR16 *Text;
  UINTN Chars;
  UINTN Last;              // the window's last character
  const CHAR16 *Found[8];  // where each phrase was found last
} PHRASE_COUNT;

// Moves the window once, counting what ends where it stands; FALSE once it
// has passed the span's end. Inline, so that two searches' windows stay in
// registers while they step by turns.
[[nodiscard]] [[gnu::always_inline]] inline bool StepCount(
    PHRASE_COUNT *Count, const RAID_PHRASES &Set, UINT32 *LinesWith) {
  if (Count->Last >= Count->Chars) {
    return false;
  }
  const UINT8 Shift = WindowShift(Count->Text, Count->Last, Set);
  if (Shift != 0) {
    Count->Last += Shift;
    return true;
  }
  const UINT32 Which = PhrasesEndingAt(Count->Text, Count->Last, Set);
  if (Which != 0) {
    CountFinds(Count->Text, Count->Last, Which, Set, Count->Found, LinesWith);
  }
  Count->Last++;
  return true;
}

}  // namespace

VOID RaidLibLinesOver(RAID_LINE_CURSOR *Lines, CHAR16 *Text, UINTN TextChars) {
  *Lines = {};  // no line returned yet, whatever else the walk keeps
  Lines->Next = Text;
  Lines->End = Text != nullptr ? Text + TextChars : nullptr;
}

UINTN RaidLibNextPhraseEnd(const CHAR16 *Text, UINTN Chars, UINTN From,
                           const RAID_PHRASES &Set, UINT32 *Which) {
  // No phrase ends before the shortest one could.
  for (UINTN Last = From < Set.Shortest - 1 ? Set.Shortest - 1 : From;
       Last < Chars;) {
    const UINT8 Shift = WindowShift(Text, Last, Set);
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
  *Which = 0;
  return Chars;
}

VOID RaidLibCountPhraseLines(const CHAR16 *Text, UINTN Chars,
                             const RAID_PHRASES &Set, UINT32 *LinesWith) {
  for (UINT32 Index = 0; Index < Set.Count; Index++) {
    LinesWith[Index] = 0;
  }
  if (Text == nullptr) {
    return;
  }
  // Each step of a skip search waits on the one before. Two searches, over
  // the text before and from a line break near its middle, step by turns
  // so that their steps overlap; no line lies in both, as no phrase holds a
  // line break.
  UINTN Middle = Chars / 2;
  while (Middle < Chars && Text[Middle] != u'\n' && Text[Middle] != 0) {
    Middle++;
  }
  PHRASE_COUNT Head = {Text, Middle, Set.Shortest - 1, {}};
  PHRASE_COUNT Tail = {Text + Middle, Chars - Middle, Set.Shortest - 1, {}};
  while (StepCount(&Head, Set, LinesWith) && StepCount(&Tail, Set, LinesWith)) {
  }
  while (StepCount(&Head, Set, LinesWith)) {
  }
  while (StepCount(&Tail, Set, LinesWith)) {
  }
}
