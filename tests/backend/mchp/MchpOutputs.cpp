#include "MchpOutputs.h"

namespace mchp_test {

namespace {

const std::string kRuler(70, '-');
const std::string kSubRuler = "   " + std::string(56, '-');

std::string Heading(const std::string &Title) {
  return kRuler + "\n" + Title + "\n" + kRuler + "\n";
}

}  // namespace

std::string KeyLine(int Indent, const std::string &Key,
                    const std::string &Value) {
  std::string Line = std::string(Indent, ' ') + Key;
  if (Line.size() < 46) {
    Line.append(46 - Line.size(), ' ');
  }
  return Line + ": " + Value + "\n";
}

std::string ControllerSection(const std::string &Model,
                              const std::string &Serial,
                              const std::string &Firmware) {
  return "Controllers found: 1\n" + Heading("Controller information") +
         KeyLine(3, "Controller Status", "Optimal") +
         KeyLine(3, "Controller Mode", "RAID (Hide RAW)") +
         KeyLine(3, "Controller Model", Model) +
         KeyLine(3, "Controller Serial Number", Serial) +
         KeyLine(3, "Physical Slot", "6") + kSubRuler +
         "\n   Controller Version Information\n" + kSubRuler + "\n" +
         KeyLine(3, "Firmware", Firmware) + KeyLine(3, "Driver", "UEFI") +
         "\n";
}

std::string ArrayHeading() { return Heading("Array Information"); }

std::string ArrayBlock(uint32_t Number, const std::string &Total,
                       const std::string &Unused, uint32_t RaidLevel) {
  return "Array Number " + std::to_string(Number) + "\n" +
         KeyLine(3, "Name", "A") + KeyLine(3, "Total Size", Total) +
         KeyLine(3, "Unused Size", Unused) + kSubRuler +
         "\n   Array Logical Device Information\n" + kSubRuler + "\n" +
         KeyLine(3, "RAID level", std::to_string(RaidLevel)) + kSubRuler +
         "\n" +
         KeyLine(3, "Logical 0",
                 "Optimal (" + std::to_string(RaidLevel) + ", Data, 1 MB) x") +
         "\n";
}

std::string VolumeHeading() { return Heading("Logical device information"); }

std::string VolumeBlock(uint32_t Number, int Array, const std::string &Status,
                        const std::string &Size, const std::string &Name) {
  std::string Text = "Logical Device number " + std::to_string(Number) + "\n" +
                     KeyLine(3, "Logical Device name", Name);
  if (Array >= 0) {
    Text += KeyLine(3, "Array", std::to_string(Array));
  }
  return Text + KeyLine(3, "Status of Logical Device", Status) +
         KeyLine(3, "Size", Size) + KeyLine(3, "Full Stripe Size", "512 KB") +
         kSubRuler + "\n   Logical Device segment information\n" + kSubRuler +
         "\n" + KeyLine(3, "Group 0, Segment 0", "Present (1MB)") + "\n";
}

std::string DriveBlock(const DriveLines &Drive) {
  std::string Text = "      Device #" + std::to_string(Drive.Device) +
                     "\n         Device is a HardDrive\n" +
                     KeyLine(9, "State", Drive.State) +
                     KeyLine(9, "Block Size", "512 Bytes");
  if (Drive.Array >= 0) {
    Text += KeyLine(9, "Array", std::to_string(Drive.Array));
  }
  Text += KeyLine(9, "Reported Location", Drive.Location) +
          KeyLine(9, "Model", Drive.Model) +
          KeyLine(9, "Total Size", Drive.Size) +
          KeyLine(9, "Transfer Speed", Drive.Interface) +
          KeyLine(9, "SSD", Drive.Ssd ? "Yes" : "No");
  for (const std::string &Type : Drive.Configuration) {
    Text += KeyLine(9, "Drive Configuration Type", Type);
  }
  // The reader passes over sixteen lines after the SSD line.
  for (int Filler = 0; Filler < 18; Filler++) {
    Text += KeyLine(9, "Counter " + std::to_string(Filler), "0");
  }
  return Text + "\n";
}

std::string PhysicalHeading() { return Heading("Physical Device information"); }

std::string Channel(uint32_t Number) {
  return "   Channel #" + std::to_string(Number) + ":\n";
}

std::string Ending() {
  return Heading("maxCache information") +
         "   No maxCache Array found\n\n\nCommand completed successfully.\n";
}

std::string Getconfig(const std::string &Arrays, const std::string &Volumes,
                      const std::string &Drives) {
  return ControllerSection("Adaptec SmartRAID 3154-8i", "7A4620EC0F2",
                           "4.11[0]") +
         ArrayHeading() + Arrays + "\n" + VolumeHeading() + Volumes + "\n" +
         PhysicalHeading() + Drives + Ending();
}

std::string ListReport(const std::vector<std::pair<uint32_t, uint32_t>> &Rows) {
  std::string Text = "\nControllers found: " + std::to_string(Rows.size()) +
                     "\n" + Heading("Controller information") +
                     "   Controller ID             : Status, Slot Ctrl, Mode, "
                     "Name, SerialNumber, WWN\n" +
                     kRuler + "\n";
  for (const auto &[Number, Slot] : Rows) {
    std::string Key = "   Controller " + std::to_string(Number) + ":";
    Key.append(29 - Key.size(), ' ');
    Text += Key + ": Optimal, " + std::to_string(Slot) + " " +
            std::to_string(Number) +
            ", RAID (Hide RAW), Adaptec SmartRAID 3154-8i, SN, WWN\n";
  }
  return Text + "\nCommand completed successfully.\n";
}

}  // namespace mchp_test
