// Reading a Microchip adapter: "getconfig N" into the backend's own large
// buffer, parsed into the model; after a reconnect of one of several
// adapters the card number is looked up by slot first.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibLines.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp {

constinit CHAR16
    gMchpGetconfigOutput[MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16)] = {};
constinit CHAR16
    gMchpGetconfigCopy[MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16)] = {};

namespace {

constexpr UINTN kOutputChars = MCHP_GETCONFIG_OUTPUT_BYTES / sizeof(CHAR16);
constexpr UINTN kCopyChars = MCHP_GETCONFIG_COPY_BYTES / sizeof(CHAR16);

// Every logical device is taken to have the tool's stripe size (the report
// is not read for it).
VOID SetStripeSizes(RAID_CONTROLLER *Controller) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume == 1) {
        Volume->StripeSize = MCHP_STRIPE_SIZE;
      }
    }
  }
}

}  // namespace

EFI_STATUS MchpGetControllerInfo(RAID_CONTROLLER *Controller,
                                 RAID_CONTROLLER_PRIVATE *Private,
                                 UINT32 *ErrorCode) {
  (VOID)Private;
  EFI_STATUS Status = EFI_SUCCESS;
  if (!RaidLibReadIsDue(__func__, Controller, ErrorCode, &Status)) {
    return Status;
  }
  RaidLibReadScope Read(Controller);
  RAID_CONTROLLER_PRIVATE *Own = Controller->Private;
  Status = RaidLibToolAvailable(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  // A reconnect may renumber several adapters: their numbers are read
  // again, by slot, on every read.
  if (gMchpCtrlCount >= 2 && greconnect == 1) {
    UINT32 CardId = Own->CardId;
    (VOID)MchpGetCardIdN(Controller, Controller->SlotNumber, &CardId,
                         ErrorCode);
    Own->CardId = CardId;
  }
  if (Own->CardId == RAID_CARD_ID_UNSET) {
    *ErrorCode = RAID_ERROR_INVALID_CARD_ID;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Invalid controller id\n");
    return EFI_ABORTED;
  }
  ZeroMem(gMchpGetconfigOutput, MCHP_GETCONFIG_COPY_BYTES);
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      {__func__, MCHP_READ_COMMAND_CHARS, gMchpGetconfigOutput,
       MCHP_GETCONFIG_OUTPUT_BYTES, RAID_TOOL_WORD_PLAIN},
      ErrorCode, u"%S getconfig %d", Controller->Capability->ToolName,
      Own->CardId));
  // Both parsers cut the text in place, so the second reads a copy, of the
  // output's head only. The report's end is found once, by its count: the
  // copy's is the same, or the copy's size.
  MCHP_REPORT_COUNT Count;
  const UINTN Chars =
      MchpCountReport(gMchpGetconfigOutput, kOutputChars, &Count);
  if (Chars > kCopyChars) {
    RaidLibNoteCutOutput(__func__, (Chars + 1) * sizeof(CHAR16),
                         MCHP_GETCONFIG_COPY_BYTES);
  }
  CopyMem(gMchpGetconfigCopy, gMchpGetconfigOutput, MCHP_GETCONFIG_COPY_BYTES);
  Status = ParseControllerShowText(gMchpGetconfigOutput, Chars, Count,
                                   Controller, ErrorCode);
  if (*ErrorCode == 0) {
    const UINTN CopyChars = Chars < kCopyChars ? Chars : kCopyChars;
    Status = ParseControllerShowFSText(gMchpGetconfigCopy, CopyChars,
                                       Controller, ErrorCode);
    SetStripeSizes(Controller);
  }
  Own->Flags |= RAID_FLAG_OUTPUT_VALID;
  return Status;
}

}  // namespace mchp
