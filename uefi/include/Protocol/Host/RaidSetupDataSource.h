// The data-source protocol a module installs on its image handle: the host's
// page framework reads and writes control values through it.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#define RAID_SETUP_DATA_SOURCE_PROTOCOL_GUID \
  {0xB0C1621F, 0x8C63, 0x4655, {0x83, 0xF6, 0xB4, 0xB4, 0xBE, 0xFA, 0x1D, 0x75}}

// The identity the module's data source carries in its first 16 bytes.
#define RAID_SETUP_DATA_SOURCE_GUID \
  {0x97871DC8, 0x81E8, 0x4606, {0x9C, 0x21, 0x13, 0x4A, 0x17, 0x02, 0x73, 0xC3}}

// Value is a control-kind specific record (docs/host-protocols.md).
typedef EFI_STATUS(EFIAPI *HOST_DATA_SOURCE_CALLBACK)(HOST_PAGE_NODE *Node,
                                                      VOID *Value);

typedef struct {
  EFI_GUID DataSourceId;
  UINTN Reserved;
  HOST_DATA_SOURCE_CALLBACK GetValue;
  HOST_DATA_SOURCE_CALLBACK SetValue;
  HOST_DATA_SOURCE_CALLBACK GetOptions;
  HOST_DATA_SOURCE_CALLBACK GetTable;
  HOST_DATA_SOURCE_CALLBACK SetTableCell;
} RAID_SETUP_DATA_SOURCE_PROTOCOL;

extern EFI_GUID gRaidSetupDataSourceProtocolGuid;
