// One volume's properties ("storcli /cN/vM show all"): the strip size and
// the drive-cache policy from "key = value" lines, and the read, write and
// I/O policies from the Cache column of the volume's row (e.g. "RWBD": read
// ahead, write back, direct I/O; "NRWTC": no read ahead, write through,
// cached I/O).
#include <Library/BaseLib.h>

#include "LsiBackend.h"
#include "LsiText.h"
#include "RaidLibText.h"

namespace lsi {

namespace {

struct ValueCode {
  const CHAR16 *Text;
  UINT32 Code;
};

// Values are compared whole, as printed behind "=" (with the line's CR).
constexpr ValueCode kStripSizes[] = {
    {u" 8 KB\r", 8},          {u" 16 KB\r", 16},        {u" 32 KB\r", 32},
    {u" 64 KB\r", 64},        {u" 128 KB\r", 128},      {u" 256 KB\r", 256},
    {u" 512 KB\r", 512},      {u" 1.0 MB\r", 1024},     {u" 1.000 MB\r", 1024},
    {u" 1024 KB\r", 1024},    {u" 2048 KB\r", 2048},    {u" 2.000 MB\r", 2048},
};
constexpr UINT32 kDefaultStripSize = 64;

constexpr ValueCode kDiskCachePolicies[] = {
    {u" Disabled\r", RAID_DISK_CACHE_POLICY_OFF},
    {u" Enabled\r", RAID_DISK_CACHE_POLICY_ON},
    {u" Disk's Default\r", RAID_DISK_CACHE_POLICY_DEFAULT},
};

constexpr ValueCode kWritePolicies[] = {
    {u"WT", RAID_WRITE_POLICY_WRITE_THROUGH},
    {u"WB", RAID_WRITE_POLICY_WRITE_BACK},
    {u"AWB", RAID_WRITE_POLICY_ALWAYS_WRITE_BACK},
};

// Looks Text up; FALSE when it is none of the table's values.
template <UINTN N>
bool LookUp(const ValueCode (&Table)[N], const CHAR16 *Text, UINT32 *Code) {
  for (const ValueCode &Entry : Table) {
    if (Text != nullptr && StrCmp(Text, Entry.Text) == 0) {
      *Code = Entry.Code;
      return true;
    }
  }
  return false;
}

// Sets the read, write and I/O policies from a Cache word.
VOID ReadCacheWord(const CHAR16 *Cache, RAID_VOLUME *Volume,
                   UINT32 *ErrorCode) {
  UINTN Length = Cache == nullptr ? 0 : StrLen(Cache);
  const CHAR16 *Rest = Cache;
  bool ReadKnown = true;
  if (Length > 0 && Cache[0] == u'R') {
    Volume->ReadPolicy = RAID_READ_POLICY_ALWAYS_READ_AHEAD;
    Rest = Cache + 1;
  } else if (Length > 0 && Cache[0] == u'N') {
    Volume->ReadPolicy = RAID_READ_POLICY_NO_READ_AHEAD;
    Rest = Cache + (Length >= 2 ? 2 : Length);
  } else {
    Volume->ReadPolicy = RAID_READ_POLICY_OTHER;
    *ErrorCode = LSI_ERROR_READ_POLICY;
    ReadKnown = false;
  }
  UINTN RestLength = Rest == nullptr ? 0 : StrLen(Rest);

  // The middle: the rest without its last letter.
  CHAR16 Middle[LSI_ROW_CHARS] = {};
  for (UINTN Index = 0; Index + 1 < RestLength && Index + 1 < LSI_ROW_CHARS;
       Index++) {
    Middle[Index] = Rest[Index];
  }
  if (!ReadKnown || !LookUp(kWritePolicies, Middle, &Volume->WritePolicy)) {
    Volume->WritePolicy = RAID_WRITE_POLICY_OTHER;
    *ErrorCode = LSI_ERROR_WRITE_POLICY;
  }

  CHAR16 Last = RestLength > 0 ? Rest[RestLength - 1] : 0;
  if (Last == u'C') {
    Volume->IoPolicy = RAID_IO_POLICY_CACHED;
  } else if (Last == u'D') {
    Volume->IoPolicy = RAID_IO_POLICY_DIRECT;
  } else {
    Volume->IoPolicy = RAID_IO_POLICY_OTHER;
    *ErrorCode = LSI_ERROR_IO_POLICY;
  }
}

}  // namespace

// Reads the strip size, drive-cache policy and cache policies of Volume.
// Unknown values store the fallback and an error code; the last fault wins.
EFI_STATUS ParseControllerShowVolume(CHAR16 *Output, RAID_VOLUME *Volume,
                                     UINT32 *ErrorCode) {
  if (Output == nullptr || Volume == nullptr) {
    return EFI_ABORTED;
  }
  LSI_LINES Lines;
  LsiLinesStart(&Lines, Output);
  for (CHAR16 *Line = LsiNextLine(&Lines); Line != nullptr;
       Line = LsiNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Strip Size")) {
      if (!LookUp(kStripSizes, LsiValueAfterEquals(Line), &Volume->StripeSize)) {
        Volume->StripeSize = kDefaultStripSize;
        *ErrorCode = LSI_ERROR_STRIPE_SIZE;
      }
    } else if (RaidLibStartsWith(Line, u"Disk Cache Policy")) {
      if (!LookUp(kDiskCachePolicies, LsiValueAfterEquals(Line),
                  &Volume->DiskCachePolicy)) {
        Volume->DiskCachePolicy = RAID_DISK_CACHE_POLICY_OTHER;
        *ErrorCode = LSI_ERROR_DISK_CACHE_POLICY;
      }
    } else if (RaidLibStartsWith(Line, u"DG/VD TYPE")) {
      LSI_LINES Ahead = Lines;
      CHAR16 *RowLine = LsiSkipLines(&Ahead, 2);
      if (RowLine != nullptr) {
        LSI_ROW Row;
        LsiSplitRow(RowLine, &Row);
        ReadCacheWord(Row.Words[5], Volume, ErrorCode);
      }
    }
  }
  return EFI_SUCCESS;
}

}  // namespace lsi
