// A capturing text console of 80 x 25 characters.
#include "emu/Console.h"

#include "emu/TextConversion.h"

namespace emu {

Console::Console() {
  Mode_ = {1, 0, 0x07, 0, 0, TRUE};
  Output_.Owner = this;
  Output_.Protocol = {Reset,        OutputString, TestString,
                      QueryMode,    SetMode,      SetAttribute,
                      ClearScreen,  SetCursorPosition,
                      EnableCursor, &Mode_};
  Input_ = {InputReset, ReadKeyStroke, nullptr};
}

EFI_STATUS EFIAPI Console::Reset(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                 BOOLEAN Extended) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::OutputString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        CHAR16 *String) {
  if (This == nullptr || String == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  reinterpret_cast<OutputInstance *>(This)->Owner->Text_ += ToUtf8(String);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::TestString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                      CHAR16 *String) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::QueryMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                     UINTN Mode, UINTN *Columns, UINTN *Rows) {
  if (Mode != 0) {
    return EFI_UNSUPPORTED;
  }
  if (Columns == nullptr || Rows == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  *Columns = 80;
  *Rows = 25;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::SetMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                   UINTN Mode) {
  return Mode == 0 ? EFI_SUCCESS : EFI_UNSUPPORTED;
}

EFI_STATUS EFIAPI Console::SetAttribute(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        UINTN Attribute) {
  This->Mode->Attribute = static_cast<INT32>(Attribute & 0x7F);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::ClearScreen(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This) {
  This->Mode->CursorColumn = 0;
  This->Mode->CursorRow = 0;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::SetCursorPosition(
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This, UINTN Column, UINTN Row) {
  if (Column >= 80 || Row >= 25) {
    return EFI_UNSUPPORTED;
  }
  This->Mode->CursorColumn = static_cast<INT32>(Column);
  This->Mode->CursorRow = static_cast<INT32>(Row);
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::EnableCursor(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL *This,
                                        BOOLEAN Visible) {
  This->Mode->CursorVisible = Visible;
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::InputReset(EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This,
                                      BOOLEAN Extended) {
  return EFI_SUCCESS;
}

EFI_STATUS EFIAPI Console::ReadKeyStroke(EFI_SIMPLE_TEXT_INPUT_PROTOCOL *This,
                                         EFI_INPUT_KEY *Key) {
  return EFI_NOT_READY;
}

}  // namespace emu
