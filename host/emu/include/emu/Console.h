// The system table's consoles: ConOut and StdErr keep what is written to
// them, ConIn never has a key.
#pragma once

#include <Uefi.h>

#include <string>

namespace emu {

class Console {
 public:
  Console();
  Console(const Console &) = delete;
  Console &operator=(const Console &) = delete;

  EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *Output() { return &Output_.Protocol; }
  EFI_SIMPLE_TEXT_INPUT_PROTOCOL *Input() { return &Input_; }
  // Everything written to the output so far, as UTF-8.
  const std::string &Text() const { return Text_; }
  VOID Clear() { Text_.clear(); }

 private:
  struct OutputInstance {
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL Protocol;
    Console *Owner;
  };

  static EFI_STATUS EFIAPI Reset(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                 BOOLEAN Extended);
  static EFI_STATUS EFIAPI OutputString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        CHAR16 *String);
  static EFI_STATUS EFIAPI TestString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                      CHAR16 *String);
  static EFI_STATUS EFIAPI QueryMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                     UINTN Mode, UINTN *Columns, UINTN *Rows);
  static EFI_STATUS EFIAPI SetMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                   UINTN Mode);
  static EFI_STATUS EFIAPI SetAttribute(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        UINTN Attribute);
  static EFI_STATUS EFIAPI ClearScreen(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This);
  static EFI_STATUS EFIAPI SetCursorPosition(
      EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN Column, UINTN Row);
  static EFI_STATUS EFIAPI EnableCursor(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        BOOLEAN Visible);
  static EFI_STATUS EFIAPI InputReset(EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This,
                                      BOOLEAN Extended);
  static EFI_STATUS EFIAPI ReadKeyStroke(EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This,
                                         EFI_INPUT_KEY *Key);

  OutputInstance Output_;
  SIMPLE_TEXT_OUTPUT_MODE Mode_;
  EFI_SIMPLE_TEXT_INPUT_PROTOCOL Input_;
  std::string Text_;
};

}  // namespace emu
