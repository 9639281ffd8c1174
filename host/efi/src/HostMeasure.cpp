// Free memory and the time-stamp counter's rate under the firmware.
#include "HostMeasure.h"

#include <Library/UefiBootServicesTableLib.h>

namespace {

// OVMF's map has about a hundred descriptors of 48 bytes.
alignas(8) constinit UINT8 gMemoryMap[64 * 1024] = {};

constexpr UINTN kCalibrationMicroseconds = 50000;

constinit UINT64 gTicksPerMillisecond = 0;

}  // namespace

UINT64 HostFreeMemoryPages(VOID) {
  UINTN Size = sizeof(gMemoryMap);
  UINTN Key = 0;
  UINTN DescriptorSize = 0;
  UINT32 Version = 0;
  if (EFI_ERROR(gBS->GetMemoryMap(&Size, reinterpret_cast<EFI_MEMORY_DESCRIPTOR *>(gMemoryMap),
                                  &Key, &DescriptorSize, &Version)) ||
      DescriptorSize < sizeof(EFI_MEMORY_DESCRIPTOR) || Size > sizeof(gMemoryMap)) {
    return 0;
  }
  UINT64 Pages = 0;
  for (UINTN Offset = 0; Offset + DescriptorSize <= Size; Offset += DescriptorSize) {
    const auto *Descriptor = reinterpret_cast<const EFI_MEMORY_DESCRIPTOR *>(gMemoryMap + Offset);
    if (Descriptor->Type == EfiConventionalMemory) {
      Pages += Descriptor->NumberOfPages;
    }
  }
  return Pages;
}

UINT64 HostTimeStamp(VOID) { return __builtin_ia32_rdtsc(); }

UINT64 HostTicksPerMillisecond(VOID) {
  if (gTicksPerMillisecond == 0) {
    const UINT64 Start = HostTimeStamp();
    gBS->Stall(kCalibrationMicroseconds);
    gTicksPerMillisecond = (HostTimeStamp() - Start) / (kCalibrationMicroseconds / 1000);
  }
  return gTicksPerMillisecond;
}
