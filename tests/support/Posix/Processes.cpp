#include "tests/support/Posix/Processes.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace test {

Pipe::Pipe() {
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
}

pid_t forkProcess() {
  // What is buffered now would be written twice.
  std::fflush(nullptr);
  const pid_t process = fork();
  if (process < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  return process;
}

void becomeProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::vector<EnvironmentChange>& environment) {
  for (const EnvironmentChange& change : environment) {
    if (change.value) {
      setenv(change.name.c_str(), change.value->c_str(), 1);
    } else {
      unsetenv(change.name.c_str());
    }
  }
  std::vector<std::string> texts{program.string()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  execv(program.c_str(), pointers.data());
  _exit(kCannotExecute);
}

int awaitEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "waitpid");
    }
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace test
