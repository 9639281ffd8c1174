// Where a free segment goes in its array's SegmentList. The wizard reads the
// list in order to show volumes and the free space between them, so the
// placement follows the tool's "after volume" column.
#include "RaidLib.h"

// Links Segment in by the volume it lies after (Segment->State): after no
// volume at the head, after all at the tail, else directly ahead of the first record carrying that
// number. Both rules are deliberate and must stay: the wizard shows the
// list in this order and relies on it. The search compares every record of
// the list, volumes and free segments alike. A number that no record
// carries sends the segment to the tail, after everything already listed.
VOID RaidLibInsertFreeSegment(RAID_ARRAY *Array, RAID_VOLUME *Segment) {
  if (Array == nullptr || Segment == nullptr) {
    return;
  }
  LIST_ENTRY *Head = &Array->SegmentList;
  if (!IsListLive(Head)) {
    InitializeListHead(Head);
  }
  if (Segment->State == RAID_SEGMENT_AFTER_NO_VOLUME) {
    InsertHeadList(Head, &Segment->Link);
    return;
  }
  if (Segment->State == RAID_SEGMENT_AFTER_ALL) {
    InsertTailList(Head, &Segment->Link);
    return;
  }
  for (RAID_VOLUME *Record : uefi::ListOf<&RAID_VOLUME::Link>(*Head)) {
    if (Record->Id == Segment->State) {
      InsertBeforeNode(&Record->Link, &Segment->Link);
      return;
    }
  }
  InsertTailList(Head, &Segment->Link);
}
