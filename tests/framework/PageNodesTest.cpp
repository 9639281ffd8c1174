// Page trees: instantiation from templates, control tables, finding and
// freeing nodes, and what is left after teardown or a failed allocation.
#include "FrameworkTestSupport.h"

namespace {

using framework::LiveNodeCount;

// Node count of a template, the page node included.
UINTN TemplateNodes(const HOST_NODE_TEMPLATE *Nodes, UINT32 Count) {
  UINTN Total = 0;
  for (UINT32 Index = 0; Index < Count; Index++) {
    Total += 1 + TemplateNodes(Nodes[Index].Children, Nodes[Index].ChildCount);
  }
  return Total;
}

UINTN TemplateNodes(const HOST_PAGE_TEMPLATE &Template) {
  return 1 + TemplateNodes(Template.Nodes, Template.NodeCount);
}

TEST_F(FrameworkTest, InstantiationCopiesTheTemplateWithFreshRecords) {
  HOST_PAGE_NODE *Page = demo::VolumePage();
  HOST_PAGE_NODE *Root = nullptr;
  Setup.Interface().GetModuleRoot(&Root);
  EXPECT_EQ(Page->Parent, Root);
  EXPECT_EQ(Page->NodeId, demo::kVolumePage);
  EXPECT_EQ(Page->Control->Kind, static_cast<UINT32>(HOST_CONTROL_PAGE));
  EXPECT_EQ(Page->Control->TextId, demo::kStrVolumeTitle);

  HOST_PAGE_NODE *Group = nullptr;
  ASSERT_EQ(Setup.Interface().FindNode(Page, demo::kResultGroup, &Group),
            EFI_SUCCESS);
  EXPECT_EQ(Group->Control->DisplayState, HOST_DISPLAY_HIDDEN);
  ASSERT_NE(Group->FirstChild, nullptr);
  EXPECT_EQ(Group->FirstChild->NodeId, demo::kResultHeading);
  EXPECT_EQ(Group->FirstChild->NextSibling->NodeId, demo::kResultText);
  EXPECT_EQ(Group->FirstChild->Parent, Group);

  // A template node of kind NONE gets the sentinel, not a record.
  HOST_PAGE_NODE *Bare = nullptr;
  ASSERT_EQ(Setup.Interface().FindNode(Page, 2, &Bare), EFI_SUCCESS);
  EXPECT_EQ(Bare->Control, HOST_NODE_NO_CONTROL);

  // A second copy of a template has records of its own.
  HOST_PAGE_NODE *Copy = nullptr;
  ASSERT_EQ(Setup.Interface().InstantiatePage(&demo::VolumeTemplate(), Root,
                                              nullptr, &Copy),
            EFI_SUCCESS);
  HOST_PAGE_NODE *CopyGroup = nullptr;
  Setup.Interface().FindNode(Copy, demo::kResultGroup, &CopyGroup);
  EXPECT_NE(CopyGroup->Control, Group->Control);
  CopyGroup->Control->DisplayState = HOST_DISPLAY_SHOWN;
  EXPECT_EQ(Group->Control->DisplayState, HOST_DISPLAY_HIDDEN);
  EXPECT_EQ(Setup.Interface().FreePageNode(Copy), EFI_SUCCESS);
}

TEST_F(FrameworkTest, FreeingAPageReleasesEveryNodeAndRecord) {
  UINTN Before = LiveNodeCount();
  UINTN VolumeNodes = TemplateNodes(demo::VolumeTemplate());
  demo::Stop();
  Started = false;
  EXPECT_EQ(LiveNodeCount(),
            Before - VolumeNodes - TemplateNodes(demo::AdapterTemplate()));
  HOST_PAGE_NODE *Root = nullptr;
  Setup.Interface().GetModuleRoot(&Root);
  EXPECT_EQ(Root->FirstChild, nullptr);
  // The page shown went with it: nothing is drawn from freed memory.
  EXPECT_EQ(framework::CurrentPage(), nullptr);
  EXPECT_EQ(framework::FocusNode(), nullptr);
  (void)Driver.Dump();
}

TEST_F(FrameworkTest, ModuleNodesAreEveryLiveNodeButTheModuleRoot) {
  EXPECT_EQ(framework::LiveModuleNodeCount(),
            TemplateNodes(demo::VolumeTemplate()) +
                TemplateNodes(demo::AdapterTemplate()));
  EXPECT_EQ(framework::LiveModuleNodeCount(), LiveNodeCount() - 1);
  demo::Stop();
  Started = false;
  // The module freed its pages: the root it was handed is the framework's,
  // still alive, and not counted.
  EXPECT_EQ(framework::LiveModuleNodeCount(), 0u);
  EXPECT_EQ(LiveNodeCount(), 1u);
  Binding.reset();
  EXPECT_EQ(LiveNodeCount(), 0u);
  EXPECT_EQ(framework::LiveModuleNodeCount(), 0u);
}

TEST_F(FrameworkTest, FreeingAChildUnlinksItAndKeepsItsSiblings) {
  HOST_PAGE_NODE *Label = On(demo::kDriveLabel);
  HOST_PAGE_NODE *Previous = On(demo::kAdapterRadio);
  ASSERT_EQ(Previous->NextSibling, Label);
  EXPECT_EQ(Setup.Interface().FreePageNode(Label), EFI_SUCCESS);
  EXPECT_EQ(Previous->NextSibling, On(demo::kAdvancedCheck));
  EXPECT_EQ(Driver.Find(demo::kDriveLabel), nullptr);
}

TEST_F(FrameworkTest, ModuleMadeNodesAreDetachedButLeftToTheModule) {
  // The wizard makes its own page roots and hangs the instantiated page
  // under them; freeing the root frees the page, not the root.
  HOST_PAGE_NODE Holder = {};
  Holder.Control = HOST_NODE_NO_CONTROL;
  HOST_PAGE_NODE *Page = nullptr;
  ASSERT_EQ(Setup.Interface().InstantiatePage(&demo::VolumeTemplate(), &Holder,
                                              nullptr, &Page),
            EFI_SUCCESS);
  EXPECT_EQ(Holder.FirstChild, Page);
  // Showing the module's root shows the page under it.
  EXPECT_EQ(Setup.Interface().ShowPage(&Holder, 0), EFI_SUCCESS);
  EXPECT_EQ(framework::CurrentPage(), Page);
  EXPECT_EQ(Setup.Interface().FreePageNode(&Holder), EFI_SUCCESS);
  EXPECT_EQ(Holder.FirstChild, nullptr);
  EXPECT_EQ(framework::CurrentPage(), nullptr);
}

TEST_F(FrameworkTest, TheModuleRootCannotBeFreed) {
  HOST_PAGE_NODE *Root = nullptr;
  Setup.Interface().GetModuleRoot(&Root);
  EXPECT_EQ(Setup.Interface().FreePageNode(Root), EFI_ACCESS_DENIED);
  EXPECT_EQ(Setup.Interface().FreePageNode(nullptr), EFI_INVALID_PARAMETER);
}

TEST_F(FrameworkTest, FailedAllocationsLeaveNothingBehind) {
  HOST_PAGE_NODE *Root = nullptr;
  Setup.Interface().GetModuleRoot(&Root);
  UINTN Before = LiveNodeCount();
  HOST_PAGE_NODE *LastChild = Root->FirstChild->NextSibling;
  // Fail each allocation of an instantiation in turn, until one needs no
  // more than it was given.
  UINTN Failures = 0;
  for (UINTN Nth = 1; Nth < 100; Nth++) {
    Firmware.Memory().FailNthAllocation(Nth);
    HOST_PAGE_NODE *Page = reinterpret_cast<HOST_PAGE_NODE *>(1);
    EFI_STATUS Status = Setup.Interface().InstantiatePage(
        &demo::VolumeTemplate(), Root, nullptr, &Page);
    Firmware.Memory().ClearFaults();
    if (Status == EFI_SUCCESS) {
      Setup.Interface().FreePageNode(Page);
      break;
    }
    Failures++;
    EXPECT_EQ(Status, EFI_OUT_OF_RESOURCES) << "allocation " << Nth;
    EXPECT_EQ(Page, nullptr);
    EXPECT_EQ(LiveNodeCount(), Before);
    EXPECT_EQ(LastChild->NextSibling, nullptr);
  }
  // A node and a record for each node of the template but the bare one.
  EXPECT_EQ(Failures, 2 * TemplateNodes(demo::VolumeTemplate()) - 1);
  EXPECT_EQ(LiveNodeCount(), Before);
}

TEST_F(FrameworkTest, ControlTableReportsNodeIdsItCannotBind) {
  static constexpr HOST_CONTROL_DESCRIPTOR kOwn[] = {{9999, nullptr}};
  EXPECT_EQ(Setup.Interface().BuildControlTable(demo::AdapterPage(), nullptr, 0,
                                                kOwn, 1),
            EFI_NOT_FOUND);
  EXPECT_EQ(Setup.Interface().BuildControlTable(demo::AdapterPage(), nullptr, 1,
                                                nullptr, 0),
            EFI_INVALID_PARAMETER);
}

TEST_F(FrameworkTest, BadTemplatesAndArgumentsAreRefused) {
  HOST_PAGE_NODE *Root = nullptr;
  Setup.Interface().GetModuleRoot(&Root);
  HOST_PAGE_NODE *Page = nullptr;
  EXPECT_EQ(Setup.Interface().InstantiatePage(nullptr, Root, nullptr, &Page),
            EFI_INVALID_PARAMETER);
  EXPECT_EQ(Setup.Interface().InstantiatePage(&demo::VolumeTemplate(), nullptr,
                                              nullptr, &Page),
            EFI_INVALID_PARAMETER);
  // A template that contains itself is cut at the framework's depth limit.
  static HOST_NODE_TEMPLATE Loop = {7, HOST_CONTROL_CONTAINER, 0, 0, {}, &Loop, 1};
  HOST_PAGE_TEMPLATE Deep = {8, 0, &Loop, 1};
  UINTN Before = LiveNodeCount();
  EXPECT_EQ(Setup.Interface().InstantiatePage(&Deep, Root, nullptr, &Page),
            EFI_OUT_OF_RESOURCES);
  EXPECT_EQ(LiveNodeCount(), Before);
  HOST_PAGE_NODE *Found = nullptr;
  EXPECT_EQ(Setup.Interface().FindNode(Root, 424242, &Found), EFI_NOT_FOUND);
  EXPECT_EQ(Setup.Interface().ShowPage(nullptr, 0), EFI_INVALID_PARAMETER);
}

TEST_F(FrameworkTest, ModuleWordsAndLanguage) {
  EFI_GUID *First = nullptr;
  EFI_GUID *Second = nullptr;
  Setup.Interface().GetModuleIdentity(&First);
  Setup.Interface().GetModuleIdentity(&Second);
  EXPECT_EQ(First, Second);
  UINT32 PageId = 77;
  EXPECT_EQ(Setup.Interface().GetFirstPageId(&PageId), EFI_SUCCESS);
  EXPECT_EQ(PageId, 0u);
  CHAR8 Code[8];
  EXPECT_EQ(Setup.Interface().GetLanguage(Code, sizeof(Code)), EFI_SUCCESS);
  EXPECT_STREQ(Code, "en-US");
  EXPECT_EQ(Setup.Interface().GetLanguage(Code, 3), EFI_BUFFER_TOO_SMALL);
}

}  // namespace
