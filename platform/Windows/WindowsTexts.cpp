#include <algorithm>
#include <utility>
#include <windows.h>

#include "platform/Texts.h"

namespace platform {
namespace {

std::wstring widen(UINT codePage, const std::string& text) {
  const auto size = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), length);
  return wide;
}

std::string narrow(UINT codePage, const std::wstring& wide) {
  const auto size = static_cast<int>(wide.size());
  const int length =
      WideCharToMultiByte(codePage, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(codePage, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
  return text;
}

}  // namespace

std::filesystem::path toPath(const std::string& text) {
  return widen(CP_ACP, text);
}

// What does not come back as it was has lost something.
std::optional<std::string> toText(const std::filesystem::path& path) {
  std::string text = narrow(CP_ACP, path.native());
  return widen(CP_ACP, text) == path.native() ? std::optional(std::move(text)) : std::nullopt;
}

// Sign by sign: taken apart into its names, the path would lose the root of a server.
std::optional<std::string> toGenericText(const std::filesystem::path& path) {
  std::wstring generic = path.native();
  std::replace(generic.begin(), generic.end(), L'\\', L'/');
  return toText(generic);
}

std::string toShownText(const std::filesystem::path& path) {
  return narrow(CP_ACP, path.native());
}

std::string fromUtf8(const std::string& utf8) {
  return narrow(CP_ACP, widen(CP_UTF8, utf8));
}

std::string toUtf8(const std::string& text) {
  return narrow(CP_UTF8, widen(CP_ACP, text));
}

}  // namespace platform
