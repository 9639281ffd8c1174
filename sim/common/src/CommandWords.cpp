// Taking a tool's command line apart into words.
#include "sim/common/CommandWords.h"

#include <algorithm>
#include <cctype>

namespace sim::common {
namespace {

bool IsBlank(char C) { return std::isspace(static_cast<unsigned char>(C)) != 0; }

const std::string kNoWord;

}  // namespace

std::string Lower(std::string_view Text) {
  std::string Result(Text);
  for (char &C : Result) {
    C = static_cast<char>(std::tolower(static_cast<unsigned char>(C)));
  }
  return Result;
}

std::vector<std::string> Split(std::string_view Text, char Separator) {
  std::vector<std::string> Pieces;
  if (Text.empty()) {
    return Pieces;
  }
  size_t Start = 0;
  for (size_t End = Text.find(Separator); End != std::string_view::npos;
       End = Text.find(Separator, Start)) {
    Pieces.emplace_back(Text.substr(Start, End - Start));
    Start = End + 1;
  }
  Pieces.emplace_back(Text.substr(Start));
  return Pieces;
}

std::optional<uint32_t> Decimal(std::string_view Text, uint32_t Max) {
  const size_t MaxDigits = std::to_string(Max).size();
  if (Text.empty() || Text.size() > MaxDigits ||
      !std::all_of(Text.begin(), Text.end(), [](char C) {
        return std::isdigit(static_cast<unsigned char>(C)) != 0;
      })) {
    return std::nullopt;
  }
  uint64_t Value = 0;
  for (char C : Text) {
    Value = Value * 10 + static_cast<uint64_t>(C - '0');
  }
  if (Value > Max) {
    return std::nullopt;
  }
  return static_cast<uint32_t>(Value);
}

KeyedWord SplitKeyed(std::string_view Word, char Separator) {
  const size_t At = Word.find(Separator);
  if (At == std::string_view::npos) {
    return {Lower(Word), std::nullopt};
  }
  return {Lower(Word.substr(0, At)), std::string(Word.substr(At + 1))};
}

std::optional<KeyedWord> SplitSwitch(std::string_view Word) {
  if (Word.empty() || Word.front() != '/') {
    return std::nullopt;
  }
  return SplitKeyed(Word.substr(1), ':');
}

std::optional<std::vector<std::string>> SplitPath(std::string_view Word) {
  if (Word.empty() || Word.front() != '/') {
    return std::nullopt;
  }
  return Split(Lower(Word.substr(1)), '/');
}

CommandWords::CommandWords(std::string_view CommandLine,
                           std::initializer_list<std::string_view> Ignored) {
  bool Tool = true;
  size_t Start = 0;
  while (Start < CommandLine.size()) {
    if (IsBlank(CommandLine[Start])) {
      ++Start;
      continue;
    }
    size_t End = Start;
    while (End < CommandLine.size() && !IsBlank(CommandLine[End])) {
      ++End;
    }
    const std::string_view Word = CommandLine.substr(Start, End - Start);
    Start = End;
    std::string Lowered = Lower(Word);
    if (Tool || std::find(Ignored.begin(), Ignored.end(), Lowered) != Ignored.end()) {
      Tool = false;
      continue;
    }
    Words_.emplace_back(Word);
    Lowered_.push_back(std::move(Lowered));
  }
}

const std::string &CommandWords::Current() const {
  return Done() ? kNoWord : Words_[Next_];
}

const std::string &CommandWords::CurrentLower() const {
  return Done() ? kNoWord : Lowered_[Next_];
}

bool CommandWords::Take(std::string_view Keyword) {
  if (Done() || Lowered_[Next_] != Keyword) {
    return false;
  }
  ++Next_;
  return true;
}

void CommandWords::Skip() {
  if (!Done()) {
    ++Next_;
  }
}

void CommandWords::Back() {
  if (Next_ > 0) {
    --Next_;
  }
}

std::string CommandWords::Offending() const {
  if (!Done()) {
    return Words_[Next_];
  }
  return Words_.empty() ? std::string() : Words_.back();
}

}  // namespace sim::common
