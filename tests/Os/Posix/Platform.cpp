#include "tests/Os/Platform.h"

#include <cerrno>

namespace test {

const char* const kConfigSource = "Os/Posix/PosixQuorvelConfig";
const char* const kFilesSource = "Os/Posix/PosixFiles";
const char* const kLockerSource = "Os/Posix/PosixOSLocker";
const char* const kMutexSource = "Os/Posix/PosixMutex";
const char* const kThreadSource = "Os/Posix/PosixThread";

const int kNotOwnerError = EPERM;

const char* const kLibraryIsMissing = "No such file";

}  // namespace test
