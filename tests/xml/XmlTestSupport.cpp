#include "XmlTestSupport.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "emu/TextConversion.h"

namespace xml_test {
namespace {

std::vector<Event> *gRecording = nullptr;

VOID EFIAPI OnStart(VOID *UserData, const CHAR16 *Name,
                    const CHAR16 **Attributes) {
  Event E = u"<" + std::u16string(Name);
  for (const CHAR16 **Item = Attributes; *Item != nullptr; Item += 2) {
    E += u" " + std::u16string(Item[0]) + u"=" + std::u16string(Item[1]);
  }
  gRecording->push_back(E + u">");
}

VOID EFIAPI OnEnd(VOID *UserData, const CHAR16 *Name) {
  gRecording->push_back(u"</" + std::u16string(Name) + u">");
}

}  // namespace

Outcome ParseDocument(EFI_TARNXML_PROTOCOL *Protocol, const std::string &Document,
            const std::vector<size_t> &ChunkSizes) {
  Outcome Result;
  gRecording = &Result.Events;
  TARNXML_PARSER *Parser = Protocol->ParserCreate(u"UTF-8");
  if (Parser == nullptr) {
    Result.FirstError = EFI_OUT_OF_RESOURCES;
    gRecording = nullptr;
    return Result;
  }
  Protocol->SetElementHandler(Parser, OnStart, OnEnd);
  size_t Offset = 0;
  size_t Turn = 0;
  Result.Accepted = true;
  while (true) {
    const size_t Size = std::max<size_t>(1, ChunkSizes[Turn++ % ChunkSizes.size()]);
    const size_t Length = std::min(Size, Document.size() - Offset);
    auto *Buffer = static_cast<char *>(Protocol->GetBuffer(Parser, Size));
    std::memcpy(Buffer, Document.data() + Offset, Length);
    Offset += Length;
    const EFI_STATUS Status = Protocol->ParseBuffer(Parser, Length, Length == 0);
    if (EFI_ERROR(Status)) {
      Result.Accepted = false;
      Result.FirstError = Status;
      // A failed parser keeps failing.
      Protocol->GetBuffer(Parser, 1);
      if (Protocol->ParseBuffer(Parser, 0, TRUE) != Status) {
        Result.FirstError = EFI_ABORTED;
      }
      break;
    }
    if (Length == 0) {
      break;
    }
  }
  Protocol->ParserFree(Parser);
  gRecording = nullptr;
  return Result;
}

std::string Describe(const std::vector<Event> &Events) {
  std::string Text;
  for (const Event &E : Events) {
    for (char16_t C : E) {
      if (C < 0x20 || C > 0x7E) {
        char Escape[16];
        std::snprintf(Escape, sizeof(Escape), "\\u%04X", static_cast<unsigned>(C));
        Text += Escape;
      } else {
        Text += static_cast<char>(C);
      }
    }
    Text += "\n";
  }
  return Text;
}

std::string ReadSourceFile(const std::string &RelativePath) {
  std::ifstream In(std::string(RAIDCFG_SOURCE_DIR) + "/" + RelativePath,
                   std::ios::binary);
  std::ostringstream Contents;
  Contents << In.rdbuf();
  return Contents.str();
}

}  // namespace xml_test
