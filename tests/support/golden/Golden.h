// Golden files: a test's whole output compared with a file kept beside the
// test. RAIDCFG_UPDATE_GOLDEN=1 in the environment rewrites each golden
// file that differs instead, and names it on the test's output.
#pragma once

#include <filesystem>
#include <string>

namespace test_golden {

// Compares Actual with the golden file Path. A difference fails the test
// with the first line that differs; a missing file fails it too. When
// refreshing, a differing or missing file is written with Actual and the
// test goes on; an equal file is left untouched.
void ExpectMatches(const std::filesystem::path &Path, const std::string &Actual);

}  // namespace test_golden

#ifdef RAIDCFG_GOLDEN_DIR
// The same for the file Name of the golden/ folder beside the test's
// sources (target_golden_files() in the test's CMakeLists.txt).
inline void ExpectGolden(const std::string &Name, const std::string &Actual) {
  test_golden::ExpectMatches(std::filesystem::path(RAIDCFG_GOLDEN_DIR) / Name,
                             Actual);
}
#endif
