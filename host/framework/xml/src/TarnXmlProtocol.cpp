// The XML parser protocol: parser records with their input buffer, kept in
// a list so that every call can check the pointer it is given.
#include "xml/TarnXmlProtocol.h"

#include <Library/MemoryAllocationLib.h>

#include "xml/XmlSaxParser.h"

namespace {

// The record behind a TARNXML_PARSER pointer.
struct ParserRecord {
  LIST_ENTRY Link;
  XML_SAX_PARSER *Sax;
  UINT8 *Buffer;
  UINTN BufferSize;
};

constinit LIST_ENTRY gLiveParsers = {nullptr, nullptr};

[[nodiscard]] LIST_ENTRY &LiveParsers() {
  if (!IsListLive(&gLiveParsers)) {
    InitializeListHead(&gLiveParsers);
  }
  return gLiveParsers;
}

// The record of Parser when this protocol made it and has not freed it.
ParserRecord *Find(TARNXML_PARSER *Parser) {
  if (Parser == nullptr) {
    return nullptr;
  }
  for (ParserRecord *Record : uefi::ListOf<&ParserRecord::Link>(LiveParsers())) {
    if (reinterpret_cast<TARNXML_PARSER *>(Record) == Parser) {
      return Record;
    }
  }
  return nullptr;
}

// "UTF-8" in any case.
[[nodiscard]] BOOLEAN IsUtf8Name(const CHAR16 *Encoding) {
  static constexpr CHAR16 kName[] = u"UTF-8";
  UINTN I = 0;
  for (; kName[I] != 0; I++) {
    CHAR16 C = Encoding[I];
    if (C >= 'a' && C <= 'z') {
      C = static_cast<CHAR16>(C - 'a' + 'A');
    }
    if (C != kName[I]) {
      return FALSE;
    }
  }
  return Encoding[I] == 0;
}

VOID FreeRecord(ParserRecord *Record) {
  RemoveEntryList(&Record->Link);
  XmlSaxFree(Record->Sax);
  FreePool(Record->Buffer);
  FreePool(Record);
}

[[nodiscard]] TARNXML_PARSER *EFIAPI ParserCreate(const CHAR16 *Encoding) {
  if (Encoding == nullptr || !IsUtf8Name(Encoding)) {
    return nullptr;
  }
  ParserRecord *Record = uefi::AllocateRecord<ParserRecord>();
  if (Record == nullptr) {
    return nullptr;
  }
  Record->Sax = XmlSaxCreate();
  if (Record->Sax == nullptr) {
    FreePool(Record);
    return nullptr;
  }
  InsertTailList(&LiveParsers(), &Record->Link);
  return reinterpret_cast<TARNXML_PARSER *>(Record);
}

VOID EFIAPI SetElementHandler(TARNXML_PARSER *Parser,
                              TARNXML_START_ELEMENT Start,
                              TARNXML_END_ELEMENT End) {
  ParserRecord *Record = Find(Parser);
  if (Record != nullptr) {
    XmlSaxSetHandlers(Record->Sax, Start, End, nullptr);
  }
}

// A fresh buffer of Size bytes; the previous one is given back.
[[nodiscard]] VOID *EFIAPI GetBuffer(TARNXML_PARSER *Parser, UINTN Size) {
  ParserRecord *Record = Find(Parser);
  if (Record == nullptr || Size == 0 || Size > TARNXML_MAX_BUFFER_SIZE) {
    return nullptr;
  }
  if (Size > Record->BufferSize) {
    UINT8 *Buffer = static_cast<UINT8 *>(AllocateZeroPool(Size));
    if (Buffer == nullptr) {
      return nullptr;
    }
    FreePool(Record->Buffer);
    Record->Buffer = Buffer;
  }
  Record->BufferSize = Size;
  return Record->Buffer;
}

[[nodiscard]] EFI_STATUS EFIAPI ParseBuffer(TARNXML_PARSER *Parser,
                                            UINTN Length, BOOLEAN IsFinal) {
  ParserRecord *Record = Find(Parser);
  if (Record == nullptr || Length > Record->BufferSize) {
    return EFI_INVALID_PARAMETER;
  }
  return XmlSaxParse(Record->Sax, Record->Buffer, Length, IsFinal);
}

VOID EFIAPI ParserFree(TARNXML_PARSER *Parser) {
  ParserRecord *Record = Find(Parser);
  if (Record != nullptr) {
    FreeRecord(Record);
  }
}

constinit EFI_TARNXML_PROTOCOL gTarnXmlProtocol = {
    ParserCreate, SetElementHandler, GetBuffer, ParseBuffer, ParserFree};

}  // namespace

EFI_TARNXML_PROTOCOL *TarnXmlProtocolInterface(VOID) {
  return &gTarnXmlProtocol;
}

UINTN TarnXmlLiveParsers(VOID) { return CountListEntries(&LiveParsers()); }

VOID TarnXmlFreeAllParsers(VOID) {
  while (ParserRecord *Record =
             uefi::TakeFirst<&ParserRecord::Link>(&LiveParsers())) {
    FreeRecord(Record);
  }
}
