// printf-style formatting into strings.

#ifndef ORVEX_UTILS_FORMAT_H_
#define ORVEX_UTILS_FORMAT_H_

#include <cstdarg>
#include <string>

#include "Utils/Export.h"

// Has the compiler check the arguments behind a printf-style format. Counted as GCC counts: the
// object is argument 1 of a member function.
#define ORVEX_PRINTF(formatArgument, firstArgument) \
  __attribute__((format(printf, formatArgument, firstArgument)))

namespace utils {

// Returns the formatted text. `text` must come from the program, never from outside it.
[[nodiscard]] ORVEX_CORE_API std::string format(const char* text, ...) ORVEX_PRINTF(1, 2);

// The same for a function that was itself called with a format; `arguments` is used up.
[[nodiscard]] ORVEX_CORE_API std::string formatArguments(const char* text, va_list arguments)
    ORVEX_PRINTF(1, 0);

}  // namespace utils

#endif  // ORVEX_UTILS_FORMAT_H_
