// The write of a virtual adapter's new flash, beside the old one: paced, watched, and failing on
// demand.

#ifndef ORVEX_MIDAPI_VIRTUAL_FLASHWRITE_H_
#define ORVEX_MIDAPI_VIRTUAL_FLASHWRITE_H_

#include <cstddef>
#include <filesystem>
#include <vector>

#include "midapi/FileSystem.h"
#include "midapi/Virtual/AdapterDescription.h"
#include "midapi/Virtual/AdapterFolder.h"
#include "midapi/WriteProgress.h"
#include "platform/Clock.h"

namespace ma {

// Writes an image to a file of its own, in blocks that are small enough for twenty steps a second,
// then reads it back and compares. The progress stands at 99 at the most. Used by one thread, once.
class FlashWrite {
 public:
  // Referents outlive the write. `image` is not empty.
  FlashWrite(FileSystem& files, const AdapterFolder& folder, const AdapterDescription& description,
             ConstBytes image, WriteProgress& progress, platform::Clock& clock);

  // Makes the file at `path`. Returns when its content has reached the disk. Throws FlashFault, and
  // then leaves what it has made of the file.
  void run(const std::filesystem::path& path);

 private:
  // Where the write stops on its way, because the description asks for it.
  struct Stop {
    std::size_t offset;
    bool isHang;
  };

  [[nodiscard]] std::vector<Stop> stops() const;
  [[nodiscard]] std::size_t offsetAt(std::uint32_t percent) const;
  void writeTo(WritableFile& file);
  void writeUpTo(WritableFile& file, std::size_t end);
  void waitForTurn();
  void hang();
  void compare(const std::filesystem::path& written);

  FileSystem& m_files;
  const AdapterFolder& m_folder;
  const AdapterDescription& m_description;
  ConstBytes m_image;
  WriteProgress& m_progress;
  platform::Clock& m_clock;

  std::size_t m_written = 0;
  // When the first byte would have been due, had the write never hung.
  platform::Clock::TimePoint m_start;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_VIRTUAL_FLASHWRITE_H_
