// storcli's header, section, failure and detailed-status blocks.
#include "sim/megaraid/StorcliReport.h"

#include <cstdio>

namespace sim::megaraid {

using common::TextTable;

const std::vector<std::string> kTopologyLegend = {
    "DG=Disk Group Index|Arr=Array Index|Row=Row Index|EID=Enclosure Device ID",
    "DID=Device ID|Type=Drive Type|Onln=Online|Rbld=Rebuild|Dgrd=Degraded",
    "Pdgd=Partially degraded|Offln=Offline|BT=Background Task Active",
    "PDC=PD Cache|PI=Protection Info|SED=Self Encrypting Drive|Frgn=Foreign",
    "DS3=Dimmer Switch 3|dflt=Default|Msng=Missing|FSpace=Free Space Present",
    "TR=Transport Ready",
};

const std::vector<std::string> kVolumeLegend = {
    "Cac=CacheCade|Rec=Recovery|OfLn=OffLine|Pdgd=Partially Degraded|Dgrd=Degraded",
    "Optl=Optimal|RO=Read Only|RW=Read Write|HD=Hidden|TRANS=TransportReady|B=Blocked|",
    "Consist=Consistent|R=Read Ahead Always|NR=No Read Ahead|WB=WriteBack|",
    "AWB=Always WriteBack|WT=WriteThrough|C=Cached IO|D=Direct IO|sCC=Scheduled",
    "Check Consistency",
};

const std::vector<std::string> kDriveLegend = {
    "EID=Enclosure Device ID|Slt=Slot No.|DID=Device ID|DG=DriveGroup",
    "DHS=Dedicated Hot Spare|UGood=Unconfigured Good|GHS=Global Hotspare",
    "UBad=Unconfigured Bad|Onln=Online|Offln=Offline|Intf=Interface",
    "Med=Media Type|SED=Self Encryptive Drive|PI=Protection Info",
    "SeSz=Sector Size|Sp=Spun|U=Up|D=Down|T=Transition|F=Foreign",
    "UGUnsp=Unsupported|UGShld=UnConfigured shielded|HSPShld=Hotspare shielded",
    "CFShld=Configured shielded|Cpybck=CopyBack|CBShld=Copyback Shielded",
    "UBUnsp=UBad Unsupported",
};

void Report::Section(const std::string &Title) {
  Line(Title + " :");
  Ruler('=', Title.size());
}

void Report::Preamble(std::optional<uint32_t> Controller, bool Success) {
  Pair("CLI Version", Tool_.CliVersion);
  Pair("Operating system", Tool_.OperatingSystem);
  if (Controller.has_value()) {
    Pair("Controller", std::to_string(*Controller));
  }
  Pair("Status", Success ? "Success" : "Failure");
}

void Report::Header(std::optional<uint32_t> Controller, bool Success,
                    const std::string &Description) {
  Preamble(Controller, Success);
  Pair("Description", Description);
}

void Report::Failure(std::optional<uint32_t> Controller, const Result &Outcome,
                     const std::string &Description) {
  if (Outcome.FirmwareStatus == 0) {
    Header(Controller, false, Description);
    return;
  }
  Preamble(Controller, false);
  const std::string Code = std::to_string(Outcome.FirmwareStatus);
  char Hex[16];
  std::snprintf(Hex, sizeof(Hex), "0x%02X", Outcome.FirmwareStatus);
  Line("ErrorCode " + Code + " (" + Hex + ")");
  Pair("ErrorCode " + Code + " Message", fw::StatusText(Outcome.FirmwareStatus));
  Pair("ErrorCode " + Code + " Description", Description);
}

void Report::DetailedStatus(
    const std::vector<std::pair<std::string, Result>> &Rows) {
  Line();
  Section("Detailed Status");
  Line();
  TextTable Table({{"Drive"}, {"Status"}, {"ErrCd", true}, {"ErrMsg"}});
  for (const auto &[Drive, Outcome] : Rows) {
    Table.AddRow({Drive, Outcome.Ok ? "Success" : "Failure",
                  std::to_string(Outcome.FirmwareStatus),
                  Outcome.Ok ? "-" : Outcome.Message});
  }
  this->Table(Table);
}

}  // namespace sim::megaraid
