// The Microchip backend's binding: its signature and operations.
#include "MchpBackend.h"

#include "RaidBackends.h"
#include "RaidLibOperation.h"

namespace mchp {

VOID MchpBindBackend(RAID_OPERATIONS *Operations) {
  RaidLibStartOperations(Operations, RAID_SIGNATURE_ARC);
  Operations->GetCardId = MchpGetCardId;
  Operations->GetControllerInfo = MchpGetControllerInfo;
  Operations->DeleteArray = MchpDeleteArray;
  Operations->DeleteVolume = MchpDeleteVolume;
  Operations->CreateVolume = MchpCreateVolume;
  Operations->SetPhysicalDriveState = MchpSetPhysicalDriveState;
  Operations->SetAllPhysicalDriveState = MchpSetAllPhysicalDriveState;
  // The shell-command service is not located here: every operation that
  // runs the tool locates it first (RaidLibToolAvailable) and reports a
  // failure with its own error code, and a binding may fill a table before
  // boot services are at hand.
}

}  // namespace mchp
