// A virtual machine with one virtio network card, whose boot ROM is a file.

#ifndef ORVEX_TESTS_MODULES_VIRTUALMACHINE_H_
#define ORVEX_TESTS_MODULES_VIRTUALMACHINE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>

namespace test {

class VirtualMachine {
 public:
  // Returns the emulator's path, nothing where it is not installed.
  [[nodiscard]] static std::optional<std::filesystem::path> findEmulator();

  // Switches the machine on. Throws std::system_error when the emulator cannot be started.
  VirtualMachine(const std::filesystem::path& emulator, const std::filesystem::path& rom);
  VirtualMachine(const VirtualMachine&) = delete;
  VirtualMachine& operator=(const VirtualMachine&) = delete;
  // Switches it off.
  ~VirtualMachine();

  // Returns whether the text shows on the console, within 10 seconds from now.
  [[nodiscard]] bool shows(const std::string& text);
  // Returns what the console has shown.
  [[nodiscard]] const std::string& console() const { return m_console; }

 private:
  pid_t m_process = -1;
  int m_output = -1;
  std::string m_console;
};

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_VIRTUALMACHINE_H_
