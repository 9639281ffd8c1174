#include "M2World.h"

namespace m2_test {

M2World::M2World()
    : ScriptedToolWorld({u"mvsetup.efi", u"Marvell 88SE9230 M.2 RAID Adapter",
                         3, m2::M2BindBackend}) {}

VOID M2World::AnswerReports(const std::string &Hba, const std::string &Vd,
                            const std::string &Pd) {
  Answer("mvsetup.efi info -o hba", Hba);
  Answer("mvsetup.efi 0 info -o vd", Vd);
  Answer("mvsetup.efi 0 info -o pd", Pd);
}

VOID M2World::ReadModel() {
  Controller_->Private->Flags = 0;
  UINT32 ErrorCode = 0xDEAD;
  EXPECT_EQ(M2GetControllerInfo(Controller_, nullptr, &ErrorCode),
            EFI_SUCCESS);
  EXPECT_EQ(ErrorCode, 0u);
}

RAID_ARRAY *M2World::OnlyArray() {
  if (CountListEntries(&Controller_->ArrayList) != 1) {
    return nullptr;
  }
  return uefi::RecordOf<&RAID_ARRAY::Link>(
      GetFirstNode(&Controller_->ArrayList));
}

std::vector<RAID_VOLUME *> M2World::Volumes() {
  std::vector<RAID_VOLUME *> Out;
  if (RAID_ARRAY *Array = OnlyArray()) {
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      Out.push_back(Volume);
    }
  }
  return Out;
}

std::vector<std::string> M2World::Locations(LIST_ENTRY *DriveList) {
  std::vector<std::string> Out;
  for (RAID_PHYSICAL_DRIVE *Drive :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(*DriveList)) {
    Out.push_back(Narrow(Drive->Location));
  }
  return Out;
}

}  // namespace m2_test
