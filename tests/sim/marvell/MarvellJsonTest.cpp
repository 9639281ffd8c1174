// The M.2 adapter's scenario JSON: a dump loads back to the same state, and
// what the adapter could not hold is refused at its place.
#include <gtest/gtest.h>

#include "MarvellTestSupport.h"
#include "sim/common/JsonFields.h"

namespace sim::marvell::test {
namespace {

using nlohmann::json;

TEST(MarvellJsonTest, DumpLoadsBackToTheSameState) {
  for (const json &Adapter : {TwoReadyDrives(), Mirrored()}) {
    json Dump = AdapterToJson(AdapterFromJson(Adapter));
    EXPECT_EQ(AdapterToJson(AdapterFromJson(Dump)), Dump);
  }
  json Empty = TwoReadyDrives();
  Empty["maxDisks"] = nullptr;
  EXPECT_TRUE(AdapterToJson(AdapterFromJson(Empty))["maxDisks"].is_null());
}

TEST(MarvellJsonTest, RefusesWhatTheAdapterCannotHold) {
  struct Case {
    std::function<void(json &)> Edit;
    const char *Message;
  };
  const Case Cases[] = {
      {[](json &A) { A["drives"][1]["size"] = "240 GB"; },
       "drives[1].size: \"240 GB\" is not a figure with a unit letter K, M, "
       "G or T"},
      {[](json &A) { A["drives"][1]["id"] = 0; },
       "drives[1]: drive id 0 is given twice"},
      {[](json &A) { A["drives"][0]["type"] = "SAS"; },
       "drives[0]: unknown type \"SAS\""},
      {[](json &A) { A["volumes"][0]["level"] = 5; },
       "volumes[0].level: an M.2 adapter holds RAID 0 or RAID 1"},
      {[](json &A) { A["volumes"][0]["drives"][1] = 7; },
       "volumes[0].drives[1]: no drive 7"},
      {[](json &A) { A["volumes"][0]["colour"] = "red"; }, "colour"},
      {[](json &A) {
         for (int Id = 2; Id < 5; Id++) {
           A["drives"].push_back({{"id", Id}});
         }
       },
       "drives: an M.2 adapter has at most 4 drives"},
  };
  for (const Case &C : Cases) {
    json Adapter = Mirrored();
    C.Edit(Adapter);
    try {
      (void)AdapterFromJson(Adapter);
      ADD_FAILURE() << "accepted: " << C.Message;
    } catch (const common::ScenarioError &Error) {
      EXPECT_NE(std::string(Error.what()).find(C.Message), std::string::npos)
          << Error.what();
    }
  }
}

}  // namespace
}  // namespace sim::marvell::test
