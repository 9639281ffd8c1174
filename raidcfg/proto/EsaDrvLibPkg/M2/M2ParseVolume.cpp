// The volume report ("info -o vd"): a block of "key: value" lines per
// volume, each opened by its "id" line, and the adapter's volume count at
// the end. Keys are matched as prefixes, in the order below; a volume key
// before the first "id" line has no volume to fill and is skipped.
#include <Library/MemoryAllocationLib.h>

#include "M2Backend.h"
#include "RaidLibLines.h"
#include "RaidLibModelBuild.h"
#include "RaidLibText.h"

namespace m2 {

namespace {

// Fills the current volume from one of its own lines; FALSE when the line
// is no volume key. *Status tells an allocation failure.
[[nodiscard]] bool ReadVolumeLine(const CHAR16 *Line, const CHAR16 *Value,
                                  RAID_VOLUME *Volume, EFI_STATUS *Status) {
  if (RaidLibStartsWith(Line, u"name")) {
    if (Volume != nullptr && Value != nullptr) {
      CHAR16 *Name = AllocDestStr(Value);
      if (Name == nullptr) {
        *Status = EFI_OUT_OF_RESOURCES;
      } else {
        FreePool(Volume->Name);
        Volume->Name = Name;
      }
    }
  } else if (RaidLibStartsWith(Line, u"VD status")) {
    if (Volume != nullptr) {
      Volume->State = M2VolumeState(Value);
    }
  } else if (RaidLibStartsWith(Line, u"Stripe size")) {
    if (Volume != nullptr) {
      Volume->StripeSize = M2StripeSize(Value);
    }
  } else if (RaidLibStartsWith(Line, u"size")) {
    if (Volume != nullptr) {
      Volume->SizeFigure = M2ReadSize(Value, M2SizeOf::Volume);
      Volume->SizeUnit = RAID_UNIT_GB;
      RAID_ARRAY *Array = Volume->Array;
      Array->SizeFigure += Volume->SizeFigure;
      Array->SizeUnit = RAID_UNIT_GB;
    }
  } else {
    return false;
  }
  return true;
}

// The array's own lines.
VOID ReadArrayLine(const CHAR16 *Line, const CHAR16 *Value,
                   RAID_ARRAY *Array) {
  if (RaidLibStartsWith(Line, u"RAID mode")) {
    Array->RaidLevel = M2RaidLevel(Value);
  } else if (RaidLibStartsWith(Line, u"Cache mode") ||
             RaidLibStartsWith(Line, u"PD RAID setup")) {
    // Nothing the model holds.
  } else if (RaidLibStartsWith(Line, u"# of PDs")) {
    Array->MemberDriveCount = M2ReadCount(Value);
    if (Value == nullptr) {
      Array->Controller->DiskDriveCount = 0;
    }
  } else if (RaidLibStartsWith(Line, u"Total # of VD")) {
    Array->VolumeCount = M2ReadCount(Value);
  }
}

}  // namespace

EFI_STATUS ParseVolumeInfo(CHAR16 *Output, RAID_ARRAY *Array,
                           UINT32 *ErrorCode) {
  if (Output == nullptr || Array == nullptr) {
    return EFI_ABORTED;
  }
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, M2_OUTPUT_CHARS);
  RAID_VOLUME *Volume = nullptr;
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    RAID_ROW Scratch;
    const CHAR16 *Value = M2LineValue(Line, &Scratch);
    EFI_STATUS Status = EFI_SUCCESS;
    if (RaidLibStartsWith(Line, u"id")) {
      Volume = RaidLibAddVolume(Array, M2ReadId(Value), nullptr,
                                M2_VOLUME_EXTRA_SIZE);
      if (Volume == nullptr) {
        Status = EFI_OUT_OF_RESOURCES;
      } else {
        // A block that lacks a line reads as if the line were empty.
        Volume->State = M2VolumeState(nullptr);
        Volume->StripeSize = M2StripeSize(nullptr);
      }
    } else if (!ReadVolumeLine(Line, Value, Volume, &Status)) {
      ReadArrayLine(Line, Value, Array);
    }
    if (EFI_ERROR(Status)) {
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
      return Status;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace m2
