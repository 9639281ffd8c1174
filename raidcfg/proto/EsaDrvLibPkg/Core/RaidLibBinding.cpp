// Binding a vendor backend to each adapter, by PCI vendor id, and telling a
// controller's family from the signature its backend wrote.
#include "RaidBackends.h"
#include "RaidLibOperation.h"
#include "RaidLib.h"

namespace {

struct SignatureFamily {
  const CHAR8 *Signature;
  UINT32 Family;
};

constexpr SignatureFamily kSignatureFamilies[] = {
    {RAID_SIGNATURE_LSI, RAID_FAMILY_STORCLI},
    {RAID_SIGNATURE_M2, RAID_FAMILY_MARVELL},
    {RAID_SIGNATURE_RSTE, RAID_FAMILY_INTEL},
    {RAID_SIGNATURE_ARC, RAID_FAMILY_ARCCONF},
};

// TRUE when Signature holds Tag and then zeros. The signature is read up
// to its first zero or its 8 bytes, so a short C string works too.
[[nodiscard]] bool SignatureIs(const CHAR8 *Signature, const CHAR8 *Tag) {
  for (UINTN I = 0; I < RAID_SIGNATURE_SIZE; I++) {
    if (Signature[I] != Tag[I]) {
      return false;
    }
    if (Signature[I] == '\0') {
      return true;
    }
  }
  return Tag[RAID_SIGNATURE_SIZE] == '\0';
}

// A controller the binding applies to: matched, profiled, with a private
// record.
[[nodiscard]] bool IsBindable(const RAID_CONTROLLER *Controller) {
  return Controller->ToolType != RAID_TOOL_TYPE_UNMATCHED &&
         Controller->Capability != nullptr && Controller->Private != nullptr;
}

}  // namespace

// The backend table: all four families are enabled.
constinit const RAID_BACKEND_BINDING
    gRaidBackendBindings[RAID_BACKEND_BINDING_COUNT] = {
        {lsi::LsiBindBackend, RAID_VENDOR_ID_LSI, u"storcli.efi", RAID_SIGNATURE_LSI,
         TRUE},
        {mchp::MchpBindBackend, RAID_VENDOR_ID_MICROCHIP, u"arcconf.efi",
         RAID_SIGNATURE_ARC, TRUE},
        {m2::M2BindBackend, RAID_VENDOR_ID_MARVELL, u"mvsetup.efi",
         RAID_SIGNATURE_M2, TRUE},
        {rste::RsteBindBackend, RAID_VENDOR_ID_INTEL, u"rcfgsata.efi",
         RAID_SIGNATURE_RSTE, TRUE},
};

// Applies each enabled table row, in table order, to the controllers of its
// vendor.
VOID RaidLibBindBackends() {
  if (!IsListLive(&gControllerList)) {
    return;
  }
  for (const RAID_BACKEND_BINDING &Binding : gRaidBackendBindings) {
    if (!Binding.Enabled || Binding.Bind == nullptr) {
      continue;
    }
    for (RAID_CONTROLLER *Controller :
         uefi::ListOf<&RAID_CONTROLLER::Link>(gControllerList)) {
      if (IsBindable(Controller) &&
          Controller->Private->VendorId == Binding.VendorId) {
        Binding.Bind(&Controller->Private->Operations);
      }
    }
  }
}

// The family of a signature (8 bytes, or a shorter NUL-terminated string);
// RAID_FAMILY_UNKNOWN for one of no backend.
UINT32 RaidLibFamilyOfSignature(const CHAR8 *Signature) {
  if (Signature == nullptr) {
    return RAID_FAMILY_NONE;
  }
  for (const SignatureFamily &Entry : kSignatureFamilies) {
    if (SignatureIs(Signature, Entry.Signature)) {
      return Entry.Family;
    }
  }
  return RAID_FAMILY_UNKNOWN;
}

// The family of a controller's backend, read from its operation table.
UINT32 RaidLibControllerFamily(const RAID_CONTROLLER *Controller) {
  if (Controller == nullptr || Controller->Private == nullptr) {
    return RAID_FAMILY_NONE;
  }
  return RaidLibFamilyOfSignature(Controller->Private->Operations.Signature);
}
