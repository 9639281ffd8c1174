// Checking the XML declaration, pseudo-attribute by pseudo-attribute.
#include "XmlDeclaration.h"

#include "XmlCharacters.h"

namespace xml_detail {
namespace {

struct PseudoAttribute {
  const CHAR8 *Name;
  UINTN NameLength;
  const CHAR8 *Value;
  UINTN ValueLength;
};

[[nodiscard]] BOOLEAN IsValueChar(CHAR8 C) {
  return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') ||
         (C >= '0' && C <= '9') || C == '.' || C == '-' || C == '_';
}

[[nodiscard]] BOOLEAN NameIs(const PseudoAttribute &A, const char *Keyword) {
  UINTN I = 0;
  for (; I < A.NameLength; I++) {
    if (Keyword[I] == 0 || Keyword[I] != A.Name[I]) {
      return FALSE;
    }
  }
  return Keyword[I] == 0;
}

[[nodiscard]] BOOLEAN ValueIs(const PseudoAttribute &A, const char *Keyword) {
  UINTN I = 0;
  for (; I < A.ValueLength; I++) {
    if (Keyword[I] == 0 || Keyword[I] != A.Value[I]) {
      return FALSE;
    }
  }
  return Keyword[I] == 0;
}

enum class Next { Attribute, End, Malformed };

// Reads the next pseudo-attribute at *Position: white space, a name, '='
// with optional white space around it, a quoted value. End when only
// white space is left.
[[nodiscard]] Next ReadPseudoAttribute(const CHAR8 *Text, UINTN Length,
                                       UINTN *Position, PseudoAttribute *Out) {
  UINTN P = *Position;
  if (P == Length) {
    return Next::End;
  }
  if (!IsXmlSpace(static_cast<UINT8>(Text[P]))) {
    return Next::Malformed;
  }
  while (P < Length && IsXmlSpace(static_cast<UINT8>(Text[P]))) {
    P++;
  }
  if (P == Length) {
    return Next::End;
  }
  Out->Name = &Text[P];
  while (P < Length && Text[P] != '=' && !IsXmlSpace(static_cast<UINT8>(Text[P]))) {
    P++;
  }
  Out->NameLength = static_cast<UINTN>(&Text[P] - Out->Name);
  while (P < Length && IsXmlSpace(static_cast<UINT8>(Text[P]))) {
    P++;
  }
  if (P == Length || Text[P] != '=' || Out->NameLength == 0) {
    return Next::Malformed;
  }
  P++;
  while (P < Length && IsXmlSpace(static_cast<UINT8>(Text[P]))) {
    P++;
  }
  if (P == Length || (Text[P] != '"' && Text[P] != '\'')) {
    return Next::Malformed;
  }
  const CHAR8 Quote = Text[P++];
  Out->Value = &Text[P];
  while (P < Length && Text[P] != Quote) {
    if (!IsValueChar(Text[P])) {
      return Next::Malformed;
    }
    P++;
  }
  if (P == Length) {
    return Next::Malformed;
  }
  Out->ValueLength = static_cast<UINTN>(&Text[P] - Out->Value);
  *Position = P + 1;
  return Next::Attribute;
}

}  // namespace

BOOLEAN IsWellFormedDeclaration(const CHAR8 *Text, UINTN Length) {
  UINTN Position = 0;
  PseudoAttribute A = {};
  if (ReadPseudoAttribute(Text, Length, &Position, &A) != Next::Attribute ||
      !NameIs(A, "version")) {
    return FALSE;
  }
  Next Result = ReadPseudoAttribute(Text, Length, &Position, &A);
  if (Result != Next::Attribute) {
    return Result == Next::End;
  }
  if (NameIs(A, "encoding")) {
    const CHAR8 First = A.ValueLength == 0 ? 0 : A.Value[0];
    if (!((First >= 'a' && First <= 'z') || (First >= 'A' && First <= 'Z'))) {
      return FALSE;
    }
    Result = ReadPseudoAttribute(Text, Length, &Position, &A);
    if (Result != Next::Attribute) {
      return Result == Next::End;
    }
  }
  if (!NameIs(A, "standalone") || !(ValueIs(A, "yes") || ValueIs(A, "no"))) {
    return FALSE;
  }
  while (Position < Length && IsXmlSpace(static_cast<UINT8>(Text[Position]))) {
    Position++;
  }
  return Position == Length;
}

}  // namespace xml_detail
