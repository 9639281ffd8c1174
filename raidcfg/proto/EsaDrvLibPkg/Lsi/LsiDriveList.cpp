// Drive lists of storcli's create and hot-spare commands, and the number of
// drives per span of the nested RAID levels.
#include <Library/BaseLib.h>

#include "LsiBackend.h"
#include "RaidLibText.h"

namespace lsi {

namespace {

// Appends formatted text at *Used within Buffer; FALSE when it does not fit
// whole.
[[nodiscard]] bool Append(CHAR16 *Buffer, UINTN BufferChars, UINTN *Used,
                          const CHAR16 *Format, UINT32 Number) {
  if (!RaidLibFormat(Buffer + *Used, BufferChars - *Used, Format, Number)) {
    return false;
  }
  *Used += StrLen(Buffer + *Used);
  return true;
}

// TRUE when Drive is taken and an earlier taken drive of the list shares its
// enclosure (so its enclosure's group is already written).
[[nodiscard]] bool EnclosureSeenBefore(LIST_ENTRY *List,
                                       RAID_PHYSICAL_DRIVE *Drive,
                                       LSI_DRIVE_FILTER Filter,
                                       const VOID *Context) {
  for (RAID_PHYSICAL_DRIVE *Earlier :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
    if (Earlier == Drive) {
      return false;
    }
    if (Earlier->Position != nullptr && Filter(Earlier, Context) &&
        Earlier->Position->Values[LSI_POSITION_ENCLOSURE] ==
            Drive->Position->Values[LSI_POSITION_ENCLOSURE]) {
      return true;
    }
  }
  return false;
}

}  // namespace

// Groups the taken drives by enclosure: "E:s,s,E2:s". A list that does not
// fit is not cut: the buffer is emptied and the overflow reported.
EFI_STATUS LsiBuildDriveList(LIST_ENTRY *List, LSI_DRIVE_FILTER Filter,
                             const VOID *Context, CHAR16 *Buffer,
                             UINTN BufferChars) {
  if (BufferChars == 0) {
    return EFI_BUFFER_TOO_SMALL;
  }
  Buffer[0] = 0;
  if (List == nullptr || !IsListLive(List)) {
    return EFI_SUCCESS;
  }
  UINTN Used = 0;
  for (RAID_PHYSICAL_DRIVE *First :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
    if (First->Position == nullptr || !Filter(First, Context) ||
        EnclosureSeenBefore(List, First, Filter, Context)) {
      continue;
    }
    UINT32 Enclosure = First->Position->Values[LSI_POSITION_ENCLOSURE];
    bool Whole = Append(Buffer, BufferChars, &Used,
                        Used == 0 ? u"%u:" : u",%u:", Enclosure);
    bool FirstSlot = true;
    bool Reached = false;
    for (RAID_PHYSICAL_DRIVE *Drive :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*List)) {
      Reached = Reached || Drive == First;
      if (!Reached || Drive->Position == nullptr || !Filter(Drive, Context) ||
          Drive->Position->Values[LSI_POSITION_ENCLOSURE] != Enclosure) {
        continue;
      }
      Whole = Whole &&
              Append(Buffer, BufferChars, &Used, FirstSlot ? u"%u" : u",%u",
                     Drive->Position->Values[LSI_POSITION_SLOT]);
      FirstSlot = false;
    }
    if (!Whole) {
      Buffer[0] = 0;
      return EFI_BUFFER_TOO_SMALL;
    }
  }
  return EFI_SUCCESS;
}

// RAID 10: the smallest even span size from 2 to n/2 that divides n into at
// most eight spans. RAID 50 and 60: two spans.
UINT32 LsiDrivesPerSpan(UINT32 RaidLevel, UINT32 DriveCount) {
  if (RaidLevel == 10) {
    if (DriveCount < 4 || DriveCount % 2 != 0) {
      return 0;
    }
    for (UINT32 PerSpan = 2; PerSpan <= DriveCount / 2; PerSpan += 2) {
      if (DriveCount % PerSpan == 0 && DriveCount / PerSpan < 9) {
        return PerSpan;
      }
    }
    return 0;
  }
  if (RaidLevel == 50 || RaidLevel == 60) {
    if (DriveCount < 6 || DriveCount % 2 != 0) {
      return 0;
    }
    return DriveCount / 2;
  }
  return 0;
}

}  // namespace lsi
