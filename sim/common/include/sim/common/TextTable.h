// A text table as the vendor tools print them: a ruler of "-", the column
// titles, a ruler, the rows, a closing ruler. Each column is as wide as its
// widest cell; cells are joined by one blank and every line ends in one.
#pragma once

#include <string>
#include <vector>

namespace sim::common {

class TextTable {
 public:
  struct Column {
    std::string Title;
    bool RightAligned = false;
  };

  explicit TextTable(std::vector<Column> Columns) : Columns_(std::move(Columns)) {}

  // Cells beyond the column count are dropped, missing ones are blank.
  void AddRow(std::vector<std::string> Cells);
  size_t RowCount() const { return Rows_.size(); }

  // The table's lines without line ends.
  std::vector<std::string> Lines() const;

 private:
  std::string Format(const std::vector<std::string> &Cells,
                     const std::vector<size_t> &Widths) const;

  std::vector<Column> Columns_;
  std::vector<std::vector<std::string>> Rows_;
};

}  // namespace sim::common
