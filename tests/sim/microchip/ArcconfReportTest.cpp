// The virtual arcconf's reports: whole outputs against golden files, and
// the layout rules the RAID module's reader depends on.
#include <gtest/gtest.h>

#include "Golden.h"
#include "SmartRaid.h"
#include "sim/microchip/Arcconf.h"
#include "sim/microchip/MicrochipJson.h"

namespace microchip_sim_test {
namespace {

using namespace sim::microchip;

Arcconf RichTool() {
  Arcconf Tool;
  Tool.AddAdapter(AdapterFromJson(RichAdapter()));
  return Tool;
}

std::vector<std::string> Lines(const std::string &Text) {
  std::vector<std::string> Out;
  size_t Start = 0;
  for (size_t End; (End = Text.find("\r\n", Start)) != std::string::npos;
       Start = End + 2) {
    Out.push_back(Text.substr(Start, End - Start));
  }
  return Out;
}

size_t IndexOf(const std::vector<std::string> &All, const std::string &Start,
               size_t From = 0) {
  for (size_t Index = From; Index < All.size(); Index++) {
    if (All[Index].rfind(Start, 0) == 0) {
      return Index;
    }
  }
  ADD_FAILURE() << "no line begins with " << Start;
  return All.size();
}

TEST(ArcconfReport, GetconfigMatchesItsGoldenFile) {
  Arcconf Tool = RichTool();
  ExpectGolden("getconfig-1.txt", Tool.Run("arcconf.efi getconfig 1"));
}

TEST(ArcconfReport, ListMatchesItsGoldenFile) {
  Arcconf Tool = RichTool();
  nlohmann::json Second = RichAdapter();
  Second["pci"]["bus"] = 0x3B;
  Second["slot"] = 2;
  Second["serialNumber"] = "7A4620EC0F3";
  Tool.AddAdapter(AdapterFromJson(Second));
  ExpectGolden("list-two.txt", Tool.Run("arcconf.efi list"));
}

TEST(ArcconfReport, LinesStandWhereTheReaderLooksForThem) {
  Arcconf Tool = RichTool();
  const std::vector<std::string> All = Lines(Tool.Run("arcconf.efi getconfig 1"));
  // The RAID level four lines below the array's logical device heading.
  const size_t Heading = IndexOf(All, "   Array Logical Device Information");
  EXPECT_EQ(All[Heading + 4].find("Optimal (5, Data, 204800 MB) os"),
            46u + 2);
  // Every drive: the hard drive line right after its device line, its state
  // and array before its interface and SSD lines, and more than sixteen
  // lines behind the SSD line before the next device.
  for (size_t Device = IndexOf(All, "      Device #"); Device < All.size();
       Device = IndexOf(All, "      Device #", Device + 1)) {
    EXPECT_EQ(All[Device + 1], "         Device is a HardDrive");
    const size_t State = IndexOf(All, "         State ", Device);
    const size_t Speed = IndexOf(All, "         Transfer Speed", Device);
    const size_t Ssd = IndexOf(All, "         SSD ", Device);
    const size_t Type = IndexOf(All, "         Drive Configuration Type", Device);
    EXPECT_LT(State, Speed);
    EXPECT_LT(Speed, Ssd);
    EXPECT_LE(Type - State, 29u);
    size_t Next = Ssd + 1;
    while (Next < All.size() && All[Next].rfind("      Device #", 0) != 0 &&
           All[Next].rfind("---", 0) != 0) {
      Next++;
    }
    EXPECT_GT(Next - Ssd, 16u);
    if (Next >= All.size() || All[Next].rfind("---", 0) == 0) {
      break;
    }
  }
}

TEST(ArcconfReport, AnUnknownControllerFails) {
  Arcconf Tool = RichTool();
  EXPECT_EQ(Tool.Run("arcconf.efi getconfig 2"),
            "Controllers found: 1\r\n\r\nInvalid controller number.\r\n\r\n"
            "Command failed.\r\n");
}

}  // namespace
}  // namespace microchip_sim_test
