// Files and folders that are made under a name of their own before they take the place of others.
//
// Nobody can guess such a name, and nothing that has it already is used: "flash.rom.new-" and
// sixteen hexadecimal digits for "flash.rom". A process that is killed leaves it behind; the next
// change at the same place sweeps it away. Failures are thrown as FileFault.

#ifndef ORVEX_MIDAPI_TEMPORARYFILES_H_
#define ORVEX_MIDAPI_TEMPORARYFILES_H_

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "midapi/FileSystem.h"
#include "platform/Clock.h"

namespace ma {

// Returns a new name beside `path`.
[[nodiscard]] std::filesystem::path temporaryName(const std::filesystem::path& path);

// Returns the name of what a temporary name stands for, "flash.rom"; nothing for other names. Knows
// the shorter names of earlier versions, too.
[[nodiscard]] std::optional<std::string> baseOfTemporary(const std::filesystem::path& name);

// Removes a temporary file or folder at the end of its scope, unless it was kept.
class TemporaryPath {
 public:
  TemporaryPath(FileSystem& files, std::filesystem::path path)
      : m_files(files), m_path(std::move(path)) {}
  TemporaryPath(const TemporaryPath&) = delete;
  TemporaryPath& operator=(const TemporaryPath&) = delete;
  ~TemporaryPath() {
    if (!m_kept) {
      m_files.removeQuietly(m_path);
    }
  }

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  void keep() { m_kept = true; }

 private:
  FileSystem& m_files;
  std::filesystem::path m_path;
  bool m_kept = false;
};

// Returns whether a temporary file or folder has the place of another although replace() failed so:
// where the disk did not confirm it. Nothing where that cannot be told.
[[nodiscard]] std::optional<bool> wasPlaced(FileSystem& files,
                                            const std::filesystem::path& temporary,
                                            const FileFault& fault) noexcept;

// Puts a temporary file or folder in the place of another, and keeps it. What the disk is slow to
// confirm is in its place all the same, and no failure: there is no way back.
void putInPlace(FileSystem& files, TemporaryPath& temporary, const std::filesystem::path& path);

// Makes a file that does not exist; returns when the disk has its content.
void writeNewFile(FileSystem& files, const std::filesystem::path& path, ConstBytes content);

// Gives a file another content such that any reader, and the disk after a crash, sees the old one
// or the new one. Fails, too, where the disk does not confirm it, and then either may be there.
void replaceContent(FileSystem& files, const std::filesystem::path& path, ConstBytes content);

// Takes the lock of that path, and waits some seconds for those who have it. Returns null when one
// of them has it longer.
[[nodiscard]] std::unique_ptr<FileLock> waitForLock(FileSystem& files,
                                                    const std::filesystem::path& path,
                                                    platform::Clock& clock);

// Removes what killed processes left of temporary files in a folder, or of temporary folders: what
// stands for a name that `isOurs` knows. The caller holds a lock without which nobody makes any.
// Looks at a bounded number of names and minds no failure: what stays is in nobody's way.
void sweepTemporaryFiles(FileSystem& files, const std::filesystem::path& folder,
                         const std::function<bool(const std::string&)>& isOurs);
void sweepTemporaryFolders(FileSystem& files, const std::filesystem::path& folder,
                           const std::function<bool(const std::string&)>& isOurs);

}  // namespace ma

#endif  // ORVEX_MIDAPI_TEMPORARYFILES_H_
