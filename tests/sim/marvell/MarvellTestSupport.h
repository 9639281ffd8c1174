// The virtual M.2 tools on a test adapter: two SATA drives and, for the
// rich adapter, a RAID 1 volume over them with drive 1 rebuilding.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "sim/marvell/MarvellJson.h"
#include "sim/marvell/Mvcli.h"

namespace sim::marvell::test {

inline nlohmann::json TwoReadyDrives() {
  return nlohmann::json::parse(R"({
    "serialNumber": "M2SN4C1A07", "slotNumber": 1,
    "drives": [
      {"id": 0, "size": "234431064 K", "model": "MTFDDAV240TDU"},
      {"id": 1, "size": "234441064 K", "model": "MTFDDAV240TDU"}
    ]})");
}

inline nlohmann::json Mirrored() {
  nlohmann::json Adapter = TwoReadyDrives();
  Adapter["drives"][0]["status"] = "online";
  Adapter["drives"][1]["status"] = "rebuild";
  Adapter["volumes"] = nlohmann::json::parse(R"([
    {"id": 0, "name": "VD_R1_1", "level": 1, "status": "degraded",
     "stripeSize": 64, "size": "457798 M", "drives": [0, 1]}])");
  return Adapter;
}

inline Mvcli ToolWith(const nlohmann::json &Adapter) {
  Mvcli Tool;
  Tool.AddAdapter(AdapterFromJson(Adapter));
  return Tool;
}

inline nlohmann::json StateOf(const Mvcli &Tool, size_t Index = 0) {
  return AdapterToJson(Tool.Adapters().at(Index));
}

}  // namespace sim::marvell::test
