#include "midapi/Posix/FolderNames.h"

#include <cerrno>
#include <dirent.h>
#include <memory>
#include <string_view>

namespace ma {
namespace {

struct Closer {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

std::vector<std::string> readFolderNames(const std::filesystem::path& folder,
                                         std::error_code& error, std::size_t max) {
  error.clear();
  std::vector<std::string> names;
  const std::unique_ptr<DIR, Closer> opened(::opendir(folder.c_str()));
  errno = opened != nullptr ? 0 : errno;
  while (opened != nullptr && names.size() < max) {
    errno = 0;
    const dirent* const entry = ::readdir(opened.get());
    if (entry == nullptr) {
      break;
    }
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  if (errno != 0 && names.size() < max) {
    error.assign(errno, std::generic_category());
  }
  return names;
}

}  // namespace ma
