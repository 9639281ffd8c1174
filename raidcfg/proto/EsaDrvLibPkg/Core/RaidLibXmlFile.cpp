// Reading an XML file from the module's own volume through the host's
// streaming parser.
#include <Library/MemoryAllocationLib.h>
#include <Library/UefiBootServicesTableLib.h>
#include <Protocol/LoadedImage.h>
#include <Protocol/SimpleFileSystem.h>

#include "RaidLibDiscovery.h"
#include "RaidLibTrace.h"

namespace {

constexpr UINTN kXmlChunkSize = 8192;

constinit EFI_TARNXML_PROTOCOL *gTarnXml = nullptr;

// The helpers below trace under Caller's name, the file read's.
[[nodiscard]] EFI_STATUS LocateXmlParser(const CHAR8 *Caller,
                                         UINT32 *ErrorCode) {
  if (gTarnXml != nullptr) {
    return EFI_SUCCESS;
  }
  EFI_STATUS Status =
      gBS->LocateProtocol(&gEfiTarnXmlProtocolGuid, nullptr, (VOID **)&gTarnXml);
  if (EFI_ERROR(Status) || gTarnXml == nullptr) {
    gTarnXml = nullptr;
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_INFO,
                      "[%a]LocateProtocol(EFI_TARNXML_PROTOCOL): %r.\n",
                      Status);
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return EFI_ERROR(Status) ? Status : EFI_NOT_FOUND;
  }
  return EFI_SUCCESS;
}

// The root directory of the volume the module was loaded from.
[[nodiscard]] EFI_STATUS OpenOwnVolume(const CHAR8 *Caller,
                                       EFI_FILE_PROTOCOL **Root,
                                       UINT32 *ErrorCode) {
  EFI_LOADED_IMAGE_PROTOCOL *LoadedImage = nullptr;
  EFI_STATUS Status = gBS->HandleProtocol(
      gImageHandle, &gEfiLoadedImageProtocolGuid, (VOID **)&LoadedImage);
  if (EFI_ERROR(Status) || LoadedImage == nullptr) {
    RAID_LIB_TRACE_AS(
        Caller, TARN_DEBUG_ERROR,
        "[%a]ERROR: HandleProtocol(gEfiLoadedImageProtocolGuid) %r.\n", Status);
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return EFI_ERROR(Status) ? Status : EFI_NOT_FOUND;
  }
  EFI_SIMPLE_FILE_SYSTEM_PROTOCOL *FileSystem = nullptr;
  Status = gBS->HandleProtocol(LoadedImage->DeviceHandle,
                               &gEfiSimpleFileSystemProtocolGuid,
                               (VOID **)&FileSystem);
  if (EFI_ERROR(Status) || FileSystem == nullptr) {
    RAID_LIB_TRACE_AS(
        Caller, TARN_DEBUG_ERROR,
        "[%a]ERROR: HandleProtocol(gEfiSimpleFileSystemProtocolGuid) %r.\n",
        Status);
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return EFI_ERROR(Status) ? Status : EFI_NOT_FOUND;
  }
  Status = FileSystem->OpenVolume(FileSystem, Root);
  if (EFI_ERROR(Status)) {
    RAID_LIB_TRACE_AS(Caller, TARN_DEBUG_ERROR,
                      "[%a]ERROR: SimpleFileSystemProtocol OpenVolume %r.\n",
                      Status);
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return Status;
  }
  return EFI_SUCCESS;
}

// Feeds the file to the parser in chunks; the call after the last byte is
// the final one. A failed read ends the document where it stands. A buffer
// the parser cannot give is EFI_OUT_OF_RESOURCES: the rest of the file
// would be lost without a word, and a profile read short offers and
// creates with other levels and policies than the file's.
[[nodiscard]] EFI_STATUS FeedFile(TARNXML_PARSER *Parser,
                                  EFI_FILE_PROTOCOL *File) {
  for (;;) {
    VOID *Buffer = gTarnXml->GetBuffer(Parser, kXmlChunkSize);
    if (Buffer == nullptr) {
      return EFI_OUT_OF_RESOURCES;
    }
    UINTN Size = kXmlChunkSize;
    if (EFI_ERROR(File->Read(File, &Size, Buffer))) {
      return EFI_SUCCESS;
    }
    if (Size > kXmlChunkSize) {
      Size = kXmlChunkSize;
    }
    // The parser's verdict is not needed: whatever the callbacks built
    // from a damaged file stays.
    gTarnXml->ParseBuffer(Parser, Size, Size == 0 ? TRUE : FALSE);
    if (Size == 0) {
      return EFI_SUCCESS;
    }
  }
}

}  // namespace

// Parses FileName from the root of the module's volume with the given
// element callbacks. A file that cannot be opened leaves the callbacks
// uncalled and is not a failure; one that could not be read whole for
// memory is EFI_OUT_OF_RESOURCES.
EFI_STATUS RaidLibParseXml(const CHAR16 *FileName, TARNXML_START_ELEMENT Start,
                           TARNXML_END_ELEMENT End, UINT32 *ErrorCode) {
  EFI_STATUS Status = LocateXmlParser(__func__, ErrorCode);
  if (EFI_ERROR(Status)) {
    return Status;
  }
  TARNXML_PARSER *Parser = gTarnXml->ParserCreate(u"UTF-8");
  if (Parser == nullptr) {
    RAID_LIB_TRACE(TARN_DEBUG_INFO,
                   "[%a]Create Xml Parser Error: TarnParse == NULL\n");
    *ErrorCode = RAID_ERROR_NOT_FOUND;
    return EFI_NOT_FOUND;
  }
  gTarnXml->SetElementHandler(Parser, Start, End);

  EFI_FILE_PROTOCOL *Root = nullptr;
  Status = OpenOwnVolume(__func__, &Root, ErrorCode);
  if (EFI_ERROR(Status)) {
    gTarnXml->ParserFree(Parser);
    return Status;
  }
  EFI_FILE_PROTOCOL *File = nullptr;
  Status = Root->Open(Root, &File, const_cast<CHAR16 *>(FileName),
                      EFI_FILE_MODE_READ, 0);
  if (EFI_ERROR(Status) || File == nullptr) {
    RAID_LIB_TRACE(TARN_DEBUG_ERROR, "[%a]ERROR: Failed to open file %S\n",
                   FileName);
    Root->Close(Root);
    gTarnXml->ParserFree(Parser);
    return EFI_SUCCESS;
  }
  Status = FeedFile(Parser, File);
  File->Close(File);
  Root->Close(Root);
  gTarnXml->ParserFree(Parser);
  if (EFI_ERROR(Status)) {
    *ErrorCode = RAID_ERROR_OUT_OF_RESOURCES;
  }
  return Status;
}

// Forgets the located parser protocol (the module is being unloaded).
VOID RaidLibResetXmlParser() { gTarnXml = nullptr; }
