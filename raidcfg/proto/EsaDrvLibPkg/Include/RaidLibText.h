// Text helpers the vendor backends use on their tools' output (CHAR16).
//
// Tool output arrives as lines ending in CR LF; the helpers never read past
// a terminator, accept NULL where a string is expected (as no text), and
// never fail on malformed numbers: what cannot be read is 0.
#pragma once

#include <Uefi.h>

// TRUE when Line is at least as long as Prefix and begins with it. An empty
// prefix matches every line; NULL never matches. Inline: the parsers ask
// it of nearly every line, and most lines differ in the first character.
[[nodiscard]] inline BOOLEAN RaidLibStartsWith(const CHAR16 *Line,
                                               const CHAR16 *Prefix) {
  if (Line == nullptr || Prefix == nullptr) {
    return FALSE;
  }
  for (UINTN Index = 0; Prefix[Index] != 0; Index++) {
    if (Line[Index] != Prefix[Index]) {
      return FALSE;  // Also stops at the end of a shorter line.
    }
  }
  return TRUE;
}

// TRUE when Needle occurs anywhere in Line (an empty needle always does);
// NULL never matches.
[[nodiscard]] BOOLEAN RaidLibContains(const CHAR16 *Line, const CHAR16 *Needle);

// Up to 32 needles to look for in a line at once. Each is looked for by
// its anchor, its first character that is no blank (a needle may begin
// with the blanks that indent a key, and blanks fill a report's lines);
// only a character whose low six bits are some anchor's starts a
// comparison.
typedef struct {
  const CHAR16 *const *Needles;
  UINT32 Count;
  UINT64 Anchors;      // the anchors' low six bits, one bit each
  UINT8 AnchorAt[32];  // where needle k's anchor lies in it
  CHAR16 Anchor[32];   // needle k's anchor
} RAID_NEEDLES;

// The set over a constant array of non-empty needles.
template <UINTN N>
[[nodiscard]] constexpr RAID_NEEDLES RaidLibNeedles(
    const CHAR16 *const (&Needles)[N]) {
  static_assert(N <= 32, "a needle set is a 32-bit mask");
  RAID_NEEDLES Set = {Needles, static_cast<UINT32>(N), 0, {}, {}};
  for (UINTN Index = 0; Index < N; Index++) {
    const CHAR16 *Needle = Needles[Index];
    UINT32 At = 0;
    while (Needle[At] == u' ' && Needle[At + 1] != 0 && At < 255) {
      At++;
    }
    Set.AnchorAt[Index] = static_cast<UINT8>(At);
    Set.Anchor[Index] = Needle[At];
    Set.Anchors |= 1ULL << (Needle[At] & 63);
  }
  return Set;
}

// Which needles occur in Line, in one pass over it: bit k for
// Needles[k], as RaidLibContains would answer for each (0 for NULL).
[[nodiscard]] UINT32 RaidLibContainsEach(const CHAR16 *Line,
                                         const RAID_NEEDLES &Set);
// The same for a line whose extent is known: it ends at its terminator
// among the Chars characters at Line, or behind them. Four characters are
// passed at a time where none can anchor a needle.
[[nodiscard]] UINT32 RaidLibContainsEachIn(const CHAR16 *Line, UINTN Chars,
                                           const RAID_NEEDLES &Set);

// TRUE for blank, line feed, tab, carriage return, form feed, vertical tab.
[[nodiscard]] inline BOOLEAN RaidLibIsSpace(CHAR16 Char) {
  // Tab, line feed, vertical tab, form feed, carriage return (9 to 13) and
  // the blank (32) as bits of one word: a shift instead of six compares.
  constexpr UINT64 kSpaces = (1ULL << 32) | (0x1FULL << 9);
  return (Char <= u' ' && ((kSpaces >> Char) & 1) != 0) ? TRUE : FALSE;
}

// Removes leading and trailing is-space characters in place; the text moves
// to the start of the buffer so the caller's pointer stays valid for
// FreePool. Returns Line (NULL for NULL).
CHAR16 *RaidLibTrim(CHAR16 *Line);

// Splits text on any character of Delimiters like a classic token function:
// the first call passes the line, later calls pass NULL and continue where
// the previous one stopped. The position lives in *SavePtr, owned by the
// caller, so walks can nest. The line is modified (each token's end gets a
// terminator). Runs of delimiters produce no empty tokens. Returns the next
// token, or NULL when none is left.
[[nodiscard]] CHAR16 *RaidLibTokenize(CHAR16 *Line, const CHAR16 *Delimiters,
                                      CHAR16 **SavePtr);

// The tokens of Line (as RaidLibTokenize finds them) in a NULL-terminated
// array from the pool, grown one slot at a time. The tokens point into Line,
// which is modified and must outlive the array. A line without tokens (or
// NULL) gives an array holding only the NULL end mark. Returns NULL when the
// pool is exhausted, with nothing left allocated. Release with
// RaidLibFreeSplit.
[[nodiscard]] CHAR16 **RaidLibSplit(CHAR16 *Line, const CHAR16 *Delimiters);

// Releases an array from RaidLibSplit (not the line it points into); NULL is
// ignored.
VOID RaidLibFreeSplit(CHAR16 **Tokens);

// Reads a size figure as thousandths of its unit: the whole part times 1000
// plus the fraction digits read as thousandths ("1.090" 1090, "5.5" 5500,
// "2.09" 2090, "7" 7000). A fraction of four or more digits makes the value
// 0. Leading blanks and tabs are skipped; the number ends at the first
// character that does not belong to it (so "1.090TB" reads 1090). Values too
// large for 64 bits give the largest value.
[[nodiscard]] UINT64 RaidLibReadThousandths(const CHAR16 *Text);

// Unit code of a unit word: "MB" 0, "GB" 1, "TB" 2, anything else 3. The
// comparison is exact and case-sensitive.
[[nodiscard]] UINT32 RaidLibUnitCode(const CHAR16 *Unit);

// Media type code from the tool's interface and medium words: SATA HDD 0,
// SATA SSD 1, SAS HDD 2, SAS SSD 3, PCIe SSD 4, NVMe SSD 4, anything else 5.
// Exact, case-sensitive comparisons.
[[nodiscard]] UINT32 RaidLibMediaCode(const CHAR16 *Interface,
                                      const CHAR16 *Medium);

// Reads the decimal digits at the start of Text after leading blanks and
// tabs, stopping at the first non-digit. No digits give 0; values too large
// for 64 bits give the largest value.
[[nodiscard]] UINT64 RaidLibReadDecimal(const CHAR16 *Text);

// Reads Word as an id: a device, group, volume, enclosure, slot or card
// number that names something the tool is to act on. TRUE when Word is one
// or more decimal digits and nothing else and its value fits 32 bits; *Id
// is then that value (leading zeros allowed). Anything else (NULL, an empty
// word, a sign, a blank, a point, a value of 4294967296 or more) gives FALSE
// and leaves *Id alone: an id is read exactly or not at all, never wrapped
// and never saturated.
[[nodiscard]] BOOLEAN RaidLibReadId(const CHAR16 *Word, UINT32 *Id);

// The two ids of a word joined by Separator ("252:4", "0/3"): TRUE when the
// text before the first Separator and the text after it are each an id as
// RaidLibReadId reads one. *First and *Second are stored only then.
[[nodiscard]] BOOLEAN RaidLibReadIdPair(const CHAR16 *Word, CHAR16 Separator,
                                        UINT32 *First, UINT32 *Second);

// Formats into Buffer of BufferChars characters, terminated (when
// BufferChars is not 0). TRUE when the whole text fitted; FALSE when it was
// cut, and the cut text left in Buffer may serve a trace but must never be
// used as if it were whole.
[[nodiscard]] BOOLEAN EFIAPI RaidLibFormat(CHAR16 *Buffer, UINTN BufferChars,
                                           const CHAR16 *Format, ...);
[[nodiscard]] BOOLEAN RaidLibVFormat(CHAR16 *Buffer, UINTN BufferChars,
                                     const CHAR16 *Format, VA_LIST Marker);

// Reads a hexadecimal number: leading blanks, tabs and zeros are skipped, an
// "x" or "X" directly after a zero is skipped ("0x1B4B", "0X1b4b"), and the
// number stops at the first non-hex character. No digits give 0; values too
// large for 64 bits give the largest value.
[[nodiscard]] UINT64 RaidLibReadHex(const CHAR16 *Text);

// A copy of Source from the pool. NULL for a NULL source, and NULL after the
// trace "[AllocDestStr] Out of resource" when the pool is exhausted.
[[nodiscard]] CHAR16 *AllocDestStr(const CHAR16 *Source);

// Stores a pool copy of Text in *Copy (NULL for a NULL Text). FALSE only
// when the pool is exhausted.
[[nodiscard]] BOOLEAN RaidLibCopyText(const CHAR16 *Text, CHAR16 **Copy);
