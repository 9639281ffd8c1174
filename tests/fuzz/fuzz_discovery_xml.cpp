// Feeds arbitrary bytes as the module's two data files, pcidb.xml and
// raid.xml, through a whole InitializeRaid on a small emulated server: the
// files are read from the module's volume by the module's own reader and
// parsed by the emulator's expat-backed XML parser protocol. FinalizeRaid
// must then leave the pool as it found it and every file closed.
#include <Library/UefiBootServicesTableLib.h>
#include "EsaDrvMgr.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "FuzzMemoryVolume.h"
#include "emu/Emulator.h"

namespace {

// A Microchip and a MegaRAID adapter; the shell answers nothing, so the
// MegaRAID card search fails as on a server whose tool is missing.
struct World {
  World() {
    AddFunction(1, 0x9005, 0x028F, 0x9005, 0x0800);
    AddFunction(2, 0x1000, 0x0016, 0x1000, 0x9460);
    gST = Firmware.SystemTable();
    gBS = gST->BootServices;
    gRT = gST->RuntimeServices;
    gImageHandle = Firmware.CreateImageHandle(Volume.Handle());
  }

  void AddFunction(UINT8 Bus, UINT16 Vendor, UINT16 Device, UINT16 SubVendor,
                   UINT16 SubDevice) {
    emu::PciLocation Location;
    Location.Bus = Bus;
    emu::PciIdentity Identity;
    Identity.VendorId = Vendor;
    Identity.DeviceId = Device;
    Identity.SubVendorId = SubVendor;
    Identity.SubDeviceId = SubDevice;
    Identity.BaseClass = 0x01;
    Identity.SubClass = 0x04;
    Devices.push_back(
        std::make_unique<emu::PciDevice>(Firmware, Location, Identity));
  }

  emu::Firmware Firmware;
  emu::SetupProtocol Setup{Firmware};
  emu::XmlParser Xml{Firmware};
  emu::ShellCommand Shell{Firmware};
  // The input's two parts are the files, read in place: no file system
  // work per input.
  fuzz_model::MemoryVolume Volume{Firmware};
  std::vector<std::unique_ptr<emu::PciDevice>> Devices;
};

World &TheWorld() {
  static World *Instance = new World();
  return *Instance;
}

}  // namespace

// The input is both files: pcidb.xml up to the first NUL, raid.xml after it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *Data, size_t Size) {
  World &W = TheWorld();
  const std::string_view Input(reinterpret_cast<const char *>(Data), Size);
  const size_t Split = Input.find('\0');
  W.Volume.Set("pcidb.xml", Input.substr(0, Split));
  W.Volume.Set("raid.xml", Split == std::string_view::npos ? std::string_view()
                                                      : Input.substr(Split + 1));
  const size_t Before = W.Firmware.Memory().OutstandingCount();
  UINT32 ErrorCode = 0;
  (void)InitializeRaid(&ErrorCode);
  FinalizeRaid(&ErrorCode);
  W.Setup.ClearTrace();
  if (W.Firmware.Memory().OutstandingCount() != Before ||
      W.Volume.OpenCount() != 0 ||
      !W.Firmware.Memory().EventReport().empty()) {
    std::fprintf(stderr, "%s%s", W.Firmware.Memory().LeakReport().c_str(),
                 W.Firmware.Memory().EventReport().c_str());
    std::abort();
  }
  return 0;
}
