// Feeds arbitrary bytes as raid.xml through the emulator's expat-backed XML
// parser protocol to the capability callbacks, with two controllers of one
// family waiting for their profile, then releases everything and checks
// that the pool is empty.
#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include "RaidLib.h"
#include "RaidXml.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "emu/Firmware.h"
#include "emu/XmlParser.h"

namespace {

// The chunk size the module's file reader hands the parser.
constexpr std::size_t kChunk = 8192;

struct World {
  emu::Firmware Firmware;
  emu::XmlParser Xml{Firmware};
};

World &TheWorld() {
  static World *Instance = new World();
  return *Instance;
}

VOID AddController(UINT32 Id, const CHAR16 *StorageId) {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  auto *Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  if (Controller == nullptr || Private == nullptr) {
    std::abort();
  }
  Controller->Id = Id;
  Controller->ToolType = RAID_TOOL_TYPE_MATCHED;
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
  Controller->Private = Private;
  Private->StorageId =
      static_cast<CHAR16 *>(AllocateCopyPool(StrSize(StorageId), StorageId));
  InsertTailList(&gControllerList, &Controller->Link);
}

// Parses Data the way the module reads a file: chunk by chunk, then a final
// empty call.
VOID Parse(EFI_TARNXML_PROTOCOL *Xml, const std::uint8_t *Data,
           std::size_t Size) {
  TARNXML_PARSER *Parser = Xml->ParserCreate(u"UTF-8");
  if (Parser == nullptr) {
    return;
  }
  Xml->SetElementHandler(Parser, RaidXmlTagStart, RaidXmlTagEnd);
  std::size_t Offset = 0;
  for (;;) {
    VOID *Buffer = Xml->GetBuffer(Parser, kChunk);
    if (Buffer == nullptr) {
      break;
    }
    std::size_t Length = Size - Offset < kChunk ? Size - Offset : kChunk;
    std::memcpy(Buffer, Data + Offset, Length);
    Offset += Length;
    Xml->ParseBuffer(Parser, Length, Length == 0 ? TRUE : FALSE);
    if (Length == 0) {
      break;
    }
  }
  Xml->ParserFree(Parser);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  World &W = TheWorld();
  gBS = W.Firmware.BootServices();
  InitializeListHead(&gControllerList);
  AddController(0, u"LSI");
  AddController(1, u"LSI");

  RaidXmlResetParserState();
  Parse(W.Xml.Interface(), Data, Size);
  RaidXmlFinishParsing();

  while (!IsListEmpty(&gControllerList)) {
    RaidLibFreeController(uefi::RecordOf<&RAID_CONTROLLER::Link>(
        GetFirstNode(&gControllerList)));
  }
  std::string Leaks = W.Firmware.Memory().LeakReport();
  if (!Leaks.empty()) {
    std::fprintf(stderr, "%s\n", Leaks.c_str());
    std::abort();
  }
  return 0;
}
