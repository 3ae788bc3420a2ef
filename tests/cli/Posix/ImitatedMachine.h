// A machine in a folder, whose adapters the kernel drives: `quorvel` finds its files there, and no
// driver to ask.

#ifndef ORVEX_TESTS_CLI_POSIX_IMITATEDMACHINE_H_
#define ORVEX_TESTS_CLI_POSIX_IMITATEDMACHINE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/midapi/Kernel/SysfsFixture.h"
#include "tests/support/Programs.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/TempDirectory.h"

namespace test {

class ImitatedMachine {
 public:
  ImitatedMachine() {
    std::filesystem::create_directory_symlink(m_sysfs.root(), m_directory.path() / "sys");
    std::filesystem::create_directories(m_directory.path() / "lib/firmware");
    std::filesystem::create_directories(firmware());
    m_directory.write("quorvel.conf",
                      "Adapters = kernel\nFWFilePath = " + firmware().string() + "\n");
  }

  // Makes a function 8086:10d3 with one interface.
  void addFunction(const std::string& pci, const std::string& driver,
                   const std::string& interface) const {
    m_sysfs.addFunction(pci);
    m_sysfs.bindDriver(pci, driver);
    m_sysfs.addInterface(pci, interface, "02:54:4e:00:00:30");
  }
  // Gives a function an option ROM.
  void setRom(const std::string& pci, const Bytes& rom) const {
    m_directory.write(m_sysfs.folder(pci) / "rom", rom);
  }

  // Writes a file into the folder of FWFilePath and returns its path.
  [[nodiscard]] std::string writeFirmware(const std::string& name, const Bytes& content) const {
    return m_directory.write(firmware() / name, content).string();
  }

  [[nodiscard]] ProgramResult run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(),
                     {"--config", (m_directory.path() / "quorvel.conf").string()});
    return runProgram(programBeside("quorvel"), arguments,
                      {{"ORVEX_ADAPTERS", std::nullopt},
                       {"ORVEX_KERNEL_ROOT", m_directory.path().string()},
                       {"ZOLAN_Quorvel_LOG_LEVEL", std::nullopt},
                       {"COMPUTERNAME", "lab"}});
  }

 private:
  [[nodiscard]] std::filesystem::path firmware() const { return m_directory.path() / "firmware"; }

  TempDirectory m_directory;
  SysfsFixture m_sysfs;
};

}  // namespace test

#endif  // ORVEX_TESTS_CLI_POSIX_IMITATEDMACHINE_H_
