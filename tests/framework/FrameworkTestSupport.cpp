// The framework tests' world.
#include "FrameworkTestSupport.h"

void FrameworkTest::SetUp() {
  Setup.SetStringResolver([this](EFI_HII_HANDLE, EFI_STRING_ID Id) {
    return demo::DemoString(Language, Id);
  });
  Binding = std::make_unique<framework::EmuBinding>(Setup, Driver.Services());
  ASSERT_EQ(Binding->StartStatus(), EFI_SUCCESS);
  Binding->SetLanguageHandler([this](const std::string &Code) {
    Language = Code;
    return EFI_SUCCESS;
  });
  framework::AttachDataSource(demo::DataSource());
  ASSERT_EQ(demo::Start(&Setup.Interface()), EFI_SUCCESS);
  Started = true;
}

void FrameworkTest::TearDown() {
  if (Started) {
    demo::Stop();
  }
  Binding.reset();
  EXPECT_EQ(Firmware.Memory().LeakReport(), "");
}

HOST_PAGE_NODE *FrameworkTest::On(UINT32 NodeId) {
  HOST_PAGE_NODE *Node = Driver.Find(NodeId);
  EXPECT_NE(Node, nullptr) << "node " << NodeId;
  return Node;
}
