// Which processes have an object of the system open.

#ifndef ORVEX_OS_WINDOWS_HANDLEOWNERS_H_
#define ORVEX_OS_WINDOWS_HANDLEOWNERS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Utils/Export.h"

namespace os {

struct HandleOwner {
  // The name of its file, or "this program" for the one that asks; empty where the system does not
  // tell.
  std::string program;
  std::uint32_t process = 0;

  // Returns for example "host.exe, process 4711".
  [[nodiscard]] ORVEX_CORE_API std::string toString() const;
};

struct HandleOwners {
  // The others, the lowest number first, and then this process; none where the system shows
  // nothing.
  std::vector<HandleOwner> known;
  // No handle of another program was kept from this user, so that there are no other owners.
  bool areAll = false;
};

// Returns the processes that have the object open behind this handle of the process. Looks at all
// handles of the machine, which takes a moment. Any thread may call.
[[nodiscard]] ORVEX_CORE_API HandleOwners findOwners(void* handle);

}  // namespace os

#endif  // ORVEX_OS_WINDOWS_HANDLEOWNERS_H_
