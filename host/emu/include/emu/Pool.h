// The boot-services pool: every allocation tracked by size and sequence
// number, so a test can list what is still outstanding, see double frees
// and foreign pointers, and make chosen allocations fail.
//
// Each block is its own C-heap allocation of exactly the size asked for, so
// AddressSanitizer sees an overrun of any pool block. The ledger beside the
// blocks is flat open-addressing tables keyed by address: an allocation and
// its free cost a few probes, never a node allocation of their own, and the
// live table stays as small as what is live.
#pragma once

#include <Uefi.h>

#include <string>
#include <vector>

namespace emu {

// One live allocation. Sequence is the number of the allocation request
// (1 for the first request since the pool was made, failed ones counted).
struct Allocation {
  UINT64 Sequence;
  UINTN Size;
  const VOID *Address;
  EFI_MEMORY_TYPE Type;
};

enum class PoolEventKind {
  kInjectedFailure,  // an allocation failed because a fault was armed
  kDoubleFree,       // FreePool of a buffer already returned
  kForeignPointer,   // FreePool of an address the pool never handed out
  kNullPointer,      // FreePool(NULL) at the boot-services level
};

struct PoolEvent {
  PoolEventKind Kind;
  const VOID *Address;  // the freed address; NULL for an injected failure
  UINT64 Sequence;      // the allocation request for an injected failure
};

struct PoolCounters {
  UINT64 Requests = 0;           // allocation requests, failed ones included
  UINT64 Allocations = 0;        // successful allocations
  UINT64 FailedAllocations = 0;  // injected or genuine failures
  UINT64 Frees = 0;              // successful frees
  UINT64 InvalidFrees = 0;       // double, foreign and NULL frees
  UINTN BytesOutstanding = 0;
  UINTN PeakBytesOutstanding = 0;
};

class Pool {
 public:
  Pool() = default;
  Pool(const Pool &) = delete;
  Pool &operator=(const Pool &) = delete;
  // Returns whatever is still outstanding to the C heap.
  ~Pool();

  // AllocatePool: a buffer of Size bytes filled with 0xAF (firmware does
  // not zero pool memory, and neither do we).
  EFI_STATUS Allocate(EFI_MEMORY_TYPE Type, UINTN Size, VOID **Buffer);
  // FreePool: EFI_INVALID_PARAMETER, and an event, for anything that is not
  // a live allocation.
  EFI_STATUS Free(VOID *Buffer);

  // Fault injection. Counting starts at the next request: 1 is the next.
  VOID FailNthAllocation(UINT64 N);
  VOID FailAllocationsFrom(UINT64 N);
  VOID ClearFaults();

  // Live allocations in sequence order.
  std::vector<Allocation> Outstanding() const;
  // How many allocations are live, without listing them (a fuzz target
  // checks this after every input).
  UINTN OutstandingCount() const { return LiveCount_; }
  // "N allocation(s) outstanding:" and one line per allocation; "" when
  // nothing is outstanding.
  std::string LeakReport() const;
  const std::vector<PoolEvent> &Events() const { return Events_; }
  // Events of the given kind only.
  std::vector<PoolEvent> EventsOf(PoolEventKind Kind) const;
  // One line per invalid free or injected failure; "" when none.
  std::string EventReport() const;
  VOID ClearEvents() { Events_.clear(); }
  const PoolCounters &Counters() const { return Counters_; }

  // Whether Address is the start of a live allocation, and its size.
  bool IsLive(const VOID *Address) const;
  UINTN SizeOf(const VOID *Address) const;

 private:
  // The ledger: two flat open-addressing tables keyed by address, live
  // blocks with their records and released addresses, so that a second
  // free is told from a foreign pointer. A free moves an address from the
  // first to the second; a released address handed out again is simply
  // live as well, the live table being asked first.
  struct LiveSlot {
    const VOID *Address = nullptr;  // nullptr: an empty slot
    UINT64 Sequence = 0;
    UINTN Size = 0;
    EFI_MEMORY_TYPE Type = EfiReservedMemoryType;
  };
  struct ReleasedSlot {
    const VOID *Address = nullptr;
  };

  bool FaultDue(UINT64 Request) const;
  // The live slot of Address, or nullptr.
  const LiveSlot *FindLive(const VOID *Address) const;
  VOID Remember(const VOID *Address);

  std::vector<LiveSlot> Live_;
  UINTN LiveCount_ = 0;
  std::vector<ReleasedSlot> Released_;
  UINTN ReleasedCount_ = 0;
  std::vector<PoolEvent> Events_;
  PoolCounters Counters_;
  UINT64 FailOnly_ = 0;  // request number that fails, 0: none
  UINT64 FailFrom_ = 0;  // first request number of a failing run, 0: none
};

const char *PoolEventName(PoolEventKind Kind);

}  // namespace emu
