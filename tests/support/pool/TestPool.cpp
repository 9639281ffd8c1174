#include "TestPool.h"

#include <Library/UefiBootServicesTableLib.h>

#include <cstdlib>

namespace test {
namespace {

std::size_t gOutstanding = 0;
std::size_t gAllocations = 0;
long gBudget = -1;

EFI_STATUS EFIAPI TestAllocatePool(EFI_MEMORY_TYPE, UINTN Size,
                                   VOID **Buffer) {
  if (Buffer == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (gBudget == 0) {
    *Buffer = nullptr;
    return EFI_OUT_OF_RESOURCES;
  }
  *Buffer = std::malloc(Size == 0 ? 1 : Size);
  if (*Buffer == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  if (gBudget > 0) {
    gBudget--;
  }
  gOutstanding++;
  gAllocations++;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI TestFreePool(VOID *Buffer) {
  if (Buffer == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  std::free(Buffer);
  gOutstanding--;
  return EFI_SUCCESS;
}

}  // namespace

ScopedTestPool::ScopedTestPool() : Previous_(gBS) {
  gOutstanding = 0;
  gAllocations = 0;
  gBudget = -1;
  Services_.AllocatePool = TestAllocatePool;
  Services_.FreePool = TestFreePool;
  gBS = &Services_;
}

ScopedTestPool::~ScopedTestPool() { gBS = Previous_; }

std::size_t ScopedTestPool::Outstanding() const { return gOutstanding; }
std::size_t ScopedTestPool::Allocations() const { return gAllocations; }
void ScopedTestPool::FailAfter(long Count) { gBudget = Count; }

}  // namespace test
