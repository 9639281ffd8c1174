// Column layout of the vendor tools' text tables.
#include "sim/common/TextTable.h"

#include <algorithm>

namespace sim::common {

void TextTable::AddRow(std::vector<std::string> Cells) {
  Cells.resize(Columns_.size());
  Rows_.push_back(std::move(Cells));
}

std::string TextTable::Format(const std::vector<std::string> &Cells,
                              const std::vector<size_t> &Widths) const {
  std::string Line;
  for (size_t Index = 0; Index < Columns_.size(); ++Index) {
    const std::string &Cell = Cells[Index];
    const std::string Padding(Widths[Index] - Cell.size(), ' ');
    Line += Columns_[Index].RightAligned ? Padding + Cell : Cell + Padding;
    Line += ' ';
  }
  return Line;
}

std::vector<std::string> TextTable::Lines() const {
  std::vector<size_t> Widths;
  std::vector<std::string> Titles;
  for (size_t Index = 0; Index < Columns_.size(); ++Index) {
    size_t Width = Columns_[Index].Title.size();
    for (const auto &Row : Rows_) {
      Width = std::max(Width, Row[Index].size());
    }
    Widths.push_back(Width);
    Titles.push_back(Columns_[Index].Title);
  }
  size_t Total = 0;
  for (size_t Width : Widths) {
    Total += Width + 1;
  }
  const std::string Ruler(Total, '-');
  std::vector<std::string> Lines = {Ruler, Format(Titles, Widths), Ruler};
  for (const auto &Row : Rows_) {
    Lines.push_back(Format(Row, Widths));
  }
  Lines.push_back(Ruler);
  return Lines;
}

}  // namespace sim::common
