#pragma once

#include <Uefi.h>

#define EFI_PCI_IO_PROTOCOL_GUID \
  {0x4CF5B200, 0x68B8, 0x4CA5, {0x9E, 0xEC, 0xB2, 0x3E, 0x3F, 0x50, 0x02, 0x9A}}

typedef enum {
  EfiPciIoWidthUint8,
  EfiPciIoWidthUint16,
  EfiPciIoWidthUint32,
  EfiPciIoWidthUint64,
  EfiPciIoWidthFifoUint8,
  EfiPciIoWidthFifoUint16,
  EfiPciIoWidthFifoUint32,
  EfiPciIoWidthFifoUint64,
  EfiPciIoWidthFillUint8,
  EfiPciIoWidthFillUint16,
  EfiPciIoWidthFillUint32,
  EfiPciIoWidthFillUint64,
  EfiPciIoWidthMaximum
} EFI_PCI_IO_PROTOCOL_WIDTH;

typedef struct _EFI_PCI_IO_PROTOCOL EFI_PCI_IO_PROTOCOL;

typedef EFI_STATUS(EFIAPI *EFI_PCI_IO_PROTOCOL_MEM)(
    EFI_PCI_IO_PROTOCOL *This, EFI_PCI_IO_PROTOCOL_WIDTH Width, UINT8 BarIndex,
    UINT64 Offset, UINTN Count, VOID *Buffer);
typedef EFI_STATUS(EFIAPI *EFI_PCI_IO_PROTOCOL_CONFIG)(
    EFI_PCI_IO_PROTOCOL *This, EFI_PCI_IO_PROTOCOL_WIDTH Width, UINT32 Offset,
    UINTN Count, VOID *Buffer);

typedef struct {
  EFI_PCI_IO_PROTOCOL_MEM Read;
  EFI_PCI_IO_PROTOCOL_MEM Write;
} EFI_PCI_IO_PROTOCOL_ACCESS;

typedef struct {
  EFI_PCI_IO_PROTOCOL_CONFIG Read;
  EFI_PCI_IO_PROTOCOL_CONFIG Write;
} EFI_PCI_IO_PROTOCOL_CONFIG_ACCESS;

typedef enum {
  EfiPciIoAttributeOperationGet,
  EfiPciIoAttributeOperationSet,
  EfiPciIoAttributeOperationEnable,
  EfiPciIoAttributeOperationDisable,
  EfiPciIoAttributeOperationSupported,
  EfiPciIoAttributeOperationMaximum
} EFI_PCI_IO_PROTOCOL_ATTRIBUTE_OPERATION;

struct _EFI_PCI_IO_PROTOCOL {
  VOID *PollMem;
  VOID *PollIo;
  EFI_PCI_IO_PROTOCOL_ACCESS Mem;
  EFI_PCI_IO_PROTOCOL_ACCESS Io;
  EFI_PCI_IO_PROTOCOL_CONFIG_ACCESS Pci;
  VOID *CopyMem;
  VOID *Map;
  VOID *Unmap;
  VOID *AllocateBuffer;
  VOID *FreeBuffer;
  VOID *Flush;
  EFI_STATUS(EFIAPI *GetLocation)
  (EFI_PCI_IO_PROTOCOL *This, UINTN *SegmentNumber, UINTN *BusNumber,
   UINTN *DeviceNumber, UINTN *FunctionNumber);
  EFI_STATUS(EFIAPI *Attributes)
  (EFI_PCI_IO_PROTOCOL *This, EFI_PCI_IO_PROTOCOL_ATTRIBUTE_OPERATION Operation,
   UINT64 Attributes, UINT64 *Result);
  VOID *GetBarAttributes;
  VOID *SetBarAttributes;
  UINT64 RomSize;
  VOID *RomImage;
};

extern EFI_GUID gEfiPciIoProtocolGuid;
