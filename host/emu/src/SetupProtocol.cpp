// The setup protocol: trace through the base library's formatter, string
// table, scripted message boxes and recorded framework calls.
#include "emu/SetupProtocol.h"

#include <Library/PrintLib.h>

#include <cstdio>
#include <cstdlib>

#include "emu/Firmware.h"
#include "emu/TextConversion.h"

namespace emu {
namespace {

SetupProtocol *gActiveSetup = nullptr;

template <typename T>
UINT64 AsNumber(T *Pointer) {
  return reinterpret_cast<UINTN>(Pointer);
}

}  // namespace

SetupProtocol::SetupProtocol(Firmware &Firmware) : Firmware_(Firmware) {
  if (gActiveSetup != nullptr) {
    std::fprintf(stderr, "emu::SetupProtocol: one is already active\n");
    std::abort();
  }
  Protocol_ = {GetModuleRoot,     GetModuleIdentity, GetFirstPageId,
               RegisterPage,      InstantiatePage,   MessageBox,
               SetProgress,       BuildControlTable, ShowPage,
               RedrawControl,     RedrawScreen,      RegisterModuleCallbacks,
               ShowHelp,          DebugPrint,        GetString,
               RegisterDefaultCallbacks, FreePageNode,   FindNode,
               GetLanguage,       RegisterStepCallback};
  RootNode_.Control = HOST_NODE_NO_CONTROL;
  Firmware_.Handles().Install(&Handle_, gTarnSetupProtocolGuid, &Protocol_);
  gActiveSetup = this;
}

SetupProtocol::~SetupProtocol() {
  gActiveSetup = nullptr;
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gTarnSetupProtocolGuid, &Protocol_);
  }
}

SetupProtocol &SetupProtocol::Active() {
  if (gActiveSetup == nullptr) {
    std::fprintf(stderr, "emu::SetupProtocol: called after it was removed\n");
    std::abort();
  }
  return *gActiveSetup;
}

VOID SetupProtocol::Record(UINTN Slot, const char *Name,
                           std::vector<UINT64> Arguments) {
  FrameworkCalls_.push_back({Slot, Name, std::move(Arguments)});
}

std::vector<std::string> SetupProtocol::FrameworkCallNames() const {
  std::vector<std::string> Names;
  for (const auto &Call : FrameworkCalls_) {
    Names.push_back(Call.Name);
  }
  return Names;
}

// ---- Trace --------------------------------------------------------------

VOID SetupProtocol::AddTraceLine(UINT32 Level, std::string Text) {
  if (TraceFile_.is_open()) {
    TraceFile_ << Text;
    TraceFile_.flush();
  }
  if (Echo_) {
    std::fputs(Text.c_str(), stderr);
  }
  Trace_.push_back({Level, std::move(Text)});
}

std::vector<std::string> SetupProtocol::TraceTexts() const {
  std::vector<std::string> Texts;
  for (const auto &Line : Trace_) {
    Texts.push_back(Line.Text);
  }
  return Texts;
}

bool SetupProtocol::WriteTraceTo(const std::string &Path) {
  TraceFile_.close();
  TraceFile_.open(Path, std::ios::binary | std::ios::trunc);
  if (!TraceFile_) {
    return false;
  }
  for (const auto &Line : Trace_) {
    TraceFile_ << Line.Text;
  }
  TraceFile_.flush();
  return true;
}

VOID EFIAPI SetupProtocol::DebugPrint(UINT32 Level, const CHAR8 *Format,
                                      ...) {
  if (Format == nullptr) {
    return;
  }
  // The function name is the first variadic argument and the format's first
  // "%a" consumes it, so the list goes to the formatter unchanged.
  CHAR8 Buffer[kTraceLineSize];
  VA_LIST Args;
  VA_START(Args, Format);
  AsciiVSPrint(Buffer, sizeof(Buffer), Format, Args);
  VA_END(Args);
  Active().AddTraceLine(Level, Buffer);
}

// ---- Strings ------------------------------------------------------------

VOID SetupProtocol::SetString(EFI_STRING_ID Id, std::u16string Text) {
  Strings_[Id] = std::move(Text);
}

CHAR16 *EFIAPI SetupProtocol::GetString(EFI_HII_HANDLE HiiHandle,
                                        EFI_STRING_ID Id) {
  SetupProtocol &Self = Active();
  auto It = Self.Strings_.find(Id);
  if (It != Self.Strings_.end()) {
    return It->second.data();
  }
  if (Self.Resolver_) {
    return const_cast<CHAR16 *>(Self.Resolver_(HiiHandle, Id));
  }
  return nullptr;
}

// ---- Message boxes and progress -----------------------------------------

BOOLEAN EFIAPI SetupProtocol::MessageBox(UINT8 Style, EFI_STRING_ID TitleId,
                                         EFI_STRING_ID TextId,
                                         const CHAR16 *Text) {
  SetupProtocol &Self = Active();
  BOOLEAN Answer = Self.DefaultAnswer_;
  if (!Self.Answers_.empty()) {
    Answer = Self.Answers_.front();
    Self.Answers_.pop_front();
  }
  std::optional<std::u16string> Copy;
  if (Text != nullptr) {
    Copy = std::u16string(View(Text));
  }
  Self.MessageBoxes_.push_back({Style, TitleId, TextId, std::move(Copy), Answer});
  return Answer;
}

EFI_STATUS EFIAPI SetupProtocol::SetProgress(UINT8 Percent) {
  Active().Progress_.push_back(Percent);
  return EFI_SUCCESS;
}

// ---- Page framework -----------------------------------------------------

EFI_STATUS EFIAPI SetupProtocol::GetModuleRoot(HOST_PAGE_NODE **Root) {
  SetupProtocol &Self = Active();
  Self.Record(0, "GetModuleRoot", {AsNumber(Root)});
  if (Root != nullptr) {
    *Root = &Self.RootNode_;
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::GetModuleIdentity(EFI_GUID **Identity) {
  SetupProtocol &Self = Active();
  Self.Record(1, "GetModuleIdentity", {AsNumber(Identity)});
  if (Identity != nullptr) {
    *Identity = &Self.Identity_;
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::GetFirstPageId(UINT32 *PageId) {
  Active().Record(2, "GetFirstPageId", {AsNumber(PageId)});
  if (PageId != nullptr) {
    *PageId = 0;
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RegisterPage(
    EFI_HANDLE ImageHandle, EFI_HII_HANDLE HiiHandle, UINT32 Page,
    TARN_PAGE_CALLBACK EnterCallback, TARN_PAGE_CALLBACK LeaveCallback,
    TARN_MODULE_CALLBACK LanguageCallback) {
  Active().Record(3, "RegisterPage",
                  {AsNumber(ImageHandle), AsNumber(HiiHandle), Page,
                   reinterpret_cast<UINTN>(EnterCallback),
                   reinterpret_cast<UINTN>(LeaveCallback),
                   reinterpret_cast<UINTN>(LanguageCallback)});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::InstantiatePage(
    const HOST_PAGE_TEMPLATE *Template, HOST_PAGE_NODE *Parent,
    const EFI_GUID *Identity, HOST_PAGE_NODE **Page) {
  SetupProtocol &Self = Active();
  Self.Record(4, "InstantiatePage",
              {AsNumber(Template), AsNumber(Parent), AsNumber(Identity)});
  if (Page != nullptr) {
    HOST_PAGE_NODE &Node = Self.Pages_.emplace_back();
    Node = {};
    Node.Control = HOST_NODE_NO_CONTROL;
    Node.Parent = Parent;
    *Page = &Node;
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::BuildControlTable(
    HOST_PAGE_NODE *Page, const HOST_CONTROL_DESCRIPTOR *Common,
    UINTN CommonCount, const HOST_CONTROL_DESCRIPTOR *Own, UINTN OwnCount) {
  Active().Record(7, "BuildControlTable",
                  {AsNumber(Page), AsNumber(Common), CommonCount, AsNumber(Own),
                   OwnCount});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::ShowPage(HOST_PAGE_NODE *Page,
                                          UINT32 FocusNodeId) {
  Active().Record(8, "ShowPage", {AsNumber(Page), FocusNodeId});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RedrawControl(HOST_PAGE_NODE *Node) {
  Active().Record(9, "RedrawControl", {AsNumber(Node)});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RedrawScreen() {
  Active().Record(10, "RedrawScreen", {});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RegisterModuleCallbacks(
    TARN_MODULE_CALLBACK ReturnCallback, TARN_MODULE_CALLBACK HelpCallback,
    TARN_MODULE_CALLBACK LanguageCallback) {
  Active().Record(11, "RegisterModuleCallbacks",
                  {reinterpret_cast<UINTN>(ReturnCallback),
                   reinterpret_cast<UINTN>(HelpCallback),
                   reinterpret_cast<UINTN>(LanguageCallback)});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::ShowHelp(HOST_PAGE_NODE *Page,
                                          const HOST_HELP_ENTRY *Entries,
                                          UINTN Count) {
  Active().Record(12, "ShowHelp", {AsNumber(Page), AsNumber(Entries), Count});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RegisterDefaultCallbacks() {
  Active().Record(15, "RegisterDefaultCallbacks", {});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::FreePageNode(HOST_PAGE_NODE *Node) {
  Active().Record(16, "FreePageNode", {AsNumber(Node)});
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::FindNode(HOST_PAGE_NODE *Root, UINT32 NodeId,
                                          HOST_PAGE_NODE **Node) {
  Active().Record(17, "FindNode", {AsNumber(Root), NodeId, AsNumber(Node)});
  if (Node != nullptr) {
    *Node = nullptr;
  }
  return EFI_NOT_FOUND;
}

EFI_STATUS EFIAPI SetupProtocol::GetLanguage(CHAR8 *Buffer, UINTN BufferSize) {
  Active().Record(18, "GetLanguage", {AsNumber(Buffer), BufferSize});
  static constexpr CHAR8 kEnglish[] = "en-US";
  if (Buffer == nullptr || BufferSize < sizeof(kEnglish)) {
    return EFI_BUFFER_TOO_SMALL;
  }
  for (UINTN Index = 0; Index < sizeof(kEnglish); Index++) {
    Buffer[Index] = kEnglish[Index];
  }
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI SetupProtocol::RegisterStepCallback(HOST_PAGE_NODE *Page,
                                                    TARN_STEP_CALLBACK Step) {
  Active().Record(19, "RegisterStepCallback",
                  {AsNumber(Page), reinterpret_cast<UINT64>(Step)});
  return EFI_UNSUPPORTED;
}

}  // namespace emu
