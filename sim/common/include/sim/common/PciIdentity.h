// The PCI identity of a virtual adapter, as the scenario's PCI function
// gives it: where it sits (bus, device, function) and what it is (vendor,
// device, subsystem vendor and subsystem device ids). Tools print it and
// number their adapters by location.
#pragma once

#include <cstdint>
#include <string>
#include <tuple>

#include <nlohmann/json.hpp>

namespace sim::common {

struct PciIdentity {
  uint8_t Bus = 0;
  uint8_t Device = 0;
  uint8_t Function = 0;
  uint16_t VendorId = 0;
  uint16_t DeviceId = 0;
  uint16_t SubVendorId = 0;
  uint16_t SubDeviceId = 0;

  // Bus, device and function, compared in that order.
  auto Location() const { return std::tie(Bus, Device, Function); }
};

// The adapter JSON's key that holds it: {"bus", "device", "function",
// "vendorId", "deviceId", "subVendorId", "subDeviceId"} as JSON numbers.
inline constexpr const char *kPciKey = "pci";

// Adapter[kPciKey]; what it leaves out keeps Default's value.
PciIdentity PciField(const nlohmann::json &Adapter, const std::string &Where,
                     const PciIdentity &Default);
nlohmann::json PciToJson(const PciIdentity &Pci);

}  // namespace sim::common
