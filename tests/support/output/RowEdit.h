// Tool output with numbers a virtual adapter cannot hold (a volume number
// past 32 bits, a device id two drives share): the adapter's own text with
// single words of chosen rows replaced.
#pragma once

#include <string>
#include <vector>

namespace tool_output {

struct RowEdit {
  // The row: the line whose first words are these ("" matches any word).
  std::vector<std::string> Leading;
  size_t Word;       // which word of the row is replaced, from 0
  std::string Text;  // what it becomes
};

// Text with each edit applied to every line it names; a line keeps its
// spacing but for the replaced word.
inline std::string EditRows(const std::string &Text,
                            const std::vector<RowEdit> &Edits) {
  std::string Out;
  size_t Start = 0;
  while (Start < Text.size()) {
    size_t End = Text.find('\n', Start);
    End = End == std::string::npos ? Text.size() : End + 1;
    std::string Line = Text.substr(Start, End - Start);
    Start = End;
    // Word boundaries: runs of characters other than blanks and line ends.
    std::vector<std::pair<size_t, size_t>> Words;
    for (size_t At = 0; At < Line.size();) {
      At = Line.find_first_not_of(" \r\n", At);
      if (At == std::string::npos) break;
      size_t Stop = Line.find_first_of(" \r\n", At);
      Stop = Stop == std::string::npos ? Line.size() : Stop;
      Words.push_back({At, Stop - At});
      At = Stop;
    }
    for (const RowEdit &Edit : Edits) {
      bool Named = Words.size() > Edit.Word && Words.size() >= Edit.Leading.size();
      for (size_t Index = 0; Named && Index < Edit.Leading.size(); Index++) {
        Named = Edit.Leading[Index].empty() ||
                Line.compare(Words[Index].first, Words[Index].second,
                             Edit.Leading[Index]) == 0;
      }
      if (Named) {
        Line.replace(Words[Edit.Word].first, Words[Edit.Word].second, Edit.Text);
        break;  // word positions changed; one edit per line
      }
    }
    Out += Line;
  }
  return Out;
}

}  // namespace tool_output
