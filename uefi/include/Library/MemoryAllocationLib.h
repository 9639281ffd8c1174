// Pool memory through the boot services (EfiBootServicesData). Every
// allocation may fail and return NULL; FreePool(NULL) does nothing.
#pragma once

#include <Uefi.h>

[[nodiscard]] VOID *AllocatePool(UINTN AllocationSize);
[[nodiscard]] VOID *AllocateZeroPool(UINTN AllocationSize);
[[nodiscard]] VOID *AllocateCopyPool(UINTN AllocationSize, const VOID *Buffer);
VOID FreePool(VOID *Buffer);

namespace uefi {

// Owns one pool buffer and frees it when the scope ends, so early returns on
// errors cannot leak. Release() hands the buffer on.
template <typename T>
class PoolPtr {
 public:
  PoolPtr() = default;
  explicit PoolPtr(T *Pointer) : Pointer_(Pointer) {}
  PoolPtr(const PoolPtr &) = delete;
  PoolPtr &operator=(const PoolPtr &) = delete;
  PoolPtr(PoolPtr &&Other) : Pointer_(Other.Release()) {}
  ~PoolPtr() { FreePool(Pointer_); }

  [[nodiscard]] T *Get() const { return Pointer_; }
  T *operator->() const { return Pointer_; }
  explicit operator bool() const { return Pointer_ != nullptr; }
  [[nodiscard]] T *Release() {
    T *Pointer = Pointer_;
    Pointer_ = nullptr;
    return Pointer;
  }
  VOID Reset(T *Pointer = nullptr) {
    FreePool(Pointer_);
    Pointer_ = Pointer;
  }

 private:
  T *Pointer_ = nullptr;
};

// A zeroed pool record of type T, or NULL.
template <typename T>
[[nodiscard]] T *AllocateRecord() {
  return static_cast<T *>(AllocateZeroPool(sizeof(T)));
}

}  // namespace uefi
