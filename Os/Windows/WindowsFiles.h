// What os::readFile does, with the clock by which it waits for those who have the file open.

#ifndef ORVEX_OS_WINDOWS_WINDOWSFILES_H_
#define ORVEX_OS_WINDOWS_WINDOWSFILES_H_

#include <cstdint>
#include <string>

#include "Utils/Export.h"
#include "platform/Clock.h"

namespace os {

[[nodiscard]] ORVEX_CORE_API std::int32_t readFileBy(platform::Clock& clock,
                                                     const std::string& path, std::uint8_t* buffer,
                                                     std::int32_t count);

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_WINDOWSFILES_H_
