// The system table, boot services and runtime services in UEFI slot order,
// so that the table real firmware hands over is used as it is.
#pragma once

#include <Uefi/Base.h>

typedef struct {
  UINT64 Signature;
  UINT32 Revision;
  UINT32 HeaderSize;
  UINT32 CRC32;
  UINT32 Reserved;
} EFI_TABLE_HEADER;

#define EFI_SYSTEM_TABLE_SIGNATURE 0x5453595320494249ULL
#define EFI_BOOT_SERVICES_SIGNATURE 0x56524553544f4f42ULL
#define EFI_RUNTIME_SERVICES_SIGNATURE 0x56524553544e5552ULL
#define EFI_2_70_SYSTEM_TABLE_REVISION ((2 << 16) | 70)

typedef struct {
  UINT8 Type;
  UINT8 SubType;
  UINT8 Length[2];
} EFI_DEVICE_PATH_PROTOCOL;

// ---- Console ------------------------------------------------------------

typedef struct {
  UINT16 ScanCode;
  CHAR16 UnicodeChar;
} EFI_INPUT_KEY;

#define SCAN_NULL 0x0000
#define SCAN_UP 0x0001
#define SCAN_DOWN 0x0002
#define SCAN_RIGHT 0x0003
#define SCAN_LEFT 0x0004
#define SCAN_HOME 0x0005
#define SCAN_END 0x0006
#define SCAN_PAGE_UP 0x0009
#define SCAN_PAGE_DOWN 0x000A
#define SCAN_F1 0x000B
#define SCAN_F2 0x000C
#define SCAN_F10 0x0014
#define SCAN_ESC 0x0017

typedef struct _EFI_SIMPLE_TEXT_INPUT_PROTOCOL EFI_SIMPLE_TEXT_INPUT_PROTOCOL;
struct _EFI_SIMPLE_TEXT_INPUT_PROTOCOL {
  EFI_STATUS(EFIAPI *Reset)
  (EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This, BOOLEAN ExtendedVerification);
  EFI_STATUS(EFIAPI *ReadKeyStroke)
  (EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This, EFI_INPUT_KEY *Key);
  EFI_EVENT WaitForKey;
};

typedef struct {
  INT32 MaxMode;
  INT32 Mode;
  INT32 Attribute;
  INT32 CursorColumn;
  INT32 CursorRow;
  BOOLEAN CursorVisible;
} SIMPLE_TEXT_OUTPUT_MODE;

typedef struct _EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL;
struct _EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL {
  EFI_STATUS(EFIAPI *Reset)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, BOOLEAN ExtendedVerification);
  EFI_STATUS(EFIAPI *OutputString)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, CHAR16 *String);
  EFI_STATUS(EFIAPI *TestString)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, CHAR16 *String);
  EFI_STATUS(EFIAPI *QueryMode)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN ModeNumber, UINTN *Columns,
   UINTN *Rows);
  EFI_STATUS(EFIAPI *SetMode)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN ModeNumber);
  EFI_STATUS(EFIAPI *SetAttribute)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN Attribute);
  EFI_STATUS(EFIAPI *ClearScreen)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This);
  EFI_STATUS(EFIAPI *SetCursorPosition)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN Column, UINTN Row);
  EFI_STATUS(EFIAPI *EnableCursor)
  (EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, BOOLEAN Visible);
  SIMPLE_TEXT_OUTPUT_MODE *Mode;
};

// ---- Boot services ------------------------------------------------------

typedef enum {
  AllocateAnyPages,
  AllocateMaxAddress,
  AllocateAddress,
  MaxAllocateType
} EFI_ALLOCATE_TYPE;

typedef enum {
  EfiReservedMemoryType,
  EfiLoaderCode,
  EfiLoaderData,
  EfiBootServicesCode,
  EfiBootServicesData,
  EfiRuntimeServicesCode,
  EfiRuntimeServicesData,
  EfiConventionalMemory,
  EfiUnusableMemory,
  EfiACPIReclaimMemory,
  EfiACPIMemoryNVS,
  EfiMemoryMappedIO,
  EfiMemoryMappedIOPortSpace,
  EfiPalCode,
  EfiPersistentMemory,
  EfiMaxMemoryType
} EFI_MEMORY_TYPE;

typedef struct {
  UINT32 Type;
  EFI_PHYSICAL_ADDRESS PhysicalStart;
  EFI_VIRTUAL_ADDRESS VirtualStart;
  UINT64 NumberOfPages;
  UINT64 Attribute;
} EFI_MEMORY_DESCRIPTOR;

typedef enum { EFI_NATIVE_INTERFACE } EFI_INTERFACE_TYPE;

typedef enum { AllHandles, ByRegisterNotify, ByProtocol } EFI_LOCATE_SEARCH_TYPE;

typedef enum { TimerCancel, TimerPeriodic, TimerRelative } EFI_TIMER_DELAY;

typedef struct {
  EFI_HANDLE AgentHandle;
  EFI_HANDLE ControllerHandle;
  UINT32 Attributes;
  UINT32 OpenCount;
} EFI_OPEN_PROTOCOL_INFORMATION_ENTRY;

#define EFI_OPEN_PROTOCOL_BY_HANDLE_PROTOCOL 0x00000001
#define EFI_OPEN_PROTOCOL_GET_PROTOCOL 0x00000002
#define EFI_OPEN_PROTOCOL_TEST_PROTOCOL 0x00000004
#define EFI_OPEN_PROTOCOL_BY_CHILD_CONTROLLER 0x00000008
#define EFI_OPEN_PROTOCOL_BY_DRIVER 0x00000010
#define EFI_OPEN_PROTOCOL_EXCLUSIVE 0x00000020

#define TPL_APPLICATION 4
#define TPL_CALLBACK 8
#define TPL_NOTIFY 16
#define TPL_HIGH_LEVEL 31

typedef VOID(EFIAPI *EFI_EVENT_NOTIFY)(EFI_EVENT Event, VOID *Context);

typedef struct {
  EFI_TABLE_HEADER Hdr;

  EFI_TPL(EFIAPI *RaiseTPL)(EFI_TPL NewTpl);
  VOID(EFIAPI *RestoreTPL)(EFI_TPL OldTpl);

  EFI_STATUS(EFIAPI *AllocatePages)
  (EFI_ALLOCATE_TYPE Type, EFI_MEMORY_TYPE MemoryType, UINTN Pages,
   EFI_PHYSICAL_ADDRESS *Memory);
  EFI_STATUS(EFIAPI *FreePages)(EFI_PHYSICAL_ADDRESS Memory, UINTN Pages);
  EFI_STATUS(EFIAPI *GetMemoryMap)
  (UINTN *MemoryMapSize, EFI_MEMORY_DESCRIPTOR *MemoryMap, UINTN *MapKey,
   UINTN *DescriptorSize, UINT32 *DescriptorVersion);
  EFI_STATUS(EFIAPI *AllocatePool)
  (EFI_MEMORY_TYPE PoolType, UINTN Size, VOID **Buffer);
  EFI_STATUS(EFIAPI *FreePool)(VOID *Buffer);

  EFI_STATUS(EFIAPI *CreateEvent)
  (UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY NotifyFunction,
   VOID *NotifyContext, EFI_EVENT *Event);
  EFI_STATUS(EFIAPI *SetTimer)
  (EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime);
  EFI_STATUS(EFIAPI *WaitForEvent)
  (UINTN NumberOfEvents, EFI_EVENT *Event, UINTN *Index);
  EFI_STATUS(EFIAPI *SignalEvent)(EFI_EVENT Event);
  EFI_STATUS(EFIAPI *CloseEvent)(EFI_EVENT Event);
  EFI_STATUS(EFIAPI *CheckEvent)(EFI_EVENT Event);

  EFI_STATUS(EFIAPI *InstallProtocolInterface)
  (EFI_HANDLE *Handle, EFI_GUID *Protocol, EFI_INTERFACE_TYPE InterfaceType,
   VOID *Interface);
  EFI_STATUS(EFIAPI *ReinstallProtocolInterface)
  (EFI_HANDLE Handle, EFI_GUID *Protocol, VOID *OldInterface,
   VOID *NewInterface);
  EFI_STATUS(EFIAPI *UninstallProtocolInterface)
  (EFI_HANDLE Handle, EFI_GUID *Protocol, VOID *Interface);
  EFI_STATUS(EFIAPI *HandleProtocol)
  (EFI_HANDLE Handle, EFI_GUID *Protocol, VOID **Interface);
  VOID *Reserved;
  EFI_STATUS(EFIAPI *RegisterProtocolNotify)
  (EFI_GUID *Protocol, EFI_EVENT Event, VOID **Registration);
  EFI_STATUS(EFIAPI *LocateHandle)
  (EFI_LOCATE_SEARCH_TYPE SearchType, EFI_GUID *Protocol, VOID *SearchKey,
   UINTN *BufferSize, EFI_HANDLE *Buffer);
  EFI_STATUS(EFIAPI *LocateDevicePath)
  (EFI_GUID *Protocol, EFI_DEVICE_PATH_PROTOCOL **DevicePath,
   EFI_HANDLE *Device);
  EFI_STATUS(EFIAPI *InstallConfigurationTable)(EFI_GUID *Guid, VOID *Table);

  EFI_STATUS(EFIAPI *LoadImage)
  (BOOLEAN BootPolicy, EFI_HANDLE ParentImageHandle,
   EFI_DEVICE_PATH_PROTOCOL *DevicePath, VOID *SourceBuffer, UINTN SourceSize,
   EFI_HANDLE *ImageHandle);
  EFI_STATUS(EFIAPI *StartImage)
  (EFI_HANDLE ImageHandle, UINTN *ExitDataSize, CHAR16 **ExitData);
  EFI_STATUS(EFIAPI *Exit)
  (EFI_HANDLE ImageHandle, EFI_STATUS ExitStatus, UINTN ExitDataSize,
   CHAR16 *ExitData);
  EFI_STATUS(EFIAPI *UnloadImage)(EFI_HANDLE ImageHandle);
  EFI_STATUS(EFIAPI *ExitBootServices)(EFI_HANDLE ImageHandle, UINTN MapKey);

  EFI_STATUS(EFIAPI *GetNextMonotonicCount)(UINT64 *Count);
  EFI_STATUS(EFIAPI *Stall)(UINTN Microseconds);
  EFI_STATUS(EFIAPI *SetWatchdogTimer)
  (UINTN Timeout, UINT64 WatchdogCode, UINTN DataSize, CHAR16 *WatchdogData);

  EFI_STATUS(EFIAPI *ConnectController)
  (EFI_HANDLE ControllerHandle, EFI_HANDLE *DriverImageHandle,
   EFI_DEVICE_PATH_PROTOCOL *RemainingDevicePath, BOOLEAN Recursive);
  EFI_STATUS(EFIAPI *DisconnectController)
  (EFI_HANDLE ControllerHandle, EFI_HANDLE DriverImageHandle,
   EFI_HANDLE ChildHandle);

  EFI_STATUS(EFIAPI *OpenProtocol)
  (EFI_HANDLE Handle, EFI_GUID *Protocol, VOID **Interface,
   EFI_HANDLE AgentHandle, EFI_HANDLE ControllerHandle, UINT32 Attributes);
  EFI_STATUS(EFIAPI *CloseProtocol)
  (EFI_HANDLE Handle, EFI_GUID *Protocol, EFI_HANDLE AgentHandle,
   EFI_HANDLE ControllerHandle);
  EFI_STATUS(EFIAPI *OpenProtocolInformation)
  (EFI_HANDLE Handle, EFI_GUID *Protocol,
   EFI_OPEN_PROTOCOL_INFORMATION_ENTRY **EntryBuffer, UINTN *EntryCount);

  EFI_STATUS(EFIAPI *ProtocolsPerHandle)
  (EFI_HANDLE Handle, EFI_GUID ***ProtocolBuffer, UINTN *ProtocolBufferCount);
  EFI_STATUS(EFIAPI *LocateHandleBuffer)
  (EFI_LOCATE_SEARCH_TYPE SearchType, EFI_GUID *Protocol, VOID *SearchKey,
   UINTN *NoHandles, EFI_HANDLE **Buffer);
  EFI_STATUS(EFIAPI *LocateProtocol)
  (EFI_GUID *Protocol, VOID *Registration, VOID **Interface);
  // Pairs of (EFI_GUID *, VOID *) ending in a NULL GUID pointer.
  EFI_STATUS(EFIAPI *InstallMultipleProtocolInterfaces)(EFI_HANDLE *Handle,
                                                        ...);
  EFI_STATUS(EFIAPI *UninstallMultipleProtocolInterfaces)(EFI_HANDLE Handle,
                                                          ...);

  EFI_STATUS(EFIAPI *CalculateCrc32)(VOID *Data, UINTN DataSize,
                                     UINT32 *Crc32);

  VOID(EFIAPI *CopyMem)(VOID *Destination, VOID *Source, UINTN Length);
  VOID(EFIAPI *SetMem)(VOID *Buffer, UINTN Size, UINT8 Value);
  EFI_STATUS(EFIAPI *CreateEventEx)
  (UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY NotifyFunction,
   const VOID *NotifyContext, const EFI_GUID *EventGroup, EFI_EVENT *Event);
} EFI_BOOT_SERVICES;

// ---- Runtime services ---------------------------------------------------

typedef struct {
  UINT16 Year;
  UINT8 Month;
  UINT8 Day;
  UINT8 Hour;
  UINT8 Minute;
  UINT8 Second;
  UINT8 Pad1;
  UINT32 Nanosecond;
  INT16 TimeZone;
  UINT8 Daylight;
  UINT8 Pad2;
} EFI_TIME;

typedef enum {
  EfiResetCold,
  EfiResetWarm,
  EfiResetShutdown,
  EfiResetPlatformSpecific
} EFI_RESET_TYPE;

typedef struct {
  EFI_TABLE_HEADER Hdr;
  EFI_STATUS(EFIAPI *GetTime)(EFI_TIME *Time, VOID *Capabilities);
  EFI_STATUS(EFIAPI *SetTime)(EFI_TIME *Time);
  EFI_STATUS(EFIAPI *GetWakeupTime)
  (BOOLEAN *Enabled, BOOLEAN *Pending, EFI_TIME *Time);
  EFI_STATUS(EFIAPI *SetWakeupTime)(BOOLEAN Enable, EFI_TIME *Time);
  EFI_STATUS(EFIAPI *SetVirtualAddressMap)
  (UINTN MemoryMapSize, UINTN DescriptorSize, UINT32 DescriptorVersion,
   EFI_MEMORY_DESCRIPTOR *VirtualMap);
  EFI_STATUS(EFIAPI *ConvertPointer)(UINTN DebugDisposition, VOID **Address);
  EFI_STATUS(EFIAPI *GetVariable)
  (CHAR16 *VariableName, EFI_GUID *VendorGuid, UINT32 *Attributes,
   UINTN *DataSize, VOID *Data);
  EFI_STATUS(EFIAPI *GetNextVariableName)
  (UINTN *VariableNameSize, CHAR16 *VariableName, EFI_GUID *VendorGuid);
  EFI_STATUS(EFIAPI *SetVariable)
  (CHAR16 *VariableName, EFI_GUID *VendorGuid, UINT32 Attributes,
   UINTN DataSize, VOID *Data);
  EFI_STATUS(EFIAPI *GetNextHighMonotonicCount)(UINT32 *HighCount);
  VOID(EFIAPI *ResetSystem)
  (EFI_RESET_TYPE ResetType, EFI_STATUS ResetStatus, UINTN DataSize,
   VOID *ResetData);
  VOID *UpdateCapsule;
  VOID *QueryCapsuleCapabilities;
  VOID *QueryVariableInfo;
} EFI_RUNTIME_SERVICES;

// ---- System table -------------------------------------------------------

typedef struct {
  EFI_GUID VendorGuid;
  VOID *VendorTable;
} EFI_CONFIGURATION_TABLE;

typedef struct {
  EFI_TABLE_HEADER Hdr;
  CHAR16 *FirmwareVendor;
  UINT32 FirmwareRevision;
  EFI_HANDLE ConsoleInHandle;
  EFI_SIMPLE_TEXT_INPUT_PROTOCOL *ConIn;
  EFI_HANDLE ConsoleOutHandle;
  EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *ConOut;
  EFI_HANDLE StandardErrorHandle;
  EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *StdErr;
  EFI_RUNTIME_SERVICES *RuntimeServices;
  EFI_BOOT_SERVICES *BootServices;
  UINTN NumberOfTableEntries;
  EFI_CONFIGURATION_TABLE *ConfigurationTable;
} EFI_SYSTEM_TABLE;

typedef EFI_STATUS(EFIAPI *EFI_IMAGE_ENTRY_POINT)(EFI_HANDLE ImageHandle,
                                                  EFI_SYSTEM_TABLE *SystemTable);
typedef EFI_STATUS(EFIAPI *EFI_IMAGE_UNLOAD)(EFI_HANDLE ImageHandle);
