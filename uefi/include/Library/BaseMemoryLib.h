#pragma once

#include <Uefi.h>

VOID *CopyMem(VOID *Destination, const VOID *Source, UINTN Length);
VOID *SetMem(VOID *Buffer, UINTN Length, UINT8 Value);
VOID *ZeroMem(VOID *Buffer, UINTN Length);
[[nodiscard]] INTN CompareMem(const VOID *A, const VOID *B, UINTN Length);
