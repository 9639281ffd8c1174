// Controller connections as a scripted log, and virtual time.
#include <Protocol/PciIo.h>

#include "EmuTestSupport.h"
#include "emu/VirtualClock.h"

namespace emu_test {
namespace {

using emu::ControllerCallKind;

class ControllerAndClockTest : public EmuTest {
 protected:
  EFI_HANDLE MakeHandle() {
    EFI_HANDLE Handle = nullptr;
    Fw().Handles().Install(&Handle, gEfiPciIoProtocolGuid, &Dummy);
    return Handle;
  }
  int Dummy = 0;
};

TEST_F(ControllerAndClockTest, ReconnectSequenceIsRecordedWithResults) {
  EFI_HANDLE Controller = MakeHandle();
  Fw().Controllers().QueueDisconnectResult(EFI_DEVICE_ERROR);
  Fw().Controllers().SetConnectResult(EFI_NOT_FOUND);

  EXPECT_EQ(EFI_DEVICE_ERROR,
            gBS->DisconnectController(Controller, nullptr, nullptr));
  EXPECT_EQ(EFI_NOT_FOUND,
            gBS->ConnectController(Controller, nullptr, nullptr, TRUE));
  EXPECT_EQ(EFI_SUCCESS,
            gBS->DisconnectController(Controller, nullptr, nullptr));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->ConnectController(nullptr, nullptr, nullptr, FALSE));

  const auto &Calls = Fw().Controllers().Calls();
  ASSERT_EQ(4u, Calls.size());
  EXPECT_EQ(ControllerCallKind::kDisconnect, Calls[0].Kind);
  EXPECT_EQ(Controller, Calls[0].Controller);
  EXPECT_EQ(EFI_DEVICE_ERROR, Calls[0].Result);
  EXPECT_EQ(ControllerCallKind::kConnect, Calls[1].Kind);
  EXPECT_TRUE(Calls[1].Recursive);
  EXPECT_EQ(EFI_NOT_FOUND, Calls[1].Result);
  EXPECT_EQ(EFI_SUCCESS, Calls[2].Result);
  EXPECT_FALSE(Calls[3].Recursive);
  EXPECT_EQ(EFI_INVALID_PARAMETER, Calls[3].Result);
}

TEST_F(ControllerAndClockTest, StallAdvancesVirtualTimeOnly) {
  gBS->Stall(1500);
  gBS->Stall(500);
  EXPECT_EQ(2000u, Fw().Clock().Microseconds());
  EXPECT_EQ(2u, Fw().Clock().StallCalls());
  EFI_TIME Time;
  ASSERT_EQ(EFI_SUCCESS, gRT->GetTime(&Time, nullptr));
  EXPECT_EQ(2024, Time.Year);
  EXPECT_EQ(0, Time.Second);
}

TEST_F(ControllerAndClockTest, CountersIncrease) {
  UINT64 First = 0, Second = 0;
  ASSERT_EQ(EFI_SUCCESS, gBS->GetNextMonotonicCount(&First));
  ASSERT_EQ(EFI_SUCCESS, gBS->GetNextMonotonicCount(&Second));
  EXPECT_EQ(First + 1, Second);
  EXPECT_EQ(EFI_INVALID_PARAMETER, gBS->GetNextMonotonicCount(nullptr));

  const UINT64 Tsc1 = Fw().Clock().TimeStampCounter();
  gBS->Stall(1);
  const UINT64 Tsc2 = Fw().Clock().TimeStampCounter();
  EXPECT_GT(Tsc2, Tsc1 + emu::VirtualClock::kTicksPerMicrosecond - 1);
}

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
