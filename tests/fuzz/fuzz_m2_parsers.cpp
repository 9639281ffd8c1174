// Feeds arbitrary bytes, one byte per character as the M.2 tools print
// them, through the M.2 backend's parsers in the shared output buffer. The
// first byte chooses the adapter, volume or drive parser, or a whole read
// whose three reports are all these bytes. Every record built is released
// again and the pool must be back where it started.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "M2Backend.h"
#include "RaidBackends.h"
#include "RaidLibModelBuild.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "emu/Emulator.h"

using namespace m2;

namespace {

struct World {
  std::unique_ptr<emu::Firmware> Firmware;
  std::unique_ptr<emu::ShellCommand> Shell;
  std::string Answer;
};

World &TheWorld() {
  static World *Made = [] {
    auto *W = new World;
    W->Firmware = std::make_unique<emu::Firmware>();
    gST = W->Firmware->SystemTable();
    gBS = gST->BootServices;
    W->Shell = std::make_unique<emu::ShellCommand>(*W->Firmware);
    W->Shell->SetHandler([W](const std::string &) { return W->Answer; });
    return W;
  }();
  return *Made;
}

CHAR16 *Load(const std::uint8_t *Data, std::size_t Size) {
  std::size_t Limit = RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1;
  std::size_t Length = Size < Limit ? Size : Limit;
  for (std::size_t I = 0; I < Length; I++) {
    gRaidToolOutput[I] = Data[I];
  }
  gRaidToolOutput[Length] = 0;
  return gRaidToolOutput;
}

RAID_CONTROLLER *NewController() {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller->Capability->ToolName = AllocDestStr(u"mvsetup.efi");
  for (LIST_ENTRY *Head :
       {&Controller->PhysicalDriveList, &Controller->SpareDriveList,
        &Controller->ArrayList, &Controller->Capability->LevelList,
        &Controller->Capability->ReadPolicyList,
        &Controller->Capability->WritePolicyList,
        &Controller->Capability->IoPolicyList,
        &Controller->Capability->DiskCachePolicyList,
        &Controller->Capability->StripeSizeList}) {
    InitializeListHead(Head);
  }
  Controller->SlotNumber = RAID_SLOT_NUMBER_NONE;
  Controller->Private->CardId = 0;
  M2BindBackend(&Controller->Private->Operations);
  return Controller;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  World &W = TheWorld();
  std::size_t Before = W.Firmware->Memory().Outstanding().size();
  std::uint8_t Choice = Data[0] % 4;
  Data++;
  Size--;
  RAID_CONTROLLER *Controller = NewController();
  UINT32 ErrorCode = 0;
  if (Choice == 0) {
    (void)ParseControllerInfo(Load(Data, Size), Controller, &ErrorCode);
  } else if (Choice == 3) {
    W.Answer.assign(reinterpret_cast<const char *>(Data), Size);
    (void)M2GetControllerInfo(Controller, nullptr, &ErrorCode);
  } else {
    RAID_ARRAY *Array = RaidLibAddNamedArray(Controller, M2_ARRAY_ID,
                                             M2_ARRAY_NAME, M2_ARRAY_EXTRA_SIZE);
    Controller->DiskDriveCount = 4;
    (void)ParseVolumeInfo(Load(Data, Size), Array, &ErrorCode);
    if (Choice == 2) {
      (void)ParsePhysicalDriveInfo(Load(Data, Size), Controller, Array,
                                   &ErrorCode);
    }
  }
  for (UINT32 I = 0; Controller->DriveTable != nullptr &&
                     I < Controller->DiskDriveCount;
       I++) {
    if (Controller->DriveTable[I] == nullptr) {
      std::abort();  // a table entry within the count is always a drive
    }
  }
  RaidLibFreeController(Controller);
  if (W.Firmware->Memory().Outstanding().size() != Before) {
    std::abort();
  }
  return 0;
}
