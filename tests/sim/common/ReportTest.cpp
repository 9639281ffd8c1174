// The report writer: CRLF line ends, aligned key/value lines in the tools'
// three shapes, rulers and tables.
#include <gtest/gtest.h>

#include "sim/common/Report.h"

namespace sim::common {
namespace {

TEST(ReportTest, EveryLineEndsInCrLf) {
  Report Out;
  Out.Line("a");
  Out.Line();
  Out.Lines({"b", ""});
  Out.Ruler('=', 3);
  EXPECT_EQ(Out.Text(), "a\r\n\r\nb\r\n\r\n===\r\n");
}

TEST(ReportTest, KeyValueLinesOfEachTool) {
  struct Case {
    const char *Key, *Separator, *Value;
    size_t Width;
    const char *Line;
  };
  const Case kCases[] = {
      {"Status", " = ", "Success", 0, "Status = Success\r\n"},
      {"   Controller Status", ": ", "Optimal", 26,
       "   Controller Status      : Optimal\r\n"},
      {"Adapter ID:", "", "0", 15, "Adapter ID:    0\r\n"},
      {"A key wider than its column", " : ", "x", 4,
       "A key wider than its column : x\r\n"},
      {"Name", " = ", "", 0, "Name = \r\n"},
  };
  for (const Case &C : kCases) {
    Report Out;
    Out.KeyValue(C.Key, C.Separator, C.Value, C.Width);
    EXPECT_EQ(Out.Text(), C.Line) << C.Key;
  }
}

TEST(ReportTest, TableColumnsTakeTheWidestCell) {
  TextTable Table({{"ID", true}, {"Name"}});
  Table.AddRow({"7", "a-long-name", "dropped"});
  Table.AddRow({"12"});
  EXPECT_EQ(Table.RowCount(), 2u);
  Report Out;
  Out.Table(Table);
  EXPECT_EQ(Out.Text(),
            "---------------\r\n"
            "ID Name        \r\n"
            "---------------\r\n"
            " 7 a-long-name \r\n"
            "12             \r\n"
            "---------------\r\n");
}

}  // namespace
}  // namespace sim::common
