// Places a parent's children: template positions stretched to the room,
// extra rows to the first table, label columns as wide as their longest
// label, and controls on a row pushed apart (or pulled in from the right
// edge) so that no text runs into another. What still does not fit is
// narrowed; the renderer ends a cut text with an ellipsis.
#include "Layout.h"

#include <Library/DebugLib.h>

#include "framework/Framework.h"
#include "framework/Text.h"

namespace framework {
namespace {

constexpr UINTN kDefaultFieldWidth = 20;
constexpr UINTN kSliderTrack = 22;  // "[" + 20 cells + "]"
constexpr UINTN kSliderNumber = 8;  // " 123456"

[[nodiscard]] UINT32 KindOf(const HOST_PAGE_NODE *Node) {
  HOST_CONTROL *Control = ControlOf(Node);
  return Control != nullptr ? Control->Kind : HOST_CONTROL_NONE;
}

// Controls that stay where the template put them: they span the row.
[[nodiscard]] BOOLEAN IsFixed(const Slot &Place) {
  UINT32 Kind = KindOf(Place.Node);
  return Place.FollowsPrevious || Kind == HOST_CONTROL_TABLE ||
         Kind == HOST_CONTROL_CONTAINER;
}

// Cells kept free before a control: one blank, and one more for the focus
// mark of a control that can take the focus.
[[nodiscard]] UINTN GapBefore(const HOST_PAGE_NODE *Node) {
  UINT32 Kind = KindOf(Node);
  return Kind == HOST_CONTROL_LABEL || Kind == HOST_CONTROL_NONE ? 1 : 2;
}

[[nodiscard]] BOOLEAN HoldsTable(const HOST_PAGE_NODE *Node, UINTN Depth) {
  UINT32 Kind = KindOf(Node);
  if (Kind == HOST_CONTROL_TABLE) {
    return TRUE;
  }
  if (Kind != HOST_CONTROL_CONTAINER || Depth == 0) {
    return FALSE;
  }
  for (const HOST_PAGE_NODE *Child = Node->FirstChild; Child != nullptr;
       Child = Child->NextSibling) {
    if (EffectiveState(Child) != HOST_DISPLAY_HIDDEN && HoldsTable(Child, Depth - 1)) {
      return TRUE;
    }
  }
  return FALSE;
}

[[nodiscard]] UINTN WidestOption(const HOST_PAGE_NODE *Node) {
  UINTN Widest = 0;
  for (UINTN Index = 0; Index < OptionCount(Node); Index++) {
    OptionView Option = {};
    if (OptionAt(Node, Index, &Option)) {
      UINTN Width = TextWidth(Option.Text);
      Widest = Width > Widest ? Width : Widest;
    }
  }
  return Widest;
}

// The columns a child takes when nothing narrows it.
[[nodiscard]] UINTN NaturalWidth(const Slot &Place, UINTN Room) {
  const HOST_CONTROL *Control = ControlOf(Place.Node);
  const CHAR16 *Text = TextOf(Place.Node);
  switch (Control->Kind) {
    case HOST_CONTROL_LABEL:
      if (Control->Layout.Height > 1) {
        return Place.Width != 0 ? Place.Width : Room;
      }
      return TextWidth(Text);
    case HOST_CONTROL_BUTTON:
    case HOST_CONTROL_IMAGE_BUTTON:
      return (*Text == 0 ? 1 : TextWidth(Text)) + 4;
    case HOST_CONTROL_RADIO_GROUP:
      return WidestOption(Place.Node) + 4;
    case HOST_CONTROL_COMBO_BOX:
    case HOST_CONTROL_EDIT_BOX:
      return Place.Width != 0 ? Place.Width : kDefaultFieldWidth;
    case HOST_CONTROL_CHECK_BOX:
      return *Text == 0 ? 3 : 4 + TextWidth(Text);
    case HOST_CONTROL_SLIDER:
      if (Place.Width != 0) {
        return Place.Width;
      }
      return (*Text == 0 ? 0 : TextWidth(Text) + 1) + kSliderTrack + kSliderNumber;
    default:
      return Place.Width != 0 ? Place.Width : Room;
  }
}

// The rows a child covers: for a radio group only its options' rows.
[[nodiscard]] BOOLEAN CoversRow(const Slot &Place, UINTN Row) {
  if (KindOf(Place.Node) == HOST_CONTROL_RADIO_GROUP) {
    UINTN Count = OptionCount(Place.Node);
    UINTN Spacing = RadioSpacing(Place.Node, Place.Height);
    return Row >= Place.Row && (Row - Place.Row) % Spacing == 0 &&
           (Row - Place.Row) / Spacing < (Count == 0 ? 1 : Count);
  }
  UINTN Height = Place.Height == 0 ? 1 : Place.Height;
  return Row >= Place.Row && Row < Place.Row + Height;
}

[[nodiscard]] UINTN LastRow(const Slot &Place) {
  if (KindOf(Place.Node) == HOST_CONTROL_RADIO_GROUP) {
    UINTN Count = OptionCount(Place.Node);
    return Place.Row +
           (Count == 0 ? 0 : (Count - 1) * RadioSpacing(Place.Node, Place.Height));
  }
  return Place.Row + (Place.Height == 0 ? 0 : Place.Height - 1);
}

[[nodiscard]] BOOLEAN ShareARow(const Slot &First, const Slot &Second) {
  for (UINTN Row = First.Row; Row <= LastRow(First); Row++) {
    if (CoversRow(First, Row) && CoversRow(Second, Row)) {
      return TRUE;
    }
  }
  return FALSE;
}

// The template's place stretched to the room.
VOID Stretch(Slot &Place, const HOST_CONTROL &Control, const LayoutRoom &Room) {
  const HOST_LAYOUT &Design = Control.Layout;
  BOOLEAN Wider = Room.Width > Room.DesignWidth && Room.DesignWidth != 0;
  Place.Column = Wider ? Design.Column * Room.Width / Room.DesignWidth
                       : Design.Column;
  Place.Width = Design.Width;
  if (Design.Width != 0 && Design.Column + Design.Width >= Room.DesignWidth) {
    Place.Width = Room.Width > Place.Column ? Room.Width - Place.Column : 0;
  } else if (Wider && Design.Width >= 10) {
    Place.Width = Design.Width * Room.Width / Room.DesignWidth;
  }
  Place.FollowsPrevious = Design.Row == HOST_LAYOUT_NEXT_ROW;
  Place.Row = Place.FollowsPrevious ? 0 : Design.Row;
  Place.Height = Design.Height;
  Place.ExtraRows = 0;
}

// The first child that takes the extra rows gets them; the children below
// it move down. Without one, the children on the template's last row (the
// page's Back and Next) move to the last row there is.
VOID SpreadExtraRows(Slot *Slots, UINTN Count, const LayoutRoom &Room) {
  if (Room.ExtraRows == 0) {
    return;
  }
  for (UINTN Index = 0; Index < Count; Index++) {
    if (!HoldsTable(Slots[Index].Node, 1)) {
      continue;
    }
    Slot &Taker = Slots[Index];
    Taker.ExtraRows = Room.ExtraRows;
    if (KindOf(Taker.Node) == HOST_CONTROL_TABLE && Taker.Height != 0) {
      Taker.Height += Room.ExtraRows;
    }
    for (UINTN Other = 0; Other < Count; Other++) {
      if (!Slots[Other].FollowsPrevious && !Taker.FollowsPrevious &&
          Slots[Other].Row > Taker.Row) {
        Slots[Other].Row += Room.ExtraRows;
      }
    }
    return;
  }
  for (UINTN Index = 0; Index < Count && Room.DesignHeight != 0; Index++) {
    if (!Slots[Index].FollowsPrevious &&
        Slots[Index].Row + 1 >= Room.DesignHeight) {
      Slots[Index].Row += Room.ExtraRows;
    }
  }
}

// A column of controls beside a column of labels starts past the longest
// label: every child at or right of the first column a label runs into
// moves by the same amount, so the column stays straight.
VOID AlignLabelColumns(Slot *Slots, const UINTN *Widths, UINTN Count) {
  UINTN Shift = 0;
  UINTN From = ~static_cast<UINTN>(0);
  for (UINTN Left = 0; Left < Count; Left++) {
    if (KindOf(Slots[Left].Node) != HOST_CONTROL_LABEL || IsFixed(Slots[Left]) ||
        ControlOf(Slots[Left].Node)->Layout.Height > 1) {
      continue;
    }
    for (UINTN Right = 0; Right < Count; Right++) {
      if (Right == Left || IsFixed(Slots[Right]) ||
          Slots[Right].Column <= Slots[Left].Column ||
          !ShareARow(Slots[Left], Slots[Right])) {
        continue;
      }
      UINTN Needed = Slots[Left].Column + Widths[Left] + GapBefore(Slots[Right].Node);
      if (Needed > Slots[Right].Column) {
        Shift = Needed - Slots[Right].Column > Shift ? Needed - Slots[Right].Column
                                                     : Shift;
        From = Slots[Right].Column < From ? Slots[Right].Column : From;
      }
    }
  }
  for (UINTN Index = 0; Index < Count && Shift != 0; Index++) {
    if (!IsFixed(Slots[Index]) && Slots[Index].Column >= From) {
      Slots[Index].Column += Shift;
    }
  }
}

// Children of the sweep in the order of their columns (tree order for
// equal columns).
UINTN SortByColumn(const Slot *Slots, UINTN Count, UINTN *Order) {
  UINTN Sorted = 0;
  for (UINTN Index = 0; Index < Count; Index++) {
    if (IsFixed(Slots[Index])) {
      continue;
    }
    UINTN At = Sorted++;
    while (At > 0 && Slots[Order[At - 1]].Column > Slots[Index].Column) {
      Order[At] = Order[At - 1];
      At--;
    }
    Order[At] = Index;
  }
  return Sorted;
}

// Pushes each child right of those before it on its rows, pulls the ones
// that run past the right edge back in, and narrows what still does not
// fit.
VOID SeparateOnRows(Slot *Slots, UINTN *Widths, UINTN Count, UINTN Room) {
  UINTN Order[kMaxSlots];
  UINTN Sorted = SortByColumn(Slots, Count, Order);
  auto PushRight = [&]() {
    for (UINTN At = 0; At < Sorted; At++) {
      Slot &Place = Slots[Order[At]];
      for (UINTN Before = 0; Before < At; Before++) {
        const Slot &Left = Slots[Order[Before]];
        UINTN Free = Left.Column + Widths[Order[Before]] + GapBefore(Place.Node);
        if (ShareARow(Left, Place) && Place.Column < Free) {
          Place.Column = Free;
        }
      }
    }
  };
  PushRight();
  for (UINTN At = Sorted; At-- > 0;) {
    Slot &Place = Slots[Order[At]];
    UINTN Limit = Room;
    for (UINTN After = At + 1; After < Sorted; After++) {
      const Slot &Right = Slots[Order[After]];
      UINTN Gap = GapBefore(Right.Node);
      if (ShareARow(Place, Right) && Right.Column >= Gap &&
          Right.Column - Gap < Limit) {
        Limit = Right.Column - Gap;
      }
    }
    if (Place.Column + Widths[Order[At]] > Limit) {
      Place.Column = Limit > Widths[Order[At]] ? Limit - Widths[Order[At]] : 0;
    }
  }
  // Re-sorted after the pull: a child may have moved left of another.
  Sorted = SortByColumn(Slots, Count, Order);
  PushRight();
  for (UINTN At = 0; At < Sorted; At++) {
    UINTN Index = Order[At];
    UINTN Left = Room > Slots[Index].Column ? Room - Slots[Index].Column : 0;
    Widths[Index] = Widths[Index] > Left ? Left : Widths[Index];
  }
}

}  // namespace

UINTN RadioSpacing(const HOST_PAGE_NODE *Node, UINTN Height) {
  UINTN Count = OptionCount(Node);
  return Count > 1 && Height > Count ? Height / Count : 1;
}

UINTN LayOutChildren(HOST_PAGE_NODE *Parent, const LayoutRoom &Room,
                     Slot *Slots) {
  UINTN Count = 0;
  UINTN Walked = 0;
  for (HOST_PAGE_NODE *Child = Parent->FirstChild;
       Child != nullptr && Count < kMaxSlots && Walked < 1024;
       Child = Child->NextSibling, Walked++) {
    HOST_CONTROL *Control = ControlOf(Child);
    if (Control == nullptr || EffectiveState(Child) == HOST_DISPLAY_HIDDEN) {
      continue;
    }
    Slot &Place = Slots[Count++];
    Place.Node = Child;
    Stretch(Place, *Control, Room);
  }
  SpreadExtraRows(Slots, Count, Room);
  UINTN Widths[kMaxSlots];
  for (UINTN Index = 0; Index < Count; Index++) {
    UINTN Left = Room.Width > Slots[Index].Column ? Room.Width - Slots[Index].Column
                                                  : 0;
    Widths[Index] = NaturalWidth(Slots[Index], Left);
  }
  AlignLabelColumns(Slots, Widths, Count);
  SeparateOnRows(Slots, Widths, Count, Room.Width);
  for (UINTN Index = 0; Index < Count; Index++) {
    if (!IsFixed(Slots[Index])) {
      Slots[Index].Width = Widths[Index];
    }
  }
  return Count;
}

}  // namespace framework
