// The adapters the virtual arcconf's tests run on.
#pragma once

#include <nlohmann/json.hpp>

namespace microchip_sim_test {

// A SmartRAID in slot 6: an array of RAID 5 with two logical drives, a
// dedicated spare, two ready SSDs on channel 1 and a drive exposed to the
// OS on channel 2.
inline nlohmann::json RichAdapter() {
  return nlohmann::json::parse(R"({
    "pci": {"bus": 175, "device": 0, "function": 0, "vendorId": 36869,
            "deviceId": 655, "subVendorId": 36869, "subDeviceId": 2048},
    "slot": 6,
    "devices": [
      {"address": "0:0", "sizeMb": 1143455}, {"address": "0:1", "sizeMb": 1143455},
      {"address": "0:2", "sizeMb": 1143455}, {"address": "0:3", "sizeMb": 1143455},
      {"address": "1:4", "sizeMb": 915715, "interface": "SATA", "medium": "SSD"},
      {"address": "1:5", "sizeMb": 915715, "interface": "SATA", "medium": "SSD"},
      {"address": "2:6", "sizeMb": 953344, "state": "Raw"}
    ],
    "arrays": [
      {"raidLevel": 5, "members": ["0:0", "0:1", "0:2"], "spares": ["0:3"],
       "logicalDrives": [{"number": 0, "name": "os", "sizeMb": 204800},
                         {"number": 1, "name": "data", "sizeMb": 1024000}]}
    ]
  })");
}

}  // namespace microchip_sim_test
