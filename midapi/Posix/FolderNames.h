// The names in a folder. Where memory runs out it throws std::bad_alloc, at which the standard
// library's own iterators end the program.

#ifndef ORVEX_MIDAPI_POSIX_FOLDERNAMES_H_
#define ORVEX_MIDAPI_POSIX_FOLDERNAMES_H_

#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

namespace ma {

// Returns the names, in no order; `max` of them where there are more, and those that were read
// until then where that fails.
[[nodiscard]] std::vector<std::string> readFolderNames(
    const std::filesystem::path& folder, std::error_code& error,
    std::size_t max = std::numeric_limits<std::size_t>::max());

}  // namespace ma

#endif  // ORVEX_MIDAPI_POSIX_FOLDERNAMES_H_
