#include "M2World.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace m2_test {

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

CHAR16 *LoadOutput(const std::string &Text) {
  std::string Bytes = Crlf(Text);
  size_t Limit = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  size_t Length = std::min(Bytes.size(), Limit);
  for (size_t I = 0; I < Length; I++) {
    gRaidToolOutput[I] = static_cast<unsigned char>(Bytes[I]);
  }
  gRaidToolOutput[Length] = 0;
  return gRaidToolOutput;
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

M2World::M2World() : Firmware_(std::make_unique<emu::Firmware>()) {
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  gRaidLibSetupProtocol = &Setup_->Interface();
  RaidLibResetToolRunner();
  Shell_->SetHandler([this](const std::string &CommandLine) {
    auto Found = Answers_.find(CommandLine);
    return Found != Answers_.end() ? Found->second : std::string();
  });

  Controller_ = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller_->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller_->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller_->Capability->ToolName = AllocDestStr(u"mvsetup.efi");
  Controller_->Name = AllocDestStr(u"Marvell 88SE9230 M.2 RAID Adapter");
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
  Controller_->Id = 3;
  Controller_->SlotNumber = RAID_SLOT_NUMBER_NONE;
  Controller_->Private->CardId = 0;
  m2::M2BindBackend(&Controller_->Private->Operations);
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller_->Link);
}

M2World::~M2World() {
  RaidLibFreeController(Controller_);
  InitializeListHead(&gControllerList);
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  gRaidLibSetupProtocol = nullptr;
  RaidLibResetToolRunner();
  Shell_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
}

VOID M2World::Answer(const std::string &CommandLine,
                     const std::string &Output) {
  Answers_[CommandLine] = Crlf(Output);
}

VOID M2World::AnswerReports(const std::string &Hba, const std::string &Vd,
                            const std::string &Pd) {
  Answer("mvsetup.efi info -o hba", Hba);
  Answer("mvsetup.efi 0 info -o vd", Vd);
  Answer("mvsetup.efi 0 info -o pd", Pd);
}

bool M2World::TraceHas(const std::string &Line) const {
  for (const std::string &Text : Setup_->TraceTexts()) {
    if (Text == Line) {
      return true;
    }
  }
  std::string All;
  for (const std::string &Text : Setup_->TraceTexts()) {
    All += "  " + ::testing::PrintToString(Text) + "\n";
  }
  ADD_FAILURE() << "trace lacks " << ::testing::PrintToString(Line)
                << "; it holds:\n"
                << All;
  return false;
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
