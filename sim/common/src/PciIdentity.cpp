// The "pci" object of an adapter's JSON.
#include "sim/common/PciIdentity.h"

#include "sim/common/JsonFields.h"

namespace sim::common {

PciIdentity PciField(const nlohmann::json &Adapter, const std::string &Where,
                     const PciIdentity &Default) {
  const std::string Place = KeyPlace(Where, kPciKey);
  const nlohmann::json &Pci = ObjectOr(Adapter, kPciKey, Where);
  PciIdentity Id;
  Id.Bus = FieldOr(Pci, "bus", Place, Default.Bus);
  Id.Device = FieldOr(Pci, "device", Place, Default.Device);
  Id.Function = FieldOr(Pci, "function", Place, Default.Function);
  Id.VendorId = FieldOr(Pci, "vendorId", Place, Default.VendorId);
  Id.DeviceId = FieldOr(Pci, "deviceId", Place, Default.DeviceId);
  Id.SubVendorId = FieldOr(Pci, "subVendorId", Place, Default.SubVendorId);
  Id.SubDeviceId = FieldOr(Pci, "subDeviceId", Place, Default.SubDeviceId);
  return Id;
}

nlohmann::json PciToJson(const PciIdentity &Pci) {
  return {{"bus", Pci.Bus},
          {"device", Pci.Device},
          {"function", Pci.Function},
          {"vendorId", Pci.VendorId},
          {"deviceId", Pci.DeviceId},
          {"subVendorId", Pci.SubVendorId},
          {"subDeviceId", Pci.SubDeviceId}};
}

}  // namespace sim::common
