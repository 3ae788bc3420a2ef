#include "midapi/Posix/PosixFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "midapi/Posix/FolderNames.h"
#include "platform/Posix/Descriptor.h"
#include "platform/Posix/FileStamps.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const char* operation, const fs::path& path, int error) {
  throw FileFault(operation, path, std::error_code(error, std::generic_category()));
}

// Repeats a system call for as long as signals interrupt it.
template <class Call>
auto retry(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

platform::Descriptor openFile(const char* operation, const fs::path& path, int flags) {
  platform::Descriptor file(retry([&] { return ::open(path.c_str(), flags | O_CLOEXEC, 0644); }));
  if (!file.isOpen()) {
    fail(operation, path, errno);
  }
  return file;
}

class PosixWritableFile final : public WritableFile {
 public:
  explicit PosixWritableFile(const fs::path& path)
      : m_path(path), m_file(openFile("create", path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW)) {}

  void append(ConstBytes bytes) override {
    while (!bytes.empty()) {
      const ssize_t written =
          retry([&] { return ::write(m_file.get(), bytes.data(), bytes.size()); });
      if (written < 0) {
        fail("write", m_path, errno);
      }
      bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
  }

  void sync() override {
    if (retry([&] { return ::fsync(m_file.get()); }) != 0) {
      fail("write", m_path, errno);
    }
  }

  void close() override {
    if (!m_file.close() && errno != EINTR) {
      fail("write", m_path, errno);
    }
  }

 private:
  fs::path m_path;
  platform::Descriptor m_file;
};

void syncFolder(const fs::path& path) {
  const platform::Descriptor folder = openFile("open", path, O_RDONLY | O_DIRECTORY);
  if (retry([&] { return ::fsync(folder.get()); }) != 0) {
    fail("write", path, errno);
  }
}

// The folder that a lock's file stands in, whatever its path is made to lead to meanwhile.
class LockFolder {
 public:
  explicit LockFolder(const fs::path& path) : m_name(path.filename()) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    m_folder = platform::Descriptor(
        retry([&] { return ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
    if (!m_folder.isOpen()) {
      fail("lock", path, errno);
    }
  }

  // Opens the file; without a descriptor errno tells why.
  [[nodiscard]] platform::Descriptor openFile(int flags) const {
    return platform::Descriptor(
        retry([&] { return ::openat(m_folder.get(), m_name.c_str(), flags, 0600); }));
  }
  // Removes the file, and minds neither that it is gone nor that it cannot go.
  void removeFile() const { static_cast<void>(::unlinkat(m_folder.get(), m_name.c_str(), 0)); }
  [[nodiscard]] bool look(struct stat& state) const { return ::fstat(m_folder.get(), &state) == 0; }

 private:
  fs::path m_name;
  platform::Descriptor m_folder;
};

class PosixFileLock final : public FileLock {
 public:
  PosixFileLock(LockFolder folder, platform::Descriptor file)
      : m_folder(std::move(folder)), m_file(std::move(file)) {}
  PosixFileLock(const PosixFileLock&) = delete;
  PosixFileLock& operator=(const PosixFileLock&) = delete;
  // While it is still held: nobody may remove a lock that is another's by now.
  ~PosixFileLock() override { m_folder.removeFile(); }

 private:
  LockFolder m_folder;
  platform::Descriptor m_file;
};

// Gives a new lock file to those who may write its folder. A program of the superuser must not keep
// out those to whom the folder belongs; where that cannot be done, they wait for such a program.
void shareWithOwners(const platform::Descriptor& file, const LockFolder& itsFolder) {
  struct stat folder {};
  if (!itsFolder.look(folder)) {
    return;
  }
  const bool isSuperuser = ::geteuid() == 0;
  const bool isGroups = (folder.st_mode & S_IWGRP) != 0;
  if (::fchown(file.get(), isSuperuser ? folder.st_uid : static_cast<uid_t>(-1),
               isSuperuser || isGroups ? folder.st_gid : static_cast<gid_t>(-1)) == 0) {
    static_cast<void>(::fchmod(file.get(), isGroups ? 0660 : 0600));
  }
}

// Opens the file of a lock, made where it is missing. Nobody else's file is made over to others: it
// may have got this name to that end.
platform::Descriptor openLock(const LockFolder& folder, const fs::path& path) {
  constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  for (;;) {
    platform::Descriptor made = folder.openFile(kFlags | O_CREAT | O_EXCL);
    if (made.isOpen()) {
      shareWithOwners(made, folder);
      return made;
    }
    if (errno != EEXIST) {
      fail("lock", path, errno);
    }
    platform::Descriptor found = folder.openFile(kFlags);
    if (found.isOpen()) {
      return found;
    }
    if (errno != ENOENT) {
      fail("lock", path, errno);
    }
  }
}

// Synchronises the folders above a new one, from the last that was there before it on.
class NewFolders {
 public:
  explicit NewFolders(const fs::path& path) {
    std::error_code error;
    for (fs::path at = path; !at.empty() && !fs::exists(at, error) && at != at.parent_path();
         at = at.parent_path()) {
      m_parents.push_back(at.has_parent_path() ? at.parent_path() : fs::path("."));
    }
  }
  void sync() const { std::for_each(m_parents.begin(), m_parents.end(), syncFolder); }

 private:
  std::vector<fs::path> m_parents;
};

class PosixFileSystem final : public FileSystem {
 public:
  explicit PosixFileSystem(StampClock now) : m_now(std::move(now)) {}

  FileBytes read(const fs::path& path, std::size_t maxSize) override {
    // Without O_NONBLOCK, opening a FIFO that was put in the place of a file would wait for ever.
    const platform::Descriptor file = openFile("read", path, O_RDONLY | O_NONBLOCK);
    struct stat state {};
    if (::fstat(file.get(), &state) != 0) {
      fail("read", path, errno);
    }
    if (!S_ISREG(state.st_mode)) {
      fail("read", path, S_ISDIR(state.st_mode) ? EISDIR : EINVAL);
    }
    if (static_cast<std::uintmax_t>(state.st_size) > maxSize) {
      fail("read", path, EFBIG);
    }
    FileBytes content(static_cast<std::size_t>(state.st_size));
    std::span<std::uint8_t> rest = content.writable();
    while (!rest.empty()) {
      const ssize_t count = retry([&] { return ::read(file.get(), rest.data(), rest.size()); });
      if (count < 0) {
        fail("read", path, errno);
      }
      if (count == 0) {
        break;
      }
      rest = rest.subspan(static_cast<std::size_t>(count));
    }
    content.shorten(content.view().size() - rest.size());
    return content;
  }

  Folders folders(const fs::path& path) override {
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
    return platform::identifyFileAt(path, m_now());
  }

  bool exists(const fs::path& path) override {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (status.type() == fs::file_type::none) {
      throw FileFault("look up", path, error);
    }
    return fs::exists(status);
  }

  std::vector<fs::path> entries(const fs::path& path, std::size_t max) override {
    std::error_code error;
    const std::vector<std::string> names = readFolderNames(path, error, max);
    if (error) {
      throw FileFault("read", path, error);
    }
    return {names.begin(), names.end()};
  }

  std::unique_ptr<WritableFile> create(const fs::path& path) override {
    return std::make_unique<PosixWritableFile>(path);
  }

  void replace(const fs::path& from, const fs::path& to) override {
    std::error_code error;
    fs::rename(from, to, error);
    if (error) {
      throw FileFault("replace", to, error);
    }
    ma::syncFolder(to.parent_path());
  }

  void createFolder(const fs::path& path) override {
    if (::mkdir(path.c_str(), 0755) != 0) {
      fail("create", path, errno);
    }
  }

  void createFolders(const fs::path& path) override {
    const NewFolders made(path);
    std::error_code error;
    fs::create_directories(path, error);
    if (error) {
      throw FileFault("create", path, error);
    }
    made.sync();
  }

  void syncFolder(const fs::path& path) override { ma::syncFolder(path); }

  void remove(const fs::path& path) override {
    if (::unlink(path.c_str()) == 0) {
      ma::syncFolder(path.parent_path());
    } else if (errno != ENOENT) {
      fail("remove", path, errno);
    }
  }

  std::unique_ptr<FileLock> lock(const fs::path& path) override {
    for (;;) {
      LockFolder folder(path);
      platform::Descriptor file = openLock(folder, path);
      struct stat opened {};
      if (::fstat(file.get(), &opened) != 0) {
        fail("lock", path, errno);
      }
      if (!S_ISREG(opened.st_mode)) {
        fail("lock", path, EINVAL);
      }
      if (retry([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
        if (errno == EWOULDBLOCK) {
          return nullptr;
        }
        fail("lock", path, errno);
      }
      // Its last holder may have removed it since it was opened, or its folder have another path:
      // then it is nobody's lock.
      struct stat named {};
      if (::lstat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
          named.st_ino == opened.st_ino) {
        return std::make_unique<PosixFileLock>(std::move(folder), std::move(file));
      }
    }
  }

  void removeQuietly(const fs::path& path) noexcept override {
    // Of a file, without memory.
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
      std::error_code ignored;
      fs::remove_all(path, ignored);
    }
  }

 private:
  const StampClock m_now;
};

}  // namespace

std::unique_ptr<FileSystem> makePosixFileSystem(StampClock now) {
  return std::make_unique<PosixFileSystem>(std::move(now));
}

// Never destroyed: job threads may still ask it while the process exits.
FileSystem& nativeFileSystem() {
  static FileSystem& files = *new PosixFileSystem(platform::currentFileStamp);
  return files;
}

fs::path defaultAdaptersDirectory() {
  return "/var/lib/orvex/adapters";
}

fs::path environmentPath(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr ? value : "";
}

}  // namespace ma
