// storcli outputs of one richly configured adapter, in the layout of the
// tool's captured reports (LF here; the tests add the CR).
#pragma once

#include <string>

namespace lsi_test {

// "/c0 show": two arrays (RAID 5 with a dedicated spare, RAID 10 with a
// rebuilding, an offline and a copy-back member), three volumes, and
// unassigned and foreign drives in every state.
extern const char *const kRichSummary;
// "/c0 show freespace": segments of both arrays, one in KB.
extern const char *const kRichFreeSpace;
// "/c0/vN show all" for a volume with the given Cache word, strip size and
// disk cache texts.
std::string ShowAll(const std::string &DgVd, const std::string &Cache,
                    const std::string &Strip, const std::string &DiskCache);

// "/cN show" of an adapter at a PCI location (used by the card search).
std::string SummaryAt(unsigned Bus, unsigned Device, unsigned Function);
// "show ctrlcount" with Count controllers.
std::string CtrlCount(unsigned Count);

}  // namespace lsi_test
