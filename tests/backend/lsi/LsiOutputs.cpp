#include "LsiOutputs.h"

namespace lsi_test {

const char *const kRichSummary = R"(CLI Version = 007.1705.0000.0000 Mar 31, 2021
Operating system = UEFI
Controller = 0
Status = Success
Description = None

Product Name = MegaRAID 9460-8i
Serial Number = SK01234567
SAS Address =  500605b00000abcd
PCI Address = 00:3b:00:00
FW Package Build = 51.14.0-3900
FW Version = 5.140.00-3319
Bus Number = 59
Device Number = 0
Function Number = 0
Drive Groups = 2

TOPOLOGY :
========

-----------------------------------------------------------------------------
DG Arr Row EID:Slot DID Type  State BT       Size PDC  PI SED DS3  FSpace TR
-----------------------------------------------------------------------------
 0 -   -   -        -   RAID5 Optl  N    1.089 TB dflt N  N   dflt Y      N
 0 0   -   -        -   RAID5 Optl  N    1.089 TB dflt N  N   dflt Y      N
 0 0   0   252:0    10  DRIVE Onln  N  558.406 GB dflt N  N   dflt -      N
 0 0   1   252:1    11  DRIVE Onln  N  558.406 GB dflt N  N   dflt -      N
 0 0   2   252:2    12  DRIVE Onln  N  558.406 GB dflt N  N   dflt -      N
 0 -   -   252:3    13  DRIVE DHS   -  558.406 GB dflt N  N   dflt -      N
 1 -   -   -        -   RAID10 Dgrd N  744.687 GB dflt N  N   dflt Y      N
 1 0   -   -        -   RAID1 Dgrd  N  372.343 GB dflt N  N   dflt Y      N
 1 0   0   253:0    20  DRIVE Onln  N  372.343 GB dflt N  N   dflt -      N
 1 0   1   253:1    21  DRIVE Rbld  Y  372.343 GB dflt N  N   dflt -      N
 1 1   -   -        -   RAID1 Dgrd  N  372.343 GB dflt N  N   dflt Y      N
 1 1   0   253:2    22  DRIVE Offln N  372.343 GB dflt N  N   dflt -      N
 1 1   1   253:3    23  DRIVE Cpybck N 372.343 GB dflt N  N   dflt -      N
-----------------------------------------------------------------------------

DG=Disk Group Index|Arr=Array Index|Row=Row Index|EID=Enclosure Device ID
DID=Device ID|Type=Drive Type|Onln=Online|Rbld=Rebuild|Dgrd=Degraded

Virtual Drives = 3

VD LIST :
=======

----------------------------------------------------------------------
DG/VD TYPE   State Access Consist Cache Cac sCC       Size Name
----------------------------------------------------------------------
0/0   RAID5  Optl  RW     Yes     RWBD  -   OFF 200.000 GB Boot Disk
0/1   RAID5  Dgrd  RW     Yes     NRWTC -   OFF 512.500 MB data
1/2   RAID10 Pdgd  RW     No      RAWBC -   OFF 100.000 GB
----------------------------------------------------------------------

Cac=CacheCade|Rec=Recovery|OfLn=OffLine|Pdgd=Partially Degraded|Dgrd=Degraded

Physical Drives = 18

PD LIST :
=======

-------------------------------------------------------------------------
EID:Slt DID State DG       Size Intf Med SED PI SeSz Model            Sp
-------------------------------------------------------------------------
252:0    10 Onln   0 558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:1    11 Onln   0 558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:2    12 Onln   0 558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:3    13 DHS    0 558.406 GB SAS  HDD N   N  512B AL13SEB600       U
253:0    20 Onln   1 372.343 GB SAS  SSD N   N  512B PX05SMB040       U
253:1    21 Rbld   1 372.343 GB SAS  SSD N   N  512B PX05SMB040       U
253:2    22 Offln  1 372.343 GB SAS  SSD N   N  512B PX05SMB040       U
253:3    23 Cpybck 1 372.343 GB SAS  SSD N   N  512B PX05SMB040       U
252:4    30 UGood  -   1.818 TB SATA HDD N   N  512B ST2000NM0055     U
252:5    31 UBad   -   1.818 TB SATA SSD N   N  512B INTEL SSDSC2KB019T8 U
252:6    32 UBUnsp -  931.000 GB NVMe SSD N   N  512B Samsung PM983     U
252:7    33 Onln   -  931.000 GB PCIe SSD N   N  512B Micron 9300       U
252:8    34 JBOD   -  931.000 GB SAS  SSD N   N  512B PX05SMB080       U
252:9    35 GHS    -  558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:10   36 UGood  F  558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:11   37 UBad   F  558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:12   38 Cpybck F  558.406 GB SAS  HDD N   N  512B AL13SEB600       U
252:13   39 Msng   -  100.000 MB SAS  TAPE N  N  512B ULTRIUM-HH8     U
-------------------------------------------------------------------------

EID=Enclosure Device ID|Slt=Slot No.|DID=Device ID|DG=DriveGroup
DHS=Dedicated Hot Spare|UGood=Unconfigured Good|GHS=Global Hotspare
)";

const char *const kRichFreeSpace = R"(CLI Version = 007.1705.0000.0000 Mar 31, 2021
Operating system = UEFI
Controller = 0
Status = Success
Description = None


FREE SPACE DETAILS :
==================

-------------------------------
ID DG AftrVD       Size
-------------------------------
 0  0 1      100.000 GB
 1  0 -      512.000 MB
 2  0 0       64.000 KB
 3  1 2        1.000 TB
-------------------------------
)";

std::string ShowAll(const std::string &DgVd, const std::string &Cache,
                    const std::string &Strip, const std::string &DiskCache) {
  return "CLI Version = 007.1017.0000.0000 May 10, 2019\n"
         "Operating system = UEFI\n"
         "Controller = 0\n"
         "Status = Success\n"
         "Description = None\n"
         "\n"
         "\n"
         "/c0/v0 :\n"
         "======\n"
         "\n"
         "-------------------------------------------------------------\n"
         "DG/VD TYPE  State Access Consist Cache Cac sCC     Size Name\n"
         "-------------------------------------------------------------\n" +
         DgVd + "   RAID5 Optl  RW     No      " + Cache +
         "  -   ON  1.089 TB\n"
         "-------------------------------------------------------------\n"
         "\n"
         "VD0 Properties :\n"
         "==============\n"
         "Strip Size = " +
         Strip +
         "\n"
         "Number of Blocks = 2342125568\n"
         "Span Depth = 1\n"
         "Disk Cache Policy = " +
         DiskCache + "\nEncryption = None\n";
}

std::string SummaryAt(unsigned Bus, unsigned Device, unsigned Function) {
  return "Controller = 0\nStatus = Success\nDescription = None\n\n"
         "Product Name = MegaRAID 9460-8i\n"
         "Bus Number = " +
         std::to_string(Bus) + "\nDevice Number = " + std::to_string(Device) +
         "\nFunction Number = " + std::to_string(Function) +
         "\nDomain ID = 0\n";
}

std::string CtrlCount(unsigned Count) {
  return "CLI Version = 007.1705.0000.0000 Mar 31, 2021\n"
         "Operating system = UEFI\n"
         "Status Code = 0\n"
         "Status = Success\n"
         "Description = None\n"
         "\n"
         "Controller Count = " +
         std::to_string(Count) + "\n";
}

}  // namespace lsi_test
