// The adapter report ("info -o hba"): one "key: value" line per property.
// Every key is matched as a prefix of the line.
#include <Library/MemoryAllocationLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "M2Backend.h"
#include "RaidLibLines.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace m2 {

namespace {

// Replaces *Field by a copy of Value; an empty value keeps the old text.
[[nodiscard]] EFI_STATUS StoreText(const CHAR16 *Value, CHAR16 **Field) {
  if (Value == nullptr) {
    return EFI_SUCCESS;
  }
  CHAR16 *Copy = AllocDestStr(Value);
  if (Copy == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  FreePool(*Field);
  *Field = Copy;
  return EFI_SUCCESS;
}

// The slot the tool reports, taken only while discovery found none.
VOID StoreSlot(const CHAR8 *Caller, const CHAR16 *Value,
               RAID_CONTROLLER *Controller) {
  if (Value == nullptr) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]Controller slot number: NULL\n");
    return;
  }
  UINT32 Slot = 0;
  if (Controller->SlotNumber == RAID_SLOT_NUMBER_NONE &&
      RaidLibReadId(Value, &Slot) && Slot < RAID_SLOT_NUMBER_NONE) {
    Controller->SlotNumber = static_cast<UINT16>(Slot);
  }
}

}  // namespace

EFI_STATUS ParseControllerInfo(CHAR16 *Output, RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode) {
  if (Output == nullptr || Controller == nullptr) {
    return EFI_ABORTED;
  }
  const CHAR8 *Caller = __func__;
  EFI_STATUS Status = M2EachKeyLine(
      M2ReportLines(Output), [Caller, Controller](const CHAR16 *Line,
                                                  M2KeyValue &Key) {
        const CHAR16 *Value = Key.Get();
        if (RaidLibStartsWith(Line, u"Adapter ID")) {
          RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                            "[%a]Adapter ID: %s\n", M2Shown(Value));
        } else if (RaidLibStartsWith(Line, u"SerialNo")) {
          return StoreText(Value, &Controller->SerialNumber);
        } else if (RaidLibStartsWith(Line, u"Firmware version")) {
          return StoreText(Value, &Controller->FirmwareVersion);
        } else if (RaidLibStartsWith(Line, u"slot number")) {
          StoreSlot(Caller, Value, Controller);
        } else if (RaidLibStartsWith(Line, u"Maximum supported disk")) {
          Controller->DiskDriveCount =
              Value == nullptr ? M2_DEFAULT_DISK_COUNT : M2ReadCount(Value);
        }
        return EFI_SUCCESS;
      });
  return M2ParseResult(Status, ErrorCode);
}

}  // namespace m2
