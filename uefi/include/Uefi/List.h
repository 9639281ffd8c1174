// LIST_ENTRY: the firmware's circular doubly linked list, and a typed view
// over records that embed a link, so list walks read like C++.
#pragma once

#include <Uefi/Base.h>

typedef struct _LIST_ENTRY LIST_ENTRY;
struct _LIST_ENTRY {
  LIST_ENTRY *ForwardLink;
  LIST_ENTRY *BackLink;
};

// An empty list is a head that points at itself.
inline LIST_ENTRY *InitializeListHead(LIST_ENTRY *ListHead) {
  ListHead->ForwardLink = ListHead;
  ListHead->BackLink = ListHead;
  return ListHead;
}

[[nodiscard]] inline BOOLEAN IsListEmpty(const LIST_ENTRY *ListHead) {
  return ListHead->ForwardLink == ListHead ? TRUE : FALSE;
}

// Node is the head itself: the walk has come full circle.
[[nodiscard]] inline BOOLEAN IsNull(const LIST_ENTRY *List,
                                    const LIST_ENTRY *Node) {
  return List == Node ? TRUE : FALSE;
}

[[nodiscard]] inline BOOLEAN IsNodeAtEnd(const LIST_ENTRY *List,
                                         const LIST_ENTRY *Node) {
  return (!IsNull(List, Node) && List->BackLink == Node) ? TRUE : FALSE;
}

[[nodiscard]] inline LIST_ENTRY *GetFirstNode(const LIST_ENTRY *List) {
  return List->ForwardLink;
}

[[nodiscard]] inline LIST_ENTRY *GetNextNode(const LIST_ENTRY *List,
                                             const LIST_ENTRY *Node) {
  (void)List;
  return Node->ForwardLink;
}

[[nodiscard]] inline LIST_ENTRY *GetPreviousNode(const LIST_ENTRY *List,
                                                 const LIST_ENTRY *Node) {
  (void)List;
  return Node->BackLink;
}

inline LIST_ENTRY *InsertHeadList(LIST_ENTRY *ListHead, LIST_ENTRY *Entry) {
  Entry->ForwardLink = ListHead->ForwardLink;
  Entry->BackLink = ListHead;
  Entry->ForwardLink->BackLink = Entry;
  ListHead->ForwardLink = Entry;
  return ListHead;
}

inline LIST_ENTRY *InsertTailList(LIST_ENTRY *ListHead, LIST_ENTRY *Entry) {
  Entry->ForwardLink = ListHead;
  Entry->BackLink = ListHead->BackLink;
  Entry->BackLink->ForwardLink = Entry;
  ListHead->BackLink = Entry;
  return ListHead;
}

// Links Entry in directly ahead of Before (which may be the head: tail insert).
inline VOID InsertBeforeNode(LIST_ENTRY *Before, LIST_ENTRY *Entry) {
  InsertTailList(Before, Entry);
}

// Unlinks Entry and returns its successor. The entry's own links are left
// pointing at itself so that a second removal is harmless.
inline LIST_ENTRY *RemoveEntryList(LIST_ENTRY *Entry) {
  LIST_ENTRY *Next = Entry->ForwardLink;
  Next->BackLink = Entry->BackLink;
  Entry->BackLink->ForwardLink = Next;
  Entry->ForwardLink = Entry;
  Entry->BackLink = Entry;
  return Next;
}

// TRUE when Head has been initialised: a zeroed record's list head (both
// links NULL) was never set up and holds nothing.
[[nodiscard]] inline BOOLEAN IsListLive(const LIST_ENTRY *ListHead) {
  return (ListHead->ForwardLink != nullptr && ListHead->BackLink != nullptr)
             ? TRUE
             : FALSE;
}

// Number of entries, walking at most Limit of them (a corrupted list cannot
// make the count run forever).
[[nodiscard]] inline UINTN CountListEntries(const LIST_ENTRY *ListHead,
                                            UINTN Limit = ~(UINTN)0) {
  UINTN Count = 0;
  for (const LIST_ENTRY *Node = ListHead->ForwardLink;
       Node != ListHead && Count < Limit; Node = Node->ForwardLink) {
    Count++;
  }
  return Count;
}

namespace uefi {

// Range-for over the records of a list whose link is the member Link:
//   for (RAID_ARRAY *Array : ListOf<&RAID_ARRAY::Link>(Controller->ArrayList))
// The successor is read before the body runs, so the body may unlink and
// free the current record.
template <typename Record, LIST_ENTRY Record::*Link>
class ListRange {
 public:
  explicit ListRange(LIST_ENTRY &Head) : Head_(&Head) {}

  class Iterator {
   public:
    Iterator(LIST_ENTRY *Head, LIST_ENTRY *Node)
        : Head_(Head), Node_(Node), Next_(Node->ForwardLink) {}
    Record *operator*() const { return FromLink(Node_); }
    Iterator &operator++() {
      Node_ = Next_;
      Next_ = Node_->ForwardLink;
      return *this;
    }
    bool operator!=(const Iterator &Other) const {
      return Node_ != Other.Node_;
    }

   private:
    LIST_ENTRY *Head_;
    LIST_ENTRY *Node_;
    LIST_ENTRY *Next_;
  };

  Iterator begin() const { return Iterator(Head_, Head_->ForwardLink); }
  Iterator end() const { return Iterator(Head_, Head_); }

  [[nodiscard]] static Record *FromLink(LIST_ENTRY *Node) {
    return reinterpret_cast<Record *>(reinterpret_cast<CHAR8 *>(Node) -
                                      LinkOffset());
  }

 private:
  // Offset of the link inside the record; the compiler folds it to a constant.
  [[nodiscard]] static UINTN LinkOffset() {
    union Storage {
      Storage() {}
      CHAR8 Byte;
      Record Value;
    } Probe;
    return static_cast<UINTN>(reinterpret_cast<CHAR8 *>(&(Probe.Value.*Link)) -
                              reinterpret_cast<CHAR8 *>(&Probe.Value));
  }

  LIST_ENTRY *Head_;
};

template <auto Link>
struct LinkTraits;
template <typename Record, LIST_ENTRY Record::*Link>
struct LinkTraits<Link> {
  using Range = ListRange<Record, Link>;
  using Type = Record;
};

template <auto Link>
[[nodiscard]] typename LinkTraits<Link>::Range ListOf(LIST_ENTRY &Head) {
  return typename LinkTraits<Link>::Range(Head);
}

// The record that embeds Node as its member Link.
template <auto Link>
[[nodiscard]] typename LinkTraits<Link>::Type *RecordOf(LIST_ENTRY *Node) {
  return LinkTraits<Link>::Range::FromLink(Node);
}

// Read-only walk over a list's records, for code that only looks (model
// writers, counts): the records come as pointers to const. Keyed by the
// record type as well as the link: clang names a pointer to a member by its
// offset alone in the EFI build, and every Link sits at offset 0.
template <typename Record, LIST_ENTRY Record::*Link>
class ConstListRange {
 public:
  explicit ConstListRange(const LIST_ENTRY &Head) : Head_(&Head) {}

  class Iterator {
   public:
    explicit Iterator(const LIST_ENTRY *Node) : Node_(Node) {}
    const Record *operator*() const {
      return ListRange<Record, Link>::FromLink(
          const_cast<LIST_ENTRY *>(Node_));
    }
    Iterator &operator++() {
      Node_ = Node_->ForwardLink;
      return *this;
    }
    bool operator!=(const Iterator &Other) const {
      return Node_ != Other.Node_;
    }

   private:
    const LIST_ENTRY *Node_;
  };

  // A head that was never initialised reads as empty.
  Iterator begin() const {
    return Iterator(IsListLive(Head_) ? Head_->ForwardLink : Head_);
  }
  Iterator end() const { return Iterator(Head_); }

 private:
  const LIST_ENTRY *Head_;
};

template <auto Link>
[[nodiscard]] ConstListRange<typename LinkTraits<Link>::Type, Link> ConstListOf(
    const LIST_ENTRY &Head) {
  return ConstListRange<typename LinkTraits<Link>::Type, Link>(Head);
}

// Unlinks and returns the first record of a list, or NULL when it is empty
// or was never initialised; the head is left initialised then, so a release
// walk may run over a partly built record.
template <auto Link>
[[nodiscard]] typename LinkTraits<Link>::Type *TakeFirst(LIST_ENTRY *Head) {
  if (!IsListLive(Head) || IsListEmpty(Head)) {
    InitializeListHead(Head);
    return nullptr;
  }
  LIST_ENTRY *Node = GetFirstNode(Head);
  RemoveEntryList(Node);
  return RecordOf<Link>(Node);
}

}  // namespace uefi
