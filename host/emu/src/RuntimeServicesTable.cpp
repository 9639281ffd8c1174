// The runtime-services table. Time comes from the virtual clock, the
// monotonic count is shared with boot services; variables, capsules and
// the virtual address map are not emulated.
#include "ServiceTables.h"
#include "emu/Firmware.h"

namespace emu {
namespace {

Firmware &Fw() { return Firmware::Current(); }

// 2024-01-01 00:00:00 plus the virtual time, within the first day.
EFI_STATUS EFIAPI GetTime(EFI_TIME *Time, VOID *) {
  if (Time == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const UINT64 Seconds = (Fw().Clock().Microseconds() / 1000000) % 86400;
  *Time = {};
  Time->Year = 2024;
  Time->Month = 1;
  Time->Day = 1;
  Time->Hour = static_cast<UINT8>(Seconds / 3600);
  Time->Minute = static_cast<UINT8>(Seconds / 60 % 60);
  Time->Second = static_cast<UINT8>(Seconds % 60);
  Time->TimeZone = 0x07FF;  // unspecified
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetTime(EFI_TIME *) { return Unsupported("SetTime"); }

EFI_STATUS EFIAPI GetWakeupTime(BOOLEAN *, BOOLEAN *, EFI_TIME *) {
  return Unsupported("GetWakeupTime");
}

EFI_STATUS EFIAPI SetWakeupTime(BOOLEAN, EFI_TIME *) {
  return Unsupported("SetWakeupTime");
}

EFI_STATUS EFIAPI SetVirtualAddressMap(UINTN, UINTN, UINT32,
                                       EFI_MEMORY_DESCRIPTOR *) {
  return Unsupported("SetVirtualAddressMap");
}

EFI_STATUS EFIAPI ConvertPointer(UINTN, VOID **) {
  return Unsupported("ConvertPointer");
}

EFI_STATUS EFIAPI GetVariable(CHAR16 *, EFI_GUID *, UINT32 *, UINTN *, VOID *) {
  return Unsupported("GetVariable");
}

EFI_STATUS EFIAPI GetNextVariableName(UINTN *, CHAR16 *, EFI_GUID *) {
  return Unsupported("GetNextVariableName");
}

EFI_STATUS EFIAPI SetVariable(CHAR16 *, EFI_GUID *, UINT32, UINTN, VOID *) {
  return Unsupported("SetVariable");
}

EFI_STATUS EFIAPI GetNextHighMonotonicCount(UINT32 *HighCount) {
  if (HighCount == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *HighCount = Fw().Clock().NextHighMonotonicCount();
  return EFI_SUCCESS;
}

VOID EFIAPI ResetSystem(EFI_RESET_TYPE, EFI_STATUS, UINTN, VOID *) {
  Fw().RequestReset();
}

}  // namespace

VOID FillRuntimeServices(EFI_RUNTIME_SERVICES &Table) {
  Table = {};
  Table.Hdr = {EFI_RUNTIME_SERVICES_SIGNATURE, EFI_2_70_SYSTEM_TABLE_REVISION,
               sizeof(EFI_RUNTIME_SERVICES), 0, 0};
  Table.GetTime = GetTime;
  Table.SetTime = SetTime;
  Table.GetWakeupTime = GetWakeupTime;
  Table.SetWakeupTime = SetWakeupTime;
  Table.SetVirtualAddressMap = SetVirtualAddressMap;
  Table.ConvertPointer = ConvertPointer;
  Table.GetVariable = GetVariable;
  Table.GetNextVariableName = GetNextVariableName;
  Table.SetVariable = SetVariable;
  Table.GetNextHighMonotonicCount = GetNextHighMonotonicCount;
  Table.ResetSystem = ResetSystem;
  // UpdateCapsule, QueryCapsuleCapabilities and QueryVariableInfo are
  // declared as opaque pointers here and stay NULL.
  SealTableHeader(Table.Hdr);
}

}  // namespace emu
