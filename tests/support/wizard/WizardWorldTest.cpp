// The wizard world's own checks: a server named by its scenario file, and
// the comparison that lets a change touch only the parts a test names.
#include <gtest/gtest-spi.h>

#include "AdapterStates.h"
#include "WizardWorld.h"

namespace wizard_test {
namespace {

using nlohmann::json;

// The failures Check adds, without failing the test around it.
template <typename Check>
std::vector<std::string> FailuresOf(Check &&Run) {
  ::testing::TestPartResultArray Results;
  {
    ::testing::ScopedFakeTestPartResultReporter Reporter(
        ::testing::ScopedFakeTestPartResultReporter::
            INTERCEPT_ONLY_CURRENT_THREAD,
        &Results);
    Run();
  }
  std::vector<std::string> Messages;
  for (int Index = 0; Index < Results.size(); Index++) {
    Messages.push_back(Results.GetTestPartResult(Index).message());
  }
  return Messages;
}

json TwoAdapters() {
  const json Drives = {{{"address", "252:0"}, {"state", "UGood"}},
                       {{"address", "252:1"}, {"state", "UGood"}}};
  return {{"megaraid",
           {{{"drives", Drives}, {"driveGroups", json::array()}},
            {{"drives", Drives}, {"driveGroups", json::array()}}}}};
}

struct PartsCase {
  const char *Name;
  std::vector<std::string> Changeable;
  const char *Changed;  // a JSON pointer into the state
  bool Allowed;
};

class PartsTest : public ::testing::TestWithParam<PartsCase> {};

TEST_P(PartsTest, OnlyTheNamedPartsMayChange) {
  const PartsCase &Case = GetParam();
  const json Before = TwoAdapters();
  json After = Before;
  After[json::json_pointer(Case.Changed)] = "changed";
  const std::vector<std::string> Failures =
      FailuresOf([&] { ExpectSameBut(Before, After, Case.Changeable); });
  if (Case.Allowed) {
    EXPECT_TRUE(Failures.empty()) << Failures.front();
  } else {
    ASSERT_EQ(Failures.size(), 1u);
    // The difference is shown with its new value.
    EXPECT_NE(Failures[0].find("\"changed\""), std::string::npos)
        << Failures[0];
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, PartsTest,
    ::testing::Values(
        PartsCase{"Named", {"/megaraid/0/driveGroups"},
                  "/megaraid/0/driveGroups", true},
        PartsCase{"Elsewhere", {"/megaraid/0/driveGroups"},
                  "/megaraid/0/drives/1/state", false},
        PartsCase{"OtherAdapter", {"/megaraid/0/driveGroups"},
                  "/megaraid/1/driveGroups", false},
        PartsCase{"EveryElement", {"/megaraid/0/drives/*/state"},
                  "/megaraid/0/drives/1/state", true},
        PartsCase{"EveryElementOnlyThatMember", {"/megaraid/0/drives/*/state"},
                  "/megaraid/0/drives/1/address", false},
        PartsCase{"EveryAdapter", {"/megaraid/*/driveGroups"},
                  "/megaraid/1/driveGroups", true},
        PartsCase{"AnAddedMember", {"/megaraid/0/driveGroups"},
                  "/megaraid/0/name", false},
        PartsCase{"AnAddedAdapter", {"/megaraid/*/driveGroups"},
                  "/megaraid/2", false},
        PartsCase{"AnotherFamily", {"/megaraid"},
                  "/microchip", false},
        PartsCase{"NothingNamed", {},
                  "/megaraid/0/drives/0/state", false}),
    [](const auto &Info) { return std::string(Info.param.Name); });

class WizardWorldTest : public WizardWorld {};

// A scenario named by its file; a change made on the adapter behind the
// module's back is seen unless the test names it.
TEST_F(WizardWorldTest, NamedScenarioAndAChangeBehindTheModulesBack) {
  StartScenario("megaraid-six-sas.json");
  ASSERT_EQ(AdapterStates()["megaraid"].size(), 1u);
  EXPECT_EQ(AdapterStates()["megaraid"][0]["drives"][0]["state"], "UGood");
  ASSERT_TRUE(Server_->Adapters().Run("storcli.efi /c0/e252/s0 set jbod"));
  const json Now = ExpectChangedOnly({"/megaraid/0/drives/0/state"});
  EXPECT_EQ(Now["megaraid"][0]["drives"][0]["state"], "JBOD");
  EXPECT_EQ(FailuresOf([&] { (void)ExpectChangedOnly({}); }).size(), 1u);
}

}  // namespace
}  // namespace wizard_test
