// How often the test program has asked for memory by `new`: 0 under clang's thread sanitizer, which
// has operators of its own in the program.

#ifndef ORVEX_TESTS_CIMXML_ALLOCATIONS_H_
#define ORVEX_TESTS_CIMXML_ALLOCATIONS_H_

#include <cstddef>

namespace test {

[[nodiscard]] std::size_t countAllocations();

}  // namespace test

#endif  // ORVEX_TESTS_CIMXML_ALLOCATIONS_H_
