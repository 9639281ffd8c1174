// The module-wide firmware pointers. They start out NULL; the image entry
// fills them from its arguments before anything else runs.
#include <Library/UefiBootServicesTableLib.h>

constinit EFI_HANDLE gImageHandle = nullptr;
constinit EFI_SYSTEM_TABLE *gST = nullptr;
constinit EFI_BOOT_SERVICES *gBS = nullptr;
constinit EFI_RUNTIME_SERVICES *gRT = nullptr;
