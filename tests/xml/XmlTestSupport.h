// Running a document through an EFI_TARNXML_PROTOCOL and recording what the
// module would see: start and end events with their attributes.
#pragma once

#include <Protocol/Host/TarnXml.h>
#include <Uefi.h>

#include <string>
#include <vector>

namespace xml_test {

// One callback: "<name" followed by " attr=value" per pair and ">", or
// "</name>", in UTF-16 exactly as the callback received it.
using Event = std::u16string;

struct Outcome {
  bool Accepted = false;          // every ParseBuffer call succeeded
  EFI_STATUS FirstError = EFI_SUCCESS;
  std::vector<Event> Events;
};

// Feeds Document through Protocol: chunk sizes cycle through ChunkSizes
// (each chunk copied into the buffer GetBuffer returns), then a final call
// of length 0. Stops at the first error, as the module does, after trying
// one more call to see the error stay.
Outcome ParseDocument(EFI_TARNXML_PROTOCOL *Protocol, const std::string &Document,
            const std::vector<size_t> &ChunkSizes);

// Printable form of an event list for failure messages.
std::string Describe(const std::vector<Event> &Events);

// A file of the source tree, whole.
std::string ReadSourceFile(const std::string &RelativePath);

}  // namespace xml_test
