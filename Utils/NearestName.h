// What somebody who misspelt a name may have meant. Holds no state; any thread may call.

#ifndef ORVEX_UTILS_NEARESTNAME_H_
#define ORVEX_UTILS_NEARESTNAME_H_

#include <string>
#include <vector>

#include "Utils/Export.h"

namespace utils {

// Returns the name to which the fewest letters of `written` are to be changed, put in or left out,
// whatever their case; the first of several, and an empty text where that would be more than half
// of the letters.
[[nodiscard]] ORVEX_CORE_API std::string findNearestName(const std::string& written,
                                                         const std::vector<std::string>& names);

}  // namespace utils

#endif  // ORVEX_UTILS_NEARESTNAME_H_
