// A folder with all that is in it, whatever the length of its path.

#ifndef ORVEX_MIDAPI_WINDOWS_FOLDERTREE_H_
#define ORVEX_MIDAPI_WINDOWS_FOLDERTREE_H_

#include <filesystem>

namespace ma {

// Removes a file, a folder with its content, or a link, as far as possible. What a link leads to
// stays, wherever in the folder the link is. Files that may only be read are removed, too.
void removeTree(const std::filesystem::path& path);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_FOLDERTREE_H_
