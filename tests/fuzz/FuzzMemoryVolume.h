// A read-only volume whose files are byte strings in memory: a handle with
// the Simple File System protocol whose root holds the files set with
// Set(). A fuzz input becomes a file without a write to, and a lookup in,
// the host's file system. Names match without regard to ASCII case, as on
// FAT; a leading "\" names the root.
#pragma once

#include <Protocol/SimpleFileSystem.h>
#include <Uefi.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <string>
#include <string_view>

#include "emu/Firmware.h"

namespace fuzz_model {

class MemoryVolume {
 public:
  explicit MemoryVolume(emu::Firmware &Firmware) {
    Volume_.Protocol = {0x00010000, OpenVolume};
    Volume_.Owner = this;
    Firmware.Handles().Install(&Handle_, gEfiSimpleFileSystemProtocolGuid,
                               &Volume_.Protocol);
  }
  MemoryVolume(const MemoryVolume &) = delete;
  MemoryVolume &operator=(const MemoryVolume &) = delete;

  EFI_HANDLE Handle() const { return Handle_; }
  // Name must be lower case; Bytes must outlive the reads of the file.
  void Set(std::string Name, std::string_view Bytes) { Files_[Name] = Bytes; }
  // Handles opened and not yet closed.
  int OpenCount() const { return OpenCount_; }

 private:
  struct VolumeInstance {
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL Protocol;
    MemoryVolume *Owner;
  };
  // The protocol first, so the handle handed out is the record's address.
  struct File {
    EFI_FILE_PROTOCOL Protocol;
    MemoryVolume *Owner;
    const std::string_view *Contents;  // NULL for the root
    UINT64 Position;
  };

  static File *Of(EFI_FILE_PROTOCOL *This) {
    return reinterpret_cast<File *>(This);
  }

  EFI_FILE_PROTOCOL *NewFile(const std::string_view *Contents) {
    OpenCount_++;
    return &(new File{{0x00010000, Open, Close, Delete, Read, Write,
                       GetPosition, SetPosition, GetInfo, SetInfo, Flush},
                      this,
                      Contents,
                      0})
                ->Protocol;
  }

  static EFI_STATUS EFIAPI OpenVolume(EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *This,
                                      EFI_FILE_PROTOCOL **Root) {
    if (This == nullptr || Root == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    *Root = reinterpret_cast<VolumeInstance *>(This)->Owner->NewFile(nullptr);
    return EFI_SUCCESS;
  }

  static EFI_STATUS EFIAPI Open(EFI_FILE_PROTOCOL *This,
                                EFI_FILE_PROTOCOL **NewHandle,
                                CHAR16 *FileName, UINT64 OpenMode,
                                UINT64 /*Attributes*/) {
    if (This == nullptr || NewHandle == nullptr || FileName == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    if (OpenMode != EFI_FILE_MODE_READ) {
      return EFI_WRITE_PROTECTED;
    }
    if (Of(This)->Contents != nullptr) {
      return EFI_NOT_FOUND;
    }
    const CHAR16 *Char = FileName[0] == u'\\' ? FileName + 1 : FileName;
    std::string Name;
    for (; *Char != 0; Char++) {
      if (*Char > 0x7F) {
        return EFI_NOT_FOUND;
      }
      Name.push_back(static_cast<char>(std::tolower(*Char)));
    }
    MemoryVolume *Volume = Of(This)->Owner;
    const auto Found = Volume->Files_.find(Name);
    if (Found == Volume->Files_.end()) {
      return EFI_NOT_FOUND;
    }
    *NewHandle = Volume->NewFile(&Found->second);
    return EFI_SUCCESS;
  }

  // Handles are not looked up: a module that uses one after closing it
  // (or closes it twice) makes AddressSanitizer stop the run, as it should.
  static EFI_STATUS EFIAPI Close(EFI_FILE_PROTOCOL *This) {
    if (This == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    Of(This)->Owner->OpenCount_--;
    delete Of(This);
    return EFI_SUCCESS;
  }

  static EFI_STATUS EFIAPI Delete(EFI_FILE_PROTOCOL *This) {
    const EFI_STATUS Status = Close(This);
    return EFI_ERROR(Status) ? Status : EFI_WARN_DELETE_FAILURE;
  }

  static EFI_STATUS EFIAPI Read(EFI_FILE_PROTOCOL *This, UINTN *BufferSize,
                                VOID *Buffer) {
    if (This == nullptr || BufferSize == nullptr ||
        (*BufferSize != 0 && Buffer == nullptr)) {
      return EFI_INVALID_PARAMETER;
    }
    File *Opened = Of(This);
    if (Opened->Contents == nullptr) {
      return EFI_UNSUPPORTED;
    }
    const UINT64 Size = Opened->Contents->size();
    if (Opened->Position > Size) {
      return EFI_DEVICE_ERROR;
    }
    const UINTN Count = static_cast<UINTN>(
        std::min<UINT64>(*BufferSize, Size - Opened->Position));
    if (Count != 0) {
      std::memcpy(Buffer, Opened->Contents->data() + Opened->Position, Count);
    }
    Opened->Position += Count;
    *BufferSize = Count;
    return EFI_SUCCESS;
  }

  static EFI_STATUS EFIAPI Write(EFI_FILE_PROTOCOL *, UINTN *, VOID *) {
    return EFI_WRITE_PROTECTED;
  }

  static EFI_STATUS EFIAPI GetPosition(EFI_FILE_PROTOCOL *This,
                                       UINT64 *Position) {
    if (This == nullptr || Position == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    *Position = Of(This)->Position;
    return EFI_SUCCESS;
  }

  static EFI_STATUS EFIAPI SetPosition(EFI_FILE_PROTOCOL *This,
                                       UINT64 Position) {
    if (This == nullptr) {
      return EFI_INVALID_PARAMETER;
    }
    File *Opened = Of(This);
    const UINT64 End = Opened->Contents != nullptr ? Opened->Contents->size() : 0;
    Opened->Position = Position == ~UINT64{0} ? End : Position;
    return EFI_SUCCESS;
  }

  static EFI_STATUS EFIAPI GetInfo(EFI_FILE_PROTOCOL *, EFI_GUID *, UINTN *,
                                   VOID *) {
    return EFI_UNSUPPORTED;
  }

  static EFI_STATUS EFIAPI SetInfo(EFI_FILE_PROTOCOL *, EFI_GUID *, UINTN,
                                   VOID *) {
    return EFI_WRITE_PROTECTED;
  }

  static EFI_STATUS EFIAPI Flush(EFI_FILE_PROTOCOL *) { return EFI_SUCCESS; }

  VolumeInstance Volume_;
  EFI_HANDLE Handle_ = nullptr;
  std::map<std::string, std::string_view> Files_;
  int OpenCount_ = 0;
};

}  // namespace fuzz_model
