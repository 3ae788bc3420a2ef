// What the programs share that libFuzzer drives: it calls LLVMFuzzerTestOneInput with one input
// after another, in one thread.

#ifndef ORVEX_TESTS_FUZZ_FUZZ_H_
#define ORVEX_TESTS_FUZZ_FUZZ_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "cimxml/ObjectName.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace test {

// Ends the program, which counts as a crash, unless the condition holds that `what` states.
void require(bool condition, const char* what, int line = __builtin_LINE());

// Requires UTF-8 that shows as itself on a terminal.
void requirePrintable(std::string_view text);

// Returns whether a text in the name has a backslash: a path cannot tell it from one that escapes.
[[nodiscard]] bool hasBackslash(const cimxml::ObjectName& name);

}  // namespace test

#endif  // ORVEX_TESTS_FUZZ_FUZZ_H_
