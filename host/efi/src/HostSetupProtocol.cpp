// The setup protocol under real firmware: trace lines on the console, texts
// from the firmware's HII string protocol, message and progress boxes as
// console lines. The page framework's slots are harmless stubs until the
// framework runs here: pages are registered and shown nowhere.
#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>
#include <Library/MemoryAllocationLib.h>
#include <Library/PrintLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/Hii.h>

#include "HostConsole.h"
#include "HostProtocols.h"

namespace {

// A page node handed out by InstantiatePage, kept to be released.
struct PageNodeRecord {
  LIST_ENTRY Link;
  HOST_PAGE_NODE Node;
};

constinit HOST_PAGE_NODE gRootNode = {};
constinit EFI_GUID gModuleIdentity = {
    0x5A1D0C0F, 0x7E11, 0x4B6A, {0x8B, 0x2E, 0x52, 0x41, 0x49, 0x44, 0x48, 0x54}};
constinit LIST_ENTRY gPageNodes = {nullptr, nullptr};
constinit const CHAR8 *gLanguage = "en-US";
constinit CHAR16 *gStringBuffer = nullptr;
constinit UINTN gTraceLines = 0;
constinit ESA_GUI_CONTEXT gGuiContext = {};
constinit BOOLEAN gGuiConnected = FALSE;

LIST_ENTRY &PageNodes() {
  if (gPageNodes.ForwardLink == nullptr) {
    InitializeListHead(&gPageNodes);
  }
  return gPageNodes;
}

EFI_HII_STRING_PROTOCOL *HiiString() {
  EFI_HII_STRING_PROTOCOL *Strings = nullptr;
  gBS->LocateProtocol(&gEfiHiiStringProtocolGuid, nullptr,
                      reinterpret_cast<VOID **>(&Strings));
  return Strings;
}

EFI_STATUS EFIAPI GetModuleRoot(HOST_PAGE_NODE **Root) {
  gRootNode.Control = HOST_NODE_NO_CONTROL;
  *Root = &gRootNode;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetModuleIdentity(EFI_GUID **Identity) {
  *Identity = &gModuleIdentity;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GetFirstPageId(UINT32 *PageId) {
  *PageId = 0;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RegisterPage(EFI_HANDLE ImageHandle, EFI_HII_HANDLE HiiHandle,
                               UINT32 Page, TARN_PAGE_CALLBACK EnterCallback,
                               TARN_PAGE_CALLBACK LeaveCallback,
                               TARN_MODULE_CALLBACK LanguageCallback) {
  HostPrint("raidhost: page %d registered\n", Page);
  return EFI_SUCCESS;
}

// A blank node under Parent; the template is not drawn yet.
EFI_STATUS EFIAPI InstantiatePage(const HOST_PAGE_TEMPLATE *Template,
                                  HOST_PAGE_NODE *Parent, const EFI_GUID *Identity,
                                  HOST_PAGE_NODE **Page) {
  PageNodeRecord *Record = uefi::AllocateRecord<PageNodeRecord>();
  if (Record == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  Record->Node.Control = HOST_NODE_NO_CONTROL;
  Record->Node.Parent = Parent;
  if (Parent != nullptr) {
    HOST_PAGE_NODE **Last = &Parent->FirstChild;
    while (*Last != nullptr) {
      Last = &(*Last)->NextSibling;
    }
    *Last = &Record->Node;
  }
  InsertTailList(&PageNodes(), &Record->Link);
  *Page = &Record->Node;
  return EFI_SUCCESS;
}

BOOLEAN EFIAPI MessageBox(UINT8 Style, EFI_STRING_ID TitleId, EFI_STRING_ID TextId,
                          const CHAR16 *Text) {
  HostPrint("raidhost: message box style %d title %d text %d: %s\n", Style, TitleId,
            TextId, Text != nullptr ? Text : u"");
  return TRUE;
}

EFI_STATUS EFIAPI SetProgress(UINT8 Percent) {
  HostPrint("raidhost: progress %d%%\n", Percent);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI BuildControlTable(HOST_PAGE_NODE *Page,
                                    const HOST_CONTROL_DESCRIPTOR *Common,
                                    UINTN CommonCount,
                                    const HOST_CONTROL_DESCRIPTOR *Own,
                                    UINTN OwnCount) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI ShowPage(HOST_PAGE_NODE *Page, UINT32 FocusNodeId) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RedrawControl(HOST_PAGE_NODE *Node) { return EFI_SUCCESS; }

EFI_STATUS EFIAPI RedrawScreen(VOID) { return EFI_SUCCESS; }

EFI_STATUS EFIAPI RegisterModuleCallbacks(TARN_MODULE_CALLBACK ReturnCallback,
                                          TARN_MODULE_CALLBACK HelpCallback,
                                          TARN_MODULE_CALLBACK LanguageCallback) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI ShowHelp(HOST_PAGE_NODE *Page, const HOST_HELP_ENTRY *Entries,
                           UINTN Count) {
  return EFI_SUCCESS;
}

// One trace line, formatted here and printed as it is.
VOID EFIAPI DebugPrint(UINT32 Level, const CHAR8 *Format, ...) {
  CHAR8 Line[4096];
  VA_LIST Marker;
  VA_START(Marker, Format);
  const UINTN Length = AsciiVSPrint(Line, sizeof(Line), Format, Marker);
  VA_END(Marker);
  HostPutAscii(Line, Length);
  gTraceLines++;
}

// The text of Id in the host's language, from the firmware's HII database.
CHAR16 *EFIAPI GetString(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id) {
  EFI_HII_STRING_PROTOCOL *Strings = HiiString();
  if (Strings == nullptr || HiiHandle == nullptr) {
    return nullptr;
  }
  UINTN Size = 0;
  EFI_STATUS Status = Strings->GetString(Strings, gLanguage, HiiHandle, Id, nullptr,
                                         &Size, nullptr);
  if (Status != EFI_BUFFER_TOO_SMALL) {
    return nullptr;
  }
  CHAR16 *Text = static_cast<CHAR16 *>(AllocateZeroPool(Size + sizeof(CHAR16)));
  if (Text == nullptr) {
    return nullptr;
  }
  Status = Strings->GetString(Strings, gLanguage, HiiHandle, Id, Text, &Size, nullptr);
  if (EFI_ERROR(Status)) {
    FreePool(Text);
    return nullptr;
  }
  FreePool(gStringBuffer);
  gStringBuffer = Text;
  return Text;
}

EFI_STATUS EFIAPI RegisterDefaultCallbacks(VOID) { return EFI_SUCCESS; }

// The record of a node InstantiatePage made, or NULL.
PageNodeRecord *OwnRecord(HOST_PAGE_NODE *Node) {
  for (PageNodeRecord *Record : uefi::ListOf<&PageNodeRecord::Link>(PageNodes())) {
    if (&Record->Node == Node) {
      return Record;
    }
  }
  return nullptr;
}

// Detaches Node from its parent; frees it and its subtree where this host
// made the nodes.
EFI_STATUS EFIAPI FreePageNode(HOST_PAGE_NODE *Node) {
  if (Node == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Node->Parent != nullptr) {
    for (HOST_PAGE_NODE **Link = &Node->Parent->FirstChild; *Link != nullptr;
         Link = &(*Link)->NextSibling) {
      if (*Link == Node) {
        *Link = Node->NextSibling;
        break;
      }
    }
  }
  while (Node->FirstChild != nullptr) {
    FreePageNode(Node->FirstChild);
  }
  Node->Parent = nullptr;
  Node->NextSibling = nullptr;
  PageNodeRecord *Record = OwnRecord(Node);
  if (Record != nullptr) {
    RemoveEntryList(&Record->Link);
    FreePool(Record);
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI FindNode(HOST_PAGE_NODE *Root, UINT32 NodeId, HOST_PAGE_NODE **Node) {
  if (Root == nullptr || Node == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Root->NodeId == NodeId) {
    *Node = Root;
    return EFI_SUCCESS;
  }
  for (HOST_PAGE_NODE *Child = Root->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (!EFI_ERROR(FindNode(Child, NodeId, Node))) {
      return EFI_SUCCESS;
    }
  }
  return EFI_NOT_FOUND;
}

EFI_STATUS EFIAPI GetLanguage(CHAR8 *Buffer, UINTN BufferSize) {
  const UINTN Size = AsciiStrLen(gLanguage) + 1;
  if (Buffer == nullptr || BufferSize < Size) {
    return EFI_BUFFER_TOO_SMALL;
  }
  CopyMem(Buffer, gLanguage, Size);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GuiInitialize(const ESA_GUI_CONTEXT *Context) {
  gGuiContext = *Context;
  gGuiConnected = TRUE;
  HostPrint("raidhost: GUI driver connected, HII handle %p\n", Context->HiiHandle);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI GuiUnInitialize(EFI_HANDLE Instance) {
  if (!gGuiConnected || Instance != gGuiContext.ImageHandle) {
    return EFI_NOT_FOUND;
  }
  gGuiConnected = FALSE;
  HostPrint("raidhost: GUI driver disconnected\n");
  return EFI_SUCCESS;
}

constinit TARN_SETUP_PROTOCOL gSetupProtocol = {
    GetModuleRoot,   GetModuleIdentity, GetFirstPageId,     RegisterPage,
    InstantiatePage, MessageBox,        SetProgress,        BuildControlTable,
    ShowPage,        RedrawControl,     RedrawScreen,       RegisterModuleCallbacks,
    ShowHelp,        DebugPrint,        GetString,          RegisterDefaultCallbacks,
    FreePageNode,    FindNode,          GetLanguage};

constinit ESA_GUI_DRIVER_PROTOCOL gGuiDriver = {GuiInitialize, GuiUnInitialize};

}  // namespace

TARN_SETUP_PROTOCOL *HostSetupProtocol(VOID) { return &gSetupProtocol; }

ESA_GUI_DRIVER_PROTOCOL *HostGuiDriver(VOID) { return &gGuiDriver; }

VOID HostSetLanguage(const CHAR8 *Language) { gLanguage = Language; }

UINTN HostTraceLineCount(VOID) { return gTraceLines; }

BOOLEAN HostGuiConnected(VOID) { return gGuiConnected; }

VOID HostReleasePageNodes(VOID) {
  while (!IsListEmpty(&PageNodes())) {
    LIST_ENTRY *Node = GetFirstNode(&PageNodes());
    RemoveEntryList(Node);
    FreePool(uefi::RecordOf<&PageNodeRecord::Link>(Node));
  }
  FreePool(gStringBuffer);
  gStringBuffer = nullptr;
}
