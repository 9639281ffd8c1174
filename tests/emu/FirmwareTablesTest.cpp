// The system table and its service tables as a module receives them.
#include <Protocol/LoadedImage.h>


#include "EmuTestSupport.h"
#include "emu/SmbiosTable.h"

namespace emu_test {
namespace {

using FirmwareTablesTest = EmuTest;

// Every pointer-sized slot after the header is set.
template <typename Table>
void ExpectEverySlotFilled(const Table &Services, UINTN Skipped) {
  const auto *Slots = reinterpret_cast<VOID *const *>(
      reinterpret_cast<const UINT8 *>(&Services) + sizeof(EFI_TABLE_HEADER));
  const UINTN Count =
      (sizeof(Table) - sizeof(EFI_TABLE_HEADER)) / sizeof(VOID *) - Skipped;
  for (UINTN I = 0; I < Count; I++) {
    EXPECT_NE(nullptr, Slots[I]) << "slot " << I;
  }
}

TEST_F(FirmwareTablesTest, EveryServiceSlotIsFilled) {
  EFI_BOOT_SERVICES Copy = *gBS;
  Copy.Reserved = &Copy;  // the one slot the UEFI table leaves reserved
  ExpectEverySlotFilled(Copy, 0);
  // The last three runtime slots are opaque capsule/variable-info pointers.
  ExpectEverySlotFilled(*gRT, 3);
  EXPECT_EQ(gBS, gST->BootServices);
  EXPECT_EQ(EFI_BOOT_SERVICES_SIGNATURE, gBS->Hdr.Signature);
}

TEST_F(FirmwareTablesTest, HeadersCarryValidCrcs) {
  for (EFI_TABLE_HEADER *Header :
       {&gST->Hdr, &gBS->Hdr, &gRT->Hdr}) {
    EFI_TABLE_HEADER Saved = *Header;
    const UINT32 Stored = Header->CRC32;
    Header->CRC32 = 0;
    UINT32 Computed = 0;
    ASSERT_EQ(EFI_SUCCESS,
              gBS->CalculateCrc32(Header, Header->HeaderSize, &Computed));
    *Header = Saved;
    EXPECT_EQ(Stored, Computed);
  }
}

TEST_F(FirmwareTablesTest, UnneededServicesAnswerUnsupportedAndAreNoted) {
  EFI_EVENT Event = nullptr;
  EXPECT_EQ(EFI_UNSUPPORTED,
            gBS->CreateEvent(0, TPL_CALLBACK, nullptr, nullptr, &Event));
  EXPECT_EQ(EFI_UNSUPPORTED,
            gRT->GetVariable(nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ((std::vector<std::string>{"CreateEvent", "GetVariable"}),
            Fw().UnsupportedCalls());
}

EFI_STATUS EFIAPI UnloadRefuses(EFI_HANDLE) { return EFI_ACCESS_DENIED; }
EFI_STATUS EFIAPI UnloadAgrees(EFI_HANDLE) { return EFI_SUCCESS; }

TEST_F(FirmwareTablesTest, ImageHandleCarriesLoadedImageAndUnloads) {
  EFI_HANDLE Volume = reinterpret_cast<EFI_HANDLE>(0x1234);
  EFI_HANDLE Image = Fw().CreateImageHandle(Volume);
  EFI_LOADED_IMAGE_PROTOCOL *Loaded = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->HandleProtocol(Image, &gEfiLoadedImageProtocolGuid,
                                reinterpret_cast<VOID **>(&Loaded)));
  EXPECT_EQ(Volume, Loaded->DeviceHandle);
  EXPECT_EQ(gST, Loaded->SystemTable);

  EXPECT_EQ(EFI_UNSUPPORTED, gBS->UnloadImage(Image));
  Loaded->Unload = UnloadRefuses;
  EXPECT_EQ(EFI_ACCESS_DENIED, gBS->UnloadImage(Image));
  EXPECT_TRUE(Fw().Handles().IsValid(Image));
  Loaded->Unload = UnloadAgrees;
  EXPECT_EQ(EFI_SUCCESS, gBS->UnloadImage(Image));
  EXPECT_FALSE(Fw().Handles().IsValid(Image));
}

}  // namespace
}  // namespace emu_test
