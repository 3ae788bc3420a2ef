#include <algorithm>
#include <utility>
#include <windows.h>

#include "platform/Texts.h"
#include "platform/Windows/LastError.h"

namespace platform {
namespace {

// Returns a length that the system gave, which is 0 where it could not convert. An empty text in
// the place of another one could name another file.
int demandLength(int length, const char* operation) {
  if (length <= 0) {
    throwLastError(operation);
  }
  return length;
}

std::wstring widen(UINT codePage, const std::string& text) {
  const auto convert = [&](wchar_t* wide, int room) {
    return demandLength(
        MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), wide, room),
        "MultiByteToWideChar");
  };
  if (text.empty()) {
    return {};
  }
  std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
  wide.resize(static_cast<std::size_t>(convert(wide.data(), static_cast<int>(wide.size()))));
  return wide;
}

std::string narrow(UINT codePage, const std::wstring& wide) {
  const auto convert = [&](char* text, int room) {
    return demandLength(WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()),
                                            text, room, nullptr, nullptr),
                        "WideCharToMultiByte");
  };
  if (wide.empty()) {
    return {};
  }
  std::string text(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  text.resize(static_cast<std::size_t>(convert(text.data(), static_cast<int>(text.size()))));
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
