// Page 12: the adapter page turned into the message that no supported RAID
// adapter was found. It is terminal: returning to the module keeps it.
#include "setup/RaidcfgSetup.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"
#include "wizard/RaidWizardControls.h"

namespace {

constexpr UINT32 kPage = RAID_PAGE_CONTROLLER_SELECTION;

// The adapter controls page 12 does not show.
constexpr UINT32 kAdapterControls[] = {
    RAID_NODE_ADAPTER_RADIO,  RAID_NODE_STATUS_HEADING,
    RAID_NODE_REFRESH,        RAID_NODE_FIRMWARE_LABEL,
    RAID_NODE_SERIAL_LABEL,   RAID_NODE_DRIVES_LABEL,
    RAID_NODE_CONFIG_HEADING, RAID_NODE_EMPTY_CONFIG,
    RAID_NODE_DELETE,         RAID_NODE_MANAGE_DRIVES,
    RAID_NODE_START,          RAID_NODE_ADAPTER_MESSAGE,
};

}  // namespace

VOID ShowNoAdapterFoundMsg() {
  RAID_TRACE(TARN_DEBUG_INFO, "[%a] start\n");
  for (UINT32 NodeId : kAdapterControls) {
    RaidHideControl(kPage, NodeId);
  }
  RaidShowControl(kPage, RAID_NODE_NO_ADAPTER_MESSAGE);
  RaidGrayControl(kPage, RAID_NODE_NEXT);
  RaidHideControl(kPage, RAID_NODE_CONFIG_TABLE);
  HOST_PAGE_NODE *Root = RaidPageRoot(kPage);
  if (Root != nullptr) {
    Root->RefreshMark |= HOST_REFRESH_MODE;
  }
  gRaidCurrentPage = RAID_PAGE_NO_ADAPTER;
  RaidShowPage(RAID_PAGE_NO_ADAPTER, 0);
}
