// The virtual adapter families this build simulates.
#include "native/AdapterFamily.h"

namespace host {

const FamilyRegistry &FamilyRegistry::Builtin() {
  static const FamilyRegistry kRegistry = [] {
    FamilyRegistry Registry;
    return Registry;
  }();
  return kRegistry;
}

}  // namespace host
