#include "Utils/Format.h"

#include <cstdio>

namespace utils {

std::string formatArguments(const char* text, va_list arguments) {
  char shortText[256];
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(shortText, sizeof shortText, text, arguments);
  std::string result;
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof shortText) {
    result.assign(shortText, static_cast<std::size_t>(length));
  } else if (length > 0) {
    result.resize(static_cast<std::size_t>(length));
    std::vsnprintf(result.data(), result.size() + 1, text, again);
  }
  va_end(again);
  return result;
}

std::string format(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  std::string result = formatArguments(text, arguments);
  va_end(arguments);
  return result;
}

}  // namespace utils
