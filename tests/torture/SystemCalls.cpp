#include "tests/torture/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test {
namespace {

struct State {
  bool isWatching = false;
  std::array<char, 4096> folder{};
  CallPlan plan;
  std::uint64_t calls = 0;
  std::uint64_t bytes = 0;
  // By descriptor: whether it is of the folder.
  std::array<bool, 1024> files{};
};

// Of the descriptors that are open, and of the calls that made things lasting.
std::map<int, std::string>& paths() {
  static std::map<int, std::string> theirs;
  return theirs;
}
std::vector<std::string>& lasting() {
  static std::vector<std::string> calls;
  return calls;
}

// Without a constructor: libraries open files before those of this program have run.
constinit State s_state{};

// Returns the system's own function.
template <class Function>
Function* system(const char* name) {
  void* const found = ::dlsym(RTLD_NEXT, name);
  if (found == nullptr) {
    std::abort();
  }
  return reinterpret_cast<Function*>(found);
}

bool isWatched(const char* path) {
  return s_state.isWatching &&
         std::strncmp(path, s_state.folder.data(), std::strlen(s_state.folder.data())) == 0;
}

bool isWatched(int file) {
  return s_state.isWatching && file >= 0 && static_cast<std::size_t>(file) < s_state.files.size() &&
         s_state.files[static_cast<std::size_t>(file)];
}

void note(int file, bool isOfFolder) {
  if (file >= 0 && static_cast<std::size_t>(file) < s_state.files.size()) {
    s_state.files[static_cast<std::size_t>(file)] = isOfFolder;
  }
}

// Counts a call. Returns what happens to it; nothing for what always does.
std::optional<CallFault> count() {
  if (s_state.calls++ != s_state.plan.call) {
    return std::nullopt;
  }
  if (s_state.plan.fault == CallFault::Kill) {
    ::kill(::getpid(), SIGKILL);
  }
  return s_state.plan.fault;
}

int errorOf(CallFault fault) {
  switch (fault) {
    case CallFault::NoSpace:
      return ENOSPC;
    case CallFault::InputOutput:
      return EIO;
    case CallFault::Interrupted:
      return EINTR;
    case CallFault::ShortWrite:
    case CallFault::Kill:
      return 0;
  }
  return 0;
}

// Counts a call that may fail. Returns whether it does, with errno.
bool fails() {
  if (const auto fault = count()) {
    errno = errorOf(*fault);
    return errno != 0;
  }
  return false;
}

// Returns the whole path of what a call names by a folder and a path from there.
std::string wholePath(int folder, const char* path) {
  return path[0] != '/' && isWatched(folder) ? paths()[folder] + "/" + path : path;
}

// Makes a call that opens a file.
template <class Open>
int openWatched(const std::string& path, Open open) {
  const bool isOfFolder = isWatched(path.c_str());
  if (isOfFolder && fails()) {
    return -1;
  }
  const int file = open();
  note(file, isOfFolder);
  if (isOfFolder) {
    paths()[file] = path;
  }
  return file;
}

// Reads the mode off the arguments behind the flags, where a file may be made.
#define ORVEX_TAKE_MODE(flags, mode)  \
  mode_t mode = 0;                    \
  if (((flags)&O_CREAT) != 0) {       \
    va_list arguments;                \
    va_start(arguments, flags);       \
    mode = va_arg(arguments, mode_t); \
    va_end(arguments);                \
  }

}  // namespace

void watchSystemCalls(const std::string& folder, const CallPlan& plan) {
  s_state.folder.fill('\0');
  folder.copy(s_state.folder.data(), s_state.folder.size() - 1);
  s_state.files.fill(false);
  s_state.plan = plan;
  s_state.calls = 0;
  s_state.bytes = 0;
  s_state.isWatching = true;
  lasting().clear();
}

const std::vector<std::string>& lastingCalls() {
  return lasting();
}

std::uint64_t watchedCalls() {
  return s_state.calls;
}

std::uint64_t watchedBytes() {
  return s_state.bytes;
}

}  // namespace test

// What the libraries call. Names and types are the system's; its names for the arguments are
// reserved. NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int open(const char* path, int flags, ...) {
  ORVEX_TAKE_MODE(flags, mode)
  const auto open = [&] {
    return test::system<int(const char*, int, ...)>("open")(path, flags, mode);
  };
  // Before anything is watched there may be no memory to name it.
  return test::s_state.isWatching ? test::openWatched(path, open) : open();
}

int openat(int folder, const char* path, int flags, ...) {
  ORVEX_TAKE_MODE(flags, mode)
  const auto open = [&] {
    return test::system<int(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
  };
  return test::s_state.isWatching ? test::openWatched(test::wholePath(folder, path), open) : open();
}

int close(int file) {
  const bool isOfFolder = test::isWatched(file);
  test::note(file, false);
  const bool isFailing = isOfFolder && test::fails();
  const int error = errno;
  // The system closes it in any case.
  const int result = test::system<int(int)>("close")(file);
  if (isFailing) {
    errno = error;
    return -1;
  }
  return result;
}

ssize_t read(int file, void* buffer, size_t size) {
  return test::isWatched(file) && test::fails()
             ? -1
             : test::system<ssize_t(int, void*, size_t)>("read")(file, buffer, size);
}

ssize_t write(int file, const void* buffer, size_t size) {
  if (test::isWatched(file)) {
    if (const auto fault = test::count()) {
      if (*fault == test::CallFault::ShortWrite) {
        size = (size + 1) / 2;
      } else {
        errno = test::errorOf(*fault);
        return -1;
      }
    }
    if (test::s_state.plan.room) {
      size = std::min<std::uint64_t>(size, *test::s_state.plan.room);
      if (size == 0) {
        errno = ENOSPC;
        return -1;
      }
      *test::s_state.plan.room -= size;
    }
    test::s_state.bytes += size;
  }
  return test::system<ssize_t(int, const void*, size_t)>("write")(file, buffer, size);
}

int fsync(int file) {
  if (test::isWatched(file)) {
    if (test::fails()) {
      return -1;
    }
    test::lasting().push_back("fsync " + test::paths()[file]);
  }
  return test::system<int(int)>("fsync")(file);
}

int flock(int file, int operation) {
  return test::isWatched(file) && test::fails()
             ? -1
             : test::system<int(int, int)>("flock")(file, operation);
}

int fstat(int file, struct stat* state) noexcept {
  return test::isWatched(file) && test::fails()
             ? -1
             : test::system<int(int, struct stat*)>("fstat")(file, state);
}

int stat(const char* path, struct stat* state) noexcept {
  return test::isWatched(path) && test::fails()
             ? -1
             : test::system<int(const char*, struct stat*)>("stat")(path, state);
}

int lstat(const char* path, struct stat* state) noexcept {
  return test::isWatched(path) && test::fails()
             ? -1
             : test::system<int(const char*, struct stat*)>("lstat")(path, state);
}

int rename(const char* from, const char* to) noexcept {
  if (test::isWatched(to)) {
    if (test::fails()) {
      return -1;
    }
    test::lasting().push_back(std::string("rename ") + to);
  }
  return test::system<int(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path) noexcept {
  return test::isWatched(path) && test::fails() ? -1
                                                : test::system<int(const char*)>("unlink")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  const bool isFailing = test::s_state.isWatching &&
                         test::isWatched(test::wholePath(folder, path).c_str()) && test::fails();
  return isFailing ? -1 : test::system<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}

// Closes its descriptor without a call that is seen here.
int closedir(DIR* folder) {
  test::note(::dirfd(folder), false);
  return test::system<int(DIR*)>("closedir")(folder);
}

int fchown(int file, uid_t user, gid_t group) noexcept {
  return test::isWatched(file) && test::fails()
             ? -1
             : test::system<int(int, uid_t, gid_t)>("fchown")(file, user, group);
}

int fchmod(int file, mode_t mode) noexcept {
  return test::isWatched(file) && test::fails()
             ? -1
             : test::system<int(int, mode_t)>("fchmod")(file, mode);
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
