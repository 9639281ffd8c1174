// Texts from the firmware's HII database, kept per handle, language and id
// until the module is unloaded: the module may hold a text while it opens a
// message box whose title the framework fetches, so no text may be
// overwritten by a later fetch.
#include "HostStrings.h"

#include <Library/BaseLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Hii.h>

namespace {

struct KeptString {
  LIST_ENTRY Link;
  EFI_HII_HANDLE Handle;
  const CHAR8 *Language;
  EFI_STRING_ID Id;
  CHAR16 *Text;
};

constinit LIST_ENTRY gKept = {nullptr, nullptr};
constinit const CHAR8 *gLanguage = "en-US";

LIST_ENTRY &Kept() {
  if (!IsListLive(&gKept)) {
    InitializeListHead(&gKept);
  }
  return gKept;
}

KeptString *FindKept(EFI_HII_HANDLE Handle, EFI_STRING_ID Id) {
  for (KeptString *Each : uefi::ListOf<&KeptString::Link>(Kept())) {
    if (Each->Handle == Handle && Each->Id == Id &&
        AsciiStrCmp(Each->Language, gLanguage) == 0) {
      return Each;
    }
  }
  return nullptr;
}

// A pool copy of the text of Id in the host language, or NULL.
CHAR16 *Fetch(EFI_HII_HANDLE Handle, EFI_STRING_ID Id) {
  EFI_HII_STRING_PROTOCOL *Strings = nullptr;
  if (EFI_ERROR(gBS->LocateProtocol(&gEfiHiiStringProtocolGuid, nullptr,
                                    reinterpret_cast<VOID **>(&Strings)))) {
    return nullptr;
  }
  UINTN Size = 0;
  EFI_STATUS Status =
      Strings->GetString(Strings, gLanguage, Handle, Id, nullptr, &Size, nullptr);
  if (Status != EFI_BUFFER_TOO_SMALL) {
    return nullptr;
  }
  CHAR16 *Text = static_cast<CHAR16 *>(AllocateZeroPool(Size + sizeof(CHAR16)));
  if (Text == nullptr) {
    return nullptr;
  }
  Status = Strings->GetString(Strings, gLanguage, Handle, Id, Text, &Size, nullptr);
  if (EFI_ERROR(Status)) {
    FreePool(Text);
    return nullptr;
  }
  return Text;
}

}  // namespace

const CHAR16 *HostString(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id) {
  if (HiiHandle == nullptr) {
    return nullptr;
  }
  KeptString *Found = FindKept(HiiHandle, Id);
  if (Found != nullptr) {
    return Found->Text;
  }
  KeptString *Record = uefi::AllocateRecord<KeptString>();
  if (Record == nullptr) {
    return nullptr;
  }
  Record->Text = Fetch(HiiHandle, Id);
  if (Record->Text == nullptr) {
    FreePool(Record);
    return nullptr;
  }
  Record->Handle = HiiHandle;
  Record->Language = gLanguage;
  Record->Id = Id;
  InsertTailList(&Kept(), &Record->Link);
  return Record->Text;
}

VOID HostSetLanguage(const CHAR8 *Language) { gLanguage = Language; }

VOID HostFreeStrings(VOID) {
  while (!IsListEmpty(&Kept())) {
    LIST_ENTRY *Node = GetFirstNode(&Kept());
    RemoveEntryList(Node);
    KeptString *Record = uefi::RecordOf<&KeptString::Link>(Node);
    FreePool(Record->Text);
    FreePool(Record);
  }
}
