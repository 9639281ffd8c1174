// The virtual M.2 adapter's changes and the error texts of its tools.
#include "sim/marvell/MarvellAdapter.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace sim::marvell {
namespace {

// The stripe sizes the adapter offers ("Stripe size supported: 32K 64K").
constexpr uint32_t kStripeSizesKb[] = {32, 64};

bool Offers(uint32_t StripeKb) {
  return std::find(std::begin(kStripeSizesKb), std::end(kStripeSizesKb),
                   StripeKb) != std::end(kStripeSizesKb);
}

// The smallest member's capacity in KB.
uint64_t SmallestKb(const Adapter &State, const std::vector<uint32_t> &Ids) {
  uint64_t Smallest = 0;
  for (uint32_t Id : Ids) {
    uint64_t Kb = SizeInKb(State.DriveWithId(Id)->Size).value_or(0);
    Smallest = (Smallest == 0 || Kb < Smallest) ? Kb : Smallest;
  }
  return Smallest;
}

uint32_t FreeVolumeId(const Adapter &State) {
  uint32_t Id = 0;
  while (std::any_of(State.Volumes.begin(), State.Volumes.end(),
                     [&](const Volume &V) { return V.Id == Id; })) {
    Id++;
  }
  return Id;
}

}  // namespace

const Drive *Adapter::DriveWithId(uint32_t Id) const {
  for (const Drive &D : Drives) {
    if (D.Id == Id) {
      return &D;
    }
  }
  return nullptr;
}

Drive *Adapter::DriveWithId(uint32_t Id) {
  return const_cast<Drive *>(std::as_const(*this).DriveWithId(Id));
}

Change Adapter::Create(uint32_t Level, const std::vector<uint32_t> &DriveIds,
                       const std::string &Name, uint32_t StripeKb) {
  if (Level != 0 && Level != 1) {
    return Change::Refused("Error: RAID level " + std::to_string(Level) +
                           " is not supported.");
  }
  if (DriveIds.size() < 2 || (Level == 1 && DriveIds.size() != 2)) {
    return Change::Refused("Error: RAID" + std::to_string(Level) +
                           " cannot be created with " +
                           std::to_string(DriveIds.size()) + " disk(s).");
  }
  for (uint32_t Id : DriveIds) {
    const Drive *Member = DriveWithId(Id);
    if (Member == nullptr) {
      return Change::Refused("Error: PD " + std::to_string(Id) +
                             " does not exist.");
    }
    if (Member->Status != kReady ||
        std::count(DriveIds.begin(), DriveIds.end(), Id) > 1) {
      return Change::Refused("Error: PD " + std::to_string(Id) +
                             " is already in use.");
    }
  }
  if (!Volumes.empty()) {
    return Change::Refused(
        "Error: The adapter supports only one RAID array.");
  }
  if (!Offers(StripeKb)) {
    return Change::Refused("Error: Stripe size " + std::to_string(StripeKb) +
                           "K is not supported.");
  }
  uint64_t Kb = SmallestKb(*this, DriveIds);
  if (Level == 0) {
    Kb *= DriveIds.size();
  }
  Volume Created;
  Created.Id = FreeVolumeId(*this);
  Created.Name = Name;
  Created.Level = Level;
  Created.StripeKb = StripeKb;
  Created.Size = std::to_string(Kb / 1024) + " M";
  Created.Drives = DriveIds;
  for (uint32_t Id : DriveIds) {
    DriveWithId(Id)->Status = kOnline;
  }
  Volumes.push_back(std::move(Created));
  return Change::Done();
}

Change Adapter::Delete(uint32_t Id) {
  auto Found = std::find_if(Volumes.begin(), Volumes.end(),
                            [&](const Volume &V) { return V.Id == Id; });
  if (Found == Volumes.end()) {
    return Change::Refused("Error: VD " + std::to_string(Id) +
                           " does not exist.");
  }
  std::vector<uint32_t> Members = Found->Drives;
  Volumes.erase(Found);
  for (uint32_t Member : Members) {
    bool StillUsed = std::any_of(
        Volumes.begin(), Volumes.end(), [&](const Volume &V) {
          return std::count(V.Drives.begin(), V.Drives.end(), Member) > 0;
        });
    if (Drive *D = DriveWithId(Member); D != nullptr && !StillUsed) {
      D->Status = kReady;
    }
  }
  return Change::Done();
}

std::optional<uint64_t> SizeInKb(const std::string &Text) {
  std::istringstream In(Text);
  double Figure = 0;
  std::string Unit;
  if (!(In >> Figure >> Unit) || Figure < 0) {
    return std::nullopt;
  }
  const std::pair<const char *, double> kUnits[] = {
      {"K", 1.0}, {"M", 1024.0}, {"G", 1048576.0}, {"T", 1073741824.0}};
  for (const auto &[Word, Factor] : kUnits) {
    if (Unit == Word) {
      return static_cast<uint64_t>(std::floor(Figure * Factor));
    }
  }
  return std::nullopt;
}

}  // namespace sim::marvell
