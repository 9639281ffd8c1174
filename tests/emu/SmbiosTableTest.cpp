// The SMBIOS 2.x table as a reader walks it from the configuration table.
#include <cstring>
#include <string>

#include "EmuTestSupport.h"
#include "emu/SmbiosTable.h"

namespace emu_test {
namespace {

using emu::SmbiosDescription;
using emu::SmbiosTable;

SmbiosDescription TwoSlots() {
  SmbiosDescription Description;
  Description.BiosVendor = "Vendor Inc.";
  Description.BiosVersion = "R1.23";
  Description.Slots = {{"PCIe Slot 1", 1, 0, 0x3B, 0x00},
                       {"PCIe Slot 12", 12, 0, 0x5E, 0x08}};
  return Description;
}

const SMBIOS_TABLE_ENTRY_POINT *FindEntryPoint() {
  for (UINTN I = 0; I < gST->NumberOfTableEntries; I++) {
    if (CompareGuid(gST->ConfigurationTable[I].VendorGuid,
                    gEfiSmbiosTableGuid)) {
      return static_cast<const SMBIOS_TABLE_ENTRY_POINT *>(
          gST->ConfigurationTable[I].VendorTable);
    }
  }
  return nullptr;
}

struct Walked {
  UINT8 Type;
  const UINT8 *Formatted;
  std::vector<std::string> Strings;
};

// Walks the structure table the way firmware readers do.
std::vector<Walked> Walk(const SMBIOS_TABLE_ENTRY_POINT &Entry) {
  std::vector<Walked> Result;
  const auto *Cursor = reinterpret_cast<const UINT8 *>(
      static_cast<UINTN>(Entry.TableAddress));
  const UINT8 *End = Cursor + Entry.TableLength;
  while (Cursor < End) {
    Walked Item{Cursor[0], Cursor, {}};
    const UINT8 *Text = Cursor + Cursor[1];
    while (*Text != 0) {
      Item.Strings.emplace_back(reinterpret_cast<const char *>(Text));
      Text += Item.Strings.back().size() + 1;
    }
    if (Item.Strings.empty()) {
      Text++;  // the first of the two NULs of an empty string set
    }
    Cursor = Text + 1;
    Result.push_back(Item);
    if (Item.Type == SMBIOS_TYPE_END_OF_TABLE) {
      break;
    }
  }
  EXPECT_EQ(End, Cursor) << "walk must end exactly at TableLength";
  return Result;
}

UINT16 Word(const UINT8 *Bytes, UINTN Offset) {
  return static_cast<UINT16>(Bytes[Offset] | (Bytes[Offset + 1] << 8));
}

using SmbiosTableTest = EmuTest;

TEST_F(SmbiosTableTest, EntryPointHasAnchorsAndValidChecksums) {
  SmbiosTable Table(Fw(), TwoSlots());
  const SMBIOS_TABLE_ENTRY_POINT *Entry = FindEntryPoint();
  ASSERT_NE(nullptr, Entry);
  EXPECT_EQ(0, std::memcmp(Entry->AnchorString, "_SM_", 4));
  EXPECT_EQ(0, std::memcmp(Entry->IntermediateAnchorString, "_DMI_", 5));
  EXPECT_EQ(0x1F, Entry->EntryPointLength);
  EXPECT_EQ(0, emu::ByteSum(Entry, Entry->EntryPointLength));
  EXPECT_EQ(0, emu::ByteSum(Entry->IntermediateAnchorString, 0x0F));
  EXPECT_EQ(4u, Entry->NumberOfSmbiosStructures);
  EXPECT_LT(reinterpret_cast<UINTN>(Table.Structures()), UINTN{1} << 32);
  EXPECT_EQ(Table.StructuresLength(), Entry->TableLength);
}

TEST_F(SmbiosTableTest, StructuresWalkToTypeNineSlotsAndEnd) {
  SmbiosTable Table(Fw(), TwoSlots());
  const auto Items = Walk(*FindEntryPoint());
  ASSERT_EQ(4u, Items.size());

  EXPECT_EQ(SMBIOS_TYPE_BIOS_INFORMATION, Items[0].Type);
  EXPECT_EQ((std::vector<std::string>{"Vendor Inc.", "R1.23", "01/01/2024"}),
            Items[0].Strings);
  EXPECT_EQ(2, Items[0].Formatted[5]);  // version is string 2

  const UINT8 *Slot = Items[2].Formatted;
  EXPECT_EQ(SMBIOS_TYPE_SYSTEM_SLOTS, Items[2].Type);
  EXPECT_EQ(0x11, Slot[1]);
  EXPECT_EQ(12, Word(Slot, SMBIOS_TYPE9_SLOT_ID_OFFSET));
  EXPECT_EQ(0, Word(Slot, SMBIOS_TYPE9_SEGMENT_OFFSET));
  EXPECT_EQ(0x5E, Slot[SMBIOS_TYPE9_BUS_OFFSET]);
  EXPECT_EQ(0x08, Slot[SMBIOS_TYPE9_DEVFN_OFFSET]);
  EXPECT_EQ(std::vector<std::string>{"PCIe Slot 12"}, Items[2].Strings);
  EXPECT_EQ(1, Word(Items[1].Formatted, SMBIOS_TYPE9_SLOT_ID_OFFSET));

  EXPECT_EQ(SMBIOS_TYPE_END_OF_TABLE, Items[3].Type);
  EXPECT_TRUE(Items[3].Strings.empty());
}

TEST_F(SmbiosTableTest, SlotWithoutDesignationHasNoStrings) {
  SmbiosDescription Description;
  Description.Slots = {{"", 7, 0, 2, 0}};
  SmbiosTable Table(Fw(), Description);
  const auto Items = Walk(*FindEntryPoint());
  ASSERT_EQ(3u, Items.size());
  EXPECT_EQ(0, Items[1].Formatted[4]);
  EXPECT_TRUE(Items[1].Strings.empty());
}

TEST_F(SmbiosTableTest, CorruptAnchorAndRemoval) {
  {
    SmbiosDescription Description = TwoSlots();
    Description.CorruptAnchor = true;
    SmbiosTable Table(Fw(), Description);
    const SMBIOS_TABLE_ENTRY_POINT *Entry = FindEntryPoint();
    ASSERT_NE(nullptr, Entry);
    EXPECT_NE(0, std::memcmp(Entry->AnchorString, "_SM_", 4));
    EXPECT_EQ(0, emu::ByteSum(Entry, Entry->EntryPointLength));
  }
  // A firmware without SMBIOS has no such table at all.
  EXPECT_EQ(nullptr, FindEntryPoint());
}

}  // namespace
}  // namespace emu_test
