// Finding a controller by Id in gControllerList.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibController.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace {

[[nodiscard]] RAID_CONTROLLER *FindController(const CHAR8 *Caller, UINT32 Id) {
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    if (Controller->Id == Id) {
      return Controller;
    }
  }
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Not find controller\n");
  return nullptr;
}

}  // namespace

RAID_CONTROLLER *GetController(UINT32 Id) {
  RaidLibTraceVersion();
  return FindController(__func__, Id);
}

RAID_CONTROLLER *RaidLibGetController(UINT32 Id) {
  RaidLibTraceVersion();
  RAID_CONTROLLER *Controller = FindController(__func__, Id);
  if (Controller != nullptr && Controller->Private != nullptr) {
    gRaidCurrentCardId = Controller->Private->CardId;
  }
  return Controller;
}
