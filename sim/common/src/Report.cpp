// Lines of a virtual tool's report.
#include "sim/common/Report.h"

namespace sim::common {

void Report::Line(std::string_view Text) {
  Text_ += Text;
  Text_ += "\r\n";
}

void Report::Lines(const std::vector<std::string> &Texts) {
  for (const auto &Text : Texts) {
    Line(Text);
  }
}

void Report::Ruler(char Mark, size_t Width) { Line(std::string(Width, Mark)); }

void Report::KeyValue(std::string_view Key, std::string_view Separator,
                      std::string_view Value, size_t KeyWidth) {
  std::string Text(Key);
  if (Text.size() < KeyWidth) {
    Text.append(KeyWidth - Text.size(), ' ');
  }
  Text += Separator;
  Text += Value;
  Line(Text);
}

}  // namespace sim::common
