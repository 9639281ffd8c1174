#include "EmulatedServer.h"

#include <fstream>

namespace core_test {

namespace {

// The firmware's line end is CR LF; the tests compare lines without it.
std::string WithoutLineEnd(std::string Text) {
  while (!Text.empty() && (Text.back() == '\n' || Text.back() == '\r')) {
    Text.pop_back();
  }
  return Text;
}

}  // namespace

EmulatedServer::EmulatedServer(const std::string &DirectoryPrefix,
                               bool WithSetup)
    : Firmware_(std::make_unique<emu::Firmware>()) {
  std::string Template = "/tmp/" + DirectoryPrefix + "-XXXXXX";
  Directory_ = mkdtemp(Template.data());
  // Test code allocates from the pool before any module code runs.
  gST = Firmware_->SystemTable();
  gBS = gST->BootServices;
  gRT = gST->RuntimeServices;
  if (WithSetup) {
    Setup_ = std::make_unique<emu::SetupProtocol>(*Firmware_);
  }
  Xml_ = std::make_unique<emu::XmlParser>(*Firmware_);
  Shell_ = std::make_unique<emu::ShellCommand>(*Firmware_);
  Volume_ = std::make_unique<emu::HostVolume>(*Firmware_, Directory_);
}

EmulatedServer::~EmulatedServer() {
  Devices_.clear();
  Volume_.reset();
  Shell_.reset();
  Xml_.reset();
  Setup_.reset();
  Firmware_.reset();
  gST = nullptr;
  gBS = nullptr;
  gRT = nullptr;
  gImageHandle = nullptr;
  std::filesystem::remove_all(Directory_);
}

VOID EmulatedServer::AddFunction(const PciFunction &Function) {
  emu::PciLocation Location;
  Location.Bus = Function.Bus;
  Location.Device = Function.Device;
  Location.Function = Function.Function;
  emu::PciIdentity Identity;
  Identity.VendorId = Function.VendorId;
  Identity.DeviceId = Function.DeviceId;
  Identity.SubVendorId = Function.SubVendorId;
  Identity.SubDeviceId = Function.SubDeviceId;
  Identity.BaseClass = Function.BaseClass;
  Identity.SubClass = Function.SubClass;
  Identity.ProgInterface = Function.ProgIf;
  Devices_.push_back(
      std::make_unique<emu::PciDevice>(*Firmware_, Location, Identity));
}

VOID EmulatedServer::WriteFile(const std::string &Name,
                               const std::string &Text) {
  std::ofstream(Directory_ / Name, std::ios::binary) << Text;
}

std::vector<std::string> EmulatedServer::Trace() const {
  std::vector<std::string> Lines;
  if (Setup_ == nullptr) {
    return Lines;
  }
  for (const std::string &Text : Setup_->TraceTexts()) {
    Lines.push_back(WithoutLineEnd(Text));
  }
  return Lines;
}

bool EmulatedServer::TraceHas(const std::string &Line) const {
  for (const std::string &Text : Trace()) {
    if (Text == Line) {
      return true;
    }
  }
  return false;
}

}  // namespace core_test
