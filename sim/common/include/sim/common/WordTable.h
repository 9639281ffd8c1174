// A tool's words for codes (drive states, policies, media...) as a table
// of (code, word) pairs, read both ways.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace sim::common {

template <typename Code, size_t N>
std::optional<Code> CodeOfWord(const std::pair<Code, const char *> (&Words)[N],
                               std::string_view Word) {
  for (const auto &[Value, Text] : Words) {
    if (Word == Text) {
      return Value;
    }
  }
  return std::nullopt;
}

// Missing when the table has no word for the code.
template <typename Code, size_t N>
const char *WordOfCode(const std::pair<Code, const char *> (&Words)[N],
                       Code Value, const char *Missing) {
  for (const auto &[Entry, Text] : Words) {
    if (Entry == Value) {
      return Text;
    }
  }
  return Missing;
}

}  // namespace sim::common
