#include "cli/ConsoleText.h"

#include <atomic>
#include <windows.h>

namespace cli {
namespace {

// What the console had, 0 while it has that or there is no console. Of the process: the system
// tells of an interrupt on a thread of its own.
std::atomic<UINT> s_before{0};

void giveBack() {
  if (const UINT before = s_before.exchange(0); before != 0) {
    static_cast<void>(SetConsoleOutputCP(before));
  }
}

// Leaves it to the others what becomes of the program.
BOOL WINAPI giveBackAtTheEnd(DWORD /*event*/) {
  giveBack();
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
    giveBack();
  }
}

}  // namespace cli
