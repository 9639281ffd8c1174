// Files of the module's own volume, read through the file protocol.
#include <Protocol/LoadedImage.h>
#include <Protocol/SimpleFileSystem.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "EmuTestSupport.h"
#include "emu/HostVolume.h"
#include "emu/TextConversion.h"

namespace emu_test {
namespace {

namespace fs = std::filesystem;

class HostVolumeTest : public EmuTest {
 protected:
  HostVolumeTest() {
    Dir_ = fs::path(::testing::TempDir()) /
           ("emu_volume_" +
            std::string(::testing::UnitTest::GetInstance()
                            ->current_test_info()
                            ->name()));
    fs::remove_all(Dir_);
    fs::create_directories(Dir_ / "Data");
    for (int I = 0; I < 20000; I++) {
      Content_.push_back(static_cast<char>('a' + I % 26));
    }
    std::ofstream(Dir_ / "pcidb.xml", std::ios::binary) << Content_;
    std::ofstream(Dir_ / "Data" / "Raid.xml", std::ios::binary) << "<r/>";
    Volume_ = std::make_unique<emu::HostVolume>(Fw(), Dir_);
  }
  ~HostVolumeTest() override {
    Volume_.reset();
    fs::remove_all(Dir_);
  }

  EFI_FILE_PROTOCOL *OpenRoot() {
    EFI_FILE_PROTOCOL *Root = nullptr;
    EXPECT_EQ(EFI_SUCCESS,
              Volume_->FileSystem()->OpenVolume(Volume_->FileSystem(), &Root));
    return Root;
  }

  fs::path Dir_;
  std::string Content_;
  std::unique_ptr<emu::HostVolume> Volume_;
};

TEST_F(HostVolumeTest, ModuleFindsItsVolumeAndReadsIn8192ByteChunks) {
  EFI_HANDLE Image = Fw().CreateImageHandle(Volume_->Handle());
  EFI_LOADED_IMAGE_PROTOCOL *Loaded = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->HandleProtocol(Image, &gEfiLoadedImageProtocolGuid,
                                reinterpret_cast<VOID **>(&Loaded)));
  EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *FileSystem = nullptr;
  ASSERT_EQ(EFI_SUCCESS, gBS->HandleProtocol(
                             Loaded->DeviceHandle,
                             &gEfiSimpleFileSystemProtocolGuid,
                             reinterpret_cast<VOID **>(&FileSystem)));
  EFI_FILE_PROTOCOL *Root = nullptr;
  ASSERT_EQ(EFI_SUCCESS, FileSystem->OpenVolume(FileSystem, &Root));
  EFI_FILE_PROTOCOL *File = nullptr;
  ASSERT_EQ(EFI_SUCCESS, Root->Open(Root, &File,
                                    const_cast<CHAR16 *>(u"pcidb.xml"),
                                    EFI_FILE_MODE_READ, 0));

  std::string Read;
  std::vector<UINTN> Chunks;
  std::vector<char> Buffer(8192 + 1, '#');
  while (true) {
    UINTN Size = 8192;
    ASSERT_EQ(EFI_SUCCESS, File->Read(File, &Size, Buffer.data()));
    EXPECT_EQ('#', Buffer[8192]);
    Chunks.push_back(Size);
    Read.append(Buffer.data(), Size);
    if (Size == 0) {
      break;
    }
  }
  EXPECT_EQ((std::vector<UINTN>{8192, 8192, 3616, 0}), Chunks);
  EXPECT_EQ(Content_, Read);
  EXPECT_EQ(EFI_SUCCESS, File->Close(File));
  EXPECT_EQ(EFI_SUCCESS, Root->Close(Root));
  EXPECT_EQ(0u, Volume_->OpenFileCount());
}

TEST_F(HostVolumeTest, NamesMatchWithoutRegardToCase) {
  EFI_FILE_PROTOCOL *Root = OpenRoot();
  const struct {
    const CHAR16 *Name;
    EFI_STATUS Expected;
  } Cases[] = {
      {u"PCIDB.XML", EFI_SUCCESS},
      {u"\\pcidb.xml", EFI_SUCCESS},
      {u"\\data\\RAID.xml", EFI_SUCCESS},
      {u"Data\\..\\pcidb.xml", EFI_SUCCESS},
      {u"raid.xml", EFI_NOT_FOUND},
      {u"\\..\\pcidb.xml", EFI_NOT_FOUND},
      {u"pcidb.xml\\x", EFI_NOT_FOUND},
  };
  for (const auto &Case : Cases) {
    EFI_FILE_PROTOCOL *File = nullptr;
    EXPECT_EQ(Case.Expected,
              Root->Open(Root, &File, const_cast<CHAR16 *>(Case.Name),
                         EFI_FILE_MODE_READ, 0))
        << emu::ToUtf8(Case.Name);
    if (File != nullptr) {
      File->Close(File);
    }
  }
  Root->Close(Root);
}

TEST_F(HostVolumeTest, VolumeIsReadOnlyAndClosedHandlesAreRefused) {
  EFI_FILE_PROTOCOL *Root = OpenRoot();
  EFI_FILE_PROTOCOL *File = nullptr;
  EXPECT_EQ(EFI_WRITE_PROTECTED,
            Root->Open(Root, &File, const_cast<CHAR16 *>(u"pcidb.xml"),
                       EFI_FILE_MODE_READ | EFI_FILE_MODE_WRITE, 0));
  ASSERT_EQ(EFI_SUCCESS, Root->Open(Root, &File,
                                    const_cast<CHAR16 *>(u"pcidb.xml"),
                                    EFI_FILE_MODE_READ, 0));
  UINTN Size = 4;
  char Bytes[4];
  EXPECT_EQ(EFI_WRITE_PROTECTED, File->Write(File, &Size, Bytes));
  ASSERT_EQ(EFI_SUCCESS, File->SetPosition(File, 19998));
  UINT64 Position = 0;
  File->GetPosition(File, &Position);
  EXPECT_EQ(19998u, Position);
  EXPECT_EQ(EFI_SUCCESS, File->Read(File, &Size, Bytes));
  EXPECT_EQ(2u, Size);
  ASSERT_EQ(EFI_SUCCESS, File->SetPosition(File, ~UINT64{0}));
  File->GetPosition(File, &Position);
  EXPECT_EQ(20000u, Position);
  // A stale handle is refused through the functions the caller kept.
  const auto Close = File->Close;
  const auto Read = File->Read;
  ASSERT_EQ(EFI_SUCCESS, Close(File));
  EXPECT_EQ(EFI_INVALID_PARAMETER, Close(File));
  EXPECT_EQ(EFI_INVALID_PARAMETER, Read(File, &Size, Bytes));
  Root->Close(Root);
  EXPECT_EQ((std::vector<std::string>{"pcidb.xml", "pcidb.xml"}),
            Volume_->OpenRequests());
}

}  // namespace
}  // namespace emu_test
