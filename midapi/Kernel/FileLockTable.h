// Who holds file locks, for those who may not try to take them.
//
// A lock that is tried is held by whoever tries, if only for a moment, and its file may be somebody
// else's. The kernel's table of locks can be read by everybody and disturbs nobody. A service may
// be kept from the table (ProcSubset=pid): then the lock is tried after all, beside others who try.
// Any thread.

#ifndef ORVEX_MIDAPI_KERNEL_FILELOCKTABLE_H_
#define ORVEX_MIDAPI_KERNEL_FILELOCKTABLE_H_

#include <filesystem>

namespace ma {

inline constexpr const char* kFileLockTable = "/proc/locks";

// Returns whether somebody has locked the file, as FileSystem::lock does. True is certain but for a
// file system whose files bear no device's number (btrfs), where a file of the same number
// elsewhere could be meant. False, too, where it cannot be told: the table does not show the locks
// of processes outside of this container; it is missing, and the caller may not open the file.
[[nodiscard]] bool isFileLocked(const std::filesystem::path& file,
                                const std::filesystem::path& table = kFileLockTable);

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FILELOCKTABLE_H_
