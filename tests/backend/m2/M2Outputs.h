// Reports of the M.2 tool in its "key: value" layout, for the backend's
// tests and the fuzz target's seeds.
#pragma once

#include <string>
#include <vector>

namespace m2_test {

// "Key:" padded to Width, then the value ("" gives an empty value).
std::string KeyLine(const std::string &Key, const std::string &Value,
                    size_t Width);

// The adapter report; an empty MaxDisks prints the line without a value.
std::string HbaReport(const std::string &MaxDisks = "2",
                      const std::string &Slot = "0");

struct VolumeBlock {
  std::string Id, Name, Status, Stripe, Mode, Size, Members;
};
// The volume report: one block per volume and "Total # of VD".
std::string VdReport(const std::vector<VolumeBlock> &Volumes,
                     const std::string &Total);

struct DriveBlock {
  std::string Id, Type, Size, Model, Status;
};
// The drive report: one block per drive and "Total # of PD".
std::string PdReport(const std::vector<DriveBlock> &Drives,
                     const std::string &Total);

// A mirror over drives 0 and 1 with drive 1 rebuilding.
extern const VolumeBlock kMirror;
extern const DriveBlock kReadyDrive0, kReadyDrive1, kOnlineDrive0,
    kRebuildDrive1;

}  // namespace m2_test
