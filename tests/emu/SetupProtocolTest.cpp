// The setup protocol's recorders: message boxes, progress, strings, trace
// file and the page-framework slots.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "EmuTestSupport.h"
#include "emu/SetupProtocol.h"

namespace emu_test {
namespace {

class SetupProtocolTest : public EmuTest {
 protected:
  SetupProtocolTest() : Setup_(Fw()) {
    gBS->LocateProtocol(&gTarnSetupProtocolGuid, nullptr,
                        reinterpret_cast<VOID **>(&Protocol_));
  }

  emu::SetupProtocol Setup_;
  TARN_SETUP_PROTOCOL *Protocol_ = nullptr;
};

TEST_F(SetupProtocolTest, MessageBoxesAnswerFromTheQueueThenTheDefault) {
  ASSERT_NE(nullptr, Protocol_);
  Setup_.QueueAnswer(FALSE);
  EXPECT_FALSE(Protocol_->MessageBox(HOST_MSGBOX_YES_NO, 818, 817, u"Sure?"));
  EXPECT_TRUE(Protocol_->MessageBox(HOST_MSGBOX_PLAIN, 818, 900, nullptr));
  Setup_.SetDefaultAnswer(FALSE);
  EXPECT_FALSE(Protocol_->MessageBox(HOST_MSGBOX_PLAIN, 1, 2, nullptr));

  const auto &Boxes = Setup_.MessageBoxes();
  ASSERT_EQ(3u, Boxes.size());
  EXPECT_EQ(HOST_MSGBOX_YES_NO, Boxes[0].Style);
  EXPECT_EQ(818, Boxes[0].TitleId);
  EXPECT_EQ(817, Boxes[0].TextId);
  EXPECT_EQ(std::u16string(u"Sure?"), Boxes[0].Text);
  EXPECT_FALSE(Boxes[1].Text.has_value());
  EXPECT_TRUE(Boxes[1].Answer);
}

TEST_F(SetupProtocolTest, ProgressAndStringsAreServed) {
  Protocol_->SetProgress(10);
  Protocol_->SetProgress(30);
  EXPECT_EQ((std::vector<UINT8>{10, 30}), Setup_.Progress());

  Setup_.SetString(818, u"Error");
  EXPECT_EQ(std::u16string(u"Error"),
            std::u16string(Protocol_->GetString(nullptr, 818)));
  EXPECT_EQ(nullptr, Protocol_->GetString(nullptr, 819));
  static const CHAR16 kResolved[] = u"from HII";
  Setup_.SetStringResolver([](EFI_HII_HANDLE, EFI_STRING_ID Id) {
    return Id == 819 ? kResolved : nullptr;
  });
  EXPECT_EQ(kResolved, Protocol_->GetString(nullptr, 819));
}

TEST_F(SetupProtocolTest, FrameworkSlotsAreRecordedAndHarmless) {
  HOST_PAGE_NODE *Root = nullptr;
  EFI_GUID *Identity = nullptr;
  UINT32 FirstPage = 99;
  EXPECT_EQ(EFI_SUCCESS, Protocol_->GetModuleRoot(&Root));
  EXPECT_EQ(EFI_SUCCESS, Protocol_->GetModuleIdentity(&Identity));
  EXPECT_EQ(EFI_SUCCESS, Protocol_->GetFirstPageId(&FirstPage));
  EXPECT_NE(nullptr, Root);
  EXPECT_NE(nullptr, Identity);
  EXPECT_EQ(0u, FirstPage);
  EXPECT_EQ(EFI_SUCCESS,
            Protocol_->RegisterPage(nullptr, nullptr, 1, nullptr, nullptr,
                                    nullptr));
  HOST_PAGE_NODE *Page = nullptr;
  EXPECT_EQ(EFI_SUCCESS,
            Protocol_->InstantiatePage(nullptr, Root, nullptr, &Page));
  ASSERT_NE(nullptr, Page);
  EXPECT_EQ(Root, Page->Parent);
  EXPECT_EQ(EFI_SUCCESS, Protocol_->ShowPage(Page, 0));
  EXPECT_EQ(EFI_SUCCESS, Protocol_->RedrawScreen());
  EXPECT_EQ(EFI_SUCCESS, Protocol_->RegisterDefaultCallbacks());
  EXPECT_EQ((std::vector<std::string>{
                "GetModuleRoot", "GetModuleIdentity", "GetFirstPageId",
                "RegisterPage", "InstantiatePage", "ShowPage", "RedrawScreen",
                "RegisterDefaultCallbacks"}),
            Setup_.FrameworkCallNames());
  EXPECT_EQ(1u, Setup_.FrameworkCalls()[3].Arguments[2]);  // the page number
  EXPECT_EQ(15u, Setup_.FrameworkCalls().back().Slot);
}

TEST_F(SetupProtocolTest, TraceFileGetsEveryLineAsPrinted) {
  const auto Path =
      std::filesystem::path(::testing::TempDir()) / "emu_trace_test.txt";
  Protocol_->DebugPrint(TARN_DEBUG_INFO, "[%a]before %d\n", "Fn", 1);
  ASSERT_TRUE(Setup_.WriteTraceTo(Path.string()));
  Protocol_->DebugPrint(TARN_DEBUG_ERROR, "[%a]after %r\n", "Fn",
                        EFI_NOT_FOUND);
  std::ifstream In(Path, std::ios::binary);
  std::stringstream Text;
  Text << In.rdbuf();
  EXPECT_EQ("[Fn]before 1\r\n[Fn]after Not Found\r\n", Text.str());
  ASSERT_EQ(2u, Setup_.Trace().size());
  EXPECT_EQ(TARN_DEBUG_ERROR, Setup_.Trace()[1].Level);
  std::filesystem::remove(Path);
}

}  // namespace
}  // namespace emu_test
