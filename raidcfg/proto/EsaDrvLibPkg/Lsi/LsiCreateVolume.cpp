// Creating a volume with storcli's "add vd", in a new array (with optional
// hot spares) or in the free space of an existing one. Every word of the
// command has its own buffer; a word left blank holds one blank, so the
// command keeps its blanks. Every word, drive list and command line is
// built whole before the first command runs: one that does not fit refuses
// the create (RAID_ERROR_BUFFER_TOO_SMALL) and nothing is run.
#include <Library/PrintLib.h>
#include <Protocol/Host/TarnSetup.h>

#include "EsaDrvMgr.h"
#include "LsiBackend.h"
#include "RaidLibOperation.h"
#include "RaidLibToolRunner.h"
#include "RaidLibText.h"
#include "RaidLibTrace.h"

namespace lsi {

constinit UINT32 gLsiCommandForm = 0;

namespace {

typedef CHAR16 WORD_BUFFER[LSI_CREATE_WORD_CHARS];

// The words of the command that come from the parameter record.
struct CreateWords {
  WORD_BUFFER Size;
  WORD_BUFFER Name;
  WORD_BUFFER Span;
  WORD_BUFFER DiskCache;
  WORD_BUFFER Io;
  WORD_BUFFER Write;
  WORD_BUFFER Read;
  WORD_BUFFER After;
  CHAR16 Drives[LSI_DRIVE_LIST_CHARS];
};

VOID SetWord(WORD_BUFFER Word, const CHAR16 *Text) {
  UnicodeSPrint(Word, sizeof(WORD_BUFFER), u"%s", Text);
}

// The unit text of the size word; storcli's default unit for others.
[[nodiscard]] const CHAR16 *UnitText(UINT32 Unit) {
  switch (Unit) {
    case RAID_UNIT_GB:
      return u"GB";
    case RAID_UNIT_TB:
      return u"TB";
    default:
      return u"MB";
  }
}

// The command lines of one create.
struct CreateLines {
  CHAR16 Create[LSI_CREATE_COMMAND_CHARS];
  CHAR16 Spares[LSI_CREATE_COMMAND_CHARS];  // empty: no hot spares to add
};

// Refuses the create for a part that does not fit its buffer.
[[nodiscard]] bool RefuseCut(const CHAR8 *Caller, const CHAR8 *Part,
                             UINTN Chars, UINT32 *ErrorCode) {
  *ErrorCode = RAID_ERROR_BUFFER_TOO_SMALL;
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
               "[%a]%a does not fit in %u characters; nothing is run\n", Part,
               static_cast<UINT32>(Chars));
  return false;
}

// The size, name and policy words; FALSE (refused) when the name does not
// fit its word or would not reach storcli as one word.
[[nodiscard]] bool BuildParameterWords(const CHAR8 *Caller,
                                       const RAID_VOLUME_PARAMETER *Parameter,
                                       CreateWords *Words, UINT32 *ErrorCode) {
  UINT64 Whole = Parameter->Size / 1000;
  if (Whole == 0) {
    SetWord(Words->Size, u" ");  // The tool then takes all the space.
  } else {
    // The whole part is printed at its full width: a figure cut to 32 bits
    // would ask for another size.
    UnicodeSPrint(Words->Size, sizeof(WORD_BUFFER), u"size=%lu.%03d%S", Whole,
                  static_cast<UINT32>(Parameter->Size % 1000),
                  UnitText(RAID_VOLUME_SIZE_UNIT));
  }
  if (Parameter->Name == nullptr || Parameter->Name[0] == 0) {
    SetWord(Words->Name, u" ");
  } else {
    EFI_STATUS Status = RaidLibFormatCommand(
        Caller, Words->Name, LSI_CREATE_WORD_CHARS, LSI_TOOL_WORDS, ErrorCode,
        u"name=%W", Parameter->Name);
    if (Status == EFI_BUFFER_TOO_SMALL) {
      return RefuseCut(Caller, "Name word", LSI_CREATE_WORD_CHARS, ErrorCode);
    }
    if (EFI_ERROR(Status)) {
      return false;
    }
  }
  SetWord(Words->DiskCache,
          Parameter->DiskCachePolicy == RAID_DISK_CACHE_POLICY_OFF  ? u"off"
          : Parameter->DiskCachePolicy == RAID_DISK_CACHE_POLICY_ON ? u"on"
                                                                   : u"default");
  SetWord(Words->Io, Parameter->IoPolicy == RAID_IO_POLICY_CACHED   ? u"cached"
                     : Parameter->IoPolicy == RAID_IO_POLICY_DIRECT ? u"direct"
                                                                    : u"");
  SetWord(Words->Write,
          Parameter->WritePolicy == RAID_WRITE_POLICY_WRITE_THROUGH ? u"wt"
          : Parameter->WritePolicy == RAID_WRITE_POLICY_WRITE_BACK  ? u"wb"
          : Parameter->WritePolicy == RAID_WRITE_POLICY_ALWAYS_WRITE_BACK
              ? u"awb"
              : u"");
  SetWord(Words->Read,
          Parameter->ReadPolicy == RAID_READ_POLICY_ALWAYS_READ_AHEAD ? u"ra"
          : Parameter->ReadPolicy == RAID_READ_POLICY_NO_READ_AHEAD   ? u"nora"
                                                                      : u"");
  SetWord(Words->After, u"");
  return true;
}

// "pdperarray=N" for the nested levels, blank for the others.
VOID BuildSpanWord(UINT32 RaidLevel, UINT32 DriveCount, CreateWords *Words) {
  if (RaidLevel == 10 || RaidLevel == 50 || RaidLevel == 60) {
    UnicodeSPrint(Words->Span, sizeof(WORD_BUFFER), u"pdperarray=%d",
                  LsiDrivesPerSpan(RaidLevel, DriveCount));
  } else {
    SetWord(Words->Span, u" ");
  }
}

// TRUE when Id is in the id block, which ends at RAID_DRIVE_LIST_END or
// after Limit entries.
[[nodiscard]] bool IdListed(const UINT32 *Ids, UINTN Limit, UINT32 Id) {
  for (UINTN Index = 0; Ids != nullptr && Index < Limit; Index++) {
    if (Ids[Index] == RAID_DRIVE_LIST_END) {
      return false;
    }
    if (Ids[Index] == Id) {
      return true;
    }
  }
  return false;
}

// A drive id block with the most entries a controller can list.
struct IdBlock {
  const UINT32 *Ids;
  UINTN Limit;
};

[[nodiscard]] BOOLEAN TakeListedDrive(const RAID_PHYSICAL_DRIVE *Drive,
                                      const VOID *Context) {
  const IdBlock *Block = static_cast<const IdBlock *>(Context);
  return IdListed(Block->Ids, Block->Limit, Drive->Id) ? TRUE : FALSE;
}

[[nodiscard]] BOOLEAN TakeArrayMember(const RAID_PHYSICAL_DRIVE *Drive,
                                      const VOID *Context) {
  return Drive->Role != RAID_ROLE_HOT_SPARE ? TRUE : FALSE;
}

// Longest id block read without its own count (hot spares).
constexpr UINTN kMaxListedDrives = 1024;

// FALSE when an id of the block does not name exactly one unconfigured
// drive of List: a list built from it would hold a drive not asked for (an
// id two drives carry) or lack one that was (an id that names a drive
// elsewhere or none at all, such as a member of another array), and the
// tool would build another array than the one the operator chose.
[[nodiscard]] bool EachIdNamesOneDrive(const CHAR8 *Caller, LIST_ENTRY *List,
                                       const IdBlock &Block) {
  for (UINTN Index = 0; Block.Ids != nullptr && Index < Block.Limit &&
                        Block.Ids[Index] != RAID_DRIVE_LIST_END;
       Index++) {
    UINT32 Found = RaidLibCountDrivesWithId(List, Block.Ids[Index]);
    if (Found != 1) {
      RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                   "[%a]Drive id %u names %u drives; nothing is run\n",
                   Block.Ids[Index], Found);
      return false;
    }
  }
  return true;
}

// Formats "add vd" in the module's command form; FALSE (refused) when the
// line does not fit.
[[nodiscard]] bool FormatCreate(const CHAR8 *Caller,
                                RAID_CONTROLLER *Controller, UINT32 RaidLevel,
                                const RAID_VOLUME_PARAMETER *Parameter,
                                const CreateWords *Words, CHAR16 *Line,
                                UINT32 *ErrorCode) {
  const CHAR16 *Tool = Controller->Capability->ToolName;
  UINT32 CardId = Controller->Private->CardId;
  EFI_STATUS Status;
  if (gLsiCommandForm == 0) {
    Status = RaidLibFormatCommand(
        Caller, Line, LSI_CREATE_COMMAND_CHARS, LSI_TOOL_WORDS, ErrorCode,
        u"%S /c%u add vd raid%d %S %S drives=%S %S pdcache=%S %S %S "
        u"%S strip=%d %S mronly nolog",
        Tool, CardId, RaidLevel, Words->Size, Words->Name, Words->Drives,
        Words->Span, Words->DiskCache, Words->Io, Words->Write, Words->Read,
        Parameter->StripeSize, Words->After);
  } else if (gLsiCommandForm == 1 || gLsiCommandForm == 2) {
    Status = RaidLibFormatCommand(
        Caller, Line, LSI_CREATE_COMMAND_CHARS, LSI_TOOL_WORDS, ErrorCode,
        u"%S /c%u add vd raid%d %S %S drives=%S %S pdcache=%S %S %S "
        u"mronly nolog",
        Tool, CardId, RaidLevel, Words->Size, Words->Name, Words->Drives,
        Words->Span, Words->DiskCache, Words->Write, Words->Read);
  } else {
    Status = RaidLibFormatCommand(
        Caller, Line, LSI_CREATE_COMMAND_CHARS, LSI_TOOL_WORDS, ErrorCode,
        u"%S /c%u add vd raid%d %S %S drives=%S %S pdcache=%S "
        u"mronly nolog",
        Tool, CardId, RaidLevel, Words->Size, Words->Name, Words->Drives,
        Words->Span, Words->DiskCache);
  }
  return !EFI_ERROR(Status);
}

// Formats the new array's hot-spare command. Deliberately only the first
// enclosure is named: the slots piece runs up to the next ":" of the list,
// so with spares in two enclosures it carries the next enclosure's number
// after the slots. Splitting it per enclosure would change what storcli is
// told on adapters in use; keep the line as it is built.
[[nodiscard]] bool FormatAddHotSpares(const CHAR8 *Caller,
                                      RAID_CONTROLLER *Controller,
                                      const RAID_VOLUME_PARAMETER *Parameter,
                                      CHAR16 *Line, UINT32 *ErrorCode) {
  CHAR16 Spares[LSI_DRIVE_LIST_CHARS];
  IdBlock Block = {Parameter->SpareList, kMaxListedDrives};
  if (EFI_ERROR(LsiBuildDriveList(&Controller->PhysicalDriveList,
                                  TakeListedDrive, &Block, Spares,
                                  LSI_DRIVE_LIST_CHARS))) {
    return RefuseCut(Caller, "Hot spare list", LSI_DRIVE_LIST_CHARS, ErrorCode);
  }
  CHAR16 *Position = nullptr;
  CHAR16 *Enclosure = RaidLibTokenize(Spares, u":", &Position);
  CHAR16 *Slots = RaidLibTokenize(nullptr, u":", &Position);
  UINT32 NewArrayNumber = static_cast<UINT32>(
      CountListEntries(&Controller->ArrayList));
  return !EFI_ERROR(RaidLibFormatCommand(
      Caller, Line, LSI_CREATE_COMMAND_CHARS, LSI_TOOL_WORDS, ErrorCode,
      u"%S /c%u/e%S/s%S add hotsparedrive dgs=%u mronly nolog",
      Controller->Capability->ToolName, Controller->Private->CardId,
      Enclosure != nullptr ? Enclosure : u"", Slots != nullptr ? Slots : u"",
      NewArrayNumber));
}

// Runs the lines that were formatted whole, in order.
VOID RunLines(const CHAR8 *Caller, const CreateLines &Lines, UINT32 *ErrorCode) {
  const CHAR16 *const Order[] = {Lines.Create, Lines.Spares};
  for (const CHAR16 *Line : Order) {
    if (Line[0] != 0) {
      // Judged by the last command's verdict (ParseErrCd), as storcli
      // reports a create and its hot spares.
      RaidLibOutputJudgedByCaller(RaidLibRunTool(
          RaidLibSharedRun(Caller, LSI_CREATE_COMMAND_CHARS), ErrorCode, u"%s",
          Line));
    }
  }
}

// A new array from the parameter's member drives, then its hot spares.
// Returns FALSE (with the error code set) when nothing could be run.
[[nodiscard]] bool CreateInNewArray(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    const RAID_VOLUME_PARAMETER *Parameter,
                                    CreateWords *Words, CreateLines *Lines,
                                    UINT32 *ErrorCode) {
  IdBlock Members = {Parameter->DriveList, Parameter->DriveCount};
  if (Parameter->DriveList == nullptr || Parameter->DriveCount == 0 ||
      Parameter->DriveList[0] == RAID_DRIVE_LIST_END) {
    *ErrorCode = LSI_ERROR_NO_FREE_DRIVES;
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                 "[%a]No Free Physical Drives!\n");
    return false;
  }
  IdBlock Spares = {Parameter->SpareList, kMaxListedDrives};
  if (!EachIdNamesOneDrive(Caller, &Controller->PhysicalDriveList, Members) ||
      !EachIdNamesOneDrive(Caller, &Controller->PhysicalDriveList, Spares)) {
    *ErrorCode = RAID_ERROR_MISSING;
    return false;
  }
  if (EFI_ERROR(LsiBuildDriveList(&Controller->PhysicalDriveList,
                                  TakeListedDrive, &Members, Words->Drives,
                                  LSI_DRIVE_LIST_CHARS))) {
    return RefuseCut(Caller, "Drive list", LSI_DRIVE_LIST_CHARS, ErrorCode);
  }
  BuildSpanWord(Parameter->RaidLevel, Parameter->DriveCount, Words);
  if (!FormatCreate(Caller, Controller, Parameter->RaidLevel, Parameter, Words,
                    Lines->Create, ErrorCode)) {
    return false;
  }
  if (Parameter->SpareList != nullptr &&
      Parameter->SpareList[0] != RAID_DRIVE_LIST_END &&
      !FormatAddHotSpares(Caller, Controller, Parameter, Lines->Spares, ErrorCode)) {
    return false;
  }
  RunLines(Caller, *Lines, ErrorCode);
  return true;
}

// A volume in the chosen free segment of an existing array.
[[nodiscard]] bool CreateInExistingArray(const CHAR8 *Caller,
                                         RAID_CONTROLLER *Controller,
                                         const RAID_VOLUME_PARAMETER *Parameter,
                                         CreateWords *Words, CreateLines *Lines,
                                         UINT32 *ErrorCode) {
  RAID_ARRAY *Array = nullptr;
  for (RAID_ARRAY *Candidate :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (Candidate->Id == Parameter->ArrayId) {
      Array = Candidate;
      break;
    }
  }
  if (Array == nullptr) {
    *ErrorCode = RAID_ERROR_MISSING;
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                 "[%a]Array %d is empty!\n", Parameter->ArrayId);
    return false;
  }
  if (EFI_ERROR(LsiBuildDriveList(&Array->DriveList, TakeArrayMember, nullptr,
                                  Words->Drives, LSI_DRIVE_LIST_CHARS))) {
    return RefuseCut(Caller, "Drive list", LSI_DRIVE_LIST_CHARS, ErrorCode);
  }
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Segment->IsVolume == 0 && Segment->Id == Parameter->FreeSegmentId) {
      if (Segment->State == RAID_SEGMENT_AFTER_NO_VOLUME) {
        SetWord(Words->After, u" ");
      } else {
        UnicodeSPrint(Words->After, sizeof(WORD_BUFFER), u"AfterVd=%u",
                      Segment->State);
      }
      break;
    }
  }
  if (Words->After[0] == 0) {
    SetWord(Words->After, u" ");  // No such segment: no placement asked.
  }
  BuildSpanWord(Array->RaidLevel, Array->MemberDriveCount, Words);
  if (!FormatCreate(Caller, Controller, Array->RaidLevel, Parameter, Words,
                    Lines->Create, ErrorCode)) {
    return false;
  }
  RunLines(Caller, *Lines, ErrorCode);
  return true;
}

}  // namespace

// Creates the volume, judges the last command's output and re-reads the
// controller, whose refresh status is returned.
EFI_STATUS LsiCreateVolume(RAID_VOLUME_PARAMETER *Parameter, UINTN Reserved,
                           UINT32 *ErrorCode) {
  *ErrorCode = 0;
  RAID_CONTROLLER *Controller =
      Parameter != nullptr ? RaidLibGetController(Parameter->ControllerId)
                           : nullptr;
  if (!RaidLibControllerCanRunTool(Controller)) {
    *ErrorCode = RAID_ERROR_MISSING;
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]Not find controller.\n");
    return EFI_NOT_FOUND;
  }
  gRaidToolOutput[0] = 0;
  if (!EFI_ERROR(RaidLibReadyToRunTool(__func__, Controller, ErrorCode))) {
    CreateWords Words;
    CreateLines Lines;
    Lines.Create[0] = 0;
    Lines.Spares[0] = 0;
    bool Ran = BuildParameterWords(__func__, Parameter, &Words, ErrorCode) &&
               (Parameter->NewArray != 0
                    ? CreateInNewArray(__func__, Controller, Parameter, &Words,
                                       &Lines, ErrorCode)
                    : CreateInExistingArray(__func__, Controller, Parameter,
                                            &Words, &Lines, ErrorCode));
    if (Ran && EFI_ERROR(ParseErrCd(gRaidToolOutput, ErrorCode))) {
      RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a] Parse error code error\n");
    }
  }
  // Every create that found its controller re-reads it, refused or not.
  RaidLibMarkOutputStale(Controller);
  RAID_REFRESH Refresh = RaidLibRefreshAfterChange(Controller, ErrorCode);
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] Error code: 0x%x, Status: %r\n",
                 *ErrorCode, Refresh.Status);
  return Refresh.Status;
}

}  // namespace lsi
