// Plays a whole session of one adapter through a backend's own entry
// points, every tool run answered from the input: the card search and the
// read (for MegaRAID: the controller count, the summary, the free space and
// each volume's properties), then one change operation with the read-back
// that follows it. The first byte chooses the family and the operation,
// the second the operation's details (drives, level, state); after them
// come the tool outputs in the order the tools are run, split at NUL bytes.
// A run past the last output gets an empty one. The world is built once;
// per input only the controller record is made, and the pool must be back
// where it started, with no invalid free, once it is released.
#include <Library/BaseLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "FuzzModel.h"
#include "LsiBackend.h"
#include "MchpBackend.h"
#include "RaidBackends.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RsteBackend.h"
#include "ScriptedTool.h"

namespace {

// The family's tool and backend, as raid.xml and discovery give them.
struct Family {
  const char16_t *Tool;
  const char16_t *Name;
  RAID_BIND_BACKEND Bind;
  UINT32 CardId;
  UINT16 Slot;
  // The PCI bus the MegaRAID card search compares: the demo server's
  // configured adapter, its second storcli controller.
  UINT8 Bus;
};

constexpr Family kFamilies[] = {
    {u"storcli.efi", u"MegaRAID 9460-8i", lsi::LsiBindBackend, 0, 0, 0x5E},
    {u"arcconf.efi", u"SmartRAID 3154-8i", mchp::MchpBindBackend, 1, 6, 0},
    {u"RCfgSata.efi", u"Intel RSTe SATA", rste::RsteBindBackend, 0,
     RAID_SLOT_NUMBER_NONE, 0},
    {u"mvsetup.efi", u"Marvell 88SE9230 M.2 RAID Adapter", m2::M2BindBackend,
     0, RAID_SLOT_NUMBER_NONE, 0},
};

enum Operation : std::uint8_t {
  kReadOnly,
  kRefresh,
  kDeleteArray,
  kDeleteVolume,
  kCreateOnNewDrives,
  kCreateInFreeSegment,
  kSetDriveState,
  kSetAllDriveStates,
  kOperationCount,
};

// The states the wizard's drive pages ask for.
constexpr UINT32 kStates[] = {RAID_STATE_UGOOD, RAID_STATE_GHS,
                              RAID_STATE_DHS,   RAID_STATE_JBOD,
                              RAID_STATE_UGOOD_FOREIGN, RAID_STATE_UBAD};
constexpr UINT8 kLevels[] = {0, 1, 5, 6, 10, 50, 60};
// Room for the longest drive list a create is given here.
constexpr UINT32 kMostMembers = 8;

// The tool outputs of the current input, handed out in order.
struct Script {
  std::string_view Rest;
  bool Done = true;

  std::string Next() {
    if (Done) {
      return std::string();
    }
    const std::size_t Split = Rest.find('\0');
    std::string Output(Rest.substr(0, Split));
    if (Split == std::string_view::npos) {
      Done = true;
    } else {
      Rest.remove_prefix(Split + 1);
    }
    return Output;
  }
};

// The emulated firmware with its trace and shell-command service, made
// once for the whole run.
struct World {
  World() : Setup(fuzz_model::World()), Shell(fuzz_model::World()) {
    gRaidLibSetupProtocol = &Setup.Interface();
    Shell.SetHandler([this](const std::string &) { return Tool.Next(); });
  }

  emu::SetupProtocol Setup;
  emu::ShellCommand Shell;
  Script Tool;
  // Set in the environment, each input's command lines and trace are
  // printed: how make_replay_seeds.py learns which output a run is due.
  const bool ListCommands = std::getenv("FUZZ_REPLAY_LIST_COMMANDS") != nullptr;
};

World &TheWorld() {
  static World *Instance = new World();
  return *Instance;
}

// Module-wide state a session leaves behind, back to a fresh load's.
VOID ResetFamilies() {
  lsi::gLsiCommandForm = 0;
  lsi::gLsiControllerCount = 0;
  gMchpCtrlCount = 0;
  greconnect = 1;
  mchp::gMchpHotSpareRequested = 0;
  rste::RsteResetState();
}

RAID_ARRAY *FirstArray(RAID_CONTROLLER *Controller, bool WithFreeSegment) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (!WithFreeSegment || Array->FreeSegmentCount > 0) {
      return Array;
    }
  }
  return nullptr;
}

RAID_VOLUME *FirstSegment(RAID_ARRAY *Array, UINT8 IsVolume) {
  for (RAID_VOLUME *Segment :
       uefi::ListOf<&RAID_VOLUME::Link>(Array->SegmentList)) {
    if (Segment->IsVolume == IsVolume) {
      return Segment;
    }
  }
  return nullptr;
}

RAID_VOLUME *FirstVolume(RAID_CONTROLLER *Controller) {
  for (RAID_ARRAY *Array :
       uefi::ListOf<&RAID_ARRAY::Link>(Controller->ArrayList)) {
    if (RAID_VOLUME *Volume = FirstSegment(Array, 1)) {
      return Volume;
    }
  }
  return nullptr;
}

// A create as the wizard asks for one: on the first unconfigured drives
// (Detail chooses how many, the level and a spare), or in the first free
// segment of an array.
EFI_STATUS Create(RAID_CONTROLLER *Controller, bool NewArray,
                  std::uint8_t Detail, UINT32 *ErrorCode) {
  UINT32 Members[kMostMembers + 1];
  UINT32 Spares[2] = {RAID_DRIVE_LIST_END, RAID_DRIVE_LIST_END};
  CHAR16 Name[16] = u"FuzzVolume";
  RAID_VOLUME_PARAMETER Parameter = {};
  Parameter.ControllerId = Controller->Id;
  Parameter.Name = Name;
  Parameter.Size = (Detail & 0x80) != 0 ? 0 : UINT64{100500};
  Parameter.Reserved = 1;
  Parameter.StripeSize = 64;
  Parameter.ReadPolicy = RAID_READ_POLICY_ALWAYS_READ_AHEAD;
  Parameter.WritePolicy = RAID_WRITE_POLICY_WRITE_BACK;
  Parameter.IoPolicy = RAID_IO_POLICY_CACHED;
  Parameter.DiskCachePolicy = RAID_DISK_CACHE_POLICY_DEFAULT;
  if (NewArray) {
    const UINT32 Wanted = 1 + Detail % kMostMembers;
    UINT32 Count = 0;
    for (RAID_PHYSICAL_DRIVE *Drive : uefi::ListOf<&RAID_PHYSICAL_DRIVE::Link>(
             Controller->PhysicalDriveList)) {
      if (Count == Wanted) {
        if ((Detail & 0x40) != 0) {
          Spares[0] = Drive->Id;
        }
        break;
      }
      Members[Count++] = Drive->Id;
    }
    Members[Count] = RAID_DRIVE_LIST_END;
    Parameter.NewArray = 1;
    Parameter.DriveList = Members;
    Parameter.DriveCount = Count;
    Parameter.RaidLevel = kLevels[(Detail >> 3) % sizeof(kLevels)];
    Parameter.SpareList = Spares[0] != RAID_DRIVE_LIST_END ? Spares : nullptr;
  } else {
    RAID_ARRAY *Array = FirstArray(Controller, true);
    RAID_VOLUME *Free = Array != nullptr ? FirstSegment(Array, 0) : nullptr;
    if (Free == nullptr) {
      return EFI_NOT_FOUND;
    }
    Parameter.ArrayId = Array->Id;
    Parameter.FreeSegmentId = Free->Id;
    Parameter.DriveCount = Array->MemberDriveCount;
    Parameter.RaidLevel = Array->RaidLevel;
  }
  return Controller->Private->Operations.CreateVolume(&Parameter, 0,
                                                      ErrorCode);
}

VOID Change(RAID_CONTROLLER *Controller, Operation Chosen,
            std::uint8_t Detail) {
  const RAID_OPERATIONS &Operations = Controller->Private->Operations;
  UINT32 ErrorCode = 0;
  switch (Chosen) {
    case kRefresh:
      // A forced refresh: the model read a moment ago counts as stale.
      Controller->Private->Flags = 0;
      (void)Operations.GetControllerInfo(Controller, Controller->Private,
                                         &ErrorCode);
      break;
    case kDeleteArray:
      if (RAID_ARRAY *Array = FirstArray(Controller, false)) {
        (void)Operations.DeleteArray(Array, &ErrorCode);
      }
      break;
    case kDeleteVolume:
      if (RAID_VOLUME *Volume = FirstVolume(Controller)) {
        (void)Operations.DeleteVolume(Volume, &ErrorCode);
      }
      break;
    case kCreateOnNewDrives:
    case kCreateInFreeSegment:
      (void)Create(Controller, Chosen == kCreateOnNewDrives, Detail,
                   &ErrorCode);
      break;
    case kSetDriveState:
      if (Controller->DiskDriveCount > 0 && Controller->DriveTable != nullptr) {
        RAID_PHYSICAL_DRIVE *Drive =
            Controller->DriveTable[Detail % Controller->DiskDriveCount];
        (void)Operations.SetPhysicalDriveState(
            Controller, Drive, kStates[(Detail >> 4) % std::size(kStates)],
            &ErrorCode);
      }
      break;
    case kSetAllDriveStates:
      (void)Operations.SetAllPhysicalDriveState(
          Controller, kStates[Detail % std::size(kStates)], &ErrorCode);
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data,
                                      std::size_t Size) {
  if (Size < 2) {
    return 0;
  }
  World &W = TheWorld();
  emu::Pool &Memory = fuzz_model::World().Memory();
  const UINTN Before = Memory.OutstandingCount();
  const UINT64 InvalidFrees = Memory.Counters().InvalidFrees;
  const Family &Chosen = kFamilies[Data[0] % std::size(kFamilies)];
  const auto Op = static_cast<Operation>((Data[0] >> 2) % kOperationCount);
  const std::uint8_t Detail = Data[1];
  W.Tool = {std::string_view(reinterpret_cast<const char *>(Data + 2),
                             Size - 2),
            false};
  ResetFamilies();

  RAID_CONTROLLER *Controller =
      backend_test::NewToolController(Chosen.Tool, Chosen.Name, Chosen.Bind);
  Controller->Id = 3;
  Controller->SlotNumber = Chosen.Slot;
  Controller->Private->CardId = Chosen.CardId;
  Controller->Private->Bus = Chosen.Bus;
  InitializeListHead(&gControllerList);
  InsertTailList(&gControllerList, &Controller->Link);

  const RAID_OPERATIONS &Operations = Controller->Private->Operations;
  UINT32 ErrorCode = 0;
  if (!EFI_ERROR(Operations.GetCardId(Controller, &ErrorCode))) {
    Controller->Private->Flags = 0;
    (void)Operations.GetControllerInfo(Controller, nullptr, &ErrorCode);
    Change(Controller, Op, Detail);
  }

  InitializeListHead(&gControllerList);
  fuzz_model::ReleaseAndCheck(Controller, Before);
  if (Memory.Counters().InvalidFrees != InvalidFrees) {
    std::fprintf(stderr, "%s", Memory.EventReport().c_str());
    std::abort();
  }
  if (W.ListCommands) {
    for (const emu::ShellCommandCall &Call : W.Shell.Calls()) {
      std::fprintf(stderr, "command: %s\n", Call.CommandLine.c_str());
    }
    for (const std::string &Line : W.Setup.TraceTexts()) {
      std::fprintf(stderr, "trace: %s", Line.c_str());
    }
  }
  W.Shell.ClearCalls();
  W.Setup.ClearTrace();
  return 0;
}
