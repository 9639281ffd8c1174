// Character classes of XML 1.0 (fifth edition) for the parser.
#pragma once

#include <Uefi.h>

namespace xml_detail {

// Char: the characters a document may contain at all.
[[nodiscard]] constexpr BOOLEAN IsXmlChar(UINT32 C) {
  return C == 0x9 || C == 0xA || C == 0xD || (C >= 0x20 && C <= 0xD7FF) ||
         (C >= 0xE000 && C <= 0xFFFD) || (C >= 0x10000 && C <= 0x10FFFF);
}

// S: space, tab, carriage return, line feed.
[[nodiscard]] constexpr BOOLEAN IsXmlSpace(UINT32 C) {
  return C == 0x20 || C == 0x9 || C == 0xD || C == 0xA;
}

[[nodiscard]] constexpr BOOLEAN IsNameStartChar(UINT32 C) {
  return C == ':' || C == '_' || (C >= 'A' && C <= 'Z') ||
         (C >= 'a' && C <= 'z') || (C >= 0xC0 && C <= 0xD6) ||
         (C >= 0xD8 && C <= 0xF6) || (C >= 0xF8 && C <= 0x2FF) ||
         (C >= 0x370 && C <= 0x37D) || (C >= 0x37F && C <= 0x1FFF) ||
         (C >= 0x200C && C <= 0x200D) || (C >= 0x2070 && C <= 0x218F) ||
         (C >= 0x2C00 && C <= 0x2FEF) || (C >= 0x3001 && C <= 0xD7FF) ||
         (C >= 0xF900 && C <= 0xFDCF) || (C >= 0xFDF0 && C <= 0xFFFD) ||
         (C >= 0x10000 && C <= 0xEFFFF);
}

[[nodiscard]] constexpr BOOLEAN IsNameChar(UINT32 C) {
  return IsNameStartChar(C) || C == '-' || C == '.' || (C >= '0' && C <= '9') ||
         C == 0xB7 || (C >= 0x300 && C <= 0x36F) || (C >= 0x203F && C <= 0x2040);
}

// The value of a hexadecimal digit, or -1.
[[nodiscard]] constexpr INT32 HexDigitValue(UINT32 C) {
  if (C >= '0' && C <= '9') {
    return static_cast<INT32>(C - '0');
  }
  if (C >= 'a' && C <= 'f') {
    return static_cast<INT32>(C - 'a' + 10);
  }
  if (C >= 'A' && C <= 'F') {
    return static_cast<INT32>(C - 'A' + 10);
  }
  return -1;
}

}  // namespace xml_detail
