// What the process is told by its surroundings.

#ifndef ORVEX_OS_ENVIRONMENT_H_
#define ORVEX_OS_ENVIRONMENT_H_

#include <filesystem>
#include <string>

#include "Utils/Export.h"

namespace os {

// Returns the value of the environment variable COMPUTERNAME; "localhost" when it is not set or
// empty.
[[nodiscard]] ORVEX_CORE_API std::string getComputerName();

// Returns the name that the system gives this machine; empty where it tells none. Defined per
// platform.
[[nodiscard]] ORVEX_CORE_API std::string getMachineName();

// Sets an environment variable of this process, before other threads exist; Windows removes it for
// an empty value. Throws utils::Exception where the system refuses it. Defined per platform.
ORVEX_CORE_API void setEnvironment(const std::string& name, const std::string& value);

// Throws utils::Exception when the program's arguments are not those that it was given: on Windows
// they come in the ANSI code page, and a character that this lacks comes as another one, which may
// name another file. To be called before they are used. Defined per platform.
ORVEX_CORE_API void demandExactArguments();

// Returns the absolute path of the running program's file. Throws utils::Exception when the
// platform cannot tell. Defined per platform.
[[nodiscard]] ORVEX_CORE_API std::filesystem::path getProgramPath();

// Puts the null device in the place of each standard stream that the process was started without,
// so that no file that is opened later becomes one by accident. What is written to such a stream
// fails. To be called first in a program. Defined per platform.
ORVEX_CORE_API void reserveStandardStreams();

// Returns true when standard output is a terminal. Defined per platform.
[[nodiscard]] ORVEX_CORE_API bool isOutputTerminal();

}  // namespace os

#endif  // ORVEX_OS_ENVIRONMENT_H_
