#include "Os/Windows/HandleOwners.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <windows.h>

// Needs the header above.
#include <tlhelp32.h>

#include "platform/Texts.h"
#include "platform/Windows/Handle.h"

namespace os {
namespace {

// The system's table of handles, as ntdll.dll gives it out.
struct TableEntry {
  void* object;  // null for users who are not to know
  ULONG_PTR process;
  ULONG_PTR handle;
  ULONG access;
  USHORT backTrace;
  USHORT type;
  ULONG attributes;
  ULONG reserved;
};
struct TableHead {
  ULONG_PTR count;
  ULONG_PTR reserved;
};
constexpr ULONG kExtendedHandles = 64;
constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004);
constexpr ULONG kFirstSize = ULONG{1} << 20;
constexpr ULONG kMostSize = ULONG{1} << 28;

// The system itself, which is no program and lets nobody look at its handles.
constexpr ULONG_PTR kSystemProcess = 4;

using QuerySystem = LONG(NTAPI*)(ULONG kind, void* buffer, ULONG size, ULONG* needed);
using CompareHandles = BOOL(WINAPI*)(HANDLE first, HANDLE second);

// Returns a function that not every system has; null where it does not.
template <class Function>
Function find(const wchar_t* library, const char* name) {
  const HMODULE module = GetModuleHandleW(library);
  return module == nullptr
             ? nullptr
             : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

std::vector<TableEntry> readTable() {
  const auto query = find<QuerySystem>(L"ntdll.dll", "NtQuerySystemInformation");
  if (query == nullptr) {
    return {};
  }
  // The table grows while it is read.
  for (ULONG size = kFirstSize; size <= kMostSize; size *= 2) {
    std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t));
    ULONG needed = 0;
    const LONG status = query(kExtendedHandles, memory.data(), size, &needed);
    if (status == kTooSmall) {
      continue;
    }
    if (status != 0) {
      return {};
    }
    const auto* const head = reinterpret_cast<const TableHead*>(memory.data());
    const auto* const first = reinterpret_cast<const TableEntry*>(head + 1);
    const std::size_t room = (size - sizeof *head) / sizeof *first;
    return {first, first + std::min<std::size_t>(head->count, room)};
  }
  return {};
}

// Tells whether handles of other processes are of one object.
class Comparison {
 public:
  Comparison(HANDLE handle, const std::vector<TableEntry>& table) : m_handle(handle) {
    const auto own = std::find_if(table.begin(), table.end(), [handle](const TableEntry& entry) {
      return entry.process == GetCurrentProcessId() &&
             entry.handle == reinterpret_cast<ULONG_PTR>(handle);
    });
    if (own != table.end()) {
      m_own = *own;
      m_isKnown = true;
    }
  }

  // Returns whether the table has the own handle, without which no other is the same.
  [[nodiscard]] bool isKnown() const { return m_isKnown; }

  // Returns whether some that may have been the same could not be compared.
  [[nodiscard]] bool hasDoubts() const { return m_hasDoubts; }

  bool isSame(const TableEntry& entry) {
    if (!m_isKnown || entry.type != m_own.type) {
      return false;
    }
    if (m_own.object != nullptr && entry.object != nullptr && entry.object != m_own.object) {
      return false;
    }
    return (m_own.object != nullptr && entry.object == m_own.object) || isSameBehind(entry);
  }

 private:
  bool isSameBehind(const TableEntry& entry) {
    if (entry.process == kSystemProcess) {
      return false;
    }
    if (m_compare == nullptr) {
      m_hasDoubts = true;
      return false;
    }
    HANDLE copy = nullptr;
    const platform::Handle& process = open(static_cast<DWORD>(entry.process));
    if (!process.isOpen()) {
      return false;
    }
    if (DuplicateHandle(process.get(), reinterpret_cast<HANDLE>(entry.handle), GetCurrentProcess(),
                        &copy, 0, FALSE, DUPLICATE_SAME_ACCESS) == FALSE) {
      noteFailure(ERROR_INVALID_HANDLE);
      return false;
    }
    const platform::Handle owner(copy);
    return m_compare(m_handle, copy) != FALSE;
  }

  const platform::Handle& open(DWORD process) {
    auto found = m_processes.find(process);
    if (found == m_processes.end()) {
      found =
          m_processes
              .emplace(process, platform::Handle(OpenProcess(PROCESS_DUP_HANDLE, FALSE, process)))
              .first;
      if (!found->second.isOpen()) {
        noteFailure(ERROR_INVALID_PARAMETER);
      }
    }
    return found->second;
  }

  // To be called behind a call that has failed. What has gone meanwhile, which `gone` stands for,
  // leaves no doubt.
  void noteFailure(DWORD gone) { m_hasDoubts = m_hasDoubts || GetLastError() != gone; }

  const HANDLE m_handle;
  TableEntry m_own{};
  bool m_isKnown = false;
  bool m_hasDoubts = false;
  const CompareHandles m_compare = find<CompareHandles>(L"kernelbase.dll", "CompareObjectHandles");
  std::map<DWORD, platform::Handle> m_processes;
};

std::map<DWORD, std::string> programNames() {
  std::map<DWORD, std::string> names;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (snapshot == INVALID_HANDLE_VALUE) {
    return names;
  }
  const platform::Handle owner(snapshot);
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL isThere = Process32FirstW(snapshot, &entry); isThere != FALSE;
       isThere = Process32NextW(snapshot, &entry)) {
    names[entry.th32ProcessID] = platform::toShownText(entry.szExeFile);
  }
  return names;
}

}  // namespace

std::string HandleOwner::toString() const {
  const std::string number = "process " + std::to_string(process);
  return program.empty() ? number : program + ", " + number;
}

HandleOwners findOwners(void* handle) {
  const std::vector<TableEntry> table = readTable();
  Comparison comparison(handle, table);
  if (!comparison.isKnown()) {
    return {};
  }
  std::set<DWORD> processes;
  for (const TableEntry& entry : table) {
    const auto process = static_cast<DWORD>(entry.process);
    if (process != GetCurrentProcessId() && processes.count(process) == 0 &&
        comparison.isSame(entry)) {
      processes.insert(process);
    }
  }
  std::map<DWORD, std::string> names;
  if (!processes.empty()) {
    names = programNames();
  }
  HandleOwners owners;
  for (const DWORD process : processes) {
    owners.known.push_back({names[process], process});
  }
  owners.known.push_back({"this program", GetCurrentProcessId()});
  owners.areAll = !comparison.hasDoubts();
  return owners;
}

}  // namespace os
