// EFI_TARNXML_PROTOCOL on expat.
#include "emu/XmlParser.h"

#include <expat.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "emu/Firmware.h"
#include "emu/TextConversion.h"

// The parser record behind the opaque TARNXML_PARSER pointer.
struct _TARNXML_PARSER {
  XML_Parser Expat = nullptr;
  TARNXML_START_ELEMENT Start = nullptr;
  TARNXML_END_ELEMENT End = nullptr;
  std::vector<char> Buffer;
  bool Failed = false;
};

namespace emu {
namespace {

XmlParser *gActiveXml = nullptr;

bool IsUtf8Name(std::u16string_view Encoding) {
  std::string Name = Utf16ToUtf8(Encoding);
  for (char &Char : Name) {
    Char = static_cast<char>(std::toupper(static_cast<unsigned char>(Char)));
  }
  return Name == "UTF-8";
}

// Expat start-element event: names and attributes in CHAR16, valid for the
// duration of the module's callback.
void XMLCALL OnStart(void *UserData, const XML_Char *Name,
                     const XML_Char **Attributes) {
  auto *Parser = static_cast<TARNXML_PARSER *>(UserData);
  if (Parser->Start == nullptr) {
    return;
  }
  const std::u16string WideName = Utf8ToUtf16(Name);
  std::size_t Count = 0;
  while (Attributes[Count] != nullptr) {
    Count++;
  }
  // Sized once: no vector regrown for every attribute of every element.
  std::vector<std::u16string> Texts;
  Texts.reserve(Count);
  std::vector<const CHAR16 *> List;
  List.reserve(Count + 1);
  for (std::size_t I = 0; I < Count; I++) {
    Texts.push_back(Utf8ToUtf16(Attributes[I]));
    List.push_back(Texts.back().c_str());
  }
  List.push_back(nullptr);
  Parser->Start(nullptr, WideName.c_str(), List.data());
}

void XMLCALL OnEnd(void *UserData, const XML_Char *Name) {
  auto *Parser = static_cast<TARNXML_PARSER *>(UserData);
  if (Parser->End != nullptr) {
    const std::u16string WideName = Utf8ToUtf16(Name);
    Parser->End(nullptr, WideName.c_str());
  }
}

}  // namespace

XmlParser::XmlParser(Firmware &Firmware) : Firmware_(Firmware) {
  if (gActiveXml != nullptr) {
    std::fprintf(stderr, "emu::XmlParser: one is already active\n");
    std::abort();
  }
  Protocol_ = {ParserCreate, SetElementHandler, GetBuffer, ParseBuffer,
               ParserFree};
  Firmware_.Handles().Install(&Handle_, gEfiTarnXmlProtocolGuid, &Protocol_);
  gActiveXml = this;
}

XmlParser::~XmlParser() {
  for (TARNXML_PARSER *Parser : Parsers_) {
    XML_ParserFree(Parser->Expat);
    delete Parser;
  }
  gActiveXml = nullptr;
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gEfiTarnXmlProtocolGuid, &Protocol_);
  }
}

XmlParser &XmlParser::Active() {
  if (gActiveXml == nullptr) {
    std::fprintf(stderr, "emu::XmlParser: called after it was removed\n");
    std::abort();
  }
  return *gActiveXml;
}

bool XmlParser::Known(TARNXML_PARSER *Parser) {
  return Parser != nullptr && Active().Parsers_.count(Parser) != 0;
}

TARNXML_PARSER *EFIAPI XmlParser::ParserCreate(const CHAR16 *Encoding) {
  XmlParser &Self = Active();
  if (Self.FailCreate_ || Encoding == nullptr || !IsUtf8Name(View(Encoding))) {
    return nullptr;
  }
  auto *Parser = new TARNXML_PARSER;
  Parser->Expat = XML_ParserCreate("UTF-8");
  if (Parser->Expat == nullptr) {
    delete Parser;
    return nullptr;
  }
  XML_SetUserData(Parser->Expat, Parser);
  XML_SetElementHandler(Parser->Expat, OnStart, OnEnd);
  Self.Parsers_.insert(Parser);
  Self.Created_++;
  return Parser;
}

VOID EFIAPI XmlParser::SetElementHandler(TARNXML_PARSER *Parser,
                                         TARNXML_START_ELEMENT Start,
                                         TARNXML_END_ELEMENT End) {
  if (Known(Parser)) {
    Parser->Start = Start;
    Parser->End = End;
  }
}

VOID *EFIAPI XmlParser::GetBuffer(TARNXML_PARSER *Parser, UINTN Size) {
  XmlParser &Self = Active();
  if (++Self.BufferCalls_ == Self.FailBufferAt_) {
    return nullptr;
  }
  if (!Known(Parser) || Size == 0 || Size > (UINTN{1} << 30)) {
    return nullptr;
  }
  Parser->Buffer.assign(Size, 0);
  return Parser->Buffer.data();
}

EFI_STATUS EFIAPI XmlParser::ParseBuffer(TARNXML_PARSER *Parser, UINTN Length,
                                         BOOLEAN IsFinal) {
  if (!Known(Parser) || Length > Parser->Buffer.size()) {
    return EFI_INVALID_PARAMETER;
  }
  if (Parser->Failed) {
    return EFI_PROTOCOL_ERROR;
  }
  const char *Bytes = Parser->Buffer.empty() ? "" : Parser->Buffer.data();
  if (XML_Parse(Parser->Expat, Bytes, static_cast<int>(Length),
                IsFinal ? 1 : 0) == XML_STATUS_ERROR) {
    Parser->Failed = true;
    Active().LastError_ =
        std::string(XML_ErrorString(XML_GetErrorCode(Parser->Expat))) +
        " at line " +
        std::to_string(XML_GetCurrentLineNumber(Parser->Expat));
    return EFI_PROTOCOL_ERROR;
  }
  return EFI_SUCCESS;
}

VOID EFIAPI XmlParser::ParserFree(TARNXML_PARSER *Parser) {
  if (!Known(Parser)) {
    return;
  }
  Active().Parsers_.erase(Parser);
  XML_ParserFree(Parser->Expat);
  delete Parser;
}

}  // namespace emu
