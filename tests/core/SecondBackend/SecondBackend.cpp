#include "SecondBackend.h"

namespace second_backend {

constinit const CHAR8 *gLastFunctionName = nullptr;

EFI_STATUS ParseControllerShow(CHAR16 *Output, RAID_CONTROLLER *Controller,
                               UINT32 *ErrorCode) {
  gLastFunctionName = __func__;
  *ErrorCode = 0;
  return EFI_UNSUPPORTED;
}

}  // namespace second_backend
