// A PCI function as the PCI bus driver publishes it: a handle carrying
// EFI_PCI_IO_PROTOCOL over a 256-byte configuration space, and optionally
// the function's device path.
#pragma once

#include <Protocol/PciIo.h>
#include <Uefi.h>

#include <array>
#include <vector>

namespace emu {

class Firmware;

struct PciLocation {
  UINT16 Segment = 0;
  UINT8 Bus = 0;
  UINT8 Device = 0;
  UINT8 Function = 0;
};

struct PciIdentity {
  UINT16 VendorId = 0;
  UINT16 DeviceId = 0;
  UINT16 SubVendorId = 0;
  UINT16 SubDeviceId = 0;
  UINT8 BaseClass = 0;
  UINT8 SubClass = 0;
  UINT8 ProgInterface = 0;
  UINT8 RevisionId = 0;
};

// Configuration space of a type 0 function with these identities.
std::array<UINT8, 256> BuildConfigSpace(const PciIdentity &Identity);

class PciDevice {
 public:
  PciDevice(Firmware &Firmware, const PciLocation &Location,
            const PciIdentity &Identity, bool WithDevicePath = false);
  ~PciDevice();
  PciDevice(const PciDevice &) = delete;
  PciDevice &operator=(const PciDevice &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  EFI_PCI_IO_PROTOCOL *PciIo() { return &Instance_.Protocol; }
  const PciLocation &Location() const { return Location_; }
  // The configuration space, writable by tests (e.g. 0xFF bytes for a
  // function that does not answer).
  std::array<UINT8, 256> &ConfigSpace() { return Config_; }
  // Configuration reads served so far.
  UINTN ConfigReads() const { return ConfigReads_; }

 private:
  struct Instance {
    EFI_PCI_IO_PROTOCOL Protocol;
    PciDevice *Owner;
  };

  static PciDevice *Owner(EFI_PCI_IO_PROTOCOL *This);
  static EFI_STATUS EFIAPI ConfigRead(EFI_PCI_IO_PROTOCOL *This,
                                      EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                      UINT32 Offset, UINTN Count,
                                      VOID *Buffer);
  static EFI_STATUS EFIAPI ConfigWrite(EFI_PCI_IO_PROTOCOL *This,
                                       EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                       UINT32 Offset, UINTN Count,
                                       VOID *Buffer);
  static EFI_STATUS EFIAPI NoBarAccess(EFI_PCI_IO_PROTOCOL *This,
                                       EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                       UINT8 BarIndex, UINT64 Offset,
                                       UINTN Count, VOID *Buffer);
  static EFI_STATUS EFIAPI GetLocation(EFI_PCI_IO_PROTOCOL *This,
                                       UINTN *Segment, UINTN *Bus,
                                       UINTN *Device, UINTN *Function);
  static EFI_STATUS EFIAPI Attributes(
      EFI_PCI_IO_PROTOCOL *This,
      EFI_PCI_IO_PROTOCOL_ATTRIBUTE_OPERATION Operation, UINT64 Attributes,
      UINT64 *Result);
  // Checks a configuration access, the instance included; the byte count
  // on success.
  static EFI_STATUS CheckAccess(EFI_PCI_IO_PROTOCOL *This,
                                EFI_PCI_IO_PROTOCOL_WIDTH Width,
                                UINT32 Offset, UINTN Count, VOID *Buffer,
                                UINTN &Bytes);

  Firmware &Firmware_;
  Instance Instance_;
  PciLocation Location_;
  std::array<UINT8, 256> Config_;
  std::vector<UINT8> DevicePath_;
  EFI_HANDLE Handle_ = nullptr;
  UINTN ConfigReads_ = 0;
};

}  // namespace emu
