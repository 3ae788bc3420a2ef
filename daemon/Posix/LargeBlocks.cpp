#include "daemon/Posix/LargeBlocks.h"

#include <malloc.h>

namespace quorveld {

// Left to itself, the C library takes the largest block that was ever freed for the size from which
// on others get memory of their own, and keeps twice as much of what is free.
void giveLargeBlocksBack() {
  static_cast<void>(mallopt(M_MMAP_THRESHOLD, static_cast<int>(kLargeBlock)));
  static_cast<void>(mallopt(M_TRIM_THRESHOLD, static_cast<int>(kLargeBlock)));
}

}  // namespace quorveld
