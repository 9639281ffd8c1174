// Malformed input to the host: scenarios, replay directories and product
// files that are empty, truncated, nested without end or 10 MB long. Each
// is refused with a message naming the file and the place, or read into a
// partial model; never a crash, a hang or a leak.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "HostTestSupport.h"
#include "native/Replay.h"
#include "native/Scenario.h"

namespace host_test {
namespace {

constexpr std::size_t kTenMegabytes = 10 * 1024 * 1024;

// The message of the ScenarioError that building a server of Text throws,
// or "" when the server is built.
std::string ScenarioRefusal(const std::string &Text) {
  try {
    host::Server Server(host::ParseScenarioText(Text, "bad.json", "."));
  } catch (const host::ScenarioError &Error) {
    return Error.what();
  }
  return "";
}

std::string WithDrive(const std::string &Drive) {
  return R"({"pciFunctions": [{"name": "mr", "location": "3b:00.0",
      "vendorId": "1000", "deviceId": "0016"}],
      "adapters": [{"family": "megaraid", "pciFunction": "mr",
                    "drives": [)" + Drive + "]}]}";
}

TEST(BadScenarioText, IsRefusedNamingTheFileAndThePlace) {
  const std::string Demo = ProductFile("demo.json");
  const std::pair<std::string, std::string> kCases[] = {
      {"", "bad.json: not valid JSON at line 1, column 1"},
      {"   \n\n", "bad.json: not valid JSON at line 3, column 1"},
      {Demo.substr(0, Demo.size() / 2), "bad.json: not valid JSON at line "},
      {std::string(100000, '['), "bad.json: nested deeper than 64 levels at line 1, column 65"},
      {"{\"adapters\": [{\"family\": \"megaraid\", \"x\": " + std::string(100000, '{'),
       "bad.json: nested deeper than 64 levels at line 1, column 104"},
      {"\"" + std::string(kTenMegabytes, 'x'), "bad.json: not valid JSON at line 1"},
      {WithDrive(R"({"address": "1:0", "sizeMb": 1e300})"),
       "bad.json: adapters (megaraid on mr): drives[0].sizeMb: out of range"},
      {WithDrive(R"({"address": "1:0", "sizeMb": -1})"),
       "bad.json: adapters (megaraid on mr): drives[0].sizeMb: out of range"},
      {WithDrive(R"({"address": "1:0", "sizeMb": 1}, {"address": "1:1", "sizeMb": 0.5})"),
       "bad.json: adapters (megaraid on mr): drives[1].sizeMb: not a whole number"},
      {WithDrive(R"({"address": "1:0", "sizeMb": 1, "did": 1e10})"),
       "bad.json: adapters (megaraid on mr): drives[0].did: out of range"},
  };
  for (const auto &[Text, Message] : kCases) {
    const std::string Refusal = ScenarioRefusal(Text);
    EXPECT_EQ(Refusal.substr(0, Message.size()), Message) << Text.substr(0, 80);
  }
}

// Brackets and braces inside strings are text, not nesting.
TEST(BadScenarioText, BracketsInStringsDoNotCountAsNesting) {
  const std::string Name = std::string(200, '[') + "\\\"" + std::string(200, '{');
  const host::Scenario Scenario =
      host::ParseScenarioText("{\"name\": \"" + Name + "\"}", "ok.json", ".");
  EXPECT_EQ(Scenario.Name.size(), 401u);
}

TEST(BadScenarioText, TenMegabytesOfValidJsonAreRead) {
  const std::string Text =
      "{\"description\": \"" + std::string(kTenMegabytes, 'x') + "\"}";
  EXPECT_EQ(ScenarioRefusal(Text), "");
}

TEST(BadScenarioFile, DirectoryOrDeviceInPlaceOfAFileIsRefused) {
  ScratchDirectory Dir;
  std::filesystem::create_directory(Dir.Path() / "sub");
  const std::pair<std::string, std::string> kCases[] = {
      {R"({"volumeFiles": {"raid.xml": {"path": "sub"}}})",
       "volumeFiles.raid.xml.path: cannot read "},
      {R"({"volumeFiles": {"raid.xml": {"path": "/dev/zero"}}})",
       "volumeFiles.raid.xml.path: cannot read /dev/zero: not a regular file"},
  };
  for (const auto &[Text, Message] : kCases) {
    try {
      host::ParseScenarioText(Text, "bad.json", Dir.Path());
      ADD_FAILURE() << "accepted: " << Text;
    } catch (const host::ScenarioError &Error) {
      EXPECT_NE(std::string(Error.what()).find("bad.json: " + Message), std::string::npos)
          << Error.what();
    }
  }
  EXPECT_THROW(host::LoadScenarioFile(Dir.Path() / "sub"), host::ScenarioError);
}

TEST(BadReplay, OutputThatIsNoFileIsRefusedNamingTheLine) {
  ScratchDirectory Dir;
  std::filesystem::create_directory(Dir.Path() / "sub");
  Dir.Write("a.txt", "A");
  Dir.Write("commands.txt", "a.txt\tx\nsub\ty\n");
  try {
    host::Replay Replay(Dir.Path());
    FAIL() << "accepted";
  } catch (const host::ReplayError &Error) {
    const std::string Message = Error.what();
    EXPECT_NE(Message.find("commands.txt:2: cannot read "), std::string::npos) << Message;
    EXPECT_NE(Message.find("a directory, not a file"), std::string::npos) << Message;
  }

  ScratchDirectory IndexIsADirectory;
  std::filesystem::create_directory(IndexIsADirectory.Path() / "commands.txt");
  EXPECT_THROW(host::Replay{IndexIsADirectory.Path()}, host::ReplayError);
}

// Records one start-up of the module over every family, then replays it
// with each output replaced by hostile bytes.
TEST(BadReplay, HostileOutputsGiveAPartialModelWithoutLeaks) {
  ScratchDirectory Recorded;
  ASSERT_TRUE(RunDump(FourFamilyScenario(), {std::nullopt, Recorded.Path()})
                  .Problems.empty());
  const std::string Index = Recorded.Read("commands.txt");
  ASSERT_FALSE(Index.empty());
  const std::string Demo = ProductFile("demo.json");
  const std::pair<const char *, std::string> kOutputs[] = {
      {"empty", ""},
      {"one byte", "C"},
      {"no line end", std::string(5000, 'x')},
      {"nesting", std::string(100000, '{')},
      {"ten megabytes", std::string(kTenMegabytes, '=')},
  };
  for (const auto &[Name, Output] : kOutputs) {
    SCOPED_TRACE(Name);
    ScratchDirectory Hostile;
    Hostile.Write("commands.txt", Index);
    for (const auto &Entry : std::filesystem::directory_iterator(Recorded.Path())) {
      if (Entry.path().filename() != "commands.txt") {
        Hostile.Write(Entry.path().filename().string(), Output);
      }
    }
    const DumpRun Run = RunDump(FourFamilyScenario(), {Hostile.Path(), std::nullopt});
    EXPECT_TRUE(Run.Model.is_object());
    EXPECT_EQ(Run.LeakReport, "");
  }
}

// A raid.xml or pcidb.xml that is empty, cut short, nested without end or
// 10 MB long gives a model without those adapters, never a fault.
TEST(BadProductFile, GivesAPartialModelWithoutLeaks) {
  const std::string RaidXml = ProductFile("raid.xml");
  std::string Nested;
  for (int Level = 0; Level < 20000; Level++) {
    Nested += "<a>";
  }
  const std::pair<const char *, std::string> kTexts[] = {
      {"empty", ""},
      {"truncated", RaidXml.substr(0, RaidXml.size() / 2)},
      {"nested", Nested},
      {"ten megabytes", "<x>" + std::string(kTenMegabytes, 'y') + "</x>"},
  };
  for (const char *File : {"raid.xml", "pcidb.xml"}) {
    for (const auto &[Name, Text] : kTexts) {
      SCOPED_TRACE(std::string(File) + ", " + Name);
      json Scenario = FourFamilyScenario();
      Scenario["volumeFiles"][File] = {{"text", Text}};
      const DumpRun Run = RunDump(Scenario);
      EXPECT_TRUE(Run.Model.is_object());
      EXPECT_EQ(Run.LeakReport, "");
    }
  }
}

}  // namespace
}  // namespace host_test
