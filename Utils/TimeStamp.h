// A block timer: logs that a block is entered and left, and after how many milliseconds. Below the
// debug level it does nothing, not even copy the name or ask for the time.

#ifndef ORVEX_UTILS_TIMESTAMP_H_
#define ORVEX_UTILS_TIMESTAMP_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "Utils/Export.h"

namespace utils {

class ORVEX_CORE_API TimeStamp {
 public:
  // Logs the entry unless `logEntry` is false. `name` is what the records call the block.
  explicit TimeStamp(std::string_view name, bool logEntry = true);
  TimeStamp(const TimeStamp&) = delete;
  TimeStamp& operator=(const TimeStamp&) = delete;
  ~TimeStamp();

 private:
  std::string m_name;
  std::uint64_t m_start = 0;  // microseconds since the epoch
};

}  // namespace utils

#endif  // ORVEX_UTILS_TIMESTAMP_H_
