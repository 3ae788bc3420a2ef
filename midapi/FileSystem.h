// The files that the virtual adapters live in, behind an interface so that tests can count and fail
// its operations.
//
// A file system keeps no state: any thread may call it, and what two callers do to one path is up
// to them. Failures are thrown as FileFault.

#ifndef ORVEX_MIDAPI_FILESYSTEM_H_
#define ORVEX_MIDAPI_FILESYSTEM_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "platform/FileIdentity.h"

namespace ma {

using ConstBytes = std::span<const std::uint8_t>;

// A file operation that failed. what() is for example
// "cannot read /var/lib/orvex/adapters/0000-03-00/flash.rom: Permission denied".
class FileFault final : public std::exception {
 public:
  FileFault(const std::string& operation, const std::filesystem::path& path, std::error_code code);
  // For what the system would do and this program does not, for a reason of its own.
  FileFault(const std::string& operation, const std::filesystem::path& path,
            const std::string& reason);

  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }
  [[nodiscard]] bool isMissingFile() const;

 private:
  std::error_code m_code;
  std::string m_text;
};

// The content of a file. Movable; not initialised before it is filled, for megabytes are read
// often.
class FileBytes {
 public:
  FileBytes() = default;
  explicit FileBytes(std::size_t size)
      : m_data(std::make_unique_for_overwrite<std::uint8_t[]>(size)), m_size(size) {}

  [[nodiscard]] std::span<std::uint8_t> writable() { return {m_data.get(), m_size}; }
  [[nodiscard]] ConstBytes view() const { return {m_data.get(), m_size}; }
  // Drops what lies behind the first `size` bytes.
  void shorten(std::size_t size) { m_size = size; }

 private:
  std::unique_ptr<std::uint8_t[]> m_data;
  std::size_t m_size = 0;
};

// A file being written from its start; closed by close() or, without a report, by its destructor.
class WritableFile {
 public:
  WritableFile() = default;
  WritableFile(const WritableFile&) = delete;
  WritableFile& operator=(const WritableFile&) = delete;
  virtual ~WritableFile() = default;

  virtual void append(ConstBytes bytes) = 0;
  // Returns when what was appended has reached the disk.
  virtual void sync() = 0;
  virtual void close() = 0;
};

// A lock that nobody else has while this object lives; see FileSystem::lock.
class FileLock {
 public:
  FileLock() = default;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  virtual ~FileLock() = default;
};

// The folders in a folder.
struct Folders {
  std::vector<std::filesystem::path> names;  // in no order
  // There are links beside them, or among them: what a link leads to becomes a folder, or ceases to
  // be one, without a change of the folder that the link is in.
  bool hasLinks = false;
};

using FileIdentity = platform::FileIdentity;

class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  // Returns the whole content; refuses anything but a regular file, and files above `maxSize`.
  // (Windows: a file that another program keeps for itself is waited for, 2 s at the most, as it is
  // where one is replaced or removed.)
  [[nodiscard]] virtual FileBytes read(const std::filesystem::path& path, std::size_t maxSize) = 0;

  [[nodiscard]] virtual Folders folders(const std::filesystem::path& path) = 0;

  // Returns what platform::identifyFile returns.
  [[nodiscard]] virtual std::optional<FileIdentity> identity(
      const std::filesystem::path& path) const noexcept = 0;

  [[nodiscard]] virtual bool exists(const std::filesystem::path& path) = 0;

  // Returns the names of what is in a folder, whatever that is, in no order; `max` of them where
  // there are more.
  [[nodiscard]] virtual std::vector<std::filesystem::path> entries(
      const std::filesystem::path& path, std::size_t max) = 0;

  // Creates a file. Fails, without waiting, where anything has that name, be it a link to nowhere
  // or a FIFO.
  [[nodiscard]] virtual std::unique_ptr<WritableFile> create(const std::filesystem::path& path) = 0;

  // Puts `from` in the place of `to`, a file or folder in the same folder, in one step that a crash
  // cannot divide; returns when the disk knows it. A folder replaces only nothing or an empty one.
  // (Windows: what takes the place has the access list of what was there.)
  virtual void replace(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

  // Creates one folder that must not exist, or a folder with all its parents where they are
  // missing; the latter returns when the disk knows them. (Windows: in %ProgramData%, where anybody
  // may make files, the latter gives them an access list of their own, and fails where one that is
  // there is somebody else's; see midapi/Windows/ProgramData.h.)
  virtual void createFolder(const std::filesystem::path& path) = 0;
  virtual void createFolders(const std::filesystem::path& path) = 0;

  // Returns when the disk knows what is in a folder. On Windows it knows in time by itself.
  virtual void syncFolder(const std::filesystem::path& path) = 0;

  // Removes a file, which need not be there; returns when the disk knows it. Removes no folder.
  virtual void remove(const std::filesystem::path& path) = 0;

  // Takes the lock that the path stands for, or returns null when anybody has it, in this process
  // or another one. The lock is a file, which comes and goes with its holder. It ends with its
  // holder's process however that ends; on POSIX the file may then stay behind, and hinders nobody.
  // Only who may write the folder can take the lock, and nobody else can keep it from being taken;
  // it belongs to the folder's owner and, where those may write there, its group. Fails where
  // something else has the name. (Windows: and in somebody else's folder of %ProgramData%, as
  // createFolders() does.)
  [[nodiscard]] virtual std::unique_ptr<FileLock> lock(const std::filesystem::path& path) = 0;

  // Removes a file or a folder with its content as far as possible; for tidying up after a failure.
  // What links lead to stays.
  virtual void removeQuietly(const std::filesystem::path& path) noexcept = 0;
};

// Returns the file system of the machine. Defined per platform; lives as long as the process.
[[nodiscard]] FileSystem& nativeFileSystem();

// Returns the adapters directory: the environment's ORVEX_ADAPTERS, read at each call, or where the
// platform keeps such data (/var/lib/orvex/adapters on POSIX).
[[nodiscard]] std::filesystem::path adaptersDirectory();

// Returns whether the environment names it: then virtual adapters alone are meant.
[[nodiscard]] bool areAdaptersChosen();

// Defined per platform.
[[nodiscard]] std::filesystem::path defaultAdaptersDirectory();

// Returns the path in a variable of the environment; empty when it is not set. Defined per
// platform: on Windows a path may have characters that no text holds.
[[nodiscard]] std::filesystem::path environmentPath(const char* variable);

}  // namespace ma

#endif  // ORVEX_MIDAPI_FILESYSTEM_H_
