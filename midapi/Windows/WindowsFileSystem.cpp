#include "midapi/Windows/WindowsFileSystem.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>
#include <windows.h>

#include "midapi/Windows/AccessList.h"
#include "midapi/Windows/FolderTree.h"
#include "midapi/Windows/ProgramData.h"
#include "platform/Directory.h"
#include "platform/Mutex.h"
#include "platform/Paths.h"
#include "platform/Windows/Handle.h"
#include "platform/Windows/InUse.h"
#include "platform/Windows/NoErrorDialogs.h"
#include "platform/Windows/SystemPath.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const char* operation, const fs::path& path, std::error_code error) {
  throw FileFault(operation, path, error);
}

// For what is found out here and not by the system.
[[noreturn]] void fail(const char* operation, const fs::path& path, std::errc error) {
  fail(operation, path, std::make_error_code(error));
}

[[noreturn]] void fail(const char* operation, const fs::path& path, DWORD error) {
  if (platform::isInUse(error)) {
    fail(operation, path, std::errc::text_file_busy);
  }
  fail(operation, path, std::error_code(static_cast<int>(error), std::system_category()));
}

bool isMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

// Returns whether the error may be that of a file that somebody has open: to replace one is
// forbidden then, as it is for whoever has no right to.
bool mayBeInUse(DWORD error) {
  return error == ERROR_ACCESS_DENIED || platform::isInUse(error);
}

// A link to a folder is one, too.
bool isFolder(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(platform::toSystemPath(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Moves a file or folder. A file in its way is replaced, which the system refuses for as long as
// anybody has that open; `readers` is locked for each attempt. Returns the error, 0 for none.
DWORD moveInto(const fs::path& from, const fs::path& to, platform::Mutex& readers,
               platform::Clock& clock) {
  const fs::path source = platform::toSystemPath(from);
  const fs::path target = platform::toSystemPath(to);
  return platform::retryWhile(
      [&to](DWORD error) { return mayBeInUse(error) && !isFolder(to); }, clock,
      [&source, &target, &readers]() -> platform::SystemError {
        const platform::Lock lock(readers);
        return MoveFileExW(source.c_str(), target.c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == FALSE
                   ? GetLastError()
                   : ERROR_SUCCESS;
      });
}

// Returns the system's error, 0 for none.
DWORD openFile(const fs::path& path, DWORD access, DWORD creation, DWORD flags,
               platform::Handle& file) {
  const HANDLE opened = CreateFileW(platform::toSystemPath(path).c_str(), access,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    creation, FILE_ATTRIBUTE_NORMAL | flags, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    return GetLastError();
  }
  file = platform::Handle(opened);
  return ERROR_SUCCESS;
}

platform::Handle createFile(const fs::path& path) {
  platform::Handle file;
  if (const DWORD error =
          openFile(path, GENERIC_WRITE, CREATE_NEW, FILE_FLAG_OPEN_REPARSE_POINT, file);
      error != ERROR_SUCCESS) {
    fail("create", path, error);
  }
  return file;
}

// Makes a folder that must not exist. Returns the system's error, 0 for none.
DWORD makeFolder(const fs::path& path, void* attributes) {
  return CreateDirectoryW(platform::toSystemPath(path).c_str(),
                          static_cast<SECURITY_ATTRIBUTES*>(attributes)) == FALSE
             ? GetLastError()
             : ERROR_SUCCESS;
}

// Nothing may be made or changed in a folder that somebody else can put another in the place of.
// `folder` is absolute.
void demandNoStranger(const char* operation, const fs::path& path, const fs::path& folder) {
  std::string objection;
  try {
    objection = objectionTo(folder);
  } catch (const std::system_error& fault) {
    fail(operation, path, fault.code());
  }
  if (!objection.empty()) {
    throw FileFault(operation, path, objection);
  }
}

// `path` is absolute. Somebody else may be making the same folders, or may have made them.
void makeFolders(const fs::path& path) {
  if (!isFolder(path)) {
    if (const fs::path parent = path.parent_path(); parent != path && !parent.empty()) {
      makeFolders(parent);
    }
    const std::unique_ptr<PrivateFolderAttributes> attributes =
        isInProgramData(path) ? std::make_unique<PrivateFolderAttributes>() : nullptr;
    const DWORD error = makeFolder(path, attributes != nullptr ? attributes->get() : nullptr);
    if (error != ERROR_SUCCESS && !isFolder(path)) {
      fail("create", path, error);
    }
  }
  demandNoStranger("create", path, path);
}

// Returns the absolute path.
fs::path wholeOf(const char* operation, const fs::path& path) {
  std::error_code error;
  fs::path whole = platform::makeAbsolute(path, error);
  if (error) {
    fail(operation, path, error);
  }
  return whole;
}

// Returns how many of the bytes one call may transfer.
DWORD portionOf(std::size_t size) {
  return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<std::int32_t>::max()));
}

class WindowsWritableFile final : public WritableFile {
 public:
  explicit WindowsWritableFile(const fs::path& path) : m_path(path), m_file(createFile(path)) {}

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
    FileBytes content;
    if (const DWORD error = platform::retryWhile(platform::isInUse, m_clock,
                                                 [&] { return readOnce(path, maxSize, content); });
        error != ERROR_SUCCESS) {
      fail("read", path, error);
    }
    return content;
  }

  Folders folders(const fs::path& path) override {
    Folders found;
    if (const std::error_code error =
            platform::forEachEntry(path, [&found](const platform::DirectoryEntry& entry) {
              if (entry.isDirectory) {
                found.names.push_back(entry.name);
              }
              found.hasLinks = found.hasLinks || entry.isLink;
              return true;
            })) {
      fail("read", path, static_cast<DWORD>(error.value()));
    }
    return found;
  }

  std::optional<FileIdentity> identity(const fs::path& path) const noexcept override {
    return platform::identifyFile(path);
  }

  bool exists(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (GetFileAttributesW(platform::toSystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES) {
      return true;
    }
    if (const DWORD error = GetLastError(); !isMissing(error)) {
      fail("look up", path, error);
    }
    return false;
  }

  std::vector<fs::path> entries(const fs::path& path, std::size_t max) override {
    std::vector<fs::path> names;
    if (const std::error_code error =
            platform::forEachEntry(path, [&names, max](const platform::DirectoryEntry& entry) {
              if (names.size() < max) {
                names.push_back(entry.name);
              }
              return names.size() < max;
            })) {
      fail("read", path, static_cast<DWORD>(error.value()));
    }
    return names;
  }

  std::unique_ptr<WritableFile> create(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    return std::make_unique<WindowsWritableFile>(path);
  }

  void replace(const fs::path& from, const fs::path& to) override {
    const platform::NoErrorDialogs noDialogs;
    if (const DWORD error = copyAccessList(to, from); error != ERROR_SUCCESS) {
      fail("replace", to, error);
    }
    const DWORD error = moveInto(from, to, m_readers, m_clock);
    if (error == ERROR_ACCESS_DENIED && platform::isOpenElsewhere(to)) {
      fail("replace", to, std::errc::text_file_busy);
    }
    if (error != ERROR_SUCCESS) {
      fail("replace", to, error);
    }
  }

  void createFolder(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (const DWORD error = makeFolder(path, nullptr); error != ERROR_SUCCESS) {
      fail("create", path, error);
    }
  }

  void createFolders(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    const fs::path whole = wholeOf("create", path);
    try {
      makeFolders(whole);
    } catch (const std::system_error& fault) {
      fail("create", path, fault.code());
    }
  }

  void syncFolder(const fs::path& /*path*/) override {}

  void remove(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    const fs::path native = platform::toSystemPath(path);
    const DWORD error =
        platform::retryWhile(platform::isInUse, m_clock, [&native]() -> platform::SystemError {
          return DeleteFileW(native.c_str()) == FALSE ? GetLastError() : ERROR_SUCCESS;
        });
    if (error != ERROR_SUCCESS && !isMissing(error)) {
      fail("remove", path, error);
    }
  }

  std::unique_ptr<FileLock> lock(const fs::path& path) override {
    const platform::NoErrorDialogs noDialogs;
    if (isFolder(path)) {
      fail("lock", path, std::errc::is_a_directory);
    }
    demandNoStranger("lock", path, wholeOf("lock", path).parent_path());
    const HANDLE file = CreateFileW(
        platform::toSystemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr,
        OPEN_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
      const DWORD error = GetLastError();
      // One that is about to be removed cannot be opened either, and is said to be forbidden.
      if (mayBeInUse(error)) {
        return nullptr;
      }
      fail("lock", path, error);
    }
    return std::make_unique<WindowsFileLock>(platform::Handle(file));
  }

  void removeQuietly(const fs::path& path) noexcept override {
    const platform::NoErrorDialogs noDialogs;
    try {
      removeTree(path);
    } catch (const std::exception&) {
      return;
    }
  }

 private:
  // Returns the error of the system where the file cannot be opened, 0 for none; throws where it
  // cannot be read.
  DWORD readOnce(const fs::path& path, std::size_t maxSize, FileBytes& content) {
    const platform::Lock lock(m_readers);
    platform::Handle file;
    if (const DWORD error = openFile(path, GENERIC_READ, OPEN_EXISTING, 0, file);
        error != ERROR_SUCCESS) {
      return error;
    }
    LARGE_INTEGER size{};
    if (GetFileType(file.get()) != FILE_TYPE_DISK || GetFileSizeEx(file.get(), &size) == FALSE) {
      fail("read", path, std::errc::invalid_argument);
    }
    if (static_cast<std::uintmax_t>(size.QuadPart) > maxSize) {
      fail("read", path, std::errc::file_too_large);
    }
    content = FileBytes(static_cast<std::size_t>(size.QuadPart));
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
    return ERROR_SUCCESS;
  }

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

fs::path defaultAdaptersDirectory() {
  return programData() / "Orvex" / "adapters";
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
