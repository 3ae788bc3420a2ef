// handles_probe URI MODULE...: loads modules from its own directory, has the first of them use the
// others (useModules), and unloads them, the last one first. Does the same a hundred times more,
// but has them used in each tenth round alone. Prints what the process has of the system after the
// first time and after the last. It is linked with no library of the project, so that all of them
// go. Exits with 1 when one does not, or when there is more of anything.

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>
#include <windows.h>

// Needs the header above.
#include <tlhelp32.h>

#include "platform/Windows/Handle.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

struct Owned {
  int handles = 0;
  int threads = 0;
  int tlsSlots = 0;  // of each thread
  int flsSlots = 0;  // of each fiber

  [[nodiscard]] bool isWithin(const Owned& other) const {
    return handles <= other.handles && threads <= other.threads && tlsSlots <= other.tlsSlots &&
           flsSlots <= other.flsSlots;
  }
  void print(const char* moment) const {
    std::printf("%s: %d handles, %d threads, %d TLS slots, %d FLS slots\n", moment, handles,
                threads, tlsSlots, flsSlots);
  }
};

int countThreads() {
  const platform::Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  int count = 0;
  for (BOOL isThere = Thread32First(snapshot.get(), &entry); isThere != FALSE;
       isThere = Thread32Next(snapshot.get(), &entry)) {
    count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
  }
  return count;
}

// Returns how many slots are taken, which nobody tells, but for how many are free.
template <class Allocate, class Free>
int countSlots(int most, Allocate allocate, Free free) {
  std::vector<DWORD> slots;
  for (DWORD slot = allocate(); slot != TLS_OUT_OF_INDEXES; slot = allocate()) {
    slots.push_back(slot);
  }
  for (const DWORD slot : slots) {
    free(slot);
  }
  return most - static_cast<int>(slots.size());
}

Owned count() {
  constexpr int kMostTls = 64 + 1024;
  constexpr int kMostFls = 4096;
  return {test::countHandles(), countThreads(), countSlots(kMostTls, TlsAlloc, TlsFree),
          countSlots(
              kMostFls, [] { return FlsAlloc(nullptr); }, FlsFree)};
}

std::string ownDirectory() {
  char path[MAX_PATH] = {};
  const std::string program(path, GetModuleFileNameA(nullptr, path, sizeof path));
  return program.substr(0, program.rfind('\\') + 1);
}

bool isLoaded() {
  return GetModuleHandleA("OrvexCimCore.dll") != nullptr;
}

// Returns whether the first module could use the others.
bool use(HMODULE first, const char* uri, const platform::Handle& answer) {
  using Use = bool (*)(const char*, void*);
  const auto useModules =
      reinterpret_cast<Use>(reinterpret_cast<void*>(GetProcAddress(first, "useModules")));
  return useModules != nullptr && useModules(uri, answer.get());
}

// Uses the modules where there is a URI. Returns whether all of it could be done.
bool loadAndUnload(const char* uri, const std::vector<std::string>& paths) {
  const platform::Handle answer(test::makeEvent());
  std::vector<HMODULE> modules;
  for (const std::string& path : paths) {
    modules.push_back(LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (modules.back() == nullptr) {
      std::printf("%s is not loaded, error %lu\n", path.c_str(), GetLastError());
      return false;
    }
  }
  if (uri != nullptr && !use(modules.front(), uri, answer)) {
    std::puts("the update was not made");
    return false;
  }
  while (!modules.empty()) {
    FreeLibrary(modules.back());
    modules.pop_back();
  }
  // Where it was used, a call is still away in the first module.
  if (isLoaded() != (uri != nullptr)) {
    std::printf("OrvexCimCore.dll %s\n", isLoaded() ? "stays" : "is gone too early");
    return false;
  }
  SetEvent(answer.get());
  if (!test::waitUntil([] { return !isLoaded(); })) {
    std::puts("OrvexCimCore.dll stays");
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kRounds = 100;
  constexpr int kRoundsOfUse = 10;
  if (argc < 3) {
    return 1;
  }
  std::vector<std::string> paths;
  for (int i = 2; i < argc; ++i) {
    paths.push_back(ownDirectory() + argv[i]);
  }
  if (!loadAndUnload(argv[1], paths)) {
    return 1;
  }
  // What the system opens on the first use stays.
  const Owned first = count();
  first.print("after the first");
  for (int round = 0; round < kRounds; ++round) {
    if (!loadAndUnload(round % kRoundsOfUse == 0 ? argv[1] : nullptr, paths)) {
      return 1;
    }
  }
  const bool isAllGiven = test::waitUntil([&first] { return count().isWithin(first); });
  count().print("after the last");
  return isAllGiven ? 0 : 1;
}
