// The words of a virtual tool's command line. Blanks separate the words,
// the first word is the tool itself, keywords compare without case. The
// helpers below take apart the word shapes the vendor tools use: object
// paths ("/c0/e252/s3"), assignments ("drives=252:0,1"), switches
// ("/C:Volume_1", "/V") and decimal numbers, positional ones included
// ("getconfig 1 ld").
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim::common {

std::string Lower(std::string_view Text);

// Text cut at every Separator: an empty text gives no piece, a separator at
// the end an empty last piece ("0,,1" gives "0", "", "1").
std::vector<std::string> Split(std::string_view Text, char Separator);

// A whole word of decimal digits worth at most Max, with no more digits
// than Max has (so "000001" is not a number when Max is 65535).
std::optional<uint32_t> Decimal(std::string_view Text, uint32_t Max);

// A word taken apart at its first separator: "size=100GB" is the key
// "size" with the value "100GB", "drives=" the key "drives" with an empty
// value, "ra" the key "ra" without a value. The key is lower case, the
// value as written.
struct KeyedWord {
  std::string Key;
  std::optional<std::string> Value;
};
KeyedWord SplitKeyed(std::string_view Word, char Separator = '=');

// A switch: "/C:Volume_1" is the key "c" with the value "Volume_1", "/ST"
// the key "st" without a value. None when the word does not begin with "/".
std::optional<KeyedWord> SplitSwitch(std::string_view Word);

// An object path: "/c0/E252/s3" gives "c0", "e252", "s3" (lower case). None
// when the word does not begin with "/".
std::optional<std::vector<std::string>> SplitPath(std::string_view Word);

// The words after the tool, read front to back.
class CommandWords {
 public:
  // Splits CommandLine at white space and drops the first word, the tool,
  // and wherever they stand the words Ignored names (lower case).
  explicit CommandWords(std::string_view CommandLine,
                        std::initializer_list<std::string_view> Ignored = {});

  bool Done() const { return Next_ >= Words_.size(); }
  // The current word as written and in lower case; empty when done.
  const std::string &Current() const;
  const std::string &CurrentLower() const;
  // Takes the current word when it is Keyword (lower case), without case.
  bool Take(std::string_view Keyword);
  // Takes the current word, whatever it is.
  void Skip();
  // Gives the word taken last back.
  void Back();
  // The word a tool names when it refuses the line: the current one, or the
  // last one when every word was taken ("" when there is none).
  std::string Offending() const;

 private:
  std::vector<std::string> Words_;
  std::vector<std::string> Lowered_;
  size_t Next_ = 0;
};

}  // namespace sim::common
