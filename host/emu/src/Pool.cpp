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
// at this many they are forgotten, so a fuzzer's long run (where
// AddressSanitizer's quarantine makes every address new) does not grow the
// ledger without bound. Every free looks its address up here: at 65,536
// the table (one MiB) stays in the cache, where a million made each free a
// cache miss that cost a fuzz target's input more than a parser's pass.
constexpr UINTN kReleasedKept = UINTN{1} << 16;

// Heap addresses are 16-byte aligned: the low bits carry nothing, and a
// multiply spreads the rest over the table.
UINTN HomeOf(const VOID *Address, UINTN Mask) {
  const auto Bits = reinterpret_cast<std::uintptr_t>(Address) >> 4;
  return static_cast<UINTN>((Bits * UINT64{0x9E3779B97F4A7C15}) >> 32) & Mask;
}

// The index of Address's slot in Table (linear probing, a power-of-two
// size), or of the empty slot where it would go.
template <typename Slot>
UINTN Probe(const std::vector<Slot> &Table, const VOID *Address) {
  const UINTN Mask = Table.size() - 1;
  UINTN Index = HomeOf(Address, Mask);
  while (Table[Index].Address != nullptr && Table[Index].Address != Address) {
    Index = (Index + 1) & Mask;
  }
  return Index;
}

template <typename Slot>
bool Contains(const std::vector<Slot> &Table, const VOID *Address) {
  return !Table.empty() && Table[Probe(Table, Address)].Address == Address;
}

// Table at Size slots, its entries placed anew.
template <typename Slot>
VOID Resize(std::vector<Slot> &Table, UINTN Size) {
  std::vector<Slot> Old = std::move(Table);
  Table.assign(Size, Slot{});
  for (const Slot &Entry : Old) {
    if (Entry.Address != nullptr) {
      Table[Probe(Table, Entry.Address)] = Entry;
    }
  }
}

// Adds Entry, whose address is not in Table; the table doubles at 3/4 full.
template <typename Slot>
VOID Insert(std::vector<Slot> &Table, UINTN &Count, const Slot &Entry) {
  if (Table.empty() || (Count + 1) * 4 > Table.size() * 3) {
    Resize(Table, Table.empty() ? kFirstTableSize : Table.size() * 2);
  }
  Table[Probe(Table, Entry.Address)] = Entry;
  Count++;
}

// Empties slot Index, moving back the entries after it that would no
// longer be found past the hole.
template <typename Slot>
VOID Erase(std::vector<Slot> &Table, UINTN &Count, UINTN Index) {
  const UINTN Mask = Table.size() - 1;
  UINTN Hole = Index;
  for (UINTN Next = (Hole + 1) & Mask; Table[Next].Address != nullptr;
       Next = (Next + 1) & Mask) {
    const UINTN Home = HomeOf(Table[Next].Address, Mask);
    if (((Next - Home) & Mask) >= ((Next - Hole) & Mask)) {
      Table[Hole] = Table[Next];
      Hole = Next;
    }
  }
  Table[Hole] = Slot{};
  Count--;
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
  for (const LiveSlot &Entry : Live_) {
    if (Entry.Address != nullptr) {
      std::free(const_cast<VOID *>(Entry.Address));
    }
  }
}

const Pool::LiveSlot *Pool::FindLive(const VOID *Address) const {
  if (Address == nullptr || !Contains(Live_, Address)) {
    return nullptr;
  }
  return &Live_[Probe(Live_, Address)];
}

VOID Pool::Remember(const VOID *Address) {
  if (Contains(Released_, Address)) {
    return;
  }
  if (ReleasedCount_ >= kReleasedKept) {
    Released_.clear();
    ReleasedCount_ = 0;
  }
  Insert(Released_, ReleasedCount_, ReleasedSlot{Address});
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
  Insert(Live_, LiveCount_, LiveSlot{Memory, Request, Size, Type});
  Counters_.Allocations++;
  Counters_.BytesOutstanding += Size;
  if (Counters_.BytesOutstanding > Counters_.PeakBytesOutstanding) {
    Counters_.PeakBytesOutstanding = Counters_.BytesOutstanding;
  }
  *Buffer = Memory;
  return EFI_SUCCESS;
}

EFI_STATUS Pool::Free(VOID *Buffer) {
  if (Buffer == nullptr || !Contains(Live_, Buffer)) {
    PoolEventKind Kind = PoolEventKind::kForeignPointer;
    if (Buffer == nullptr) {
      Kind = PoolEventKind::kNullPointer;
    } else if (Contains(Released_, Buffer)) {
      Kind = PoolEventKind::kDoubleFree;
    }
    Counters_.InvalidFrees++;
    Events_.push_back({Kind, Buffer, 0});
    return EFI_INVALID_PARAMETER;
  }
  const UINTN Index = Probe(Live_, Buffer);
  Counters_.BytesOutstanding -= Live_[Index].Size;
  Counters_.Frees++;
  Erase(Live_, LiveCount_, Index);
  Remember(Buffer);
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
  for (const LiveSlot &Entry : Live_) {
    if (Entry.Address != nullptr) {
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
  const LiveSlot *Entry = FindLive(Address);
  return Entry == nullptr ? 0 : Entry->Size;
}

}  // namespace emu
