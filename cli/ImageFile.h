// A firmware file of this machine, as commands read one. None waits for a file system that does not
// answer. Paths are texts of the program (see platform/Texts.h).

#ifndef ORVEX_CLI_IMAGEFILE_H_
#define ORVEX_CLI_IMAGEFILE_H_

#include <cstdint>
#include <span>
#include <string>

#include "Os/Files.h"

namespace cli {

// Returns what is wrong with what stands at the path, and what to do; empty for a regular file.
[[nodiscard]] std::string findFileFault(const std::string& path);

// The content of a file.
class ImageFile {
 public:
  // Reads the file. Throws client::Fault, also for one that is larger than MaxImageSize allows.
  explicit ImageFile(const std::string& path);

  // Valid as long as the object.
  [[nodiscard]] std::span<const std::uint8_t> bytes() const {
    return {m_content.bytes.get(), static_cast<std::size_t>(m_content.size)};
  }

 private:
  os::FileContent m_content;
};

}  // namespace cli

#endif  // ORVEX_CLI_IMAGEFILE_H_
