// The MegaRAID backend's binding: its signature and operations.
#include "LsiBackend.h"

#include "RaidBackends.h"
#include "RaidLibOperation.h"

namespace lsi {

VOID LsiBindBackend(RAID_OPERATIONS *Operations) {
  RaidLibStartOperations(Operations, RAID_SIGNATURE_LSI);
  Operations->GetCardId = LsiGetCardId;
  Operations->GetControllerInfo = LsiGetControllerInfo;
  Operations->DeleteArray = LsiDeleteArray;
  Operations->DeleteVolume = LsiDeleteVolume;
  Operations->CreateVolume = LsiCreateVolume;
  Operations->SetPhysicalDriveState = LsiSetPhysicalDriveState;
  Operations->SetAllPhysicalDriveState = LsiSetAllPhysicalDriveState;
}

}  // namespace lsi
