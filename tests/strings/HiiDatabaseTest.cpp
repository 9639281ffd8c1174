// The emulator's HII database and string protocols, with raidcfg's own
// package list: registration, GetString's rules, GetLanguages, the image's
// package list protocol and the setup protocol's string slot.
#include <Library/UefiBootServicesTableLib.h>
#include <gtest/gtest.h>
#include <strings/RaidcfgPackageList.h>
#include <strings/RaidcfgStrings.h>

#include <cstring>
#include <memory>

#include "StringsTestSupport.h"
#include "emu/Firmware.h"
#include "emu/Hii.h"
#include "emu/SetupProtocol.h"

namespace {

const auto *kPackageList = reinterpret_cast<const EFI_HII_PACKAGE_LIST_HEADER *>(
    raidcfg_strings::kPackageList);

CHAR8 *Ascii(const char *Text) {
  return reinterpret_cast<CHAR8 *>(const_cast<char *>(Text));
}

class HiiDatabaseTest : public ::testing::Test {
 protected:
  HiiDatabaseTest() {
    gST = Firmware_.SystemTable();
    gBS = gST->BootServices;
    Database_ = &Hii_.DatabaseProtocol();
    Strings_ = &Hii_.StringProtocol();
  }
  ~HiiDatabaseTest() override {
    gST = nullptr;
    gBS = nullptr;
  }

  // Registers raidcfg's package list the way the module does.
  EFI_HII_HANDLE Register() {
    EFI_HII_HANDLE Handle = nullptr;
    EXPECT_EQ(EFI_SUCCESS, Database_->NewPackageList(Database_, kPackageList,
                                                     nullptr, &Handle));
    return Handle;
  }

  // GetString into a generous buffer; the text, or the status as a failure.
  std::u16string Text(const char *Language, EFI_HII_HANDLE Handle,
                      EFI_STRING_ID Id) {
    CHAR16 Buffer[1024];
    UINTN Size = sizeof Buffer;
    EFI_STATUS Status = Strings_->GetString(Strings_, Ascii(Language), Handle,
                                            Id, Buffer, &Size, nullptr);
    EXPECT_EQ(EFI_SUCCESS, Status) << Language << " " << Id;
    return Status == EFI_SUCCESS ? std::u16string(Buffer) : u"";
  }

  emu::Firmware Firmware_;
  emu::HiiDatabase Hii_{Firmware_};
  EFI_HII_DATABASE_PROTOCOL *Database_;
  EFI_HII_STRING_PROTOCOL *Strings_;
};

TEST_F(HiiDatabaseTest, ProtocolsAreLocatable) {
  VOID *Interface = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateProtocol(&gEfiHiiDatabaseProtocolGuid, nullptr, &Interface));
  EXPECT_EQ(Database_, Interface);
  ASSERT_EQ(EFI_SUCCESS,
            gBS->LocateProtocol(&gEfiHiiStringProtocolGuid, nullptr, &Interface));
  EXPECT_EQ(Strings_, Interface);
}

TEST_F(HiiDatabaseTest, RoundTripGivesTheSourceTexts) {
  EFI_HII_HANDLE Handle = Register();
  ASSERT_NE(nullptr, Handle);
  // The English package's texts are checked where the list is parsed.
  EXPECT_EQ(u" RAID-Daten werden geladen...",
            Text("de-DE", Handle, STR_LOADING_RAID_DATA));
  EXPECT_EQ(u"Der Vorgang ist fehlgeschlagen!\r\nFehlercode: 0x%08x\r\n"
            u"Fehlermeldung: %s",
            Text("de-DE", Handle, STR_OPERATION_FAILED));
  EXPECT_EQ(u"%s 需要 %d 到 %d 个磁盘驱动器。",
            Text("zh-Hans", Handle, STR_HINT_DRIVE_RANGE));
  EXPECT_EQ(u"Deutsch", Text("de-DE", Handle, STR_LANGUAGE_NAME));
}

TEST_F(HiiDatabaseTest, GetStringRules) {
  EFI_HII_HANDLE Handle = Register();
  CHAR16 Buffer[64];
  struct Case {
    const char *Name;
    const char *Language;
    EFI_HII_HANDLE Handle;
    EFI_STRING_ID Id;
    EFI_STATUS Expected;
  } Cases[] = {
      {"no language", nullptr, Handle, STR_ERROR_TITLE, EFI_INVALID_PARAMETER},
      {"bare primary language", "en", Handle, STR_ERROR_TITLE,
       EFI_INVALID_LANGUAGE},
      {"language of no package", "sv-SE", Handle, STR_ERROR_TITLE,
       EFI_INVALID_LANGUAGE},
      {"case differs", "EN-us", Handle, STR_ERROR_TITLE, EFI_INVALID_LANGUAGE},
      {"id in a gap", "en-US", Handle, 706, EFI_NOT_FOUND},
      {"id past the last", "en-US", Handle, 1128, EFI_NOT_FOUND},
      {"id 0", "en-US", Handle, 0, EFI_INVALID_PARAMETER},
      {"unknown handle", "en-US", reinterpret_cast<EFI_HII_HANDLE>(0x1234),
       STR_ERROR_TITLE, EFI_NOT_FOUND},
      {"exact language", "fr-FR", Handle, STR_ERROR_TITLE, EFI_SUCCESS},
  };
  for (const Case &Each : Cases) {
    UINTN Size = sizeof Buffer;
    EXPECT_EQ(Each.Expected,
              Strings_->GetString(Strings_, Ascii(Each.Language), Each.Handle,
                                  Each.Id, Buffer, &Size, nullptr))
        << Each.Name;
  }
}

TEST_F(HiiDatabaseTest, BufferTooSmallReportsTheSizeNeeded) {
  EFI_HII_HANDLE Handle = Register();
  const UINTN Needed = sizeof(u" Loading RAID data...");
  UINTN Size = 0;
  EXPECT_EQ(EFI_BUFFER_TOO_SMALL,
            Strings_->GetString(Strings_, Ascii("en-US"), Handle,
                                STR_LOADING_RAID_DATA, nullptr, &Size, nullptr));
  EXPECT_EQ(Needed, Size);

  std::vector<CHAR16> Buffer(Needed / sizeof(CHAR16), u'#');
  Size = Needed - sizeof(CHAR16);  // one short: no room for the terminator
  EXPECT_EQ(EFI_BUFFER_TOO_SMALL,
            Strings_->GetString(Strings_, Ascii("en-US"), Handle,
                                STR_LOADING_RAID_DATA, Buffer.data(), &Size,
                                nullptr));
  EXPECT_EQ(Needed, Size);
  EXPECT_EQ(u'#', Buffer[0]) << "nothing is written on failure";
  EXPECT_EQ(EFI_SUCCESS,
            Strings_->GetString(Strings_, Ascii("en-US"), Handle,
                                STR_LOADING_RAID_DATA, Buffer.data(), &Size,
                                nullptr));
  EXPECT_EQ(u" Loading RAID data...", std::u16string(Buffer.data()));

  Size = 8;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            Strings_->GetString(Strings_, Ascii("en-US"), Handle,
                                STR_LOADING_RAID_DATA, nullptr, &Size, nullptr));
}

TEST_F(HiiDatabaseTest, GetLanguagesListsThePackagesInOrder) {
  EFI_HII_HANDLE Handle = Register();
  UINTN Size = 0;
  ASSERT_EQ(EFI_BUFFER_TOO_SMALL,
            Strings_->GetLanguages(Strings_, Handle, nullptr, &Size));
  std::string Languages(Size, '\0');
  ASSERT_EQ(EFI_SUCCESS, Strings_->GetLanguages(Strings_, Handle,
                                                Ascii(Languages.data()), &Size));
  EXPECT_STREQ("en-US;fr-FR;de-DE;es-ES;it-IT;ko-KR;zh-Hans;zh-Hant;ja-JP;"
               "ru-RU;pt-BR",
               Languages.c_str());
  Size = 0;
  EXPECT_EQ(EFI_NOT_FOUND,
            Strings_->GetLanguages(Strings_, reinterpret_cast<EFI_HII_HANDLE>(8),
                                   nullptr, &Size));
}

TEST_F(HiiDatabaseTest, RemovedListIsGoneAndItsHandleStaysDead) {
  EFI_HII_HANDLE First = Register();
  EFI_HII_HANDLE Again = nullptr;
  EXPECT_EQ(EFI_INVALID_PARAMETER,
            Database_->NewPackageList(Database_, kPackageList, nullptr, &Again))
      << "the same list for the same driver handle twice";
  EXPECT_EQ(EFI_SUCCESS, Database_->RemovePackageList(Database_, First));
  EXPECT_EQ(EFI_NOT_FOUND, Database_->RemovePackageList(Database_, First));
  CHAR16 Buffer[16];
  UINTN Size = sizeof Buffer;
  EXPECT_EQ(EFI_NOT_FOUND,
            Strings_->GetString(Strings_, Ascii("en-US"), First,
                                STR_ERROR_TITLE, Buffer, &Size, nullptr));
  EFI_HII_HANDLE Second = Register();
  EXPECT_NE(First, Second);
  EXPECT_EQ(std::vector<EFI_HII_HANDLE>{Second}, Hii_.Handles());
}

// Corrupts a copy of the package list at one offset.
std::vector<UINT8> Corrupted(size_t Offset, std::vector<UINT8> Bytes) {
  std::vector<UINT8> Copy(raidcfg_strings::kPackageList,
                          raidcfg_strings::kPackageList +
                              raidcfg_strings::kPackageListSize);
  std::copy(Bytes.begin(), Bytes.end(), Copy.begin() + Offset);
  return Copy;
}

TEST_F(HiiDatabaseTest, MalformedListsAreRefusedWithoutOverreading) {
  const size_t Size = raidcfg_strings::kPackageListSize;
  const size_t FirstPackage = 20;
  const size_t FirstBlocks = FirstPackage + 46 + sizeof("en-US");
  struct Case {
    const char *Name;
    std::vector<UINT8> Bytes;
  } Cases[] = {
      {"list length below its header", Corrupted(16, {4, 0, 0, 0})},
      {"package longer than the list", Corrupted(FirstPackage, {0xFF, 0xFF, 0xFF, 4})},
      {"package length below 4", Corrupted(FirstPackage, {2, 0, 0, 4})},
      {"header size past the package", Corrupted(FirstPackage + 4, {0xFF, 0xFF, 0, 0})},
      {"language without terminator",
       Corrupted(FirstPackage + 46, {'e', 'n', '-', 'U', 'S', 'x'})},
      {"unknown block type", Corrupted(FirstBlocks, {0x77})},
      {"list cut before the END package",
       [&] {
         std::vector<UINT8> Copy = Corrupted(0, {});
         Copy.resize(Size - 4);
         UINT32 Length = static_cast<UINT32>(Copy.size());
         std::memcpy(Copy.data() + 16, &Length, sizeof Length);
         return Copy;
       }()},
  };
  for (Case &Each : Cases) {
    EFI_HII_HANDLE Handle = nullptr;
    EXPECT_EQ(EFI_INVALID_PARAMETER,
              Database_->NewPackageList(
                  Database_,
                  reinterpret_cast<EFI_HII_PACKAGE_LIST_HEADER *>(Each.Bytes.data()),
                  nullptr, &Handle))
        << Each.Name;
  }
  EXPECT_TRUE(Hii_.Handles().empty());
}

TEST_F(HiiDatabaseTest, ImageCarriesItsPackageListLikeLoadImageInstallsIt) {
  EFI_HANDLE Image = Firmware_.CreateImageHandle(nullptr);
  ASSERT_EQ(EFI_SUCCESS,
            emu::InstallImagePackageList(Firmware_, Image, kPackageList));
  VOID *Interface = nullptr;
  ASSERT_EQ(EFI_SUCCESS, gBS->HandleProtocol(Image, &gEfiHiiPackageListProtocolGuid,
                                             &Interface));
  EXPECT_EQ(kPackageList, Interface);
  EFI_HII_HANDLE Handle = nullptr;
  ASSERT_EQ(EFI_SUCCESS,
            Database_->NewPackageList(
                Database_, static_cast<EFI_HII_PACKAGE_LIST_HEADER *>(Interface),
                nullptr, &Handle));
  EXPECT_EQ(u"Error", Text("en-US", Handle, STR_ERROR_TITLE));
  EXPECT_EQ(EFI_SUCCESS,
            emu::UninstallImagePackageList(Firmware_, Image, kPackageList));
}

TEST_F(HiiDatabaseTest, SetupStringSlotAnswersInTheCurrentLanguage) {
  emu::SetupProtocol Setup(Firmware_);
  emu::ConnectSetupStrings(Setup, Hii_);
  EFI_HII_HANDLE Handle = Register();
  auto GetString = Setup.Interface().GetString;

  EXPECT_EQ("en-US", Hii_.CurrentLanguage()) << "platform language \"en\"";
  const CHAR16 *English = GetString(Handle, STR_ERROR_TITLE);
  ASSERT_NE(nullptr, English);
  EXPECT_EQ(u"Error", std::u16string(English));

  Hii_.SetCurrentLanguage("fr-FR");
  EXPECT_EQ(u"Erreur", std::u16string(GetString(Handle, STR_ERROR_TITLE)));
  EXPECT_EQ(u"Error", std::u16string(English)) << "earlier texts stay valid";
  EXPECT_EQ(nullptr, GetString(Handle, 706));
  EXPECT_EQ(nullptr, GetString(nullptr, STR_ERROR_TITLE));
  Hii_.SetCurrentLanguage("fr");
  EXPECT_EQ(nullptr, GetString(Handle, STR_ERROR_TITLE)) << "no fallback";
}

TEST(HiiLanguageTest, PlatformLanguageMapsToAPackageLanguage) {
  EXPECT_EQ("en-US", emu::HiiLanguageFromPlatform("en"));
  EXPECT_EQ("zh-Hans", emu::HiiLanguageFromPlatform("zh"));
  EXPECT_EQ("zh-Hant", emu::HiiLanguageFromPlatform("zh-Hant"));
  EXPECT_EQ("pt-BR", emu::HiiLanguageFromPlatform("pt"));
  EXPECT_EQ("sv", emu::HiiLanguageFromPlatform("sv"));
}

}  // namespace
