// The host slot inventory: (slot text, device text) pairs in the host's
// display order, with an injectable failure.
#pragma once

#include <Protocol/Host/SlotInventory.h>
#include <Uefi.h>

#include <optional>
#include <string>
#include <vector>

namespace emu {

class Firmware;

struct SlotInventoryEntry {
  std::optional<std::u16string> SlotText;  // nullopt: a NULL slot text
  std::u16string DeviceText;
};

class SlotInventory {
 public:
  explicit SlotInventory(Firmware &Firmware,
                         std::vector<SlotInventoryEntry> Entries = {});
  ~SlotInventory();
  SlotInventory(const SlotInventory &) = delete;
  SlotInventory &operator=(const SlotInventory &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  VOID SetEntries(std::vector<SlotInventoryEntry> Entries) {
    Entries_ = std::move(Entries);
  }
  // Both operations fail with Status (EFI_SUCCESS: they work again).
  VOID SetFailure(EFI_STATUS Status) { Failure_ = Status; }
  UINTN TableRequests() const { return TableRequests_; }

 private:
  static SlotInventory &Active();
  static EFI_STATUS EFIAPI GetSlotCount(UINTN *Count);
  static EFI_STATUS EFIAPI GetSlotTable(UINTN *Count,
                                        SLOT_INVENTORY_ENTRY **Table);

  Firmware &Firmware_;
  SLOT_INVENTORY_PROTOCOL Protocol_;
  EFI_HANDLE Handle_ = nullptr;
  std::vector<SlotInventoryEntry> Entries_;
  // What the last GetSlotTable handed out; rebuilt on every call.
  std::vector<std::u16string> Texts_;
  std::vector<SLOT_INVENTORY_ENTRY> Table_;
  EFI_STATUS Failure_ = EFI_SUCCESS;
  UINTN TableRequests_ = 0;
};

}  // namespace emu
