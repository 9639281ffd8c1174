// HII: the package list a driver carries, the database it is registered in,
// and the string protocol texts are fetched through. The configuration
// routing, font and image protocols are only located, so their tables are
// left opaque.
#pragma once

#include <Uefi.h>

#define EFI_HII_PACKAGE_LIST_PROTOCOL_GUID \
  {0x6A1EE763, 0xD47A, 0x43B4, {0xAA, 0xBE, 0xEF, 0x1D, 0xE2, 0xAB, 0x56, 0xFC}}
#define EFI_HII_DATABASE_PROTOCOL_GUID \
  {0xEF9FC172, 0xA1B2, 0x4693, {0xB3, 0x27, 0x6D, 0x32, 0xFC, 0x41, 0x60, 0x42}}
#define EFI_HII_STRING_PROTOCOL_GUID \
  {0x0FD96974, 0x23AA, 0x4CDC, {0xB9, 0xCB, 0x98, 0xD1, 0x77, 0x50, 0x32, 0x2A}}
#define EFI_HII_CONFIG_ROUTING_PROTOCOL_GUID \
  {0x587E72D7, 0xCC50, 0x4F79, {0x82, 0x09, 0xCA, 0x29, 0x1F, 0xC1, 0xA1, 0x0F}}
#define EFI_HII_FONT_PROTOCOL_GUID \
  {0xE9CA4775, 0x8657, 0x47FC, {0x97, 0xE7, 0x7E, 0xD6, 0x5A, 0x08, 0x43, 0x24}}
#define EFI_HII_IMAGE_PROTOCOL_GUID \
  {0x31A6406A, 0x6BDF, 0x4E46, {0xB2, 0xA2, 0xEB, 0xAA, 0x89, 0xC4, 0x09, 0x20}}

#pragma pack(push, 1)
typedef struct {
  EFI_GUID PackageListGuid;
  UINT32 PackageLength;
} EFI_HII_PACKAGE_LIST_HEADER;

// Length in bits 0-23, type in bits 24-31.
typedef struct {
  UINT32 LengthAndType;
} EFI_HII_PACKAGE_HEADER;
#pragma pack(pop)

#define EFI_HII_PACKAGE_STRINGS 0x04
#define EFI_HII_PACKAGE_END 0xDF

#define EFI_HII_SIBT_END 0x00
#define EFI_HII_SIBT_STRING_UCS2 0x14
#define EFI_HII_SIBT_SKIP2 0x21
#define EFI_HII_SIBT_SKIP1 0x22

typedef EFI_HII_PACKAGE_LIST_HEADER *EFI_HII_PACKAGE_LIST_PROTOCOL;

typedef UINTN EFI_HII_DATABASE_NOTIFY_TYPE;

typedef struct _EFI_HII_DATABASE_PROTOCOL EFI_HII_DATABASE_PROTOCOL;
struct _EFI_HII_DATABASE_PROTOCOL {
  EFI_STATUS(EFIAPI *NewPackageList)
  (const EFI_HII_DATABASE_PROTOCOL *This,
   const EFI_HII_PACKAGE_LIST_HEADER *PackageList, EFI_HANDLE DriverHandle,
   EFI_HII_HANDLE *Handle);
  EFI_STATUS(EFIAPI *RemovePackageList)
  (const EFI_HII_DATABASE_PROTOCOL *This, EFI_HII_HANDLE Handle);
  VOID *UpdatePackageList;
  VOID *ListPackageLists;
  VOID *ExportPackageLists;
  VOID *RegisterPackageNotify;
  VOID *UnregisterPackageNotify;
  VOID *FindKeyboardLayouts;
  VOID *GetKeyboardLayout;
  VOID *SetKeyboardLayout;
  VOID *GetPackageListHandle;
};

typedef struct _EFI_HII_STRING_PROTOCOL EFI_HII_STRING_PROTOCOL;
struct _EFI_HII_STRING_PROTOCOL {
  VOID *NewString;
  // Language is required and matched exactly ("en-US", not "en").
  // EFI_BUFFER_TOO_SMALL sets *StringSize to the bytes needed.
  EFI_STATUS(EFIAPI *GetString)
  (const EFI_HII_STRING_PROTOCOL *This, const CHAR8 *Language,
   EFI_HII_HANDLE PackageList, EFI_STRING_ID StringId, EFI_STRING String,
   UINTN *StringSize, VOID *StringFontInfo);
  VOID *SetString;
  // A ';'-separated list of the package list's languages.
  EFI_STATUS(EFIAPI *GetLanguages)
  (const EFI_HII_STRING_PROTOCOL *This, EFI_HII_HANDLE PackageList,
   CHAR8 *Languages, UINTN *LanguagesSize);
  VOID *GetSecondaryLanguages;
};

extern EFI_GUID gEfiHiiPackageListProtocolGuid;
extern EFI_GUID gEfiHiiDatabaseProtocolGuid;
extern EFI_GUID gEfiHiiStringProtocolGuid;
extern EFI_GUID gEfiHiiConfigRoutingProtocolGuid;
extern EFI_GUID gEfiHiiFontProtocolGuid;
extern EFI_GUID gEfiHiiImageProtocolGuid;
