// The read side of the M.2 backend: the adapter, volume and drive reports
// into the controller's model, with the one array the backend builds
// itself.
#include <Protocol/Host/TarnSetup.h>

#include "M2Backend.h"
#include "RaidLibModelBuild.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace m2 {

namespace {

// TRUE when Drive has an entry of the controller's DriveTable.
[[nodiscard]] bool InDriveTable(const RAID_CONTROLLER *Controller,
                                const RAID_PHYSICAL_DRIVE *Drive) {
  for (UINTN Index = 0; Controller->DriveTable != nullptr &&
                        Controller->DriveTable[Index] != nullptr;
       Index++) {
    if (Controller->DriveTable[Index] == Drive) {
      return true;
    }
  }
  return false;
}

// An adapter without volumes shows no array. Drives the report still put
// into it stay reachable through DriveTable alone, as drives of no list.
VOID DropArrayWithoutVolumes(RAID_CONTROLLER *Controller, RAID_ARRAY *Array) {
  if (Array->VolumeCount != 0) {
    return;
  }
  while (RAID_PHYSICAL_DRIVE *Drive =
             uefi::TakeFirst<&RAID_PHYSICAL_DRIVE::Link>(&Array->DriveList)) {
    RaidLibHoldInTableOnly(Drive);
    if (!InDriveTable(Controller, Drive)) {
      RaidLibFreePhysicalDrive(Drive);
    }
  }
  RaidLibFreeArrayLink(&Controller->ArrayList);
}

}  // namespace

EFI_STATUS M2GetCardId(RAID_CONTROLLER *Controller, UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]This->Id is %d:\n",
                 Controller != nullptr ? Controller->Id : 0);
  return EFI_SUCCESS;
}

EFI_STATUS M2GetControllerInfo(RAID_CONTROLLER *Controller,
                               RAID_CONTROLLER_PRIVATE *Private,
                               UINT32 *ErrorCode) {
  (VOID)Private;
  EFI_STATUS Status = EFI_SUCCESS;
  if (!RaidLibReadIsDue(__func__, Controller, ErrorCode, &Status)) {
    return Status;
  }
  RaidLibReadScope Read(Controller);
  RAID_CONTROLLER_PRIVATE *Own = Controller->Private;
  Status = RaidLibReadyToRunTool(__func__, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Status = RaidLibResetControllerModel(Controller);
  if (EFI_ERROR(Status)) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return Status;
  }
  const CHAR16 *Tool = Controller->Capability->ToolName;
  const UINT32 CardId = Own->CardId;
  RAID_TOOL_RUN Run = RaidLibSharedRun(__func__, M2_COMMAND_CHARS);

  // The adapter report takes no card number.
  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(Run, ErrorCode, u"%S info -o hba", Tool));
  Status = ParseControllerInfo(gRaidToolOutput, Controller, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  RAID_ARRAY *Array = RaidLibAddNamedArray(Controller, M2_ARRAY_ID,
                                           M2_ARRAY_NAME, M2_ARRAY_EXTRA_SIZE);
  if (Array == nullptr) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  Array->FreeCapacityUnit = RAID_UNIT_GB;
  Array->SizeUnit = RAID_UNIT_GB;
  // A report without a "RAID mode" line reads as if it were empty.
  Array->RaidLevel = M2RaidLevel(nullptr);

  RaidLibOutputJudgedByCaller(
      RaidLibRunTool(Run, ErrorCode, u"%S %d info -o vd", Tool, CardId));
  Status = ParseVolumeInfo(gRaidToolOutput, Array, ErrorCode);
  if (!EFI_ERROR(Status)) {
    RaidLibOutputJudgedByCaller(
        RaidLibRunTool(Run, ErrorCode, u"%S %d info -o pd", Tool, CardId));
    Status =
        ParsePhysicalDriveInfo(gRaidToolOutput, Controller, Array, ErrorCode);
  }
  DropArrayWithoutVolumes(Controller, Array);
  Own->Flags |= RAID_FLAG_OUTPUT_VALID;
  return Status;
}

}  // namespace m2
