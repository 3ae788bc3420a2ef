// A file that is read before its turn.
//
// Who holds what others wait for must not wait for a file system. So a host reads the file that a
// call will read before it takes the broker's request, and has it in force while it makes the call:
// os::getFileSize, readFile and readContent of that thread then answer for that path from what was
// found, refusals included, and write their records as if they looked at that moment. What was read
// is one content, however the file changes meanwhile.
//
// One at a time holds the content of a file of each file system, and a few in a process; another
// one waits for its turn, as long as a file may take, and then counts as one that cannot be read.
// That bounds their memory, but for the buffers of readings that were given up, which stay until
// their file systems answer: one each, since nothing more is asked there. One thread at a time uses
// an object, and it outlives what has it in force. Windows: nothing is read ahead, and
// the functions look at the file when they are called.

#ifndef ORVEX_OS_FILEAHEAD_H_
#define ORVEX_OS_FILEAHEAD_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "Utils/Export.h"

namespace os {

class ORVEX_CORE_API FileAhead {
 public:
  static constexpr std::size_t kMostAtATime = 4;

  // Looks the file up, and reads it where it is a regular file of no more than `most` bytes. Throws
  // std::bad_alloc alone; whatever else fails is told to those who ask for the file.
  FileAhead(const std::string& path, std::uint32_t most);
  FileAhead(const FileAhead&) = delete;
  FileAhead& operator=(const FileAhead&) = delete;
  ~FileAhead();

  // Returns the whole content; nothing where it was not read, or not all of it. Valid for the life
  // of the object.
  [[nodiscard]] std::span<const std::uint8_t> content() const;
  // Returns whether somebody has been handed the whole content.
  [[nodiscard]] bool isTaken() const;

  // Has an object, null for none, in force on this thread for the span of a block.
  class ORVEX_CORE_API InForce {
   public:
    explicit InForce(FileAhead* ahead);
    InForce(const InForce&) = delete;
    InForce& operator=(const InForce&) = delete;
    ~InForce();

   private:
    void* const m_before;
  };

 private:
  struct Findings;
  const std::unique_ptr<Findings> m_findings;
};

}  // namespace os

#endif  // ORVEX_OS_FILEAHEAD_H_
