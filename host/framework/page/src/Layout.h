// Places a parent's children on the screen it has. Templates are drawn for
// an 80 x 25 screen (a body of 76 x 20 cells); the layout stretches them to
// the body there is, gives extra rows to the page's first table, and moves
// controls apart whose texts in the language shown would run into each
// other.
#pragma once

#include <Protocol/Host/PageFramework.h>
#include <Uefi.h>

namespace framework {

// The body the templates are drawn for.
constexpr UINTN kDesignColumns = 76;
constexpr UINTN kDesignRows = 20;
// Most children of one parent that are placed; further ones are not drawn.
constexpr UINTN kMaxSlots = 64;

// A parent's room: its width on the screen, the width and height its
// template was drawn for, and the rows the screen gives it beyond them.
struct LayoutRoom {
  UINTN Width;
  UINTN DesignWidth;
  UINTN DesignHeight;
  UINTN ExtraRows;
};

// Where a child goes, relative to its parent's origin.
struct Slot {
  HOST_PAGE_NODE *Node;
  UINTN Column;
  UINTN Row;           // unused when FollowsPrevious
  BOOLEAN FollowsPrevious;
  UINTN Width;         // columns its text may take
  UINTN Height;        // 0: as its content needs
  UINTN ExtraRows;     // a container passes these on to its children
};

// The number of the parent's visible children placed into Slots (in tree
// order, at most kMaxSlots).
[[nodiscard]] UINTN LayOutChildren(HOST_PAGE_NODE *Parent,
                                   const LayoutRoom &Room, Slot *Slots);

// Rows between a radio group's options: a group taller than its options
// spreads them over its height (texts under each option).
[[nodiscard]] UINTN RadioSpacing(const HOST_PAGE_NODE *Node, UINTN Height);

}  // namespace framework
