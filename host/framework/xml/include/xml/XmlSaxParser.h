// A small non-validating streaming XML parser: element events with CHAR16
// names and attributes, fed in chunks of UTF-8 bytes.
//
// What it accepts is well-formed XML 1.0 without a document type
// declaration: the XML declaration, comments, processing instructions,
// CDATA sections (their text, like all character data, is not reported),
// the five predefined entities and numeric character references. Attribute
// values are normalised the way a non-validating parser does it: a literal
// tab, line feed, carriage return or CR LF pair becomes one space, references
// are replaced. Everything else is malformed.
//
// Memory is bounded: one pool record per parser holds every buffer, and a
// document that needs more (deeper nesting, longer names or attribute
// lists than the limits below) is refused like a malformed one. Input is
// read one byte at a time and never beyond the length given; once a
// document has failed, every later call fails too.
#pragma once

#include <Uefi.h>

// Limits of one parser.
#define XML_SAX_MAX_DEPTH 256               // open elements
#define XML_SAX_NAME_STACK_CHARS 8192       // open elements' names, NULs included
#define XML_SAX_ATTRIBUTE_CHARS 16384       // one start tag's attribute names and values
#define XML_SAX_MAX_ATTRIBUTES 128          // attributes of one start tag
#define XML_SAX_END_NAME_CHARS 1024         // the name of one end tag
#define XML_SAX_DECLARATION_CHARS 256       // the XML declaration's text

// Name and the NULL-terminated list of name/value pairs are valid only
// during the call.
typedef VOID(EFIAPI *XML_SAX_START_ELEMENT)(VOID *Context, const CHAR16 *Name,
                                            const CHAR16 **Attributes);
typedef VOID(EFIAPI *XML_SAX_END_ELEMENT)(VOID *Context, const CHAR16 *Name);

typedef struct _XML_SAX_PARSER XML_SAX_PARSER;

// A new parser from the pool, or NULL when memory is short.
[[nodiscard]] XML_SAX_PARSER *XmlSaxCreate(VOID);

// Sets the element callbacks (either may be NULL) and the context they get.
VOID XmlSaxSetHandlers(XML_SAX_PARSER *Parser, XML_SAX_START_ELEMENT Start,
                       XML_SAX_END_ELEMENT End, VOID *Context);

// Parses the next Length bytes of the document; IsFinal marks its end.
// EFI_SUCCESS, or EFI_PROTOCOL_ERROR when the document is malformed (an
// empty or unfinished one at the final call included), exceeds a limit, or
// failed or ended before; EFI_INVALID_PARAMETER for a NULL parser, or NULL
// bytes with a non-zero length.
[[nodiscard]] EFI_STATUS XmlSaxParse(XML_SAX_PARSER *Parser, const UINT8 *Bytes,
                                     UINTN Length, BOOLEAN IsFinal);

// Byte offset of the first byte the parser refused (the input's length
// so far when it failed at the final call); all ones while it has not failed.
[[nodiscard]] UINT64 XmlSaxErrorOffset(const XML_SAX_PARSER *Parser);

// Frees the parser; NULL is ignored.
VOID XmlSaxFree(XML_SAX_PARSER *Parser);
