// Slot inventory, GUI driver and management-controller events.
#include "EmuTestSupport.h"
#include "emu/GuiDriver.h"
#include "emu/QolCommands.h"
#include "emu/SlotInventory.h"

namespace emu_test {
namespace {

using SlotInventoryAndEventsTest = EmuTest;

TEST_F(SlotInventoryAndEventsTest, InventoryTableKeepsOrderAndNullSlotTexts) {
  emu::SlotInventory Inventory(
      Fw(), {{u"Slot 3", u"MegaRAID 9460"}, {std::nullopt, u"RSTe SATA"}});
  SLOT_INVENTORY_PROTOCOL *Protocol = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateProtocol(&gSlotInventoryProtocolGuid, nullptr,
                                reinterpret_cast<VOID **>(&Protocol)));
  UINTN Count = 0;
  ASSERT_EQ(EFI_SUCCESS, Protocol->GetSlotCount(&Count));
  EXPECT_EQ(2u, Count);
  SLOT_INVENTORY_ENTRY *Table = nullptr;
  ASSERT_EQ(EFI_SUCCESS, Protocol->GetSlotTable(&Count, &Table));
  ASSERT_EQ(2u, Count);
  EXPECT_EQ(std::u16string(u"Slot 3"), std::u16string(Table[0].SlotText));
  EXPECT_EQ(std::u16string(u"MegaRAID 9460"),
            std::u16string(Table[0].DeviceText));
  EXPECT_EQ(nullptr, Table[1].SlotText);
  EXPECT_EQ(std::u16string(u"RSTe SATA"), std::u16string(Table[1].DeviceText));

  Inventory.SetFailure(EFI_DEVICE_ERROR);
  Count = 5;
  EXPECT_EQ(EFI_DEVICE_ERROR, Protocol->GetSlotTable(&Count, &Table));
  EXPECT_EQ(EFI_DEVICE_ERROR, Protocol->GetSlotCount(&Count));
}

TEST_F(SlotInventoryAndEventsTest, GuiDriverKeepsACopyOfTheContext) {
  emu::GuiDriver Gui(Fw());
  ESA_GUI_DRIVER_PROTOCOL *Protocol = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateProtocol(&gEsaGuiDriverProtocolGuid, nullptr,
                                reinterpret_cast<VOID **>(&Protocol)));
  EFI_HANDLE Image = reinterpret_cast<EFI_HANDLE>(0x10);
  {
    ESA_GUI_CONTEXT Context = {Image, gST, nullptr, 0, 0};
    EXPECT_EQ(EFI_SUCCESS, Protocol->Initialize(&Context));
    Context.ImageHandle = nullptr;  // the driver's copy must not change
  }
  Gui.SetUnInitializeResult(EFI_NOT_STARTED);
  EXPECT_EQ(EFI_NOT_STARTED, Protocol->UnInitialize(Image));
  ASSERT_EQ(1u, Gui.Initializations().size());
  EXPECT_EQ(Image, Gui.Initializations()[0].ImageHandle);
  EXPECT_EQ(gST, Gui.Initializations()[0].SystemTable);
  EXPECT_EQ(std::vector<EFI_HANDLE>{Image}, Gui.UnInitializations());
}

TEST_F(SlotInventoryAndEventsTest, EventsAreRecordedWithTheSettableResult) {
  emu::QolCommands Qol(Fw());
  QOL_COMMANDS_PROTOCOL *Protocol = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateProtocol(&gQolCommandsProtocolGuid, nullptr,
                                reinterpret_cast<VOID **>(&Protocol)));
  Qol.SetCompletionCode(0xC1);
  UINT32 Result = 0;
  EXPECT_EQ(EFI_SUCCESS,
            Protocol->SendEvent(Protocol, 0xFE22,
                                "Create new virtual disk successfully.",
                                "KDZPMSR0022I", &Result, 1));
  EXPECT_EQ(0xC1u, Result);
  Qol.SetSendResult(EFI_TIMEOUT);
  EXPECT_EQ(EFI_TIMEOUT,
            Protocol->SendEvent(Protocol, 0xFE01, nullptr, nullptr, &Result, 1));
  ASSERT_EQ(2u, Qol.Events().size());
  EXPECT_EQ(0xFE22u, Qol.Events()[0].EventCode);
  EXPECT_EQ("KDZPMSR0022I", Qol.Events()[0].Identifier);
  EXPECT_EQ("Create new virtual disk successfully.", Qol.Events()[0].Message);
  EXPECT_EQ(1u, Qol.Events()[0].Count);
  EXPECT_EQ("", Qol.Events()[1].Message);
}

TEST_F(SlotInventoryAndEventsTest, HostProtocolsLeaveWithTheirObjects) {
  {
    emu::QolCommands Qol(Fw());
    emu::SlotInventory Inventory(Fw());
  }
  VOID *Found = nullptr;
  EXPECT_EQ(EFI_NOT_FOUND,
            gBS->LocateProtocol(&gQolCommandsProtocolGuid, nullptr, &Found));
  EXPECT_EQ(EFI_NOT_FOUND,
            gBS->LocateProtocol(&gSlotInventoryProtocolGuid, nullptr, &Found));
  EXPECT_TRUE(Fw().Handles().AllHandles().empty());
}

}  // namespace
}  // namespace emu_test
