// The slot inventory protocol.
#include "emu/SlotInventory.h"

#include <cstdio>
#include <cstdlib>

#include "emu/Firmware.h"

namespace emu {
namespace {

SlotInventory *gActiveInventory = nullptr;

}  // namespace

SlotInventory::SlotInventory(Firmware &Firmware,
                             std::vector<SlotInventoryEntry> Entries)
    : Firmware_(Firmware), Entries_(std::move(Entries)) {
  if (gActiveInventory != nullptr) {
    std::fprintf(stderr, "emu::SlotInventory: one is already active\n");
    std::abort();
  }
  Protocol_ = {GetSlotCount, GetSlotTable};
  Firmware_.Handles().Install(&Handle_, gSlotInventoryProtocolGuid, &Protocol_);
  gActiveInventory = this;
}

SlotInventory::~SlotInventory() {
  gActiveInventory = nullptr;
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gSlotInventoryProtocolGuid,
                                  &Protocol_);
  }
}

SlotInventory &SlotInventory::Active() {
  if (gActiveInventory == nullptr) {
    std::fprintf(stderr, "emu::SlotInventory: called after it was removed\n");
    std::abort();
  }
  return *gActiveInventory;
}

EFI_STATUS EFIAPI SlotInventory::GetSlotCount(UINTN *Count) {
  SlotInventory &Self = Active();
  if (Count == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (EFI_ERROR(Self.Failure_)) {
    return Self.Failure_;
  }
  *Count = Self.Entries_.size();
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SlotInventory::GetSlotTable(UINTN *Count,
                                              SLOT_INVENTORY_ENTRY **Table) {
  SlotInventory &Self = Active();
  Self.TableRequests_++;
  if (Count == nullptr || Table == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (EFI_ERROR(Self.Failure_)) {
    return Self.Failure_;
  }
  // Texts first (reserved up front, so the pointers below stay put).
  Self.Texts_.clear();
  Self.Texts_.reserve(Self.Entries_.size() * 2);
  Self.Table_.clear();
  for (const auto &Entry : Self.Entries_) {
    CHAR16 *Slot = nullptr;
    if (Entry.SlotText) {
      Slot = Self.Texts_.emplace_back(*Entry.SlotText).data();
    }
    CHAR16 *Device = Self.Texts_.emplace_back(Entry.DeviceText).data();
    Self.Table_.push_back({Slot, Device});
  }
  *Count = Self.Table_.size();
  *Table = Self.Table_.empty() ? nullptr : Self.Table_.data();
  return EFI_SUCCESS;
}

}  // namespace emu
