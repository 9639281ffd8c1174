// A read-only FAT-like volume backed by a host directory: a handle carrying
// EFI_SIMPLE_FILE_SYSTEM_PROTOCOL whose files are opened by CHAR16 paths with
// "\" separators and matched case-insensitively, as FAT does.
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace emu {

class Firmware;

class HostVolume {
 public:
  HostVolume(Firmware &Firmware, std::filesystem::path Root);
  ~HostVolume();
  HostVolume(const HostVolume &) = delete;
  HostVolume &operator=(const HostVolume &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *FileSystem() { return &Volume_.Protocol; }
  const std::filesystem::path &Root() const { return Root_; }
  // File and directory handles opened and not yet closed.
  UINTN OpenFileCount() const { return Files_.size(); }
  // Names passed to Open, as UTF-8, in call order.
  const std::vector<std::string> &OpenRequests() const { return Requests_; }

 private:
  struct VolumeInstance {
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL Protocol;
    HostVolume *Owner;
  };
  struct File;

  static EFI_STATUS EFIAPI OpenVolume(EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *This,
                                      EFI_FILE_PROTOCOL **Root);
  static EFI_STATUS EFIAPI Open(EFI_FILE_PROTOCOL *This,
                                EFI_FILE_PROTOCOL **NewHandle,
                                CHAR16 *FileName, UINT64 OpenMode,
                                UINT64 Attributes);
  static EFI_STATUS EFIAPI Close(EFI_FILE_PROTOCOL *This);
  static EFI_STATUS EFIAPI Delete(EFI_FILE_PROTOCOL *This);
  static EFI_STATUS EFIAPI Read(EFI_FILE_PROTOCOL *This, UINTN *BufferSize,
                                VOID *Buffer);
  static EFI_STATUS EFIAPI Write(EFI_FILE_PROTOCOL *This, UINTN *BufferSize,
                                 VOID *Buffer);
  static EFI_STATUS EFIAPI GetPosition(EFI_FILE_PROTOCOL *This,
                                       UINT64 *Position);
  static EFI_STATUS EFIAPI SetPosition(EFI_FILE_PROTOCOL *This,
                                       UINT64 Position);
  static EFI_STATUS EFIAPI GetInfo(EFI_FILE_PROTOCOL *This,
                                   EFI_GUID *InformationType,
                                   UINTN *BufferSize, VOID *Buffer);
  static EFI_STATUS EFIAPI SetInfo(EFI_FILE_PROTOCOL *This,
                                   EFI_GUID *InformationType, UINTN BufferSize,
                                   VOID *Buffer);
  static EFI_STATUS EFIAPI Flush(EFI_FILE_PROTOCOL *This);

  static std::set<File *> &LiveFiles();
  // The open file behind This, or NULL for a handle that is not ours.
  static File *FromProtocol(EFI_FILE_PROTOCOL *This);
  EFI_FILE_PROTOCOL *NewFile(std::vector<std::string> Components);
  // Resolves Name against Directory; false when a component is missing.
  bool Resolve(const std::vector<std::string> &Directory,
               std::u16string_view Name,
               std::vector<std::string> &Components) const;
  std::filesystem::path HostPath(const std::vector<std::string> &Components)
      const;

  Firmware &Firmware_;
  std::filesystem::path Root_;
  VolumeInstance Volume_;
  EFI_HANDLE Handle_ = nullptr;
  std::set<File *> Files_;
  std::vector<std::string> Requests_;
};

}  // namespace emu
