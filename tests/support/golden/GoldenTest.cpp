// The golden-file comparison: what a difference reports, and what the
// refresh mode writes and what it leaves alone.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>

#include "Golden.h"

namespace {

namespace fs = std::filesystem;

struct GoldenCase {
  const char *Name;
  std::optional<std::string> Golden;  // the file before; none when missing
  std::string Actual;
  bool Refresh;
  const char *Failure;  // part of the failure message; none when passing
  std::optional<std::string> After;  // the file after
};

class GoldenTest : public ::testing::TestWithParam<GoldenCase> {
 protected:
  void SetUp() override {
    if (const char *Value = std::getenv(kVariable)) {
      Saved_ = Value;
    }
    Path_ = fs::path(::testing::TempDir()) /
            (std::string("golden-") + GetParam().Name + ".txt");
    fs::remove(Path_);
  }
  void TearDown() override {
    fs::remove(Path_);
    if (Saved_) {
      setenv(kVariable, Saved_->c_str(), 1);
    } else {
      unsetenv(kVariable);
    }
  }
  std::optional<std::string> File() const {
    std::ifstream In(Path_, std::ios::binary);
    if (!In) {
      return std::nullopt;
    }
    std::ostringstream Text;
    Text << In.rdbuf();
    return Text.str();
  }

  static constexpr char kVariable[] = "RAIDCFG_UPDATE_GOLDEN";
  std::optional<std::string> Saved_;
  fs::path Path_;
};

TEST_P(GoldenTest, ComparesOrRefreshes) {
  const GoldenCase &Case = GetParam();
  if (Case.Golden) {
    std::ofstream(Path_, std::ios::binary) << *Case.Golden;
  }
  // An old time stamp shows whether the file was written again.
  const auto Old = fs::file_time_type::clock::now() - std::chrono::hours(1);
  if (Case.Golden) {
    fs::last_write_time(Path_, Old);
  }
  setenv(kVariable, Case.Refresh ? "1" : "0", 1);
  ::testing::TestPartResultArray Results;
  {
    ::testing::ScopedFakeTestPartResultReporter Reporter(
        ::testing::ScopedFakeTestPartResultReporter::
            INTERCEPT_ONLY_CURRENT_THREAD,
        &Results);
    test_golden::ExpectMatches(Path_, Case.Actual);
  }
  if (Case.Failure == nullptr) {
    EXPECT_EQ(Results.size(), 0);
  } else {
    ASSERT_EQ(Results.size(), 1);
    EXPECT_TRUE(Results.GetTestPartResult(0).nonfatally_failed());
    EXPECT_NE(std::string(Results.GetTestPartResult(0).message())
                  .find(Case.Failure),
              std::string::npos)
        << Results.GetTestPartResult(0).message();
  }
  EXPECT_EQ(File(), Case.After);
  if (Case.Golden && Case.Golden == Case.After) {
    EXPECT_EQ(fs::last_write_time(Path_), Old) << "rewritten";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, GoldenTest,
    ::testing::Values(
        GoldenCase{"Equal", "a\r\nb\r\n", "a\r\nb\r\n", false, nullptr,
                   "a\r\nb\r\n"},
        GoldenCase{"DiffersOnALine", "a\nb\nc\n", "a\nB\nc\n", false,
                   "differs at line 2\n  golden: b\n  actual: B\n",
                   "a\nb\nc\n"},
        GoldenCase{"DiffersInTheLineEnd", "a\r\n", "a\n", false,
                   "line 1\n  golden: a\\r\n  actual: a\n", "a\r\n"},
        GoldenCase{"Longer", "a\n", "a\nb\n", false,
                   "line 2\n  golden: <end of text>\n  actual: b\n", "a\n"},
        GoldenCase{"Missing", std::nullopt, "a\n", false,
                   "no golden file", std::nullopt},
        GoldenCase{"RefreshRewritesADifference", "old\n", "new\n", true,
                   nullptr, "new\n"},
        GoldenCase{"RefreshWritesAMissingFile", std::nullopt, "new\n", true,
                   nullptr, "new\n"},
        GoldenCase{"RefreshLeavesAnEqualFileAlone", "same\n", "same\n", true,
                   nullptr, "same\n"},
        GoldenCase{"ZeroDoesNotRefresh", "old\n", "new\n", false, "line 1",
                   "old\n"}),
    [](const auto &Info) { return std::string(Info.param.Name); });

}  // namespace
