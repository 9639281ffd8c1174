// Effective display states and the focus: which controls can take it, the
// order it moves in (the page tree's), and its repair when its control was
// hidden or grayed.
#include "FrameworkState.h"
#include "framework/Operator.h"

namespace framework {
namespace {

// Most controls a page's focus order holds.
constexpr UINTN kMaxFocusable = 256;

struct FocusOrder {
  HOST_PAGE_NODE *Nodes[kMaxFocusable];
  UINTN Count;
};

// Every node of the page in tree order, focusable or not, so that a lost
// focus can find its neighbour.
VOID CollectNodes(HOST_PAGE_NODE *Node, FocusOrder &Order, UINTN Depth) {
  if (Node == nullptr || Depth > kMaxTreeDepth) {
    return;
  }
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (Order.Count == kMaxFocusable) {
      return;
    }
    Order.Nodes[Order.Count++] = Child;
    CollectNodes(Child, Order, Depth + 1);
  }
}

// Position of Node in Order, or Order.Count.
[[nodiscard]] UINTN PositionOf(const FocusOrder &Order,
                               const HOST_PAGE_NODE *Node) {
  for (UINTN Index = 0; Index < Order.Count; Index++) {
    if (Order.Nodes[Index] == Node) {
      return Index;
    }
  }
  return Order.Count;
}

// Moves the focus Step (1 or -1) through the page, wrapping around.
VOID MoveFocus(INTN Step) {
  if (gState.Page == nullptr) {
    return;
  }
  FocusOrder Order;
  Order.Count = 0;
  CollectNodes(gState.Page, Order, 0);
  if (Order.Count == 0) {
    return;
  }
  // Without a focus the walk starts just outside the order, so that Next
  // finds the first control and Previous the last.
  UINTN Count = Order.Count;
  UINTN Position = PositionOf(Order, gState.Focus);
  UINTN Start = Position != Count ? Position : (Step > 0 ? Count - 1 : 0);
  for (UINTN Tried = 1; Tried <= Count; Tried++) {
    UINTN Index = Step > 0 ? (Start + Tried) % Count
                           : (Start + Count - Tried) % Count;
    if (IsFocusable(Order.Nodes[Index])) {
      gState.Focus = Order.Nodes[Index];
      return;
    }
  }
}

[[nodiscard]] BOOLEAN IsFocusableKind(UINT32 Kind) {
  switch (Kind) {
    case HOST_CONTROL_BUTTON:
    case HOST_CONTROL_IMAGE_BUTTON:
    case HOST_CONTROL_RADIO_GROUP:
    case HOST_CONTROL_COMBO_BOX:
    case HOST_CONTROL_CHECK_BOX:
    case HOST_CONTROL_EDIT_BOX:
    case HOST_CONTROL_SLIDER:
    case HOST_CONTROL_TABLE:
      return TRUE;
    default:
      return FALSE;
  }
}

// A radio group can take the focus when one of its options can be chosen.
[[nodiscard]] BOOLEAN HasChoosableOption(const Control *Record) {
  for (UINTN Index = 0; Index < Record->Options.Count; Index++) {
    if (Record->Options.Items[Index].DisplayState == HOST_DISPLAY_SHOWN) {
      return TRUE;
    }
  }
  return FALSE;
}

}  // namespace

UINT8 EffectiveState(const HOST_PAGE_NODE *Node) {
  UINT8 State = HOST_DISPLAY_SHOWN;
  for (UINTN Depth = 0; Node != nullptr && Depth <= kMaxTreeDepth;
       Depth++, Node = Node->Parent) {
    Control *Record = RecordOf(Node);
    if (Record == nullptr) {
      continue;
    }
    if (Record->Public.DisplayState == HOST_DISPLAY_HIDDEN) {
      return HOST_DISPLAY_HIDDEN;
    }
    if (Record->Public.DisplayState == HOST_DISPLAY_GRAYED) {
      State = HOST_DISPLAY_GRAYED;
    }
    if (Record->Public.Kind == HOST_CONTROL_PAGE) {
      break;
    }
  }
  return State;
}

BOOLEAN IsFocusable(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  if (Record == nullptr || !IsFocusableKind(Record->Public.Kind) ||
      gState.Page == nullptr || !IsInSubtree(Node, gState.Page) ||
      EffectiveState(Node) != HOST_DISPLAY_SHOWN) {
    return FALSE;
  }
  if (Record->Public.Kind == HOST_CONTROL_RADIO_GROUP) {
    return HasChoosableOption(Record);
  }
  if (Record->Public.Kind == HOST_CONTROL_TABLE) {
    return Record->Table.Rows != 0;
  }
  return TRUE;
}

VOID RepairFocus() {
  HOST_PAGE_NODE *Lost = gState.Focus;
  if (Lost == nullptr || IsFocusable(Lost)) {
    return;
  }
  gState.Focus = nullptr;
  if (gState.Page == nullptr || !IsInSubtree(Lost, gState.Page)) {
    return;
  }
  // The focus goes on to the next control that can take it, else back.
  FocusOrder Order;
  Order.Count = 0;
  CollectNodes(gState.Page, Order, 0);
  UINTN Position = PositionOf(Order, Lost);
  for (UINTN Index = Position + 1; Index < Order.Count; Index++) {
    if (IsFocusable(Order.Nodes[Index])) {
      gState.Focus = Order.Nodes[Index];
      return;
    }
  }
  for (UINTN Index = Position; Index-- > 0;) {
    if (IsFocusable(Order.Nodes[Index])) {
      gState.Focus = Order.Nodes[Index];
      return;
    }
  }
}

VOID FocusNext() { MoveFocus(1); }
VOID FocusPrevious() { MoveFocus(-1); }

EFI_STATUS FocusOn(HOST_PAGE_NODE *Node) {
  if (!IsFocusable(Node)) {
    return EFI_ACCESS_DENIED;
  }
  gState.Focus = Node;
  return EFI_SUCCESS;
}

}  // namespace framework
