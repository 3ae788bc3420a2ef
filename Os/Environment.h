// What the process is told by its surroundings.

#ifndef ORVEX_OS_ENVIRONMENT_H_
#define ORVEX_OS_ENVIRONMENT_H_

#include <string>

#include "Utils/Export.h"

namespace os {

// Returns the value of the environment variable COMPUTERNAME; "localhost" when it is not set or
// empty.
[[nodiscard]] ORVEX_CORE_API std::string getComputerName();

// Sets an environment variable of this process, before other threads exist. Defined per platform.
ORVEX_CORE_API void setEnvironment(const std::string& name, const std::string& value);

// Returns the absolute path of the running program's file, empty when the platform cannot tell.
// Defined per platform.
[[nodiscard]] ORVEX_CORE_API std::string getProgramPath();

// Puts the null device in the place of each standard stream that the process was started without,
// so that no file that is opened later becomes one by accident. What is written to such a stream
// fails. To be called first in a program. Defined per platform.
ORVEX_CORE_API void reserveStandardStreams();

// Returns true when standard output is a terminal. Defined per platform.
[[nodiscard]] ORVEX_CORE_API bool isOutputTerminal();

}  // namespace os

#endif  // ORVEX_OS_ENVIRONMENT_H_
