#include "tests/support/Windows/MachineRegistry.h"

#include <system_error>
#include <windows.h>

namespace test {
namespace {

void expectSuccess(LSTATUS status, const char* operation) {
  if (status != ERROR_SUCCESS) {
    throw std::system_error(static_cast<int>(status), std::system_category(), operation);
  }
}

// A key that is made where it is missing.
class Key {
 public:
  Key(HKEY parent, const std::string& path) {
    expectSuccess(RegCreateKeyExA(parent, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &m_handle, nullptr),
                  "RegCreateKeyEx");
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() { RegCloseKey(m_handle); }

  [[nodiscard]] HKEY handle() const { return m_handle; }

 private:
  HKEY m_handle = nullptr;
};

}  // namespace

void MachineRegistry::write(const std::string& key, const std::string& name, std::uint32_t type,
                            const std::string& bytes) {
  // The system ends a text itself when a zero follows the bytes it is given.
  const std::string guarded = bytes + '#';
  const Key opened(HKEY_LOCAL_MACHINE, key);
  expectSuccess(RegSetValueExA(opened.handle(), name.c_str(), 0, type,
                               reinterpret_cast<const BYTE*>(guarded.data()),
                               static_cast<DWORD>(bytes.size())),
                "RegSetValueEx");
}

void MachineRegistry::writeStored(const std::string& key, const std::string& name,
                                  std::uint32_t type, const std::string& bytes) {
  const Key opened(HKEY_LOCAL_MACHINE, key);
  const std::wstring wideName(name.begin(), name.end());
  expectSuccess(
      RegSetValueExW(opened.handle(), wideName.c_str(), 0, type,
                     reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size())),
      "RegSetValueEx");
}

void MachineRegistry::writeNumber(const std::string& key, const std::string& name,
                                  std::uint32_t number) {
  write(key, name, REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number));
}

void MachineRegistry::writeText(const std::string& key, const std::string& name,
                                const std::string& text) {
  write(key, name, REG_SZ, text + '\0');
}

void MachineRegistry::removeValue(const std::string& key, const std::string& name) {
  const Key opened(HKEY_LOCAL_MACHINE, key);
  RegDeleteValueA(opened.handle(), name.c_str());
}

void MachineRegistry::removeTree(const std::string& key) {
  RegDeleteTreeA(HKEY_LOCAL_MACHINE, key.c_str());
}

OwnMachineRegistry::OwnMachineRegistry()
    : m_path("Software\\QuorvelTest-" + std::to_string(GetCurrentProcessId())) {
  const Key key(HKEY_CURRENT_USER, m_path);
  expectSuccess(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.handle()), "RegOverridePredefKey");
}

OwnMachineRegistry::~OwnMachineRegistry() {
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  RegDeleteTreeA(HKEY_CURRENT_USER, m_path.c_str());
}

}  // namespace test
