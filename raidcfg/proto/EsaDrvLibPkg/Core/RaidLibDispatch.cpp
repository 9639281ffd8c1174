// The one dispatch through which every read and change of an adapter
// passes: it checks the controller and the backend's operation, calls it,
// and reconnects the adapter's driver after a successful change.
#include "EsaDrvMgr.h"
#include "RaidLibDiscovery.h"
#include "RaidLibTrace.h"

namespace {

// The controller, its private record and (unless only the drive state is
// changed) its capability must be present.
[[nodiscard]] bool ControllerUsable(const CHAR8 *Caller,
                                    const RAID_CONTROLLER *Controller,
                                    UINT32 *ErrorCode) {
  if (Controller == nullptr || Controller->Private == nullptr ||
      Controller->Capability == nullptr) {
    RAID_LIB_TRACE_AS(
        Caller, TARN_DEBUG_INFO,
        "[%a]Controller/Controller->Private/Controller->Capability is NULL.\n");
    *ErrorCode = RAID_ERROR_MISSING;
    return false;
  }
  return true;
}

[[nodiscard]] bool ControllerPresent(const CHAR8 *Caller,
                                     const RAID_CONTROLLER *Controller,
                                     UINT32 *ErrorCode) {
  if (Controller == nullptr || Controller->Private == nullptr) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]Controller/Controller->Private is NULL.\n");
    *ErrorCode = RAID_ERROR_MISSING;
    return false;
  }
  return true;
}

// A missing backend operation: its message, and the same error code as a
// missing controller.
[[nodiscard]] EFI_STATUS OperationMissing(const CHAR8 *Caller,
                                          const CHAR8 *Message,
                                          UINT32 *ErrorCode) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, Message);
  *ErrorCode = RAID_ERROR_MISSING;
  return EFI_ABORTED;
}

// After a successful change the adapter's UEFI driver is reconnected.
[[nodiscard]] EFI_STATUS ReconnectAfterChange(const CHAR8 *Caller,
                                              RAID_CONTROLLER *Controller) {
  EFI_STATUS Status = UpdateRaidControllerDeviceDriver(Controller);
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]<err> Failed to update the device drives under the "
                      "RAID controller");
    return Status;
  }
  return EFI_SUCCESS;
}

// The outcome of a delete or create: a failure is traced and returned with
// the backend's error code; a success reconnects the driver.
[[nodiscard]] EFI_STATUS FinishChange(const CHAR8 *Caller,
                                      const CHAR8 *FailureMessage,
                                      RAID_CONTROLLER *Controller,
                                      EFI_STATUS Status) {
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, FailureMessage);
    return Status;
  }
  return ReconnectAfterChange(Caller, Controller);
}

[[nodiscard]] EFI_STATUS ReadControllerInfo(const CHAR8 *Caller,
                                            RAID_CONTROLLER *Controller,
                                            RAID_CONTROLLER_PRIVATE *Private,
                                            RAID_CONTROLLER **ControllerOut,
                                            UINT32 *ErrorCode) {
  *ErrorCode = 0;
  if (!ControllerUsable(Caller, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  if (Controller->Private->Operations.GetControllerInfo == nullptr) {
    return OperationMissing(Caller, "[%a]Operations.GetControllerInfo is NULL\n",
                            ErrorCode);
  }
  EFI_STATUS Status = Controller->Private->Operations.GetControllerInfo(
      Controller, Private, ErrorCode);
  if (ControllerOut != nullptr) {
    *ControllerOut = EFI_ERROR(Status) ? nullptr : Controller;
  }
  return Status;
}

}  // namespace

EFI_STATUS GetControllerInfo(RAID_CONTROLLER *Controller,
                             RAID_CONTROLLER **ControllerOut,
                             UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  return ReadControllerInfo(__func__, Controller, nullptr, ControllerOut,
                            ErrorCode);
}

// Clears the cached-output mark so the backend runs its tool again.
EFI_STATUS RefreshControllerInfo(RAID_CONTROLLER *Controller,
                                 RAID_CONTROLLER **ControllerOut,
                                 UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  if (Controller != nullptr && Controller->Private != nullptr) {
    Controller->Private->Flags &= ~RAID_FLAG_OUTPUT_VALID;
  }
  return ReadControllerInfo(
      __func__, Controller,
      Controller != nullptr ? Controller->Private : nullptr, ControllerOut,
      ErrorCode);
}

EFI_STATUS DeleteArray(RAID_ARRAY *Array, UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  *ErrorCode = 0;
  if (Array == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  RAID_CONTROLLER *Controller = Array->Controller;
  if (!ControllerUsable(__func__, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  RAID_OPERATIONS &Operations = Controller->Private->Operations;
  if (Operations.DeleteArray == nullptr) {
    return OperationMissing(__func__, "[%a]Operations->DeleteArray == NULL\n",
                            ErrorCode);
  }
  EFI_STATUS Status = Operations.DeleteArray(Array, ErrorCode);
  // The array's failure line deliberately has no line end, as it always had.
  return FinishChange(__func__, "[%a]<err> Failed to delete array", Controller,
                      Status);
}

// A free segment is no volume: it is refused without a trace and without
// touching the error code.
EFI_STATUS DeleteVolume(RAID_VOLUME *Volume, UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  if (Volume != nullptr && !Volume->IsVolume) {
    return EFI_ABORTED;
  }
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      (Volume != nullptr && Volume->Array != nullptr) ? Volume->Array->Controller
                                                      : nullptr;
  if (!ControllerUsable(__func__, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  RAID_OPERATIONS &Operations = Controller->Private->Operations;
  if (Operations.DeleteVolume == nullptr) {
    return OperationMissing(__func__, "[%a]Operations->DeleteVolume == NULL\n",
                            ErrorCode);
  }
  EFI_STATUS Status = Operations.DeleteVolume(Volume, ErrorCode);
  return FinishChange(__func__, "[%a]<err> Failed to delete volume\n",
                      Controller, Status);
}

EFI_STATUS CreateVolume(RAID_VOLUME_PARAMETER *Parameter, UINTN PassThrough,
                        UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Parameter != nullptr ? RaidLibGetController(Parameter->ControllerId)
                           : nullptr;
  if (!ControllerUsable(__func__, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  RAID_OPERATIONS &Operations = Controller->Private->Operations;
  if (Operations.CreateVolume == nullptr) {
    return OperationMissing(__func__, "[%a]Operations->CreateVolume == NULL\n",
                            ErrorCode);
  }
  EFI_STATUS Status = Operations.CreateVolume(Parameter, PassThrough, ErrorCode);
  return FinishChange(__func__, "[%a]<err> Failed to create volume\n",
                      Controller, Status);
}

// Changes one drive. The backend keeps the model current itself and the
// driver is not reconnected (unlike the change of all drives).
EFI_STATUS SetPhysicalDriveState(RAID_CONTROLLER *Controller,
                                 RAID_PHYSICAL_DRIVE *Drive,
                                 UINT32 TargetState, UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  *ErrorCode = 0;
  if (!ControllerPresent(__func__, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  RAID_OPERATIONS &Operations = Controller->Private->Operations;
  if (Operations.SetPhysicalDriveState == nullptr) {
    // Deliberately the GetControllerInfo message: the log has always named
    // the read operation for a missing drive-state operation, and log
    // readers search for that line.
    return OperationMissing(__func__, "[%a]Operations.GetControllerInfo is NULL\n",
                            ErrorCode);
  }
  if (Drive == nullptr) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a]PhysicalDrive is NULL.\n");
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  // Deliberately no reconnect, unlike the change of all drives: the result
  // goes back as it is (a backend may return a bare code without the error
  // bit), and callers judge it by the error code.
  return Operations.SetPhysicalDriveState(Controller, Drive, TargetState,
                                          ErrorCode);
}

EFI_STATUS SetAllPhysicalDriveState(RAID_CONTROLLER *Controller,
                                    UINT32 TargetState, UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  *ErrorCode = 0;
  if (!ControllerPresent(__func__, Controller, ErrorCode)) {
    return EFI_ABORTED;
  }
  RAID_OPERATIONS &Operations = Controller->Private->Operations;
  if (Operations.SetAllPhysicalDriveState == nullptr) {
    // Deliberately the GetControllerInfo message, as for one drive.
    return OperationMissing(__func__, "[%a]Operations.GetControllerInfo is NULL\n",
                            ErrorCode);
  }
  EFI_STATUS Status =
      Operations.SetAllPhysicalDriveState(Controller, TargetState, ErrorCode);
  if (Status != EFI_SUCCESS) {
    return Status;
  }
  return ReconnectAfterChange(__func__, Controller);
}
