// The MegaRAID backend's operation table.
#include "LsiBackend.h"

// Writes "$lsi" and the storcli operations into a controller's table.
VOID LsiBindOperations(RAID_OPERATIONS *Operations) {
  *Operations = RAID_OPERATIONS{};
  const CHAR8 *Tag = RAID_SIGNATURE_LSI;
  for (UINTN Index = 0; Index < RAID_SIGNATURE_SIZE && Tag[Index] != '\0';
       Index++) {
    Operations->Signature[Index] = Tag[Index];
  }
  Operations->GetCardId = LsiGetCardId;
  Operations->GetControllerInfo = LsiGetControllerInfo;
  Operations->DeleteArray = LsiDeleteArray;
  Operations->DeleteVolume = LsiDeleteVolume;
  Operations->CreateVolume = LsiCreateVolume;
  Operations->SetPhysicalDriveState = LsiSetPhysicalDriveState;
  Operations->SetAllPhysicalDriveState = LsiSetAllPhysicalDriveState;
}
