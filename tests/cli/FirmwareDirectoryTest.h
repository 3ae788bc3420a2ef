// A test that runs the program `quorvel` on firmware files in a directory of its own.

#ifndef ORVEX_TESTS_CLI_FIRMWAREDIRECTORYTEST_H_
#define ORVEX_TESTS_CLI_FIRMWAREDIRECTORYTEST_H_

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/cli/QuorvelTest.h"

namespace test {

class FirmwareDirectoryTest : public QuorvelTest {
 protected:
  FirmwareDirectoryTest() {
    std::filesystem::create_directory(path("firmware"));
    std::filesystem::create_directory(path("older"));
    configure("FWFilePath = " + path("firmware").string() + ";" + path("older").string());
  }

  void configure(const std::string& line) const {
    std::ofstream(configuration()) << "# of the test\n" << line << "\n";
  }

  [[nodiscard]] std::string configuration() const { return path("quorvel.conf").string(); }

  // Puts a file into the first directory and returns its path.
  [[nodiscard]] std::string addFile(const std::string& name,
                                    const std::vector<RomImage>& images) const {
    return writeRom("firmware/" + name, images);
  }

  // Returns the arguments behind the option for the configuration.
  [[nodiscard]] Arguments configured(const Arguments& arguments) const {
    Arguments result{"--config", configuration()};
    result.insert(result.end(), arguments.begin(), arguments.end());
    return result;
  }
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_FIRMWAREDIRECTORYTEST_H_
