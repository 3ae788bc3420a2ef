#include "midapi/Windows/WindowsFileSystem.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>
#include <windows.h>

#include "platform/Mutex.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/NoErrorDialogs.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const char* operation, const fs::path& path, DWORD error) {
  throw FileFault(operation, path,
                  std::error_code(static_cast<int>(error), std::system_category()));
}

// For what is found out here and not by the system.
[[noreturn]] void fail(const char* operation, const fs::path& path, std::errc error) {
  throw FileFault(operation, path, std::make_error_code(error));
}

// Returns whether the error is that of a file that somebody has open.
bool isInUse(DWORD error) {
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
}

bool isFolder(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// How long a file is waited for that others have open. They read a few megabytes at the most, and
// what they hold longer they do not let go in the time that a caller waits.
constexpr std::chrono::seconds kPatience{2};
constexpr std::chrono::milliseconds kPause{1};

// Moves a file or folder. A file in its way is replaced, which the system refuses for as long as
// anybody has that open; `readers` is locked for each attempt. Returns the error, 0 for none.
DWORD moveInto(const fs::path& from, const fs::path& to, platform::Mutex& readers,
               platform::Clock& clock) {
  const platform::Clock::TimePoint deadline = clock.now() + kPatience;
  for (;;) {
    DWORD error = ERROR_SUCCESS;
    {
      const platform::Lock lock(readers);
      if (MoveFileExW(from.c_str(), to.c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == FALSE) {
        error = GetLastError();
      }
    }
    if (error == ERROR_SUCCESS) {
      return error;
    }
    if (!isInUse(error) || isFolder(to) || clock.now() >= deadline) {
      return error;
    }
    clock.sleepFor(kPause);
  }
}

platform::Handle openFile(const char* operation, const fs::path& path, DWORD access, DWORD creation,
                          DWORD flags = 0) {
  const HANDLE file =
      CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, creation, FILE_ATTRIBUTE_NORMAL | flags, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    fail(operation, path, GetLastError());
  }
  return platform::Handle(file);
}

// Returns how many of the bytes one call may transfer.
DWORD portionOf(std::size_t size) {
  return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<std::int32_t>::max()));
}

class WindowsWritableFile final : public WritableFile {
 public:
  explicit WindowsWritableFile(const fs::path& path)
      : m_path(path),
        m_file(openFile("create", path, GENERIC_WRITE, CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT)) {}

  void append(ConstBytes bytes) override {
    const platform::NoErrorDialogs noDialogs;
    while (!bytes.empty()) {
      DWORD written = 0;
      if (WriteFile(m_file.get(), bytes.data(), portionOf(bytes.size()), &written, nullptr) ==
          FALSE) {
        fail("write", m_path, GetLastError());
      }
      bytes = bytes.subspan(written);
    }
  }

  void sync() override {
    const platform::NoErrorDialogs noDialogs;
    if (FlushFileBuffers(m_file.get()) == FALSE) {
      fail("write", m_path, GetLastError());
    }
  }

  void close() override {
    if (!m_file.close()) {
      fail("write", m_path, GetLastError());
    }
  }

 private:
  fs::path m_path;
  platform::Handle m_file;
};

// A file that nobody else can open, and that the system removes when it is closed, by whomever.
class WindowsFileLock final : public FileLock {
 public:
  explicit WindowsFileLock(platform::Handle file) : m_file(std::move(file)) {}

 private:
  platform::Handle m_file;
};

class WindowsFileSystem final : public FileSystem {
 public:
  explicit WindowsFileSystem(platform::Clock& clock) : m_clock(clock) {}

  FileBytes read(const fs::path& path, std::size_t maxSize) override {
    const platform::NoErrorDialogs noDialogs;
    if (isFolder(path)) {
      fail("read", path, std::errc::is_a_directory);
    }
    const platform::Lock lock(m_readers);
    const platform::Handle file = openFile("read", path, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER size{};
    if (GetFileType(file.get()) != FILE_TYPE_DISK || GetFileSizeEx(file.get(), &size) == FALSE) {
      fail("read", path, std::errc::invalid_argument);
    }
    if (static_cast<std::uintmax_t>(size.QuadPart) > maxSize) {
      fail("read", path, std::errc::file_too_large);
    }
    FileBytes content(static_cast<std::size_t>(size.QuadPart));
    std::span<std::uint8_t> rest = content.writable();
    while (!rest.empty()) {
      DWORD count = 0;
      if (ReadFile(file.get(), rest.data(), portionOf(rest.size()), &count, nullptr) == FALSE) {
        fail("read", path, GetLastError());
      }
      if (count == 0) {
        break;
      }
      rest = rest.subspan(count);
    }
    content.shorten(content.view().size() - rest.size());
    return content;
  }

  Folders folders(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    Folders found;
    std::error_code error;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
      std::error_code gone;
      if (entry->is_directory(gone)) {
        found.names.push_back(entry->path().filename());
      }
      found.hasLinks = found.hasLinks || entry->is_symlink(gone);
    }
    if (error) {
      throw FileFault("read", path, error);
    }
    return found;
  }

  std::optional<FileIdentity> identity(const fs::path& path) const noexcept override {
    return platform::identifyFile(path);
  }

  bool exists(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
      return true;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
      fail("look up", path, error);
    }
    return false;
  }

  std::vector<fs::path> entries(const fs::path& path, std::size_t max) override {
    const platform::NoErrorDialogs noDialogs;
    std::vector<fs::path> names;
    std::error_code error;
    fs::directory_iterator entry(path, error);
    for (; !error && entry != fs::directory_iterator() && names.size() < max;
         entry.increment(error)) {
      names.push_back(entry->path().filename());
    }
    if (error) {
      throw FileFault("read", path, error);
    }
    return names;
  }

  std::unique_ptr<WritableFile> create(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    return std::make_unique<WindowsWritableFile>(path);
  }

  void replace(const fs::path& from, const fs::path& to) override {
    const platform::NoErrorDialogs noDialogs;
    if (const DWORD error = moveInto(from, to, m_readers, m_clock); error != ERROR_SUCCESS) {
      fail("replace", to, error);
    }
  }

  void createFolder(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (CreateDirectoryW(path.c_str(), nullptr) == FALSE) {
      fail("create", path, GetLastError());
    }
  }

  void createFolders(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    std::error_code error;
    fs::create_directories(path, error);
    if (error) {
      throw FileFault("create", path, error);
    }
  }

  void syncFolder(const fs::path& /*path*/) override {}

  void remove(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (DeleteFileW(path.c_str()) == FALSE) {
      const DWORD error = GetLastError();
      if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
        fail("remove", path, error);
      }
    }
  }

  std::unique_ptr<FileLock> lock(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (isFolder(path)) {
      fail("lock", path, std::errc::is_a_directory);
    }
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
      const DWORD error = GetLastError();
      // One that is about to be removed cannot be opened either, and is said to be forbidden.
      if (isInUse(error)) {
        return nullptr;
      }
      fail("lock", path, error);
    }
    return std::make_unique<WindowsFileLock>(platform::Handle(file));
  }

  void removeQuietly(const fs::path& path) noexcept override {
    const platform::NoErrorDialogs noDialogs;
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }

 private:
  platform::Clock& m_clock;
  // Held while a file is open for reading, so that a client of this process that reads over and
  // over is never in the way of a replacement.
  platform::Mutex m_readers;
};

}  // namespace

std::unique_ptr<FileSystem> makeWindowsFileSystem(platform::Clock& clock) {
  return std::make_unique<WindowsFileSystem>(clock);
}

// Never destroyed: job threads may still ask it while the process exits.
FileSystem& nativeFileSystem() {
  static FileSystem& files = *new WindowsFileSystem(platform::steadyClock());
  return files;
}

// %ProgramData%, where the data of services stand.
fs::path defaultAdaptersDirectory() {
  const fs::path base = environmentPath("ProgramData");
  return (base.empty() ? fs::path("C:\\ProgramData") : base) / "Orvex" / "adapters";
}

// Not by the C runtime, whose wide environment may be made from its narrow one.
fs::path environmentPath(const char* variable) {
  const std::wstring name = fs::path(variable).native();
  std::wstring value(GetEnvironmentVariableW(name.c_str(), nullptr, 0), L'\0');
  value.resize(
      GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return value;
}

}  // namespace ma
