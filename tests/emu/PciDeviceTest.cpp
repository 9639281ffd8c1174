// Configuration reads and locations of emulated PCI functions.
#include <Library/MemoryAllocationLib.h>
#include <Protocol/DevicePath.h>

#include "EmuTestSupport.h"
#include "emu/PciDevice.h"

namespace emu_test {
namespace {

using emu::PciDevice;

class PciDeviceTest : public EmuTest {
 protected:
  PciDeviceTest()
      : Raid_(Fw(), {0, 0x3B, 0x00, 0x00},
              {0x1000, 0x10E2, 0x1734, 0x1234, 0x01, 0x04, 0x00, 0x01}),
        Ahci_(Fw(), {0, 0x00, 0x17, 0x00},
              {0x8086, 0x2826, 0x1734, 0x11AA, 0x01, 0x06, 0x01}, true) {}

  PciDevice Raid_;
  PciDevice Ahci_;
};

TEST_F(PciDeviceTest, ReadsOfEachWidthReturnTheIdentity) {
  EFI_PCI_IO_PROTOCOL *Io = Raid_.PciIo();
  UINT32 Ids = 0;
  ASSERT_EQ(EFI_SUCCESS, Io->Pci.Read(Io, EfiPciIoWidthUint32, 0, 1, &Ids));
  EXPECT_EQ(0x10E21000u, Ids);
  UINT16 Sub[2] = {};
  ASSERT_EQ(EFI_SUCCESS, Io->Pci.Read(Io, EfiPciIoWidthUint16, 0x2C, 2, Sub));
  EXPECT_EQ(0x1734, Sub[0]);
  EXPECT_EQ(0x1234, Sub[1]);
  UINT8 Class[3] = {};
  ASSERT_EQ(EFI_SUCCESS, Io->Pci.Read(Io, EfiPciIoWidthUint8, 0x09, 3, Class));
  EXPECT_EQ(0x00, Class[0]);  // programming interface
  EXPECT_EQ(0x04, Class[1]);  // RAID
  EXPECT_EQ(0x01, Class[2]);  // mass storage
}

TEST_F(PciDeviceTest, AccessesOutsideTheSpaceOrMisalignedFail) {
  EFI_PCI_IO_PROTOCOL *Io = Raid_.PciIo();
  const struct {
    EFI_PCI_IO_PROTOCOL_WIDTH Width;
    UINT32 Offset;
    UINTN Count;
    EFI_STATUS Expected;
  } Cases[] = {
      {EfiPciIoWidthUint32, 0xFC, 1, EFI_SUCCESS},
      {EfiPciIoWidthUint32, 0xFC, 2, EFI_UNSUPPORTED},
      {EfiPciIoWidthUint8, 0x100, 1, EFI_UNSUPPORTED},
      {EfiPciIoWidthUint8, 0xFF, 1, EFI_SUCCESS},
      {EfiPciIoWidthUint16, 0x00, ~UINTN{0}, EFI_UNSUPPORTED},
      {EfiPciIoWidthUint32, 0x02, 1, EFI_INVALID_PARAMETER},
      {EfiPciIoWidthUint64, 0x00, 1, EFI_INVALID_PARAMETER},
  };
  for (const auto &Case : Cases) {
    UINT32 Guard[3] = {0xA5A5A5A5, 0xA5A5A5A5, 0xA5A5A5A5};
    EXPECT_EQ(Case.Expected,
              Io->Pci.Read(Io, Case.Width, Case.Offset, Case.Count, &Guard[1]))
        << "offset " << Case.Offset << " count " << Case.Count;
    EXPECT_EQ(0xA5A5A5A5u, Guard[0]);
    EXPECT_EQ(0xA5A5A5A5u, Guard[2]);
  }
}

TEST_F(PciDeviceTest, GetLocationAndEditedConfigSpace) {
  EFI_PCI_IO_PROTOCOL *Io = Ahci_.PciIo();
  UINTN Segment = 9, Bus = 9, Device = 9, Function = 9;
  ASSERT_EQ(EFI_SUCCESS, Io->GetLocation(Io, &Segment, &Bus, &Device, &Function));
  EXPECT_EQ(0u, Segment);
  EXPECT_EQ(0u, Bus);
  EXPECT_EQ(0x17u, Device);
  EXPECT_EQ(0u, Function);

  // A function that stops answering reads all ones.
  Ahci_.ConfigSpace().fill(0xFF);
  UINT32 Ids = 0;
  ASSERT_EQ(EFI_SUCCESS, Io->Pci.Read(Io, EfiPciIoWidthUint32, 0, 1, &Ids));
  EXPECT_EQ(0xFFFFFFFFu, Ids);
}

TEST_F(PciDeviceTest, HandlesAreListedInCreationOrderWithDevicePath) {
  UINTN Count = 0;
  EFI_HANDLE *Handles = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateHandleBuffer(ByProtocol, &gEfiPciIoProtocolGuid, nullptr,
                                    &Count, &Handles));
  ASSERT_EQ(2u, Count);
  EXPECT_EQ(Raid_.Handle(), Handles[0]);
  EXPECT_EQ(Ahci_.Handle(), Handles[1]);
  FreePool(Handles);

  VOID *Path = nullptr;
  EXPECT_EQ(EFI_UNSUPPORTED, gBS->HandleProtocol(Raid_.Handle(),
                                                 &gEfiDevicePathProtocolGuid,
                                                 &Path));
  ASSERT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Ahci_.Handle(),
                                             &gEfiDevicePathProtocolGuid,
                                             &Path));
  const auto *Node = static_cast<const UINT8 *>(Path);
  EXPECT_EQ(0x02, Node[0]);  // ACPI PciRoot
  EXPECT_EQ(0x01, Node[12]);  // hardware: PCI
  EXPECT_EQ(0x00, Node[16]);  // function
  EXPECT_EQ(0x17, Node[17]);  // device
  EXPECT_EQ(0x7F, Node[18]);  // end
}

}  // namespace
}  // namespace emu_test
