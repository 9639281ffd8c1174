// The virtual Intel engines: their scenario JSON, the tool's changes with
// the reasons it refuses, and the report layout's offsets.
#include <gtest/gtest.h>

#include <sstream>

#include "sim/common/JsonFields.h"
#include "sim/intel/IntelFamily.h"
#include "sim/intel/IntelJson.h"
#include "sim/intel/Rcfg.h"

namespace sim::intel {
namespace {

using nlohmann::json;

constexpr uint64_t kDisk = 1000ULL << 21;  // 1000 GiB in blocks

json Disk(uint32_t Number, const std::string &State) {
  return {{"number", Number}, {"state", State}, {"blocks", kDisk}};
}

// Disks 0 and 1 in a mirror "OS", 2 to 5 free, 6 a spare.
json SixDisks() {
  return {{"disks", {Disk(0, "member"), Disk(1, "member"), Disk(2, "non-raid"),
                     Disk(3, "non-raid"), Disk(4, "non-raid"), Disk(5, "non-raid"),
                     Disk(6, "spare")}},
          {"arrays", {{{"disks", {0, 1}}, {"volumes", {{{"name", "OS"}}}}}}}};
}

std::vector<std::string> Lines(const std::string &Text) {
  std::vector<std::string> Out;
  std::istringstream In(Text);
  for (std::string Line; std::getline(In, Line);) {
    EXPECT_FALSE(Line.empty() || Line.back() != '\r') << "no CR LF: " << Line;
    if (!Line.empty()) {
      Line.pop_back();
    }
    Out.push_back(Line);
  }
  return Out;
}

// The last line of a change's output.
std::string Verdict(Engines &Server, const std::string &Command) {
  std::vector<std::string> Printed = Lines(RunRcfg(Server, Command));
  return Printed.empty() ? "" : Printed.back();
}

TEST(IntelJson, StateLoadsBackToTheSameState) {
  Engine Loaded = EngineFromJson(SixDisks());
  EXPECT_EQ(Loaded.Arrays[0].Volumes[0].Blocks, kDisk);
  EXPECT_EQ(Loaded.Arrays[0].Volumes[0].StripeKb, 0u);
  const json Written = EngineToJson(Loaded);
  EXPECT_EQ(EngineToJson(EngineFromJson(Written)), Written);
  EXPECT_EQ(Written["variant"], "rste-sata");
  EXPECT_EQ(Written["tool"], "RCfgSata.efi");
}

TEST(IntelJson, RefusesWhatNoEngineHolds) {
  struct Case {
    std::function<void(json &)> Edit;
    std::string Message;
  } Cases[] = {
      {[](json &E) { E["variant"] = "vroc-nvme"; }, "unknown variant \"vroc-nvme\""},
      {[](json &E) { E["disks"][2]["state"] = "member"; },
       "disks[2]: a member disk stands in no array"},
      {[](json &E) { E["disks"][6]["number"] = 5; }, "disks[6]: disk number used twice"},
      {[](json &E) { E["arrays"][0]["disks"] = {0, 2}; },
       "arrays[0].disks: disk 2 is no member disk of the engine"},
      {[](json &E) {
         E["arrays"][0]["volumes"] = {{{"name", "A"}, {"blocks", 1}},
                                      {{"name", "B"}, {"blocks", 1}},
                                      {{"name", "C"}, {"blocks", 1}}};
       },
       "arrays[0].volumes: an array holds one or two volumes"},
      {[](json &E) { E["arrays"][0]["volumes"][0]["stripeKb"] = 64; },
       "arrays[0].volumes[0].stripeKb: is not a stripe size of the level"},
      {[](json &E) { E["arrays"][0]["volumes"][0]["blocks"] = 2 * kDisk; },
       "arrays[0].volumes[0]: is larger than the free space of its disks"},
      {[](json &E) { E["disks"][0]["number"] = 0xFFFFFFFFu; },
       "disks[0].number: is the tool's mark of a missing disk"},
  };
  for (const Case &C : Cases) {
    json Engine = SixDisks();
    C.Edit(Engine);
    try {
      EngineFromJson(Engine);
      ADD_FAILURE() << "accepted: " << C.Message;
    } catch (const common::ScenarioError &Error) {
      EXPECT_EQ(std::string(Error.what()), C.Message);
    }
  }
}

TEST(IntelFamily, AnswersOnlyTheInstalledToolNames) {
  auto Family = MakeFamily();
  json First = SixDisks();
  First["tool"] = "RCfgSata_V55.efi";
  Family->AddAdapter(First);
  json Second = {{"variant", "vroc-ssata"}, {"disks", {Disk(9, "non-raid")}}};
  Family->AddAdapter(Second);
  EXPECT_EQ(Family->ToolNames(),
            (std::vector<std::string>{"rcfgsata.efi", "rcfgsata_v55.efi"}));
  json Clash = {{"disks", {Disk(9, "non-raid")}}};
  EXPECT_THROW(Family->AddAdapter(Clash), common::ScenarioError);
}

class RcfgChangeTest : public ::testing::Test {
 protected:
  RcfgChangeTest() { Server.Add(EngineFromJson(SixDisks())); }
  json State() const { return EngineToJson(Server.All()[0]); }
  Engines Server;
};

TEST_F(RcfgChangeTest, RefusalsNameTheRealReasonAndChangeNothing) {
  const json Before = State();
  struct Case {
    std::string Command;
    std::string Verdict;
  } Cases[] = {
      {"RCfgSata.efi /Y /C:V /SS:64 /L:5 /DS:2 3", "ERROR: Too few disks for the selected RAID level."},
      {"RCfgSata.efi /Y /C:V /L:1 /DS:2 3 4", "ERROR: Too few disks for the selected RAID level."},
      {"RCfgSata.efi /Y /C:OS /SS:64 /L:0 /DS:2 3", "ERROR: Volume name already in use."},
      {"RCfgSata.efi /Y /C:V /SS:64 /L:0 /DS:2 6", "ERROR: Disk 6 is not available."},
      {"RCfgSata.efi /Y /C:V /SS:64 /L:0 /DS:2 2", "ERROR: Disk 2 is not available."},
      {"RCfgSata.efi /Y /C:V /SS:64 /L:0 /DS:2 9", "ERROR: Disk 9 is not available."},
      {"RCfgSata.efi /Y /C:V /SS:64 /L:0 /S:3000 /DS:2 3",
       "ERROR: Requested size exceeds the free space of the disks."},
      {"RCfgSata.efi /Y /C:V /SS:64 /L:1 /DS:2 3", "ERROR: Invalid strip size."},
      {"RCfgSata.efi /Y /C:V /L:6 /DS:2 3 4", "ERROR: Invalid RAID level."},
      {"RCfgSata.efi /Y /C:V /L:1 /DS:0 1", "ERROR: No free space left on the selected disks."},
      {"RCfgSata.efi /Y /D:Nothing", "ERROR: Volume Nothing not found."},
      {"RCfgSata.efi /Y /X /DS:0", "ERROR: Disk 0 is a member of a volume."},
      {"RCfgSata.efi /Y /SP /DS:0", "ERROR: Disk 0 is not available."},
      {"RCfgSata.efi /D:OS", "ERROR: This operation requires /Y."},
      {"RCfgSata.efi /Q", "ERROR: Invalid command line option /Q."},
      {"RCfgSata.efi /Y /X /SP /DS:2", "ERROR: Invalid command line."},
  };
  for (const Case &C : Cases) {
    EXPECT_EQ(Verdict(Server, C.Command), C.Verdict) << C.Command;
    EXPECT_EQ(State(), Before) << C.Command;
  }
}

TEST_F(RcfgChangeTest, VolumesTakeTheirBlocksFromEachMember) {
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /C:R5 /SS:64 /L:5 /S:300 /DS:2 3 4"),
            "Creating Volume....Successfully created volume");
  const Array &Made = Server.All()[0].Arrays[1];
  // 300 GiB over two data disks: 150 GiB on each of the three.
  EXPECT_EQ(Made.Volumes[0].Blocks, 300ULL << 21);
  EXPECT_EQ(Engines::FreePerDisk(Server.All()[0], Made), kDisk - (150ULL << 21));
  // The second volume takes what is left; a third has no room.
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /C:R5b /SS:64 /L:5 /DS:2 3 4 "),
            "Creating Volume....Successfully created volume");
  EXPECT_EQ(Engines::FreePerDisk(Server.All()[0], Server.All()[0].Arrays[1]), 0u);
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /C:R5c /SS:64 /L:5 /DS:2 3 4"),
            "ERROR: The array already holds two volumes.");
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /D:R5"),
            "Deleting  Volume...Successfully deleted volume");
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /D:R5b"),
            "Deleting  Volume...Successfully deleted volume");
  EXPECT_EQ(State(), EngineToJson(EngineFromJson(SixDisks())));
}

TEST_F(RcfgChangeTest, SpareAndNonRaid) {
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /SP /DS:2"),
            "Marking selected disks as spares...Completed");
  EXPECT_EQ(Verdict(Server, "RCfgSata.efi /Y /X /DS:6"),
            "Removing MetaData from selected disks...Completed");
  json Expected = EngineToJson(EngineFromJson(SixDisks()));
  Expected["disks"][2]["state"] = "spare";
  Expected["disks"][6]["state"] = "non-raid";
  EXPECT_EQ(State(), Expected);
}

// Every field the module reads stands at its offset from its header line
// (docs/intel-report-layout.md), in both layouts.
TEST(RcfgReport, FieldsStandAtTheirOffsets) {
  for (const char *Variant : {"rste-sata", "vroc-sata"}) {
    SCOPED_TRACE(Variant);
    json Content = SixDisks();
    Content["variant"] = Variant;
    Content["disks"].push_back(Disk(7, "member"));
    Content["disks"].push_back(Disk(8, "missing"));
    Content["arrays"].push_back({{"disks", {7, 8}},
                                 {"volumes", {{{"name", "M"}, {"status", "Degraded"}}}}});
    Engines Server;
    Server.Add(EngineFromJson(Content));
    const bool Vroc = std::string(Variant) != "rste-sata";
    const std::vector<std::string> Info = Lines(InfoReport(Server));
    size_t Volumes = 0, Disks = 0, Arrays = 0;
    for (size_t I = 0; I < Info.size(); I++) {
      const std::string &L = Info[I];
      if (L.rfind("Array ", 0) == 0) {
        Arrays++;
        EXPECT_EQ(Info[I + 2].rfind(Vroc ? " Size: TotalGB: " : " Size: TotalMB: ", 0), 0u);
      } else if (L.rfind("Volume ", 0) == 0) {
        Volumes++;
        EXPECT_EQ(Info[I + 1].rfind(" Name: ", 0), 0u);
        EXPECT_EQ(Info[I + 2].rfind(" RaidLevel:1 ", 0), 0u);
        EXPECT_NE(Info[I + 2].find(" StripeSize:N/A"), std::string::npos);
        EXPECT_EQ(Info[I + 3].rfind(" NumBlocks: ", 0), 0u);
        EXPECT_NE(Info[I + 4].find(" ArrayId:"), std::string::npos);
      } else if (L.rfind("Disk ", 0) == 0) {
        Disks++;
        EXPECT_EQ(Info[I + 1].rfind(" Model: ", 0), 0u);
        EXPECT_EQ(Info[I + 3].rfind(Vroc ? " RawBlks:" : " TotalBlks:", 0), 0u);
        EXPECT_EQ(Info[I + 4].rfind(" Id:", 0), 0u);
        EXPECT_EQ(Info[I + 7].rfind(" Usage:", 0), 0u);
        EXPECT_EQ(Info[I + 8], " Block Size: 512");
      }
    }
    EXPECT_EQ(Arrays, 2u);
    EXPECT_EQ(Volumes, 2u);
    EXPECT_EQ(Disks, 9u);
    const std::string Text = InfoReport(Server);
    EXPECT_NE(Text.find(" Id:FFFFFFFF (Missing Disk)\r\n"), std::string::npos);
    const std::vector<std::string> Status = Lines(StatusReport(Server));
    size_t Names = 0;
    for (size_t I = 0; I < Status.size(); I++) {
      if (Status[I].rfind("Name:", 0) == 0) {
        Names++;
        EXPECT_EQ(Status[I + (Vroc ? 7 : 6)].rfind(" Status: ", 0), 0u);
      }
    }
    EXPECT_EQ(Names, 2u);
    EXPECT_EQ(Lines(VersionReport(Server)).back(),
              Vroc ? "Intel VROC SATA EFI Driver Version: 6.3.0.1005"
                   : "Intel RSTe SATA EFI Driver Version: 5.5.0.1028");
  }
}

}  // namespace
}  // namespace sim::intel
