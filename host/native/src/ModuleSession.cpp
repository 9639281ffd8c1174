// Loading, running and unloading the module in-process.
#include "native/ModuleSession.h"

#include <proto/EsaDrvLibPkg/EsaDrvMgr.h>
#include <setup/ModuleEntry.h>

namespace host {

ModuleSession::~ModuleSession() {
  if (Loaded_) {
    Unload();
  }
}

EFI_STATUS ModuleSession::Load() {
  EFI_STATUS Status = _ModuleEntryPoint(Server_.ImageHandle(),
                                        Server_.Firmware().SystemTable());
  Loaded_ = !EFI_ERROR(Status);
  return Status;
}

// Until the image entry builds the first wizard page, the host does what
// that page's construction does: InitializeRaid, and on success the
// information of every controller through the core's dispatch.
DiscoveryResult ModuleSession::Discover() {
  DiscoveryResult Result;
  Result.Status = InitializeRaid(&Result.ErrorCode);
  if (EFI_ERROR(Result.Status) && Result.ErrorCode != 0) {
    return Result;
  }
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    RAID_CONTROLLER *Read = nullptr;
    UINT32 ErrorCode = 0;
    GetControllerInfo(Controller, &Read, &ErrorCode);
  }
  return Result;
}

EFI_STATUS ModuleSession::Unload() {
  EFI_STATUS Status = Server_.Firmware().UnloadImage(Server_.ImageHandle());
  // Until the exit point releases the model, the host does. Once it does,
  // this finds an empty list and no setup protocol, and does nothing.
  UINT32 ErrorCode = 0;
  FinalizeRaid(&ErrorCode);
  Loaded_ = false;
  return Status;
}

}  // namespace host
