// Finding the module's package list in the firmware's HII database: list
// the string package lists, export each, and compare its GUID with the
// one of the package list in the module's image.
#include "ModuleStrings.h"

#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Hii.h>

namespace {

// The database slots this search needs, typed (UEFI 2.x, 33.3.8).
typedef EFI_STATUS(EFIAPI *HII_LIST_PACKAGE_LISTS)(
    const EFI_HII_DATABASE_PROTOCOL *This, UINT8 PackageType,
    const EFI_GUID *PackageGuid, UINTN *HandleBufferLength, EFI_HII_HANDLE *Handle);
typedef EFI_STATUS(EFIAPI *HII_EXPORT_PACKAGE_LISTS)(
    const EFI_HII_DATABASE_PROTOCOL *This, EFI_HII_HANDLE Handle, UINTN *BufferSize,
    EFI_HII_PACKAGE_LIST_HEADER *Buffer);

constexpr UINTN kMaxPackageLists = 256;

// Whether the package list registered under Handle has the GUID Wanted.
BOOLEAN HasGuid(EFI_HII_DATABASE_PROTOCOL *Database, EFI_HII_HANDLE Handle,
                const EFI_GUID &Wanted) {
  auto Export = reinterpret_cast<HII_EXPORT_PACKAGE_LISTS>(Database->ExportPackageLists);
  UINTN Size = 0;
  if (Export(Database, Handle, &Size, nullptr) != EFI_BUFFER_TOO_SMALL ||
      Size < sizeof(EFI_HII_PACKAGE_LIST_HEADER)) {
    return FALSE;
  }
  auto *List = static_cast<EFI_HII_PACKAGE_LIST_HEADER *>(AllocatePool(Size));
  if (List == nullptr) {
    return FALSE;
  }
  const BOOLEAN Match = !EFI_ERROR(Export(Database, Handle, &Size, List)) &&
                        CompareGuid(List->PackageListGuid, Wanted);
  FreePool(List);
  return Match;
}

}  // namespace

EFI_HII_HANDLE FindModuleHiiHandle(EFI_HANDLE ModuleHandle) {
  EFI_HII_PACKAGE_LIST_HEADER *Carried = nullptr;
  EFI_HII_DATABASE_PROTOCOL *Database = nullptr;
  if (EFI_ERROR(gBS->HandleProtocol(ModuleHandle, &gEfiHiiPackageListProtocolGuid,
                                    reinterpret_cast<VOID **>(&Carried))) ||
      EFI_ERROR(gBS->LocateProtocol(&gEfiHiiDatabaseProtocolGuid, nullptr,
                                    reinterpret_cast<VOID **>(&Database)))) {
    return nullptr;
  }
  auto List = reinterpret_cast<HII_LIST_PACKAGE_LISTS>(Database->ListPackageLists);
  EFI_HII_HANDLE Handles[kMaxPackageLists];
  UINTN Size = sizeof(Handles);
  if (EFI_ERROR(List(Database, EFI_HII_PACKAGE_STRINGS, nullptr, &Size, Handles))) {
    return nullptr;
  }
  for (UINTN I = 0; I < Size / sizeof(EFI_HII_HANDLE); I++) {
    if (HasGuid(Database, Handles[I], Carried->PackageListGuid)) {
      return Handles[I];
    }
  }
  return nullptr;
}

EFI_STATUS FetchHiiString(EFI_HII_HANDLE Handle, const CHAR8 *Language,
                          EFI_STRING_ID Id, CHAR16 *Text, UINTN TextSize) {
  EFI_HII_STRING_PROTOCOL *Strings = nullptr;
  EFI_STATUS Status = gBS->LocateProtocol(&gEfiHiiStringProtocolGuid, nullptr,
                                          reinterpret_cast<VOID **>(&Strings));
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Handle == nullptr) {
    return EFI_NOT_FOUND;
  }
  UINTN Size = TextSize;
  return Strings->GetString(Strings, Language, Handle, Id, Text, &Size, nullptr);
}
