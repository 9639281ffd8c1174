#include "ScriptedTool.h"

#include <Library/MemoryAllocationLib.h>

#include <algorithm>

#include "RaidLibText.h"
#include "RaidLibToolRunner.h"

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

CHAR16 *LoadToolBytes(const std::uint8_t *Data, std::size_t Size) {
  const std::size_t Length =
      std::min(Size, RAID_TOOL_OUTPUT_SIZE / sizeof(CHAR16) - 1);
  for (std::size_t I = 0; I < Length; I++) {
    gRaidToolOutput[I] = Data[I];
  }
  gRaidToolOutput[Length] = 0;
  return gRaidToolOutput;
}

CHAR16 *LoadToolText(const std::string &Text) {
  return LoadToolBytes(reinterpret_cast<const std::uint8_t *>(Text.data()),
                       Text.size());
}

CHAR16 *LoadToolOutput(const std::string &Text) {
  return LoadToolText(Crlf(Text));
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

RAID_CONTROLLER *NewToolController(const char16_t *Tool, const char16_t *Name,
                                   RAID_BIND_BACKEND Bind) {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  Controller->Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller->Capability = uefi::AllocateRecord<RAID_CAPABILITY>();
  Controller->Capability->ToolName = AllocDestStr(Tool);
  Controller->Name = AllocDestStr(Name);
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
  if (Bind != nullptr) {
    Bind(&Controller->Private->Operations);
  }
  return Controller;
}

}  // namespace backend_test
