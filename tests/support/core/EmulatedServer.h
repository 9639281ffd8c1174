// The emulated server both test worlds stand on: firmware with the global
// table pointers set, a temporary directory served as the boot volume, the
// host's XML parser and shell-command protocols, an optional setup
// protocol, and PCI functions. The tear-down releases them in reverse and
// clears the globals.
#pragma once

#include <Library/UefiBootServicesTableLib.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "emu/Emulator.h"

namespace core_test {

struct PciFunction {
  UINT8 Bus;
  UINT8 Device;
  UINT8 Function;
  UINT16 VendorId;
  UINT16 DeviceId;
  UINT16 SubVendorId;
  UINT16 SubDeviceId;
  UINT8 SubClass = 0x04;  // RAID
  UINT8 ProgIf = 0x00;
  UINT8 BaseClass = 0x01;  // mass storage
};

class EmulatedServer {
 public:
  // DirectoryPrefix names the temporary directory ("/tmp/<prefix>-XXXXXX").
  EmulatedServer(const std::string &DirectoryPrefix, bool WithSetup);
  virtual ~EmulatedServer();

  // A PCI function with a PCI I/O protocol on its own handle.
  VOID AddFunction(const PciFunction &Function);
  VOID WriteFile(const std::string &Name, const std::string &Text);

  // Trace lines without their CR LF; none without a setup protocol.
  std::vector<std::string> Trace() const;
  bool TraceHas(const std::string &Line) const;

  std::unique_ptr<emu::Firmware> Firmware_;
  std::unique_ptr<emu::SetupProtocol> Setup_;
  std::unique_ptr<emu::XmlParser> Xml_;
  std::unique_ptr<emu::ShellCommand> Shell_;
  std::unique_ptr<emu::HostVolume> Volume_;
  std::vector<std::unique_ptr<emu::PciDevice>> Devices_;
  std::filesystem::path Directory_;
};

}  // namespace core_test
