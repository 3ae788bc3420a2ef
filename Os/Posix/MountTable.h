// What is mounted where, as the kernel lists it: nothing is asked of the file systems themselves.
// Private to this folder.

#ifndef ORVEX_OS_POSIX_MOUNTTABLE_H_
#define ORVEX_OS_POSIX_MOUNTTABLE_H_

#include <map>
#include <string>
#include <string_view>

#include "Utils/Export.h"

namespace os {

// Constant once made: any thread may ask.
class ORVEX_CORE_API MountTable {
 public:
  // Reads a table of the form of /proc/self/mountinfo; lines that are none are passed over.
  explicit MountTable(std::string_view table);

  // Returns that of this process; an empty one where there is none to be read.
  [[nodiscard]] static MountTable ofProcess();

  [[nodiscard]] bool isEmpty() const { return m_devices.empty(); }
  // Returns the number of the device that is mounted at the directory ("0:45"); empty for none.
  [[nodiscard]] std::string findAt(const std::string& directory) const;
  // Returns the number of the device that holds the directory, an absolute path without links;
  // empty where the table lacks it.
  [[nodiscard]] std::string findHolding(std::string directory) const;

 private:
  std::map<std::string, std::string, std::less<>> m_devices;  // by directory
};

}  // namespace os

#endif  // ORVEX_OS_POSIX_MOUNTTABLE_H_
