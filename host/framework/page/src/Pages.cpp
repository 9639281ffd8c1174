// Showing pages: the control table, show page with focus, redraws, and the
// reading of refresh marks.
#include "FrameworkState.h"

namespace framework {
namespace {

// Most descriptors one control table takes from each list.
constexpr UINTN kMaxDescriptors = 1024;

[[nodiscard]] Control *PageRecord(HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record != nullptr && Record->Public.Kind == HOST_CONTROL_PAGE
             ? Record
             : nullptr;
}

VOID ProcessMarks(HOST_PAGE_NODE *Node, BOOLEAN Force, UINTN Depth) {
  if (Node == nullptr || Depth > kMaxTreeDepth) {
    return;
  }
  UINT8 Mark = Node->RefreshMark;
  BOOLEAN Everything = Force || (Mark & HOST_REFRESH_MODE) != 0;
  Control *Record = RecordOf(Node);
  if (Record != nullptr &&
      (Everything || !Record->Loaded || (Mark & HOST_REFRESH_TEXT) != 0 ||
       Record->Public.CachedText != Record->Text)) {
    ReloadControl(Node);
    Record->Loaded = TRUE;
  }
  Node->RefreshMark = 0;
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    ProcessMarks(Child, Everything, Depth + 1);
  }
}

// Binds one descriptor list; FALSE when a node id was not found.
[[nodiscard]] BOOLEAN BindDescriptors(HOST_PAGE_NODE *Page,
                                      const HOST_CONTROL_DESCRIPTOR *List,
                                      UINTN Count) {
  BOOLEAN AllFound = TRUE;
  for (UINTN Index = 0; Index < Count; Index++) {
    HOST_PAGE_NODE *Node = NodeById(Page, List[Index].NodeId);
    Control *Record = RecordOf(Node);
    if (Record == nullptr) {
      AllFound = FALSE;
      continue;
    }
    Record->Callback = List[Index].Callback;
  }
  return AllFound;
}

}  // namespace

HOST_PAGE_NODE *PageToShow(HOST_PAGE_NODE *Node) {
  if (Node == nullptr) {
    return nullptr;
  }
  if (PageRecord(Node) != nullptr) {
    return Node;
  }
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (PageRecord(Child) != nullptr) {
      return Child;
    }
  }
  return nullptr;
}

VOID ProcessRefreshMarks(HOST_PAGE_NODE *Node) {
  ProcessMarks(Node, FALSE, 0);
  RepairFocus();
}

EFI_STATUS EFIAPI BuildControlTable(HOST_PAGE_NODE *Page,
                                    const HOST_CONTROL_DESCRIPTOR *Common,
                                    UINTN CommonCount,
                                    const HOST_CONTROL_DESCRIPTOR *Own,
                                    UINTN OwnCount) {
  if (Page == nullptr || (Common == nullptr && CommonCount != 0) ||
      (Own == nullptr && OwnCount != 0) || CommonCount > kMaxDescriptors ||
      OwnCount > kMaxDescriptors) {
    return EFI_INVALID_PARAMETER;
  }
  BOOLEAN AllFound = BindDescriptors(Page, Common, CommonCount);
  AllFound = BindDescriptors(Page, Own, OwnCount) && AllFound;
  ProcessMarks(Page, TRUE, 0);
  RepairFocus();
  return AllFound ? EFI_SUCCESS : EFI_NOT_FOUND;
}

EFI_STATUS EFIAPI ShowPage(HOST_PAGE_NODE *Page, UINT32 FocusNodeId) {
  if (Page == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  HOST_PAGE_NODE *Shown = PageToShow(Page);
  if (Shown == nullptr) {
    return EFI_NOT_FOUND;
  }
  CloseTransientBoxes();
  if (gState.Page != Shown) {
    gState.Focus = nullptr;
  }
  gState.Page = Shown;
  ProcessRefreshMarks(Shown);
  if (FocusNodeId != 0) {
    HOST_PAGE_NODE *Wanted = NodeById(Shown, FocusNodeId);
    if (Wanted != nullptr && IsFocusable(Wanted)) {
      gState.Focus = Wanted;
    }
  }
  RequestRefresh();
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RedrawControl(HOST_PAGE_NODE *Node) {
  if (Node == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  ProcessRefreshMarks(Node);
  RequestRefresh();
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI RedrawScreen() {
  if (gState.Page != nullptr) {
    ProcessRefreshMarks(gState.Page);
  }
  RequestRefresh();
  return EFI_SUCCESS;
}

VOID ForgetSubtree(const HOST_PAGE_NODE *Node) {
  if (gState.Page != nullptr && IsInSubtree(gState.Page, Node)) {
    gState.Page = nullptr;
    gState.Focus = nullptr;
  }
  if (gState.Focus != nullptr && IsInSubtree(gState.Focus, Node)) {
    gState.Focus = nullptr;
  }
  ForgetStepsIn(Node);
}

}  // namespace framework
