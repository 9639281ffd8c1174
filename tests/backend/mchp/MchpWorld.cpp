#include "MchpWorld.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp_test {

std::string Crlf(const std::string &Text) {
  std::string Out;
  for (char C : Text) {
    if (C == '\n') {
      Out += '\r';
    }
    Out += C;
  }
  return Out;
}

std::string Narrow(const CHAR16 *Text) {
  if (Text == nullptr) {
    return "<null>";
  }
  std::string Out;
  for (; *Text != 0; Text++) {
    Out += static_cast<char>(*Text);
  }
  return Out;
}

MchpWorld::MchpWorld() : Firmware_(std::make_unique<emu::Firmware>()) {
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  gRaidLibSetupProtocol = &Setup_->Interface();
  RaidLibResetToolRunner();
  gMchpCtrlCount = 0;
  greconnect = 1;
  Shell_->SetHandler([this](const std::string &CommandLine) {
    auto Found = Answers_.find(CommandLine);
    return Found != Answers_.end() ? Found->second : Default_;
  });
  Controller_ = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller_->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller_->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller_->Capability->ToolName = AllocDestStr(u"arcconf.efi");
  Controller_->Name = AllocDestStr(u"SmartRAID 3154-8i");
  for (LIST_ENTRY *Head :
       {&Controller_->PhysicalDriveList, &Controller_->SpareDriveList,
        &Controller_->ArrayList, &Controller_->Capability->LevelList,
        &Controller_->Capability->ReadPolicyList,
        &Controller_->Capability->WritePolicyList,
        &Controller_->Capability->IoPolicyList,
        &Controller_->Capability->DiskCachePolicyList,
        &Controller_->Capability->StripeSizeList}) {
    InitializeListHead(Head);
  }
  Controller_->Id = 2;
  Controller_->SlotNumber = 6;
  Controller_->Private->CardId = 1;
  mchp::MchpBindBackend(&Controller_->Private->Operations);
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller_->Link);
}

MchpWorld::~MchpWorld() {
  RaidLibFreeController(Controller_);
  InitializeListHead(&gControllerList);
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  gRaidLibSetupProtocol = nullptr;
  RaidLibResetToolRunner();
  gMchpCtrlCount = 0;
  greconnect = 1;
  Shell_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
}

VOID MchpWorld::Answer(const std::string &CommandLine,
                       const std::string &Output) {
  Answers_[CommandLine] = Crlf(Output);
}

bool MchpWorld::TraceHas(const std::string &Line) const {
  const auto Texts = Setup_->TraceTexts();
  if (std::find(Texts.begin(), Texts.end(), Line + "\r\n") != Texts.end()) {
    return true;
  }
  std::string All;
  for (const std::string &Text : Texts) {
    All += "  " + ::testing::PrintToString(Text) + "\n";
  }
  ADD_FAILURE() << "trace lacks " << ::testing::PrintToString(Line)
                << "; it holds:\n"
                << All;
  return false;
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
