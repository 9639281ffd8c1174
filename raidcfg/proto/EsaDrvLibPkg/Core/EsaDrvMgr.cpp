// The controller manager: builds gControllerList at start-up, numbers the
// cards in each tool's own numbering, and frees everything at unload.
#include "EsaDrvMgr.h"

#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>

#include "RaidBackends.h"
#include "RaidLibDiscovery.h"
#include "RaidLibToolRunner.h"
#include "RaidLibTrace.h"
#include "RaidXml.h"

namespace {

// Card numbering during one InitializeRaid. The arcconf tool numbers its
// controllers from 1, the others from 0.
struct CardCounters {
  UINT32 Storcli = 0;
  UINT32 Marvell = 0;
  UINT32 Intel = 0;
  UINT32 Arcconf = 1;
};

// The core finds the host's setup protocol for its own tracing.
VOID LocateSetupProtocol(const CHAR8 *Caller, UINT32 *ErrorCode) {
  if (gRaidLibSetupProtocol != nullptr) {
    return;
  }
  EFI_STATUS Status = gBS->LocateProtocol(&gTarnSetupProtocolGuid, nullptr,
                                          (VOID **)&gRaidLibSetupProtocol);
  if (EFI_ERROR(Status)) {
    gRaidLibSetupProtocol = nullptr;
    *ErrorCode = RaidLibFirmwareErrorCode(Status);
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO, "[%a]Error code: 0x%x\n",
                      *ErrorCode);
  }
}

VOID TraceFoundControllers(const CHAR8 *Caller) {
  RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                    "[%a]INFO: all found controllers:\n");
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]INFO: Controller id: %d name: %S\n",
                   Controller->Id, Controller->Name);
  }
}

// Gives one controller its card number and tool type by its backend family.
// A non-zero result of a backend's own card search aborts start-up.
[[nodiscard]] EFI_STATUS NumberCard(const CHAR8 *Caller,
                                    RAID_CONTROLLER *Controller,
                                    CardCounters *Counters, UINT32 *ErrorCode) {
  RAID_CONTROLLER_PRIVATE *Private = Controller->Private;
  switch (RaidLibControllerFamily(Controller)) {
    case RAID_FAMILY_STORCLI:
      if (Private->Operations.GetCardId != nullptr) {
        EFI_STATUS Status = Private->Operations.GetCardId(Controller, ErrorCode);
        if (Status != EFI_SUCCESS) {
          return Status;
        }
      } else {
        Private->CardId = Counters->Storcli++;
      }
      Controller->ToolType = RAID_TOOL_TYPE_STORCLI;
      break;
    case RAID_FAMILY_MARVELL:
      Private->CardId = Counters->Marvell++;
      Controller->ToolType = RAID_TOOL_TYPE_MARVELL;
      break;
    case RAID_FAMILY_INTEL:
      Private->CardId = Counters->Intel++;
      Controller->ToolType = RAID_TOOL_TYPE_INTEL;
      break;
    case RAID_FAMILY_ARCCONF:
      Private->CardId = Counters->Arcconf++;
      Controller->ToolType = RAID_TOOL_TYPE_ARCCONF;
      // The tool's "list" counts the adapters (the count decides whether
      // later reads map card numbers by slot) and, with several, finds
      // this one's number by its slot. A tool that lists nothing leaves
      // the counted number and does not stop the other families' start:
      // the search traces its own failure, and the error code stays 0.
      if (Private->Operations.GetCardId != nullptr) {
        UINT32 SearchError = 0;
        (VOID)Private->Operations.GetCardId(Controller, &SearchError);
      }
      break;
    default:
      break;
  }
  return EFI_SUCCESS;
}

[[nodiscard]] EFI_STATUS NumberCards(const CHAR8 *Caller, UINT32 *ErrorCode) {
  CardCounters Counters;
  EFI_STATUS Status = EFI_SUCCESS;
  for (RAID_CONTROLLER *Controller :
       uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
    RAID_CONTROLLER_PRIVATE *Private = Controller->Private;
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                   "[%a]Controller Id: %d, Bus: 0x%x, Dev: 0x%x, Func: 0x%x\n",
                   Controller->Id, Private->Bus, Private->Device,
                   Private->Function);
    if (Controller->ToolType == RAID_TOOL_TYPE_UNMATCHED ||
        Controller->Capability == nullptr) {
      continue;
    }
    Status = NumberCard(Caller, Controller, &Counters, ErrorCode);
    if (Status != EFI_SUCCESS) {
      return Status;
    }
  }
  return Status;
}

// Scans the bus, orders the devices by the host's slots and builds the
// controllers that pcidb.xml names. *Made counts them.
[[nodiscard]] EFI_STATUS DiscoverControllers(const CHAR8 *Caller,
                                             const SLOT_INVENTORY_ENTRY *Slots,
                                             UINTN SlotCount, UINTN *Made,
                                             UINT32 *ErrorCode) {
  LIST_ENTRY ScanList;
  LIST_ENTRY OrderedList;
  LIST_ENTRY PcidbList;
  InitializeListHead(&ScanList);
  InitializeListHead(&OrderedList);
  InitializeListHead(&PcidbList);
  *Made = 0;

  EFI_STATUS Status = RaidLibScanPciBus(&ScanList, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  if (IsListEmpty(&ScanList)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]No raid card is found on system.\n");
    *ErrorCode = 0;
    return EFI_SUCCESS;
  }
  RaidLibOrderBySlotInventory(&ScanList, &OrderedList, Slots, SlotCount);
  ReleasePciBusDeviceList(&ScanList);
  // Only a shortage of memory stops here; a database that could not be read
  // (no parser, no volume) matches no device, which the count below reports.
  Status = RaidLibReadPcidb(&PcidbList, ErrorCode);
  if (Status != EFI_OUT_OF_RESOURCES) {
    Status = RaidLibBuildControllers(&OrderedList, &PcidbList, Made, ErrorCode);
  }
  ReleasePciBusDeviceList(&OrderedList);
  ReleasePcidbList(&PcidbList);
  if (!EFI_ERROR(Status) && *Made == 0) {
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]Error: No supported card found.\n");
    return EFI_NOT_FOUND;
  }
  return Status;
}

}  // namespace

// Builds gControllerList. The list head is initialised afresh, so a second
// run must find the list released (or never filled).
EFI_STATUS InitializeRaid(UINT32 *ErrorCode) {
  *ErrorCode = 0;
  UINTN SlotCount = 0;
  SLOT_INVENTORY_ENTRY *Slots = nullptr;
  RaidLibGetSlotInventory(&SlotCount, &Slots);
  LocateSetupProtocol(__func__, ErrorCode);

  RaidLibTraceVersion();
  InitializeListHead(&gControllerList);

  UINTN Made = 0;
  EFI_STATUS Status = DiscoverControllers(__func__, Slots, SlotCount, &Made, ErrorCode);
  if (EFI_ERROR(Status) || Made == 0) {
    return Status;
  }
  TraceFoundControllers(__func__);

  RaidXmlResetParserState();
  Status = RaidLibParseXml(u"raid.xml", RaidXmlTagStart, RaidXmlTagEnd,
                           ErrorCode);
  const BOOLEAN ProfileShort = RaidXmlShortOfMemory();
  RaidXmlFinishParsing();
  if (EFI_ERROR(Status)) {
    return Status;
  }
  // A profile missing an entry would offer, and create with, other levels,
  // policies or stripe sizes than the file's: start-up fails for memory.
  if (ProfileShort) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
    return EFI_OUT_OF_RESOURCES;
  }
  RaidLibBindBackends();
  return NumberCards(__func__, ErrorCode);
}

// Frees every controller with all it owns, then the shared output copy.
EFI_STATUS FinalizeRaid(UINT32 *ErrorCode) {
  RaidLibTraceVersion();
  *ErrorCode = 0;
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  // A list head never initialised (no InitializeRaid yet) holds nothing,
  // and is left as it is.
  if (IsListLive(&gControllerList)) {
    while (RAID_CONTROLLER *Controller =
               uefi::TakeFirst<&RAID_CONTROLLER::Link>(&gControllerList)) {
      RaidLibFreeController(Controller);
    }
  }
  if (gRaidToolOutputCopy != nullptr) {
    FreePool(gRaidToolOutputCopy);
    gRaidToolOutputCopy = nullptr;
  }
  RAID_LIB_TRACE(TARN_DEBUG_INFO, "[%a] end\n");
  // The host's services are located again by the next InitializeRaid; a
  // module image loaded anew must not reach for the old ones.
  RaidLibResetXmlParser();
  RaidLibResetToolRunner();
  rste::RsteResetState();
  gRaidLibSetupProtocol = nullptr;
  return EFI_SUCCESS;
}
