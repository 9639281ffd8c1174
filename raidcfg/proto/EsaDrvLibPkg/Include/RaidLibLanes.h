// Eight characters of tool output compared at once. x64 firmware runs
// with SSE2 enabled (the boot services' calling convention keeps the XMM
// registers), so a 16-byte load and compare costs what one character's
// does. Each answer is a mask with bits 2k and 2k + 1 set for lane k:
// the lane of the first hit is its count of trailing zeros over two.
#pragma once

#include <Uefi.h>

namespace raidlib_lanes {

constexpr UINTN kLanes = 8;

typedef UINT16 CharLanes __attribute__((vector_size(16)));
typedef char ByteLanes __attribute__((vector_size(16)));

// The eight characters at Text (any alignment).
[[nodiscard]] inline CharLanes Load(const CHAR16 *Text) {
  CharLanes Lanes;
  __builtin_memcpy(&Lanes, Text, sizeof(Lanes));
  return Lanes;
}

template <typename Compared>
[[nodiscard]] inline UINT32 MaskOf(Compared Hits) {
#if defined(__SSE2__)
  return static_cast<UINT32>(
      __builtin_ia32_pmovmskb128(reinterpret_cast<ByteLanes>(Hits)));
#else
  UINT32 Mask = 0;
  for (UINTN Lane = 0; Lane < kLanes; Lane++) {
    Mask |= Hits[Lane] != 0 ? 3U << (2 * Lane) : 0;
  }
  return Mask;
#endif
}

// Lanes equal to Char.
[[nodiscard]] inline UINT32 Equal(CharLanes Lanes, CHAR16 Char) {
  return MaskOf(Lanes == static_cast<UINT16>(Char));
}

// Lanes that are a line break: a line feed, or a terminator (the output's
// end, or a line end an earlier walk wrote).
[[nodiscard]] inline UINT32 Breaks(CharLanes Lanes) {
  return MaskOf((Lanes == static_cast<UINT16>(u'\n')) |
                (Lanes == static_cast<UINT16>(0)));
}

// Sixteen lanes' answers (the low eight characters', then the high
// eight's) as sixteen bits, bit k for character k.
template <typename Compared>
[[nodiscard]] inline UINT32 PackedMaskOf(Compared LowHits, Compared HighHits) {
#if defined(__SSE2__)
  typedef short ShortLanes __attribute__((vector_size(16)));
  return static_cast<UINT32>(__builtin_ia32_pmovmskb128(
      reinterpret_cast<ByteLanes>(__builtin_ia32_packsswb128(
          reinterpret_cast<ShortLanes>(LowHits),
          reinterpret_cast<ShortLanes>(HighHits)))));
#else
  UINT32 Bits = 0;
  for (UINTN Lane = 0; Lane < kLanes; Lane++) {
    Bits |= (LowHits[Lane] != 0 ? 1U : 0U) << Lane;
    Bits |= (HighHits[Lane] != 0 ? 1U : 0U) << (Lane + kLanes);
  }
  return Bits;
#endif
}

// Sixteen characters (Low, then High) equal to Char, bit k for character k.
[[nodiscard]] inline UINT32 EqualBits16(CharLanes Low, CharLanes High,
                                        CHAR16 Char) {
  return PackedMaskOf(Low == static_cast<UINT16>(Char),
                      High == static_cast<UINT16>(Char));
}

// Sixteen characters from Text on: bit k set where Text[k] is a line break.
[[nodiscard]] inline UINT32 BreakBits16(const CHAR16 *Text) {
  const CharLanes Low = Load(Text);
  const CharLanes High = Load(Text + kLanes);
  return PackedMaskOf((Low == static_cast<UINT16>(u'\n')) |
                          (Low == static_cast<UINT16>(0)),
                      (High == static_cast<UINT16>(u'\n')) |
                          (High == static_cast<UINT16>(0)));
}

// Stores Lanes' eight characters at Text (any alignment).
inline VOID Store(CHAR16 *Text, CharLanes Lanes) {
  __builtin_memcpy(Text, &Lanes, sizeof(Lanes));
}

// The lane of a mask's first hit.
[[nodiscard]] inline UINTN FirstLane(UINT32 Mask) {
  return static_cast<UINTN>(__builtin_ctz(Mask)) / 2;
}

// The first Char in Text[From, Count), or Count.
[[nodiscard]] inline UINTN FindIn(const CHAR16 *Text, UINTN From, UINTN Count,
                                  CHAR16 Char) {
  for (; From + kLanes <= Count; From += kLanes) {
    const UINT32 Found = Equal(Load(Text + From), Char);
    if (Found != 0) {
      return From + FirstLane(Found);
    }
  }
  while (From < Count && Text[From] != Char) {
    From++;
  }
  return From;
}

// The first character in Text[From, Count) other than Char, or Count.
[[nodiscard]] inline UINTN SkipIn(const CHAR16 *Text, UINTN From, UINTN Count,
                                  CHAR16 Char) {
  for (; From + kLanes <= Count; From += kLanes) {
    const UINT32 Same = Equal(Load(Text + From), Char);
    if (Same != 0xFFFFU) {
      return From + FirstLane(~Same & 0xFFFFU);
    }
  }
  while (From < Count && Text[From] == Char) {
    From++;
  }
  return From;
}

// The first character in Text[From, Count) that is no white space (blank,
// tab, line feed, vertical tab, form feed, carriage return), or Count.
[[nodiscard]] inline UINTN SkipSpaceIn(const CHAR16 *Text, UINTN From,
                                       UINTN Count) {
  for (; From + kLanes <= Count; From += kLanes) {
    const CharLanes Lanes = Load(Text + From);
    const UINT32 Space =
        MaskOf((Lanes == static_cast<UINT16>(u' ')) |
               ((CharLanes)(Lanes - static_cast<UINT16>(u'\t')) <=
                static_cast<UINT16>(u'\r' - u'\t')));
    if (Space != 0xFFFFU) {
      return From + FirstLane(~Space & 0xFFFFU);
    }
  }
  while (From < Count && (Text[From] == u' ' ||
                          (Text[From] >= u'\t' && Text[From] <= u'\r'))) {
    From++;
  }
  return From;
}

}  // namespace raidlib_lanes
