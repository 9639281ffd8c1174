// Creating a volume with the tool's "/C" command: on new disks (sized, or
// the whole free space) or in an existing array beside its first volume.
// RAID 1 takes no stripe size.
#include <Protocol/Host/TarnSetup.h>

#include "RaidLibController.h"
#include "RaidLibText.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"

namespace rste {

namespace {

typedef CHAR16 DISK_LIST[RSTE_DISK_LIST_CHARS];

// Appends one disk number and its separator; FALSE when the list would not
// fit, since a cut number names another disk.
[[nodiscard]] bool AppendDisk(CHAR16 *List, UINTN *Length, UINT32 Id,
                              const CHAR16 *Format) {
  if (!RaidLibFormat(List + *Length, RSTE_DISK_LIST_CHARS - *Length, Format,
                     Id)) {
    List[*Length] = 0;
    return false;
  }
  while (List[*Length] != 0) {
    (*Length)++;
  }
  return true;
}

// A refused disk list: traced, nothing runs.
VOID RefuseDiskList(const CHAR8 *Caller, UINT32 *ErrorCode) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                    "[%a]Disk list does not fit in %d characters, not run\n",
                    RSTE_DISK_LIST_CHARS - 1);
  *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
}

// The chosen disks, single blanks between them.
[[nodiscard]] bool NewDiskList(const RAID_VOLUME_PARAMETER *Parameter,
                               DISK_LIST List) {
  UINTN Length = 0;
  List[0] = 0;
  for (UINT32 Index = 0; Index < Parameter->DriveCount &&
                         Parameter->DriveList[Index] != RAID_DRIVE_LIST_END;
       Index++) {
    if (!AppendDisk(List, &Length, Parameter->DriveList[Index],
                    Index == 0 ? u"%d" : u" %d")) {
      return false;
    }
  }
  return true;
}

// The array's members, each followed by a blank, as the engine lists them
// for a volume beside an existing one.
[[nodiscard]] bool MemberDiskList(RAID_ARRAY *Array, DISK_LIST List) {
  UINTN Length = 0;
  List[0] = 0;
  for (RAID_PHYSICAL_DRIVE *Disk :
       uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(Array->DriveList)) {
    if (!AppendDisk(List, &Length, Disk->Id, u"%d ")) {
      return false;
    }
  }
  return true;
}

[[nodiscard]] RAID_ARRAY *ArrayWithId(RAID_CONTROLLER *Controller, UINT32 Id) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Array->Id == Id) {
      return Array;
    }
  }
  return nullptr;
}

// Runs the create command and judges it; a refused line keeps its code.
VOID RunCreate(const CHAR8 *Caller, EFI_STATUS RunStatus, UINT32 Kind,
               UINT32 *ErrorCode) {
  if (!EFI_ERROR(RunStatus)) {
    RaidLibOutputJudgedByCaller(ParseError(gRaidToolOutput, Kind, ErrorCode));
  }
  if (*ErrorCode != 0) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR, "[%a] VD creation command failed\n");
  }
}

[[nodiscard]] const CHAR16 *NameOf(const RAID_VOLUME_PARAMETER *Parameter) {
  return Parameter->Name != nullptr ? Parameter->Name : u"";
}

VOID CreateOnNewDisks(const CHAR8 *Caller, RAID_VOLUME_PARAMETER *Parameter,
                      UINT32 *ErrorCode) {
  if (Parameter->DriveCount == 0 || Parameter->DriveList == nullptr ||
      Parameter->DriveList[0] == RAID_DRIVE_LIST_END) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR, "[%a]No Free Physical Drives!\n");
    *ErrorCode = RSTE_ERROR_NO_FREE_DRIVES;
    return;
  }
  DISK_LIST Disks;
  if (!NewDiskList(Parameter, Disks)) {
    RefuseDiskList(Caller, ErrorCode);
    return;
  }
  // Whole GB; below 1 GB the volume takes the whole free space.
  UINT64 Gb = Parameter->Size / 1000;
  INT32 Size = Gb > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<INT32>(Gb);
  INT32 Level = Parameter->RaidLevel;
  INT32 Stripe = static_cast<INT32>(Parameter->StripeSize);
  RAID_TOOL_RUN Run =
      RaidLibSharedRun(Caller, RSTE_CREATE_COMMAND_CHARS, RSTE_TOOL_WORDS);
  const CHAR16 *Name = NameOf(Parameter);
  EFI_STATUS Status;
  if (Level == 1) {
    Status = Size == 0
                 ? RaidLibRunTool(Run, ErrorCode,
                                  u"%S /Y /C:%W /L:%d /S:100%% /DS:%S",
                                  gRsteTool, Name, Level, Disks)
                 : RaidLibRunTool(Run, ErrorCode,
                                  u"%S /Y /C:%W /L:%d /S:%d /DS:%S", gRsteTool,
                                  Name, Level, Size, Disks);
  } else {
    Status = Size == 0
                 ? RaidLibRunTool(Run, ErrorCode,
                                  u"%S /Y /C:%W /SS:%d /L:%d /S:100%% /DS:%S",
                                  gRsteTool, Name, Stripe, Level, Disks)
                 : RaidLibRunTool(Run, ErrorCode,
                                  u"%S /Y /C:%W /SS:%d /L:%d /S:%d /DS:%S",
                                  gRsteTool, Name, Stripe, Level, Size, Disks);
  }
  RunCreate(Caller, Status, RSTE_KIND_CREATE_NEW, ErrorCode);
}

VOID CreateInArray(const CHAR8 *Caller, RAID_CONTROLLER *Controller,
                   RAID_VOLUME_PARAMETER *Parameter, UINT32 *ErrorCode) {
  RAID_ARRAY *Array = ArrayWithId(Controller, Parameter->ArrayId);
  if (Array == nullptr) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR, "[%a]Array %d is empty!\n",
                      Parameter->ArrayId);
    *ErrorCode = RAID_ERROR_MISSING;
    return;
  }
  DISK_LIST Disks;
  if (!MemberDiskList(Array, Disks)) {
    RefuseDiskList(Caller, ErrorCode);
    return;
  }
  INT32 Level = Array->RaidLevel;
  INT32 Stripe = static_cast<INT32>(Parameter->StripeSize);
  RAID_TOOL_RUN Run =
      RaidLibSharedRun(Caller, RSTE_CREATE_COMMAND_CHARS, RSTE_TOOL_WORDS);
  const CHAR16 *Name = NameOf(Parameter);
  EFI_STATUS Status =
      Level == 1
          ? RaidLibRunTool(Run, ErrorCode, u"%S /Y /C:%W /L:%d /DS:%S",
                           gRsteTool, Name, Level, Disks)
          : RaidLibRunTool(Run, ErrorCode, u"%S /Y /C:%W /SS:%d /L:%d /DS:%S",
                           gRsteTool, Name, Stripe, Level, Disks);
  RunCreate(Caller, Status, RSTE_KIND_CREATE_EXISTING, ErrorCode);
}

}  // namespace

// Creates the volume and re-reads the controller in every case once it is
// found; the re-read's status is returned.
EFI_STATUS RsteCreateVolume(RAID_VOLUME_PARAMETER *Parameter, UINTN Unused,
                            UINT32 *ErrorCode) {
  (VOID)Unused;
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Parameter != nullptr ? RaidLibGetController(Parameter->ControllerId)
                           : nullptr;
  if (Controller == nullptr || Controller->Private == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Not find controller.\n");
    return EFI_ABORTED;
  }
  EFI_STATUS Status = RsteReady(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (Parameter->NewArray != 0) {
    CreateOnNewDisks(__func__, Parameter, ErrorCode);
  } else {
    CreateInArray(__func__, Controller, Parameter, ErrorCode);
  }
  return RsteRefresh(__func__, Controller, ErrorCode);
}

}  // namespace rste
