// The generated package list: every language carries every id with the
// reference's format specifiers, the English texts are the module's, and
// the error box's text fits the buffer the module formats it into.
#include <Library/PrintLib.h>
#include <gtest/gtest.h>
#include "RaidLib.h"
#include "RaidLibMessages.h"
#include <strings/RaidcfgStrings.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "StringsTestSupport.h"

namespace {

using strings_test::Conversions;
using strings_test::RaidcfgStrings;
using strings_test::Utf8;

const std::map<EFI_STRING_ID, std::u16string> &TextsOf(const char *Language) {
  return RaidcfgStrings().Texts.at(Language);
}

TEST(PackageListTest, CarriesElevenLanguagesInOrder) {
  EXPECT_EQ(strings_test::kLanguages, RaidcfgStrings().Languages);
  const EFI_GUID Expected = RAIDCFG_STRING_PACKAGE_LIST_GUID;
  EXPECT_EQ(0, std::memcmp(&Expected, &RaidcfgStrings().Guid, sizeof Expected));
}

TEST(PackageListTest, EveryLanguageHasExactlyTheEnglishIds) {
  std::set<EFI_STRING_ID> English;
  for (const auto &[Id, Text] : TextsOf("en-US")) English.insert(Id);
  for (const std::string &Language : strings_test::kLanguages) {
    std::set<EFI_STRING_ID> Ids;
    for (const auto &[Id, Text] : TextsOf(Language.c_str())) Ids.insert(Id);
    EXPECT_EQ(English, Ids) << Language;
  }
}

TEST(PackageListTest, CoversTheModulesIdRanges) {
  const auto &English = TextsOf("en-US");
  for (EFI_STRING_ID Id : {705, 707, 725, 729, 731, 850, 853, 859, 865, 911}) {
    EXPECT_EQ(1u, English.count(Id)) << Id;
  }
  for (EFI_STRING_ID Id = 871; Id <= 911; ++Id) {
    EXPECT_EQ(1u, English.count(Id)) << "help id " << Id;
  }
  for (EFI_STRING_ID Id = 1015; Id <= 1127; ++Id) {
    EXPECT_EQ(1u, English.count(Id)) << "error message id " << Id;
  }
  // Id 1 names the language; nothing lies between it and the first text.
  EXPECT_EQ(u"English", English.at(STR_LANGUAGE_NAME));
  EXPECT_EQ(705, std::next(English.begin())->first);
}

// The drive-count hint is given (level text, min, max) in these languages.
bool TakesLevelFirst(const std::string &Language) {
  return Language == "zh-Hans" || Language == "zh-Hant" ||
         Language == "ko-KR" || Language == "ru-RU";
}

TEST(PackageListTest, TranslationsKeepTheEnglishFormatSpecifiers) {
  const auto &English = TextsOf("en-US");
  for (const std::string &Language : strings_test::kLanguages) {
    for (const auto &[Id, Text] : TextsOf(Language.c_str())) {
      std::vector<std::string> Expected = Conversions(English.at(Id));
      if (Id == STR_HINT_DRIVE_RANGE && TakesLevelFirst(Language)) {
        std::rotate(Expected.begin(), Expected.end() - 1, Expected.end());
      }
      EXPECT_EQ(Expected, Conversions(Text))
          << Language << " id " << Id << ": " << Utf8(Text);
    }
  }
}

TEST(PackageListTest, DriveRangeHintPutsTheLevelFirstWhereTheModuleDoes) {
  using Specifiers = std::vector<std::string>;
  EXPECT_EQ((Specifiers{"%d", "%d", "%s"}),
            Conversions(TextsOf("ja-JP").at(STR_HINT_DRIVE_RANGE)));
  EXPECT_EQ((Specifiers{"%s", "%d", "%d"}),
            Conversions(TextsOf("ru-RU").at(STR_HINT_DRIVE_RANGE)));
}

TEST(PackageListTest, EnglishTextsAreExact) {
  const auto &English = TextsOf("en-US");
  const std::pair<EFI_STRING_ID, std::u16string> Expected[] = {
      {STR_LOADING_RAID_DATA, u" Loading RAID data..."},
      {STR_PAGE_TITLE_VERIFY_SETTINGS, u"RAID Setup - Verify settings "},
      {STR_OPERATION_FAILED,
       u"The operation failed!\r\nError code: 0x%08x\r\nError message: %s"},
      {STR_ERROR_TITLE, u"Error"},
      {STR_ADAPTER_NO_VIRTUAL_DISKS, u"%s     (No virtual disks created)    "},
      {STR_CONFIRM_REMOVE_PLANNED, u"Do you want to remove the created volume ?"},
      {STR_ADAPTER_MESSAGE, u""},
  };
  for (const auto &[Id, Text] : Expected) {
    EXPECT_EQ(Text, English.at(Id)) << Id;
  }
}

// The error box's messages are the firmware's status texts, the same as the
// RAID library's message table.
TEST(PackageListTest, ErrorMessagesMatchTheLibraryTable) {
  for (const std::string &Language : strings_test::kLanguages) {
    const auto &Texts = TextsOf(Language.c_str());
    for (const RAID_ERROR_MESSAGE &Message : gRaidErrorMessages) {
      EXPECT_EQ(std::u16string(Message.Text), Texts.at(Message.StringId))
          << Language << " k " << Message.Index;
      EXPECT_EQ(STR_ERROR_MESSAGE_001 + Message.Index - 1, Message.StringId);
    }
  }
}

// Formats the error box as the module does: a buffer of both texts' lengths
// plus 6 characters.
TEST(PackageListTest, ErrorBoxTextFitsItsBufferInEveryLanguage) {
  for (const std::string &Language : strings_test::kLanguages) {
    const auto &Texts = TextsOf(Language.c_str());
    const std::u16string &Format = Texts.at(STR_OPERATION_FAILED);
    for (EFI_STRING_ID MessageId = STR_ERROR_MESSAGE_001;
         MessageId <= STR_ERROR_MESSAGE_113; ++MessageId) {
      const std::u16string &Message = Texts.at(MessageId);
      std::vector<CHAR16> Buffer(Format.size() + Message.size() + 6, u'#');
      UINTN Written =
          UnicodeSPrint(Buffer.data(), Buffer.size() * sizeof(CHAR16),
                        Format.c_str(), 0x00200021u, Message.c_str());
      std::u16string Text(Buffer.data(), Written);
      ASSERT_LT(Written, Buffer.size()) << Language << " " << MessageId;
      EXPECT_NE(std::u16string::npos, Text.find(u"0x00200021"))
          << Language << ": " << Utf8(Text);
      EXPECT_TRUE(Text.ends_with(Message)) << Language << ": " << Utf8(Text);
    }
  }
}

}  // namespace

// The drive legend of the help (pages 7 and 11) names every state word an
// M.2 adapter shows, in every language: the words are shown as the state
// table has them, so the legend keeps them as they are.
TEST(StateLegendTest, NamesEveryM2StateInEveryLanguage) {
  constexpr EFI_STRING_ID kLegend = 901;
  for (const std::string &Language : strings_test::kLanguages) {
    const std::u16string &Legend = TextsOf(Language.c_str()).at(kLegend);
    for (UINT32 State = RAID_STATE3_READY; State <= RAID_STATE3_FOREIGN;
         State++) {
      const std::u16string Word(
          reinterpret_cast<const char16_t *>(RaidLibStateText(State)));
      EXPECT_NE(Legend.find(Word), std::u16string::npos)
          << Language << " lacks " << Utf8(Word);
    }
  }
}
