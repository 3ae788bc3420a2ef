// The agent's settings, as a test writes them: a configuration file of the test's own on POSIX, the
// registry on Windows. Defined per platform.

#ifndef ORVEX_TESTS_SUPPORT_SETTINGS_H_
#define ORVEX_TESTS_SUPPORT_SETTINGS_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace test {

// Who finds the settings in the registry. A file is found by whoever is told its path.
enum class SettingsScope {
  Process,  // this process alone, which has an HKEY_LOCAL_MACHINE of the test's own meanwhile
  Machine,  // the programs that the test runs as well; such tests run one at a time
};

// There are none at first. Settings go away with the object; one lives at a time.
class Settings {
 public:
  using Value = std::variant<std::uint32_t, std::string>;

  explicit Settings(SettingsScope scope = SettingsScope::Process);
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;
  ~Settings();

  // Returns the file to make a utils::QuorvelConfig of.
  [[nodiscard]] std::string path() const;
  // Returns the arguments with which the command line finds the settings.
  [[nodiscard]] std::vector<std::string> options() const;
  // Returns what messages of the command line call the place of the settings.
  [[nodiscard]] std::string place() const;

  // Replaces all settings, while others may read them.
  void write(const std::map<std::string, Value>& values);
  // Removes the file, or the keys.
  void remove();

 private:
  struct Store;
  std::unique_ptr<Store> m_store;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_SETTINGS_H_
