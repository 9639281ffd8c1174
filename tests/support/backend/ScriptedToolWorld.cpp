#include "ScriptedToolWorld.h"

#include <Library/UefiBootServicesTableLib.h>

#include <algorithm>

#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace backend_test {

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

  Controller_ = NewToolController(Made.ToolName, Made.Name, Made.Bind);
  Controller_->Id = Made.Id;
  Controller_->SlotNumber = RAID_SLOT_NUMBER_NONE;
  Controller_->Private->CardId = Made.CardId;
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
  const bool PlainEnd = Line.size() >= 1 && Line.back() == '\n' &&
                        (Line.size() < 2 || Line[Line.size() - 2] != '\r');
  const std::string Printed = PlainEnd ? Crlf(Line) : Line;
  const std::vector<std::string> Lines = Setup_->TraceTexts();
  if (std::find(Lines.begin(), Lines.end(), Printed) != Lines.end()) {
    return true;
  }
  std::string All;
  for (const std::string &Text : Lines) {
    All += "  " + ::testing::PrintToString(Text) + "\n";
  }
  ADD_FAILURE() << "trace lacks " << ::testing::PrintToString(Printed)
                << "; it holds:\n"
                << All;
  return false;
}

RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

std::vector<std::string> SegmentNames(RAID_ARRAY *Array) {
  std::vector<std::string> Names;
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    Names.push_back(Narrow(Segment->Name));
  }
  return Names;
}

}  // namespace backend_test
