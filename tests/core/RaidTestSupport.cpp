#include "RaidTestSupport.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <expat.h>
#include "RaidLibTrace.h"

namespace test {
namespace {

std::vector<std::string> gLines;

VOID EFIAPI CaptureDebugPrint(UINT32 Level, const CHAR8 *Format, ...) {
  CHAR8 Buffer[1024];
  VA_LIST Marker;
  VA_START(Marker, Format);
  AsciiVSPrint(Buffer, sizeof(Buffer), Format, Marker);
  VA_END(Marker);
  // The print service writes "\n" as "\r\n"; keep the format's own text.
  std::string Line = Buffer;
  for (size_t At = Line.find("\r\n"); At != std::string::npos;
       At = Line.find("\r\n", At)) {
    Line.erase(At, 1);
  }
  gLines.push_back(Line);
}

TARN_SETUP_PROTOCOL gCaptureProtocol{};

std::u16string Widen(const char *Text) {
  UINTN Length = AsciiStrLen(Text);
  std::u16string Result(Utf8StrToUnicodeLength(Text, Length) + 1, u'\0');
  // Sized by Utf8StrToUnicodeLength, so the conversion cannot fail.
  (void)Utf8StrToUnicodeStrS(Text, Length, Result.data(), Result.size());
  Result.resize(Result.size() - 1);
  return Result;
}

struct ExpatContext {
  TARNXML_START_ELEMENT Start;
  TARNXML_END_ELEMENT End;
};

void XMLCALL OnStart(void *Data, const XML_Char *Name, const XML_Char **Attrs) {
  auto *Context = static_cast<ExpatContext *>(Data);
  std::u16string WideName = Widen(Name);
  std::vector<std::u16string> Texts;
  for (const XML_Char **A = Attrs; *A != nullptr; A++) {
    Texts.push_back(Widen(*A));
  }
  std::vector<const CHAR16 *> Pointers;
  for (const std::u16string &Text : Texts) {
    Pointers.push_back(Text.c_str());
  }
  Pointers.push_back(nullptr);
  Context->Start(nullptr, WideName.c_str(), Pointers.data());
}

void XMLCALL OnEnd(void *Data, const XML_Char *Name) {
  auto *Context = static_cast<ExpatContext *>(Data);
  std::u16string WideName = Widen(Name);
  Context->End(nullptr, WideName.c_str());
}

}  // namespace

TraceCapture::TraceCapture() {
  gLines.clear();
  gCaptureProtocol.DebugPrint = CaptureDebugPrint;
  gRaidLibSetupProtocol = &gCaptureProtocol;
}

TraceCapture::~TraceCapture() { gRaidLibSetupProtocol = nullptr; }

const std::vector<std::string> &TraceCapture::Lines() const { return gLines; }

void TraceCapture::Clear() { gLines.clear(); }

CHAR16 *PoolString(const CHAR16 *Text) {
  if (Text == nullptr) {
    return nullptr;
  }
  return static_cast<CHAR16 *>(AllocateCopyPool(StrSize(Text), Text));
}

std::string Narrow(const CHAR16 *Text) {
  std::string Result;
  for (; Text != nullptr && *Text != 0; Text++) {
    Result.push_back(static_cast<char>(*Text));
  }
  return Result;
}

RAID_CONTROLLER *NewController(UINT32 Id, const CHAR16 *StorageId,
                               UINT16 VendorId) {
  auto *Controller = uefi::AllocateRecord<RAID_CONTROLLER>();
  auto *Private = uefi::AllocateRecord<RAID_CONTROLLER_PRIVATE>();
  Controller->Id = Id;
  Controller->ToolType = RAID_TOOL_TYPE_MATCHED;
  InitializeListHead(&Controller->PhysicalDriveList);
  InitializeListHead(&Controller->SpareDriveList);
  InitializeListHead(&Controller->ArrayList);
  Controller->Private = Private;
  Private->CardId = RAID_CARD_ID_UNSET;
  Private->StorageId = PoolString(StorageId);
  Private->VendorId = VendorId;
  return Controller;
}

RAID_CONTROLLER *AddController(UINT32 Id, const CHAR16 *StorageId,
                               UINT16 VendorId) {
  RAID_CONTROLLER *Controller = NewController(Id, StorageId, VendorId);
  InsertTailList(&gControllerList, &Controller->Link);
  return Controller;
}

void FreeAllControllers() {
  while (!IsListEmpty(&gControllerList)) {
    RaidLibFreeController(uefi::RecordOf<&RAID_CONTROLLER::Link>(
        GetFirstNode(&gControllerList)));
  }
}

bool ParseXml(const std::string &Document, TARNXML_START_ELEMENT Start,
              TARNXML_END_ELEMENT End) {
  XML_Parser Parser = XML_ParserCreate("UTF-8");
  ExpatContext Context{Start, End};
  XML_SetUserData(Parser, &Context);
  XML_SetElementHandler(Parser, OnStart, OnEnd);
  bool Ok = XML_Parse(Parser, Document.data(), static_cast<int>(Document.size()),
                      1) == XML_STATUS_OK;
  XML_ParserFree(Parser);
  return Ok;
}

}  // namespace test
