// Pool allocations on the C heap with a ledger beside them.
#include "emu/Pool.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace emu {
namespace {

// Larger requests fail like an exhausted pool rather than hitting the heap.
constexpr UINTN kLargestAllocation = UINTN{1} << 32;
constexpr unsigned char kFreshFill = 0xAF;
constexpr UINTN kFirstTableSize = 1024;
// Released addresses kept for telling double frees from foreign pointers;
// past this many they are forgotten at the next growth, so a fuzzer's
// long run does not grow the ledger without bound.
constexpr UINTN kReleasedKept = UINTN{1} << 20;

// Heap addresses are 16-byte aligned: the low bits carry nothing, and a
// multiply spreads the rest over the table.
UINTN SlotIndex(const VOID *Address, UINTN Mask) {
  const auto Bits = reinterpret_cast<std::uintptr_t>(Address) >> 4;
  return static_cast<UINTN>((Bits * UINT64{0x9E3779B97F4A7C15}) >> 32) & Mask;
}

}  // namespace

const char *PoolEventName(PoolEventKind Kind) {
  switch (Kind) {
    case PoolEventKind::kInjectedFailure:
      return "injected allocation failure";
    case PoolEventKind::kDoubleFree:
      return "double free";
    case PoolEventKind::kForeignPointer:
      return "free of a foreign pointer";
    case PoolEventKind::kNullPointer:
      return "free of NULL";
  }
  return "?";
}

Pool::~Pool() {
  for (const Slot &Entry : Slots_) {
    if (Entry.Live) {
      std::free(const_cast<VOID *>(Entry.Address));
    }
  }
}

Pool::Slot &Pool::Find(const VOID *Address) {
  const UINTN Mask = Slots_.size() - 1;
  UINTN Index = SlotIndex(Address, Mask);
  while (Slots_[Index].Address != nullptr && Slots_[Index].Address != Address) {
    Index = (Index + 1) & Mask;
  }
  return Slots_[Index];
}

const Pool::Slot *Pool::FindLive(const VOID *Address) const {
  if (Slots_.empty() || Address == nullptr) {
    return nullptr;
  }
  const Slot &Entry = const_cast<Pool *>(this)->Find(Address);
  return Entry.Live ? &Entry : nullptr;
}

VOID Pool::Reserve() {
  if (!Slots_.empty() && (Used_ + 1) * 4 <= Slots_.size() * 3) {
    return;
  }
  const bool KeepReleased = Used_ - LiveCount_ <= kReleasedKept;
  const UINTN Keep = KeepReleased ? Used_ : LiveCount_;
  UINTN Size = kFirstTableSize;
  while (Size < (Keep + 1) * 2) {
    Size *= 2;
  }
  std::vector<Slot> Old = std::move(Slots_);
  Slots_.assign(Size, Slot{});
  Used_ = 0;
  for (const Slot &Entry : Old) {
    if (Entry.Address != nullptr && (Entry.Live || KeepReleased)) {
      Find(Entry.Address) = Entry;
      Used_++;
    }
  }
}

bool Pool::FaultDue(UINT64 Request) const {
  return (FailOnly_ != 0 && Request == FailOnly_) ||
         (FailFrom_ != 0 && Request >= FailFrom_);
}

EFI_STATUS Pool::Allocate(EFI_MEMORY_TYPE Type, UINTN Size, VOID **Buffer) {
  if (Buffer == nullptr || Type >= EfiMaxMemoryType) {
    return EFI_INVALID_PARAMETER;
  }
  const UINT64 Request = ++Counters_.Requests;
  *Buffer = nullptr;
  if (FaultDue(Request)) {
    Counters_.FailedAllocations++;
    Events_.push_back({PoolEventKind::kInjectedFailure, nullptr, Request});
    return EFI_OUT_OF_RESOURCES;
  }
  VOID *Memory = Size <= kLargestAllocation ? std::malloc(Size == 0 ? 1 : Size)
                                            : nullptr;
  if (Memory == nullptr) {
    Counters_.FailedAllocations++;
    return EFI_OUT_OF_RESOURCES;
  }
  std::memset(Memory, kFreshFill, Size);
  Reserve();
  Slot &Entry = Find(Memory);
  Used_ += Entry.Address == nullptr ? 1 : 0;
  Entry = {Memory, Request, Size, Type, true};
  LiveCount_++;
  Counters_.Allocations++;
  Counters_.BytesOutstanding += Size;
  if (Counters_.BytesOutstanding > Counters_.PeakBytesOutstanding) {
    Counters_.PeakBytesOutstanding = Counters_.BytesOutstanding;
  }
  *Buffer = Memory;
  return EFI_SUCCESS;
}

EFI_STATUS Pool::Free(VOID *Buffer) {
  Slot *Entry = Slots_.empty() || Buffer == nullptr ? nullptr : &Find(Buffer);
  if (Entry == nullptr || !Entry->Live) {
    PoolEventKind Kind = PoolEventKind::kForeignPointer;
    if (Buffer == nullptr) {
      Kind = PoolEventKind::kNullPointer;
    } else if (Entry != nullptr && Entry->Address == Buffer) {
      Kind = PoolEventKind::kDoubleFree;
    }
    Counters_.InvalidFrees++;
    Events_.push_back({Kind, Buffer, 0});
    return EFI_INVALID_PARAMETER;
  }
  Counters_.BytesOutstanding -= Entry->Size;
  Counters_.Frees++;
  Entry->Live = false;
  LiveCount_--;
  std::free(Buffer);
  return EFI_SUCCESS;
}

VOID Pool::FailNthAllocation(UINT64 N) {
  FailOnly_ = N == 0 ? 0 : Counters_.Requests + N;
}

VOID Pool::FailAllocationsFrom(UINT64 N) {
  FailFrom_ = N == 0 ? 0 : Counters_.Requests + N;
}

VOID Pool::ClearFaults() {
  FailOnly_ = 0;
  FailFrom_ = 0;
}

std::vector<Allocation> Pool::Outstanding() const {
  std::vector<Allocation> Result;
  Result.reserve(LiveCount_);
  for (const Slot &Entry : Slots_) {
    if (Entry.Live) {
      Result.push_back({Entry.Sequence, Entry.Size, Entry.Address, Entry.Type});
    }
  }
  std::sort(Result.begin(), Result.end(),
            [](const Allocation &A, const Allocation &B) {
              return A.Sequence < B.Sequence;
            });
  return Result;
}

std::string Pool::LeakReport() const {
  const auto List = Outstanding();
  if (List.empty()) {
    return "";
  }
  std::ostringstream Out;
  Out << List.size() << " allocation(s) outstanding:\n";
  for (const auto &Record : List) {
    Out << "  #" << Record.Sequence << ": " << Record.Size << " bytes at "
        << Record.Address << "\n";
  }
  return Out.str();
}

std::vector<PoolEvent> Pool::EventsOf(PoolEventKind Kind) const {
  std::vector<PoolEvent> Result;
  for (const auto &Event : Events_) {
    if (Event.Kind == Kind) {
      Result.push_back(Event);
    }
  }
  return Result;
}

std::string Pool::EventReport() const {
  std::ostringstream Out;
  for (const auto &Event : Events_) {
    Out << PoolEventName(Event.Kind);
    if (Event.Kind == PoolEventKind::kInjectedFailure) {
      Out << ": request #" << Event.Sequence;
    } else {
      Out << ": " << Event.Address;
    }
    Out << "\n";
  }
  return Out.str();
}

bool Pool::IsLive(const VOID *Address) const {
  return FindLive(Address) != nullptr;
}

UINTN Pool::SizeOf(const VOID *Address) const {
  const Slot *Entry = FindLive(Address);
  return Entry == nullptr ? 0 : Entry->Size;
}

}  // namespace emu
