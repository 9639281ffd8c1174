// Conversions between the model's codes and the words the wizard shows.
// The screen's read-policy and disk-cache words differ from raid.xml's on
// purpose; only the codes are shared.
#include <Library/BaseLib.h>

#include "RaidLibMessages.h"
#include "setup/RaidServiceLayer.h"

namespace {

struct WordCode {
  const CHAR16 *Word;
  UINT32 Code;
};

template <UINTN N>
struct WordTable {
  WordCode Entries[N];
  UINT32 OtherCode;  // the code of any word the table does not list
};

constexpr WordTable<11> kStripeSizes = {
    {{u"2K", 2},
     {u"4K", 4},
     {u"8K", 8},
     {u"16K", 16},
     {u"32K", 32},
     {u"64K", 64},
     {u"128K", 128},
     {u"256K", 256},
     {u"512K", 512},
     {u"1024K", 1024},
     {u"2048K", 2048}},
    RAID_STRIPE_SIZE_OTHER};

constexpr WordTable<2> kReadPolicies = {
    {{u"Read Ahead", RAID_READ_POLICY_ALWAYS_READ_AHEAD},
     {u"No Read Ahead", RAID_READ_POLICY_NO_READ_AHEAD}},
    RAID_READ_POLICY_OTHER};

constexpr WordTable<3> kWritePolicies = {
    {{u"Write Through", RAID_WRITE_POLICY_WRITE_THROUGH},
     {u"Write Back", RAID_WRITE_POLICY_WRITE_BACK},
     {u"Always Write Back", RAID_WRITE_POLICY_ALWAYS_WRITE_BACK}},
    RAID_WRITE_POLICY_OTHER};

constexpr WordTable<2> kIoPolicies = {
    {{u"Cached", RAID_IO_POLICY_CACHED}, {u"Direct", RAID_IO_POLICY_DIRECT}},
    RAID_IO_POLICY_OTHER};

constexpr WordTable<3> kDiskCachePolicies = {
    {{u"Disable", RAID_DISK_CACHE_POLICY_OFF},
     {u"Enable", RAID_DISK_CACHE_POLICY_ON},
     {u"Unchanged", RAID_DISK_CACHE_POLICY_DEFAULT}},
    RAID_DISK_CACHE_POLICY_OTHER};

constexpr WordTable<7> kRaidLevels = {{{u"RAID 0", 0},
                                       {u"RAID 1", 1},
                                       {u"RAID 5", 5},
                                       {u"RAID 6", 6},
                                       {u"RAID 10", 10},
                                       {u"RAID 50", 50},
                                       {u"RAID 60", 60}},
                                      RAID_LEVEL_NONE};

constexpr const CHAR16 *kNotAvailable = u"N/A";

template <UINTN N>
[[nodiscard]] UINT32 CodeOf(const WordTable<N> &Table, const CHAR16 *Word) {
  if (Word != nullptr) {
    for (const WordCode &Entry : Table.Entries) {
      if (StrCmp(Entry.Word, Word) == 0) {
        return Entry.Code;
      }
    }
  }
  return Table.OtherCode;
}

template <UINTN N>
[[nodiscard]] const CHAR16 *WordOf(const WordTable<N> &Table, UINT32 Code) {
  for (const WordCode &Entry : Table.Entries) {
    if (Entry.Code == Code) {
      return Entry.Word;
    }
  }
  return kNotAvailable;
}

}  // namespace

UINT32 RaidStripeSizeCode(const CHAR16 *Word) {
  return CodeOf(kStripeSizes, Word);
}
const CHAR16 *RaidStripeSizeWord(UINT32 Code) {
  return WordOf(kStripeSizes, Code);
}
UINT32 RaidReadPolicyCode(const CHAR16 *Word) {
  return CodeOf(kReadPolicies, Word);
}
const CHAR16 *RaidReadPolicyWord(UINT32 Code) {
  return WordOf(kReadPolicies, Code);
}
UINT32 RaidWritePolicyCode(const CHAR16 *Word) {
  return CodeOf(kWritePolicies, Word);
}
const CHAR16 *RaidWritePolicyWord(UINT32 Code) {
  return WordOf(kWritePolicies, Code);
}
UINT32 RaidIoPolicyCode(const CHAR16 *Word) { return CodeOf(kIoPolicies, Word); }
const CHAR16 *RaidIoPolicyWord(UINT32 Code) { return WordOf(kIoPolicies, Code); }
UINT32 RaidDiskCachePolicyCode(const CHAR16 *Word) {
  return CodeOf(kDiskCachePolicies, Word);
}
const CHAR16 *RaidDiskCachePolicyWord(UINT32 Code) {
  return WordOf(kDiskCachePolicies, Code);
}
UINT32 RaidLevelNumber(const CHAR16 *Word) { return CodeOf(kRaidLevels, Word); }

const CHAR16 *GetStateText(UINT32 State) { return RaidLibStateText(State); }
