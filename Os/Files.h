// Files, as the system reads them. Any thread may call. Defined per platform.
//
// Only regular files count as files; a device, a socket or a pipe "could not be opened". So could a
// file of 2 GiB or more, whose size does not fit the interface. Paths are texts of the program (see
// platform/Texts.h).
//
// POSIX: no call waits for ever. What a file system does not answer in time (see Os/FileCalls.h) is
// missing, an error record says so, and until it answers nothing more is asked of that file system.
// (Windows gives up such calls by itself.) A file that has been read ahead answers instead (see
// Os/FileAhead.h).

#ifndef ORVEX_OS_FILES_H_
#define ORVEX_OS_FILES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "Utils/Export.h"

namespace os {

// Returns the file's size in bytes. (Windows: a directory with a further attribute, a hidden one,
// counts as a file here, and has the size that the system finds for it.) Throws utils::Exception
// "Could not open the file '%s'" or, for a directory, "The specyfied URI '%s' points to a directory
// ".
[[nodiscard]] ORVEX_CORE_API std::int32_t getFileSize(const std::string& path);

// Reads up to `count` bytes from the start of the file. Returns how many were read: fewer when the
// file is shorter, 0 when it cannot be opened.
[[nodiscard]] ORVEX_CORE_API std::int32_t readFile(const std::string& path, std::uint8_t* buffer,
                                                   std::int32_t count);

// The first bytes of a file. Shared, since there may be megabytes of them.
struct FileContent {
  std::shared_ptr<const std::uint8_t[]> bytes;  // null where there are none
  std::int32_t size = 0;
};

// Reads as readFile does, with the same records, into a buffer of its own.
[[nodiscard]] ORVEX_CORE_API FileContent readContent(const std::string& path, std::int32_t count);

// Returns true when the path names a directory (Windows: one without any further attribute).
[[nodiscard]] ORVEX_CORE_API bool isThisADir(const std::string& path);

}  // namespace os

#endif  // ORVEX_OS_FILES_H_
