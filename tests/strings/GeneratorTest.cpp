// The string generator on small inputs: what it refuses (with the file, id
// and problem named, and nothing written) and the blocks it lays out.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "StringsTestSupport.h"

namespace {

namespace fs = std::filesystem;

struct GeneratorRun {
  int ExitStatus;
  std::string Output;  // standard output and error
};

class GeneratorTest : public ::testing::Test {
 protected:
  GeneratorTest() {
    char Template[] = "/tmp/raidcfg-strings-XXXXXX";
    Directory_ = mkdtemp(Template);
  }
  ~GeneratorTest() override { fs::remove_all(Directory_); }

  // Writes a string file with a #langdef and the given #string lines.
  std::string File(const std::string &Language, const std::string &Lines) {
    fs::path Path = Directory_ / (Language + ".uni");
    std::ofstream(Path) << "#langdef " << Language << " \"" << Language
                        << "\"\n"
                        << Lines;
    return Path.string();
  }

  // Runs the generator on the files, asking for the package list.
  GeneratorRun Generate(const std::vector<std::string> &Files) {
    std::string Command = std::string(RAIDCFG_PYTHON) + " " +
                          RAIDCFG_STRING_GENERATOR + " --hii " +
                          Output().string();
    for (const std::string &Path : Files) Command += " " + Path;
    Command += " 2>&1";
    GeneratorRun Result{-1, ""};
    FILE *Pipe = popen(Command.c_str(), "r");
    if (Pipe == nullptr) return Result;
    char Chunk[512];
    size_t Count;
    while ((Count = fread(Chunk, 1, sizeof Chunk, Pipe)) > 0) {
      Result.Output.append(Chunk, Count);
    }
    int Status = pclose(Pipe);
    Result.ExitStatus = WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
    return Result;
  }

  fs::path Output() const { return Directory_ / "out.hii"; }

  fs::path Directory_;
};

const char kEnglish[] =
    "#string STR_TITLE 705 #language en-US \"Title\"\n"
    "#string STR_HINT 764 #language en-US \"%d to %d drives for %s.\"\n"
    "#string STR_FAILED 817 #language en-US \"Failed: 0x%08x\\r\\n%s\"\n";

TEST_F(GeneratorTest, RefusesWhatWouldBreakTheModule) {
  struct Case {
    const char *Name;
    const char *Language;
    std::string Lines;
    std::string Expected;  // part of the message
  } Cases[] = {
      {"a missing id", "fr-FR",
       "#string STR_TITLE 705 #language fr-FR \"Titre\"\n"
       "#string STR_HINT 764 #language fr-FR \"%d à %d disques pour %s.\"\n",
       "fr-FR.uni: lacks id 817 (STR_FAILED)"},
      {"an extra id", "fr-FR",
       std::string("#string STR_TITLE 705 #language fr-FR \"Titre\"\n"
                   "#string STR_HINT 764 #language fr-FR \"%d à %d pour %s.\"\n"
                   "#string STR_FAILED 817 #language fr-FR \"0x%08x %s\"\n"
                   "#string STR_MORE 900 #language fr-FR \"Plus\"\n"),
       "id 900 (STR_MORE) is not in en-US"},
      {"a changed specifier", "de-DE",
       "#string STR_TITLE 705 #language de-DE \"Titel\"\n"
       "#string STR_HINT 764 #language de-DE \"%d bis %d für %s.\"\n"
       "#string STR_FAILED 817 #language de-DE \"Fehler: 0x%x\\r\\n%s\"\n",
       "id 817 (STR_FAILED): format specifiers [%x %s] differ from the "
       "expected [%08x %s]"},
      {"reordered specifiers", "ja-JP",
       "#string STR_TITLE 705 #language ja-JP \"T\"\n"
       "#string STR_HINT 764 #language ja-JP \"%s: %d-%d\"\n"
       "#string STR_FAILED 817 #language ja-JP \"0x%08x %s\"\n",
       "id 764 (STR_HINT): format specifiers [%s %d %d]"},
      {"the level left last where the module passes it first", "ru-RU",
       "#string STR_TITLE 705 #language ru-RU \"T\"\n"
       "#string STR_HINT 764 #language ru-RU \"%d-%d: %s\"\n"
       "#string STR_FAILED 817 #language ru-RU \"0x%08x %s\"\n",
       "expected [%s %d %d]"},
      {"a renamed id", "it-IT",
       "#string STR_HEADING 705 #language it-IT \"T\"\n"
       "#string STR_HINT 764 #language it-IT \"%d-%d %s\"\n"
       "#string STR_FAILED 817 #language it-IT \"0x%08x %s\"\n",
       "id 705 (STR_HEADING): en-US names it STR_TITLE"},
      {"a stray percent", "es-ES",
       "#string STR_TITLE 705 #language es-ES \"100%\"\n"
       "#string STR_HINT 764 #language es-ES \"%d-%d %s\"\n"
       "#string STR_FAILED 817 #language es-ES \"0x%08x %s\"\n",
       "id 705 (STR_TITLE): stray '%'"},
      {"a language that is not the file's", "pt-BR",
       "#string STR_TITLE 705 #language pt-PT \"T\"\n", "language pt-PT in a "
                                                        "pt-BR file"},
      {"an id given twice", "ko-KR",
       "#string STR_TITLE 705 #language ko-KR \"T\"\n"
       "#string STR_AGAIN 705 #language ko-KR \"T\"\n",
       "id 705 (STR_AGAIN) given twice"},
      {"an unterminated text", "zh-Hant",
       "#string STR_TITLE 705 #language zh-Hant \"T\n", "unterminated string"},
  };
  std::string English = File("en-US", kEnglish);
  for (const Case &Each : Cases) {
    fs::remove(Output());
    GeneratorRun Result = Generate({English, File(Each.Language, Each.Lines)});
    EXPECT_EQ(1, Result.ExitStatus) << Each.Name;
    EXPECT_NE(std::string::npos, Result.Output.find(Each.Expected))
        << Each.Name << ":\n" << Result.Output;
    EXPECT_FALSE(fs::exists(Output())) << Each.Name;
  }
}

TEST_F(GeneratorTest, AcceptsTheLevelFirstHintAndLaysOutSkips) {
  GeneratorRun Result = Generate(
      {File("en-US", kEnglish),
       File("zh-Hans",
            "#string STR_TITLE 705 #language zh-Hans \"标题\"\n"
            "#string STR_HINT 764 #language zh-Hans \"%s 需要 %d 到 %d\"\n"
            "#string STR_FAILED 817 #language zh-Hans \"失败：0x%08x\"\n"
            "  \"\\r\\n%s\"\n")});
  ASSERT_EQ(0, Result.ExitStatus) << Result.Output;

  std::ifstream Stream(Output(), std::ios::binary);
  std::vector<char> Bytes((std::istreambuf_iterator<char>(Stream)),
                          std::istreambuf_iterator<char>());
  emu::HiiStrings Strings;
  std::string Error;
  ASSERT_TRUE(emu::ParseHiiPackageList(Bytes.data(), Bytes.size(), Strings,
                                       &Error))
      << Error;
  ASSERT_EQ((std::vector<std::string>{"en-US", "zh-Hans"}), Strings.Languages);
  const auto &Chinese = Strings.Texts.at("zh-Hans");
  EXPECT_EQ(4u, Chinese.size());
  EXPECT_EQ(u"zh-Hans", Chinese.at(1)) << "id 1 names the language";
  EXPECT_EQ(u"%s 需要 %d 到 %d", Chinese.at(764));
  EXPECT_EQ(u"失败：0x%08x\r\n%s", Chinese.at(817)) << "continued text";

  // en-US package: header 20, package header 46 + "en-US\0", then id 1,
  // SKIP2 703 (2..704), id 705, SKIP1 58 (706..763), id 764, SKIP1 52, id 817.
  const UINT8 *Blocks =
      reinterpret_cast<const UINT8 *>(Bytes.data()) + 20 + 46 + 6;
  EXPECT_EQ(0x14, Blocks[0]);
  const UINT8 *AfterName = Blocks + 1 + sizeof(u"en-US");
  EXPECT_EQ(0x21, AfterName[0]);
  EXPECT_EQ(703, AfterName[1] | AfterName[2] << 8);
  const UINT8 *AfterTitle = AfterName + 3 + 1 + sizeof(u"Title");
  EXPECT_EQ(0x22, AfterTitle[0]);
  EXPECT_EQ(58, AfterTitle[1]);
}

}  // namespace
