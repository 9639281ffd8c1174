// The host's setup protocol: trace output, HII strings, message and progress
// boxes, page registration and the page framework's operations.
// Slots 0-3, 5, 6, 13 and 14 are fixed by the host application; the others
// are the reference host's (docs/host-protocols.md, docs/page-framework.md).
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

#define TARN_SETUP_PROTOCOL_GUID \
  {0xEB726CDD, 0xB12F, 0x468D, {0x9C, 0xB0, 0x15, 0xCD, 0x74, 0x17, 0x14, 0xF6}}

// Trace levels.
#define TARN_DEBUG_INFO 64
#define TARN_DEBUG_ERROR 0x80000000U

typedef UINTN(EFIAPI *TARN_PAGE_CALLBACK)(VOID);
typedef VOID(EFIAPI *TARN_MODULE_CALLBACK)(VOID);
// One step of work a page does while it is shown; TRUE while another is due.
typedef BOOLEAN(EFIAPI *TARN_STEP_CALLBACK)(VOID);

typedef struct _TARN_SETUP_PROTOCOL TARN_SETUP_PROTOCOL;
struct _TARN_SETUP_PROTOCOL {
  // 0-2: the host fills a module-global word: the module's root node, its
  // identity GUID and the id of its first page.
  EFI_STATUS(EFIAPI *GetModuleRoot)(HOST_PAGE_NODE **Root);
  EFI_STATUS(EFIAPI *GetModuleIdentity)(EFI_GUID **Identity);
  EFI_STATUS(EFIAPI *GetFirstPageId)(UINT32 *PageId);
  // 3
  EFI_STATUS(EFIAPI *RegisterPage)
  (EFI_HANDLE ImageHandle, EFI_HII_HANDLE HiiHandle, UINT32 Page,
   TARN_PAGE_CALLBACK EnterCallback, TARN_PAGE_CALLBACK LeaveCallback,
   TARN_MODULE_CALLBACK LanguageCallback);
  // 4: copy a static template under Parent, fresh control records throughout.
  EFI_STATUS(EFIAPI *InstantiatePage)
  (const HOST_PAGE_TEMPLATE *Template, HOST_PAGE_NODE *Parent,
   const EFI_GUID *Identity, HOST_PAGE_NODE **Page);
  // 5: Text, when not NULL, is shown in place of the text of TextId.
  // Returns TRUE when the operator confirmed (Yes).
  BOOLEAN(EFIAPI *MessageBox)
  (UINT8 Style, EFI_STRING_ID TitleId, EFI_STRING_ID TextId,
   const CHAR16 *Text);
  // 6
  EFI_STATUS(EFIAPI *SetProgress)(UINT8 Percent);
  // 7: the page's common controls followed by its own.
  EFI_STATUS(EFIAPI *BuildControlTable)
  (HOST_PAGE_NODE *Page, const HOST_CONTROL_DESCRIPTOR *Common,
   UINTN CommonCount, const HOST_CONTROL_DESCRIPTOR *Own, UINTN OwnCount);
  // 8: FocusNodeId 0 shows the page without focus.
  EFI_STATUS(EFIAPI *ShowPage)(HOST_PAGE_NODE *Page, UINT32 FocusNodeId);
  // 9, 10
  EFI_STATUS(EFIAPI *RedrawControl)(HOST_PAGE_NODE *Node);
  EFI_STATUS(EFIAPI *RedrawScreen)(VOID);
  // 11
  EFI_STATUS(EFIAPI *RegisterModuleCallbacks)
  (TARN_MODULE_CALLBACK ReturnCallback, TARN_MODULE_CALLBACK HelpCallback,
   TARN_MODULE_CALLBACK LanguageCallback);
  // 12
  EFI_STATUS(EFIAPI *ShowHelp)
  (HOST_PAGE_NODE *Page, const HOST_HELP_ENTRY *Entries, UINTN Count);
  // 13: the first variadic argument is the caller's function name, taken by
  // the format's leading "%a"; the format's other arguments follow it.
  VOID(EFIAPI *DebugPrint)(UINT32 Level, const CHAR8 *Format, ...);
  // 14: the text in the current language, owned by the host; NULL when the
  // handle or the id is unknown.
  CHAR16 *(EFIAPI *GetString)(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id);
  // 15: put the host's own callbacks back in place of the module's.
  EFI_STATUS(EFIAPI *RegisterDefaultCallbacks)(VOID);
  // 16: detach Node from its parent and free it with its whole subtree and
  // every control record in it; nodes the module made itself are only
  // detached. The module releases the nodes of slot 4 through this slot.
  EFI_STATUS(EFIAPI *FreePageNode)(HOST_PAGE_NODE *Node);
  // 17: the first node with NodeId in the subtree of Root, Root included.
  EFI_STATUS(EFIAPI *FindNode)
  (HOST_PAGE_NODE *Root, UINT32 NodeId, HOST_PAGE_NODE **Node);
  // 18: the current language ("en-US", ...) into Buffer of BufferSize bytes.
  EFI_STATUS(EFIAPI *GetLanguage)(CHAR8 *Buffer, UINTN BufferSize);
  // 19: while Page is shown, the framework calls Step again and again
  // between the operator's actions until it returns FALSE. One step at a
  // time; a new registration replaces the last, a NULL Step cancels it.
  EFI_STATUS(EFIAPI *RegisterStepCallback)
  (HOST_PAGE_NODE *Page, TARN_STEP_CALLBACK Step);
};

extern EFI_GUID gTarnSetupProtocolGuid;
