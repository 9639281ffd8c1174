// The reports of the virtual M.2 tools: whole outputs against golden files,
// the key columns the real tool prints, and the numbering of adapters.
#include <gtest/gtest.h>

#include "Golden.h"
#include "MarvellTestSupport.h"

namespace sim::marvell::test {
namespace {

struct GoldenCase {
  const char *File;
  const char *Line;
};

class MvcliGoldenTest : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(MvcliGoldenTest, MatchesGoldenOutput) {
  Mvcli Tool = ToolWith(Mirrored());
  ExpectGolden(GetParam().File, Tool.Run(GetParam().Line));
}

INSTANTIATE_TEST_SUITE_P(
    Mirrored, MvcliGoldenTest,
    ::testing::Values(GoldenCase{"info-o-hba.txt", "mvsetup.efi info -o hba"},
                      GoldenCase{"0-info-o-vd.txt", "mvsetup.efi 0 info -o vd"},
                      GoldenCase{"0-info-o-pd.txt", "mvsetup.efi 0 info -o pd"}));

// Where each report's values start, as in the tool's own output.
TEST(MvcliReportTest, ValuesStartAtTheToolsColumns) {
  Mvcli Tool = ToolWith(Mirrored());
  EXPECT_NE(Tool.Run("mvsetup.efi info -o hba")
                .find("\r\nFirmware version:                    2.3.10.1088\r\n"),
            std::string::npos);
  EXPECT_EQ(Tool.Run("mvsetup.efi info -o hba")
                .rfind("Adapter ID:                          0\r\n", 0),
            0u);
  EXPECT_NE(Tool.Run("mvsetup.efi 0 info -o vd")
                .find("\r\nid:                  0\r\nname:                VD_R1_1\r\n"),
            std::string::npos);
  EXPECT_NE(Tool.Run("mvsetup.efi 0 info -o vd")
                .find("\r\nTotal # of VD:       1\r\n"),
            std::string::npos);
}

TEST(MvcliReportTest, BothToolsAnswerAlikeAndNumberAdaptersByLocation) {
  Mvcli Tool;
  nlohmann::json Second = Mirrored();
  Second["pci"] = {{"bus", 3}};
  Tool.AddAdapter(AdapterFromJson(Second));
  nlohmann::json First = TwoReadyDrives();
  First["pci"] = {{"bus", 2}};
  First["maxDisks"] = nullptr;
  Tool.AddAdapter(AdapterFromJson(First));
  EXPECT_EQ(Tool.Run("fs0:\\mvsetup.efi 1 info -o vd"),
            Tool.Run("mnv_cli.efi 1 info -o vd"));
  EXPECT_NE(Tool.Run("mnv_cli.efi 1 info -o vd").find("VD_R1_1"),
            std::string::npos);
  EXPECT_NE(Tool.Run("mnv_cli.efi 0 info -o vd").find("Total # of VD:       0"),
            std::string::npos);
  std::string Hba = Tool.Run("mnv_cli.efi info -o hba");
  EXPECT_NE(Hba.find("Adapter ID:                          1\r\n"),
            std::string::npos);
  EXPECT_NE(Hba.find("Maximum supported disk:              \r\n"),
            std::string::npos);
}

TEST(MvcliReportTest, UnknownCommandsAndAdaptersAreRefused) {
  Mvcli Tool = ToolWith(TwoReadyDrives());
  const std::pair<const char *, const char *> Cases[] = {
      {"mvsetup.efi 0 info -o hba", "Error: Invalid command.\r\n"},
      {"mvsetup.efi info -o vd", "Error: Invalid command.\r\n"},
      {"mvsetup.efi 0 info -o ld", "Error: Invalid command.\r\n"},
      {"mvsetup.efi 0 show", "Error: Invalid command.\r\n"},
      {"mvsetup.efi 1 info -o vd", "Error: Adapter 1 does not exist.\r\n"},
      {"mvsetup.efi 0 create -o vd -r1 --waiveconfirmation",
       "Error: Invalid command.\r\n"},
      {"mvsetup.efi 0 delete -o vd -f", "Error: Invalid command.\r\n"},
  };
  for (const auto &[Line, Output] : Cases) {
    EXPECT_EQ(Tool.Run(Line), Output) << Line;
  }
  EXPECT_EQ(StateOf(Tool), StateOf(ToolWith(TwoReadyDrives())));
}

}  // namespace
}  // namespace sim::marvell::test
