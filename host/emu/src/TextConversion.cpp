// UTF-8 <-> UTF-16 for the boundary between host text and CHAR16.
#include "emu/TextConversion.h"

namespace emu {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Appends one code point as UTF-16.
void AppendUtf16(std::u16string &Out, char32_t CodePoint) {
  if (CodePoint < 0x10000) {
    Out.push_back(static_cast<char16_t>(CodePoint));
    return;
  }
  CodePoint -= 0x10000;
  Out.push_back(static_cast<char16_t>(0xD800 + (CodePoint >> 10)));
  Out.push_back(static_cast<char16_t>(0xDC00 + (CodePoint & 0x3FF)));
}

// Appends one code point as UTF-8.
void AppendUtf8(std::string &Out, char32_t CodePoint) {
  if (CodePoint < 0x80) {
    Out.push_back(static_cast<char>(CodePoint));
  } else if (CodePoint < 0x800) {
    Out.push_back(static_cast<char>(0xC0 | (CodePoint >> 6)));
    Out.push_back(static_cast<char>(0x80 | (CodePoint & 0x3F)));
  } else if (CodePoint < 0x10000) {
    Out.push_back(static_cast<char>(0xE0 | (CodePoint >> 12)));
    Out.push_back(static_cast<char>(0x80 | ((CodePoint >> 6) & 0x3F)));
    Out.push_back(static_cast<char>(0x80 | (CodePoint & 0x3F)));
  } else {
    Out.push_back(static_cast<char>(0xF0 | (CodePoint >> 18)));
    Out.push_back(static_cast<char>(0x80 | ((CodePoint >> 12) & 0x3F)));
    Out.push_back(static_cast<char>(0x80 | ((CodePoint >> 6) & 0x3F)));
    Out.push_back(static_cast<char>(0x80 | (CodePoint & 0x3F)));
  }
}

// Decodes one UTF-8 sequence at Text[Index], advancing Index.
char32_t DecodeUtf8(std::string_view Text, size_t &Index) {
  const auto Lead = static_cast<unsigned char>(Text[Index++]);
  if (Lead < 0x80) {
    return Lead;
  }
  size_t Extra;
  char32_t CodePoint;
  char32_t Minimum;
  if ((Lead & 0xE0) == 0xC0) {
    Extra = 1, CodePoint = Lead & 0x1F, Minimum = 0x80;
  } else if ((Lead & 0xF0) == 0xE0) {
    Extra = 2, CodePoint = Lead & 0x0F, Minimum = 0x800;
  } else if ((Lead & 0xF8) == 0xF0) {
    Extra = 3, CodePoint = Lead & 0x07, Minimum = 0x10000;
  } else {
    return kReplacement;
  }
  for (size_t I = 0; I < Extra; I++) {
    if (Index >= Text.size()) {
      return kReplacement;
    }
    const auto Next = static_cast<unsigned char>(Text[Index]);
    if ((Next & 0xC0) != 0x80) {
      return kReplacement;
    }
    CodePoint = (CodePoint << 6) | (Next & 0x3F);
    Index++;
  }
  if (CodePoint < Minimum || CodePoint > 0x10FFFF ||
      (CodePoint >= 0xD800 && CodePoint <= 0xDFFF)) {
    return kReplacement;
  }
  return CodePoint;
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view Text) {
  std::u16string Out;
  Out.reserve(Text.size());
  size_t Index = 0;
  while (Index < Text.size()) {
    // A run of ASCII, nearly all a tool prints, is widened in one append:
    // a character at a time cost the fuzz targets more than a parse.
    size_t End = Index;
    while (End < Text.size() && static_cast<unsigned char>(Text[End]) < 0x80) {
      End++;
    }
    Out.append(Text.begin() + Index, Text.begin() + End);
    Index = End;
    if (Index < Text.size()) {
      AppendUtf16(Out, DecodeUtf8(Text, Index));
    }
  }
  return Out;
}

std::string Utf16ToUtf8(std::u16string_view Text) {
  std::string Out;
  Out.reserve(Text.size());
  for (size_t I = 0; I < Text.size(); I++) {
    char32_t Unit = Text[I];
    if (Unit >= 0xD800 && Unit <= 0xDBFF && I + 1 < Text.size() &&
        Text[I + 1] >= 0xDC00 && Text[I + 1] <= 0xDFFF) {
      Unit = 0x10000 + ((Unit - 0xD800) << 10) + (Text[I + 1] - 0xDC00);
      I++;
    } else if (Unit >= 0xD800 && Unit <= 0xDFFF) {
      Unit = kReplacement;
    }
    AppendUtf8(Out, Unit);
  }
  return Out;
}

std::u16string_view View(const CHAR16 *Text) {
  return Text == nullptr ? std::u16string_view() : std::u16string_view(Text);
}

std::string ToUtf8(const CHAR16 *Text) { return Utf16ToUtf8(View(Text)); }

}  // namespace emu
