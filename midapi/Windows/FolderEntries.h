// What is in a folder, whatever the length of its path.

#ifndef ORVEX_MIDAPI_WINDOWS_FOLDERENTRIES_H_
#define ORVEX_MIDAPI_WINDOWS_FOLDERENTRIES_H_

#include <cstdint>
#include <filesystem>
#include <functional>

namespace ma {

struct FolderEntry {
  std::filesystem::path name;
  bool isFolder = false;  // a link to one, too
  bool isLink = false;    // leads elsewhere: a symbolic link, a junction, the mount of a volume
};

// Hands each entry of a folder out, in no order, until `take` returns false. Returns the system's
// error, 0 for none.
[[nodiscard]] std::uint32_t forEachEntry(const std::filesystem::path& folder,
                                         const std::function<bool(const FolderEntry&)>& take);

// Removes a file, a folder with its content, or a link, as far as possible. What a link leads to
// stays, wherever in the folder the link is. Files that may only be read are removed, too.
void removeTree(const std::filesystem::path& path);

}  // namespace ma

#endif  // ORVEX_MIDAPI_WINDOWS_FOLDERENTRIES_H_
