// The places of virtual operations in their class's table, which whoever was built against an
// earlier version of the class calls them by.

#ifndef ORVEX_TESTS_SUPPORT_VIRTUALSLOTS_H_
#define ORVEX_TESTS_SUPPORT_VIRTUALSLOTS_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace test {

// Returns the number of the operation's entry, from 0 on; a destructor has two entries. As the
// platforms' common C++ ABI has it: a pointer to a virtual operation begins with the distance of
// the entry in bytes, which on some processors is marked by one more.
template <class Operation>
[[nodiscard]] std::size_t slotOf(Operation operation) {
  std::uintptr_t distance = 0;
  static_assert(sizeof operation >= sizeof distance);
  std::memcpy(&distance, &operation, sizeof distance);
  return distance / sizeof(void*);
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_VIRTUALSLOTS_H_
