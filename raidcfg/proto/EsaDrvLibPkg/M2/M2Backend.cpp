// The M.2 backend's binding: its signature and operations.
#include "M2Backend.h"

#include "RaidBackends.h"
#include "RaidLibOperation.h"

namespace m2 {

VOID M2BindBackend(RAID_OPERATIONS *Operations) {
  RaidLibStartOperations(Operations, RAID_SIGNATURE_M2);
  Operations->GetCardId = M2GetCardId;
  Operations->GetControllerInfo = M2GetControllerInfo;
  Operations->DeleteArray = M2DeleteArray;
  Operations->DeleteVolume = M2DeleteVolume;
  Operations->CreateVolume = M2CreateVolume;
  Operations->SetPhysicalDriveState = M2SetPhysicalDriveState;
  Operations->SetAllPhysicalDriveState = M2SetAllPhysicalDriveState;
}

}  // namespace m2
