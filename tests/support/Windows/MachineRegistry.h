// HKEY_LOCAL_MACHINE, as tests write it, and one of a test's own.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_MACHINEREGISTRY_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_MACHINEREGISTRY_H_

#include <cstdint>
#include <string>

namespace test {

// Operations throw std::system_error where something fails.
class MachineRegistry {
 public:
  // Write a value, under a key that is made where it is missing. `bytes` are stored as they stand.
  static void write(const std::string& key, const std::string& name, std::uint32_t type,
                    const std::string& bytes);
  // The same, for a text of UTF-16 that need not have whole characters.
  static void writeStored(const std::string& key, const std::string& name, std::uint32_t type,
                          const std::string& bytes);
  static void writeNumber(const std::string& key, const std::string& name, std::uint32_t number);
  static void writeText(const std::string& key, const std::string& name, const std::string& text);

  // Remove what need not be there.
  static void removeValue(const std::string& key, const std::string& name);
  static void removeTree(const std::string& key);
};

// A key of the registry that stands in the place of HKEY_LOCAL_MACHINE for this process, so that
// tests that run at the same time do not see each other's values. Empty at first, and removed with
// all that is in it; one lives at a time. Throws as the above.
class OwnMachineRegistry : public MachineRegistry {
 public:
  OwnMachineRegistry();
  OwnMachineRegistry(const OwnMachineRegistry&) = delete;
  OwnMachineRegistry& operator=(const OwnMachineRegistry&) = delete;
  ~OwnMachineRegistry();

 private:
  const std::string m_path;  // under HKEY_CURRENT_USER
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_MACHINEREGISTRY_H_
