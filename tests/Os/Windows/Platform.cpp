#include "tests/Os/Platform.h"

#include <windows.h>

namespace test {

const char* const kConfigSource = "Os/Windows/WindowsQuorvelConfig";
const char* const kFilesSource = "Os/Windows/Windows";
const char* const kLockerSource = "Os/Windows/WindowsOSLocker";
const char* const kMutexSource = "Os/Windows/WindowsMutex";
const char* const kThreadSource = "Os/Windows/WindowsThread";

const int kNotOwnerError = ERROR_NOT_OWNER;

// Wine and Windows begin differently: "Module not found", "The specified module ...".
const char* const kLibraryIsMissing = "odule";

}  // namespace test
