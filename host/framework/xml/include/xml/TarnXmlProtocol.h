// EFI_TARNXML_PROTOCOL on the streaming parser: what a host installs for
// the module's XML files (docs/host-protocols.md).
#pragma once

#include <Protocol/Host/TarnXml.h>
#include <Uefi.h>

// Largest buffer GetBuffer hands out.
#define TARNXML_MAX_BUFFER_SIZE (16U * 1024U * 1024U)

// The protocol's function table, ready to install. Parsers live in the pool
// and are known by the protocol until ParserFree; a pointer it did not hand
// out is refused (NULL buffer, EFI_INVALID_PARAMETER) without being read.
[[nodiscard]] EFI_TARNXML_PROTOCOL *TarnXmlProtocolInterface(VOID);

// Parsers created and not yet freed.
[[nodiscard]] UINTN TarnXmlLiveParsers(VOID);

// Frees every parser still alive (a host that unloads its module).
VOID TarnXmlFreeAllParsers(VOID);
