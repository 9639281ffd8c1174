// Shared helpers of the RAID model tests: a setup protocol that captures the
// core's trace lines, records built the way discovery and the backends build
// them, and a small expat driver that feeds an XML document to element
// callbacks with CHAR16 names and attributes.
#pragma once

#include <Protocol/Host/TarnXml.h>
#include <Uefi.h>
#include "RaidLib.h"

#include <string>
#include <vector>

namespace test {

// Installs itself as the core's setup protocol for the scope and keeps every
// trace line, formatted.
class TraceCapture {
 public:
  TraceCapture();
  ~TraceCapture();
  TraceCapture(const TraceCapture &) = delete;
  TraceCapture &operator=(const TraceCapture &) = delete;
  const std::vector<std::string> &Lines() const;
  void Clear();
};

// A pool string copy of Text (NULL for NULL).
CHAR16 *PoolString(const CHAR16 *Text);
std::string Narrow(const CHAR16 *Text);

// A controller as discovery leaves it: matched (ToolType 1), lists
// initialised, a private record with StorageId and VendorId.
RAID_CONTROLLER *NewController(UINT32 Id, const CHAR16 *StorageId,
                               UINT16 VendorId);
// Appends a new controller to gControllerList.
RAID_CONTROLLER *AddController(UINT32 Id, const CHAR16 *StorageId,
                               UINT16 VendorId);
// Frees every controller of gControllerList and leaves it empty.
void FreeAllControllers();

// Parses Document with expat in one call, delivering elements to Start and
// End as the host's XML parser does. Returns false for malformed XML (the
// callbacks have seen the elements up to the error).
bool ParseXml(const std::string &Document, TARNXML_START_ELEMENT Start,
              TARNXML_END_ELEMENT End);

}  // namespace test
