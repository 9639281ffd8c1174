// The host's streaming XML parser: the module feeds a file in chunks and
// receives element events with CHAR16 names and attributes.
#pragma once

#include <Uefi.h>

#define EFI_TARNXML_PROTOCOL_GUID \
  {0x11407F48, 0xF238, 0x42CA, {0xA4, 0x72, 0x5E, 0xFA, 0x69, 0xED, 0x67, 0x50}}

typedef struct _TARNXML_PARSER TARNXML_PARSER;

// UserData is the parser's user data, always NULL: the module keeps its
// parsing state in its own globals. Attributes: name, value, name, value,
// ..., NULL, valid until the callback returns.
typedef VOID(EFIAPI *TARNXML_START_ELEMENT)(VOID *UserData,
                                            const CHAR16 *Name,
                                            const CHAR16 **Attributes);
typedef VOID(EFIAPI *TARNXML_END_ELEMENT)(VOID *UserData, const CHAR16 *Name);

typedef struct _EFI_TARNXML_PROTOCOL EFI_TARNXML_PROTOCOL;
struct _EFI_TARNXML_PROTOCOL {
  // NULL when the encoding is not supported or memory is short.
  TARNXML_PARSER *(EFIAPI *ParserCreate)(const CHAR16 *Encoding);
  VOID(EFIAPI *SetElementHandler)
  (TARNXML_PARSER *Parser, TARNXML_START_ELEMENT Start,
   TARNXML_END_ELEMENT End);
  // A parser-owned buffer of Size bytes for the next ParseBuffer call.
  VOID *(EFIAPI *GetBuffer)(TARNXML_PARSER *Parser, UINTN Size);
  // Parses Length bytes of the buffer; EFI_PROTOCOL_ERROR once the document
  // is malformed (and on every call after that).
  EFI_STATUS(EFIAPI *ParseBuffer)
  (TARNXML_PARSER *Parser, UINTN Length, BOOLEAN IsFinal);
  VOID(EFIAPI *ParserFree)(TARNXML_PARSER *Parser);
};

extern EFI_GUID gEfiTarnXmlProtocolGuid;
