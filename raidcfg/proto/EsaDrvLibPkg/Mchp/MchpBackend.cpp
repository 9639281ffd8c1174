// The Microchip backend's binding: its signature and operations.
#include "MchpBackend.h"

#include "RaidBackends.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"

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
  // The shell-command service is located now if it was not yet; a failure
  // here is no failure of the binding: every operation locates it again
  // and reports.
  UINT32 LocateError = 0;
  (VOID)RaidLibLocateShellCommand(__func__, &LocateError);
}

}  // namespace mchp
