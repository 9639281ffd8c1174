#include "LsiWorld.h"

#include "LsiOutputs.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace lsi_test {

std::string Verdict(bool Success) {
  return std::string("CLI Version = 007.1705.0000.0000 Mar 31, 2021\n"
                     "Operating system = UEFI\n"
                     "Controller = 0\n") +
         (Success ? "Status = Success\nDescription = Done.\n"
                  : "Status = Failure\nDescription = resources already in "
                    "use\n");
}

LsiWorld::LsiWorld()
    : ScriptedToolWorld({u"storcli.efi", u"MegaRAID 9460-8i", 3,
                         lsi::LsiBindBackend}) {
  gLsiCommandForm = 0;
  Controller_->SlotNumber = 0;
  Controller_->Private->Bus = 0x3B;
}

LsiWorld::~LsiWorld() { gLsiCommandForm = 0; }

VOID LsiWorld::AnswerRichConfiguration() {
  Answer("storcli.efi /c0 show mronly nolog", kRichSummary);
  Answer("storcli.efi /c0 show freespace mronly nolog", kRichFreeSpace);
  Answer("storcli.efi /c0/v0 show all mronly nolog",
         ShowAll("0/0", "RWBD", "256 KB", "Disk's Default"));
  Answer("storcli.efi /c0/v1 show all mronly nolog",
         ShowAll("0/1", "NRWTC", "1.000 MB", "Disabled"));
  Answer("storcli.efi /c0/v2 show all mronly nolog",
         ShowAll("1/2", "RAWBC", "2.000 MB", "Enabled"));
}

VOID LsiWorld::ReadModel() {
  Controller_->Private->Flags = 0;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(LsiGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
}

RAID_PHYSICAL_DRIVE *LsiWorld::DriveAt(const std::string &Location) {
  for (UINT32 I = 0; I < Controller_->DiskDriveCount; I++) {
    RAID_PHYSICAL_DRIVE *Drive = Controller_->DriveTable[I];
    if (Drive != nullptr && Narrow(Drive->Location) == Location) {
      return Drive;
    }
  }
  return nullptr;
}

}  // namespace lsi_test
