// "/ST", the volumes' states, and the verdict of a change command.
#include <Library/MemoryAllocationLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibLines.h"
#include "RaidLibRow.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"
#include "RaidLibWordTable.h"
#include "RsteBackend.h"

namespace rste {

namespace {

constexpr RAID_WORD_CODE kVolumeStates[] = {
    {u"Normal", RAID_STATE4_ONLINE},
    {u"Degraded", RAID_STATE4_DEGRADED},
    {u"Rebuilding", RAID_STATE4_REBUILDING},
    {u"Rebuild", RAID_STATE4_REBUILDING},
};
constexpr RAID_WORD_TABLE kVolumeStateTable =
    RaidLibWordTable(kVolumeStates, RaidMatchExact, RAID_STATE4_OFFLINE);

// Lines that end a change command's output as a success.
constexpr const CHAR16 *kSuccessLines[] = {
    u"Deleting  Volume...Successfully deleted volume",
    u"Creating Volume....Successfully created volume",
    u"Marking selected disks as spares...Completed",
    u"Removing MetaData from selected disks...Completed",
};

constexpr const CHAR16 *kNameLine[] = {u"Name:"};
constexpr RAID_LINE_PREFIXES kNameLineSet = RaidLibLinePrefixes(kNameLine);

// Where a volume's state stands below its "Name:" line.
[[nodiscard]] UINTN StateLineOffset() { return gRsteVrocLayout != 0 ? 7 : 6; }

// A name's length and characters folded into 32 bits, so that most
// volumes of another name are told apart without comparing names.
[[nodiscard]] UINT32 NameKey(const CHAR16 *Name) {
  UINT32 Key = 2166136261U;
  UINT32 Length = 0;
  for (; Name[Length] != 0; Length++) {
    Key = (Key ^ Name[Length]) * 16777619U;
  }
  return Key ^ Length;
}

// The volumes a "Name:" line may set: in each array, the first volume of
// each name, with its name's key. The report names every volume once, so
// an index saves walking every array for each name.
class VolumeIndex {
  [[nodiscard]] auto Arrays() {
    return uefi::ListOf<&RAID_ARRAY::Link>(Controller_->ArrayList);
  }

 public:
  explicit VolumeIndex(RAID_CONTROLLER *Controller) : Controller_(Controller) {
    UINTN Count = 0;
    for (RAID_ARRAY *Array : Arrays()) {
      Count += Array->VolumeCount;
    }
    Entries_ = static_cast<Entry *>(AllocatePool(Count * sizeof(Entry)));
    if (Entries_ == nullptr) {
      return;  // the walk over every array answers alone
    }
    Capacity_ = Count;
    for (RAID_ARRAY *Array : Arrays()) {
      IndexArray(Array);
    }
  }
  ~VolumeIndex() {
    if (Entries_ != nullptr) {
      FreePool(Entries_);
    }
  }
  VolumeIndex(const VolumeIndex &) = delete;
  VolumeIndex &operator=(const VolumeIndex &) = delete;

  // Sets State on the first volume of each array named Name.
  VOID SetState(const CHAR16 *Name, UINT32 State) {
    if (Entries_ == nullptr) {
      SetStateByWalk(Name, State);
      return;
    }
    const UINT32 Key = NameKey(Name);
    for (UINTN Index = 0; Index < Count_; Index++) {
      if (Entries_[Index].Key == Key &&
          RaidLibWordIs(Entries_[Index].Volume->Name, Name)) {
        Entries_[Index].Volume->State = State;
      }
    }
  }

 private:
  struct Entry {
    UINT32 Key;
    RAID_VOLUME *Volume;
  };

  // The array's volumes that no earlier volume of the array shares a name
  // with. A count that no longer matches its list leaves the rest out of
  // the index and to the walk.
  VOID IndexArray(RAID_ARRAY *Array) {
    const UINTN First = Count_;
    for (RAID_VOLUME *Volume :
         uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
      if (Volume->IsVolume != 1 || Volume->Name == nullptr) {
        continue;
      }
      bool Shadowed = false;
      for (UINTN Index = First; Index < Count_ && !Shadowed; Index++) {
        Shadowed = RaidLibWordIs(Entries_[Index].Volume->Name, Volume->Name);
      }
      if (Shadowed) {
        continue;
      }
      if (Count_ == Capacity_) {
        FreePool(Entries_);
        Entries_ = nullptr;
        return;
      }
      Entries_[Count_++] = {NameKey(Volume->Name), Volume};
    }
  }

  VOID SetStateByWalk(const CHAR16 *Name, UINT32 State) {
    for (RAID_ARRAY *Array : Arrays()) {
      for (RAID_VOLUME *Volume :
           uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
        if (Volume->IsVolume == 1 && RaidLibWordIs(Volume->Name, Name)) {
          Volume->State = State;
          break;
        }
      }
    }
  }

  RAID_CONTROLLER *Controller_;
  Entry *Entries_ = nullptr;
  UINTN Count_ = 0;
  UINTN Capacity_ = 0;
};

[[nodiscard]] bool IsSuccessLine(const CHAR16 *Line) {
  for (const CHAR16 *Success : kSuccessLines) {
    if (RaidLibStartsWith(Line, Success)) {
      return true;
    }
  }
  return false;
}

}  // namespace

EFI_STATUS ParseSataInfo(CHAR16 *Output, RAID_CONTROLLER *Controller,
                         UINT32 *ErrorCode) {
  (VOID)ErrorCode;
  if (Output == nullptr || Controller == nullptr) {
    return EFI_ABORTED;
  }
  VolumeIndex Volumes(Controller);
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLineStartingWith(&Lines, kNameLineSet);
       Line != nullptr;
       Line = RaidLibNextLineStartingWith(&Lines, kNameLineSet)) {
    RAID_ROW NameRow;
    const CHAR16 *Name = RaidLibTrimmedValue(Line, u":", &NameRow);
    RAID_ROW StateRow;
    const CHAR16 *Word = RaidLibTrimmedValue(
        RaidLibLineAhead(&Lines, StateLineOffset()), u":", &StateRow);
    if (Name != nullptr) {
      Volumes.SetState(Name, RaidLibCodeOfWord(kVolumeStateTable, Word));
    }
  }
  return EFI_SUCCESS;
}

// A success line ends the walk; an "ERROR:" line is traced with all that
// follows it and gives the kind's error code. Output with neither is taken
// as success: the tool prints nothing more for some completed changes.
EFI_STATUS ParseError(CHAR16 *Output, UINT32 Kind, UINT32 *ErrorCode) {
  if (Output == nullptr) {
    return EFI_ABORTED;
  }
  *ErrorCode = 0;
  RAID_LINE_CURSOR Lines;
  RaidLibLinesStart(&Lines, Output, RSTE_OUTPUT_CHARS);
  for (CHAR16 *Line = RaidLibNextLine(&Lines); Line != nullptr;
       Line = RaidLibNextLine(&Lines)) {
    if (IsSuccessLine(Line)) {
      *ErrorCode = 0;
      return EFI_SUCCESS;
    }
    if (RaidLibStartsWith(Line, u"ERROR:")) {
      for (; Line != nullptr; Line = RaidLibNextLine(&Lines)) {
        RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] %S\n", RaidLibTrim(Line));
      }
      *ErrorCode = RsteErrorCodeOfKind(Kind);
      return EFI_SUCCESS;
    }
  }
  return EFI_SUCCESS;
}

}  // namespace rste
