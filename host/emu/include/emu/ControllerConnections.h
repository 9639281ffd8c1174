// ConnectController and DisconnectController as a log with scripted
// results: no drivers run here, but a test can check the reconnect sequence
// a module asks for and make either call fail.
#pragma once

#include <Uefi.h>

#include <deque>
#include <vector>

namespace emu {

enum class ControllerCallKind { kConnect, kDisconnect };

struct ControllerCall {
  ControllerCallKind Kind;
  EFI_HANDLE Controller;
  EFI_HANDLE DriverImage;  // Connect: first entry of the list, or NULL
  EFI_HANDLE Child;        // Disconnect only
  bool Recursive;          // Connect only
  EFI_STATUS Result;
};

class ControllerConnections {
 public:
  // The status every later call of that kind returns (EFI_SUCCESS at start).
  VOID SetConnectResult(EFI_STATUS Status) { ConnectResult_ = Status; }
  VOID SetDisconnectResult(EFI_STATUS Status) { DisconnectResult_ = Status; }
  // One-off results, used in order before the standing result.
  VOID QueueConnectResult(EFI_STATUS Status) { ConnectQueue_.push_back(Status); }
  VOID QueueDisconnectResult(EFI_STATUS Status) {
    DisconnectQueue_.push_back(Status);
  }

  // Records a call; ValidHandle false makes it EFI_INVALID_PARAMETER.
  EFI_STATUS Connect(EFI_HANDLE Controller, EFI_HANDLE DriverImage,
                     bool Recursive, bool ValidHandle);
  EFI_STATUS Disconnect(EFI_HANDLE Controller, EFI_HANDLE DriverImage,
                        EFI_HANDLE Child, bool ValidHandle);

  const std::vector<ControllerCall> &Calls() const { return Calls_; }
  VOID ClearCalls() { Calls_.clear(); }

 private:
  static EFI_STATUS NextResult(std::deque<EFI_STATUS> &Queue,
                               EFI_STATUS Standing);

  std::vector<ControllerCall> Calls_;
  std::deque<EFI_STATUS> ConnectQueue_;
  std::deque<EFI_STATUS> DisconnectQueue_;
  EFI_STATUS ConnectResult_ = EFI_SUCCESS;
  EFI_STATUS DisconnectResult_ = EFI_SUCCESS;
};

}  // namespace emu
