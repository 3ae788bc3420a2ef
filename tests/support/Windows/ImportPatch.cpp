#include "tests/support/Windows/ImportPatch.h"

#include <stdexcept>
#include <windows.h>

namespace test {
namespace {

template <class Structure>
Structure* at(void* base, std::size_t offset) {
  return reinterpret_cast<Structure*>(static_cast<char*>(base) + offset);
}

// Returns the place in the library's import address table that leads to the function.
void** findEntry(const std::string& library, const std::string& name) {
  void* const base = GetModuleHandleA(library.c_str());
  if (base == nullptr) {
    throw std::runtime_error(library + " is not loaded");
  }
  const auto* const headers =
      at<IMAGE_NT_HEADERS>(base, static_cast<std::size_t>(at<IMAGE_DOS_HEADER>(base, 0)->e_lfanew));
  const IMAGE_DATA_DIRECTORY& imports =
      headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (auto* from = at<IMAGE_IMPORT_DESCRIPTOR>(base, imports.VirtualAddress); from->Name != 0;
       ++from) {
    auto* names = at<IMAGE_THUNK_DATA>(base, from->OriginalFirstThunk);
    auto* addresses = at<IMAGE_THUNK_DATA>(base, from->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
      if (!IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal) &&
          name == at<IMAGE_IMPORT_BY_NAME>(base, names->u1.AddressOfData)->Name) {
        return reinterpret_cast<void**>(&addresses->u1.Function);
      }
    }
  }
  throw std::runtime_error(library + " does not import " + name);
}

void write(void** entry, void* value) {
  DWORD protection = 0;
  VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
  *entry = value;
  VirtualProtect(entry, sizeof *entry, protection, &protection);
}

}  // namespace

ImportPatch::ImportPatch(const std::string& library, const std::string& name, void* replacement)
    : m_entry(findEntry(library, name)), m_original(*m_entry) {
  write(m_entry, replacement);
}

ImportPatch::~ImportPatch() {
  write(m_entry, m_original);
}

}  // namespace test
