#include "tests/fuzz/Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "platform/Utf8.h"

// Inputs that are refused fill no system log.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return setenv("ZOLAN_Quorvel_LOG_LEVEL", "0", 1);
}

namespace test {

void require(bool condition, const char* what, int line) {
  if (!condition) {
    std::fprintf(stderr, "line %d: not so: %s\n", line, what);
    std::abort();
  }
}

void requirePrintable(std::string_view text) {
  while (!text.empty()) {
    const auto character = platform::readCharacter(text);
    require(character && platform::isPrintable(character->point), "a text is fit for a terminal");
    text.remove_prefix(character->length);
  }
}

bool hasBackslash(const cimxml::ObjectName& name) {
  return std::any_of(name.keys.begin(), name.keys.end(), [](const cimxml::KeyBinding& key) {
    return key.text.find('\\') != std::string::npos ||
           std::any_of(key.reference.begin(), key.reference.end(), hasBackslash);
  });
}

}  // namespace test
