// A length of time as a person reads it off a clock.

#ifndef ORVEX_UTILS_CLOCKTEXT_H_
#define ORVEX_UTILS_CLOCKTEXT_H_

#include <chrono>
#include <string>

#include "Utils/Export.h"

namespace utils {

// Returns "mm:ss", or "h:mm:ss" from one hour on. Less than no time counts as none.
[[nodiscard]] ORVEX_CORE_API std::string toClockText(std::chrono::seconds elapsed);

}  // namespace utils

#endif  // ORVEX_UTILS_CLOCKTEXT_H_
