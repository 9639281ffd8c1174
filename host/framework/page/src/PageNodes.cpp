// Page nodes: instantiating a template under a parent, finding a node by id
// and freeing a subtree, with the registry of the nodes the framework made.
#include <Library/MemoryAllocationLib.h>

#include "FrameworkState.h"

namespace framework {
namespace {

// Most nodes one template may hold.
constexpr UINTN kMaxTemplateNodes = 1024;

}  // namespace

HOST_PAGE_NODE *MakeNode(UINT32 NodeId, HOST_CONTROL *Record) {
  MadeNode *Made = uefi::AllocateRecord<MadeNode>();
  if (Made == nullptr) {
    return nullptr;
  }
  Made->Node.Control = Record;
  Made->Node.NodeId = NodeId;
  Made->Next = gState.Made;
  if (gState.Made != nullptr) {
    gState.Made->Previous = Made;
  }
  gState.Made = Made;
  gState.MadeCount++;
  return &Made->Node;
}

namespace {

[[nodiscard]] MadeNode *MadeOf(const HOST_PAGE_NODE *Node) {
  for (MadeNode *Made = gState.Made; Made != nullptr; Made = Made->Next) {
    if (&Made->Node == Node) {
      return Made;
    }
  }
  return nullptr;
}

// Frees one node the framework made (not its children).
VOID FreeMadeNode(MadeNode *Made) {
  if (Made->Node.Control != nullptr &&
      Made->Node.Control != HOST_NODE_NO_CONTROL) {
    FreeControl(reinterpret_cast<Control *>(Made->Node.Control));
  }
  if (Made->Previous != nullptr) {
    Made->Previous->Next = Made->Next;
  } else {
    gState.Made = Made->Next;
  }
  if (Made->Next != nullptr) {
    Made->Next->Previous = Made->Previous;
  }
  gState.MadeCount--;
  FreePool(Made);
}

VOID AppendChild(HOST_PAGE_NODE *Parent, HOST_PAGE_NODE *Child) {
  Child->Parent = Parent;
  Child->NextSibling = nullptr;
  if (Parent->FirstChild == nullptr) {
    Parent->FirstChild = Child;
    return;
  }
  HOST_PAGE_NODE *Last = Parent->FirstChild;
  while (Last->NextSibling != nullptr) {
    Last = Last->NextSibling;
  }
  Last->NextSibling = Child;
}

// Unlinks Node from its parent's child list.
VOID Detach(HOST_PAGE_NODE *Node) {
  HOST_PAGE_NODE *Parent = Node->Parent;
  if (Parent != nullptr) {
    HOST_PAGE_NODE **Link = &Parent->FirstChild;
    while (*Link != nullptr && *Link != Node) {
      Link = &(*Link)->NextSibling;
    }
    if (*Link == Node) {
      *Link = Node->NextSibling;
    }
  }
  Node->Parent = nullptr;
  Node->NextSibling = nullptr;
}

// Frees the subtree below and including Node; nodes the module made are
// left to it, emptied of their children.
VOID FreeSubtree(HOST_PAGE_NODE *Node, UINTN Depth) {
  if (Depth > kMaxTreeDepth) {
    return;
  }
  HOST_PAGE_NODE *Child = Node->FirstChild;
  Node->FirstChild = nullptr;
  while (Child != nullptr) {
    HOST_PAGE_NODE *Next = Child->NextSibling;
    FreeSubtree(Child, Depth + 1);
    Child = Next;
  }
  MadeNode *Made = MadeOf(Node);
  if (Made != nullptr) {
    FreeMadeNode(Made);
  }
}

struct CopyBudget {
  UINTN Nodes;
};

// Copies template nodes under Parent; FALSE when memory or the budget ran
// out (what was made stays linked, for the caller to free).
[[nodiscard]] BOOLEAN CopyTemplateNodes(const HOST_NODE_TEMPLATE *Nodes,
                                        UINT32 Count, HOST_PAGE_NODE *Parent,
                                        const EFI_GUID *Identity, UINTN Depth,
                                        CopyBudget &Budget) {
  if (Nodes == nullptr || Count == 0) {
    return TRUE;
  }
  if (Depth > kMaxTreeDepth) {
    return FALSE;
  }
  for (UINT32 Index = 0; Index < Count; Index++) {
    const HOST_NODE_TEMPLATE &Template = Nodes[Index];
    if (++Budget.Nodes > kMaxTemplateNodes) {
      return FALSE;
    }
    HOST_CONTROL *Record = HOST_NODE_NO_CONTROL;
    if (Template.Kind != HOST_CONTROL_NONE) {
      Control *Made = NewControl(Template.Kind, Template.TextId,
                                 Template.DisplayState, Template.Layout,
                                 Identity);
      if (Made == nullptr) {
        return FALSE;
      }
      Record = &Made->Public;
    }
    HOST_PAGE_NODE *Node = MakeNode(Template.NodeId, Record);
    if (Node == nullptr) {
      if (Record != HOST_NODE_NO_CONTROL) {
        FreeControl(reinterpret_cast<Control *>(Record));
      }
      return FALSE;
    }
    AppendChild(Parent, Node);
    if (!CopyTemplateNodes(Template.Children, Template.ChildCount, Node,
                           Identity, Depth + 1, Budget)) {
      return FALSE;
    }
  }
  return TRUE;
}

[[nodiscard]] HOST_PAGE_NODE *FindInSubtree(HOST_PAGE_NODE *Node, UINT32 NodeId,
                                            UINTN Depth) {
  if (Node == nullptr || Depth > kMaxTreeDepth) {
    return nullptr;
  }
  if (Node->NodeId == NodeId) {
    return Node;
  }
  for (HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    HOST_PAGE_NODE *Found = FindInSubtree(Child, NodeId, Depth + 1);
    if (Found != nullptr) {
      return Found;
    }
  }
  return nullptr;
}

}  // namespace

BOOLEAN IsMadeNode(const HOST_PAGE_NODE *Node) {
  return Node != nullptr && MadeOf(Node) != nullptr;
}

Control *RecordOf(const HOST_PAGE_NODE *Node) {
  if (Node == nullptr || Node->Control == nullptr ||
      Node->Control == HOST_NODE_NO_CONTROL || !IsMadeNode(Node)) {
    return nullptr;
  }
  return reinterpret_cast<Control *>(Node->Control);
}

HOST_CONTROL *ControlOf(const HOST_PAGE_NODE *Node) {
  Control *Record = RecordOf(Node);
  return Record == nullptr ? nullptr : &Record->Public;
}

BOOLEAN IsInSubtree(const HOST_PAGE_NODE *Node, const HOST_PAGE_NODE *Root) {
  for (UINTN Depth = 0; Node != nullptr && Depth <= kMaxTreeDepth * 2;
       Depth++, Node = Node->Parent) {
    if (Node == Root) {
      return TRUE;
    }
  }
  return FALSE;
}

UINTN LiveNodeCount() { return gState.MadeCount; }

UINTN LiveModuleNodeCount() {
  const UINTN Root = gState.Root != nullptr && IsMadeNode(gState.Root) ? 1 : 0;
  return gState.MadeCount - Root;
}

EFI_STATUS EFIAPI InstantiatePage(const HOST_PAGE_TEMPLATE *Template,
                                  HOST_PAGE_NODE *Parent,
                                  const EFI_GUID *Identity,
                                  HOST_PAGE_NODE **Page) {
  if (Page != nullptr) {
    *Page = nullptr;
  }
  if (!gState.Running || Template == nullptr || Parent == nullptr ||
      Page == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  const EFI_GUID *Owner = Identity != nullptr ? Identity : &gState.Identity;
  HOST_LAYOUT NoLayout = {};
  Control *Record = NewControl(HOST_CONTROL_PAGE, Template->TitleId,
                               HOST_DISPLAY_SHOWN, NoLayout, Owner);
  if (Record == nullptr) {
    return EFI_OUT_OF_RESOURCES;
  }
  HOST_PAGE_NODE *Node = MakeNode(Template->NodeId, &Record->Public);
  if (Node == nullptr) {
    FreeControl(Record);
    return EFI_OUT_OF_RESOURCES;
  }
  CopyBudget Budget = {};
  if (!CopyTemplateNodes(Template->Nodes, Template->NodeCount, Node, Owner, 1,
                         Budget)) {
    FreeSubtree(Node, 0);
    return EFI_OUT_OF_RESOURCES;
  }
  AppendChild(Parent, Node);
  *Page = Node;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI FreePageNode(HOST_PAGE_NODE *Node) {
  if (!gState.Running || Node == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Node == gState.Root) {
    return EFI_ACCESS_DENIED;
  }
  ForgetSubtree(Node);
  Detach(Node);
  FreeSubtree(Node, 0);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI FindNode(HOST_PAGE_NODE *Root, UINT32 NodeId,
                           HOST_PAGE_NODE **Node) {
  if (Root == nullptr || Node == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Node = FindInSubtree(Root, NodeId, 0);
  return *Node != nullptr ? EFI_SUCCESS : EFI_NOT_FOUND;
}

HOST_PAGE_NODE *NodeById(HOST_PAGE_NODE *Root, UINT32 NodeId) {
  return Root != nullptr ? FindInSubtree(Root, NodeId, 0) : nullptr;
}

// Frees every node still registered (shutdown): the module's pages that it
// did not release, and the module root.
VOID FreeAllMadeNodes() {
  while (gState.Made != nullptr) {
    FreeMadeNode(gState.Made);
  }
}

}  // namespace framework
