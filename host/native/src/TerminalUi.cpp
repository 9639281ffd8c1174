// The ANSI terminal as the text UI's screen and keyboard.
#include "native/TerminalUi.h"

#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "framework/HeadlessDriver.h"

namespace host {
namespace {

termios gSaved;

// Set by SIGWINCH: the window changed its size. The handler is installed
// without SA_RESTART, so that a blocking read returns and the screen is
// drawn again at once.
volatile sig_atomic_t gResized = 0;
struct sigaction gSavedWinch;

void OnResize(int) { gResized = 1; }

// UEFI colour numbers to ANSI ones (black, blue, green, cyan, red, magenta,
// brown, light gray).
constexpr int kAnsiColour[8] = {0, 4, 2, 6, 1, 5, 3, 7};

std::string Sgr(UINT8 Attribute) {
  int Foreground = Attribute & 0x0F;
  int Background = (Attribute >> 4) & 0x07;
  std::string Code = "\x1b[0;";
  Code += std::to_string(Foreground >= 8 ? 90 + kAnsiColour[Foreground - 8]
                                         : 30 + kAnsiColour[Foreground]);
  Code += ";" + std::to_string(40 + kAnsiColour[Background]) + "m";
  return Code;
}

void WriteAll(const std::string &Bytes) {
  size_t Done = 0;
  while (Done < Bytes.size()) {
    ssize_t Written = ::write(STDOUT_FILENO, Bytes.data() + Done, Bytes.size() - Done);
    if (Written <= 0) {
      return;
    }
    Done += static_cast<size_t>(Written);
  }
}

}  // namespace

bool Terminal::Available() {
  return ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0;
}

Terminal::Terminal() {
  if (::tcgetattr(STDIN_FILENO, &gSaved) == 0) {
    termios Raw = gSaved;
    Raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
    Raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
    Raw.c_cc[VMIN] = 1;
    Raw.c_cc[VTIME] = 0;
    Raw_ = ::tcsetattr(STDIN_FILENO, TCSANOW, &Raw) == 0;
  }
  struct sigaction Action = {};
  Action.sa_handler = OnResize;
  sigemptyset(&Action.sa_mask);
  ::sigaction(SIGWINCH, &Action, &gSavedWinch);
  WriteAll("\x1b[?1049h\x1b[?25l\x1b[2J");
}

Terminal::~Terminal() {
  ::sigaction(SIGWINCH, &gSavedWinch, nullptr);
  WriteAll("\x1b[0m\x1b[2J\x1b[?25h\x1b[?1049l");
  if (Raw_) {
    ::tcsetattr(STDIN_FILENO, TCSANOW, &gSaved);
  }
}

void Terminal::Size(UINTN *Columns, UINTN *Rows) const {
  winsize Size = {};
  *Columns = 80;
  *Rows = 25;
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &Size) == 0 && Size.ws_col != 0) {
    *Columns = Size.ws_col;
    *Rows = Size.ws_row;
  }
}

framework::ScreenSink Terminal::Sink() { return {this, Write, Flush, SizeOf}; }

VOID Terminal::SizeOf(VOID *Context, UINTN *Columns, UINTN *Rows) {
  static_cast<const Terminal *>(Context)->Size(Columns, Rows);
}
framework::KeySource Terminal::Keys() { return {this, ReadKey}; }

VOID Terminal::Write(VOID *Context, UINTN Column, UINTN Row, UINT8 Attribute,
                     const CHAR16 *Text, UINTN Length) {
  auto &Self = *static_cast<Terminal *>(Context);
  Self.Frame_ += "\x1b[" + std::to_string(Row + 1) + ";" +
                 std::to_string(Column + 1) + "H" + Sgr(Attribute);
  Self.Frame_ += framework::ToUtf8(std::u16string(Text, Length));
}

VOID Terminal::Flush(VOID *Context) {
  auto &Self = *static_cast<Terminal *>(Context);
  WriteAll(Self.Frame_);
  Self.Frame_.clear();
}

bool Terminal::DecodeKey(std::string &Bytes, EFI_INPUT_KEY *Key) {
  struct Sequence {
    const char *Bytes;
    UINT16 Scan;
  };
  static const Sequence kSequences[] = {
      {"\x1b[A", SCAN_UP},       {"\x1b[B", SCAN_DOWN},
      {"\x1b[C", SCAN_RIGHT},    {"\x1b[D", SCAN_LEFT},
      {"\x1b[H", SCAN_HOME},     {"\x1b[F", SCAN_END},
      {"\x1b[1~", SCAN_HOME},    {"\x1b[4~", SCAN_END},
      {"\x1b[5~", SCAN_PAGE_UP}, {"\x1b[6~", SCAN_PAGE_DOWN},
      {"\x1bOP", SCAN_F1},       {"\x1bOQ", SCAN_F2},
      {"\x1b[11~", SCAN_F1},     {"\x1b[12~", SCAN_F2},
      {"\x1b[21~", SCAN_F10},    {"\x1b[Z", framework::kScanShiftTab},
      {"\x1bOA", SCAN_UP},       {"\x1bOB", SCAN_DOWN},
      {"\x1bOC", SCAN_RIGHT},    {"\x1bOD", SCAN_LEFT}};
  if (Bytes.empty()) {
    return false;
  }
  if (Bytes[0] == '\x1b') {
    for (const Sequence &Each : kSequences) {
      std::string Text = Each.Bytes;
      if (Bytes.compare(0, Text.size(), Text) == 0) {
        Bytes.erase(0, Text.size());
        *Key = {Each.Scan, 0};
        return true;
      }
    }
    for (const Sequence &Each : kSequences) {
      std::string Text = Each.Bytes;
      if (Bytes.size() < Text.size() && Text.compare(0, Bytes.size(), Bytes) == 0 &&
          Bytes.size() > 1) {
        return false;  // the rest of the sequence is still coming
      }
    }
    // A lone Escape, or a sequence we do not know: Escape.
    Bytes.erase(0, 1);
    *Key = {SCAN_ESC, 0};
    return true;
  }
  std::u16string Wide = framework::FromUtf8(Bytes.substr(0, 1));
  size_t Length = 1;
  unsigned char Lead = static_cast<unsigned char>(Bytes[0]);
  if (Lead >= 0xC0) {
    Length = Lead >= 0xF0 ? 4 : Lead >= 0xE0 ? 3 : 2;
    if (Bytes.size() < Length) {
      return false;
    }
    Wide = framework::FromUtf8(Bytes.substr(0, Length));
  }
  Bytes.erase(0, Length);
  CHAR16 Char = Wide.empty() ? 0 : Wide[0];
  if (Char == 0x7F) {
    Char = framework::kCharBackspace;
  } else if (Char == u'\n') {
    Char = framework::kCharCarriageReturn;
  }
  *Key = {SCAN_NULL, Char};
  return true;
}

BOOLEAN Terminal::ReadKey(VOID *Context, EFI_INPUT_KEY *Key) {
  auto &Self = *static_cast<Terminal *>(Context);
  for (;;) {
    if (gResized != 0) {
      gResized = 0;
      // The terminal may have scrolled or kept stale cells: everything is
      // drawn again at the new size.
      WriteAll("\x1b[0m\x1b[2J");
      *Key = {framework::kScanRedraw, 0};
      return TRUE;
    }
    if (!Self.Pending_.empty() && Self.Pending_[0] == '\x1b' &&
        Self.Pending_.size() == 1) {
      // Wait a moment for the rest of an escape sequence.
      pollfd Input = {STDIN_FILENO, POLLIN, 0};
      int Ready = ::poll(&Input, 1, 40);
      if (Ready < 0 && errno == EINTR) {
        continue;
      }
      if (Ready <= 0) {
        Self.Pending_.clear();
        *Key = {SCAN_ESC, 0};
        return TRUE;
      }
    } else if (Terminal::DecodeKey(Self.Pending_, Key)) {
      return TRUE;
    }
    char Buffer[64];
    ssize_t Read = ::read(STDIN_FILENO, Buffer, sizeof(Buffer));
    if (Read < 0 && errno == EINTR) {
      continue;
    }
    if (Read <= 0) {
      return FALSE;
    }
    Self.Pending_.append(Buffer, static_cast<size_t>(Read));
  }
}

}  // namespace host
