#include "BackendWorld.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace backend_test {

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

BackendWorld::BackendWorld(const ControllerSetup &Setup)
    : Firmware_(std::make_unique<emu::Firmware>()) {
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  gRaidLibSetupProtocol = &Setup_->Interface();
  RaidLibResetToolRunner();
  Shell_->SetHandler([this](const std::string &CommandLine) {
    auto Found = Answers_.find(CommandLine);
    return Found != Answers_.end() ? Found->second : Default_;
  });

  Controller_ = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller_->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller_->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller_->Capability->ToolName = AllocDestStr(Setup.ToolName);
  Controller_->Name = AllocDestStr(Setup.Name);
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
  Controller_->Id = Setup.Id;
  Controller_->Private->CardId = Setup.CardId;
  Setup.Bind(&Controller_->Private->Operations);
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller_->Link);
}

BackendWorld::~BackendWorld() {
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

VOID BackendWorld::Answer(const std::string &CommandLine,
                          const std::string &Output) {
  Answers_[CommandLine] = Crlf(Output);
}

bool BackendWorld::TraceHas(const std::string &Text) const {
  const std::vector<std::string> Texts = Setup_->TraceTexts();
  if (std::find(Texts.begin(), Texts.end(), Text) != Texts.end()) {
    return true;
  }
  std::string All;
  for (const std::string &Line : Texts) {
    All += "  " + ::testing::PrintToString(Line) + "\n";
  }
  ADD_FAILURE() << "trace lacks " << ::testing::PrintToString(Text)
                << "; it holds:\n"
                << All;
  return false;
}

}  // namespace backend_test
