#include "M2Outputs.h"

namespace m2_test {

namespace {
// The tool's key columns: the adapter report's and the others'.
constexpr size_t kHbaWidth = 37;
constexpr size_t kBlockWidth = 21;
}  // namespace

std::string KeyLine(const std::string &Key, const std::string &Value,
                    size_t Width) {
  std::string Line = Key + ":";
  if (Line.size() < Width) {
    Line.append(Width - Line.size(), ' ');
  }
  return Line + Value + "\n";
}

std::string HbaReport(const std::string &MaxDisks, const std::string &Slot) {
  return KeyLine("Adapter ID", "0", kHbaWidth) +
         KeyLine("Product", "1b4b-9230", kHbaWidth) +
         KeyLine("slot number", Slot, kHbaWidth) +
         KeyLine("Firmware version", "2.3.10.1088", kHbaWidth) +
         KeyLine("Supported RAID mode", "RAID0 RAID1", kHbaWidth) +
         KeyLine("Maximum supported disk", MaxDisks, kHbaWidth) +
         KeyLine("Stripe size supported", "32K 64K", kHbaWidth) + "\n" +
         KeyLine("SerialNo", "M2SN0001", kHbaWidth) + "\n";
}

std::string VdReport(const std::vector<VolumeBlock> &Volumes,
                     const std::string &Total) {
  std::string Text = "Virtual Disk Information\n-------------------------\n";
  for (const VolumeBlock &V : Volumes) {
    Text += KeyLine("id", V.Id, kBlockWidth) +
            KeyLine("name", V.Name, kBlockWidth) +
            KeyLine("status", "functional", kBlockWidth) +
            KeyLine("Stripe size", V.Stripe, kBlockWidth) +
            KeyLine("RAID mode", V.Mode, kBlockWidth) +
            KeyLine("Cache mode", "Not Support", kBlockWidth) +
            KeyLine("size", V.Size, kBlockWidth) +
            KeyLine("# of PDs", V.Members, kBlockWidth) +
            KeyLine("PD RAID setup", "0 1", kBlockWidth) +
            KeyLine("VD status", V.Status, kBlockWidth) + "\n";
  }
  return Text + KeyLine("Total # of VD", Total, kBlockWidth) + "\n";
}

std::string PdReport(const std::vector<DriveBlock> &Drives,
                     const std::string &Total) {
  std::string Text;
  for (const DriveBlock &D : Drives) {
    Text += KeyLine("Adapter", "0", kBlockWidth) +
            KeyLine("PD ID", D.Id, kBlockWidth) +
            KeyLine("Type", D.Type, kBlockWidth) +
            KeyLine("Size", D.Size, kBlockWidth) +
            KeyLine("model", D.Model, kBlockWidth) +
            KeyLine("PD status", D.Status, kBlockWidth) + "\n";
  }
  return Text + KeyLine("Total # of PD", Total, kBlockWidth) + "\n";
}

const VolumeBlock kMirror = {"0",     "VD_R1_1",  "optimal", "64",
                             "RAID1", "457798 M", "2"};
const DriveBlock kReadyDrive0 = {"0", "SATA PD", "234431064 K",
                                 "MTFDDAV240TDU", "ready"};
const DriveBlock kReadyDrive1 = {"1", "SATA PD", "234431064 K",
                                 "MTFDDAV240TDU", "ready"};
const DriveBlock kOnlineDrive0 = {"0", "SATA PD", "234431064 K",
                                  "MTFDDAV240TDU", "online"};
const DriveBlock kRebuildDrive1 = {"1", "SATA PD", "234431064 K",
                                   "MTFDDAV240TDU", "rebuild"};

}  // namespace m2_test
