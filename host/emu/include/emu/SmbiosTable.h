// An SMBIOS 2.x table built from a short description and published in the
// configuration table: the "_SM_" entry point, a type 0 BIOS record, one
// type 9 System Slots record (2.6 layout) per slot and the type 127 end.
#pragma once

#include <Protocol/Smbios.h>
#include <Uefi.h>

#include <string>
#include <vector>

namespace emu {

class Firmware;

struct SmbiosSlot {
  std::string Designation;  // e.g. "PCIe Slot 3"; "" for no string
  UINT16 SlotId = 0;
  UINT16 Segment = 0;
  UINT8 Bus = 0;
  UINT8 DevFn = 0;            // device << 3 | function
  UINT8 SlotType = 0xA8;      // PCI Express Gen 3 x8
  UINT8 DataBusWidth = 0x0B;  // 8x
  UINT8 CurrentUsage = 0x04;  // in use
  UINT8 SlotLength = 0x04;    // long
};

struct SmbiosDescription {
  std::string BiosVendor = "American Megatrends Inc.";
  std::string BiosVersion = "1.0.0";
  std::string BiosReleaseDate = "01/01/2024";
  std::vector<SmbiosSlot> Slots;
  // Write "_SX_" instead of "_SM_" (checksums still valid) to test readers.
  bool CorruptAnchor = false;
};

// The structure table alone: type 0, the type 9 records, type 127.
std::vector<UINT8> BuildSmbiosStructures(const SmbiosDescription &Description);
// Sum of Length bytes, for checksum tests.
UINT8 ByteSum(const VOID *Data, UINTN Length);

class SmbiosTable {
 public:
  // Builds the table in memory below 4 GiB (the 2.x entry point holds a
  // 32-bit table address) and installs it under the SMBIOS table GUID.
  SmbiosTable(Firmware &Firmware, const SmbiosDescription &Description);
  ~SmbiosTable();
  SmbiosTable(const SmbiosTable &) = delete;
  SmbiosTable &operator=(const SmbiosTable &) = delete;

  const SMBIOS_TABLE_ENTRY_POINT *EntryPoint() const { return EntryPoint_; }
  const UINT8 *Structures() const { return Structures_; }
  UINTN StructuresLength() const { return StructuresLength_; }

 private:
  Firmware &Firmware_;
  VOID *Mapping_ = nullptr;
  UINTN MappingSize_ = 0;
  SMBIOS_TABLE_ENTRY_POINT *EntryPoint_ = nullptr;
  UINT8 *Structures_ = nullptr;
  UINTN StructuresLength_ = 0;
};

}  // namespace emu
