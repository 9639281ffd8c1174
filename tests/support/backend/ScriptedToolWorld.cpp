#include "ScriptedToolWorld.h"

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

ScriptedToolWorld::ScriptedToolWorld(const ScriptedController &Made)
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
  Controller_->Capability->ToolName = AllocDestStr(Made.ToolName);
  Controller_->Name = AllocDestStr(Made.Name);
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
  Controller_->Id = Made.Id;
  Controller_->SlotNumber = RAID_SLOT_NUMBER_NONE;
  Controller_->Private->CardId = Made.CardId;
  Made.Bind(&Controller_->Private->Operations);
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller_->Link);
}

ScriptedToolWorld::~ScriptedToolWorld() {
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

VOID ScriptedToolWorld::Answer(const std::string &CommandLine,
                               const std::string &Output) {
  Answers_[CommandLine] = Crlf(Output);
}

bool ScriptedToolWorld::TraceHas(const std::string &Line) const {
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

}  // namespace backend_test
