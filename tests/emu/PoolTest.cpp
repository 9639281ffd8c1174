// The pool's ledger: leak reports, invalid frees and injected failures, as
// seen through the boot services a module calls.
#include <Library/MemoryAllocationLib.h>

#include <vector>

#include "EmuTestSupport.h"

namespace emu_test {
namespace {

using emu::PoolEventKind;

class PoolTest : public EmuTest {
 protected:
  VOID *Allocate(UINTN Size) {
    VOID *Buffer = nullptr;
    EXPECT_EQ(EFI_SUCCESS,
              gBS->AllocatePool(EfiBootServicesData, Size, &Buffer));
    return Buffer;
  }
};

TEST_F(PoolTest, LeakReportListsOutstandingAllocationsInSequenceOrder) {
  VOID *First = Allocate(24);
  VOID *Second = Allocate(100);
  VOID *Third = Allocate(7);
  ASSERT_EQ(EFI_SUCCESS, gBS->FreePool(Second));

  const auto Outstanding = Fw().Memory().Outstanding();
  ASSERT_EQ(2u, Outstanding.size());
  EXPECT_EQ(1u, Outstanding[0].Sequence);
  EXPECT_EQ(24u, Outstanding[0].Size);
  EXPECT_EQ(First, Outstanding[0].Address);
  EXPECT_EQ(3u, Outstanding[1].Sequence);
  EXPECT_EQ(7u, Outstanding[1].Size);
  EXPECT_EQ(Third, Outstanding[1].Address);
  const std::string Report = Fw().Memory().LeakReport();
  EXPECT_NE(std::string::npos, Report.find("2 allocation(s) outstanding"));
  EXPECT_NE(std::string::npos, Report.find("#1: 24 bytes"));
  EXPECT_NE(std::string::npos, Report.find("#3: 7 bytes"));
  EXPECT_EQ(31u, Fw().Memory().Counters().BytesOutstanding);
  EXPECT_EQ(131u, Fw().Memory().Counters().PeakBytesOutstanding);

  gBS->FreePool(First);
  gBS->FreePool(Third);
  EXPECT_EQ("", Fw().Memory().LeakReport());
}

TEST_F(PoolTest, NthAllocationFailsOnceCountingFromWhenArmed) {
  VOID *Before = Allocate(8);
  Fw().Memory().FailNthAllocation(2);
  VOID *A = AllocatePool(8);
  VOID *B = AllocatePool(8);
  VOID *C = AllocatePool(8);
  EXPECT_NE(nullptr, A);
  EXPECT_EQ(nullptr, B);
  EXPECT_NE(nullptr, C);
  const auto Failures = Fw().Memory().EventsOf(PoolEventKind::kInjectedFailure);
  ASSERT_EQ(1u, Failures.size());
  EXPECT_EQ(3u, Failures[0].Sequence);  // the request after Before and A
  EXPECT_EQ(1u, Fw().Memory().Counters().FailedAllocations);
  FreePool(Before);
  FreePool(A);
  FreePool(C);
}

TEST_F(PoolTest, EveryAllocationFromTheNthOnFailsUntilCleared) {
  Fw().Memory().FailAllocationsFrom(2);
  VOID *A = AllocatePool(1);
  EXPECT_NE(nullptr, A);
  for (int I = 0; I < 3; I++) {
    EXPECT_EQ(nullptr, AllocatePool(1));
  }
  VOID *Raw = reinterpret_cast<VOID *>(1);
  EXPECT_EQ(EFI_OUT_OF_RESOURCES,
            gBS->AllocatePool(EfiBootServicesData, 4, &Raw));
  EXPECT_EQ(nullptr, Raw);
  Fw().Memory().ClearFaults();
  VOID *After = AllocatePool(1);
  EXPECT_NE(nullptr, After);
  EXPECT_EQ(4u, Fw().Memory().Counters().FailedAllocations);
  FreePool(A);
  FreePool(After);
}

TEST_F(PoolTest, DoubleFreeIsReportedAndRefused) {
  VOID *Buffer = Allocate(16);
  EXPECT_EQ(EFI_SUCCESS, gBS->FreePool(Buffer));
  EXPECT_EQ(EFI_INVALID_PARAMETER, gBS->FreePool(Buffer));
  const auto Events = Fw().Memory().Events();
  ASSERT_EQ(1u, Events.size());
  EXPECT_EQ(PoolEventKind::kDoubleFree, Events[0].Kind);
  EXPECT_EQ(Buffer, Events[0].Address);
  EXPECT_NE(std::string::npos,
            Fw().Memory().EventReport().find("double free"));
  EXPECT_EQ(1u, Fw().Memory().Counters().InvalidFrees);
}

TEST_F(PoolTest, ForeignAndInteriorPointersAreReportedNotFreed) {
  int OnStack = 0;
  VOID *Buffer = Allocate(16);
  EXPECT_EQ(EFI_INVALID_PARAMETER, gBS->FreePool(&OnStack));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->FreePool(static_cast<UINT8 *>(Buffer) + 4));
  EXPECT_EQ(EFI_INVALID_PARAMETER, gBS->FreePool(nullptr));
  const auto Foreign = Fw().Memory().EventsOf(PoolEventKind::kForeignPointer);
  ASSERT_EQ(2u, Foreign.size());
  EXPECT_EQ(&OnStack, Foreign[0].Address);
  EXPECT_EQ(1u, Fw().Memory().EventsOf(PoolEventKind::kNullPointer).size());
  // The buffer itself is still live and frees normally.
  EXPECT_TRUE(Fw().Memory().IsLive(Buffer));
  EXPECT_EQ(EFI_SUCCESS, gBS->FreePool(Buffer));
}

// Thousands of blocks make the ledger grow several times: the records of
// live and released blocks survive each growth.
TEST_F(PoolTest, LedgerKeepsItsRecordsAcrossGrowth) {
  constexpr UINTN kBlocks = 5000;
  std::vector<VOID *> Blocks;
  for (UINTN Index = 0; Index < kBlocks; Index++) {
    Blocks.push_back(Allocate(Index % 61 + 1));
  }
  for (UINTN Index = 0; Index < kBlocks; Index += 2) {
    ASSERT_EQ(EFI_SUCCESS, gBS->FreePool(Blocks[Index]));
  }
  const auto Outstanding = Fw().Memory().Outstanding();
  ASSERT_EQ(kBlocks / 2, Outstanding.size());
  for (UINTN Index = 0; Index < Outstanding.size(); Index++) {
    EXPECT_EQ(2 * Index + 2, Outstanding[Index].Sequence);
    EXPECT_EQ(Blocks[2 * Index + 1], Outstanding[Index].Address);
    EXPECT_EQ((2 * Index + 1) % 61 + 1, Fw().Memory().SizeOf(Blocks[2 * Index + 1]));
  }
  EXPECT_EQ(EFI_INVALID_PARAMETER, gBS->FreePool(Blocks[0]));
  EXPECT_EQ(1u, Fw().Memory().EventsOf(PoolEventKind::kDoubleFree).size());
  for (UINTN Index = 1; Index < kBlocks; Index += 2) {
    ASSERT_EQ(EFI_SUCCESS, gBS->FreePool(Blocks[Index]));
  }
  EXPECT_EQ("", Fw().Memory().LeakReport());
  EXPECT_EQ(0u, Fw().Memory().Counters().BytesOutstanding);
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
// Each block is its own heap allocation of exactly its size, so a write one
// byte past a pool block is caught where it happens.
TEST_F(PoolTest, OverrunOfAPoolBlockIsCaughtBySanitizer) {
  auto *Buffer = static_cast<volatile UINT8 *>(Allocate(24));
  EXPECT_DEATH(Buffer[24] = 1, "heap-buffer-overflow");
  FreePool(const_cast<UINT8 *>(Buffer));
}
#endif
#endif

TEST_F(PoolTest, FreshPoolMemoryIsNotZeroed) {
  auto *Buffer = static_cast<UINT8 *>(Allocate(4));
  EXPECT_EQ(0xAF, Buffer[0]);
  EXPECT_EQ(0xAF, Buffer[3]);
  auto *Zeroed = static_cast<UINT8 *>(AllocateZeroPool(4));
  EXPECT_EQ(0, Zeroed[0] | Zeroed[1] | Zeroed[2] | Zeroed[3]);
  FreePool(Buffer);
  FreePool(Zeroed);
}

TEST_F(PoolTest, InvalidOrHugeRequestsFailCleanly) {
  VOID *Buffer = nullptr;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->AllocatePool(EfiMaxMemoryType, 4, &Buffer));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            gBS->AllocatePool(EfiBootServicesData, 4, nullptr));
  EXPECT_EQ(EFI_OUT_OF_RESOURCES,
            gBS->AllocatePool(EfiBootServicesData, ~UINTN{0}, &Buffer));
  EXPECT_EQ(nullptr, Buffer);
  EXPECT_TRUE(Fw().Memory().Outstanding().empty());
}

}  // namespace
}  // namespace emu_test
