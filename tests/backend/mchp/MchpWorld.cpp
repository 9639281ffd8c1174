#include "MchpWorld.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp_test {

MchpWorld::MchpWorld()
    : ScriptedToolWorld({u"arcconf.efi", u"SmartRAID 3154-8i", 2,
                         mchp::MchpBindBackend, 1}) {
  gMchpCtrlCount = 0;
  greconnect = 1;
  Controller_->SlotNumber = 6;
}

MchpWorld::~MchpWorld() {
  gMchpCtrlCount = 0;
  greconnect = 1;
}

VOID MchpWorld::ReadModel(const std::string &Getconfig) {
  Answer("arcconf.efi getconfig " +
             std::to_string(Controller_->Private->CardId),
         Getconfig);
  Controller_->Private->Flags = 0;
  UINT32 ErrorCode = 0xDEAD;
  ASSERT_EQ(MchpGetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  ASSERT_EQ(ErrorCode, 0u);
}

EFI_STATUS MchpWorld::Parse(const std::string &Getconfig, UINT32 *ErrorCode) {
  std::string Text = Crlf(Getconfig);
  std::vector<CHAR16> Buffer(Text.begin(), Text.end());
  std::vector<CHAR16> Copy = Buffer;
  Buffer.push_back(0);
  Copy.push_back(0);
  *ErrorCode = 0;
  EFI_STATUS Status =
      ParseControllerShow(Buffer.data(), Buffer.size(), Controller_, ErrorCode);
  if (*ErrorCode == 0) {
    Status = ParseControllerShowFS(Copy.data(), Copy.size(), Controller_,
                                   ErrorCode);
  }
  return Status;
}

RAID_ARRAY *MchpWorld::Array(UINT32 Id) {
  return RaidLibFindArray(Controller_, Id);
}

RAID_VOLUME *MchpWorld::Volume(UINT32 ArrayId, UINT32 Id) {
  RAID_ARRAY *Owner = Array(ArrayId);
  if (Owner == nullptr) {
    return nullptr;
  }
  for (RAID_VOLUME *Entry :
       uefi::ListOf<&RAID_VOLUME::Link>(Owner->SegmentList)) {
    if (Entry->IsVolume == 1 && Entry->Id == Id) {
      return Entry;
    }
  }
  return nullptr;
}

std::vector<RAID_PHYSICAL_DRIVE *> MchpWorld::AllDrives() {
  std::vector<RAID_PHYSICAL_DRIVE *> Drives;
  for (LIST_ENTRY *Head :
       {&Controller_->PhysicalDriveList, &Controller_->SpareDriveList}) {
    for (RAID_PHYSICAL_DRIVE *Entry :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*Head)) {
      Drives.push_back(Entry);
    }
  }
  for (RAID_ARRAY *Owner :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller_->ArrayList)) {
    for (RAID_PHYSICAL_DRIVE *Entry :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Owner->DriveList)) {
      Drives.push_back(Entry);
    }
  }
  return Drives;
}

RAID_PHYSICAL_DRIVE *MchpWorld::Drive(UINT32 Slot) {
  for (RAID_PHYSICAL_DRIVE *Entry : AllDrives()) {
    if (Entry->Id == Slot) {
      return Entry;
    }
  }
  return nullptr;
}

}  // namespace mchp_test
