// The read side of the MegaRAID backend: which storcli controller is our
// adapter, and the adapter's configuration from three kinds of report.
#include <Protocol/Host/TarnSetup.h>

#include "LsiBackend.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace lsi {

constinit UINT32 gLsiControllerCount = 0;

namespace {

// Runs "show all" for every volume of every array; a fault of one volume
// does not stop the others.
[[nodiscard]] EFI_STATUS ReadVolumeProperties(const CHAR8 *Caller,
                                              RAID_CONTROLLER *Controller,
                                              EFI_STATUS Status,
                                              UINT32 *ErrorCode) {
  const CHAR16 *Tool = Controller->Capability->ToolName;
  UINT32 CardId = Controller->Private->CardId;
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume != 1) {
        continue;
      }
      RaidLibOutputJudgedByCaller(RaidLibRunTool(
          RaidLibSharedRun(Caller, LSI_READ_COMMAND_CHARS), ErrorCode,
          u"%S /c%u/v%u show all mronly nolog", Tool, CardId, Volume->Id));
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
  EFI_STATUS Status = RaidLibToolAvailable(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  // A run that did not happen (its command refused) leaves no output to
  // count cards or compare locations in.
  Status = RaidLibRunTool(RaidLibSharedRun(__func__), ErrorCode,
                          u"%S show ctrlcount mronly nolog", Tool);
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
      // Two controllers and card 0 is not ours: card 1 must be. A
      // deliberate shortcut that saves a tool run at start-up: card 1 is
      // taken without running its command, and card 0's code is cleared.
      Controller->Private->CardId = 1;
      *ErrorCode = 0;
      return EFI_SUCCESS;
    }
    Status = RaidLibRunTool(RaidLibSharedRun(__func__), ErrorCode,
                            u"%S /c%u show mronly nolog", Tool, CardId);
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
  EFI_STATUS Status = EFI_SUCCESS;
  if (!RaidLibReadIsDue(__func__, Controller, ErrorCode, &Status)) {
    return Status;
  }
  RaidLibReadScope Read(Controller);
  RAID_CONTROLLER_PRIVATE *Own = Controller->Private;
  Status = RaidLibReadyToRunTool(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status) && *ErrorCode == RAID_ERROR_INVALID_CARD_ID) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Invalid controller id\n");
  }
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  RAID_TOOL_RUN Run = RaidLibSharedRun(__func__, LSI_READ_COMMAND_CHARS);
  RaidLibOutputJudgedByCaller(RaidLibRunTool(
      Run, ErrorCode, u"%S /c%u show mronly nolog", Tool, Own->CardId));
  Status = ParseControllerShow(gRaidToolOutput, Controller, ErrorCode);
  if (*ErrorCode == 0) {
    RaidLibOutputJudgedByCaller(
        RaidLibRunTool(Run, ErrorCode, u"%S /c%u show freespace mronly nolog",
                       Tool, Own->CardId));
    Status = ParseControllerShowFS(gRaidToolOutput, Controller, ErrorCode);
    Status = ReadVolumeProperties(__func__, Controller, Status, ErrorCode);
  }
  Own->Flags |= RAID_FLAG_OUTPUT_VALID;
  return Status;
}

}  // namespace lsi
