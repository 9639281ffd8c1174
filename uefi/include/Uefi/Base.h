// Base types of the UEFI world, shared by the native and the EFI build.
//
// The module is compiled twice: for x86_64-unknown-windows (the real image)
// and for the build machine (tests, native host, fuzzers). Everything here is
// written so that both builds see the same sizes and the same calling
// convention on every protocol table.
#pragma once

#include <stddef.h>
#include <stdint.h>

typedef unsigned char BOOLEAN;
typedef signed char INT8;
typedef unsigned char UINT8;
typedef short INT16;
typedef unsigned short UINT16;
typedef int INT32;
typedef unsigned int UINT32;
// long long on both builds: 'long' is 32 bits on the EFI target.
typedef long long INT64;
typedef unsigned long long UINT64;
typedef long long INTN;
typedef unsigned long long UINTN;
typedef char CHAR8;
typedef char16_t CHAR16;
typedef void VOID;

typedef UINTN EFI_STATUS;
typedef VOID *EFI_HANDLE;
typedef VOID *EFI_EVENT;
typedef UINTN EFI_TPL;
typedef UINT64 EFI_LBA;
typedef UINT64 EFI_PHYSICAL_ADDRESS;
typedef UINT64 EFI_VIRTUAL_ADDRESS;
typedef VOID *EFI_HII_HANDLE;
typedef UINT16 EFI_STRING_ID;
typedef CHAR16 *EFI_STRING;

#define TRUE ((BOOLEAN)1)
#define FALSE ((BOOLEAN)0)
#ifndef NULL
#define NULL nullptr
#endif

#define IN
#define OUT
#define OPTIONAL
#define CONST const

// Protocol tables use the Microsoft x64 convention in both builds, so a table
// filled by real firmware and one filled by the emulator are called alike.
#if defined(_WIN32) || defined(__MINGW32__) || defined(_MSC_VER)
#define EFIAPI
#define RAIDCFG_EFI_TARGET 1
#else
#define EFIAPI __attribute__((ms_abi))
#define RAIDCFG_EFI_TARGET 0
#endif

// Variadic EFIAPI functions take their arguments the Microsoft way.
typedef __builtin_ms_va_list VA_LIST;
#define VA_START(Marker, Parameter) __builtin_ms_va_start(Marker, Parameter)
#define VA_ARG(Marker, TYPE) __builtin_va_arg(Marker, TYPE)
#define VA_END(Marker) __builtin_ms_va_end(Marker)
#define VA_COPY(Dest, Start) __builtin_ms_va_copy(Dest, Start)

typedef struct {
  UINT32 Data1;
  UINT16 Data2;
  UINT16 Data3;
  UINT8 Data4[8];
} EFI_GUID;

static_assert(sizeof(EFI_GUID) == 16, "EFI_GUID is 16 bytes");
static_assert(sizeof(UINTN) == 8 && sizeof(VOID *) == 8, "x86-64 only");
static_assert(sizeof(CHAR16) == 2, "CHAR16 is UTF-16");

[[nodiscard]] constexpr bool CompareGuid(const EFI_GUID &A, const EFI_GUID &B) {
  if (A.Data1 != B.Data1 || A.Data2 != B.Data2 || A.Data3 != B.Data3) {
    return false;
  }
  for (int I = 0; I < 8; I++) {
    if (A.Data4[I] != B.Data4[I]) {
      return false;
    }
  }
  return true;
}

// ---- Status codes -------------------------------------------------------

#define MAX_BIT 0x8000000000000000ULL
#define ENCODE_ERROR(StatusCode) ((EFI_STATUS)(MAX_BIT | (StatusCode)))
#define ENCODE_WARNING(StatusCode) ((EFI_STATUS)(StatusCode))
#define EFI_ERROR(StatusCode) (((INTN)(EFI_STATUS)(StatusCode)) < 0)

#define EFI_SUCCESS 0ULL
#define EFI_LOAD_ERROR ENCODE_ERROR(1)
#define EFI_INVALID_PARAMETER ENCODE_ERROR(2)
#define EFI_UNSUPPORTED ENCODE_ERROR(3)
#define EFI_BAD_BUFFER_SIZE ENCODE_ERROR(4)
#define EFI_BUFFER_TOO_SMALL ENCODE_ERROR(5)
#define EFI_NOT_READY ENCODE_ERROR(6)
#define EFI_DEVICE_ERROR ENCODE_ERROR(7)
#define EFI_WRITE_PROTECTED ENCODE_ERROR(8)
#define EFI_OUT_OF_RESOURCES ENCODE_ERROR(9)
#define EFI_VOLUME_CORRUPTED ENCODE_ERROR(10)
#define EFI_VOLUME_FULL ENCODE_ERROR(11)
#define EFI_NO_MEDIA ENCODE_ERROR(12)
#define EFI_MEDIA_CHANGED ENCODE_ERROR(13)
#define EFI_NOT_FOUND ENCODE_ERROR(14)
#define EFI_ACCESS_DENIED ENCODE_ERROR(15)
#define EFI_NO_RESPONSE ENCODE_ERROR(16)
#define EFI_NO_MAPPING ENCODE_ERROR(17)
#define EFI_TIMEOUT ENCODE_ERROR(18)
#define EFI_NOT_STARTED ENCODE_ERROR(19)
#define EFI_ALREADY_STARTED ENCODE_ERROR(20)
#define EFI_ABORTED ENCODE_ERROR(21)
#define EFI_ICMP_ERROR ENCODE_ERROR(22)
#define EFI_TFTP_ERROR ENCODE_ERROR(23)
#define EFI_PROTOCOL_ERROR ENCODE_ERROR(24)
#define EFI_INCOMPATIBLE_VERSION ENCODE_ERROR(25)
#define EFI_SECURITY_VIOLATION ENCODE_ERROR(26)
#define EFI_CRC_ERROR ENCODE_ERROR(27)
#define EFI_END_OF_MEDIA ENCODE_ERROR(28)
#define EFI_END_OF_FILE ENCODE_ERROR(31)
#define EFI_INVALID_LANGUAGE ENCODE_ERROR(32)
#define EFI_COMPROMISED_DATA ENCODE_ERROR(33)

#define EFI_WARN_UNKNOWN_GLYPH ENCODE_WARNING(1)
#define EFI_WARN_DELETE_FAILURE ENCODE_WARNING(2)
#define EFI_WARN_WRITE_FAILURE ENCODE_WARNING(3)
#define EFI_WARN_BUFFER_TOO_SMALL ENCODE_WARNING(4)

// ---- Record helpers -----------------------------------------------------

#define OFFSET_OF(TYPE, Field) ((UINTN) __builtin_offsetof(TYPE, Field))

// The record that embeds Field at address Record.
#define BASE_CR(Record, TYPE, Field) \
  ((TYPE *)((CHAR8 *)(Record) - OFFSET_OF(TYPE, Field)))

#define ARRAY_SIZE(Array) (sizeof(Array) / sizeof((Array)[0]))

#define SIGNATURE_16(A, B) ((A) | ((B) << 8))
#define SIGNATURE_32(A, B, C, D) \
  (SIGNATURE_16(A, B) | (SIGNATURE_16(C, D) << 16))
