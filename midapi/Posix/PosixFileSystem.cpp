#include "midapi/Posix/PosixFileSystem.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

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
      : m_path(path), m_file(openFile("create", path, O_WRONLY | O_CREAT | O_TRUNC)) {}

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

  std::unique_ptr<WritableFile> create(const fs::path& path) override {
    return std::make_unique<PosixWritableFile>(path);
  }

  void replace(const fs::path& from, const fs::path& to) override {
    std::error_code error;
    fs::rename(from, to, error);
    if (error) {
      throw FileFault("replace", to, error);
    }
    syncFolder(to.parent_path());
  }

  void createFolder(const fs::path& path) override {
    if (::mkdir(path.c_str(), 0755) != 0) {
      fail("create", path, errno);
    }
  }

  void createFolders(const fs::path& path) override {
    std::error_code error;
    fs::create_directories(path, error);
    if (error) {
      throw FileFault("create", path, error);
    }
  }

  void removeQuietly(const fs::path& path) noexcept override {
    std::error_code ignored;
    fs::remove_all(path, ignored);
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
