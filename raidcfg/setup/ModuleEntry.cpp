// Placeholder until the image entry is written.
#include <Uefi.h>
