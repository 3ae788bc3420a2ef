#include <string>
#include <string_view>
#include <windows.h>

#include "platform/Paths.h"
#include "platform/Windows/SystemPath.h"

namespace platform {
namespace {

// What follows goes to the file system as it is; behind the second, a server and its share.
constexpr std::wstring_view kVerbatim = L"\\\\?\\";
constexpr std::wstring_view kVerbatimServer = L"\\\\?\\UNC\\";
constexpr std::wstring_view kServer = L"\\\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";

// Folders have to be shorter than files, by the room for a name of a file in them.
constexpr std::size_t kShortPath = MAX_PATH - 20;

bool isSeparator(wchar_t sign) {
  return sign == L'\\' || sign == L'/';
}

bool isDrive(std::wstring_view text) {
  return text.size() >= 2 && text[1] == L':';
}

// Returns an empty text where the system cannot tell, with its last error.
std::wstring fullPath(const std::wstring& path) {
  std::wstring full;
  // The process may come to stand elsewhere between the calls.
  for (DWORD size = MAX_PATH; size > full.size();) {
    full.resize(size);
    size = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size < full.size()) {
      full.resize(size);
      return full;
    }
  }
  return {};
}

std::wstring withoutSign(std::wstring path) {
  if (path.starts_with(kVerbatimServer)) {
    return std::wstring(kServer) + path.substr(kVerbatimServer.size());
  }
  if (path.starts_with(kVerbatim) &&
      isDrive(std::wstring_view(path).substr(kVerbatim.size()))) {
    return path.substr(kVerbatim.size());
  }
  return path;
}

}  // namespace

bool isAbsolute(const std::filesystem::path& path) {
  const std::wstring& text = path.native();
  return (text.size() >= 2 && isSeparator(text[0]) && isSeparator(text[1])) ||
         (text.size() >= 3 && isDrive(text) && isSeparator(text[2]));
}

std::filesystem::path makeAbsolute(const std::filesystem::path& path, std::error_code& error) {
  std::wstring full = fullPath(path.native());
  if (full.empty()) {
    error.assign(static_cast<int>(GetLastError()), std::system_category());
    return {};
  }
  error.clear();
  return withoutSign(std::move(full));
}

std::filesystem::path makeNormal(const std::filesystem::path& path, std::error_code& error) {
  return makeAbsolute(path, error);
}

std::filesystem::path toSystemPath(const std::filesystem::path& path) {
  std::error_code error;
  const std::wstring full = makeAbsolute(path, error).native();
  if (full.size() < kShortPath || full.starts_with(kDevice) || full.starts_with(kVerbatim)) {
    return path;
  }
  return full.starts_with(kServer)
             ? std::wstring(kVerbatimServer) + full.substr(kServer.size())
             : std::wstring(kVerbatim) + full;
}

}  // namespace platform
