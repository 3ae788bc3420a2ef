// How files are looked at and read on POSIX: without records, and with no wait that has no end.
//
// Private to Os/. Any thread may call. What is found stays as it is, so that it can be told
// at a later time (see Os/FileAhead.h).

#ifndef ORVEX_OS_POSIX_FILEREADING_H_
#define ORVEX_OS_POSIX_FILEREADING_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "Utils/Export.h"

namespace os {

// Why nothing is known of a file that may well be there.
enum class FileSilence {
  None,
  GivenUp,    // the file system has not answered
  StillAway,  // it was not asked, since it has not answered an earlier question yet
  TooSlow,    // it answers, and was not done in the time for a whole file
  NoTurn,     // too many files are read ahead at the same time
};

struct FileStatus {
  FileSilence silence = FileSilence::None;
  std::optional<struct stat> status;  // null: there is nothing
};

struct FileBytes {
  FileSilence silence = FileSilence::None;
  std::shared_ptr<const std::uint8_t[]> bytes;  // null where nothing was read
  std::size_t size = 0;                         // what was read of what was asked for
};

[[nodiscard]] ORVEX_CORE_API FileStatus readFileStatus(const std::string& path);

// Reads up to `count` bytes of a regular file from its start; none of anything else.
[[nodiscard]] ORVEX_CORE_API FileBytes readFileBytes(const std::string& path, std::size_t count);

// What a FileAhead has found out.
struct FileFindings {
  std::string path;
  FileStatus look;
  std::optional<FileBytes> content;  // null: it was not to be read
  bool isTaken = false;
};

// Returns the findings that are in force on this thread for the path; null for none.
[[nodiscard]] FileFindings* findAhead(const std::string& path);

}  // namespace os

#endif  // ORVEX_OS_POSIX_FILEREADING_H_
