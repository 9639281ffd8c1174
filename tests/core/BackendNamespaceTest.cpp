// Two backends define readers of the same name and signature; each lives in
// its own namespace and target, so both link into one image and a trace's
// "%a" still names the bare function.
#include <gtest/gtest.h>

#include <cstring>

#include "LsiBackend.h"
#include "SecondBackend/SecondBackend.h"

namespace {

TEST(BackendNamespaceTest, TwoBackendsDefineTheSameReaderName) {
  UINT32 ErrorCode = 0xFFFFFFFF;
  // The MegaRAID reader refuses a missing output before it reads anything.
  EXPECT_EQ(lsi::ParseControllerShow(nullptr, nullptr, &ErrorCode),
            EFI_ABORTED);
  EXPECT_EQ(second_backend::ParseControllerShow(nullptr, nullptr, &ErrorCode),
            EFI_UNSUPPORTED);
  EXPECT_EQ(ErrorCode, 0u);
  ASSERT_NE(second_backend::gLastFunctionName, nullptr);
  EXPECT_STREQ(second_backend::gLastFunctionName, "ParseControllerShow");
}

}  // namespace
