// The module loaded and unloaded a thousand times in one process on the
// demo server (adapters of all four families), under one page framework:
// every cycle discovers the adapters and shows page 1, some cycles walk the
// pages of every adapter, and after every unload the pool holds exactly
// what it held before the first load, and no page node of the module is
// left.
#include <gtest/gtest.h>

#include <Library/UefiBootServicesTableLib.h>

#include <string>

#include "framework/EmuBinding.h"
#include "framework/Framework.h"
#include "framework/HeadlessDriver.h"
#include "native/ModuleSession.h"
#include "native/Scenario.h"
#include "native/Server.h"
#include "wizard/RaidPageNodes.h"
#include "wizard/RaidWizard.h"

namespace robustness {
namespace {

constexpr int kCycles = 1000;
// Every so many cycles the pages are walked as well (a walk costs about
// twenty start-ups under the sanitizers).
constexpr int kWalkEvery = 50;
constexpr UINTN kDemoAdapters = 6;

// Page 2, the next page, back twice and the drive states of every adapter.
void WalkPages(framework::HeadlessDriver &Driver) {
  for (UINTN Adapter = 0; Adapter < kDemoAdapters; Adapter++) {
    const auto Press = [&Driver](UINT32 NodeId) {
      if (HOST_PAGE_NODE *Node = Driver.Find(NodeId); Node != nullptr) {
        (void)Driver.Press(Node);
      }
    };
    (void)Driver.Choose(Driver.Find(RAID_NODE_ADAPTER_RADIO), Adapter);
    Press(RAID_NODE_NEXT);
    Press(RAID_NODE_NEXT);
    Press(RAID_NODE_BACK);
    Press(RAID_NODE_BACK);
    Press(RAID_NODE_MANAGE_DRIVES);
    Press(RAID_NODE_BACK);
    ASSERT_EQ(Driver.Page()->NodeId,
              RAID_PAGE_NODE_ID(RAID_PAGE_CONTROLLER_SELECTION))
        << "adapter " << Adapter;
  }
}

TEST(LoadUnloadTest, ThousandCyclesGiveBackEveryByte) {
  host::Server Machine(host::DemoScenario());
  emu::Pool &Pool = Machine.Firmware().Memory();
  gBS = nullptr;
  framework::HeadlessDriver Driver;
  framework::EmuBinding Binding(*Machine.Setup(), Driver.Services());
  ASSERT_EQ(Binding.StartStatus(), EFI_SUCCESS);
  const size_t Blocks = Pool.Outstanding().size();
  const UINTN Bytes = Pool.Counters().BytesOutstanding;
  for (int Cycle = 1; Cycle <= kCycles; Cycle++) {
    SCOPED_TRACE("cycle " + std::to_string(Cycle));
    host::ModuleSession Module(Machine);
    ASSERT_EQ(Module.Load(), EFI_SUCCESS);
    ASSERT_EQ(Module.LastDiscovery().Status, EFI_SUCCESS);
    ASSERT_EQ(Driver.Page()->NodeId,
              RAID_PAGE_NODE_ID(RAID_PAGE_CONTROLLER_SELECTION));
    ASSERT_EQ(framework::OptionCount(Driver.Find(RAID_NODE_ADAPTER_RADIO)),
              kDemoAdapters);
    if (Cycle % kWalkEvery == 1) {
      WalkPages(Driver);
    }
    ASSERT_EQ(Module.Unload(), EFI_SUCCESS);
    ASSERT_EQ(framework::LiveModuleNodeCount(), 0u);
    ASSERT_EQ(Pool.Outstanding().size(), Blocks);
    ASSERT_EQ(Pool.Counters().BytesOutstanding, Bytes);
    ASSERT_EQ(Pool.EventReport(), "");
  }
  EXPECT_TRUE(Machine.Problems().empty());
}

}  // namespace
}  // namespace robustness
