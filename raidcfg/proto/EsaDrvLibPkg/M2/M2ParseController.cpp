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
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, M2_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    RAID_ROW Scratch;
    const CHAR16 *Value = M2LineValue(Line, &Scratch);
    EFI_STATUS Status = EFI_SUCCESS;
    if (RaidLibStartsWith(Line, u"Adapter ID")) {
      RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]Adapter ID: %s\n",
                     Value != nullptr ? Value : u"");
    } else if (RaidLibStartsWith(Line, u"SerialNo")) {
      Status = StoreText(Value, &Controller->SerialNumber);
    } else if (RaidLibStartsWith(Line, u"Firmware version")) {
      Status = StoreText(Value, &Controller->FirmwareVersion);
    } else if (RaidLibStartsWith(Line, u"slot number")) {
      StoreSlot(__func__, Value, Controller);
    } else if (RaidLibStartsWith(Line, u"Maximum supported disk")) {
      Controller->DiskDriveCount =
          Value == nullptr ? M2_DEFAULT_DISK_COUNT : M2ReadCount(Value);
    }
    if (EFI_ERROR(Status)) {
      *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
      return Status;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace m2
