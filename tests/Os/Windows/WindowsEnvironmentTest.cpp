// What the console of a process is not.

#include <gmock/gmock.h>
#include <windows.h>

#include "Os/Environment.h"

namespace {

// Standard output for the time of a test.
class RedirectedOutput {
 public:
  explicit RedirectedOutput(const char* device)
      : m_file(CreateFileA(device, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
    SetStdHandle(STD_OUTPUT_HANDLE, m_file);
  }
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;
  ~RedirectedOutput() {
    SetStdHandle(STD_OUTPUT_HANDLE, m_previous);
    CloseHandle(m_file);
  }

  [[nodiscard]] bool isOpen() const { return m_file != INVALID_HANDLE_VALUE; }

 private:
  HANDLE m_previous = GetStdHandle(STD_OUTPUT_HANDLE);
  HANDLE m_file;
};

// The C runtime takes every character device for a terminal.
TEST(OutputTerminal, IsNotTheNullDevice) {
  const RedirectedOutput output("NUL");
  ASSERT_TRUE(output.isOpen());

  EXPECT_FALSE(os::isOutputTerminal());
}

}  // namespace
