// The read side of the MegaRAID backend: which storcli controller is our
// adapter, and the adapter's configuration from three kinds of report.
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace lsi {

constinit UINT32 gLsiControllerCount = 0;

namespace {

// The controller record, its private record and its capability (for the
// tool's name) must be there.
bool ControllerComplete(const RAID_CONTROLLER *Controller) {
  return Controller != nullptr && Controller->Private != nullptr &&
         Controller->Capability != nullptr &&
         Controller->Capability->ToolName != nullptr;
}

// Runs "show all" for every volume of every array; a fault of one volume
// does not stop the others.
EFI_STATUS ReadVolumeProperties(RAID_CONTROLLER *Controller,
                                EFI_STATUS Status, UINT32 *ErrorCode) {
  const CHAR16 *Tool = Controller->Capability->ToolName;
  UINT32 CardId = Controller->Private->CardId;
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume != 1) {
        continue;
      }
      LsiRunToolInto("LsiGetControllerInfo", LSI_READ_COMMAND_CHARS, ErrorCode,
                     u"%S /c%u/v%u show all mronly nolog", Tool, CardId,
                     Volume->Id);
      Status = ParseControllerShowVolume(gRaidToolOutput, Volume, ErrorCode);
    }
  }
  return Status;
}

}  // namespace

// Finds our adapter's storcli number: the only controller is 0; with more,
// each controller's summary is compared with our PCI location.
EFI_STATUS LsiGetCardId(RAID_CONTROLLER *Controller, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (!ControllerComplete(Controller)) {
    *ErrorCode = LSI_ERROR_NOT_FOUND;
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RaidLibLocateShellCommand(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  // A run that did not happen (its command refused) leaves no output to
  // count cards or compare locations in.
  Status =
      RAID_LIB_RUN_TOOL(ErrorCode, u"%S show ctrlcount mronly nolog", Tool);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  gLsiControllerCount =
      LsiParseControllerShowCtrlCount(gRaidToolOutput, ErrorCode);
  if (gLsiControllerCount == 0) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Error: Card Count %d\n",
                   gLsiControllerCount);
    return EFI_ABORTED;
  }
  if (gLsiControllerCount == 1) {
    Controller->Private->CardId = 0;
    return EFI_SUCCESS;
  }
  for (UINT32 CardId = 0; CardId < gLsiControllerCount; CardId++) {
    if (gLsiControllerCount == 2 && CardId == 1) {
      // Two controllers and card 0 is not ours: card 1 must be.
      Controller->Private->CardId = 1;
      *ErrorCode = 0;
      return EFI_SUCCESS;
    }
    Status = RAID_LIB_RUN_TOOL(ErrorCode, u"%S /c%u show mronly nolog", Tool,
                               CardId);
    if (EFI_ERROR(Status)) {
      return Status;
    }
    Status = ParseBDF(gRaidToolOutput, Controller, CardId, ErrorCode);
    if (!EFI_ERROR(Status)) {
      // The cards searched before this one left their mismatch code; a
      // found card is a success like any other, with error code 0.
      *ErrorCode = 0;
      return Status;
    }
  }
  return Status;
}

// Rebuilds the controller's model from the summary, the free-space report
// and each volume's properties, unless the model is still current.
EFI_STATUS LsiGetControllerInfo(RAID_CONTROLLER *Controller,
                                RAID_CONTROLLER_PRIVATE *Private,
                                UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (!ControllerComplete(Controller)) {
    *ErrorCode = LSI_ERROR_NOT_FOUND;
    return EFI_ABORTED;
  }
  RAID_CONTROLLER_PRIVATE *Own = Controller->Private;
  if ((Own->Flags & RAID_FLAG_OUTPUT_VALID) != 0) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Info is up to date.\n");
    return EFI_SUCCESS;
  }
  EFI_STATUS Status = RaidLibLocateShellCommand(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Own->CardId == RAID_CARD_ID_UNSET) {
    *ErrorCode = LSI_ERROR_INVALID_CARD_ID;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Invalid controller id\n");
    return EFI_ABORTED;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  LSI_RUN_TOOL(LSI_READ_COMMAND_CHARS, ErrorCode, u"%S /c%u show mronly nolog",
               Tool, Own->CardId);
  Status = ParseControllerShow(gRaidToolOutput, Controller, ErrorCode);
  if (*ErrorCode == 0) {
    LSI_RUN_TOOL(LSI_READ_COMMAND_CHARS, ErrorCode,
                 u"%S /c%u show freespace mronly nolog", Tool, Own->CardId);
    Status = ParseControllerShowFS(gRaidToolOutput, Controller, ErrorCode);
    Status = ReadVolumeProperties(Controller, Status, ErrorCode);
  }
  Own->Flags |= RAID_FLAG_OUTPUT_VALID;
  return Status;
}

}  // namespace lsi
