// The interactive text UI on an ANSI terminal: raw keyboard input, escape
// sequences to EFI keys, frames written in one write each.
#pragma once

#include <string>

#include "framework/TextUi.h"

namespace host {

class Terminal {
 public:
  // Puts the terminal into raw mode with an alternate screen; restores it
  // when destroyed.
  Terminal();
  ~Terminal();
  Terminal(const Terminal &) = delete;
  Terminal &operator=(const Terminal &) = delete;

  // TRUE when standard input and output are both terminals.
  static bool Available();
  void Size(UINTN *Columns, UINTN *Rows) const;
  framework::ScreenSink Sink();
  framework::KeySource Keys();

  // Turns the bytes of one key press into an EFI key; for tests. Consumes
  // what it used from Bytes; FALSE when Bytes holds no whole key yet.
  static bool DecodeKey(std::string &Bytes, EFI_INPUT_KEY *Key);

 private:
  static VOID Write(VOID *Context, UINTN Column, UINTN Row, UINT8 Attribute,
                    const CHAR16 *Text, UINTN Length);
  static VOID Flush(VOID *Context);
  static VOID SizeOf(VOID *Context, UINTN *Columns, UINTN *Rows);
  static BOOLEAN ReadKey(VOID *Context, EFI_INPUT_KEY *Key);

  std::string Frame_;
  std::string Pending_;
  bool Raw_ = false;
};

}  // namespace host
