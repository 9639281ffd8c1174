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
[[nodiscard]] bool ReadVolumeLine(const CHAR16 *Line, M2KeyValue &Value,
                                  RAID_VOLUME *Volume, EFI_STATUS *Status) {
  if (RaidLibStartsWith(Line, u"name")) {
    if (Volume != nullptr && Value.Get() != nullptr) {
      CHAR16 *Name = AllocDestStr(Value.Get());
      if (Name == nullptr) {
        *Status = EFI_OUT_OF_RESOURCES;
      } else {
        FreePool(Volume->Name);
        Volume->Name = Name;
      }
    }
  } else if (RaidLibStartsWith(Line, u"VD status")) {
    if (Volume != nullptr) {
      Volume->State = M2VolumeState(Value.Get());
    }
  } else if (RaidLibStartsWith(Line, u"Stripe size")) {
    if (Volume != nullptr) {
      Volume->StripeSize = M2StripeSize(Value.Get());
    }
  } else if (RaidLibStartsWith(Line, u"size")) {
    if (Volume != nullptr) {
      Volume->SizeFigure = M2ReadSize(Value.Get(), M2SizeOf::Volume);
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

// A new volume numbered by an "id" value. A block that lacks a line reads
// as if the line were empty.
[[nodiscard]] RAID_VOLUME *AddVolume(RAID_ARRAY *Array, const CHAR16 *Value) {
  RAID_VOLUME *Volume =
      RaidLibAddVolume(Array, M2ReadId(Value), nullptr, M2_VOLUME_EXTRA_SIZE);
  if (Volume != nullptr) {
    Volume->State = M2VolumeState(nullptr);
    Volume->StripeSize = M2StripeSize(nullptr);
  }
  return Volume;
}

// The array's own lines.
VOID ReadArrayLine(const CHAR16 *Line, M2KeyValue &Value, RAID_ARRAY *Array) {
  if (RaidLibStartsWith(Line, u"RAID mode")) {
    Array->RaidLevel = M2RaidLevel(Value.Get());
  } else if (RaidLibStartsWith(Line, u"Cache mode") ||
             RaidLibStartsWith(Line, u"PD RAID setup")) {
    // Nothing the model holds.
  } else if (RaidLibStartsWith(Line, u"# of PDs")) {
    Array->MemberDriveCount = M2ReadCount(Value.Get());
    if (Value.Get() == nullptr) {
      Array->Controller->DiskDriveCount = 0;
    }
  } else if (RaidLibStartsWith(Line, u"Total # of VD")) {
    Array->VolumeCount = M2ReadCount(Value.Get());
  }
}

}  // namespace

EFI_STATUS ParseVolumeInfo(CHAR16 *Output, RAID_ARRAY *Array,
                           UINT32 *ErrorCode) {
  if (Output == nullptr || Array == nullptr) {
    return EFI_ABORTED;
  }
  RAID_VOLUME *Volume = nullptr;
  EFI_STATUS Status = M2EachKeyLine(
      M2ReportLines(Output),
      [Array, &Volume](const CHAR16 *Line, M2KeyValue &Value) {
        EFI_STATUS Read = EFI_SUCCESS;
        if (RaidLibStartsWith(Line, u"id")) {
          Volume = AddVolume(Array, Value.Get());
          Read = Volume == nullptr ? EFI_OUT_OF_RESOURCES : EFI_SUCCESS;
        } else if (!ReadVolumeLine(Line, Value, Volume, &Read)) {
          ReadArrayLine(Line, Value, Array);
        }
        return Read;
      });
  return M2ParseResult(Status, ErrorCode);
}

}  // namespace m2
