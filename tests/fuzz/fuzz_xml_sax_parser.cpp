// Feeds arbitrary bytes through the freestanding XML parser in chunks the
// first byte chooses, each chunk in a buffer of exactly its size, and checks
// that a failed parser keeps failing and that nothing leaks.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "TestPool.h"
#include "xml/XmlSaxParser.h"

namespace {

size_t gEvents = 0;

VOID EFIAPI OnStart(VOID *Context, const CHAR16 *Name, const CHAR16 **Attributes) {
  // Touch every string so that a bad pointer shows.
  for (const CHAR16 *C = Name; *C != 0; C++) {
    gEvents += *C & 1;
  }
  for (const CHAR16 **Item = Attributes; *Item != nullptr; Item++) {
    for (const CHAR16 *C = *Item; *C != 0; C++) {
      gEvents += *C & 1;
    }
  }
}

VOID EFIAPI OnEnd(VOID *Context, const CHAR16 *Name) {
  gEvents += Name[0] & 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *Data, std::size_t Size) {
  if (Size == 0) {
    return 0;
  }
  const size_t ChunkSize = 1 + Data[0] % 64;
  Data++;
  Size--;

  test::ScopedTestPool Pool;
  XML_SAX_PARSER *Parser = XmlSaxCreate();
  if (Parser == nullptr) {
    std::abort();
  }
  XmlSaxSetHandlers(Parser, OnStart, OnEnd, nullptr);
  bool Failed = false;
  for (size_t Offset = 0; Offset <= Size; Offset += ChunkSize) {
    const size_t Length = Offset + ChunkSize <= Size ? ChunkSize : Size - Offset;
    std::unique_ptr<UINT8[]> Chunk(new UINT8[Length == 0 ? 1 : Length]);
    std::memcpy(Chunk.get(), Data + Offset, Length);
    const EFI_STATUS Status =
        XmlSaxParse(Parser, Chunk.get(), Length, Offset + ChunkSize > Size);
    if (Failed && Status != EFI_PROTOCOL_ERROR) {
      std::abort();  // an error must stay
    }
    Failed = Failed || EFI_ERROR(Status);
  }
  XmlSaxFree(Parser);
  if (Pool.Outstanding() != 0) {
    std::abort();
  }
  return 0;
}
