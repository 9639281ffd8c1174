// The export directory of a loaded PE32+ image.
#include "ModuleExports.h"

#include <Library/BaseLib.h>
#include <Library/BaseMemoryLib.h>

namespace {

// Offsets in the PE32+ headers.
constexpr UINT32 kDosNewHeaderOffset = 0x3C;
constexpr UINT32 kPeSignature = 0x00004550;  // "PE\0\0"
constexpr UINT32 kOptionalHeaderOffset = 24;  // signature and COFF header
constexpr UINT16 kPe32PlusMagic = 0x20B;
constexpr UINT32 kDirectoryCountOffset = 108;
constexpr UINT32 kDataDirectoryOffset = 112;
// Export directory fields.
constexpr UINT32 kExportNameCount = 24;
constexpr UINT32 kExportFunctions = 28;
constexpr UINT32 kExportNames = 32;
constexpr UINT32 kExportOrdinals = 36;
constexpr UINT32 kExportDirectorySize = 40;

class ImageView {
 public:
  ImageView(const UINT8 *Base, UINT64 Size) : Base_(Base), Size_(Size) {}

  // Reads a little-endian value of type T at Offset; FALSE when outside.
  template <typename T>
  BOOLEAN Read(UINT64 Offset, T *Value) const {
    if (Offset > Size_ || Size_ - Offset < sizeof(T)) {
      return FALSE;
    }
    CopyMem(Value, Base_ + Offset, sizeof(T));
    return TRUE;
  }

  // Whether the NUL-terminated ASCII string at Offset equals Name.
  BOOLEAN NameAt(UINT64 Offset, const CHAR8 *Name) const {
    const UINTN Length = AsciiStrLen(Name);
    if (Offset > Size_ || Size_ - Offset < Length + 1) {
      return FALSE;
    }
    return CompareMem(Base_ + Offset, Name, Length + 1) == 0;
  }

 private:
  const UINT8 *Base_;
  UINT64 Size_;
};

}  // namespace

VOID *FindImageExport(VOID *Base, UINT64 ImageSize, const CHAR8 *Name) {
  if (Base == nullptr) {
    return nullptr;
  }
  const ImageView Image(static_cast<const UINT8 *>(Base), ImageSize);
  UINT32 PeOffset = 0, Signature = 0, DirectoryCount = 0;
  UINT32 ExportRva = 0, ExportSize = 0;
  UINT16 Magic = 0;
  if (!Image.Read(kDosNewHeaderOffset, &PeOffset) || !Image.Read(PeOffset, &Signature) ||
      Signature != kPeSignature) {
    return nullptr;
  }
  const UINT64 Optional = UINT64{PeOffset} + kOptionalHeaderOffset;
  if (!Image.Read(Optional, &Magic) || Magic != kPe32PlusMagic ||
      !Image.Read(Optional + kDirectoryCountOffset, &DirectoryCount) ||
      DirectoryCount < 1 || !Image.Read(Optional + kDataDirectoryOffset, &ExportRva) ||
      !Image.Read(Optional + kDataDirectoryOffset + 4, &ExportSize) ||
      ExportSize < kExportDirectorySize) {
    return nullptr;
  }
  UINT32 NameCount = 0, Functions = 0, Names = 0, Ordinals = 0;
  if (!Image.Read(UINT64{ExportRva} + kExportNameCount, &NameCount) ||
      !Image.Read(UINT64{ExportRva} + kExportFunctions, &Functions) ||
      !Image.Read(UINT64{ExportRva} + kExportNames, &Names) ||
      !Image.Read(UINT64{ExportRva} + kExportOrdinals, &Ordinals)) {
    return nullptr;
  }
  for (UINT32 I = 0; I < NameCount; I++) {
    UINT32 NameRva = 0;
    UINT16 Ordinal = 0;
    UINT32 Rva = 0;
    if (!Image.Read(UINT64{Names} + 4ULL * I, &NameRva)) {
      return nullptr;
    }
    if (!Image.NameAt(NameRva, Name)) {
      continue;
    }
    if (!Image.Read(UINT64{Ordinals} + 2ULL * I, &Ordinal) ||
        !Image.Read(UINT64{Functions} + 4ULL * Ordinal, &Rva) || Rva >= ImageSize) {
      return nullptr;
    }
    return static_cast<UINT8 *>(Base) + Rva;
  }
  return nullptr;
}
