// SMBIOS 2.x entry point and structures.
#include "emu/SmbiosTable.h"

#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "emu/Firmware.h"

namespace emu {
namespace {

constexpr UINT8 kType0Length = 0x18;
constexpr UINT8 kType9Length = 0x11;
constexpr UINT8 kSmbiosMajor = 2;
constexpr UINT8 kSmbiosMinor = 8;

// One structure: the formatted area, then its strings and the double NUL.
class StructureWriter {
 public:
  StructureWriter(UINT8 Type, UINT8 Length, UINT16 Handle)
      : Formatted_(Length, 0) {
    Formatted_[0] = Type;
    Formatted_[1] = Length;
    PutWord(2, Handle);
  }

  VOID PutByte(size_t Offset, UINT8 Value) { Formatted_[Offset] = Value; }
  VOID PutWord(size_t Offset, UINT16 Value) {
    Formatted_[Offset] = static_cast<UINT8>(Value);
    Formatted_[Offset + 1] = static_cast<UINT8>(Value >> 8);
  }
  // Stores the string's number at Offset; an empty string gets number 0.
  VOID PutString(size_t Offset, const std::string &Text) {
    if (Text.empty()) {
      Formatted_[Offset] = 0;
      return;
    }
    Strings_.push_back(Text);
    Formatted_[Offset] = static_cast<UINT8>(Strings_.size());
  }

  std::vector<UINT8> Bytes() const {
    std::vector<UINT8> Out = Formatted_;
    for (const auto &Text : Strings_) {
      Out.insert(Out.end(), Text.begin(), Text.end());
      Out.push_back(0);
    }
    if (Strings_.empty()) {
      Out.push_back(0);
    }
    Out.push_back(0);
    return Out;
  }

 private:
  std::vector<UINT8> Formatted_;
  std::vector<std::string> Strings_;
};

std::vector<UINT8> BiosInformation(const SmbiosDescription &Description) {
  StructureWriter Writer(SMBIOS_TYPE_BIOS_INFORMATION, kType0Length, 0x0000);
  Writer.PutString(0x04, Description.BiosVendor);
  Writer.PutString(0x05, Description.BiosVersion);
  Writer.PutWord(0x06, 0xF000);  // starting address segment
  Writer.PutString(0x08, Description.BiosReleaseDate);
  Writer.PutByte(0x09, 0xFF);    // ROM size: 16 MiB or more
  Writer.PutByte(0x0A, 0x08);    // BIOS characteristics are not supported
  Writer.PutByte(0x13, 0x08);    // UEFI is supported
  Writer.PutByte(0x14, 1);
  Writer.PutByte(0x15, 0);
  Writer.PutByte(0x16, 0xFF);    // no embedded controller firmware
  Writer.PutByte(0x17, 0xFF);
  return Writer.Bytes();
}

std::vector<UINT8> SystemSlot(const SmbiosSlot &Slot, UINT16 Handle) {
  StructureWriter Writer(SMBIOS_TYPE_SYSTEM_SLOTS, kType9Length, Handle);
  Writer.PutString(0x04, Slot.Designation);
  Writer.PutByte(0x05, Slot.SlotType);
  Writer.PutByte(0x06, Slot.DataBusWidth);
  Writer.PutByte(0x07, Slot.CurrentUsage);
  Writer.PutByte(0x08, Slot.SlotLength);
  Writer.PutWord(SMBIOS_TYPE9_SLOT_ID_OFFSET, Slot.SlotId);
  Writer.PutByte(0x0B, 0x04);  // 3.3 V
  Writer.PutByte(0x0C, 0x01);  // PME#
  Writer.PutWord(SMBIOS_TYPE9_SEGMENT_OFFSET, Slot.Segment);
  Writer.PutByte(SMBIOS_TYPE9_BUS_OFFSET, Slot.Bus);
  Writer.PutByte(SMBIOS_TYPE9_DEVFN_OFFSET, Slot.DevFn);
  return Writer.Bytes();
}

VOID Append(std::vector<UINT8> &Out, const std::vector<UINT8> &Structure,
            UINTN &Largest) {
  Out.insert(Out.end(), Structure.begin(), Structure.end());
  if (Structure.size() > Largest) {
    Largest = Structure.size();
  }
}

std::vector<UINT8> BuildWithLargest(const SmbiosDescription &Description,
                                    UINTN &Largest) {
  std::vector<UINT8> Out;
  Largest = 0;
  Append(Out, BiosInformation(Description), Largest);
  UINT16 Handle = 0x0900;
  for (const auto &Slot : Description.Slots) {
    Append(Out, SystemSlot(Slot, Handle++), Largest);
  }
  Append(Out, StructureWriter(SMBIOS_TYPE_END_OF_TABLE, 4, 0xFEFF).Bytes(),
         Largest);
  return Out;
}

}  // namespace

UINT8 ByteSum(const VOID *Data, UINTN Length) {
  UINT8 Sum = 0;
  for (UINTN I = 0; I < Length; I++) {
    Sum = static_cast<UINT8>(Sum + static_cast<const UINT8 *>(Data)[I]);
  }
  return Sum;
}

std::vector<UINT8> BuildSmbiosStructures(const SmbiosDescription &Description) {
  UINTN Largest;
  return BuildWithLargest(Description, Largest);
}

SmbiosTable::SmbiosTable(Firmware &Firmware,
                         const SmbiosDescription &Description)
    : Firmware_(Firmware) {
  UINTN Largest;
  const std::vector<UINT8> Structures = BuildWithLargest(Description, Largest);
  MappingSize_ = sizeof(SMBIOS_TABLE_ENTRY_POINT) + 1 + Structures.size();
  Mapping_ = mmap(nullptr, MappingSize_, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_32BIT, -1, 0);
  if (Mapping_ == MAP_FAILED) {
    std::perror("emu::SmbiosTable: no memory below 4 GiB");
    std::abort();
  }
  EntryPoint_ = static_cast<SMBIOS_TABLE_ENTRY_POINT *>(Mapping_);
  // The structure table follows the entry point, 16-byte aligned.
  Structures_ = static_cast<UINT8 *>(Mapping_) + 0x20;
  StructuresLength_ = Structures.size();
  std::memcpy(Structures_, Structures.data(), Structures.size());

  SMBIOS_TABLE_ENTRY_POINT &Entry = *EntryPoint_;
  std::memcpy(Entry.AnchorString, Description.CorruptAnchor ? "_SX_" : "_SM_",
              4);
  Entry.EntryPointLength = sizeof(SMBIOS_TABLE_ENTRY_POINT);
  Entry.MajorVersion = kSmbiosMajor;
  Entry.MinorVersion = kSmbiosMinor;
  Entry.MaxStructureSize = static_cast<UINT16>(Largest);
  std::memcpy(Entry.IntermediateAnchorString, "_DMI_", 5);
  Entry.TableLength = static_cast<UINT16>(Structures.size());
  Entry.TableAddress =
      static_cast<UINT32>(reinterpret_cast<UINTN>(Structures_));
  Entry.NumberOfSmbiosStructures =
      static_cast<UINT16>(Description.Slots.size() + 2);
  Entry.SmbiosBcdRevision = (kSmbiosMajor << 4) | kSmbiosMinor;
  // The intermediate checksum covers offsets 10h-1Eh, the entry point
  // checksum all 1Fh bytes (and so includes the intermediate one).
  const UINTN Intermediate = OFFSET_OF(SMBIOS_TABLE_ENTRY_POINT,
                                       IntermediateAnchorString);
  Entry.IntermediateChecksum = static_cast<UINT8>(
      0 - ByteSum(Entry.IntermediateAnchorString,
                  sizeof(SMBIOS_TABLE_ENTRY_POINT) - Intermediate));
  Entry.EntryPointStructureChecksum =
      static_cast<UINT8>(0 - ByteSum(&Entry, sizeof(SMBIOS_TABLE_ENTRY_POINT)));
  Firmware_.InstallConfigurationTable(gEfiSmbiosTableGuid, EntryPoint_);
}

SmbiosTable::~SmbiosTable() {
  if (Firmware::CurrentOrNull() == &Firmware_ &&
      Firmware_.FindConfigurationTable(gEfiSmbiosTableGuid) == EntryPoint_) {
    Firmware_.InstallConfigurationTable(gEfiSmbiosTableGuid, nullptr);
  }
  munmap(Mapping_, MappingSize_);
}

}  // namespace emu
