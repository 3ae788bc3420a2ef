#include "tests/support/Programs.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>

#include "tests/support/Posix/Processes.h"

namespace test {
namespace {

// Reads both pipes until the program has closed them.
void collect(int output, int errors, ProgramResult& result) {
  std::array<pollfd, 2> sources{{{output, POLLIN, 0}, {errors, POLLIN, 0}}};
  while (sources[0].fd >= 0 || sources[1].fd >= 0) {
    if (poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
    for (pollfd& source : sources) {
      if (source.fd < 0 || source.revents == 0) {
        continue;
      }
      std::array<char, 4096> buffer{};
      const ssize_t got = read(source.fd, buffer.data(), buffer.size());
      if (got > 0) {
        std::string& text = source.fd == output ? result.output : result.errors;
        text.append(buffer.data(), static_cast<std::size_t>(got));
      } else if (got == 0) {
        close(source.fd);
        source.fd = -1;
      }
    }
  }
}

}  // namespace

ProgramResult runProgram(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<EnvironmentChange>& environment) {
  const Pipe output;
  const Pipe errors;
  const pid_t process = forkProcess();
  if (process == 0) {
    dup2(output.in(), STDOUT_FILENO);
    dup2(errors.in(), STDERR_FILENO);
    becomeProgram(program, arguments, environment);
  }
  close(output.in());
  close(errors.in());
  ProgramResult result;
  collect(output.out(), errors.out(), result);
  result.exitStatus = awaitEnd(process);
  if (result.exitStatus == kCannotExecute) {
    throw std::system_error(ENOENT, std::generic_category(), program.string());
  }
  return result;
}

}  // namespace test
