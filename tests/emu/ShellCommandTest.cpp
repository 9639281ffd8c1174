// The shell-command service: command lines to a handler, output copied into
// the caller's buffer within its size.
#include <string>
#include <vector>

#include "EmuTestSupport.h"
#include "emu/ShellCommand.h"
#include "emu/TextConversion.h"

namespace emu_test {
namespace {

class ShellCommandTest : public EmuTest {
 protected:
  ShellCommandTest() : Shell_(Fw()) {
    SHELL_COMMAND_PROTOCOL *Located = nullptr;
    EXPECT_EQ(EFI_SUCCESS,
              gBS->LocateProtocol(&gShellCommandProtocolGuid, nullptr,
                                  reinterpret_cast<VOID **>(&Located)));
    Protocol_ = Located;
  }

  emu::ShellCommand Shell_;
  SHELL_COMMAND_PROTOCOL *Protocol_ = nullptr;
};

constexpr CHAR16 kGuard = 0xBEEF;

// A cut output is reported as UEFI services report a short buffer: the
// status says so and the size is what the whole output needs.
TEST_F(ShellCommandTest, OutputIsCutToTheCallersSizeAndNulTerminated) {
  Shell_.SetHandler([](const std::string &) { return std::string("ab\r\ncd"); });
  const struct {
    UINTN Size;                // bytes offered
    UINTN KeptChars;           // text in the buffer, without the NUL
    EFI_STATUS Status;
    UINTN ReturnedSize;        // *OutputSize on return
  } Cases[] = {
      {0, 0, EFI_BUFFER_TOO_SMALL, 14},  {1, 0, EFI_BUFFER_TOO_SMALL, 14},
      {2, 0, EFI_BUFFER_TOO_SMALL, 14},  {3, 0, EFI_BUFFER_TOO_SMALL, 14},
      {8, 3, EFI_BUFFER_TOO_SMALL, 14},  {13, 5, EFI_BUFFER_TOO_SMALL, 14},
      {14, 6, EFI_SUCCESS, 12},          {100, 6, EFI_SUCCESS, 12},
  };
  const std::u16string Whole = u"ab\r\ncd";
  for (const auto &Case : Cases) {
    std::vector<CHAR16> Buffer(64, kGuard);
    UINTN Size = Case.Size;
    EXPECT_EQ(Case.Status,
              Protocol_->ExecuteCapture(u"tool.efi /c0 show", Buffer.data() + 1,
                                        &Size));
    EXPECT_EQ(Case.ReturnedSize, Size) << "size " << Case.Size;
    const UINTN Written = Case.Size < 2 ? 0 : Case.KeptChars + 1;
    const std::u16string Expected =
        Written == 0 ? u"" : Whole.substr(0, Case.KeptChars) + u'\0';
    EXPECT_EQ(Expected,
              std::u16string(Buffer.data() + 1, Buffer.data() + 1 + Written))
        << "size " << Case.Size;
    // Nothing before the buffer, nothing past the caller's size.
    EXPECT_EQ(kGuard, Buffer[0]);
    for (UINTN I = 1 + Written; I < Buffer.size(); I++) {
      ASSERT_EQ(kGuard, Buffer[I]) << "size " << Case.Size << " index " << I;
    }
    EXPECT_EQ(Case.Status != EFI_SUCCESS, Shell_.Calls().back().Truncated);
  }
}

TEST_F(ShellCommandTest, CommandLinesAreRecordedAndHandedOverAsUtf8) {
  std::vector<std::string> Seen;
  Shell_.SetHandler([&](const std::string &Line) {
    Seen.push_back(Line);
    return std::string("Caf\xC3\xA9\r\n");
  });
  CHAR16 Buffer[32];
  UINTN Size = sizeof(Buffer);
  ASSERT_EQ(EFI_SUCCESS,
            Protocol_->ExecuteCapture(u"storcli.efi show ctrlcount", Buffer,
                                      &Size));
  EXPECT_EQ(std::u16string(u"Caf\u00e9\r\n"), std::u16string(Buffer));
  EXPECT_EQ(12u, Size);
  ASSERT_EQ(EFI_SUCCESS, Protocol_->Execute(u"arcconf.efi list"));
  EXPECT_EQ((std::vector<std::string>{"storcli.efi show ctrlcount",
                                      "arcconf.efi list"}),
            Seen);
  EXPECT_EQ(Seen, Shell_.CommandLines());
  EXPECT_TRUE(Shell_.Calls()[0].Captured);
  EXPECT_FALSE(Shell_.Calls()[1].Captured);
}

TEST_F(ShellCommandTest, WithoutHandlerOutputIsEmptyAndUnanswered) {
  CHAR16 Buffer[4] = {kGuard, kGuard, kGuard, kGuard};
  UINTN Size = sizeof(Buffer);
  ASSERT_EQ(EFI_SUCCESS, Protocol_->ExecuteCapture(u"mvsetup.efi info", Buffer,
                                                   &Size));
  EXPECT_EQ(0u, Size);
  EXPECT_EQ(0, Buffer[0]);
  EXPECT_EQ(kGuard, Buffer[1]);
  ASSERT_EQ(1u, Shell_.Calls().size());
  EXPECT_FALSE(Shell_.Calls()[0].Answered);
  EXPECT_EQ("mvsetup.efi info", Shell_.Calls()[0].CommandLine);
}

TEST_F(ShellCommandTest, InjectedFailureAndBadArguments) {
  UINTN Size = 8;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            Protocol_->ExecuteCapture(u"x", nullptr, &Size));
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            Protocol_->ExecuteCapture(nullptr, nullptr, &Size));
  Shell_.SetFailure(EFI_DEVICE_ERROR);
  CHAR16 Buffer[4];
  Size = sizeof(Buffer);
  EXPECT_EQ(EFI_DEVICE_ERROR, Protocol_->ExecuteCapture(u"x", Buffer, &Size));
  EXPECT_EQ(0u, Size);
}

}  // namespace
}  // namespace emu_test
