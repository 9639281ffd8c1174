// The engines' changes: volumes made on free disks or beside an array's
// first volume, volumes deleted by name, disks made non-RAID or spares.
// Sizes stay consistent: a volume takes its blocks from each member disk.
#include "sim/intel/IntelEngine.h"

#include <algorithm>

namespace sim::intel {

uint64_t DataDisks(uint32_t Level, size_t Members) {
  switch (Level) {
    case 1:
      return 1;
    case 5:
      return Members > 0 ? Members - 1 : 0;
    case 10:
      return Members / 2;
    default:
      return Members;
  }
}

namespace {

bool DiskCountFits(uint32_t Level, size_t Count) {
  switch (Level) {
    case 0:
      return Count >= 2;
    case 1:
      return Count == 2;
    case 5:
      return Count >= 3;
    case 10:
      return Count == 4;
    default:
      return false;
  }
}

uint64_t UsedPerDisk(const Array &Group) {
  uint64_t Used = 0;
  for (const Volume &Each : Group.Volumes) {
    uint64_t Data = DataDisks(Each.Level, Group.Disks.size());
    Used += Data == 0 ? 0 : Each.Blocks / Data;
  }
  return Used;
}

std::string DiskWord(uint32_t Number) {
  return "ERROR: Disk " + std::to_string(Number) + " is not available.";
}

}  // namespace

const Disk *Engines::FindDisk(const Engine &Owner, uint32_t Number) {
  for (const Disk &Each : Owner.Disks) {
    if (Each.Number == Number) {
      return &Each;
    }
  }
  return nullptr;
}

Disk *Engines::FindDisk(uint32_t Number, Engine **Owner) {
  for (Engine &Each : Engines_) {
    for (Disk &Candidate : Each.Disks) {
      if (Candidate.Number == Number && Candidate.State != DiskState::Missing) {
        *Owner = &Each;
        return &Candidate;
      }
    }
  }
  return nullptr;
}

uint64_t Engines::FreePerDisk(const Engine &Owner, const Array &Group) {
  uint64_t Smallest = UINT64_MAX;
  for (uint32_t Number : Group.Disks) {
    const Disk *Member = FindDisk(Owner, Number);
    Smallest = std::min<uint64_t>(Smallest, Member ? Member->Blocks : 0);
  }
  if (Group.Disks.empty()) {
    return 0;
  }
  uint64_t Used = UsedPerDisk(Group);
  return Smallest > Used ? Smallest - Used : 0;
}

bool Engines::NameInUse(const std::string &Name) const {
  for (const Engine &Each : Engines_) {
    for (const Array &Group : Each.Arrays) {
      for (const Volume &Existing : Group.Volumes) {
        if (Existing.Name == Name) {
          return true;
        }
      }
    }
  }
  return false;
}

std::string Engines::CreateInArray(Engine &Owner, Array &Group,
                                   const CreateRequest &Request) {
  if (Group.Volumes.size() >= kMostVolumesPerArray) {
    return "ERROR: The array already holds two volumes.";
  }
  uint64_t Free = FreePerDisk(Owner, Group);
  uint64_t Data = DataDisks(Request.Level, Group.Disks.size());
  if (Free == 0 || Data == 0) {
    return "ERROR: No free space left on the selected disks.";
  }
  Group.Volumes.push_back({Request.Name, Request.Level,
                           Request.Level == 1 ? 0 : Request.StripeKb.value_or(64),
                           Free * Data, "Normal"});
  return "";
}

std::string Engines::Create(const CreateRequest &Request) {
  if (Request.Name.empty() || Request.Name.size() > 16) {
    return "ERROR: Invalid volume name.";
  }
  if (NameInUse(Request.Name)) {
    return "ERROR: Volume name already in use.";
  }
  if (!DiskCountFits(Request.Level, Request.Disks.size())) {
    return "ERROR: Too few disks for the selected RAID level.";
  }
  Engine *Owner = nullptr;
  std::vector<Disk *> Chosen;
  for (uint32_t Number : Request.Disks) {
    Engine *Found = nullptr;
    Disk *Candidate = FindDisk(Number, &Found);
    if (Candidate == nullptr || (Owner != nullptr && Found != Owner) ||
        std::count(Request.Disks.begin(), Request.Disks.end(), Number) > 1) {
      return DiskWord(Number);
    }
    Owner = Found;
    Chosen.push_back(Candidate);
  }
  // The disks of an existing array: a second volume beside the first.
  for (Array &Group : Owner->Arrays) {
    std::vector<uint32_t> Members = Group.Disks;
    std::vector<uint32_t> Asked = Request.Disks;
    std::sort(Members.begin(), Members.end());
    std::sort(Asked.begin(), Asked.end());
    if (Members == Asked) {
      return CreateInArray(*Owner, Group, Request);
    }
  }
  uint64_t Smallest = UINT64_MAX;
  for (Disk *Candidate : Chosen) {
    if (Candidate->State != DiskState::NonRaid) {
      return DiskWord(Candidate->Number);
    }
    Smallest = std::min(Smallest, Candidate->Blocks);
  }
  uint64_t Data = DataDisks(Request.Level, Chosen.size());
  uint64_t PerDisk = Smallest;
  if (Request.SizeGb && !Request.WholeSpace) {
    uint64_t Wanted = *Request.SizeGb * (1ULL << 30) / kBlockBytes;
    PerDisk = (Wanted + Data - 1) / Data;
    if (PerDisk > Smallest) {
      return "ERROR: Requested size exceeds the free space of the disks.";
    }
  }
  Array Group;
  Group.Disks = Request.Disks;
  Group.Volumes.push_back({Request.Name, Request.Level,
                           Request.Level == 1 ? 0 : Request.StripeKb.value_or(64),
                           PerDisk * Data, "Normal"});
  for (Disk *Candidate : Chosen) {
    Candidate->State = DiskState::Member;
  }
  Owner->Arrays.push_back(std::move(Group));
  return "";
}

std::string Engines::Delete(const std::string &Name) {
  for (Engine &Each : Engines_) {
    for (auto Group = Each.Arrays.begin(); Group != Each.Arrays.end(); ++Group) {
      auto Found = std::find_if(Group->Volumes.begin(), Group->Volumes.end(),
                                [&](const Volume &V) { return V.Name == Name; });
      if (Found == Group->Volumes.end()) {
        continue;
      }
      Group->Volumes.erase(Found);
      if (Group->Volumes.empty()) {
        for (uint32_t Number : Group->Disks) {
          for (Disk &Member : Each.Disks) {
            if (Member.Number == Number && Member.State == DiskState::Member) {
              Member.State = DiskState::NonRaid;
            }
          }
        }
        Each.Arrays.erase(Group);
      }
      return "";
    }
  }
  return "ERROR: Volume " + Name + " not found.";
}

std::string Engines::MakeNonRaid(uint32_t Number) {
  Engine *Owner = nullptr;
  Disk *Target = FindDisk(Number, &Owner);
  if (Target == nullptr) {
    return DiskWord(Number);
  }
  if (Target->State == DiskState::Member) {
    return "ERROR: Disk " + std::to_string(Number) + " is a member of a volume.";
  }
  Target->State = DiskState::NonRaid;
  return "";
}

std::string Engines::MakeSpare(uint32_t Number) {
  Engine *Owner = nullptr;
  Disk *Target = FindDisk(Number, &Owner);
  if (Target == nullptr || Target->State != DiskState::NonRaid) {
    return DiskWord(Number);
  }
  Target->State = DiskState::Spare;
  return "";
}

}  // namespace sim::intel
