#include "Utils/Exception.h"

#include <cstdarg>

#include "Utils/Log.h"

namespace utils {
namespace {

constexpr LogSource kLog{"Exception"};

}  // namespace

Exception::Exception(const std::string& text) : m_message("Quorvel: " + text) {
  logError(kLog, "utils::Exception::Exception", "%s", text.c_str());
}

Exception::Exception(const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  m_message = formatArguments(text, arguments);
  va_end(arguments);
  logError(kLog, "utils::Exception::Exception", "%s", m_message.c_str());
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
  return m_message.c_str();
}

}  // namespace utils
