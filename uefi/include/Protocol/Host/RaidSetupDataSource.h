// The data-source protocol a module installs on its image handle: the host's
// page framework reads and writes control values through it. The value
// records are in PageFramework.h; docs/page-framework.md gives the contract.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#define RAID_SETUP_DATA_SOURCE_PROTOCOL_GUID \
  {0xB0C1621F, 0x8C63, 0x4655, {0x83, 0xF6, 0xB4, 0xB4, 0xBE, 0xFA, 0x1D, 0x75}}

// The identity the module's data source carries in its first 16 bytes.
#define RAID_SETUP_DATA_SOURCE_GUID \
  {0x97871DC8, 0x81E8, 0x4606, {0x9C, 0x21, 0x13, 0x4A, 0x17, 0x02, 0x73, 0xC3}}

// Value points at the record of the callback (below). A callback answers
// EFI_SUCCESS when it served the node, EFI_NOT_FOUND (or EFI_UNSUPPORTED)
// when the module keeps no value for it, so that the host uses the
// control's own text id and value; any other error from SetValue or
// SetTableCell refuses the operator's value.
typedef EFI_STATUS(EFIAPI *HOST_DATA_SOURCE_CALLBACK)(HOST_PAGE_NODE *Node,
                                                      VOID *Value);

typedef struct {
  EFI_GUID DataSourceId;
  UINTN Reserved;
  HOST_DATA_SOURCE_CALLBACK GetValue;      // HOST_CONTROL_VALUE
  HOST_DATA_SOURCE_CALLBACK SetValue;      // HOST_CONTROL_VALUE
  HOST_DATA_SOURCE_CALLBACK GetOptions;    // HOST_OPTION_LIST
  HOST_DATA_SOURCE_CALLBACK GetTable;      // HOST_TABLE
  HOST_DATA_SOURCE_CALLBACK SetTableCell;  // HOST_TABLE_CELL_CHANGE
} RAID_SETUP_DATA_SOURCE_PROTOCOL;

extern EFI_GUID gRaidSetupDataSourceProtocolGuid;
