// Where a path leads, in terms of what hangs together: a file system that does not answer holds up
// all that is asked of it, by whichever path, and nothing else.

#ifndef ORVEX_OS_FILEPLACE_H_
#define ORVEX_OS_FILEPLACE_H_

#include <functional>
#include <string>

#include "Utils/Export.h"

namespace os {

// Takes a file system and what a path reaches in it. Returns whether to go on.
using EnterPlace = std::function<bool(const std::string& fileSystem, const std::string& directory)>;

// Goes the way of a path, through symbolic links, and calls `enter` with each directory on it and
// with its end, each as an absolute path without links, before anything is asked of what is there.
// Hangs where the file system that was entered last does. Any thread. Defined per platform.
//
// A file system is a text that is the same for all paths to it: POSIX, the number of its device,
// whatever is mounted where ("0:45"), or where the system does not tell, the directory of the path;
// Windows, the drive or the share ("c:", "//server/share"), as the path says it, for nothing is
// asked there.
ORVEX_CORE_API void walkPlaces(const std::string& path, const EnterPlace& enter);

}  // namespace os

#endif  // ORVEX_OS_FILEPLACE_H_
