#include "StringsTestSupport.h"

#include <strings/RaidcfgPackageList.h>

#include <cstdio>
#include <cstdlib>

namespace strings_test {

const std::vector<std::string> kLanguages = {
    "en-US", "fr-FR", "de-DE",   "es-ES", "it-IT", "ko-KR",
    "zh-Hans", "zh-Hant", "ja-JP", "ru-RU", "pt-BR"};

const emu::HiiStrings &RaidcfgStrings() {
  static const emu::HiiStrings Parsed = [] {
    emu::HiiStrings Strings;
    std::string Error;
    if (!emu::ParseHiiPackageList(raidcfg_strings::kPackageList,
                                  raidcfg_strings::kPackageListSize, Strings,
                                  &Error)) {
      std::fprintf(stderr, "raidcfg's package list: %s\n", Error.c_str());
      std::abort();
    }
    return Strings;
  }();
  return Parsed;
}

std::vector<std::string> Conversions(const std::u16string &Text) {
  std::vector<std::string> Found;
  for (size_t Position = 0; Position < Text.size(); ++Position) {
    if (Text[Position] != u'%') {
      continue;
    }
    size_t End = Position + 1;
    if (End < Text.size() && Text[End] == u'%') {
      Position = End;
      continue;
    }
    const std::u16string Modifiers = u"-+ 0#,.*0123456789lL";
    while (End < Text.size() &&
           Modifiers.find(Text[End]) != std::u16string::npos) {
      ++End;
    }
    if (End >= Text.size() || !((Text[End] >= u'a' && Text[End] <= u'z') ||
                                (Text[End] >= u'A' && Text[End] <= u'Z'))) {
      Found.push_back("<stray>");
      continue;
    }
    Found.push_back(Utf8(Text.substr(Position, End - Position + 1)));
    Position = End;
  }
  return Found;
}

std::string Utf8(const std::u16string &Text) {
  std::string Out;
  for (char16_t Unit : Text) {
    if (Unit < 0x80) {
      Out.push_back(static_cast<char>(Unit));
    } else if (Unit < 0x800) {
      Out.push_back(static_cast<char>(0xC0 | (Unit >> 6)));
      Out.push_back(static_cast<char>(0x80 | (Unit & 0x3F)));
    } else {
      Out.push_back(static_cast<char>(0xE0 | (Unit >> 12)));
      Out.push_back(static_cast<char>(0x80 | ((Unit >> 6) & 0x3F)));
      Out.push_back(static_cast<char>(0x80 | (Unit & 0x3F)));
    }
  }
  return Out;
}

}  // namespace strings_test
