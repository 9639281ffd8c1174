// Pool allocations on the C heap with a ledger beside them.
#include "emu/Pool.h"

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace emu {
namespace {

// Larger requests fail like an exhausted pool rather than hitting the heap.
constexpr UINTN kLargestAllocation = UINTN{1} << 32;
constexpr unsigned char kFreshFill = 0xAF;

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
  for (auto &[Address, Record] : Live_) {
    std::free(const_cast<VOID *>(Address));
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
  Live_[Memory] = {Request, Size, Memory, Type};
  Released_.erase(Memory);
  Counters_.Allocations++;
  Counters_.BytesOutstanding += Size;
  if (Counters_.BytesOutstanding > Counters_.PeakBytesOutstanding) {
    Counters_.PeakBytesOutstanding = Counters_.BytesOutstanding;
  }
  *Buffer = Memory;
  return EFI_SUCCESS;
}

EFI_STATUS Pool::Free(VOID *Buffer) {
  auto It = Live_.find(Buffer);
  if (It == Live_.end()) {
    PoolEventKind Kind = PoolEventKind::kForeignPointer;
    if (Buffer == nullptr) {
      Kind = PoolEventKind::kNullPointer;
    } else if (Released_.count(Buffer) != 0) {
      Kind = PoolEventKind::kDoubleFree;
    }
    Counters_.InvalidFrees++;
    Events_.push_back({Kind, Buffer, 0});
    return EFI_INVALID_PARAMETER;
  }
  Counters_.BytesOutstanding -= It->second.Size;
  Counters_.Frees++;
  Live_.erase(It);
  Released_.insert(Buffer);
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
  std::map<UINT64, Allocation> BySequence;
  for (const auto &[Address, Record] : Live_) {
    BySequence[Record.Sequence] = Record;
  }
  std::vector<Allocation> Result;
  for (const auto &[Sequence, Record] : BySequence) {
    Result.push_back(Record);
  }
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
  return Live_.count(Address) != 0;
}

UINTN Pool::SizeOf(const VOID *Address) const {
  auto It = Live_.find(Address);
  return It == Live_.end() ? 0 : It->second.Size;
}

}  // namespace emu
