// The streaming XML parser: a UTF-8 decoder feeding one code point at a
// time into a state machine over the markup. Only names and attribute
// values are kept; character data is checked and dropped.
#include "xml/XmlSaxParser.h"

#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>

#include "XmlCharacters.h"
#include "XmlDeclaration.h"

namespace {

enum class Mode : UINT8 {
  Text,              // character data, or white space outside the root
  Reference,         // after '&'
  ReferenceName,     // "&name"
  ReferenceHash,     // "&#"
  ReferenceDecimal,  // "&#12"
  ReferenceHexStart, // "&#x"
  ReferenceHex,      // "&#x1F"
  MarkupOpen,        // after '<'
  Bang,              // "<!"
  BangDash,          // "<!-"
  Comment,
  CommentDash,
  CommentDashDash,
  CdataOpen,         // "<![" and part of "CDATA["
  Cdata,
  PiTarget,
  PiTargetQuestion,  // '?' right after the target: only "?>" may follow
  PiBody,
  PiQuestion,        // '?' inside a processing instruction
  StartName,
  StartTagSpace,     // inside a start tag, between attributes
  AttributeName,
  AttributeAfterName,
  AttributeAfterEquals,
  AttributeValue,
  AfterAttributeValue,
  EmptyClose,        // "/" inside a start tag
  EndName,
  EndAfterName,
};

// Where references are being read: character data or an attribute value.
enum class ReferenceIn : UINT8 { Text, AttributeValue };

}  // namespace

struct _XML_SAX_PARSER {
  XML_SAX_START_ELEMENT Start;
  XML_SAX_END_ELEMENT End;
  VOID *Context;

  BOOLEAN Failed;
  BOOLEAN Finished;
  UINT64 Offset;       // bytes consumed so far
  UINT64 ErrorOffset;

  // UTF-8 decoding of a sequence split over bytes (and chunks).
  UINT32 Utf8Pending;  // continuation bytes still expected
  UINT32 Utf8Value;
  UINT32 Utf8Minimum;  // smallest value the sequence's length may encode

  Mode State;
  ReferenceIn RefContext;
  UINT64 Characters;           // code points so far, a leading BOM excluded
  BOOLEAN MarkupAtStart;       // the current '<' began the document
  BOOLEAN SeenRoot;
  BOOLEAN PendingCr;           // a CR in an attribute value, LF to swallow
  UINT32 Brackets;             // consecutive ']' in text or CDATA
  UINT32 MatchIndex;           // progress through "CDATA["
  UINT32 ReferenceValue;
  UINT32 ReferenceLength;
  CHAR16 ReferenceName[8];
  CHAR16 AttributeQuote;

  // Processing instruction target, and the declaration's text.
  CHAR16 PiTargetText[4];
  UINT32 PiTargetLength;
  BOOLEAN PiIsDeclaration;
  CHAR8 Declaration[XML_SAX_DECLARATION_CHARS];
  UINT32 DeclarationLength;

  // Names of the open elements, NUL-separated; the innermost at the top.
  CHAR16 NameStack[XML_SAX_NAME_STACK_CHARS];
  UINT32 NameStackUsed;
  UINT32 NameOffsets[XML_SAX_MAX_DEPTH + 1];
  UINT32 Depth;  // open elements, the one being read by a start tag excluded

  // The start tag being read: names and values, NUL-separated.
  CHAR16 Attributes[XML_SAX_ATTRIBUTE_CHARS];
  UINT32 AttributesUsed;
  UINT32 AttributeOffsets[2 * XML_SAX_MAX_ATTRIBUTES];
  UINT32 AttributeCount;  // names and values begun (two per attribute)
  const CHAR16 *AttributeList[2 * XML_SAX_MAX_ATTRIBUTES + 1];

  CHAR16 EndNameText[XML_SAX_END_NAME_CHARS];
  UINT32 EndNameLength;
};

namespace {

using namespace xml_detail;

// ---- Buffers ---------------------------------------------------------------

// Appends a code point to Buffer (UTF-16, a pair above U+FFFF), keeping room
// for a terminator. FALSE when it does not fit.
[[nodiscard]] BOOLEAN AppendUtf16(CHAR16 *Buffer, UINT32 Capacity, UINT32 *Used,
                                  UINT32 CodePoint) {
  const UINT32 Units = CodePoint > 0xFFFF ? 2 : 1;
  if (*Used + Units + 1 > Capacity) {
    return FALSE;
  }
  if (Units == 2) {
    const UINT32 Value = CodePoint - 0x10000;
    Buffer[(*Used)++] = static_cast<CHAR16>(0xD800 + (Value >> 10));
    Buffer[(*Used)++] = static_cast<CHAR16>(0xDC00 + (Value & 0x3FF));
  } else {
    Buffer[(*Used)++] = static_cast<CHAR16>(CodePoint);
  }
  return TRUE;
}

// Ends the string being built at Buffer[*Used].
[[nodiscard]] BOOLEAN Terminate(CHAR16 *Buffer, UINT32 Capacity, UINT32 *Used) {
  if (*Used + 1 > Capacity) {
    return FALSE;
  }
  Buffer[(*Used)++] = 0;
  return TRUE;
}

BOOLEAN SameText(const CHAR16 *A, const CHAR16 *B) {
  while (*A != 0 && *A == *B) {
    A++;
    B++;
  }
  return *A == *B;
}

// ---- Element stack and start tags -------------------------------------------

// Begins the name of a new element on the name stack.
[[nodiscard]] BOOLEAN BeginElement(XML_SAX_PARSER *P) {
  if (P->Depth >= XML_SAX_MAX_DEPTH) {
    return FALSE;
  }
  P->NameOffsets[P->Depth] = P->NameStackUsed;
  P->AttributesUsed = 0;
  P->AttributeCount = 0;
  return TRUE;
}

[[nodiscard]] const CHAR16 *TopName(const XML_SAX_PARSER *P) {
  return &P->NameStack[P->NameOffsets[P->Depth - 1]];
}

// Starts an attribute name or value in the attribute buffer.
[[nodiscard]] BOOLEAN BeginAttributeText(XML_SAX_PARSER *P) {
  if (P->AttributeCount >= 2 * XML_SAX_MAX_ATTRIBUTES) {
    return FALSE;
  }
  P->AttributeOffsets[P->AttributeCount++] = P->AttributesUsed;
  return TRUE;
}

[[nodiscard]] BOOLEAN AppendAttributeChar(XML_SAX_PARSER *P, UINT32 CodePoint) {
  return AppendUtf16(P->Attributes, XML_SAX_ATTRIBUTE_CHARS, &P->AttributesUsed,
                     CodePoint);
}

[[nodiscard]] BOOLEAN EndAttributeText(XML_SAX_PARSER *P) {
  return Terminate(P->Attributes, XML_SAX_ATTRIBUTE_CHARS, &P->AttributesUsed);
}

// The innermost open element ends: its end callback, then its name leaves
// the stack.
VOID CloseElement(XML_SAX_PARSER *P) {
  if (P->End != nullptr) {
    P->End(P->Context, TopName(P));
  }
  P->Depth--;
  P->NameStackUsed = P->NameOffsets[P->Depth];
}

// The start tag is complete: refuses a repeated attribute name, reports the
// element and opens it; an empty-element tag is closed at once.
[[nodiscard]] BOOLEAN FinishStartTag(XML_SAX_PARSER *P, BOOLEAN Empty) {
  const UINT32 Pairs = P->AttributeCount / 2;
  for (UINT32 I = 0; I < Pairs; I++) {
    P->AttributeList[2 * I] = &P->Attributes[P->AttributeOffsets[2 * I]];
    P->AttributeList[2 * I + 1] = &P->Attributes[P->AttributeOffsets[2 * I + 1]];
    for (UINT32 J = 0; J < I; J++) {
      if (SameText(P->AttributeList[2 * I], P->AttributeList[2 * J])) {
        return FALSE;
      }
    }
  }
  P->AttributeList[2 * Pairs] = nullptr;

  P->Depth++;
  P->SeenRoot = TRUE;
  if (P->Start != nullptr) {
    P->Start(P->Context, TopName(P), P->AttributeList);
  }
  if (Empty) {
    CloseElement(P);
  }
  P->State = Mode::Text;
  P->Brackets = 0;
  return TRUE;
}

// An end tag is complete: it must close the innermost open element.
[[nodiscard]] BOOLEAN FinishEndTag(XML_SAX_PARSER *P) {
  P->EndNameText[P->EndNameLength] = 0;
  if (P->Depth == 0 || !SameText(TopName(P), P->EndNameText)) {
    return FALSE;
  }
  CloseElement(P);
  P->State = Mode::Text;
  P->Brackets = 0;
  return TRUE;
}

// ---- References ---------------------------------------------------------------

// A reference produced CodePoint: kept in an attribute value, dropped in text.
[[nodiscard]] BOOLEAN FinishReference(XML_SAX_PARSER *P, UINT32 CodePoint) {
  if (P->RefContext == ReferenceIn::AttributeValue) {
    P->State = Mode::AttributeValue;
    return AppendAttributeChar(P, CodePoint);
  }
  P->State = Mode::Text;
  P->Brackets = 0;
  return TRUE;
}

// The code point of a predefined entity's name, or 0.
[[nodiscard]] UINT32 PredefinedEntity(const CHAR16 *Name, UINT32 Length) {
  struct Entity {
    const CHAR16 *Name;
    UINT32 Value;
  };
  static constexpr Entity kEntities[] = {
      {u"lt", '<'}, {u"gt", '>'}, {u"amp", '&'}, {u"apos", '\''}, {u"quot", '"'}};
  for (const Entity &E : kEntities) {
    UINT32 I = 0;
    while (I < Length && E.Name[I] == Name[I]) {
      I++;
    }
    if (I == Length && E.Name[I] == 0) {
      return E.Value;
    }
  }
  return 0;
}

[[nodiscard]] BOOLEAN StepReference(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::Reference:
      if (C == '#') {
        P->State = Mode::ReferenceHash;
        P->ReferenceValue = 0;
        return TRUE;
      }
      if (!IsNameStartChar(C) || C > 0x7F) {
        return FALSE;  // no entity outside the predefined ASCII ones exists
      }
      P->ReferenceName[0] = static_cast<CHAR16>(C);
      P->ReferenceLength = 1;
      P->State = Mode::ReferenceName;
      return TRUE;
    case Mode::ReferenceName:
      if (C == ';') {
        const UINT32 Value = PredefinedEntity(P->ReferenceName, P->ReferenceLength);
        return Value != 0 && FinishReference(P, Value);
      }
      if (!IsNameChar(C) || C > 0x7F ||
          P->ReferenceLength >= ARRAY_SIZE(P->ReferenceName)) {
        return FALSE;
      }
      P->ReferenceName[P->ReferenceLength++] = static_cast<CHAR16>(C);
      return TRUE;
    case Mode::ReferenceHash:
      if (C == 'x') {
        P->State = Mode::ReferenceHexStart;
        return TRUE;
      }
      if (C < '0' || C > '9') {
        return FALSE;
      }
      P->ReferenceValue = C - '0';
      P->State = Mode::ReferenceDecimal;
      return TRUE;
    case Mode::ReferenceDecimal:
      if (C == ';') {
        return IsXmlChar(P->ReferenceValue) &&
               FinishReference(P, P->ReferenceValue);
      }
      if (C < '0' || C > '9') {
        return FALSE;
      }
      P->ReferenceValue = P->ReferenceValue * 10 + (C - '0');
      return P->ReferenceValue <= 0x10FFFF;
    case Mode::ReferenceHexStart:
    case Mode::ReferenceHex: {
      if (C == ';' && P->State == Mode::ReferenceHex) {
        return IsXmlChar(P->ReferenceValue) &&
               FinishReference(P, P->ReferenceValue);
      }
      const INT32 Digit = HexDigitValue(C);
      if (Digit < 0) {
        return FALSE;
      }
      P->ReferenceValue = P->ReferenceValue * 16 + static_cast<UINT32>(Digit);
      P->State = Mode::ReferenceHex;
      return P->ReferenceValue <= 0x10FFFF;
    }
    default:
      return FALSE;
  }
}

[[nodiscard]] BOOLEAN BeginReference(XML_SAX_PARSER *P, ReferenceIn Where) {
  P->RefContext = Where;
  P->State = Mode::Reference;
  P->ReferenceValue = 0;
  P->ReferenceLength = 0;
  return TRUE;
}

// ---- Character data, comments, CDATA, processing instructions ------------------

[[nodiscard]] BOOLEAN StepText(XML_SAX_PARSER *P, UINT32 C) {
  if (C == '<') {
    P->MarkupAtStart = P->Characters == 0;
    P->State = Mode::MarkupOpen;
    return TRUE;
  }
  if (P->Depth == 0) {
    return IsXmlSpace(C);  // only white space around the root element
  }
  if (C == '&') {
    return BeginReference(P, ReferenceIn::Text);
  }
  if (C == '>' && P->Brackets >= 2) {
    return FALSE;  // "]]>" outside a CDATA section
  }
  P->Brackets = C == ']' ? P->Brackets + 1 : 0;
  return TRUE;
}

[[nodiscard]] BOOLEAN StepMarkupOpen(XML_SAX_PARSER *P, UINT32 C) {
  if (C == '/') {
    P->EndNameLength = 0;
    P->State = Mode::EndName;
    return TRUE;
  }
  if (C == '?') {
    P->PiTargetLength = 0;
    P->PiIsDeclaration = FALSE;
    P->State = Mode::PiTarget;
    return TRUE;
  }
  if (C == '!') {
    P->State = Mode::Bang;
    return TRUE;
  }
  if (!IsNameStartChar(C) || (P->Depth == 0 && P->SeenRoot)) {
    return FALSE;  // not markup, or a second root element
  }
  if (!BeginElement(P) ||
      !AppendUtf16(P->NameStack, XML_SAX_NAME_STACK_CHARS, &P->NameStackUsed, C)) {
    return FALSE;
  }
  P->State = Mode::StartName;
  return TRUE;
}

[[nodiscard]] BOOLEAN StepBang(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::Bang:
      if (C == '-') {
        P->State = Mode::BangDash;
        return TRUE;
      }
      if (C == '[' && P->Depth > 0) {
        P->MatchIndex = 0;
        P->State = Mode::CdataOpen;
        return TRUE;
      }
      return FALSE;  // a document type declaration is not supported
    case Mode::BangDash:
      P->State = Mode::Comment;
      return C == '-';
    case Mode::CdataOpen: {
      static constexpr char kCdata[] = "CDATA[";
      if (C != static_cast<UINT32>(kCdata[P->MatchIndex])) {
        return FALSE;
      }
      if (++P->MatchIndex == sizeof(kCdata) - 1) {
        P->Brackets = 0;
        P->State = Mode::Cdata;
      }
      return TRUE;
    }
    default:
      return FALSE;
  }
}

[[nodiscard]] BOOLEAN StepComment(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::Comment:
      if (C == '-') {
        P->State = Mode::CommentDash;
      }
      return TRUE;
    case Mode::CommentDash:
      P->State = C == '-' ? Mode::CommentDashDash : Mode::Comment;
      return TRUE;
    case Mode::CommentDashDash:
      P->State = Mode::Text;
      P->Brackets = 0;
      return C == '>';  // "--" only ends a comment
    default:
      return FALSE;
  }
}

[[nodiscard]] BOOLEAN StepCdata(XML_SAX_PARSER *P, UINT32 C) {
  if (C == '>' && P->Brackets >= 2) {
    P->State = Mode::Text;
    P->Brackets = 0;
    return TRUE;
  }
  P->Brackets = C == ']' ? P->Brackets + 1 : 0;
  return TRUE;
}

// Ends the processing instruction's target: "xml" in any case is reserved,
// and the lower-case one is the declaration, only at the very start.
[[nodiscard]] BOOLEAN FinishPiTarget(XML_SAX_PARSER *P) {
  if (P->PiTargetLength != 3) {
    return TRUE;
  }
  const CHAR16 *T = P->PiTargetText;
  const BOOLEAN Reserved = (T[0] | 0x20) == 'x' && (T[1] | 0x20) == 'm' &&
                           (T[2] | 0x20) == 'l';
  if (!Reserved) {
    return TRUE;
  }
  if (T[0] != 'x' || T[1] != 'm' || T[2] != 'l' || !P->MarkupAtStart) {
    return FALSE;
  }
  P->PiIsDeclaration = TRUE;
  P->DeclarationLength = 0;
  return TRUE;
}

[[nodiscard]] BOOLEAN AppendDeclaration(XML_SAX_PARSER *P, UINT32 C) {
  if (!P->PiIsDeclaration) {
    return TRUE;
  }
  if (C > 0x7F || P->DeclarationLength >= XML_SAX_DECLARATION_CHARS) {
    return FALSE;  // the declaration is ASCII and short
  }
  P->Declaration[P->DeclarationLength++] = static_cast<CHAR8>(C);
  return TRUE;
}

[[nodiscard]] BOOLEAN FinishPi(XML_SAX_PARSER *P) {
  P->State = Mode::Text;
  P->Brackets = 0;
  return !P->PiIsDeclaration ||
         IsWellFormedDeclaration(P->Declaration, P->DeclarationLength);
}

[[nodiscard]] BOOLEAN StepPi(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::PiTarget:
      if (P->PiTargetLength == 0) {
        if (!IsNameStartChar(C)) {
          return FALSE;
        }
      } else if (C == '?' || IsXmlSpace(C)) {
        if (!FinishPiTarget(P)) {
          return FALSE;
        }
        if (C == '?') {
          P->State = Mode::PiTargetQuestion;
          return TRUE;
        }
        P->State = Mode::PiBody;
        return AppendDeclaration(P, C);
      } else if (!IsNameChar(C)) {
        return FALSE;
      }
      // Only whether the target is "xml" matters: keep four characters.
      if (P->PiTargetLength < ARRAY_SIZE(P->PiTargetText)) {
        P->PiTargetText[P->PiTargetLength++] = static_cast<CHAR16>(C);
      }
      return TRUE;
    case Mode::PiTargetQuestion:
      return C == '>' && FinishPi(P);
    case Mode::PiBody:
      if (C == '?') {
        P->State = Mode::PiQuestion;
        return TRUE;
      }
      return AppendDeclaration(P, C);
    case Mode::PiQuestion:
      if (C == '>') {
        return FinishPi(P);
      }
      if (C != '?') {
        P->State = Mode::PiBody;
        return AppendDeclaration(P, '?') && AppendDeclaration(P, C);
      }
      return AppendDeclaration(P, '?');
    default:
      return FALSE;
  }
}

// ---- Tags ----------------------------------------------------------------------

[[nodiscard]] BOOLEAN StepStartTag(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::StartName:
      if (IsNameChar(C)) {
        return AppendUtf16(P->NameStack, XML_SAX_NAME_STACK_CHARS,
                           &P->NameStackUsed, C);
      }
      if (!Terminate(P->NameStack, XML_SAX_NAME_STACK_CHARS, &P->NameStackUsed)) {
        return FALSE;
      }
      if (IsXmlSpace(C)) {
        P->State = Mode::StartTagSpace;
        return TRUE;
      }
      if (C == '>') {
        return FinishStartTag(P, FALSE);
      }
      P->State = Mode::EmptyClose;
      return C == '/';
    case Mode::StartTagSpace:
    case Mode::AfterAttributeValue:
      if (IsXmlSpace(C)) {
        P->State = Mode::StartTagSpace;
        return TRUE;
      }
      if (C == '>') {
        return FinishStartTag(P, FALSE);
      }
      if (C == '/') {
        P->State = Mode::EmptyClose;
        return TRUE;
      }
      if (P->State == Mode::AfterAttributeValue || !IsNameStartChar(C)) {
        return FALSE;  // attributes are separated by white space
      }
      P->State = Mode::AttributeName;
      return BeginAttributeText(P) && AppendAttributeChar(P, C);
    case Mode::AttributeName:
      if (IsNameChar(C)) {
        return AppendAttributeChar(P, C);
      }
      if (!EndAttributeText(P)) {
        return FALSE;
      }
      if (IsXmlSpace(C)) {
        P->State = Mode::AttributeAfterName;
        return TRUE;
      }
      P->State = Mode::AttributeAfterEquals;
      return C == '=';
    case Mode::AttributeAfterName:
      if (IsXmlSpace(C)) {
        return TRUE;
      }
      P->State = Mode::AttributeAfterEquals;
      return C == '=';
    case Mode::AttributeAfterEquals:
      if (IsXmlSpace(C)) {
        return TRUE;
      }
      if (C != '"' && C != '\'') {
        return FALSE;
      }
      P->AttributeQuote = static_cast<CHAR16>(C);
      P->PendingCr = FALSE;
      P->State = Mode::AttributeValue;
      return BeginAttributeText(P);
    case Mode::EmptyClose:
      return C == '>' && FinishStartTag(P, TRUE);
    default:
      return FALSE;
  }
}

[[nodiscard]] BOOLEAN StepAttributeValue(XML_SAX_PARSER *P, UINT32 C) {
  const BOOLEAN AfterCr = P->PendingCr;
  P->PendingCr = FALSE;
  if (C == P->AttributeQuote) {
    P->State = Mode::AfterAttributeValue;
    return EndAttributeText(P);
  }
  if (C == '<') {
    return FALSE;
  }
  if (C == '&') {
    return BeginReference(P, ReferenceIn::AttributeValue);
  }
  if (C == '\n' && AfterCr) {
    return TRUE;  // CR LF is one line end, already a space
  }
  if (C == '\r') {
    P->PendingCr = TRUE;
  }
  return AppendAttributeChar(P, IsXmlSpace(C) ? ' ' : C);
}

[[nodiscard]] BOOLEAN StepEndTag(XML_SAX_PARSER *P, UINT32 C) {
  if (P->State == Mode::EndName) {
    const BOOLEAN Valid = P->EndNameLength == 0 ? IsNameStartChar(C) : IsNameChar(C);
    if (Valid) {
      UINT32 Used = P->EndNameLength;
      if (!AppendUtf16(P->EndNameText, XML_SAX_END_NAME_CHARS, &Used, C)) {
        return FALSE;
      }
      P->EndNameLength = Used;
      return TRUE;
    }
    if (P->EndNameLength == 0) {
      return FALSE;
    }
    if (IsXmlSpace(C)) {
      P->State = Mode::EndAfterName;
      return TRUE;
    }
    return C == '>' && FinishEndTag(P);
  }
  if (IsXmlSpace(C)) {
    return TRUE;
  }
  return C == '>' && FinishEndTag(P);
}

// ---- Dispatch --------------------------------------------------------------------

// Hands one character to the step function of the current state.
[[nodiscard]] BOOLEAN Dispatch(XML_SAX_PARSER *P, UINT32 C) {
  switch (P->State) {
    case Mode::Text:
      return StepText(P, C);
    case Mode::Reference:
    case Mode::ReferenceName:
    case Mode::ReferenceHash:
    case Mode::ReferenceDecimal:
    case Mode::ReferenceHexStart:
    case Mode::ReferenceHex:
      return StepReference(P, C);
    case Mode::MarkupOpen:
      return StepMarkupOpen(P, C);
    case Mode::Bang:
    case Mode::BangDash:
    case Mode::CdataOpen:
      return StepBang(P, C);
    case Mode::Comment:
    case Mode::CommentDash:
    case Mode::CommentDashDash:
      return StepComment(P, C);
    case Mode::Cdata:
      return StepCdata(P, C);
    case Mode::PiTarget:
    case Mode::PiTargetQuestion:
    case Mode::PiBody:
    case Mode::PiQuestion:
      return StepPi(P, C);
    case Mode::StartName:
    case Mode::StartTagSpace:
    case Mode::AttributeName:
    case Mode::AttributeAfterName:
    case Mode::AttributeAfterEquals:
    case Mode::AfterAttributeValue:
    case Mode::EmptyClose:
      return StepStartTag(P, C);
    case Mode::AttributeValue:
      return StepAttributeValue(P, C);
    case Mode::EndName:
    case Mode::EndAfterName:
      return StepEndTag(P, C);
  }
  return FALSE;
}

// Advances the state machine by one character of the document.
[[nodiscard]] BOOLEAN Step(XML_SAX_PARSER *P, UINT32 C) {
  if (C == 0xFEFF && P->Offset == 2) {
    return TRUE;  // a byte order mark: the document's first three bytes
  }
  if (!IsXmlChar(C)) {
    return FALSE;
  }
  const BOOLEAN Accepted = Dispatch(P, C);
  P->Characters++;
  return Accepted;
}

// Decodes one byte; a completed code point goes to Step. Overlong forms,
// surrogates and values above U+10FFFF are malformed.
[[nodiscard]] BOOLEAN DecodeByte(XML_SAX_PARSER *P, UINT8 Byte) {
  if (P->Utf8Pending == 0) {
    if (Byte < 0x80) {
      return Step(P, Byte);
    }
    if (Byte >= 0xC2 && Byte <= 0xDF) {
      P->Utf8Pending = 1;
      P->Utf8Value = Byte & 0x1F;
      P->Utf8Minimum = 0x80;
    } else if (Byte >= 0xE0 && Byte <= 0xEF) {
      P->Utf8Pending = 2;
      P->Utf8Value = Byte & 0x0F;
      P->Utf8Minimum = 0x800;
    } else if (Byte >= 0xF0 && Byte <= 0xF4) {
      P->Utf8Pending = 3;
      P->Utf8Value = Byte & 0x07;
      P->Utf8Minimum = 0x10000;
    } else {
      return FALSE;
    }
    return TRUE;
  }
  if ((Byte & 0xC0) != 0x80) {
    return FALSE;
  }
  P->Utf8Value = (P->Utf8Value << 6) | (Byte & 0x3F);
  if (--P->Utf8Pending != 0) {
    return TRUE;
  }
  const UINT32 Value = P->Utf8Value;
  if (Value < P->Utf8Minimum || Value > 0x10FFFF ||
      (Value >= 0xD800 && Value <= 0xDFFF)) {
    return FALSE;
  }
  return Step(P, Value);
}

[[nodiscard]] EFI_STATUS Fail(XML_SAX_PARSER *P) {
  if (!P->Failed) {
    P->Failed = TRUE;
    P->ErrorOffset = P->Offset;
  }
  return EFI_PROTOCOL_ERROR;
}

}  // namespace

XML_SAX_PARSER *XmlSaxCreate(VOID) {
  auto *P = static_cast<XML_SAX_PARSER *>(AllocateZeroPool(sizeof(XML_SAX_PARSER)));
  if (P != nullptr) {
    P->State = Mode::Text;
    P->ErrorOffset = ~0ULL;
  }
  return P;
}

VOID XmlSaxSetHandlers(XML_SAX_PARSER *Parser, XML_SAX_START_ELEMENT Start,
                       XML_SAX_END_ELEMENT End, VOID *Context) {
  if (Parser != nullptr) {
    Parser->Start = Start;
    Parser->End = End;
    Parser->Context = Context;
  }
}

EFI_STATUS XmlSaxParse(XML_SAX_PARSER *Parser, const UINT8 *Bytes,
                       UINTN Length, BOOLEAN IsFinal) {
  if (Parser == nullptr || (Bytes == nullptr && Length != 0)) {
    return EFI_INVALID_PARAMETER;
  }
  if (Parser->Failed || Parser->Finished) {
    return Fail(Parser);
  }
  for (UINTN I = 0; I < Length; I++) {
    if (!DecodeByte(Parser, Bytes[I])) {
      return Fail(Parser);
    }
    Parser->Offset++;
  }
  if (IsFinal) {
    Parser->Finished = TRUE;
    const BOOLEAN Complete = Parser->Utf8Pending == 0 &&
                             Parser->State == Mode::Text && Parser->SeenRoot &&
                             Parser->Depth == 0;
    if (!Complete) {
      Parser->Finished = FALSE;
      return Fail(Parser);
    }
  }
  return EFI_SUCCESS;
}

UINT64 XmlSaxErrorOffset(const XML_SAX_PARSER *Parser) {
  return Parser == nullptr ? ~0ULL : Parser->ErrorOffset;
}

VOID XmlSaxFree(XML_SAX_PARSER *Parser) {
  if (Parser != nullptr) {
    ZeroMem(Parser, sizeof(*Parser));
    FreePool(Parser);
  }
}
