// A virtual tool's printed report, written line by line. Every line ends
// in CRLF, as the UEFI builds of the vendor tools print (a blank line is
// "\r\n"). Each tool puts its own header and blocks on top of this.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sim/common/TextTable.h"

namespace sim::common {

class Report {
 public:
  void Line(std::string_view Text = {});
  void Lines(const std::vector<std::string> &Texts);
  // Width copies of Mark: a "-----" ruler, a "=====" underline.
  void Ruler(char Mark, size_t Width);
  // Key, padded with blanks to KeyWidth, then Separator and Value: storcli's
  // "Status = Success" is ("Status", " = ", "Success"); arcconf's aligned
  // "   Controller Status        : Optimal" pads the indented key.
  void KeyValue(std::string_view Key, std::string_view Separator,
                std::string_view Value, size_t KeyWidth = 0);
  void Table(const TextTable &Table) { Lines(Table.Lines()); }

  const std::string &Text() const { return Text_; }

 private:
  std::string Text_;
};

}  // namespace sim::common
