// Trace comparisons mask the time-stamp counter the module prints.
#include "EmuTestSupport.h"
#include "emu/VirtualClock.h"

namespace emu_test {
namespace {

TEST(MaskTimeStampsTest, MasksOnlyTheDigitsAfterTheLabel) {
  const struct {
    const char *In;
    const char *Out;
  } Cases[] = {
      {"RAID: [X] B TimeStamp: 00000012abcdef01\n",
       "RAID: [X] B TimeStamp: <tsc>\n"},
      {"A TimeStamp: 1f TimeStamp: 2\n", "A TimeStamp: <tsc> TimeStamp: <tsc>\n"},
      {"TimeStamp: none\n", "TimeStamp: none\n"},
      {"no stamp\n", "no stamp\n"},
  };
  for (const auto &Case : Cases) {
    EXPECT_EQ(Case.Out, emu::MaskTimeStamps(Case.In)) << Case.In;
  }
}

}  // namespace
}  // namespace emu_test
