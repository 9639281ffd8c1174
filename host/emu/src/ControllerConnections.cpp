// The connect/disconnect log.
#include "emu/ControllerConnections.h"

namespace emu {

EFI_STATUS ControllerConnections::NextResult(std::deque<EFI_STATUS> &Queue,
                                             EFI_STATUS Standing) {
  if (Queue.empty()) {
    return Standing;
  }
  const EFI_STATUS Status = Queue.front();
  Queue.pop_front();
  return Status;
}

EFI_STATUS ControllerConnections::Connect(EFI_HANDLE Controller,
                                          EFI_HANDLE DriverImage,
                                          bool Recursive, bool ValidHandle) {
  const EFI_STATUS Result = ValidHandle
                                ? NextResult(ConnectQueue_, ConnectResult_)
                                : EFI_INVALID_PARAMETER;
  Calls_.push_back({ControllerCallKind::kConnect, Controller, DriverImage,
                    nullptr, Recursive, Result});
  return Result;
}

EFI_STATUS ControllerConnections::Disconnect(EFI_HANDLE Controller,
                                             EFI_HANDLE DriverImage,
                                             EFI_HANDLE Child,
                                             bool ValidHandle) {
  const EFI_STATUS Result =
      ValidHandle ? NextResult(DisconnectQueue_, DisconnectResult_)
                  : EFI_INVALID_PARAMETER;
  Calls_.push_back({ControllerCallKind::kDisconnect, Controller, DriverImage,
                    Child, false, Result});
  return Result;
}

}  // namespace emu
