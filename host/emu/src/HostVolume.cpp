// Simple File System and File protocols over a host directory.
#include "emu/HostVolume.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>

#include "emu/Firmware.h"
#include "emu/TextConversion.h"

namespace emu {

// One open file or directory. The protocol is the first member so that the
// EFI_FILE_PROTOCOL pointer handed out is the record's address.
struct HostVolume::File {
  EFI_FILE_PROTOCOL Protocol;
  HostVolume *Owner;
  std::vector<std::string> Components;  // host names from the root
  bool IsDirectory;
  std::vector<UINT8> Contents;
  UINT64 Position = 0;
};

namespace {

constexpr UINT64 kFileRevision = 0x00010000;
constexpr UINT64 kEndOfFile = ~UINT64{0};

// FAT compares names without regard to case; ASCII folding is what matters
// for the files a module reads.
bool SameNameIgnoringCase(const std::string &A, const std::string &B) {
  return A.size() == B.size() &&
         std::equal(A.begin(), A.end(), B.begin(), [](char X, char Y) {
           return std::tolower(static_cast<unsigned char>(X)) ==
                  std::tolower(static_cast<unsigned char>(Y));
         });
}

std::vector<std::string> SplitPath(std::u16string_view Name) {
  std::vector<std::string> Parts;
  std::u16string Part;
  for (char16_t Char : Name) {
    if (Char == u'\\') {
      Parts.push_back(Utf16ToUtf8(Part));
      Part.clear();
    } else {
      Part.push_back(Char);
    }
  }
  Parts.push_back(Utf16ToUtf8(Part));
  return Parts;
}

}  // namespace

// Every file record of every volume that is still open.
std::set<HostVolume::File *> &HostVolume::LiveFiles() {
  static std::set<File *> Files;
  return Files;
}

HostVolume::HostVolume(Firmware &Firmware, std::filesystem::path Root)
    : Firmware_(Firmware), Root_(std::move(Root)) {
  Volume_.Protocol = {0x00010000, OpenVolume};
  Volume_.Owner = this;
  Firmware_.Handles().Install(&Handle_, gEfiSimpleFileSystemProtocolGuid,
                              &Volume_.Protocol);
}

HostVolume::~HostVolume() {
  for (File *Open : Files_) {
    LiveFiles().erase(Open);
    delete Open;
  }
  if (Firmware::CurrentOrNull() == &Firmware_) {
    Firmware_.Handles().Uninstall(Handle_, gEfiSimpleFileSystemProtocolGuid,
                                  &Volume_.Protocol);
  }
}

std::filesystem::path HostVolume::HostPath(
    const std::vector<std::string> &Components) const {
  std::filesystem::path Path = Root_;
  for (const auto &Component : Components) {
    Path /= Component;
  }
  return Path;
}

bool HostVolume::Resolve(const std::vector<std::string> &Directory,
                         std::u16string_view Name,
                         std::vector<std::string> &Components) const {
  Components = Directory;
  if (!Name.empty() && Name.front() == u'\\') {
    Components.clear();
    Name.remove_prefix(1);
  }
  for (const std::string &Part : SplitPath(Name)) {
    if (Part.empty() || Part == ".") {
      continue;
    }
    if (Part == "..") {
      if (Components.empty()) {
        return false;
      }
      Components.pop_back();
      continue;
    }
    std::error_code Error;
    const auto Parent = HostPath(Components);
    if (!std::filesystem::is_directory(Parent, Error)) {
      return false;
    }
    bool Found = false;
    for (const auto &Entry :
         std::filesystem::directory_iterator(Parent, Error)) {
      const std::string Candidate = Entry.path().filename().string();
      if (SameNameIgnoringCase(Candidate, Part)) {
        Components.push_back(Candidate);
        Found = true;
        break;
      }
    }
    if (!Found) {
      return false;
    }
  }
  return true;
}

EFI_FILE_PROTOCOL *HostVolume::NewFile(std::vector<std::string> Components) {
  const auto Path = HostPath(Components);
  std::error_code Error;
  const bool IsDirectory = std::filesystem::is_directory(Path, Error);
  std::vector<UINT8> Contents;
  if (!IsDirectory) {
    std::ifstream Stream(Path, std::ios::binary | std::ios::ate);
    if (!Stream) {
      return nullptr;
    }
    // One read of the whole file: a copy character by character cost a
    // fuzz target reading raid.xml per input more than the module's work.
    const std::streamoff Size = Stream.tellg();
    Stream.seekg(0);
    Contents.resize(Size > 0 ? static_cast<std::size_t>(Size) : 0);
    if (!Stream.read(reinterpret_cast<char *>(Contents.data()),
                     static_cast<std::streamsize>(Contents.size()))) {
      return nullptr;
    }
  }
  auto *Opened = new File{{kFileRevision, Open, Close, Delete, Read, Write,
                           GetPosition, SetPosition, GetInfo, SetInfo, Flush},
                          this,
                          std::move(Components),
                          IsDirectory,
                          std::move(Contents)};
  Files_.insert(Opened);
  LiveFiles().insert(Opened);
  return &Opened->Protocol;
}

HostVolume::File *HostVolume::FromProtocol(EFI_FILE_PROTOCOL *This) {
  // Only pointers that a live volume handed out and that are still open are
  // dereferenced: a closed or foreign handle is refused, not followed.
  auto *Candidate = reinterpret_cast<File *>(This);
  return LiveFiles().count(Candidate) != 0 ? Candidate : nullptr;
}

EFI_STATUS EFIAPI HostVolume::OpenVolume(EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *This,
                                         EFI_FILE_PROTOCOL **Root) {
  if (This == nullptr || Root == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  HostVolume *Volume = reinterpret_cast<VolumeInstance *>(This)->Owner;
  std::error_code Error;
  if (!std::filesystem::is_directory(Volume->Root_, Error)) {
    return EFI_NO_MEDIA;
  }
  *Root = Volume->NewFile({});
  return *Root == nullptr ? EFI_DEVICE_ERROR : EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::Open(EFI_FILE_PROTOCOL *This,
                                   EFI_FILE_PROTOCOL **NewHandle,
                                   CHAR16 *FileName, UINT64 OpenMode,
                                   UINT64 Attributes) {
  File *Directory = FromProtocol(This);
  if (Directory == nullptr || NewHandle == nullptr || FileName == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  HostVolume *Volume = Directory->Owner;
  Volume->Requests_.push_back(ToUtf8(FileName));
  const UINT64 Known =
      EFI_FILE_MODE_READ | EFI_FILE_MODE_WRITE | EFI_FILE_MODE_CREATE;
  if ((OpenMode & ~Known) != 0 || (OpenMode & EFI_FILE_MODE_READ) == 0) {
    return EFI_INVALID_PARAMETER;
  }
  if (OpenMode != EFI_FILE_MODE_READ) {
    return EFI_WRITE_PROTECTED;
  }
  if (!Directory->IsDirectory) {
    return EFI_NOT_FOUND;
  }
  std::vector<std::string> Components;
  if (!Volume->Resolve(Directory->Components, View(FileName), Components)) {
    return EFI_NOT_FOUND;
  }
  *NewHandle = Volume->NewFile(std::move(Components));
  return *NewHandle == nullptr ? EFI_NOT_FOUND : EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::Close(EFI_FILE_PROTOCOL *This) {
  File *Opened = FromProtocol(This);
  if (Opened == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  Opened->Owner->Files_.erase(Opened);
  LiveFiles().erase(Opened);
  delete Opened;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::Delete(EFI_FILE_PROTOCOL *This) {
  // A read-only medium: the handle is closed and the file stays.
  const EFI_STATUS Status = Close(This);
  return EFI_ERROR(Status) ? Status : EFI_WARN_DELETE_FAILURE;
}

EFI_STATUS EFIAPI HostVolume::Read(EFI_FILE_PROTOCOL *This, UINTN *BufferSize,
                                   VOID *Buffer) {
  File *Opened = FromProtocol(This);
  if (Opened == nullptr || BufferSize == nullptr ||
      (*BufferSize != 0 && Buffer == nullptr)) {
    return EFI_INVALID_PARAMETER;
  }
  if (Opened->IsDirectory) {
    // Directory entries (EFI_FILE_INFO) are not served by this volume.
    return EFI_UNSUPPORTED;
  }
  const UINT64 Size = Opened->Contents.size();
  if (Opened->Position > Size) {
    return EFI_DEVICE_ERROR;
  }
  const UINTN Count =
      static_cast<UINTN>(std::min<UINT64>(*BufferSize, Size - Opened->Position));
  if (Count != 0) {
    std::memcpy(Buffer, Opened->Contents.data() + Opened->Position, Count);
  }
  Opened->Position += Count;
  *BufferSize = Count;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::Write(EFI_FILE_PROTOCOL *This, UINTN *BufferSize,
                                    VOID *Buffer) {
  return FromProtocol(This) == nullptr ? EFI_INVALID_PARAMETER
                                       : EFI_WRITE_PROTECTED;
}

EFI_STATUS EFIAPI HostVolume::GetPosition(EFI_FILE_PROTOCOL *This,
                                          UINT64 *Position) {
  File *Opened = FromProtocol(This);
  if (Opened == nullptr || Position == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Opened->IsDirectory) {
    return EFI_UNSUPPORTED;
  }
  *Position = Opened->Position;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::SetPosition(EFI_FILE_PROTOCOL *This,
                                          UINT64 Position) {
  File *Opened = FromProtocol(This);
  if (Opened == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  if (Opened->IsDirectory) {
    // A directory can only be rewound.
    return Position == 0 ? EFI_SUCCESS : EFI_UNSUPPORTED;
  }
  Opened->Position =
      Position == kEndOfFile ? Opened->Contents.size() : Position;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI HostVolume::GetInfo(EFI_FILE_PROTOCOL *This,
                                      EFI_GUID *InformationType,
                                      UINTN *BufferSize, VOID *Buffer) {
  return FromProtocol(This) == nullptr ? EFI_INVALID_PARAMETER
                                       : EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI HostVolume::SetInfo(EFI_FILE_PROTOCOL *This,
                                      EFI_GUID *InformationType,
                                      UINTN BufferSize, VOID *Buffer) {
  return FromProtocol(This) == nullptr ? EFI_INVALID_PARAMETER
                                       : EFI_WRITE_PROTECTED;
}

EFI_STATUS EFIAPI HostVolume::Flush(EFI_FILE_PROTOCOL *This) {
  return FromProtocol(This) == nullptr ? EFI_INVALID_PARAMETER : EFI_SUCCESS;
}

}  // namespace emu
