#include "tests/support/Windows/DirectoryLink.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

#include "tests/support/Programs.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

namespace fs = std::filesystem;

bool isLink(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

fs::path systemDirectory() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
  return path;
}

// An emulation makes no links, but takes those of the system below it for such.
using UnixName = char*(CDECL*)(const wchar_t* path);

std::wstring unixName(UnixName nameOf, const fs::path& path) {
  char* const name = nameOf(path.c_str());
  const std::string text = name != nullptr ? name : "";
  HeapFree(GetProcessHeap(), 0, name);
  return {text.begin(), text.end()};
}

// Runs "ln -s TARGET LINK" or "rm LINK" there, and waits until there is a link or none.
void runUnix(const std::wstring& name, const std::vector<fs::path>& paths, bool isToBe) {
  const auto nameOf = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  if (nameOf == nullptr) {
    return;
  }
  const std::wstring program = L"\\\\?\\unix\\bin\\" + name.substr(0, name.find(L' '));
  std::wstring command = L"\\\\?\\unix\\bin\\" + name;
  for (const fs::path& path : paths) {
    command += L" \"" + unixName(nameOf, path) + L"\"";
  }
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                     &startup, &process) != FALSE) {
    static_cast<void>(waitUntil([&] { return isLink(paths.back()) == isToBe; }));
  }
}

}  // namespace

DirectoryLink::DirectoryLink(fs::path link, const fs::path& target) : m_link(std::move(link)) {
  static_cast<void>(runProgram(systemDirectory() / "cmd.exe",
                               {"/c", "mklink", "/J", m_link.string(), target.string()}, {}));
  if (!isLink(m_link)) {
    runUnix(L"ln -s", {target, m_link}, true);
  }
  if (!isLink(m_link)) {
    throw std::runtime_error("no directory link can be made at " + m_link.string());
  }
}

DirectoryLink::~DirectoryLink() {
  RemoveDirectoryW(m_link.c_str());
  if (isLink(m_link)) {
    runUnix(L"rm", {m_link}, false);
  }
}

}  // namespace test
