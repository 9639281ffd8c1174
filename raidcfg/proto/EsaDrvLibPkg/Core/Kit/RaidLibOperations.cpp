// The start of every backend's binding: a cleared table with its signature.
#include "RaidLib.h"

VOID RaidLibStartOperations(RAID_OPERATIONS *Operations,
                            const CHAR8 *Signature) {
  *Operations = RAID_OPERATIONS{};
  for (UINTN Index = 0;
       Index < RAID_SIGNATURE_SIZE && Signature[Index] != '\0'; Index++) {
    Operations->Signature[Index] = Signature[Index];
  }
}
