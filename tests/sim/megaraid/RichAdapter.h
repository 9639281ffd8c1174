// A small rich MegaRAID configuration shared by the tests: two drive
// groups (RAID 1 and RAID 5) with three volumes, free space before and
// after volumes, a dedicated and a global hot spare, a JBOD drive, a
// foreign unconfigured good drive, a plain unconfigured good drive and an
// unconfigured bad one.
#pragma once

#include <string>

namespace sim::megaraid::test {

inline constexpr const char *kRichAdapterJson = R"({
  "productName": "AVAGO MegaRAID SAS 9361-8i",
  "serialNumber": "SK72938411",
  "fwPackageBuild": "24.21.0-0148",
  "pci": {"bus": 3, "device": 0, "function": 0,
          "vendorId": 4096, "deviceId": 93, "subVendorId": 4096, "subDeviceId": 37729},
  "drives": [
    {"address": "252:0", "did": 10, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:1", "did": 11, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:2", "did": 12, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:3", "did": 13, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:4", "did": 14, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:5", "did": 15, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:6", "did": 16, "model": "ST2000NM0023", "sizeMb": 1906394},
    {"address": "252:7", "did": 17, "model": "MZ7LH480HAHQ", "interface": "SATA",
     "medium": "SSD", "sizeMb": 457862, "state": "JBOD"},
    {"address": "252:8", "did": 18, "model": "MZ7LH480HAHQ", "interface": "SATA",
     "medium": "SSD", "sizeMb": 457862, "foreign": true},
    {"address": "252:9", "did": 19, "model": "ST1000NM0023", "sizeMb": 953344},
    {"address": "252:10", "did": 20, "model": "ST1000NM0023", "sizeMb": 953344,
     "state": "UBad"},
    {"address": "252:11", "did": 21, "model": "ST1000NM0023", "sizeMb": 953344,
     "state": "GHS"}
  ],
  "driveGroups": [
    {"raidLevel": 1, "members": ["252:0", "252:1"],
     "virtualDrives": [
       {"number": 0, "name": "os", "sizeMb": 102400, "writePolicy": "wt",
        "ioPolicy": "cached", "diskCache": "off", "stripKb": 64}
     ]},
    {"raidLevel": 5, "members": ["252:2", "252:3", "252:4"],
     "dedicatedSpares": ["252:5"],
     "virtualDrives": [
       {"number": 1, "name": "data", "offsetMb": 51200, "sizeMb": 512000,
        "readPolicy": "nora", "writePolicy": "awb", "diskCache": "on",
        "stripKb": 1024},
       {"number": 2, "name": "logs", "offsetMb": 665600, "sizeMb": 204800}
     ]}
  ]
})";

}  // namespace sim::megaraid::test
