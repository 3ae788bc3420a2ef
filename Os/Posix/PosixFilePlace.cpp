#include <algorithm>
#include <climits>
#include <list>
#include <optional>
#include <unistd.h>
#include <utility>
#include <vector>

#include "Os/FilePlace.h"
#include "Os/Posix/MountTable.h"

namespace os {
namespace {

// As many as the kernel follows.
constexpr int kMostLinks = 40;

using Names = std::list<std::string>;

Names split(const std::string& path) {
  Names names;
  for (std::size_t begin = 0; begin < path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    if (end > begin) {
      names.push_back(path.substr(begin, end - begin));
    }
    begin = end + 1;
  }
  return names;
}

std::string currentDirectory() {
  std::vector<char> buffer(PATH_MAX);
  const char* const path = getcwd(buffer.data(), buffer.size());
  return path != nullptr ? path : "/";
}

std::string makeAbsolute(const std::string& path) {
  return path.starts_with('/') ? path : currentDirectory() + "/" + path;
}

std::string parentOf(const std::string& directory) {
  return directory.substr(0, std::max<std::size_t>(directory.rfind('/'), 1));
}

std::string append(const std::string& directory, const std::string& name) {
  return (directory == "/" ? directory : directory + "/") + name;
}

std::optional<std::string> readLink(const std::string& path) {
  std::vector<char> buffer(PATH_MAX);
  const ssize_t length = readlink(path.c_str(), buffer.data(), buffer.size());
  return length > 0 ? std::optional(std::string(buffer.data(), static_cast<std::size_t>(length)))
                    : std::nullopt;
}

class Walk {
 public:
  Walk(const MountTable& mounts, const EnterPlace& enter) : m_mounts(mounts), m_enter(enter) {}

  void go(Names names) {
    if (!goTo("/")) {
      return;
    }
    while (!names.empty()) {
      const std::string name = std::move(names.front());
      names.pop_front();
      if (!goOn(name, names)) {
        return;
      }
    }
  }

 private:
  bool goTo(std::string directory) {
    m_directory = std::move(directory);
    const std::string device = m_mounts.findHolding(m_directory);
    return m_enter(device.empty() ? m_directory : device, m_directory);
  }

  // Takes one step; the names of a link come before those that follow.
  bool goOn(const std::string& name, Names& names) {
    if (name == ".") {
      return true;
    }
    if (name == "..") {
      return goTo(parentOf(m_directory));
    }
    const std::string next = append(m_directory, name);
    // Where something is mounted is no link, and asking would ask what is mounted there.
    const std::optional<std::string> link =
        m_mounts.findAt(next).empty() ? readLink(next) : std::nullopt;
    if (!link) {
      return goTo(next);
    }
    if (++m_links > kMostLinks) {
      return false;
    }
    names.splice(names.begin(), split(*link));
    return !link->starts_with('/') || goTo("/");
  }

  const MountTable& m_mounts;
  const EnterPlace& m_enter;
  std::string m_directory;
  int m_links = 0;
};

}  // namespace

void walkPlaces(const std::string& path, const EnterPlace& enter) {
  const std::string absolute = makeAbsolute(path);
  const MountTable mounts = MountTable::ofProcess();
  if (mounts.isEmpty()) {
    static_cast<void>(enter(parentOf(absolute), absolute));
    return;
  }
  Walk(mounts, enter).go(split(absolute));
}

}  // namespace os
