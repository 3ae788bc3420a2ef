// Where the errors of a program go.

#ifndef ORVEX_TESTS_DAEMON_POSIX_ERRORSTO_H_
#define ORVEX_TESTS_DAEMON_POSIX_ERRORSTO_H_

#include <fcntl.h>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

#include "platform/Posix/Descriptor.h"

namespace test {

// Has the program that is started meanwhile write its errors to a file.
class ErrorsTo {
 public:
  explicit ErrorsTo(const std::string& file)
      : m_file(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)) {
    EXPECT_TRUE(m_file.isOpen());
    dup2(m_file.get(), STDERR_FILENO);
  }
  ErrorsTo(const ErrorsTo&) = delete;
  ErrorsTo& operator=(const ErrorsTo&) = delete;
  ~ErrorsTo() { dup2(m_before.get(), STDERR_FILENO); }

 private:
  const platform::Descriptor m_before{dup(STDERR_FILENO)};
  const platform::Descriptor m_file;
};

}  // namespace test

#endif  // ORVEX_TESTS_DAEMON_POSIX_ERRORSTO_H_
