// Files on which the safety of a program rests: passwords, keys, settings. Such a file has to
// belong to root or to the user that the program runs as, and no other user may have a share in it.
//
// What is judged is the file that was opened, not what its name leads to a moment later. Links are
// followed: where they lead is judged. An access list counts, since its mask stands in the
// permissions of the group. Any thread.

#ifndef ORVEX_PLATFORM_POSIX_PRIVATEFILE_H_
#define ORVEX_PLATFORM_POSIX_PRIVATEFILE_H_

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "platform/Posix/Descriptor.h"

namespace platform {

// What other users than the owner may not do.
enum class Privacy {
  Secret,     // read or write
  Unchanged,  // write
};

// What tells one content of a name from another.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t number = 0;  // of the inode
  std::int64_t size = 0;
  std::uint32_t owner = 0;
  std::uint32_t mode = 0;    // kind and permissions
  std::int64_t written = 0;  // nanoseconds since 1970
  std::int64_t changed = 0;  // nanoseconds since 1970; no program can set it

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// A file that cannot be used: what() names it in quotes, says what is wrong with it and what to do.
class PrivateFileFault final : public std::exception {
 public:
  explicit PrivateFileFault(std::string text, int error = 0)
      : m_text(std::move(text)), m_error(error) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }
  // The system's error number where the file cannot be read, 0 where it is what must not be used.
  [[nodiscard]] int error() const { return m_error; }

 private:
  std::string m_text;
  int m_error;
};

// Returns the stamp of what the name leads to; null where that is not to be had.
[[nodiscard]] std::optional<FileStamp> findStamp(const std::string& path);

// Throws PrivateFileFault for a file that belongs to another user than root and `user`, by default
// the one that this program runs as, or that others have too large a share in.
void demandPrivate(const std::string& path, const FileStamp& stamp, Privacy privacy);
void demandPrivate(const std::string& path, const FileStamp& stamp, Privacy privacy,
                   std::uint32_t user);

struct PrivateFile {
  std::string content;
  FileStamp stamp;
};

// Reads a regular file whole; does not wait for the other end of a pipe. The content is in no other
// memory than the caller gets, unless the file grows meanwhile. Throws PrivateFileFault
// for one that cannot be read, is not private, or has more than `most` bytes.
[[nodiscard]] PrivateFile readPrivateFile(const std::string& path, Privacy privacy,
                                          std::size_t most);

// Reads the first line, without its end, of a private file, or of what a shell puts in the place of
// one (a pipe, standard input), whose writer is waited for. A path that stands for a descriptor of
// this process (/dev/stdin, /dev/fd/N, /proc/self/fd/N) reads on from that: whoever gave the
// process a pipe may belong to another user. Throws PrivateFileFault as readPrivateFile().
[[nodiscard]] std::string readPrivateLine(const std::string& path, std::size_t most);

}  // namespace platform

#endif  // ORVEX_PLATFORM_POSIX_PRIVATEFILE_H_
