// What becomes of large blocks of memory that are freed.

#ifndef ORVEX_DAEMON_POSIX_LARGEBLOCKS_H_
#define ORVEX_DAEMON_POSIX_LARGEBLOCKS_H_

#include <cstddef>

namespace quorveld {

// Blocks of this size are large: answers of many instances, images.
inline constexpr std::size_t kLargeBlock = 1024 * 1024;

// Has large blocks go back to the system when they are freed, for the whole process and from now
// on: otherwise each thread keeps some tens of megabytes for its next ones. Before threads are
// started.
void giveLargeBlocksBack();

}  // namespace quorveld

#endif  // ORVEX_DAEMON_POSIX_LARGEBLOCKS_H_
