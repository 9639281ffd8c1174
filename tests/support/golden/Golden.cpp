// Golden files: the comparison and the refresh.
#include "Golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string_view>

namespace test_golden {
namespace {

constexpr char kRefreshVariable[] = "RAIDCFG_UPDATE_GOLDEN";

std::optional<std::string> ReadFile(const std::filesystem::path &Path) {
  std::ifstream In(Path, std::ios::binary);
  if (!In) {
    return std::nullopt;
  }
  std::ostringstream Text;
  Text << In.rdbuf();
  return Text.str();
}

// A line with its carriage return and tabs shown, so that a difference in
// line ends or blanks is seen.
std::string Visible(std::string_view Line) {
  std::string Text;
  for (const char Char : Line) {
    if (Char == '\r') {
      Text += "\\r";
    } else if (Char == '\t') {
      Text += "\\t";
    } else {
      Text += Char;
    }
  }
  return Text;
}

// The line of Text that starts at Start, without its line feed.
std::string LineAt(const std::string &Text, size_t Start) {
  if (Start >= Text.size()) {
    return "<end of text>";
  }
  const size_t End = Text.find('\n', Start);
  return Visible(std::string_view(Text).substr(
      Start, End == std::string::npos ? std::string::npos : End - Start));
}

// The first line on which Golden and Actual differ, both ways.
std::string FirstDifference(const std::string &Golden,
                            const std::string &Actual) {
  size_t Line = 1;
  size_t Start = 0;
  for (size_t At = 0; At < Golden.size() && At < Actual.size() &&
                      Golden[At] == Actual[At];
       At++) {
    if (Golden[At] == '\n') {
      Line++;
      Start = At + 1;
    }
  }
  return "line " + std::to_string(Line) + "\n  golden: " +
         LineAt(Golden, Start) + "\n  actual: " + LineAt(Actual, Start);
}

// Whether the environment asks for golden files to be rewritten.
bool Refreshing() {
  const char *Value = std::getenv(kRefreshVariable);
  return Value != nullptr && std::string_view(Value) == "1";
}

}  // namespace

void ExpectMatches(const std::filesystem::path &Path,
                   const std::string &Actual) {
  const std::optional<std::string> Golden = ReadFile(Path);
  if (Golden == Actual) {
    return;
  }
  if (Refreshing()) {
    std::ofstream Out(Path, std::ios::binary | std::ios::trunc);
    Out << Actual;
    Out.close();
    if (!Out) {
      ADD_FAILURE() << "cannot write golden file " << Path.string();
      return;
    }
    std::cout << "[ GOLDEN   ] rewrote " << Path.string() << std::endl;
    return;
  }
  if (!Golden) {
    ADD_FAILURE() << "no golden file " << Path.string() << " ("
                  << kRefreshVariable << "=1 writes it)";
    return;
  }
  ADD_FAILURE() << Path.string() << " differs at "
                << FirstDifference(*Golden, Actual) << "\n("
                << kRefreshVariable << "=1 rewrites it)";
}

}  // namespace test_golden
