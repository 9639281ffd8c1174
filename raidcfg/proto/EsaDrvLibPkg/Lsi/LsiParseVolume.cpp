// One volume's properties ("storcli /cN/vM show all"): the strip size and
// the drive-cache policy from "key = value" lines, and the read, write and
// I/O policies from the Cache column of the volume's row (e.g. "RWBD": read
// ahead, write back, direct I/O; "NRWTC": no read ahead, write through,
// cached I/O).
#include <Library/BaseLib.h>

#include "LsiBackend.h"
#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibWordTable.h"
#include "RaidLibText.h"

namespace lsi {

namespace {

// Values are compared whole, as printed behind "=" (with the line's CR).
constexpr RAID_WORD_CODE kStripSizeWords[] = {
    {u" 8 KB\r", 8},          {u" 16 KB\r", 16},        {u" 32 KB\r", 32},
    {u" 64 KB\r", 64},        {u" 128 KB\r", 128},      {u" 256 KB\r", 256},
    {u" 512 KB\r", 512},      {u" 1.0 MB\r", 1024},     {u" 1.000 MB\r", 1024},
    {u" 1024 KB\r", 1024},    {u" 2048 KB\r", 2048},    {u" 2.000 MB\r", 2048},
};
constexpr RAID_WORD_TABLE kStripSizes =
    RaidLibWordTable(kStripSizeWords, RaidMatchExact, 64);

constexpr RAID_WORD_CODE kDiskCacheWords[] = {
    {u" Disabled\r", RAID_DISK_CACHE_POLICY_OFF},
    {u" Enabled\r", RAID_DISK_CACHE_POLICY_ON},
    {u" Disk's Default\r", RAID_DISK_CACHE_POLICY_DEFAULT},
};
constexpr RAID_WORD_TABLE kDiskCachePolicies = RaidLibWordTable(
    kDiskCacheWords, RaidMatchExact, RAID_DISK_CACHE_POLICY_OTHER);

constexpr RAID_WORD_CODE kWriteWords[] = {
    {u"WT", RAID_WRITE_POLICY_WRITE_THROUGH},
    {u"WB", RAID_WRITE_POLICY_WRITE_BACK},
    {u"AWB", RAID_WRITE_POLICY_ALWAYS_WRITE_BACK},
};
constexpr RAID_WORD_TABLE kWritePolicies =
    RaidLibWordTable(kWriteWords, RaidMatchExact, RAID_WRITE_POLICY_OTHER);

// Stores the code of Text in *Code; an unknown text stores the table's
// default and sets the table's error code.
VOID ReadValue(const RAID_WORD_TABLE &Table, const CHAR16 *Text,
               UINT32 UnknownError, UINT32 *Code, UINT32 *ErrorCode) {
  const RAID_WORD_CODE *Entry = RaidLibFindWord(Table, Text);
  *Code = Entry != nullptr ? Entry->Code : Table.Default.Code;
  if (Entry == nullptr) {
    *ErrorCode = UnknownError;
  }
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
  CHAR16 Middle[RAID_ROW_CHARS] = {};
  for (UINTN Index = 0; Index + 1 < RestLength && Index + 1 < RAID_ROW_CHARS;
       Index++) {
    Middle[Index] = Rest[Index];
  }
  if (ReadKnown) {
    ReadValue(kWritePolicies, Middle, LSI_ERROR_WRITE_POLICY,
              &Volume->WritePolicy, ErrorCode);
  } else {
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
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, LSI_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (RaidLibStartsWith(Line, u"Strip Size")) {
      ReadValue(kStripSizes, RaidLibValueAfter(Line, u'='),
                LSI_ERROR_STRIPE_SIZE, &Volume->StripeSize, ErrorCode);
    } else if (RaidLibStartsWith(Line, u"Disk Cache Policy")) {
      ReadValue(kDiskCachePolicies, RaidLibValueAfter(Line, u'='),
                LSI_ERROR_DISK_CACHE_POLICY, &Volume->DiskCachePolicy,
                ErrorCode);
    } else if (RaidLibStartsWith(Line, u"DG/VD TYPE")) {
      RAID_LINE_CURSOR Ahead = Lines;
      CHAR16 *RowLine = RaidLibSkipLines(&Ahead, 2);
      if (RowLine != nullptr) {
        RAID_ROW Row;
        RaidLibSplitRow(RowLine, &Row);
        ReadCacheWord(Row.Words[5], Volume, ErrorCode);
      }
    }
  }
  return EFI_SUCCESS;
}

}  // namespace lsi
