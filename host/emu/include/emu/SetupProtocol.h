// The host setup protocol (TARN_SETUP_PROTOCOL): trace lines, strings,
// message and progress boxes, and the page-framework slots.
//
// Its slots carry no This pointer, so one SetupProtocol is active at a time.
// The page-framework slots (0-4, 7-12, 15-18) only record their calls here and
// give harmless outputs; a page framework replaces them through Interface().
#pragma once

#include <Protocol/Host/TarnSetup.h>
#include <Uefi.h>

#include <deque>
#include <fstream>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace emu {

class Firmware;

struct TraceLine {
  UINT32 Level;
  std::string Text;  // as printed, newline included
};

struct MessageBoxCall {
  UINT8 Style;
  EFI_STRING_ID TitleId;
  EFI_STRING_ID TextId;
  std::optional<std::u16string> Text;  // empty when the module passed NULL
  BOOLEAN Answer;
};

// A call of one of the page-framework slots: its slot number and name, and
// its scalar arguments (pointers as numbers) in order.
struct FrameworkCall {
  UINTN Slot;
  std::string Name;
  std::vector<UINT64> Arguments;
};

class SetupProtocol {
 public:
  // Longest trace line kept, terminator included; longer lines are cut.
  static constexpr UINTN kTraceLineSize = 4096;

  // Installs the protocol on a handle of its own.
  explicit SetupProtocol(Firmware &Firmware);
  ~SetupProtocol();
  SetupProtocol(const SetupProtocol &) = delete;
  SetupProtocol &operator=(const SetupProtocol &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  TARN_SETUP_PROTOCOL &Interface() { return Protocol_; }

  // ---- Trace
  const std::vector<TraceLine> &Trace() const { return Trace_; }
  // The trace texts only, in order.
  std::vector<std::string> TraceTexts() const;
  VOID ClearTrace() { Trace_.clear(); }
  // Writes every line printed so far and every later line to Path, each as
  // printed; false when the file cannot be opened.
  bool WriteTraceTo(const std::string &Path);
  // Echoes each line to standard error as it is printed.
  VOID SetEcho(bool Echo) { Echo_ = Echo; }

  // ---- Strings (GetString)
  VOID SetString(EFI_STRING_ID Id, std::u16string Text);
  // Consulted when the table has no text for the id; NULL for none.
  using StringResolver =
      std::function<const CHAR16 *(EFI_HII_HANDLE, EFI_STRING_ID)>;
  VOID SetStringResolver(StringResolver Resolver) {
    Resolver_ = std::move(Resolver);
  }

  // ---- Message boxes and progress
  // Answers for the coming message boxes, in order; then DefaultAnswer.
  VOID QueueAnswer(BOOLEAN Answer) { Answers_.push_back(Answer); }
  VOID SetDefaultAnswer(BOOLEAN Answer) { DefaultAnswer_ = Answer; }
  const std::vector<MessageBoxCall> &MessageBoxes() const {
    return MessageBoxes_;
  }
  const std::vector<UINT8> &Progress() const { return Progress_; }

  // ---- Page framework
  const std::vector<FrameworkCall> &FrameworkCalls() const {
    return FrameworkCalls_;
  }
  // The names of the framework calls in order, e.g. "RegisterPage".
  std::vector<std::string> FrameworkCallNames() const;

 private:
  static SetupProtocol &Active();
  VOID Record(UINTN Slot, const char *Name, std::vector<UINT64> Arguments);
  VOID AddTraceLine(UINT32 Level, std::string Text);

  static EFI_STATUS EFIAPI GetModuleRoot(HOST_PAGE_NODE **Root);
  static EFI_STATUS EFIAPI GetModuleIdentity(EFI_GUID **Identity);
  static EFI_STATUS EFIAPI GetFirstPageId(UINT32 *PageId);
  static EFI_STATUS EFIAPI RegisterPage(EFI_HANDLE ImageHandle,
                                        EFI_HII_HANDLE HiiHandle, UINT32 Page,
                                        TARN_PAGE_CALLBACK EnterCallback,
                                        TARN_PAGE_CALLBACK LeaveCallback,
                                        TARN_MODULE_CALLBACK LanguageCallback);
  static EFI_STATUS EFIAPI InstantiatePage(const HOST_PAGE_TEMPLATE *Template,
                                           HOST_PAGE_NODE *Parent,
                                           const EFI_GUID *Identity,
                                           HOST_PAGE_NODE **Page);
  static BOOLEAN EFIAPI MessageBox(UINT8 Style, EFI_STRING_ID TitleId,
                                   EFI_STRING_ID TextId, const CHAR16 *Text);
  static EFI_STATUS EFIAPI SetProgress(UINT8 Percent);
  static EFI_STATUS EFIAPI BuildControlTable(
      HOST_PAGE_NODE *Page, const HOST_CONTROL_DESCRIPTOR *Common,
      UINTN CommonCount, const HOST_CONTROL_DESCRIPTOR *Own, UINTN OwnCount);
  static EFI_STATUS EFIAPI ShowPage(HOST_PAGE_NODE *Page, UINT32 FocusNodeId);
  static EFI_STATUS EFIAPI RedrawControl(HOST_PAGE_NODE *Node);
  static EFI_STATUS EFIAPI RedrawScreen();
  static EFI_STATUS EFIAPI RegisterModuleCallbacks(
      TARN_MODULE_CALLBACK ReturnCallback, TARN_MODULE_CALLBACK HelpCallback,
      TARN_MODULE_CALLBACK LanguageCallback);
  static EFI_STATUS EFIAPI ShowHelp(HOST_PAGE_NODE *Page,
                                    const HOST_HELP_ENTRY *Entries,
                                    UINTN Count);
  static VOID EFIAPI DebugPrint(UINT32 Level, const CHAR8 *Format, ...);
  static CHAR16 *EFIAPI GetString(EFI_HII_HANDLE HiiHandle, EFI_STRING_ID Id);
  static EFI_STATUS EFIAPI RegisterDefaultCallbacks();
  static EFI_STATUS EFIAPI FreePageNode(HOST_PAGE_NODE *Node);
  static EFI_STATUS EFIAPI FindNode(HOST_PAGE_NODE *Root, UINT32 NodeId,
                                    HOST_PAGE_NODE **Node);
  static EFI_STATUS EFIAPI GetLanguage(CHAR8 *Buffer, UINTN BufferSize);
  // Records the call and schedules nothing (EFI_UNSUPPORTED): a page that
  // works in steps runs them itself on this host.
  static EFI_STATUS EFIAPI RegisterStepCallback(HOST_PAGE_NODE *Page,
                                                TARN_STEP_CALLBACK Step);

  Firmware &Firmware_;
  TARN_SETUP_PROTOCOL Protocol_;
  EFI_HANDLE Handle_ = nullptr;
  std::vector<TraceLine> Trace_;
  std::ofstream TraceFile_;
  bool Echo_ = false;
  std::map<EFI_STRING_ID, std::u16string> Strings_;
  StringResolver Resolver_;
  std::deque<BOOLEAN> Answers_;
  BOOLEAN DefaultAnswer_ = TRUE;
  std::vector<MessageBoxCall> MessageBoxes_;
  std::vector<UINT8> Progress_;
  std::vector<FrameworkCall> FrameworkCalls_;
  // Harmless outputs of the framework slots.
  HOST_PAGE_NODE RootNode_{};
  EFI_GUID Identity_{};
  std::list<HOST_PAGE_NODE> Pages_;
};

}  // namespace emu
