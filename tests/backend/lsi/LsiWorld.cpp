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

LsiWorld::LsiWorld() : Firmware_(std::make_unique<emu::Firmware>()) {
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  gRaidLibSetupProtocol = &Setup_->Interface();
  RaidLibResetToolRunner();
  gLsiCommandForm = 0;
  Shell_->SetHandler([this](const std::string &CommandLine) {
    auto Found = Answers_.find(CommandLine);
    return Found != Answers_.end() ? Found->second : Default_;
  });

  Controller_ = backend_test::NewToolController(
      u"storcli.efi", u"MegaRAID 9460-8i", lsi::LsiBindBackend);
  Controller_->Id = 3;
  Controller_->Private->CardId = 0;
  Controller_->Private->Bus = 0x3B;
  Controller_->Private->Device = 0;
  Controller_->Private->Function = 0;
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller_->Link);
}

LsiWorld::~LsiWorld() {
  RaidLibFreeController(Controller_);
  InitializeListHead(&gControllerList);
  EXPECT_EQ(Firmware_->Memory().LeakReport(), "");
  gRaidLibSetupProtocol = nullptr;
  RaidLibResetToolRunner();
  gLsiCommandForm = 0;
  Shell_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
}

VOID LsiWorld::Answer(const std::string &CommandLine,
                      const std::string &Output) {
  Answers_[CommandLine] = Crlf(Output);
}

bool LsiWorld::TraceHas(const std::string &Line) const {
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

RAID_ARRAY *LsiWorld::Array(UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller_->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
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

std::vector<std::string> LsiWorld::SegmentNames(RAID_ARRAY *Array) {
  std::vector<std::string> Names;
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    Names.push_back(Narrow(Segment->Name));
  }
  return Names;
}

}  // namespace lsi_test
