// What the emulator's pool adds to each allocation: an allocation and its
// free through the pool's ledger, against plain malloc and free of the same
// size, with no other blocks live and with a few thousand live beside it
// (a read model of a large adapter keeps that many).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "emu/Pool.h"

namespace {

constexpr UINTN kBlockSize = 64;

// Args: the number of other blocks live during the pairs.
void PoolAllocateFree(benchmark::State &State) {
  emu::Pool Pool;
  std::vector<VOID *> Others(static_cast<size_t>(State.range(0)));
  for (auto &Other : Others) {
    if (EFI_ERROR(Pool.Allocate(EfiBootServicesData, kBlockSize, &Other))) {
      State.SkipWithError("setup allocation failed");
      return;
    }
  }
  for (auto _ : State) {
    VOID *Buffer = nullptr;
    if (EFI_ERROR(Pool.Allocate(EfiBootServicesData, kBlockSize, &Buffer)) ||
        EFI_ERROR(Pool.Free(Buffer))) {
      State.SkipWithError("allocation or free failed");
      break;
    }
    benchmark::DoNotOptimize(Buffer);
  }
  for (VOID *Other : Others) {
    (void)Pool.Free(Other);
  }
}
BENCHMARK(PoolAllocateFree)->Arg(0)->Arg(4096);

// The floor: the C heap alone, the same size and the same live blocks.
void MallocFree(benchmark::State &State) {
  std::vector<VOID *> Others(static_cast<size_t>(State.range(0)));
  for (auto &Other : Others) {
    Other = std::malloc(kBlockSize);
  }
  for (auto _ : State) {
    VOID *Buffer = std::malloc(kBlockSize);
    benchmark::DoNotOptimize(Buffer);
    std::free(Buffer);
  }
  for (VOID *Other : Others) {
    std::free(Other);
  }
}
BENCHMARK(MallocFree)->Arg(0)->Arg(4096);

}  // namespace
