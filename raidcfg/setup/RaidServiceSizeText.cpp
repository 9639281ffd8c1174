// Size texts of the wizard's tables: whole GB, with an optional free-space
// suffix.
#include <Library/BaseLib.h>
#include <Library/PrintLib.h>

#include "setup/RaidServiceLayer.h"

namespace {

// The size in whole GB; FALSE for a unit the wizard does not show.
[[nodiscard]] BOOLEAN WholeGigabytes(UINT64 Figure, UINT64 Fraction,
                                     UINT32 Unit, UINT64 *Gigabytes) {
  switch (Unit) {
    case RAID_UNIT_MB:
      *Gigabytes = Figure >> 10;
      return TRUE;
    case RAID_UNIT_GB:
      *Gigabytes = Figure;
      return TRUE;
    case RAID_UNIT_TB:
      *Gigabytes = Figure * 1024 + Fraction * 1024 / 1000;
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

UINTN RaidFormatSizeText(CHAR16 *Buffer, UINTN BufferSize, UINT64 Figure,
                         UINT64 Fraction, UINT32 Unit) {
  UINT64 Gigabytes = 0;
  if (Buffer == nullptr || !WholeGigabytes(Figure, Fraction, Unit, &Gigabytes)) {
    return 0;
  }
  return UnicodeSPrint(Buffer, BufferSize, u"%ld GB", Gigabytes);
}

VOID RaidAppendFreeSizeText(CHAR16 *Buffer, UINTN BufferSize, UINT64 Figure,
                            UINT64 Fraction, UINT32 Unit) {
  if (Buffer == nullptr || BufferSize < sizeof(CHAR16)) {
    return;
  }
  const UINTN Capacity = BufferSize / sizeof(CHAR16);
  const UINTN Used = StrnLenS(Buffer, Capacity);
  if (Used >= Capacity) {
    return;  // no terminator within the buffer
  }
  CHAR16 *End = Buffer + Used;
  const UINTN Room = (Capacity - Used) * sizeof(CHAR16);
  if (Figure == 0 && Fraction == 0) {
    UnicodeSPrint(End, Room, u"%s", u" (0 GB free)");
    return;
  }
  UINT64 Gigabytes = 0;
  if (WholeGigabytes(Figure, Fraction, Unit, &Gigabytes)) {
    UnicodeSPrint(End, Room, u" (%ld GB free)", Gigabytes);
  }
}

const CHAR16 *RaidSkipLeadingBlanks(const CHAR16 *Text) {
  if (Text == nullptr) {
    return nullptr;
  }
  while (*Text == u' ' || *Text == u'\t') {
    Text++;
  }
  return Text;
}
