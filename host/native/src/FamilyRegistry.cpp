// The virtual adapter families this build simulates.
#include "native/AdapterFamily.h"
#include "native/MegaRaidFamily.h"

namespace host {

const FamilyRegistry &FamilyRegistry::Builtin() {
  static const FamilyRegistry kRegistry = [] {
    FamilyRegistry Registry;
    Registry.Register("megaraid", MakeMegaRaidFamily);
    return Registry;
  }();
  return kRegistry;
}

}  // namespace host
