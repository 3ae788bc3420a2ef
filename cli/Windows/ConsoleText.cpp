#include "cli/ConsoleText.h"

#include <atomic>
#include <windows.h>

namespace cli {
namespace {

// What the console had, 0 while it has that or there is no console. Of the process: the system
// tells of an interrupt on a thread of its own.
std::atomic<UINT> s_before{0};
std::atomic<bool> s_isKept{false};

// Leaves it to the others what becomes of the program. Whether they are asked first depends on the
// system; what is no interrupt, such as the end of the console, nobody holds off.
BOOL WINAPI giveBackAtTheEnd(DWORD event) {
  if (!s_isKept || (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)) {
    giveConsoleBack();
  }
  return FALSE;
}

}  // namespace

ConsoleText::ConsoleText() {
  const UINT before = GetConsoleOutputCP();
  if (before != 0 && before != GetACP() && SetConsoleOutputCP(GetACP()) != FALSE) {
    s_before = before;
    static_cast<void>(SetConsoleCtrlHandler(giveBackAtTheEnd, TRUE));
  }
}

ConsoleText::~ConsoleText() {
  if (s_before != 0) {
    static_cast<void>(SetConsoleCtrlHandler(giveBackAtTheEnd, FALSE));
    giveConsoleBack();
  }
}

void giveConsoleBack() noexcept {
  if (const UINT before = s_before.exchange(0); before != 0) {
    static_cast<void>(SetConsoleOutputCP(before));
  }
}

void keepConsoleOnInterrupt(bool isKept) noexcept {
  s_isKept = isKept;
}

}  // namespace cli
