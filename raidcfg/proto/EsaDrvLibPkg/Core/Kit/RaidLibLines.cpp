// The line walk over a tool's output.
#include "RaidLibLines.h"

#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibLanes.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace {

// Line feeds separate lines; so do terminators written by earlier walks.
[[nodiscard]] bool IsLineBreak(CHAR16 Char) {
  return Char == u'\n' || Char == 0;
}

// Four characters at a time in a 64-bit word, for the line count: a lane
// is zero when the word minus one in every lane borrows into that lane's
// top bit.
constexpr UINT64 kLaneOnes = 0x0001000100010001ULL;
constexpr UINT64 kLaneTops = 0x8000800080008000ULL;
constexpr UINT64 kLineFeeds = kLaneOnes * u'\n';
constexpr UINTN kLanes = sizeof(UINT64) / sizeof(CHAR16);

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

// The first terminator from Cursor on, or End, where every character
// before End is the buffer's: eight at a time while eight remain.
[[nodiscard]] CHAR16 *FindTerminatorInBuffer(CHAR16 *Cursor, CHAR16 *End) {
  using namespace raidlib_lanes;
  // Sixteen at a time while sixteen remain: no terminator in either half
  // is one test.
  for (; End - Cursor >= static_cast<INTN>(2 * raidlib_lanes::kLanes);
       Cursor += 2 * raidlib_lanes::kLanes) {
    const CharLanes Both = (CharLanes)(Load(Cursor) == static_cast<UINT16>(0)) |
                           (CharLanes)(Load(Cursor + raidlib_lanes::kLanes) ==
                                       static_cast<UINT16>(0));
    if (MaskOf(Both) != 0) {
      break;
    }
  }
  for (; End - Cursor >= static_cast<INTN>(raidlib_lanes::kLanes);
       Cursor += raidlib_lanes::kLanes) {
    const UINT32 Ends = Equal(Load(Cursor), 0);
    if (Ends != 0) {
      return Cursor + FirstLane(Ends);
    }
  }
  return FindTerminator(Cursor, End);
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
  return FindTerminatorInBuffer(Output, Output + Written);
}

// The first line break from Cursor on, or End; every character before End
// is the output's, so eight at a time are read while eight remain.
[[nodiscard]] CHAR16 *FindLineBreak(CHAR16 *Cursor, CHAR16 *End) {
  using namespace raidlib_lanes;
  for (; End - Cursor >= static_cast<INTN>(raidlib_lanes::kLanes);
       Cursor += raidlib_lanes::kLanes) {
    const UINT32 Found = Breaks(Load(Cursor));
    if (Found != 0) {
      return Cursor + FirstLane(Found);
    }
  }
  while (Cursor < End && !IsLineBreak(*Cursor)) {
    Cursor++;
  }
  return Cursor;
}

// The top bit of every lane that is zero, exact in each lane (no carry
// crosses into the next).
[[nodiscard]] UINT64 ZeroLanes(UINT64 Word) {
  return ~(((Word & ~kLaneTops) + ~kLaneTops) | Word) & kLaneTops;
}

// The lines from Cursor to End: a line starts at a character that is no
// line break behind one that is (or behind the start). With TextEnd the
// text ends at its first terminator instead, and *TextEnd receives its
// place (End without one).
[[nodiscard]] UINT32 CountLineStarts(const CHAR16 *Cursor, const CHAR16 *End,
                                     const CHAR16 **TextEnd) {
  // Most words of a report hold no line break and follow none: a lane may
  // be a break (0 or 10) only when it has no bit but those of 10 (it is 0,
  // 2, 8 or 10), and only such words are told lane by lane.
  constexpr UINT64 kNoBreakBits = kLaneOnes * static_cast<UINT16>(~u'\n');
  // The top bit of a lane that may be a break (others too, by a borrow).
  const auto MayBreak = [](UINT64 Word) {
    const UINT64 Masked = Word & kNoBreakBits;
    return (Masked - kLaneOnes) & ~Masked & kLaneTops;
  };
  UINT32 Count = 0;
  // Each lane counts its own starts, at most 0xFFFF before they are added.
  UINT64 Lanes = 0;
  UINT32 Words = 0;
  UINT64 BreakBefore = kLaneTops & 0xFFFF;  // lane 0: the start counts
  while (End - Cursor >= static_cast<INTN>(kLanes)) {
    // Such words pass two at a time, with one test.
    while (BreakBefore == 0 && End - Cursor >= static_cast<INTN>(2 * kLanes)) {
      if ((MayBreak(LoadLanes(Cursor)) |
           MayBreak(LoadLanes(Cursor + kLanes))) != 0) {
        break;
      }
      // This is the text's first reading: what follows is asked for ahead.
      __builtin_prefetch(Cursor + 256);
      Cursor += 2 * kLanes;
    }
    const UINT64 Word = LoadLanes(Cursor);
    Cursor += kLanes;
    if (BreakBefore == 0 && MayBreak(Word) == 0) {
      continue;
    }
    if (TextEnd != nullptr && ZeroLanes(Word) != 0) {
      Cursor -= kLanes;  // the text ends in this word
      break;
    }
    const UINT64 Breaks = ZeroLanes(Word) | ZeroLanes(Word ^ kLineFeeds);
    Lanes += (~Breaks & kLaneTops & ((Breaks << 16) | BreakBefore)) >> 15;
    BreakBefore = (Breaks >> 48) & 0x8000;
    if (++Words == 0xFFFF) {
      for (; Lanes != 0; Lanes >>= 16) {
        Count += static_cast<UINT32>(Lanes & 0xFFFF);
      }
      Words = 0;
    }
  }
  for (; Lanes != 0; Lanes >>= 16) {
    Count += static_cast<UINT32>(Lanes & 0xFFFF);
  }
  bool AfterBreak = BreakBefore != 0;
  for (; Cursor < End && (TextEnd == nullptr || *Cursor != 0); Cursor++) {
    const bool Break = IsLineBreak(*Cursor);
    Count += (!Break && AfterBreak) ? 1 : 0;
    AfterBreak = Break;
  }
  if (TextEnd != nullptr) {
    *TextEnd = Cursor;
  }
  return Count;
}

}  // namespace

UINT32 RaidLibCountBufferLines(const CHAR16 *Text, UINTN BufferChars,
                               const RAID_PHRASES &Set, UINT32 *LinesWith,
                               UINTN *TextChars) {
  const CHAR16 *End = Text;
  const UINT32 Count =
      Text != nullptr ? CountLineStarts(Text, Text + BufferChars, &End) : 0;
  *TextChars = static_cast<UINTN>(End - Text);
  RaidLibCountPhraseLines(Text, *TextChars, Set, LinesWith);
  return Count;
}

UINT32 RaidLibCountLines(const RAID_LINE_CURSOR *Lines,
                         const RAID_PHRASES &Set, UINT32 *LinesWith) {
  const CHAR16 *Text = Lines->Next;
  const CHAR16 *End = Lines->End;
  if (Text == nullptr || End == nullptr || Text >= End) {
    RaidLibCountPhraseLines(nullptr, 0, Set, LinesWith);
    return 0;
  }
  RaidLibCountPhraseLines(Text, static_cast<UINTN>(End - Text), Set,
                          LinesWith);
  return CountLineStarts(Text, End, nullptr);
}

VOID RaidLibLinesStart(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                       UINTN OutputChars) {
  Lines->Next = Output;
  Lines->Current = nullptr;
  Lines->CurrentEnd = nullptr;
  if (Output == nullptr) {
    Lines->End = nullptr;
    return;
  }
  CHAR16 *End = SharedOutputEnd(Output, OutputChars);
  Lines->End =
      End != nullptr ? End : FindTerminator(Output, Output + OutputChars);
}

VOID RaidLibLinesStartInBuffer(RAID_LINE_CURSOR *Lines, CHAR16 *Output,
                               UINTN BufferChars) {
  Lines->Next = Output;
  Lines->Current = nullptr;
  Lines->CurrentEnd = nullptr;
  Lines->End = Output != nullptr
                   ? FindTerminatorInBuffer(Output, Output + BufferChars)
                   : nullptr;
}

UINTN RaidLibBufferTextChars(CHAR16 *Text, UINTN BufferChars) {
  if (Text == nullptr) {
    return 0;
  }
  return static_cast<UINTN>(FindTerminatorInBuffer(Text, Text + BufferChars) -
                            Text);
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
  Lines->CurrentEnd = Cursor;
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

VOID RaidLibLinesAheadSized(const RAID_LINE_CURSOR *Lines, CHAR16 **Ahead,
                            UINTN *AheadChars, UINTN Count) {
  for (UINTN Index = 0; Index < Count; Index++) {
    Ahead[Index] = nullptr;
    AheadChars[Index] = 0;
  }
  CHAR16 *Cursor = Lines->Next;
  CHAR16 *End = Lines->End;
  if (Cursor == nullptr || Count == 0) {
    return;
  }
  // The lines as the walk cuts them, their breaks found sixteen
  // characters at a time: a line runs from behind a break (or Cursor) to
  // the next break, and empty ones are passed over.
  CHAR16 *LineStart = Cursor;
  UINTN Found = 0;
  const auto AtBreak = [&](CHAR16 *Break) {
    if (Break > LineStart) {
      Ahead[Found] = LineStart;
      AheadChars[Found] = static_cast<UINTN>(Break - LineStart);
      *Break = 0;
      Found++;
    }
    LineStart = Break + 1;
    return Found == Count;
  };
  constexpr INTN kBlock = 2 * raidlib_lanes::kLanes;
  for (; End - Cursor >= kBlock; Cursor += kBlock) {
    for (UINT32 Breaks = raidlib_lanes::BreakBits16(Cursor); Breaks != 0;
         Breaks &= Breaks - 1) {
      if (AtBreak(Cursor + __builtin_ctz(Breaks))) {
        return;
      }
    }
  }
  for (; Cursor < End; Cursor++) {
    if (IsLineBreak(*Cursor) && AtBreak(Cursor)) {
      return;
    }
  }
  // The last line ends at the output's end, with no break to cut.
  if (End > LineStart) {
    Ahead[Found] = LineStart;
    AheadChars[Found] = static_cast<UINTN>(End - LineStart);
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
