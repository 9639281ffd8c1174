// Creating a logical drive with arcconf: on new drives (a new array) or in
// the free space of an existing array. The tool's answer is not read; the
// re-read afterwards shows what the adapter made.
#include <Library/BaseLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "MchpBackend.h"
#include "RaidLibController.h"
#include "RaidLibModelBuild.h"
#include "RaidLibOperation.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"

namespace mchp {

constinit UINT32 gMchpHotSpareRequested = 0;

namespace {

constexpr const CHAR16 *kCreateOnDrives =
    u"%S create %d logicaldrive stripesize %d %S %S %d %S noprompt";
constexpr const CHAR16 *kCreateOnDrivesTriple =
    u"%S create %d logicaldrive stripesize %d %S %S %dTriple %S noprompt";
constexpr const CHAR16 *kCreateInArray =
    u"%S create %d logicaldrive %S %S %d ARRAY %d noprompt";
constexpr const CHAR16 *kCreateInArrayTriple =
    u"%S create %d logicaldrive %S %S %dTriple ARRAY %d noprompt";

constexpr UINTN kWordChars = 128;

// "NAME <name>", or a single blank for a volume without a name. FALSE
// (traced, *ErrorCode set) for a name that would not reach the tool whole.
[[nodiscard]] bool NameWord(const CHAR8 *Caller,
                            const RAID_VOLUME_PARAMETER *Parameter,
                            CHAR16 *Word, UINT32 *ErrorCode) {
  if (Parameter->Name == nullptr || Parameter->Name[0] == 0) {
    Word[0] = u' ';
    Word[1] = 0;
    return true;
  }
  return !EFI_ERROR(RaidLibFormatCommand(Caller, Word, kWordChars,
                                         MCHP_TOOL_WORDS, ErrorCode,
                                         u"NAME %W", Parameter->Name));
}

// The size in MB: whole GB of the request times 1024, or "MAX" below 1 GB.
// The request's unit is not looked at: it is taken to be GB (deliberately;
// the wizard plans in GB).
VOID SizeWord(const RAID_VOLUME_PARAMETER *Parameter, CHAR16 *Word) {
  UINT64 WholeGb = Parameter->Size / 1000;
  if (WholeGb == 0) {
    (VOID)RaidLibFormat(Word, kWordChars, u"MAX");
    return;
  }
  (VOID)RaidLibFormat(Word, kWordChars, u"%d",
                      static_cast<INT32>(WholeGb * 1024));
}

[[nodiscard]] UINT32 CountIds(const UINT32 *Ids) {
  UINT32 Count = 0;
  while (Ids != nullptr && Ids[Count] != RAID_DRIVE_LIST_END) {
    Count++;
  }
  return Count;
}

[[nodiscard]] bool IsRequested(const RAID_VOLUME_PARAMETER *Parameter,
                               const RAID_PHYSICAL_DRIVE *Drive) {
  for (UINT32 Index = 0;
       Parameter->DriveList != nullptr && Index < Parameter->DriveCount &&
       Parameter->DriveList[Index] != RAID_DRIVE_LIST_END;
       Index++) {
    if (Parameter->DriveList[Index] == Drive->Id) {
      return true;
    }
  }
  return false;
}

[[nodiscard]] UINT32 ChannelOf(const RAID_PHYSICAL_DRIVE *Drive) {
  return Drive->Position->Values[MCHP_POSITION_CHANNEL];
}

// TRUE when a requested drive before Drive in the list has its channel: its
// group was written already.
[[nodiscard]] bool ChannelSeen(RAID_CONTROLLER *Controller,
                               const RAID_VOLUME_PARAMETER *Parameter,
                               const RAID_PHYSICAL_DRIVE *Drive) {
  for (RAID_PHYSICAL_DRIVE *Earlier :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller->PhysicalDriveList)) {
    if (Earlier == Drive) {
      return false;
    }
    if (IsRequested(Parameter, Earlier) &&
        ChannelOf(Earlier) == ChannelOf(Drive)) {
      return true;
    }
  }
  return false;
}

// "channel device" pairs of the requested drives, grouped by channel in the
// order the channels first appear ("0 4 0 5 0 6 1 2"). A list that does not
// fit is refused whole: a cut list would name other drives.
[[nodiscard]] EFI_STATUS BuildDriveList(RAID_CONTROLLER *Controller,
                                        const RAID_VOLUME_PARAMETER *Parameter,
                                        CHAR16 *List) {
  UINTN Length = 0;
  List[0] = 0;
  for (RAID_PHYSICAL_DRIVE *First :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Controller->PhysicalDriveList)) {
    if (!IsRequested(Parameter, First) ||
        ChannelSeen(Controller, Parameter, First)) {
      continue;
    }
    for (RAID_PHYSICAL_DRIVE *Drive :
         uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
             Controller->PhysicalDriveList)) {
      if (!IsRequested(Parameter, Drive) ||
          ChannelOf(Drive) != ChannelOf(First)) {
        continue;
      }
      if (!RaidLibFormat(List + Length, MCHP_DRIVE_LIST_CHARS - Length,
                         Length == 0 ? u"%d %d" : u" %d %d", ChannelOf(Drive),
                         Drive->Position->Values[MCHP_POSITION_DEVICE])) {
        List[0] = 0;
        return EFI_BUFFER_TOO_SMALL;
      }
      Length += StrLen(List + Length);
    }
  }
  return EFI_SUCCESS;
}

// A new array on the requested drives.
[[nodiscard]] EFI_STATUS CreateOnDrives(const CHAR8 *Caller,
                                        RAID_CONTROLLER *Controller,
                                        const RAID_VOLUME_PARAMETER *Parameter,
                                        const CHAR16 *Name, const CHAR16 *Size,
                                        UINT32 *ErrorCode) {
  if (Parameter->DriveCount == 0) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                      "[%a]No Free Physical Drives!\n");
    *ErrorCode = MCHP_ERROR_NO_FREE_DRIVES;
    return EFI_ABORTED;
  }
  UINT32 SpareCount = CountIds(Parameter->SpareList);
  if (SpareCount != 0) {
    gMchpHotSpareRequested = 1;
  }
  CHAR16 List[MCHP_DRIVE_LIST_CHARS];
  if (EFI_ERROR(BuildDriveList(Controller, Parameter, List))) {
    *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
    return EFI_BUFFER_TOO_SMALL;
  }
  bool Triple = Parameter->RaidLevel == 1 && Parameter->DriveCount == 3;
  EFI_STATUS Status = RaidLibRunTool(
      RaidLibSharedRun(Caller, MCHP_CREATE_COMMAND_CHARS), ErrorCode,
      Triple ? kCreateOnDrivesTriple : kCreateOnDrives,
      Controller->Capability->ToolName, Controller->Private->CardId,
      MCHP_STRIPE_SIZE, Name, Size, static_cast<INT32>(Parameter->RaidLevel),
      List);
  // The create command carries no spares; they are made by a drive-state
  // change afterwards.
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Hotsparecount.....: %d\n",
                    SpareCount);
  return Status;
}

// A new logical drive in an existing array's free space, at the array's
// own RAID level.
[[nodiscard]] EFI_STATUS CreateInArray(const CHAR8 *Caller,
                                       RAID_CONTROLLER *Controller,
                                       const RAID_VOLUME_PARAMETER *Parameter,
                                       const CHAR16 *Name, const CHAR16 *Size,
                                       UINT32 *ErrorCode) {
  RAID_ARRAY *Array = RaidLibFindArray(Controller, Parameter->ArrayId);
  if (Array == nullptr) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR, "[%a]Array %d is empty!\n",
                      Parameter->ArrayId);
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  // The tool places the drive in the array's free space itself; the chosen
  // segment is only named in the trace.
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Segment->IsVolume == 0 && Segment->Id == Parameter->FreeSegmentId) {
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Free segment: %S\n",
                        Segment->Name);
    }
  }
  bool Triple = Array->RaidLevel == 1 && Array->MemberDriveCount == 3;
  return RaidLibRunTool(RaidLibSharedRun(Caller, MCHP_CREATE_COMMAND_CHARS),
                        ErrorCode,
                        Triple ? kCreateInArrayTriple : kCreateInArray,
                        Controller->Capability->ToolName,
                        Controller->Private->CardId, Name, Size,
                        static_cast<INT32>(Array->RaidLevel), Array->Id);
}

}  // namespace

EFI_STATUS MchpCreateVolume(RAID_VOLUME_PARAMETER *Parameter, UINTN Unused,
                            UINT32 *ErrorCode) {
  (VOID)Unused;
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Parameter != nullptr ? GetController(Parameter->ControllerId) : nullptr;
  if (!RaidLibControllerCanRunTool(Controller)) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Not find controller.\n");
    *ErrorCode = RAID_ERROR_MISSING;
    return EFI_ABORTED;
  }
  gRaidToolOutput[0] = 0;
  if (Controller->Private->CardId == RAID_CARD_ID_UNSET) {
    *ErrorCode = RAID_ERROR_INVALID_CARD_ID;
  } else {
    CHAR16 Name[kWordChars];
    CHAR16 Size[kWordChars];
    SizeWord(Parameter, Size);
    RaidLibOutputJudgedByCaller(
        !NameWord(__func__, Parameter, Name, ErrorCode) ? EFI_INVALID_PARAMETER
        : Parameter->NewArray != 0
            ? CreateOnDrives(__func__, Controller, Parameter, Name, Size,
                             ErrorCode)
            : CreateInArray(__func__, Controller, Parameter, Name, Size,
                            ErrorCode));
  }
  RaidLibMarkOutputStale(Controller);
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Error code: 0x%x, Status: %r\n",
                 *ErrorCode, Refresh.Status);
  return Refresh.Status;
}

}  // namespace mchp
