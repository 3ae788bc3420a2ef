#include "Os/Windows/SystemText.h"

#include <windows.h>

namespace os {

std::string getSystemText(std::uint32_t error) {
  char text[512];
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, text, sizeof text, nullptr);
  std::string result(text, length);
  result.erase(result.find_last_not_of("\r\n .") + 1);
  return result;
}

std::string describeSystemError(std::uint32_t error) {
  const std::string text = getSystemText(error);
  return text.empty() ? "error " + std::to_string(error) : text;
}

}  // namespace os
