// PCI I/O over an in-memory configuration space.
#include "emu/PciDevice.h"

#include <Protocol/DevicePath.h>

#include <cstring>

#include "emu/Firmware.h"

namespace emu {
namespace {

constexpr UINTN kConfigSize = 256;

VOID PutWord(std::array<UINT8, 256> &Config, size_t Offset, UINT16 Value) {
  Config[Offset] = static_cast<UINT8>(Value);
  Config[Offset + 1] = static_cast<UINT8>(Value >> 8);
}

// PciRoot(Segment)/Pci(Device,Function)/End, as the PCI bus driver builds it.
std::vector<UINT8> BuildDevicePath(const PciLocation &Location) {
  std::vector<UINT8> Path = {
      0x02, 0x01, 12, 0,                         // ACPI device path
      0xD0, 0x41, 0x03, 0x0A,                    // HID PNP0A03
      static_cast<UINT8>(Location.Segment), 0, 0, 0,  // UID
      0x01, 0x01, 6, 0,                          // PCI device path
      Location.Function, Location.Device,
      END_DEVICE_PATH_TYPE, END_ENTIRE_DEVICE_PATH_SUBTYPE, 4, 0};
  return Path;
}

}  // namespace

std::array<UINT8, 256> BuildConfigSpace(const PciIdentity &Identity) {
  std::array<UINT8, 256> Config{};
  PutWord(Config, 0x00, Identity.VendorId);
  PutWord(Config, 0x02, Identity.DeviceId);
  PutWord(Config, 0x04, 0x0007);  // I/O, memory and bus master enabled
  PutWord(Config, 0x06, 0x0010);  // capabilities list present
  Config[0x08] = Identity.RevisionId;
  Config[0x09] = Identity.ProgInterface;
  Config[0x0A] = Identity.SubClass;
  Config[0x0B] = Identity.BaseClass;
  Config[0x0E] = 0x00;  // type 0 header, single function
  PutWord(Config, 0x2C, Identity.SubVendorId);
  PutWord(Config, 0x2E, Identity.SubDeviceId);
  Config[0x34] = 0x00;
  return Config;
}

PciDevice::PciDevice(Firmware &Firmware, const PciLocation &Location,
                     const PciIdentity &Identity, bool WithDevicePath)
    : Firmware_(Firmware), Location_(Location),
      Config_(BuildConfigSpace(Identity)) {
  Instance_ = {};
  Instance_.Owner = this;
  EFI_PCI_IO_PROTOCOL &Protocol = Instance_.Protocol;
  Protocol.Mem = {NoBarAccess, NoBarAccess};
  Protocol.Io = {NoBarAccess, NoBarAccess};
  Protocol.Pci = {ConfigRead, ConfigWrite};
  Protocol.GetLocation = GetLocation;
  Protocol.Attributes = Attributes;
  Firmware_.Handles().Install(&Handle_, gEfiPciIoProtocolGuid, &Protocol);
  if (WithDevicePath) {
    DevicePath_ = BuildDevicePath(Location);
    Firmware_.Handles().Install(&Handle_, gEfiDevicePathProtocolGuid,
                                DevicePath_.data());
  }
}

PciDevice::~PciDevice() {
  if (Firmware::CurrentOrNull() != &Firmware_) {
    return;
  }
  if (!DevicePath_.empty()) {
    Firmware_.Handles().Uninstall(Handle_, gEfiDevicePathProtocolGuid,
                                  DevicePath_.data());
  }
  Firmware_.Handles().Uninstall(Handle_, gEfiPciIoProtocolGuid,
                                &Instance_.Protocol);
}

PciDevice *PciDevice::Owner(EFI_PCI_IO_PROTOCOL *This) {
  return reinterpret_cast<Instance *>(This)->Owner;
}

EFI_STATUS PciDevice::CheckAccess(EFI_PCI_IO_PROTOCOL *This,
                                  EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                  UINT32 Offset, UINTN Count, VOID *Buffer,
                                  UINTN &Bytes) {
  if (This == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  UINTN Unit;
  switch (Width) {
    case EfiPciIoWidthUint8:
      Unit = 1;
      break;
    case EfiPciIoWidthUint16:
      Unit = 2;
      break;
    case EfiPciIoWidthUint32:
      Unit = 4;
      break;
    default:
      return EFI_INVALID_PARAMETER;
  }
  if (Buffer == nullptr || Offset % Unit != 0) {
    return EFI_INVALID_PARAMETER;
  }
  if (Offset >= kConfigSize || Count > (kConfigSize - Offset) / Unit) {
    return EFI_UNSUPPORTED;
  }
  Bytes = Count * Unit;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI PciDevice::ConfigRead(EFI_PCI_IO_PROTOCOL *This,
                                        EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                        UINT32 Offset, UINTN Count,
                                        VOID *Buffer) {
  UINTN Bytes = 0;
  const EFI_STATUS Status =
      CheckAccess(This, Width, Offset, Count, Buffer, Bytes);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  PciDevice *Device = Owner(This);
  Device->ConfigReads_++;
  std::memcpy(Buffer, Device->Config_.data() + Offset, Bytes);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI PciDevice::ConfigWrite(EFI_PCI_IO_PROTOCOL *This,
                                         EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                         UINT32 Offset, UINTN Count,
                                         VOID *Buffer) {
  UINTN Bytes = 0;
  const EFI_STATUS Status =
      CheckAccess(This, Width, Offset, Count, Buffer, Bytes);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  std::memcpy(Owner(This)->Config_.data() + Offset, Buffer, Bytes);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI PciDevice::NoBarAccess(EFI_PCI_IO_PROTOCOL *This,
                                         EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                         UINT8 BarIndex, UINT64 Offset,
                                         UINTN Count, VOID *Buffer) {
  // No BARs are decoded: the module talks to adapters only through tools.
  return EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI PciDevice::GetLocation(EFI_PCI_IO_PROTOCOL *This,
                                         UINTN *Segment, UINTN *Bus,
                                         UINTN *Device, UINTN *Function) {
  if (This == nullptr || Segment == nullptr || Bus == nullptr ||
      Device == nullptr || Function == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const PciLocation &Location = Owner(This)->Location_;
  *Segment = Location.Segment;
  *Bus = Location.Bus;
  *Device = Location.Device;
  *Function = Location.Function;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI PciDevice::Attributes(
    EFI_PCI_IO_PROTOCOL *This,
    EFI_PCI_IO_PROTOCOL_ATTRIBUTE_OPERATION Operation, UINT64 Attributes,
    UINT64 *Result) {
  return EFI_UNSUPPORTED;
}

}  // namespace emu
