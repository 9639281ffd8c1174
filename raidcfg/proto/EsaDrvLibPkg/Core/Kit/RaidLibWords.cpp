// The words of raid.xml's policy and stripe-size lists and their codes. The
// codes are what the backends translate into their tools' own words.
#include <Library/BaseLib.h>

#include "RaidLib.h"

namespace {

struct WordCode {
  const CHAR16 *Word;
  UINT32 Code;
};

constexpr WordCode kReadWords[] = {
    {u"Always read ahead", RAID_READ_POLICY_ALWAYS_READ_AHEAD},
    {u"No Read Ahead", RAID_READ_POLICY_NO_READ_AHEAD},
};

constexpr WordCode kWriteWords[] = {
    {u"Write Through", RAID_WRITE_POLICY_WRITE_THROUGH},
    {u"Write Back", RAID_WRITE_POLICY_WRITE_BACK},
    {u"Always Write Back", RAID_WRITE_POLICY_ALWAYS_WRITE_BACK},
};

constexpr WordCode kIoWords[] = {
    {u"Cached", RAID_IO_POLICY_CACHED},
    {u"Direct", RAID_IO_POLICY_DIRECT},
};

constexpr WordCode kDiskCacheWords[] = {
    {u"Off", RAID_DISK_CACHE_POLICY_OFF},
    {u"On", RAID_DISK_CACHE_POLICY_ON},
    {u"Default", RAID_DISK_CACHE_POLICY_DEFAULT},
};

constexpr WordCode kStripeWords[] = {
    {u"2K", 2},     {u"4K", 4},     {u"8K", 8},       {u"16K", 16},
    {u"32K", 32},   {u"64K", 64},   {u"128K", 128},   {u"256K", 256},
    {u"512K", 512}, {u"1024K", 1024}, {u"2048K", 2048},
};

// One list: its words and the code of every other word.
struct WordList {
  const WordCode *Words;
  UINTN Count;
  UINT32 Other;
};

template <UINTN N>
[[nodiscard]] constexpr WordList MakeList(const WordCode (&Words)[N],
                                          UINT32 Other) {
  return {Words, N, Other};
}

// Indexed by RAID_POLICY_KIND.
constexpr WordList kLists[] = {
    MakeList(kReadWords, RAID_READ_POLICY_OTHER),
    MakeList(kWriteWords, RAID_WRITE_POLICY_OTHER),
    MakeList(kIoWords, RAID_IO_POLICY_OTHER),
    MakeList(kDiskCacheWords, RAID_DISK_CACHE_POLICY_OTHER),
    MakeList(kStripeWords, RAID_STRIPE_SIZE_OTHER),
};

[[nodiscard]] const WordList *ListOfKind(RAID_POLICY_KIND Kind) {
  UINTN Index = static_cast<UINTN>(Kind);
  return Index < ARRAY_SIZE(kLists) ? &kLists[Index] : nullptr;
}

}  // namespace

// The code of Word in the list of Kind, or the list's "other" code.
UINT32 RaidLibPolicyValue(RAID_POLICY_KIND Kind, const CHAR16 *Word) {
  const WordList *List = ListOfKind(Kind);
  if (List == nullptr) {
    return RAID_POLICY_VALUE_NONE;
  }
  if (Word != nullptr) {
    for (UINTN I = 0; I < List->Count; I++) {
      if (StrCmp(Word, List->Words[I].Word) == 0) {
        return List->Words[I].Code;
      }
    }
  }
  return List->Other;
}

// The "any other text" code of the list of Kind.
UINT32 RaidLibPolicyOtherValue(RAID_POLICY_KIND Kind) {
  const WordList *List = ListOfKind(Kind);
  return List != nullptr ? List->Other : RAID_POLICY_VALUE_NONE;
}
