// Reconnecting an adapter's UEFI driver after its configuration changed, so
// that the firmware's view of its disks is current again.
#include <Library/BaseLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include "ProductConstants.h"
#include "RaidLibDiscovery.h"
#include "RaidLibTrace.h"

namespace {

[[nodiscard]] bool HasSignature(const RAID_CONTROLLER *Controller,
                                const CHAR8 *Signature) {
  return RaidLibControllerFamily(Controller) ==
         RaidLibFamilyOfSignature(Signature);
}

[[nodiscard]] bool UsesTool(const RAID_CONTROLLER *Controller,
                            const CHAR16 *ToolName) {
  const RAID_CAPABILITY *Capability = Controller->Capability;
  return Capability != nullptr && Capability->ToolName != nullptr &&
         StrCmp(Capability->ToolName, ToolName) == 0;
}

[[nodiscard]] bool IsFullReconnectMarvellBoard(
    const RAID_CONTROLLER *Controller) {
  const RAID_CAPABILITY *Capability = Controller->Capability;
  return Capability != nullptr && Capability->ControllerName != nullptr &&
         StrStr(Capability->ControllerName, kMarvellFullReconnectBoard) !=
             nullptr;
}

// Marvell M.2 adapters are only connected: their driver does not survive a
// disconnect while the boot device sits behind it. Traced under Caller's
// name, as is the reconnect below.
[[nodiscard]] EFI_STATUS ConnectOnly(const CHAR8 *Caller, EFI_HANDLE Handle) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a] M.2 card skip the operation\n");
  EFI_STATUS Status = gBS->ConnectController(Handle, nullptr, nullptr, TRUE);
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(
        Caller, TARN_DEBUG_INFO,
        "[%a]<err> Only connect the controller error, ingore %r\n", Status);
  }
  return EFI_SUCCESS;
}

[[nodiscard]] EFI_STATUS DisconnectAndConnect(const CHAR8 *Caller,
                                              EFI_HANDLE Handle) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a] Disconnect the controller driver\n");
  EFI_STATUS Status = gBS->DisconnectController(Handle, nullptr, nullptr);
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]<err> Cannot disconnect the controller %r\n",
                      Status);
  }
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a] Connect the controller driver\n");
  Status = gBS->ConnectController(Handle, nullptr, nullptr, TRUE);
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]<err> Cannot connect the controller %r\n", Status);
  } else {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a] Reconnect device driver successfully.\n");
  }
  return Status;
}

}  // namespace

// Called after every successful change on an adapter.
EFI_STATUS UpdateRaidControllerDeviceDriver(RAID_CONTROLLER *Controller) {
  if (Controller == nullptr || Controller->Private == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  // The Intel RAID engine's driver picks up changes by itself.
  if (HasSignature(Controller, "rste")) {
    return EFI_SUCCESS;
  }
  if (HasSignature(Controller, "$arc") && gMchpCtrlCount > 1) {
    greconnect = 1;
  }
  EFI_HANDLE Handle = Controller->Private->PciIoHandle;
  if (UsesTool(Controller, u"mvsetup.efi") &&
      !IsFullReconnectMarvellBoard(Controller)) {
    return ConnectOnly(__func__, Handle);
  }
  return DisconnectAndConnect(__func__, Handle);
}
