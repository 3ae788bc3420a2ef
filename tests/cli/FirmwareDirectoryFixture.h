// A test that runs the program `quorvel` on firmware files in a directory of its own.

#ifndef ORVEX_TESTS_CLI_FIRMWAREDIRECTORYFIXTURE_H_
#define ORVEX_TESTS_CLI_FIRMWAREDIRECTORYFIXTURE_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/QuorvelFixture.h"
#include "tests/support/Settings.h"

namespace test {

class FirmwareDirectoryFixture : public QuorvelFixture {
 protected:
  FirmwareDirectoryFixture() {
    std::filesystem::create_directory(path("firmware"));
    std::filesystem::create_directory(path("older"));
    lookIn(path("firmware").string() + ";" + path("older").string());
  }

  // Names the directories of firmware files in the configuration, or none when it is empty.
  void lookIn(const std::string& directories) {
    std::map<std::string, Settings::Value> values;
    if (!directories.empty()) {
      values["FWFilePath"] = directories;
    }
    m_settings.write(values);
  }

  [[nodiscard]] const Settings& settings() const { return m_settings; }

  // Returns a path as the inventory writes it: with slashes on every platform.
  [[nodiscard]] static std::string named(const std::filesystem::path& file) {
    return file.generic_string();
  }

  // Puts a file into the first directory and returns its path as the inventory writes it.
  [[nodiscard]] std::string addFile(const std::string& name,
                                    const std::vector<RomImage>& images) const {
    return named(writeRom("firmware/" + name, images));
  }

  // Returns the arguments behind the options for the configuration.
  [[nodiscard]] Arguments configured(const Arguments& arguments) const {
    Arguments result = m_settings.options();
    result.insert(result.end(), arguments.begin(), arguments.end());
    return result;
  }

 private:
  Settings m_settings{SettingsScope::Machine};
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_FIRMWAREDIRECTORYFIXTURE_H_
