// A test-local pool: boot services whose AllocatePool/FreePool use malloc
// and free, count what is outstanding and can be told to fail. Installing
// one sets gBS for the scope; the previous value comes back afterwards.
#pragma once

#include <Uefi.h>

#include <cstddef>

namespace test {

class ScopedTestPool {
 public:
  ScopedTestPool();
  ~ScopedTestPool();
  ScopedTestPool(const ScopedTestPool &) = delete;
  ScopedTestPool &operator=(const ScopedTestPool &) = delete;

  // Allocations made and not yet freed.
  std::size_t Outstanding() const;
  // Successful allocations since the pool was installed.
  std::size_t Allocations() const;
  // Lets the next Count allocations succeed and fails every later one;
  // a negative count removes the limit.
  void FailAfter(long Count);

 private:
  EFI_BOOT_SERVICES Services_{};
  EFI_BOOT_SERVICES *Previous_ = nullptr;
};

}  // namespace test
