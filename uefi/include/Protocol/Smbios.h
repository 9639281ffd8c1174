// SMBIOS as published in the configuration table: the 2.x entry point
// ("_SM_") and the structures the module reads.
#pragma once

#include <Uefi.h>

#define SMBIOS_TABLE_GUID \
  {0xEB9D2D31, 0x2D88, 0x11D3, {0x9A, 0x16, 0x00, 0x90, 0x27, 0x3F, 0xC1, 0x4D}}
#define SMBIOS3_TABLE_GUID \
  {0xF2FD1544, 0x9794, 0x4A2C, {0x99, 0x2E, 0xE5, 0xBB, 0xCF, 0x20, 0xE3, 0x94}}

#define SMBIOS_TYPE_BIOS_INFORMATION 0
#define SMBIOS_TYPE_SYSTEM_SLOTS 9
#define SMBIOS_TYPE_END_OF_TABLE 127

#pragma pack(push, 1)
typedef struct {
  UINT8 AnchorString[4];  // "_SM_"
  UINT8 EntryPointStructureChecksum;
  UINT8 EntryPointLength;
  UINT8 MajorVersion;
  UINT8 MinorVersion;
  UINT16 MaxStructureSize;
  UINT8 EntryPointRevision;
  UINT8 FormattedArea[5];
  UINT8 IntermediateAnchorString[5];  // "_DMI_"
  UINT8 IntermediateChecksum;
  UINT16 TableLength;
  UINT32 TableAddress;
  UINT16 NumberOfSmbiosStructures;
  UINT8 SmbiosBcdRevision;
} SMBIOS_TABLE_ENTRY_POINT;

typedef struct {
  UINT8 Type;
  UINT8 Length;
  UINT16 Handle;
} SMBIOS_STRUCTURE;

// Offset of the BIOS-version string number in a type 0 (BIOS Information)
// structure.
#define SMBIOS_TYPE0_BIOS_VERSION_OFFSET 0x05

// Offsets inside a type 9 (System Slots) structure.
#define SMBIOS_TYPE9_SLOT_ID_OFFSET 0x09
#define SMBIOS_TYPE9_SEGMENT_OFFSET 0x0D
#define SMBIOS_TYPE9_BUS_OFFSET 0x0F
#define SMBIOS_TYPE9_DEVFN_OFFSET 0x10
#pragma pack(pop)

static_assert(sizeof(SMBIOS_TABLE_ENTRY_POINT) == 0x1F, "2.x entry point");

extern EFI_GUID gEfiSmbiosTableGuid;
extern EFI_GUID gEfiSmbios3TableGuid;
