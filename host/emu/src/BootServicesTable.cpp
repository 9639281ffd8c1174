// The boot-services table: each slot forwards to the current Firmware.
// Services a boot-service driver of this kind never needs (events, timers,
// pages, image loading, memory map) answer EFI_UNSUPPORTED and are noted
// in Firmware::UnsupportedCalls().
#include <cstring>

#include "ServiceTables.h"
#include "emu/Firmware.h"

namespace emu {
namespace {

Firmware &Fw() { return Firmware::Current(); }

// ---- Task priority ------------------------------------------------------

EFI_TPL EFIAPI RaiseTpl(EFI_TPL NewTpl) {
  const EFI_TPL Old = Fw().CurrentTpl();
  Fw().SetTpl(NewTpl);
  return Old;
}

VOID EFIAPI RestoreTpl(EFI_TPL OldTpl) { Fw().SetTpl(OldTpl); }

// ---- Memory -------------------------------------------------------------

EFI_STATUS EFIAPI AllocatePages(EFI_ALLOCATE_TYPE, EFI_MEMORY_TYPE, UINTN,
                                EFI_PHYSICAL_ADDRESS *) {
  return Unsupported("AllocatePages");
}

EFI_STATUS EFIAPI FreePages(EFI_PHYSICAL_ADDRESS, UINTN) {
  return Unsupported("FreePages");
}

EFI_STATUS EFIAPI GetMemoryMap(UINTN *, EFI_MEMORY_DESCRIPTOR *, UINTN *,
                               UINTN *, UINT32 *) {
  return Unsupported("GetMemoryMap");
}

EFI_STATUS EFIAPI AllocatePool(EFI_MEMORY_TYPE PoolType, UINTN Size,
                               VOID **Buffer) {
  return Fw().Memory().Allocate(PoolType, Size, Buffer);
}

EFI_STATUS EFIAPI FreePool(VOID *Buffer) { return Fw().Memory().Free(Buffer); }

VOID EFIAPI CopyMem(VOID *Destination, VOID *Source, UINTN Length) {
  if (Length != 0) {
    std::memmove(Destination, Source, Length);
  }
}

VOID EFIAPI SetMem(VOID *Buffer, UINTN Size, UINT8 Value) {
  if (Size != 0) {
    std::memset(Buffer, Value, Size);
  }
}

// ---- Events and timers --------------------------------------------------

EFI_STATUS EFIAPI CreateEvent(UINT32, EFI_TPL, EFI_EVENT_NOTIFY, VOID *,
                              EFI_EVENT *) {
  return Unsupported("CreateEvent");
}

EFI_STATUS EFIAPI CreateEventEx(UINT32, EFI_TPL, EFI_EVENT_NOTIFY,
                                const VOID *, const EFI_GUID *, EFI_EVENT *) {
  return Unsupported("CreateEventEx");
}

EFI_STATUS EFIAPI SetTimer(EFI_EVENT, EFI_TIMER_DELAY, UINT64) {
  return Unsupported("SetTimer");
}

EFI_STATUS EFIAPI WaitForEvent(UINTN, EFI_EVENT *, UINTN *) {
  return Unsupported("WaitForEvent");
}

EFI_STATUS EFIAPI SignalEvent(EFI_EVENT) { return Unsupported("SignalEvent"); }

EFI_STATUS EFIAPI CloseEvent(EFI_EVENT) { return Unsupported("CloseEvent"); }

EFI_STATUS EFIAPI CheckEvent(EFI_EVENT) { return Unsupported("CheckEvent"); }

// ---- Protocol handlers --------------------------------------------------

EFI_STATUS EFIAPI InstallProtocolInterface(EFI_HANDLE *Handle,
                                           EFI_GUID *Protocol,
                                           EFI_INTERFACE_TYPE InterfaceType,
                                           VOID *Interface) {
  if (Protocol == nullptr || InterfaceType != EFI_NATIVE_INTERFACE) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Install(Handle, *Protocol, Interface);
}

EFI_STATUS EFIAPI ReinstallProtocolInterface(EFI_HANDLE Handle,
                                             EFI_GUID *Protocol,
                                             VOID *OldInterface,
                                             VOID *NewInterface) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Reinstall(Handle, *Protocol, OldInterface,
                                  NewInterface);
}

EFI_STATUS EFIAPI UninstallProtocolInterface(EFI_HANDLE Handle,
                                             EFI_GUID *Protocol,
                                             VOID *Interface) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Uninstall(Handle, *Protocol, Interface);
}

EFI_STATUS EFIAPI HandleProtocol(EFI_HANDLE Handle, EFI_GUID *Protocol,
                                 VOID **Interface) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Find(Handle, *Protocol, Interface);
}

EFI_STATUS EFIAPI RegisterProtocolNotify(EFI_GUID *, EFI_EVENT, VOID **) {
  return Unsupported("RegisterProtocolNotify");
}

// The handles a search selects; Status is EFI_INVALID_PARAMETER for a bad
// search, EFI_NOT_FOUND for an empty result.
std::vector<EFI_HANDLE> SearchHandles(EFI_LOCATE_SEARCH_TYPE SearchType,
                                      const EFI_GUID *Protocol,
                                      EFI_STATUS &Status) {
  Status = EFI_SUCCESS;
  std::vector<EFI_HANDLE> Handles;
  switch (SearchType) {
    case AllHandles:
      Handles = Fw().Handles().AllHandles();
      break;
    case ByProtocol:
      if (Protocol == nullptr) {
        Status = EFI_INVALID_PARAMETER;
        return Handles;
      }
      Handles = Fw().Handles().HandlesWith(*Protocol);
      break;
    default:
      // No protocol notifications exist, so no registration can be valid.
      Status = EFI_INVALID_PARAMETER;
      return Handles;
  }
  if (Handles.empty()) {
    Status = EFI_NOT_FOUND;
  }
  return Handles;
}

EFI_STATUS EFIAPI LocateHandle(EFI_LOCATE_SEARCH_TYPE SearchType,
                               EFI_GUID *Protocol, VOID *SearchKey,
                               UINTN *BufferSize, EFI_HANDLE *Buffer) {
  if (BufferSize == nullptr || (*BufferSize != 0 && Buffer == nullptr)) {
    return EFI_INVALID_PARAMETER;
  }
  EFI_STATUS Status;
  const auto Handles = SearchHandles(SearchType, Protocol, Status);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  const UINTN Needed = Handles.size() * sizeof(EFI_HANDLE);
  const UINTN Available = *BufferSize;
  *BufferSize = Needed;
  if (Available < Needed) {
    return EFI_BUFFER_TOO_SMALL;
  }
  std::memcpy(Buffer, Handles.data(), Needed);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI LocateDevicePath(EFI_GUID *, EFI_DEVICE_PATH_PROTOCOL **,
                                   EFI_HANDLE *) {
  return Unsupported("LocateDevicePath");
}

EFI_STATUS EFIAPI InstallConfigurationTable(EFI_GUID *Guid, VOID *Table) {
  if (Guid == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().InstallConfigurationTable(*Guid, Table);
}

// ---- Images -------------------------------------------------------------

EFI_STATUS EFIAPI LoadImage(BOOLEAN, EFI_HANDLE, EFI_DEVICE_PATH_PROTOCOL *,
                            VOID *, UINTN, EFI_HANDLE *) {
  return Unsupported("LoadImage");
}

EFI_STATUS EFIAPI StartImage(EFI_HANDLE, UINTN *, CHAR16 **) {
  return Unsupported("StartImage");
}

EFI_STATUS EFIAPI Exit(EFI_HANDLE, EFI_STATUS, UINTN, CHAR16 *) {
  return Unsupported("Exit");
}

EFI_STATUS EFIAPI UnloadImage(EFI_HANDLE ImageHandle) {
  return Fw().UnloadImage(ImageHandle);
}

EFI_STATUS EFIAPI ExitBootServices(EFI_HANDLE, UINTN) {
  return Unsupported("ExitBootServices");
}

// ---- Miscellaneous ------------------------------------------------------

EFI_STATUS EFIAPI GetNextMonotonicCount(UINT64 *Count) {
  if (Count == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Count = Fw().Clock().NextMonotonicCount();
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Stall(UINTN Microseconds) {
  Fw().Clock().CountStall();
  Fw().Clock().Stall(Microseconds);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetWatchdogTimer(UINTN, UINT64, UINTN, CHAR16 *) {
  // There is no watchdog to arm or disarm; firmware accepts the request.
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI ConnectController(EFI_HANDLE ControllerHandle,
                                    EFI_HANDLE *DriverImageHandle,
                                    EFI_DEVICE_PATH_PROTOCOL *,
                                    BOOLEAN Recursive) {
  const EFI_HANDLE Driver =
      DriverImageHandle == nullptr ? nullptr : *DriverImageHandle;
  return Fw().Controllers().Connect(ControllerHandle, Driver, Recursive != 0,
                                    Fw().Handles().IsValid(ControllerHandle));
}

EFI_STATUS EFIAPI DisconnectController(EFI_HANDLE ControllerHandle,
                                       EFI_HANDLE DriverImageHandle,
                                       EFI_HANDLE ChildHandle) {
  return Fw().Controllers().Disconnect(
      ControllerHandle, DriverImageHandle, ChildHandle,
      Fw().Handles().IsValid(ControllerHandle));
}

// ---- Open and close protocol --------------------------------------------

EFI_STATUS EFIAPI OpenProtocol(EFI_HANDLE Handle, EFI_GUID *Protocol,
                               VOID **Interface, EFI_HANDLE AgentHandle,
                               EFI_HANDLE ControllerHandle, UINT32 Attributes) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Open(Handle, *Protocol, Interface, AgentHandle,
                             ControllerHandle, Attributes);
}

EFI_STATUS EFIAPI CloseProtocol(EFI_HANDLE Handle, EFI_GUID *Protocol,
                                EFI_HANDLE AgentHandle,
                                EFI_HANDLE ControllerHandle) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Close(Handle, *Protocol, AgentHandle,
                              ControllerHandle);
}

// Copies Items into a new pool buffer handed to the caller.
template <typename T>
EFI_STATUS CopyToPool(const std::vector<T> &Items, T **Buffer) {
  VOID *Memory = nullptr;
  const EFI_STATUS Status = Fw().Memory().Allocate(
      EfiBootServicesData, Items.size() * sizeof(T), &Memory);
  if (EFI_ERROR(Status)) {
    return EFI_OUT_OF_RESOURCES;
  }
  if (!Items.empty()) {
    std::memcpy(Memory, Items.data(), Items.size() * sizeof(T));
  }
  *Buffer = static_cast<T *>(Memory);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI OpenProtocolInformation(
    EFI_HANDLE Handle, EFI_GUID *Protocol,
    EFI_OPEN_PROTOCOL_INFORMATION_ENTRY **EntryBuffer, UINTN *EntryCount) {
  if (Protocol == nullptr || EntryBuffer == nullptr || EntryCount == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  VOID *Interface = nullptr;
  if (EFI_ERROR(Fw().Handles().Find(Handle, *Protocol, &Interface))) {
    return EFI_NOT_FOUND;
  }
  const auto Entries = Fw().Handles().OpenInformation(Handle, *Protocol);
  const EFI_STATUS Status = CopyToPool(Entries, EntryBuffer);
  *EntryCount = EFI_ERROR(Status) ? 0 : Entries.size();
  return Status;
}

EFI_STATUS EFIAPI ProtocolsPerHandle(EFI_HANDLE Handle,
                                     EFI_GUID ***ProtocolBuffer,
                                     UINTN *ProtocolBufferCount) {
  if (!Fw().Handles().IsValid(Handle) || ProtocolBuffer == nullptr ||
      ProtocolBufferCount == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const auto Guids = Fw().Handles().ProtocolsOn(Handle);
  const EFI_STATUS Status = CopyToPool(Guids, ProtocolBuffer);
  *ProtocolBufferCount = EFI_ERROR(Status) ? 0 : Guids.size();
  return Status;
}

EFI_STATUS EFIAPI LocateHandleBuffer(EFI_LOCATE_SEARCH_TYPE SearchType,
                                     EFI_GUID *Protocol, VOID *SearchKey,
                                     UINTN *NoHandles, EFI_HANDLE **Buffer) {
  if (NoHandles == nullptr || Buffer == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *NoHandles = 0;
  *Buffer = nullptr;
  EFI_STATUS Status;
  const auto Handles = SearchHandles(SearchType, Protocol, Status);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  Status = CopyToPool(Handles, Buffer);
  if (!EFI_ERROR(Status)) {
    *NoHandles = Handles.size();
  }
  return Status;
}

EFI_STATUS EFIAPI LocateProtocol(EFI_GUID *Protocol, VOID *Registration,
                                 VOID **Interface) {
  if (Protocol == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  return Fw().Handles().Locate(*Protocol, Interface);
}

// Reads the (GUID, interface) pairs of a variadic call up to the NULL GUID.
ProtocolList ReadProtocolPairs(VA_LIST &Args) {
  ProtocolList List;
  while (true) {
    const EFI_GUID *Guid = VA_ARG(Args, EFI_GUID *);
    if (Guid == nullptr) {
      return List;
    }
    VOID *Interface = VA_ARG(Args, VOID *);
    List.emplace_back(Guid, Interface);
  }
}

EFI_STATUS EFIAPI InstallMultipleProtocolInterfaces(EFI_HANDLE *Handle, ...) {
  VA_LIST Args;
  VA_START(Args, Handle);
  const ProtocolList List = ReadProtocolPairs(Args);
  VA_END(Args);
  return Fw().Handles().InstallMultiple(Handle, List);
}

EFI_STATUS EFIAPI UninstallMultipleProtocolInterfaces(EFI_HANDLE Handle, ...) {
  VA_LIST Args;
  VA_START(Args, Handle);
  const ProtocolList List = ReadProtocolPairs(Args);
  VA_END(Args);
  return Fw().Handles().UninstallMultiple(Handle, List);
}

EFI_STATUS EFIAPI CalculateCrc32(VOID *Data, UINTN DataSize, UINT32 *Crc) {
  if (Data == nullptr || DataSize == 0 || Crc == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Crc = Crc32(Data, DataSize);
  return EFI_SUCCESS;
}

}  // namespace

UINT32 Crc32(const VOID *Data, UINTN Size) {
  UINT32 Crc = 0xFFFFFFFFu;
  const auto *Bytes = static_cast<const UINT8 *>(Data);
  for (UINTN I = 0; I < Size; I++) {
    Crc ^= Bytes[I];
    for (int Bit = 0; Bit < 8; Bit++) {
      Crc = (Crc >> 1) ^ (0xEDB88320u & (0u - (Crc & 1u)));
    }
  }
  return ~Crc;
}

EFI_STATUS Unsupported(const char *Service) {
  Firmware::Current().RecordUnsupported(Service);
  return EFI_UNSUPPORTED;
}

VOID SealTableHeader(EFI_TABLE_HEADER &Header) {
  Header.CRC32 = 0;
  Header.CRC32 = Crc32(&Header, Header.HeaderSize);
}

VOID FillBootServices(EFI_BOOT_SERVICES &Table) {
  Table = {};
  Table.Hdr = {EFI_BOOT_SERVICES_SIGNATURE, EFI_2_70_SYSTEM_TABLE_REVISION,
               sizeof(EFI_BOOT_SERVICES), 0, 0};
  Table.RaiseTPL = RaiseTpl;
  Table.RestoreTPL = RestoreTpl;
  Table.AllocatePages = AllocatePages;
  Table.FreePages = FreePages;
  Table.GetMemoryMap = GetMemoryMap;
  Table.AllocatePool = AllocatePool;
  Table.FreePool = FreePool;
  Table.CreateEvent = CreateEvent;
  Table.SetTimer = SetTimer;
  Table.WaitForEvent = WaitForEvent;
  Table.SignalEvent = SignalEvent;
  Table.CloseEvent = CloseEvent;
  Table.CheckEvent = CheckEvent;
  Table.InstallProtocolInterface = InstallProtocolInterface;
  Table.ReinstallProtocolInterface = ReinstallProtocolInterface;
  Table.UninstallProtocolInterface = UninstallProtocolInterface;
  Table.HandleProtocol = HandleProtocol;
  Table.Reserved = nullptr;
  Table.RegisterProtocolNotify = RegisterProtocolNotify;
  Table.LocateHandle = LocateHandle;
  Table.LocateDevicePath = LocateDevicePath;
  Table.InstallConfigurationTable = InstallConfigurationTable;
  Table.LoadImage = LoadImage;
  Table.StartImage = StartImage;
  Table.Exit = Exit;
  Table.UnloadImage = UnloadImage;
  Table.ExitBootServices = ExitBootServices;
  Table.GetNextMonotonicCount = GetNextMonotonicCount;
  Table.Stall = Stall;
  Table.SetWatchdogTimer = SetWatchdogTimer;
  Table.ConnectController = ConnectController;
  Table.DisconnectController = DisconnectController;
  Table.OpenProtocol = OpenProtocol;
  Table.CloseProtocol = CloseProtocol;
  Table.OpenProtocolInformation = OpenProtocolInformation;
  Table.ProtocolsPerHandle = ProtocolsPerHandle;
  Table.LocateHandleBuffer = LocateHandleBuffer;
  Table.LocateProtocol = LocateProtocol;
  Table.InstallMultipleProtocolInterfaces = InstallMultipleProtocolInterfaces;
  Table.UninstallMultipleProtocolInterfaces =
      UninstallMultipleProtocolInterfaces;
  Table.CalculateCrc32 = CalculateCrc32;
  Table.CopyMem = CopyMem;
  Table.SetMem = SetMem;
  Table.CreateEventEx = CreateEventEx;
  SealTableHeader(Table.Hdr);
}

}  // namespace emu
