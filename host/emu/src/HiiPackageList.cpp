// Reading an HII package list: the header, the packages, and the string
// information blocks of each string package. Every read is bounded by the
// package that holds it; nothing is assumed aligned.
#include <cstring>

#include "emu/Hii.h"

namespace emu {
namespace {

constexpr UINTN kPackageListHeaderSize = sizeof(EFI_HII_PACKAGE_LIST_HEADER);
constexpr UINTN kPackageHeaderSize = 4;
// Header, HdrSize, StringInfoOffset, LanguageWindow[16], LanguageName.
constexpr UINTN kStringPackageFixedSize = 46;

constexpr UINT8 kSibtStringsUcs2 = 0x15;
constexpr UINT8 kSibtDuplicate = 0x20;
constexpr UINT8 kSibtExt1 = 0x30;
constexpr UINT8 kSibtExt2 = 0x31;
constexpr UINT8 kSibtExt4 = 0x32;

// A bounded little-endian reader over one byte range.
class Reader {
 public:
  Reader(const UINT8 *Data, UINTN Size) : Data_(Data), Size_(Size) {}

  bool AtEnd() const { return Position_ >= Size_; }
  UINTN Position() const { return Position_; }
  bool Skip(UINTN Count) {
    if (Count > Size_ - Position_) {
      return false;
    }
    Position_ += Count;
    return true;
  }
  template <typename T>
  bool Read(T &Value) {
    if (sizeof(T) > Size_ - Position_) {
      return false;
    }
    std::memcpy(&Value, Data_ + Position_, sizeof(T));
    Position_ += sizeof(T);
    return true;
  }
  // A NUL-terminated UCS-2 string; false when the range ends first.
  bool ReadUcs2(std::u16string &Text) {
    Text.clear();
    for (;;) {
      UINT16 Unit;
      if (!Read(Unit)) {
        return false;
      }
      if (Unit == 0) {
        return true;
      }
      Text.push_back(static_cast<char16_t>(Unit));
    }
  }

 private:
  const UINT8 *Data_;
  UINTN Size_;
  UINTN Position_ = 0;
};

bool Fail(std::string *Error, std::string Reason) {
  if (Error != nullptr) {
    *Error = std::move(Reason);
  }
  return false;
}

// Stores the text of the next id and moves past it.
bool AddString(std::map<EFI_STRING_ID, std::u16string> &Texts, UINT32 &NextId,
               std::u16string Text, std::string *Error) {
  if (NextId > 0xFFFF) {
    return Fail(Error, "string id beyond 65535");
  }
  Texts[static_cast<EFI_STRING_ID>(NextId)] = std::move(Text);
  ++NextId;
  return true;
}

// Advances the next id past a skip block.
bool SkipIds(UINT32 &NextId, UINT32 Count, std::string *Error) {
  NextId += Count;
  if (NextId > 0x10000) {
    return Fail(Error, "skip beyond string id 65535");
  }
  return true;
}

// Skips an extended block: Block holds its own header (type, kind, length).
bool SkipExtendedBlock(Reader &Blocks, UINT8 BlockType, std::string *Error) {
  UINTN Start = Blocks.Position() - 1;
  UINT8 Kind = 0;
  UINT32 Length = 0;
  bool Ok = Blocks.Read(Kind);
  if (BlockType == kSibtExt1) {
    UINT8 Short = 0;
    Ok = Ok && Blocks.Read(Short);
    Length = Short;
  } else if (BlockType == kSibtExt2) {
    UINT16 Medium = 0;
    Ok = Ok && Blocks.Read(Medium);
    Length = Medium;
  } else {
    Ok = Ok && Blocks.Read(Length);
  }
  UINTN Consumed = Blocks.Position() - Start;
  if (!Ok || Length < Consumed || !Blocks.Skip(Length - Consumed)) {
    return Fail(Error, "truncated extended string block");
  }
  return true;
}

// Reads one NUL-terminated UCS-2 string and gives it the next id.
bool ReadNextString(Reader &Blocks,
                    std::map<EFI_STRING_ID, std::u16string> &Texts,
                    UINT32 &NextId, std::string *Error) {
  std::u16string Text;
  if (!Blocks.ReadUcs2(Text)) {
    return Fail(Error, "unterminated string");
  }
  return AddString(Texts, NextId, std::move(Text), Error);
}

// Reads the string blocks of one package into Texts.
bool ParseStringBlocks(Reader &Blocks,
                       std::map<EFI_STRING_ID, std::u16string> &Texts,
                       std::string *Error) {
  UINT32 NextId = 1;
  for (;;) {
    UINT8 BlockType;
    if (!Blocks.Read(BlockType)) {
      return Fail(Error, "string blocks without SIBT_END");
    }
    switch (BlockType) {
      case EFI_HII_SIBT_END:
        return true;
      case EFI_HII_SIBT_STRING_UCS2:
        if (!ReadNextString(Blocks, Texts, NextId, Error)) {
          return false;
        }
        break;
      case kSibtStringsUcs2: {
        UINT16 Count;
        if (!Blocks.Read(Count)) {
          return Fail(Error, "truncated SIBT_STRINGS_UCS2");
        }
        for (UINT16 Index = 0; Index < Count; ++Index) {
          if (!ReadNextString(Blocks, Texts, NextId, Error)) {
            return false;
          }
        }
        break;
      }
      case kSibtDuplicate: {
        UINT16 Original;
        if (!Blocks.Read(Original)) {
          return Fail(Error, "truncated SIBT_DUPLICATE");
        }
        auto It = Texts.find(Original);
        if (It == Texts.end()) {
          return Fail(Error, "SIBT_DUPLICATE of an unknown id");
        }
        if (!AddString(Texts, NextId, It->second, Error)) {
          return false;
        }
        break;
      }
      case EFI_HII_SIBT_SKIP1: {
        UINT8 Count;
        if (!Blocks.Read(Count) || !SkipIds(NextId, Count, Error)) {
          return Fail(Error, "bad SIBT_SKIP1");
        }
        break;
      }
      case EFI_HII_SIBT_SKIP2: {
        UINT16 Count;
        if (!Blocks.Read(Count) || !SkipIds(NextId, Count, Error)) {
          return Fail(Error, "bad SIBT_SKIP2");
        }
        break;
      }
      case kSibtExt1:
      case kSibtExt2:
      case kSibtExt4:
        if (!SkipExtendedBlock(Blocks, BlockType, Error)) {
          return false;
        }
        break;
      default:
        return Fail(Error, "unsupported string block type " +
                               std::to_string(BlockType));
    }
  }
}

// Reads one string package (Data and Size cover the whole package).
bool ParseStringPackage(const UINT8 *Data, UINTN Size, HiiStrings &Out,
                        std::string *Error) {
  Reader Header(Data, Size);
  UINT32 LengthAndType, HeaderSize, StringInfoOffset;
  Header.Read(LengthAndType);
  if (Size < kStringPackageFixedSize + 1 || !Header.Read(HeaderSize) ||
      !Header.Read(StringInfoOffset)) {
    return Fail(Error, "string package shorter than its header");
  }
  if (HeaderSize <= kStringPackageFixedSize || HeaderSize > Size ||
      StringInfoOffset < HeaderSize || StringInfoOffset > Size) {
    return Fail(Error, "string package header sizes out of range");
  }
  const char *LanguageStart =
      reinterpret_cast<const char *>(Data + kStringPackageFixedSize);
  UINTN LanguageRoom = HeaderSize - kStringPackageFixedSize;
  const void *Nul = std::memchr(LanguageStart, 0, LanguageRoom);
  if (Nul == nullptr) {
    return Fail(Error, "unterminated language in a string package");
  }
  std::string Language(LanguageStart, static_cast<const char *>(Nul));
  if (Language.empty()) {
    return Fail(Error, "string package without a language");
  }
  if (Out.Texts.count(Language) != 0) {
    return Fail(Error, "second string package for " + Language);
  }
  Reader Blocks(Data + StringInfoOffset, Size - StringInfoOffset);
  std::map<EFI_STRING_ID, std::u16string> Texts;
  if (!ParseStringBlocks(Blocks, Texts, Error)) {
    return false;
  }
  Out.Languages.push_back(Language);
  Out.Texts[Language] = std::move(Texts);
  return true;
}

}  // namespace

bool ParseHiiPackageList(const VOID *PackageList, UINTN Size, HiiStrings &Out,
                         std::string *Error) {
  Out = HiiStrings{};
  if (PackageList == nullptr || Size < kPackageListHeaderSize) {
    return Fail(Error, "package list shorter than its header");
  }
  const UINT8 *Data = static_cast<const UINT8 *>(PackageList);
  EFI_HII_PACKAGE_LIST_HEADER ListHeader;
  std::memcpy(&ListHeader, Data, sizeof(ListHeader));
  if (ListHeader.PackageLength < kPackageListHeaderSize ||
      ListHeader.PackageLength > Size) {
    return Fail(Error, "package list length out of range");
  }
  Out.Guid = ListHeader.PackageListGuid;
  UINTN Offset = kPackageListHeaderSize;
  UINTN End = ListHeader.PackageLength;
  while (Offset < End) {
    if (End - Offset < kPackageHeaderSize) {
      return Fail(Error, "truncated package header");
    }
    UINT32 LengthAndType;
    std::memcpy(&LengthAndType, Data + Offset, sizeof(LengthAndType));
    UINTN Length = LengthAndType & 0xFFFFFF;
    UINT8 Type = static_cast<UINT8>(LengthAndType >> 24);
    if (Length < kPackageHeaderSize || Length > End - Offset) {
      return Fail(Error, "package length out of range");
    }
    if (Type == EFI_HII_PACKAGE_END) {
      return true;
    }
    if (Type == EFI_HII_PACKAGE_STRINGS &&
        !ParseStringPackage(Data + Offset, Length, Out, Error)) {
      return false;
    }
    Offset += Length;
  }
  return Fail(Error, "package list without an END package");
}

}  // namespace emu
