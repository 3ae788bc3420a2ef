// The text that %p makes of a pointer, which each C library words in its own way.

#ifndef ORVEX_TESTS_SUPPORT_POINTERPATTERN_H_
#define ORVEX_TESTS_SUPPORT_POINTERPATTERN_H_

#include <string>

namespace test {

// An expression that just the text of a pointer other than null fits. Defined per platform.
extern const std::string kPointerPattern;

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_POINTERPATTERN_H_
