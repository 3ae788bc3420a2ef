#include <windows.h>

#include "midapi/Texts.h"

namespace ma {
namespace {

std::wstring widen(UINT codePage, const std::string& text) {
  const auto size = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');  // no character has fewer bytes than units
  const int length = MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(),
                                         static_cast<int>(wide.size()));
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

std::string narrow(UINT codePage, const std::wstring& wide) {
  constexpr std::size_t kMostBytes = 4;  // of one unit
  std::string text(wide.size() * kMostBytes, '\0');
  const int length =
      WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

}  // namespace

std::string toShownText(const std::filesystem::path& path) {
  return narrow(CP_ACP, path.native());
}

std::string fromUtf8(const std::string& utf8) {
  return narrow(CP_ACP, widen(CP_UTF8, utf8));
}

std::string toUtf8(const std::string& text) {
  return narrow(CP_UTF8, widen(CP_ACP, text));
}

}  // namespace ma
