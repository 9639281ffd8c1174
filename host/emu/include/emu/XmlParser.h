// The host XML parser protocol (EFI_TARNXML_PROTOCOL) over expat: element
// events with CHAR16 names and attributes, fed chunk by chunk.
#pragma once

#include <Protocol/Host/TarnXml.h>
#include <Uefi.h>

#include <set>
#include <string>

namespace emu {

class Firmware;

class XmlParser {
 public:
  explicit XmlParser(Firmware &Firmware);
  ~XmlParser();
  XmlParser(const XmlParser &) = delete;
  XmlParser &operator=(const XmlParser &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  EFI_TARNXML_PROTOCOL *Interface() { return &Protocol_; }
  // Makes ParserCreate return NULL while set.
  VOID SetFailParserCreate(bool Fail) { FailCreate_ = Fail; }
  // Makes the Nth GetBuffer call from now return NULL, as a parser short
  // of memory does (expat's buffers come from the C heap, out of reach of
  // the pool's faults); 0 clears it.
  VOID FailNthGetBuffer(UINTN N) {
    FailBufferAt_ = N == 0 ? 0 : BufferCalls_ + N;
  }
  // GetBuffer calls so far.
  UINTN BufferCalls() const { return BufferCalls_; }
  // Parsers created and not yet freed.
  UINTN LiveParsers() const { return Parsers_.size(); }
  UINTN ParsersCreated() const { return Created_; }
  // Expat's description of the last malformed document ("" when none).
  const std::string &LastError() const { return LastError_; }

 private:
  static XmlParser &Active();
  static TARNXML_PARSER *EFIAPI ParserCreate(const CHAR16 *Encoding);
  static VOID EFIAPI SetElementHandler(TARNXML_PARSER *Parser,
                                       TARNXML_START_ELEMENT Start,
                                       TARNXML_END_ELEMENT End);
  static VOID *EFIAPI GetBuffer(TARNXML_PARSER *Parser, UINTN Size);
  static EFI_STATUS EFIAPI ParseBuffer(TARNXML_PARSER *Parser, UINTN Length,
                                       BOOLEAN IsFinal);
  static VOID EFIAPI ParserFree(TARNXML_PARSER *Parser);
  // Parser is one this protocol made and has not freed.
  static bool Known(TARNXML_PARSER *Parser);

  Firmware &Firmware_;
  EFI_TARNXML_PROTOCOL Protocol_;
  EFI_HANDLE Handle_ = nullptr;
  bool FailCreate_ = false;
  UINTN BufferCalls_ = 0;
  UINTN FailBufferAt_ = 0;  // the GetBuffer call that fails, 0 none
  std::set<TARNXML_PARSER *> Parsers_;
  UINTN Created_ = 0;
  std::string LastError_;
};

}  // namespace emu
