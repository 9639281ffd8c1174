// The framework's life and the module's registrations: start and shutdown,
// the setup protocol's slots, the module root, registered pages, module
// callbacks and the language.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include "FrameworkState.h"

namespace framework {

constinit State gState = {};

namespace {

constexpr const CHAR8 *kLanguages[kLanguageCount] = {
    "en-US", "fr-FR", "de-DE", "es-ES", "it-IT", "ko-KR",
    "zh-Hans", "zh-Hant", "ja-JP", "ru-RU", "pt-BR"};

// The data source on the module's image handle, if it installed one.
VOID FindDataSource(EFI_HANDLE ImageHandle) {
  if (gState.DataSource != nullptr || ImageHandle == nullptr || gBS == nullptr) {
    return;
  }
  VOID *Interface = nullptr;
  if (gBS->HandleProtocol(ImageHandle, &gRaidSetupDataSourceProtocolGuid,
                          &Interface) == EFI_SUCCESS) {
    gState.DataSource =
        static_cast<RAID_SETUP_DATA_SOURCE_PROTOCOL *>(Interface);
  }
}

}  // namespace

const CHAR8 *LanguageCode(UINTN Index) {
  return Index < kLanguageCount ? kLanguages[Index] : "";
}

EFI_STATUS Initialize(const HostServices &Services, const EFI_GUID &Identity,
                      UINT32 FirstPageId) {
  if (gState.Running) {
    Shutdown();
  }
  gState = {};
  gState.Services = Services;
  gState.Identity = Identity;
  gState.FirstPageId = FirstPageId;
  HOST_LAYOUT NoLayout = {};
  Control *Record = NewControl(HOST_CONTROL_CONTAINER, 0, HOST_DISPLAY_SHOWN,
                               NoLayout, &Identity);
  if (Record == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  gState.Running = TRUE;
  HOST_PAGE_NODE *Root = MakeNode(0, &Record->Public);
  if (Root == nullptr) {
    FreeControl(Record);
    gState = {};
    return EFI_OUT_OF_RESOURCES;
  }
  gState.Root = Root;
  return EFI_SUCCESS;
}

VOID Shutdown() {
  if (!gState.Running) {
    return;
  }
  CloseMessageBox();
  FreeHelpLines();
  FreeAllMadeNodes();
  gState = {};
}

VOID FillSetupSlots(TARN_SETUP_PROTOCOL &Protocol) {
  Protocol.GetModuleRoot = GetModuleRoot;
  Protocol.GetModuleIdentity = GetModuleIdentity;
  Protocol.GetFirstPageId = GetFirstPageId;
  Protocol.RegisterPage = RegisterPage;
  Protocol.InstantiatePage = InstantiatePage;
  Protocol.MessageBox = ShowMessageBox;
  Protocol.SetProgress = SetProgress;
  Protocol.BuildControlTable = BuildControlTable;
  Protocol.ShowPage = ShowPage;
  Protocol.RedrawControl = RedrawControl;
  Protocol.RedrawScreen = RedrawScreen;
  Protocol.RegisterModuleCallbacks = RegisterModuleCallbacks;
  Protocol.ShowHelp = ShowHelp;
  Protocol.RegisterDefaultCallbacks = RegisterDefaultCallbacks;
  Protocol.FreePageNode = FreePageNode;
  Protocol.FindNode = FindNode;
  Protocol.GetLanguage = GetLanguage;
  Protocol.RegisterStepCallback = RegisterStepCallback;
}

VOID AttachDataSource(RAID_SETUP_DATA_SOURCE_PROTOCOL *DataSource) {
  gState.DataSource = DataSource;
}

VOID SetHiiHandle(EFI_HII_HANDLE HiiHandle) { gState.HiiHandle = HiiHandle; }

HOST_PAGE_NODE *ModuleRoot() { return gState.Root; }
HOST_PAGE_NODE *CurrentPage() { return gState.Page; }
HOST_PAGE_NODE *FocusNode() { return gState.Focus; }
const MessageBoxState &MessageBox() { return gState.Box; }
const HelpState &Help() { return gState.Help; }
UINTN LanguageIndex() { return gState.Language; }

EFI_STATUS EFIAPI GetModuleRoot(HOST_PAGE_NODE **Root) {
  if (Root == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Root = gState.Root;
  return gState.Root != nullptr ? EFI_SUCCESS : EFI_NOT_READY;
}

EFI_STATUS EFIAPI GetModuleIdentity(EFI_GUID **Identity) {
  if (Identity == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Identity = &gState.Identity;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetFirstPageId(UINT32 *PageId) {
  if (PageId == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *PageId = gState.FirstPageId;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RegisterPage(EFI_HANDLE ImageHandle,
                               EFI_HII_HANDLE HiiHandle, UINT32 Page,
                               TARN_PAGE_CALLBACK EnterCallback,
                               TARN_PAGE_CALLBACK LeaveCallback,
                               TARN_MODULE_CALLBACK LanguageCallback) {
  if (HiiHandle != nullptr) {
    gState.HiiHandle = HiiHandle;
  }
  FindDataSource(ImageHandle);
  RegisteredPage *Slot = nullptr;
  for (UINTN Index = 0; Index < gState.PageCount; Index++) {
    if (gState.Pages[Index].Page == Page) {
      Slot = &gState.Pages[Index];
    }
  }
  if (Slot == nullptr) {
    if (gState.PageCount == kMaxRegisteredPages) {
      return EFI_OUT_OF_RESOURCES;
    }
    Slot = &gState.Pages[gState.PageCount++];
  }
  *Slot = {Page, EnterCallback, LeaveCallback, LanguageCallback};
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RegisterModuleCallbacks(
    TARN_MODULE_CALLBACK ReturnCallback, TARN_MODULE_CALLBACK HelpCallback,
    TARN_MODULE_CALLBACK LanguageCallback) {
  gState.ReturnCallback = ReturnCallback;
  gState.HelpCallback = HelpCallback;
  gState.LanguageCallback = LanguageCallback;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RegisterDefaultCallbacks() {
  gState.ReturnCallback = nullptr;
  gState.HelpCallback = nullptr;
  gState.LanguageCallback = nullptr;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetLanguage(CHAR8 *Buffer, UINTN BufferSize) {
  const CHAR8 *Code = LanguageCode(gState.Language);
  UINTN Size = AsciiStrLen(Code) + 1;
  if (Buffer == nullptr || BufferSize < Size) {
    return EFI_BUFFER_TOO_SMALL;
  }
  CopyMem(Buffer, Code, Size);
  return EFI_SUCCESS;
}

VOID RequestRefresh() {
  if (gState.Services.Refresh != nullptr) {
    gState.Services.Refresh(gState.Services.Context);
  }
}

}  // namespace framework
