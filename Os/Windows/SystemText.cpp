#include "Os/Windows/SystemText.h"

#include <memory>
#include <string_view>
#include <windows.h>

#include "platform/Windows/LocalMemory.h"

namespace os {
namespace {

constexpr std::string_view kSubjectMark = "%1";

}  // namespace

std::string getSystemText(std::uint32_t error) {
  char* text = nullptr;
  const DWORD length = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  const std::unique_ptr<char, platform::LocalMemory> owner(text);
  std::string result(length != 0 ? text : "", length);
  result.erase(result.find_last_not_of("\r\n") + 1);
  return result;
}

std::string describeSystemError(std::uint32_t error, const std::string& subject) {
  std::string text = getSystemText(error);
  if (text.empty()) {
    return "error " + std::to_string(error);
  }
  if (const std::size_t mark = text.find(kSubjectMark); mark != std::string::npos) {
    text.replace(mark, kSubjectMark.size(), subject);
  }
  return text;
}

}  // namespace os
